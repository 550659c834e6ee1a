// The usable-line verdicts, dialling piece by piece, and hang-up, each
// compared with the service calls the stand-in saw.
#include "telephony_fixture.h"
#include <cstdlib>

namespace {
// The call-state wait's limit, shortened for this program (read once, at
// the first wait).
const bool kShortWait = SetEnvironmentVariableA("QZ_TELEPHONY_CALL_WAIT_MS", "400");

const StandInDevice kUsable = {0x10004, 1, 8, 0, 0x10000, 2};

const char *const kVerify[] = {
    "lineNegotiateAPIVersion a0 0 10004 10004", "lineGetDevCaps a0 0 10004 0 1276",
    "lineOpen a0 0 10004 0 1 10 null",          "lineGetAddressStatus 11 0 1088",
    "lineClose 11",
};

// What a dial asks the service before its first piece.
Lines DialPreamble()
{
    Lines lines(std::begin(kVerify), std::end(kVerify));
    lines.insert(lines.end(), {"lineNegotiateAPIVersion a0 0 10004 10004", "lineOpen a0 0 10004 0 1 10 null",
                               "lineGetAddressCaps a0 0 0 10004 0 1252", "lineGetDevCaps a0 0 10004 0 1276"});
    return lines;
}

Lines operator+(Lines a, const Lines &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::string MakeCall(const std::string &piece, const std::string &name = "")
{
    char tail[96];
    snprintf(tail, sizeof tail, " 0 %u '%s' 1 4 2 1 0", static_cast<unsigned>(176 + name.size() + 1),
             name.c_str());
    return "lineMakeCall 11 '" + piece + "'" + tail;
}

const Lines kHangup = {"lineGetCallStatus c0 1080", "lineDrop c0 0", "lineDeallocateCall c0", "lineClose 11"};

TEST_F(TelephonyTest, UsableLineVerdicts)
{
    struct Row {
        const char *what;
        StandInDevice device;
        const char *failing;  // a service call planned to fail, or null
        LONG error;
        DWORD verdict;
        size_t calls;         // how many of the check's calls are made
    };
    const Row rows[] = {
        {"usable", kUsable, nullptr, 0, 0, 5},
        {"no version in common", {0, 1, 8, 0, 0, 2}, nullptr, 0, 1, 1},
        {"no voice", {0x10004, 2, 8, 0, 0, 2}, nullptr, 0, 2, 2},
        {"cannot make calls", {0x10004, 1, 0, 0, 0, 2}, nullptr, 0, 4, 2},
        {"in use elsewhere", kUsable, "lineOpen", LONG(0x80000001), 5, 3},
        {"cannot call now", {0x10004, 1, 8, 0, 0, 0}, nullptr, 0, 6, 5},
        {"capabilities unreadable", kUsable, "lineGetDevCaps", LONG(0x80000048), 1, 2},
        {"address status unreadable", kUsable, "lineGetAddressStatus", LONG(0x80000048), 1, 4},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        service.SetDevice(0, &row.device);
        if (row.failing)
            service.Plan(row.failing, row.error);
        EXPECT_EQ(row.verdict, Telephony_VerifyUsableLine(host, 0));
        Lines expected(std::begin(kVerify), std::begin(kVerify) + row.calls);
        if (row.failing && std::string(row.failing) == "lineGetAddressStatus")
            expected.push_back("lineClose 11");
        EXPECT_EQ(expected, service.Transcript());
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

TEST_F(TelephonyTest, APromptDialsTheFirstPieceAsksThenDialsTheRest)
{
    Register();
    service.Plan("lineMakeCall", kStandInAsync, 0, {CallState(0x200)});
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1173), MB_OKCANCEL, IDOK, Text(1).c_str());
        EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "555?1234", "Ann"));
    }
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("555;", "Ann"), "lineGetCallStatus c0 1080",
                                     "lineGetCallStatus c0 1080", "lineDial c0 '1234' 0"}),
              service.Transcript());
    EXPECT_TRUE(Telephony_HangupCall(host, 0x4000));
    EXPECT_EQ(kHangup, service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
}

TEST_F(TelephonyTest, DialToneIsWaitedForWhereTheLineCanAndRefusedWhereItCannot)
{
    StandInDevice dialTone = kUsable;
    dialTone.devCapFlags = 0x100;
    service.SetDevice(0, &dialTone);
    Register();
    service.Plan("lineMakeCall", kStandInAsync, 0, {CallState(0x8)});
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1171), MB_OKCANCEL, IDOK, Text(1).c_str());
        EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "555W1234", nullptr));
    }
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("555;"), "lineGetCallStatus c0 1080", "lineGetCallStatus c0 1080",
                                     "lineDial c0 '1234' 0"}),
              service.Transcript());
    Telephony_HangupCall(host, 0x4000);
    service.Transcript();

    // Without the line's support the number goes out whole; the service's
    // refusal makes W a stop, and the next piece is the empty rest.
    service.SetDevice(0, &kUsable);
    service.Plan("lineMakeCall", kStandInAsync, LONG(0x80000009));
    {
        MessageBoxDriver boxes;
        EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "555W1234", nullptr));
    }
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("555W1234"), MakeCall("")}), service.Transcript());
}

