// The usable-line verdicts, dialling piece by piece, and hang-up, each
// compared with the service calls the stand-in saw and the boxes shown.
#include "telephony_fixture.h"

namespace {
// Each verdict as the check returns it, with what it asks the service, and
// as a dial shows it.
TEST_F(TelephonyTest, EachVerdictAndItsMessageThroughADial)
{
    const struct {
        StandInDevice device;
        const char *failing;  // a service call planned to fail, or null
        LONG error;
        DWORD verdict;
        UINT message;
        size_t calls;  // of the check's five
    } rows[] = {
        {Line(), nullptr, 0, 0, 0, 5},
        {{0, 1, 8, 0, 0, 2}, nullptr, 0, 1, 1165, 1},         // no version in common
        {{0x10004, 2, 8, 0, 0, 2}, nullptr, 0, 2, 1166, 2},   // no voice
        {{0x10004, 1, 0, 0, 0, 2}, nullptr, 0, 4, 1167, 2},   // cannot make calls
        {Line(), "lineOpen", LONG(0x80000001), 5, 1168, 3},   // in use elsewhere
        {{0x10004, 1, 8, 0, 0, 0}, nullptr, 0, 6, 1169, 5},   // cannot call now
        {Line(), "lineGetDevCaps", kFailed, 1, 1165, 2},
        {Line(), "lineGetAddressStatus", kFailed, 1, 1165, 5},
    };
    Register();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.verdict);
        service.SetDevice(0, row.device);
        for (int dial = 0; dial < 2; ++dial) {
            if (row.failing)
                service.Plan(row.failing, row.error);
            if (!dial) {
                EXPECT_EQ(row.verdict, Telephony_VerifyUsableLine(host, 0));
            } else if (row.verdict) {
                EXPECT_FALSE(Dial("555", {{row.message, MB_OK, IDOK}}));
            }
            EXPECT_EQ((dial && !row.verdict) ? Lines{} : First(kVerify, row.calls), service.Transcript());
        }
    }
    EXPECT_EQ(Reasons{}, hangups);
    // Records too small are read again at the size the service needs.
    service.GrowOnce("lineGetDevCaps");
    service.GrowOnce("lineGetAddressStatus");
    EXPECT_EQ(0u, Telephony_VerifyUsableLine(host, 0));
    EXPECT_EQ((Lines{kVerify[0], kVerify[1], "lineGetDevCaps a0 0 10004 0 1376", kVerify[2], kVerify[3],
                     "lineGetAddressStatus 11 0 1188", kVerify[4]}),
              service.Transcript());
}

// Each stop character on a line that can do it and on one that can do all the
// others; a cancel; refusals; no partial dialling. Each ends with a hang-up.
TEST_F(TelephonyTest, EachStopCharacterAsksWhereTheLineCanDoIt)
{
    const Lines kAsked = Lines{MakeCall("555;", "Ann"), kStatus, kStatus, "lineDial c0 '1' 0"} + kHangup;
    const auto whole = [](const char *number) { return Lines{MakeCall(number, "Ann")} + kHangup; };
    const struct {
        const char *number;
        StandInDevice line;
        std::vector<LONG> refusals;  // the first pieces' replies
        Boxes boxes;
        BOOL result;
        Lines calls;  // after the preamble
    } rows[] = {
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
        // next; an empty piece refused in turn ends the dial with RV_Retry.
        {"555W1", Line(), {LONG(0x80000009)}, {}, 1, Lines{MakeCall("555W1", "Ann")} + whole("")},
        {"555@1", Line(), {LONG(0x8000000B), LONG(0x80000008)}, {}, 0, Lines{MakeCall("555@1", "Ann")} + whole("")},
        {"", Line(), {}, {}, 1, {"lineClose 11"}},
    };
    Register();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.number + std::to_string(row.line.devCapFlags));
        service.Reset();
        service.SetDevice(0, row.line);
        for (LONG refusal : row.refusals)
            service.Plan("lineMakeCall", kStandInAsync, refusal);
        service.Plan("lineMakeCall", kStandInAsync, 0, {CallState(0x200)});
        EXPECT_EQ(row.result, Dial(row.number, row.boxes, 0, "Ann"));
        EXPECT_EQ(row.refusals.size() == 2 ? RV_Retry : RV_Success, OSErrorGetErrorInfo()->errorCode);
        OSErrorClearError();
        Telephony_HangupCall(host, 0x4000);
        EXPECT_EQ(kDialPreamble + row.calls, service.Transcript());
        EXPECT_EQ(Reasons{0x4000}, hangups);
        hangups.clear();
    }
}

