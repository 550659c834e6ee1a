// The usable-line verdicts, dialling piece by piece, and hang-up, each
// compared with the service calls the stand-in saw and the boxes shown.
#include "telephony_fixture.h"

namespace {
const std::string kStatus = "lineGetCallStatus c0 1080";
const LONG kUnavailable = LONG(0x8000004B), kFailed = LONG(0x80000048);

// Each verdict, as the check returns it and as a dial shows it.
TEST_F(TelephonyTest, EachVerdictAndItsMessageThroughADial)
{
    struct Row {
        const char *what;
        StandInDevice device;
        const char *failing;  // a service call planned to fail, or null
        LONG error;
        DWORD verdict;
        UINT message;
        Lines calls;          // what the check asks the service
    };
    const Lines k2(kVerify.begin(), kVerify.begin() + 2), k3(kVerify.begin(), kVerify.begin() + 3);
    const Row rows[] = {
        {"usable", Line(), nullptr, 0, 0, 0, kVerify},
        {"no version in common", {0, 1, 8, 0, 0, 2}, nullptr, 0, 1, 1165, {kVerify[0]}},
        {"no voice", {0x10004, 2, 8, 0, 0, 2}, nullptr, 0, 2, 1166, k2},
        {"cannot make calls", {0x10004, 1, 0, 0, 0, 2}, nullptr, 0, 4, 1167, k2},
        {"in use elsewhere", Line(), "lineOpen", LONG(0x80000001), 5, 1168, k3},
        {"cannot call now", {0x10004, 1, 8, 0, 0, 0}, nullptr, 0, 6, 1169, kVerify},
        {"capabilities unreadable", Line(), "lineGetDevCaps", kFailed, 1, 1165, k2},
        {"address status unreadable", Line(), "lineGetAddressStatus", kFailed, 1, 1165, kVerify},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        service.SetDevice(0, &row.device);
        for (int dial = 0; dial < 2; ++dial) {
            if (row.failing)
                service.Plan(row.failing, row.error);
            if (!dial)
                EXPECT_EQ(row.verdict, Telephony_VerifyUsableLine(host, 0));
            else if (row.verdict)
                EXPECT_FALSE(Dial("555", {{row.message, MB_OK, IDOK}}));
            EXPECT_EQ((dial && !row.verdict) ? Lines{} : row.calls, service.Transcript());
        }
        EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
    }
}

TEST_F(TelephonyTest, RecordsTooSmallAreReadAgainAtTheSizeTheServiceNeeds)
{
    Register();
    service.GrowOnce("lineGetDevCaps");
    service.GrowOnce("lineGetAddressStatus");
    EXPECT_EQ(0u, Telephony_VerifyUsableLine(host, 0));
    const Lines expected = {kVerify[0], kVerify[1], "lineGetDevCaps a0 0 10004 0 1376", kVerify[2], kVerify[3],
                            "lineGetAddressStatus 11 0 1188", kVerify[4]};
    EXPECT_EQ(expected, service.Transcript());
}

// Each stop character on a line that can do it, and on one that can do all
// the others; a prompt cancelled; the service refusing a modifier; a stop on
// a line without partial dialling. Each dial ends with a hang-up.
TEST_F(TelephonyTest, EachStopCharacterAsksWhereTheLineCanDoIt)
{
    const Lines kAsked = Lines{MakeCall("555;", "Ann"), kStatus, kStatus, "lineDial c0 '1' 0"} + kHangup;
    const auto whole = [](const char *number) { return Lines{MakeCall(number, "Ann")} + kHangup; };
    struct Row {
        const char *number;
        StandInDevice line;
        std::vector<LONG> refusals;  // the first pieces' replies
        std::vector<Box> boxes;
        BOOL result;
        Lines calls;  // after the preamble
    };
    const Row rows[] = {
        {"555$1", Line(0x40), {}, {{1170, MB_OKCANCEL, IDOK}}, 1, kAsked},
        {"555$1", Line(0x180), {}, {}, 1, whole("555$1")},
        {"555W1", Line(0x100), {}, {{1171, MB_OKCANCEL, IDOK}}, 1, kAsked},
        {"555W1", Line(0xC0), {}, {}, 1, whole("555W1")},
        {"555w1", Line(0x1C0), {}, {{1171, MB_OKCANCEL, IDOK}}, 1, kAsked},
        {"555@1", Line(0x80), {}, {{1172, MB_OKCANCEL, IDOK}}, 1, kAsked},
        {"555@1", Line(0x140), {}, {}, 1, whole("555@1")},
        {"555?1", Line(0), {}, {{1173, MB_OKCANCEL, IDOK}}, 1, kAsked},
        {"555?1", Line(0x1C0), {}, {{1173, MB_OKCANCEL, IDCANCEL}}, 0,
         Lines{MakeCall("555;", "Ann"), kStatus, kStatus} + kHangup},
        {"555?1", Line(0, 0), {}, {{1177, MB_OK, IDOK}}, 0, {"lineClose 11"}},
        // Refused, W joins the stops and the rest of the number, empty, goes
        // next; an empty piece refused in turn ends the dial.
        {"555W1", Line(), {LONG(0x80000009)}, {}, 1, Lines{MakeCall("555W1", "Ann")} + whole("")},
        {"555@1", Line(), {LONG(0x8000000B), LONG(0x80000008)}, {}, 0, Lines{MakeCall("555@1", "Ann")} + whole("")},
        {"", Line(), {}, {}, 1, {"lineClose 11"}},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.number + std::to_string(row.line.devCapFlags));
        service.Reset();
        service.SetDevice(0, &row.line);
        for (LONG refusal : row.refusals)
            service.Plan("lineMakeCall", kStandInAsync, refusal);
        if (row.refusals.empty())
            service.Plan("lineMakeCall", kStandInAsync, 0, {CallState(0x200)});
        {
            MessageBoxDriver driver;
            for (const Box &box : row.boxes)
                driver.Expect(Text(box.id), box.style, box.answer, Text(1).c_str());
            EXPECT_EQ(row.result, Telephony_DialNumber(host, 0, 0, row.number, "Ann"));
        }
        EXPECT_EQ(row.refusals.size() == 2 ? RV_Retry : RV_Success, OSErrorGetErrorInfo()->errorCode);
        OSErrorClearError();
        Telephony_HangupCall(host, 0x4000);
        EXPECT_EQ(kDialPreamble + row.calls, service.Transcript());
        EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
        Hangups().clear();
    }
}

