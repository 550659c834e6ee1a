// Dials against the scripted stand-in of the telephony service and prints
// what the service was asked, then the hang-up the host was told of.
// Run with the stand-in preferred to Wine's own service:
//   WINEDLLOVERRIDES='tapi32=n,b' tools/wine-run.sh build/x86_64/bin/demo_dial.exe
#include "qziso32.h"
#include "tapi_standin.h"
#include <cstdio>
#include <string>

static const UINT kHangupMessage = WM_APP + 1;

static LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kHangupMessage) {
        std::printf("host told of a hang-up, reason 0x%lx\n", static_cast<unsigned long>(lParam));
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

static void Pump()
{
    MSG msg;
    for (int idle = 0; idle < 3; ++idle) {
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageA(&msg);
            idle = 0;
        }
        Sleep(10);
    }
}

static void PrintTranscript(HMODULE service, const char *heading)
{
    auto take = reinterpret_cast<StandInTakeTranscriptProc>(GetProcAddress(service, "StandIn_TakeTranscript"));
    std::string text(take(nullptr, 0), '\0');
    take(&text[0], static_cast<DWORD>(text.size()));
    std::printf("--- %s\n%s", heading, text.c_str());
}

int main()
{
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string folder(path, std::string(path).find_last_of('\\') + 1);
    HMODULE service = LoadLibraryA((folder + "tapi_standin\\tapi32.dll").c_str());
    if (!service || !GetProcAddress(service, "StandIn_Plan")) {
        std::printf("the stand-in service is not there (build the tests; run with WINEDLLOVERRIDES='tapi32=n,b')\n");
        return 1;
    }
    auto plan = reinterpret_cast<StandInPlanProc>(GetProcAddress(service, "StandIn_Plan"));

    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = HostProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "DemoDialHost";
    RegisterClassA(&windowClass);
    HWND host = CreateWindowA("DemoDialHost", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                              nullptr);

    Telephony_Initialize(service);
    TelephonyClientStart(host);
    Telephony_SetHangupMessage(host, kHangupMessage);
    std::printf("telephony %s, %lu line(s)\n", IsTelephonyEnabled() ? "on" : "off",
                static_cast<unsigned long>(Telephony_GetNumDevices()));
    PrintTranscript(service, "start");

    // The call proceeds, is answered, and the far end hangs up.
    const StandInEvent events[] = {{2, kStandInCall, 0x200, 0, 0}, {2, kStandInCall, 0x100, 0, 0},
                                   {2, kStandInCall, 0x4000, 0, 0}};
    plan("lineMakeCall", kStandInAsync, static_cast<LONG>(0x80000009), nullptr, 0); // "W" refused
    plan("lineMakeCall", kStandInAsync, 0, events, 3);
    BOOL dialled = Telephony_DialNumber(host, 0, 0, "555W1234", "Demo");
    std::printf("dial returned %d\n", dialled);
    PrintTranscript(service, "dial \"555W1234\" on a line that cannot wait for dial tone");
    Pump();
    PrintTranscript(service, "the far end hangs up");
    DestroyWindow(host);
    return 0;
}