// The open of the dialling line: in use elsewhere, a service error, and the
// unavailable line given up or retried. A failed open tells the host.
TEST_F(TelephonyTest, EachOpenFailureAndItsMessages)
{
    const struct {
        LONG error;
        Boxes boxes;
        BOOL result;
        Lines calls;  // after the failed open
    } rows[] = {
        {LONG(0x80000001), {{1175, MB_OK, IDOK}}, 0, {}},
        {LONG(0x80000043), {{1159, MB_OK, IDOK}, {1176, MB_OK, IDOK}}, 0, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDCANCEL}, {1176, MB_OK, IDOK}}, 0, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDRETRY}}, 1,
         Lines{kDialPreamble[6], kDialPreamble[7], kDialPreamble[8], MakeCall("5")} + kHangup},
    };
    Register();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.error);
        service.Plan("lineOpen", 0);  // the check's own open
        service.Plan("lineOpen", row.error);
        EXPECT_EQ(row.result, Dial("5", row.boxes));
        Telephony_HangupCall(host, 0x4000);
        EXPECT_EQ(First(kDialPreamble, 7) + row.calls, service.Transcript());
        EXPECT_EQ(Reasons{0x4000}, hangups);
        hangups.clear();
    }
}

// How a call under way ends: by the service's events, which reach the host
// with their reason, or by a hang-up, through each branch of the drop and
// the releases after it by what the service answers.
TEST_F(TelephonyTest, EachWayACallEnds)
{
    const std::string kDrop = "lineDrop c0 0", kFree = "lineDeallocateCall c0";
    const Lines kReleased = {kStatus, kFree, "lineClose 11"};
    const struct {
        std::vector<StandInEvent> events;  // after the call is made
        const char *function;              // or a service call planned for the hang-up
        LONG result, reply;
        Boxes boxes;
        Reasons reasons;
        Lines calls;
    } rows[] = {
        {{CallState(0x1)}, "", 0, 0, {}, {0x1}, kReleased},
        {{CallState(0x200), CallState(0x40)}, "", 0, 0, {}, {0x40}, kHangup},
        {{CallState(0x80)}, "", 0, 0, {}, {0x80}, kHangup},
        {{CallState(0x100), CallState(0x4000)}, "", 0, 0, {}, {0x4000}, kHangup},
        {{CallState(0x100, kStandInCall, 4)}, "", 0, 0, {}, {0x4000}, kHangup},  // an owner's state
        {{CallState(0x1, kStandInCall, 2)}, "", 0, 0, {}, {0x4000}, kReleased},  // a monitor's
        {{LineClose()}, "", 0, 0, {}, {0x4000}, {}},
        {{DeviceState(0x80)}, "", 0, 0, {}, {0x4000}, kHangup},
        {{DeviceState(0x40000, 8, 0x100)}, "", 0, 0, {}, {0x4000}, kHangup},
        {{CallState(0x1, kStandInOtherCall), CallState(0x40, kStandInOtherCall)}, "", 0, 0, {}, {0x4000}, kHangup},
        {{}, "lineDrop", kStandInAsync, 2, {}, {0x4000}, kHangup},
        {{}, "lineDrop", kStandInAsync, LONG(0x8000001C), {}, {0x4000}, kHangup},
        {{}, "lineDrop", kStandInAsync, kFailed, {{1162, MB_OK, IDOK}}, {0x4000}, kHangup},
        {{}, "lineDrop", kStandInAsync, kUnavailable, {{1163, MB_RETRYCANCEL, IDRETRY}}, {0x4000},
         {kStatus, kDrop, kDrop, kFree, "lineClose 11"}},
        {{}, "lineDrop", kFailed, 0, {{1162, MB_OK, IDOK}}, {0x4000}, kHangup},
        {{}, "lineDeallocateCall", kUnavailable, 0, {{1163, MB_RETRYCANCEL, IDRETRY}}, {0x4000},
         {kStatus, kDrop, kFree, kFree, "lineClose 11"}},
        {{}, "lineClose", LONG(0x80000044), 0, {{1161, MB_OK, IDOK}}, {0x4000}, kHangup},
        {{}, "lineClose", kUnavailable, 0, {{1163, MB_RETRYCANCEL, IDCANCEL}}, {0x4000}, kHangup},
    };
    Register();
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.function) + std::to_string(&row - rows));
        service.Plan("lineMakeCall", kStandInAsync, 0, row.events);
        EXPECT_TRUE(Dial("5"));
        service.Transcript();
        Pump();
        if (*row.function)
            service.Plan(row.function, row.result, row.reply, {CallState(1)});
        {
            MessageBoxDriver driver;
            ExpectBoxes(driver, row.boxes);
            EXPECT_TRUE(Telephony_HangupCall(host, 0x4000));
        }
        Pump();  // the idle state may come after the wait for it
        EXPECT_EQ(row.reasons, hangups);
        EXPECT_EQ(row.calls, service.Transcript());
        hangups.clear();
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
        ExpectBoxes(driver, {{1162, MB_OK, IDOK}});
        EXPECT_FALSE(Telephony_HangupCall(host, 0x4000));
    }
    EXPECT_EQ((Lines{kStatus, "lineShutdown a0"}), service.Transcript());
    Register();
    EXPECT_TRUE(Dial("5"));
    EXPECT_TRUE(Telephony_HangupCall(host, 0x40));
    EXPECT_EQ(kDialPreamble + Lines{MakeCall("5")} + kHangup, service.Transcript());
    EXPECT_EQ(Reasons{0x40}, hangups);
}