// The open of the dialling line: in use elsewhere, a service error, and the
// unavailable line retried or given up. A failed open tells the host.
TEST_F(TelephonyTest, EachOpenFailureAndItsMessages)
{
    const std::string kOpen = "lineOpen a0 0 10004 0 1 10 null";
    struct Row {
        LONG error;
        std::vector<Box> boxes;
        BOOL result;
        Lines calls;  // after the failed open
    };
    const Row rows[] = {
        {LONG(0x80000001), {{1175, MB_OK, IDOK}}, 0, {}},
        {LONG(0x80000043), {{1159, MB_OK, IDOK}, {1176, MB_OK, IDOK}}, 0, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDCANCEL}, {1176, MB_OK, IDOK}}, 0, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDRETRY}}, 1,
         Lines{kOpen, kDialPreamble[7], kDialPreamble[8], MakeCall("5")} + kHangup},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.error);
        service.Plan("lineOpen", 0);  // the check's own open
        service.Plan("lineOpen", row.error);
        EXPECT_EQ(row.result, Dial("5", row.boxes));
        Telephony_HangupCall(host, 0x4000);
        EXPECT_EQ(Lines(kDialPreamble.begin(), kDialPreamble.begin() + 7) + row.calls, service.Transcript());
        EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
        Hangups().clear();
    }
}

