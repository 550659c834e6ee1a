// The one-way switches of the busy cursor and the message boxes, each in a
// process of its own. Exit status 0 when the library behaved, else the
// number of the check that failed; a box that shows keeps the process alive
// until the test gives up on it.
#include <windows.h>
#include <cstring>
#include "qziso32.h"

int main(int argc, char **argv)
{
    const char *scenario = argc > 1 ? argv[1] : "";
    SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32512)));
    HCURSOR arrow = GetCursor();
    if (!strcmp(scenario, "waitdisable")) {
        OSWaitDisable();
        if (OSWaitInit() != 0 || OSWait() != 1 || GetCursor() != arrow)
            return 2;
        if (OSReWait(1) != 0 || OSUnWait() != 0)
            return 3;
    } else if (!strcmp(scenario, "messagedisable")) {
        OSMessageDisable();
        MessageHelpRecord help = {};
        if (OSMessage(nullptr, ResourceGetHandle(), "Probe", 1, MB_OK) != 0 ||
            OSMessageWithHelp(&help, nullptr, ResourceGetHandle(), "Probe", 1, MB_OK) != 0)
            return 2;
    } else {
        return 1;
    }
    return OSErrorIsErrorPending() ? 4 : 0;
}