// The line closing during the wait for a reply ends it with 1, a request id
// to the dial, so the piece goes again and fails; a second dial, a null one.
TEST_F(TelephonyTest, ALineClosedDuringTheWaitForAReplyAndDialsRefused)
{
    Register();
    service.Plan("lineMakeCall", kStandInAsync, kStandInNever, {LineClose()});
    EXPECT_FALSE(Dial("5551234", {{1162, MB_OK, IDOK}}));
    std::string again = MakeCall("5551234");
    again.replace(again.find(" 11 "), 4, " 0 ");
    EXPECT_EQ((kDialPreamble + Lines{MakeCall("5551234"), again}), service.Transcript());
    EXPECT_EQ(Reasons{0x4000}, hangups);
    EXPECT_TRUE(Dial("5551234"));
    service.Transcript();
    EXPECT_FALSE(Dial("666", {{1174, MB_OK, IDOK}}));
    EXPECT_EQ(kVerify + Lines{kVerify[0]}, service.Transcript());
    EXPECT_EQ(Reasons{0x4000}, hangups);
    EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, nullptr, nullptr));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
}

// The wait for dial tone after a piece gives up once more than 30000 ms have
// passed: the clock read at its start and after each message handled, and
// the dial fails in silence.
TEST_F(TelephonyTest, TheWaitForACallStateEndsJustPastThirtySeconds)
{
    const struct {
        DWORD step, reads;
    } rows[] = {{10000, 5}, {29999, 3}, {30000, 3}, {30001, 2}, {15001, 3}};
    Register();
    // After a call that went idle, the hang-up's own wait for idle sees the
    // state it waits for at once, and reads the clock once.
    EXPECT_TRUE(Dial("5"));
    Telephony_HangupCall(host, 0x4000);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.step);
        Pump();
        service.Transcript();
        hangups.clear();
        FakeClock::step = row.step;
        FakeClock::reads = 0;
        EXPECT_FALSE(Dial("555?1234"));
        EXPECT_EQ(row.reads + 1, FakeClock::reads);
        EXPECT_EQ((kDialPreamble + Lines{MakeCall("555;"), kStatus} + kHangup), service.Transcript());
        EXPECT_EQ(Reasons{0x4000}, hangups);
    }
}
}