// The hang-up of a call under way, each branch of the drop and of the
// releases after it, by what the service answers.
TEST_F(TelephonyTest, EachHangupBranch)
{
    const std::string kDrop = "lineDrop c0 0", kFree = "lineDeallocateCall c0", kClose = "lineClose 11";
    struct Row {
        const char *function;
        LONG result, reply;
        std::vector<Box> boxes;
        Lines calls;
    };
    const Row rows[] = {
        {"lineDrop", kStandInAsync, 2, {}, kHangup},
        {"lineDrop", kStandInAsync, LONG(0x8000001C), {}, kHangup},
        {"lineDrop", kStandInAsync, kFailed, {{1162, MB_OK, IDOK}}, kHangup},
        {"lineDrop", kStandInAsync, kUnavailable, {{1163, MB_RETRYCANCEL, IDRETRY}},
         {kStatus, kDrop, kDrop, kFree, kClose}},
        {"lineDrop", kFailed, 0, {{1162, MB_OK, IDOK}}, kHangup},
        {"lineDeallocateCall", kUnavailable, 0, {{1163, MB_RETRYCANCEL, IDRETRY}},
         {kStatus, kDrop, kFree, kFree, kClose}},
        {"lineClose", LONG(0x80000044), 0, {{1161, MB_OK, IDOK}}, kHangup},
        {"lineClose", kUnavailable, 0, {{1163, MB_RETRYCANCEL, IDCANCEL}}, kHangup},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(std::string(row.function) + " " + std::to_string(row.reply));
        EXPECT_TRUE(Dial("5"));
        service.Transcript();
        service.Plan(row.function, row.result, row.reply, {CallState(1)});
        {
            MessageBoxDriver driver;
            for (const Box &box : row.boxes)
                driver.Expect(Text(box.id), box.style, box.answer, Text(1).c_str());
            EXPECT_TRUE(Telephony_HangupCall(host, 0x4000));
        }
        Pump();  // the idle state may come after the wait for it
        EXPECT_EQ(row.calls, service.Transcript());
        EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
        Hangups().clear();
    }
}

// An unreadable status ends the registration; the hang-up guard does not
// stay behind, so the next call after a new start hangs up as usual.
TEST_F(TelephonyTest, AnUnreadableCallStatusLeavesLaterHangupsWorking)
{
    Register();
    EXPECT_TRUE(Dial("5"));
    service.Transcript();
    service.Plan("lineGetCallStatus", kFailed);
    {
        MessageBoxDriver driver;
        driver.Expect(Text(1162), MB_OK, IDOK, Text(1).c_str());
        EXPECT_FALSE(Telephony_HangupCall(host, 0x4000));
    }
    EXPECT_EQ((Lines{kStatus, "lineShutdown a0"}), service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
    Register();
    EXPECT_TRUE(Dial("5"));
    EXPECT_EQ(kDialPreamble + Lines{MakeCall("5")}, service.Transcript());
    EXPECT_TRUE(Telephony_HangupCall(host, 0x40));
    EXPECT_EQ(kHangup, service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x40}, Hangups());
}

