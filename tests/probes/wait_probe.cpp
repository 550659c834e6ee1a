// The one-way switches of the busy cursor and the message boxes, each in a
// process of its own. Reports by exit status: 0 when the library behaved,
// otherwise the number of the first check that failed. A box that shows
// keeps the process alive until the test's time runs out.
#include <windows.h>
#include <cstring>
#include "qziso32.h"

static int WaitDisabled()
{
    HCURSOR arrow = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    SetCursor(arrow);
    OSWaitDisable();
    if (OSWaitInit() != 0)
        return 2;
    if (OSWait() != 1)
        return 3;
    if (GetCursor() != arrow)
        return 4;
    if (OSReWait(1) != 0 || OSUnWait() != 0)
        return 5;
    return OSErrorIsErrorPending() ? 6 : 0;
}

static int MessageDisabled()
{
    OSMessageDisable();
    if (OSMessage(nullptr, ResourceGetHandle(), "Probe", 1, MB_OK) != 0)
        return 2;
    MessageHelpRecord help = {};
    if (OSMessageWithHelp(&help, nullptr, ResourceGetHandle(), "Probe", 1, MB_OK) != 0)
        return 3;
    // The question after Escape is a box too: with boxes off the wait goes on.
    return OSErrorIsErrorPending() ? 4 : 0;
}

int main(int argc, char **argv)
{
    const char *scenario = argc > 1 ? argv[1] : "";
    if (!strcmp(scenario, "waitdisable"))
        return WaitDisabled();
    if (!strcmp(scenario, "messagedisable"))
        return MessageDisabled();
    return 1;
}
