// The cursor loader: the user's cursor setting picks a set of cursors in the
// resource library, or, for set 2, animated cursor files beside the host.
#include "state_cursor.h"
#include "module_globals.h"

namespace {

struct AnimatedCursorFile {
    DWORD id;
    const char *file;
};

// Set 2 takes these cursors from files in the current folder.
const AnimatedCursorFile kAnimatedCursorFiles[] = {
    {11, "\\multisel.ani"}, {20, "\\clipbrd.ani"}, {21, "\\lhand.ani"},
    {22, "\\rhand.ani"},    {23, "\\lpoint.ani"},  {24, "\\rpoint.ani"},
};

const char *AnimatedCursorFileFor(DWORD id)
{
    for (const AnimatedCursorFile &row : kAnimatedCursorFiles)
        if (row.id == id)
            return row.file;
    return nullptr;
}

}  // namespace

HCURSOR LoadStateCursor(HMODULE module, DWORD id)
{
    LONG setting = OSGetProfileInt("Software\\Tarvo\\Kelendrix\\98.0\\UserSetup", "Cursor State", 1,
                                   g_module.settingsName, 0);
    if (setting != 2)
        return LoadCursorA(module, MAKEINTRESOURCEA((id + static_cast<DWORD>(setting) * 1000) & 0xFFFF));
    if (const char *file = AnimatedCursorFileFor(id)) {
        char path[MAX_PATH + 16] = {};
        DWORD length = GetCurrentDirectoryA(MAX_PATH, path);
        if (length == 0 || length >= MAX_PATH)
            return nullptr;
        lstrcatA(path, file);
        return LoadCursorFromFileA(path);
    }
    return LoadCursorA(module, MAKEINTRESOURCEA((id + 2000) & 0xFFFF));
}
