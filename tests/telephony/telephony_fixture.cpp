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
StandInDevice Line(DWORD devCaps, DWORD addrCaps) { return StandInDevice{0x10004, 1, 8, devCaps, addrCaps, 2}; }

DWORD FakeClock::now, FakeClock::step, FakeClock::reads;
DWORD WINAPI FakeClock::Read()
{
    ++reads;
    return now += step;
}

Lines operator+(Lines a, const Lines &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const Lines kVerify = {"lineNegotiateAPIVersion a0 0 10004 10004", "lineGetDevCaps a0 0 10004 0 1276",
                       "lineOpen a0 0 10004 0 1 10 null", "lineGetAddressStatus 11 0 1088", "lineClose 11"};
const Lines kDialPreamble = kVerify + Lines{"lineNegotiateAPIVersion a0 0 10004 10004",
                                            "lineOpen a0 0 10004 0 1 10 null",
                                            "lineGetAddressCaps a0 0 0 10004 0 1252",
                                            "lineGetDevCaps a0 0 10004 0 1276"};
const Lines kHangup = {"lineGetCallStatus c0 1080", "lineDrop c0 0", "lineDeallocateCall c0", "lineClose 11"};

// lineMakeCall with the call parameters the stand-in reports: total size,
// display name, bearer and media mode, flags, address mode and id.
std::string MakeCall(const std::string &piece, const std::string &name)
{
    char tail[96];
    snprintf(tail, sizeof tail, " 0 %u '%s' 1 4 2 1 0", static_cast<unsigned>(176 + name.size() + 1),
             name.c_str());
    return "lineMakeCall 11 '" + piece + "'" + tail;
}

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

BOOL TelephonyTest::Dial(const char *number, std::vector<Box> boxes, LONG device, HWND window)
{
    MessageBoxDriver driver;
    for (const Box &box : boxes)
        driver.Expect(Text(box.id), box.style, box.answer, Text(1).c_str());
    return Telephony_DialNumber(window ? window : host, device, 0, number, nullptr);
}

void TelephonyTest::SetUp()
{
    ErrorStateTest::SetUp();
    ASSERT_TRUE(clock.Applied());
    FakeClock::now = 0xFFFFF000;
    FakeClock::step = 1000;
    FakeClock::reads = 0;
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