TEST_F(TelephonyTest, AStopOnALineWithoutPartialDiallingReleasesTheLine)
{
    StandInDevice whole = kUsable;
    whole.addrCapFlags = 0;
    service.SetDevice(0, &whole);
    Register();
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1177), MB_OK, IDOK, Text(1).c_str());
        EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, "555?1", nullptr));
    }
    EXPECT_EQ((DialPreamble() + Lines{"lineClose 11"}), service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
}

TEST_F(TelephonyTest, ASecondDialWhileACallIsUnderWayIsRefused)
{
    Register();
    EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "5551234", nullptr));
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("5551234")}), service.Transcript());
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1174), MB_OK, IDOK, Text(1).c_str());
        EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, "666", nullptr));
    }
    EXPECT_EQ((Lines{kVerify[0], kVerify[1], kVerify[2], kVerify[3], kVerify[4], kVerify[0]}),
              service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
}

TEST_F(TelephonyTest, TheCallEndingReachesTheHostWithItsReason)
{
    struct Row {
        const char *what;
        std::vector<StandInEvent> events;
        LPARAM reason;
    };
    const Row rows[] = {
        {"busy", {CallState(0x200), CallState(0x40)}, 0x40},
        {"special information", {CallState(0x80)}, 0x80},
        {"disconnected", {CallState(0x100), CallState(0x4000)}, 0x4000},
        {"an owner's state", {CallState(0x100, kStandInCall, 4)}, 0x4000},
        {"the line closed", {LineClose()}, 0x4000},
        {"the line out of service", {DeviceState(0x80)}, 0x4000},
    };
    Register();
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Hangups().clear();
        service.Plan("lineMakeCall", kStandInAsync, 0, row.events);
        EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "5551234", nullptr));
        service.Transcript();
        Pump();
        EXPECT_EQ(std::vector<LPARAM>{row.reason}, Hangups());
        // A closed line has nothing left to take down.
        EXPECT_EQ(row.events[0].message == 3 ? Lines{} : kHangup, service.Transcript());
    }
}

// The line closes while the first piece waits for a reply that never
// comes: the host hears of it, the wait ends with 1, which passes for a
// request id, so the piece goes again on the closed line and that fails.
TEST_F(TelephonyTest, ALineClosedDuringTheWaitForAReply)
{
    Register();
    service.Plan("lineMakeCall", kStandInAsync, kStandInNever, {LineClose()});
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1162), MB_OK, IDOK, Text(1).c_str());
        EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, "5551234", nullptr));
    }
    std::string again = MakeCall("5551234");
    again.replace(again.find(" 11 "), 4, " 0 ");
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("5551234"), again}), service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
}

TEST_F(TelephonyTest, ACallStateOfAnotherCallIsIgnored)
{
    Register();
    EXPECT_TRUE(Telephony_DialNumber(host, 0, 0, "5551234", nullptr));
    service.Transcript();
    service.Post({CallState(0x1, kStandInOtherCall), CallState(0x40, kStandInOtherCall)});
    Pump();
    EXPECT_EQ(Lines{}, service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
    EXPECT_TRUE(Telephony_HangupCall(host, 0x4000));
    EXPECT_EQ(kHangup, service.Transcript());
}

TEST_F(TelephonyTest, SilenceAfterAPieceTimesTheDialOut)
{
    Register();
    MessageBoxDriver boxes;  // no box: the wait fails in silence
    DWORD start = GetTickCount();
    EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, "555?1234", nullptr));
    EXPECT_GE(GetTickCount() - start, 400u);
    EXPECT_EQ((DialPreamble() + Lines{MakeCall("555;"), "lineGetCallStatus c0 1080"} + kHangup),
              service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
}

TEST_F(TelephonyTest, NoLineChosenAndNothingToHangUp)
{
    Register();
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1153), MB_OK | MB_ICONEXCLAMATION, IDOK, Text(1).c_str());
        EXPECT_FALSE(Telephony_DialNumber(host, -1, 0, "555", nullptr));
    }
    EXPECT_TRUE(Telephony_HangupCall(host, 0x4000));
    EXPECT_EQ(Lines{}, service.Transcript());
    EXPECT_EQ(std::vector<LPARAM>{}, Hangups());
    EXPECT_FALSE(Telephony_DialNumber(host, 0, 0, nullptr, nullptr));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
    OSErrorClearError();
}
}