// How a call ends reaches the host with its reason; another call's states
// and a monitor's leave it alone.
TEST_F(TelephonyTest, TheCallEndingReachesTheHostWithItsReason)
{
    const Lines kReleased = {kStatus, "lineDeallocateCall c0", "lineClose 11"};
    struct Row {
        const char *what;
        std::vector<StandInEvent> events;
        std::vector<LPARAM> reasons;
        Lines calls;
    };
    const Row rows[] = {
        {"idle", {CallState(0x1)}, {0x1}, kReleased},
        {"busy", {CallState(0x200), CallState(0x40)}, {0x40}, kHangup},
        {"special information", {CallState(0x80)}, {0x80}, kHangup},
        {"disconnected", {CallState(0x100), CallState(0x4000)}, {0x4000}, kHangup},
        {"an owner's state", {CallState(0x100, kStandInCall, 4)}, {0x4000}, kHangup},
        {"a monitor's idle", {CallState(0x1, kStandInCall, 2)}, {0x4000}, kReleased},
        {"the line closed", {LineClose()}, {0x4000}, {}},
        {"the line out of service", {DeviceState(0x80)}, {0x4000}, kHangup},
        {"the line in maintenance, retold", {DeviceState(0x40000, 8, 0x100)}, {0x4000}, kHangup},
        {"another call's states", {CallState(0x1, kStandInOtherCall), CallState(0x40, kStandInOtherCall)}, {}, {}},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        service.Plan("lineMakeCall", kStandInAsync, 0, row.events);
        EXPECT_TRUE(Dial("5551234"));
        service.Transcript();
        Pump();
        EXPECT_EQ(row.reasons, Hangups());
        EXPECT_EQ(row.calls, service.Transcript());
        Telephony_HangupCall(host, 0x4000);
        service.Transcript();
        Hangups().clear();
    }
}

// The line closes while the first piece waits for a reply that never
// comes: the host hears of it, the wait ends with 1, which passes for a
// request id, so the piece goes again on the closed line and that fails.
TEST_F(TelephonyTest, ALineClosedDuringTheWaitForAReply)
{
    Register();
    service.Plan("lineMakeCall", kStandInAsync, kStandInNever, {LineClose()});
    EXPECT_FALSE(Dial("5551234", {{1162, MB_OK, IDOK}}));
    std::string again = MakeCall("5551234");
    again.replace(again.find(" 11 "), 4, " 0 ");
    EXPECT_EQ((kDialPreamble + Lines{MakeCall("5551234"), again}), service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
}

TEST_F(TelephonyTest, ASecondDialWhileACallIsUnderWayIsRefused)
{
    Register();
    EXPECT_TRUE(Dial("5551234"));
    service.Transcript();
    EXPECT_FALSE(Dial("666", {{1174, MB_OK, IDOK}}));
    EXPECT_EQ(kVerify + Lines{kVerify[0]}, service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
    EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, nullptr, nullptr));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
}

// The wait for dial tone after a piece gives up once more than 30000 ms have
// passed: the clock read at its start and after each message handled. With
// no hang-up in between, the dial fails in silence.
TEST_F(TelephonyTest, TheWaitForACallStateEndsJustPastThirtySeconds)
{
    struct {
        DWORD step, reads;
    } const rows[] = {{10000, 5}, {29999, 3}, {30000, 3}, {30001, 2}, {15001, 3}};
    Register();
    // After a call that went idle, the hang-up's own wait for idle sees the
    // state it waits for at once, and reads the clock once.
    EXPECT_TRUE(Dial("5"));
    Telephony_HangupCall(host, 0x4000);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.step);
        Pump();
        service.Transcript();
        Hangups().clear();
        FakeClock::step = row.step;
        FakeClock::reads = 0;
        EXPECT_FALSE(Dial("555?1234"));
        EXPECT_EQ(row.reads + 1, FakeClock::reads);
        EXPECT_EQ((kDialPreamble + Lines{MakeCall("555;"), kStatus} + kHangup), service.Transcript());
        EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
    }
}

// With no box to answer (the parent gone), an unavailable line is tried
// again a bounded number of times, not for ever.
TEST_F(TelephonyTest, AnUnavailableLineIsRetriedABoundedNumberOfTimesWithoutABox)
{
    Register();
    HWND gone = CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    for (int i = 0; i < 12; ++i)
        service.Plan("lineOpen", kUnavailable);
    MessageBoxDriver driver;
    EXPECT_EQ(1u, Telephony_VerifyUsableLine(gone, 0));
    EXPECT_EQ(Lines(kVerify.begin(), kVerify.begin() + 2) + Lines(9, kVerify[2]), service.Transcript());
}
}
