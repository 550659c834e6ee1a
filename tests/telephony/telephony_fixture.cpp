#include "telephony_fixture.h"

StandIn StandIn::Load(const char *folder)
{
    StandIn s;
    s.module = LoadLibraryA((ProgramFolder() + folder + "\\tapi32.dll").c_str());
    if (!s.module)
        return s;
    s.Reset = reinterpret_cast<StandInResetProc>(GetProcAddress(s.module, "StandIn_Reset"));
    s.SetDevice = reinterpret_cast<StandInSetDeviceProc>(GetProcAddress(s.module, "StandIn_SetDevice"));
    s.PlanProc = reinterpret_cast<StandInPlanProc>(GetProcAddress(s.module, "StandIn_Plan"));
    s.PostProc = reinterpret_cast<StandInPostProc>(GetProcAddress(s.module, "StandIn_Post"));
    s.GrowOnce = reinterpret_cast<StandInGrowOnceProc>(GetProcAddress(s.module, "StandIn_GrowOnce"));
    s.TakeTranscriptProc =
        reinterpret_cast<StandInTakeTranscriptProc>(GetProcAddress(s.module, "StandIn_TakeTranscript"));
    return s;
}

Lines StandIn::Transcript() const
{
    std::string text(TakeTranscriptProc(nullptr, 0), '\0');
    TakeTranscriptProc(&text[0], static_cast<DWORD>(text.size()));
    Lines lines;
    size_t start = 0, end;
    while ((end = text.find('\n', start)) != std::string::npos) {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

StandInEvent CallState(DWORD state, DWORD target, DWORD privilege)
{
    return StandInEvent{2, target, state, 0, privilege};
}
StandInEvent DeviceState(DWORD state, DWORD detail, DWORD further)
{
    return StandInEvent{8, kStandInLine, state, detail, further};
}
StandInEvent LineClose() { return StandInEvent{3, kStandInLine, 0, 0, 0}; }
StandInEvent LineCreate(DWORD device) { return StandInEvent{19, kStandInNoDevice, device, 0, 0}; }

std::vector<LPARAM> &TelephonyTest::Hangups()
{
    static std::vector<LPARAM> seen;
    return seen;
}

static LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    struct Access : TelephonyTest {
        static void Record(LPARAM reason) { Hangups().push_back(reason); }
    };
    if (message == WM_APP + 5) {
        Access::Record(lParam);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

void TelephonyTest::Pump()
{
    MSG msg;
    for (int idle = 0; idle < 3; ++idle) {
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
            idle = 0;
        }
        Sleep(5);
    }
}

std::string TelephonyTest::Text(UINT id)
{
    char text[512] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

void TelephonyTest::SetUp()
{
    ErrorStateTest::SetUp();
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = HostProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "TelephonyTestHost";
    RegisterClassA(&windowClass);
    host = CreateWindowA("TelephonyTestHost", "", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                         windowClass.hInstance, nullptr);
    service = StandIn::Load("tapi_standin");
    ASSERT_TRUE(service.module && service.Reset && service.TakeTranscriptProc);
    // Whatever an earlier test left registered goes back to the loaded state
    // the way the service would take it there, then the stand-in starts over.
    service.Post({DeviceState(0x40000)});
    Pump();
    service.Reset();
    Telephony_Initialize(service.module);
    Telephony_SetHangupMessage(host, kHangupMessage);
    Hangups().clear();
}

void TelephonyTest::TearDown()
{
    Telephony_HangupCall(nullptr, 0x4000);
    Pump();
    DestroyWindow(host);
    ErrorStateTest::TearDown();
}

void TelephonyTest::Register()
{
    TelephonyClientStart(host);
    ASSERT_EQ(1u, IsTelephonyEnabled());
    service.Transcript();
}
