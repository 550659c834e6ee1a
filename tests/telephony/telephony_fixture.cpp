#include "telephony_fixture.h"
#include <cstdio>

DWORD FakeClock::now, FakeClock::step, FakeClock::reads;
DWORD WINAPI FakeClock::Read() { return ++reads, now += step; }

Lines operator+(Lines a, const Lines &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
Lines First(const Lines &lines, size_t count) { return Lines(lines.begin(), lines.begin() + count); }

const std::string kStatus = "lineGetCallStatus c0 1080";
const Lines kVerify = {"lineNegotiateAPIVersion a0 0 10004 10004", "lineGetDevCaps a0 0 10004 0 1276",
                       "lineOpen a0 0 10004 0 1 10 null", "lineGetAddressStatus 11 0 1088", "lineClose 11"};
const Lines kDialPreamble = kVerify + Lines{kVerify[0], kVerify[2], "lineGetAddressCaps a0 0 0 10004 0 1252",
                                            kVerify[1]};
const Lines kHangup = {kStatus, "lineDrop c0 0", "lineDeallocateCall c0", "lineClose 11"};

// The stand-in reports total size, display name, bearer and media mode,
// flags, address mode and address id.
std::string MakeCall(const std::string &piece, const std::string &name)
{
    char tail[96];
    snprintf(tail, sizeof tail, " 0 %u '%s' 1 4 2 1 0", unsigned(176 + name.size() + 1), name.c_str());
    return "lineMakeCall 11 '" + piece + "'" + tail;
}

Reasons hangups;

static LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_APP + 5)
        hangups.push_back(lParam);
    return DefWindowProcA(window, message, wParam, lParam);
}

void TelephonyTest::Pump()
{
    MSG msg;
    for (int idle = 0; idle < 3; ++idle, Sleep(5)) {
        for (; PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE); idle = 0) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
    }
}

std::string TelephonyTest::Text(UINT id)
{
    char text[512] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

void TelephonyTest::ExpectBoxes(MessageBoxDriver &driver, const Boxes &boxes)
{
    for (const Box &box : boxes)
        driver.Expect(Text(box.id), box.style, box.answer, Text(1).c_str());
}

BOOL TelephonyTest::Dial(const char *number, const Boxes &boxes, LONG device, const char *name)
{
    MessageBoxDriver driver;
    ExpectBoxes(driver, boxes);
    return Telephony_DialNumber(host, device, 0, number, name);
}

void TelephonyTest::SetUp()
{
    ErrorStateTest::SetUp();
    ASSERT_TRUE(clock.Applied());
    FakeClock::now = 0xFFFFF000;
    FakeClock::step = 1000;
    host = CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(host, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HostProc));
    service = Load("tapi_standin");
    ASSERT_TRUE(service.module && service.Reset && service.TakeTranscriptProc);
    // Handing the library over ends whatever an earlier test registered.
    Telephony_Initialize(service.module);
    Pump();
    service.Reset();
    Telephony_SetHangupMessage(host, WM_APP + 5);
    hangups.clear();
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
