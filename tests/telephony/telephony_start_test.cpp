// Registration with the service, the device count, the translation of the
// service's errors into messages, and telephony switching itself off.
#include "telephony_fixture.h"

namespace {
// A dialling line: voice, calls, partial dialling, calls possible now.
const StandInDevice kUsable = {0x10004, 1, 8, 0, 0x10000, 2};

TEST_F(TelephonyTest, RegistersOnceAndCountsDevicesAsTheyAreCreated)
{
    service.SetDevice(1, &kUsable);
    TelephonyClientStart(host);
    TelephonyClientStart(host);
    EXPECT_EQ(1u, IsTelephonyEnabled());
    EXPECT_EQ(2u, Telephony_GetNumDevices());
    EXPECT_EQ(Lines{"lineInitialize '" + Text(1) + "'"}, service.Transcript());

    // Devices 0 and 1 are known; the count follows a new one at, below, one
    // past and beyond the last, announced directly or by a re-initialisation.
    struct {
        StandInEvent event;
        DWORD devices;
    } const steps[] = {
        {LineCreate(1), 2}, {LineCreate(0), 2}, {LineCreate(2), 3}, {LineCreate(5), 6}, {LineCreate(4), 6},
        {DeviceState(0x40000, 0x13, 5), 6}, {DeviceState(0x40000, 0x13, 6), 7},
        {DeviceState(0x40000, 0x13, 9), 10}, {DeviceState(0x40000, 0x12, 20), 10},
    };
    for (const auto &step : steps) {
        service.Post({step.event});
        Pump();
        EXPECT_EQ(step.devices, Telephony_GetNumDevices()) << step.event.param1 << " " << step.event.param3;
    }
    EXPECT_EQ(Lines{}, service.Transcript());
}

TEST_F(TelephonyTest, AReinitialisationRequestEndsTheRegistrationUntilTheNextStart)
{
    Register();
    service.Post({DeviceState(0x40000, 0)});
    Pump();
    EXPECT_EQ(Lines{"lineShutdown a0"}, service.Transcript());
    TelephonyClientStart(host);
    EXPECT_EQ(Lines{"lineInitialize '" + Text(1) + "'"}, service.Transcript());
    EXPECT_EQ(1u, IsTelephonyEnabled());
}

TEST_F(TelephonyTest, TheWrappersPutTheLibrarysRegistrationInPlaceOfTheCallers)
{
    Register();
    DWORD version = 0;
    EXPECT_EQ(0, Telephony_lineGetTranslateCaps(0x55, 0x10004, nullptr));
    EXPECT_EQ(0, Telephony_lineSetCurrentLocation(0x55, 3));
    EXPECT_EQ(0, Telephony_lineNegotiateAPIVersion(0x55, 0, 0x10003, 0x10004, &version, nullptr));
    EXPECT_EQ(0x10004u, version);
    EXPECT_EQ(0, Telephony_lineTranslateDialog(0, 0x10004, host, "555"));
    EXPECT_EQ(0, Telephony_lineClose(0x55, 0x11));
    EXPECT_EQ(0, Telephony_lineGetCountry(0x55, 49, 0x10004, nullptr));
    EXPECT_EQ(0, Telephony_lineSetDevConfig(0x55, 0, nullptr, 8, "comm/datamodem"));
    service.Plan("lineGetDevConfig", static_cast<LONG>(0x80000048));
    EXPECT_EQ(static_cast<LONG>(0x80000048), Telephony_lineGetDevConfig(0x55, 0, nullptr, "comm"));
    const Lines expected = {
        "lineGetTranslateCaps a0 10004",
        "lineSetCurrentLocation a0 3",
        "lineNegotiateAPIVersion a0 0 10003 10004",
        "lineTranslateDialog a0 0 10004 555",
        "lineClose 11",
        "lineGetCountry 49 10004",
        "lineSetDevConfig 0 8 'comm/datamodem'",
        "lineGetDevConfig 0 'comm'",
    };
    EXPECT_EQ(expected, service.Transcript());

    // The legacy version: agreed, refused at once, and refused only on a
    // repeat, which gives the window handle back.
    EXPECT_EQ(0x10004u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    service.Plan("lineNegotiateAPIVersion", static_cast<LONG>(0x8000000C));
    EXPECT_EQ(0u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    service.Plan("lineNegotiateAPIVersion", static_cast<LONG>(0x8000004B));
    service.Plan("lineNegotiateAPIVersion", static_cast<LONG>(0x8000000C));
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(1163), MB_RETRYCANCEL, IDRETRY);
        EXPECT_EQ(static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(host)),
                  Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    }
}

// Each service error as the user meets it when a line is checked: the
// message, its buttons, the answer, the verdict and what the library asked
// the service.
TEST_F(TelephonyTest, EachServiceErrorBecomesItsMessage)
{
    struct Row {
        DWORD error;
        UINT message;
        UINT buttons;
        int answer;
        DWORD verdict;
        Lines after;  // service calls after the failed open
    };
    const Row rows[] = {
        {0x8000000E, 1158, MB_OKCANCEL, IDOK, 1, {"lineTranslateDialog a0 0 10004 null"}},
        {0x8000001E, 1158, MB_OKCANCEL, IDCANCEL, 1, {}},
        {0x8000002D, 1158, MB_OKCANCEL, IDOK, 1, {"lineTranslateDialog a0 0 10004 null"}},
        {0x80000043, 1159, MB_OK, IDOK, 1, {}},
        {0x80000044, 1161, MB_OK, IDOK, 1, {}},
        {0x80000048, 1162, MB_OK, IDOK, 1, {}},
        {0x8000004B, 1163, MB_RETRYCANCEL, IDCANCEL, 1, {}},
        {0x8000004B, 1163, MB_RETRYCANCEL, IDRETRY, 0,
         {"lineOpen a0 0 10004 0 1 10 null", "lineGetAddressStatus 11 0 1088", "lineClose 11"}},
        {0x80000056, 1160, MB_OK, IDOK, 1, {}},
        {0x80000099, 1162, MB_OK, IDOK, 1, {}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.error);
        Register();
        service.Plan("lineOpen", static_cast<LONG>(row.error));
        {
            MessageBoxDriver boxes;
            boxes.Expect(Text(row.message), row.buttons, row.answer, Text(1).c_str());
            EXPECT_EQ(row.verdict, Telephony_VerifyUsableLine(host, 0));
        }
        Lines expected = {"lineNegotiateAPIVersion a0 0 10004 10004", "lineGetDevCaps a0 0 10004 0 1276",
                          "lineOpen a0 0 10004 0 1 10 null"};
        expected.insert(expected.end(), row.after.begin(), row.after.end());
        EXPECT_EQ(expected, service.Transcript());
    }
    // A request to start over takes the registration down without a word.
    service.Plan("lineOpen", static_cast<LONG>(0x80000052));
    EXPECT_EQ(1u, Telephony_VerifyUsableLine(host, 0));
    const Lines expected = {"lineNegotiateAPIVersion a0 0 10004 10004", "lineGetDevCaps a0 0 10004 0 1276",
                            "lineOpen a0 0 10004 0 1 10 null", "lineShutdown a0"};
    EXPECT_EQ(expected, service.Transcript());
}

TEST_F(TelephonyTest, AFailedStartSwitchesTelephonyOffInSilence)
{
    for (DWORD error : {0x80000043u, 0x80000042u, 0x80000048u}) {
        SCOPED_TRACE(error);
        Telephony_Initialize(StandIn::Load("tapi_standin").module);
        service.Plan("lineInitialize", static_cast<LONG>(error));
        MessageBoxDriver boxes;  // strict: no box may show
        TelephonyClientStart(host);
        EXPECT_EQ(0u, IsTelephonyEnabled());
        EXPECT_EQ(Lines{"lineInitialize '" + Text(1) + "'"}, service.Transcript());
    }
    // Off, every service call answers 0 and reaches nothing.
    DWORD version = 7;
    EXPECT_EQ(0, Telephony_lineNegotiateAPIVersion(0, 0, 0x10003, 0x10004, &version, nullptr));
    EXPECT_EQ(0, Telephony_lineGetDevCaps(0, 0, 0x10004, 0, nullptr));
    EXPECT_EQ(0u, Telephony_VerifyUsableLine(host, 0));
    EXPECT_EQ(0u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    EXPECT_EQ(TRUE, Telephony_DialNumber(host, 0, 0, "555", nullptr));
    EXPECT_EQ(7u, version);
    EXPECT_EQ(Lines{}, service.Transcript());
}

// The pause pumps messages until 5000 ms have passed by the tick count:
// at 1000 ms a read, the start and five reads; at 5000, the start and one.
TEST_F(TelephonyTest, AServiceBeingRestartedTwiceIsWaitedForOnceThenReported)
{
    for (DWORD step : {1000u, 4999u, 5000u}) {
        SCOPED_TRACE(step);
        Telephony_Initialize(StandIn::Load("tapi_standin").module);
        service.Plan("lineInitialize", static_cast<LONG>(0x80000052));
        service.Plan("lineInitialize", static_cast<LONG>(0x80000052));
        MessageBoxDriver boxes;
        // This box has the title as its text and the message as its caption.
        boxes.Expect(Text(1), MB_OK, IDOK, Text(1156).c_str());
        FakeClock::step = step;
        FakeClock::reads = 0;
        TelephonyClientStart(host);
        EXPECT_EQ(step == 1000 ? 6u : step == 4999 ? 3u : 2u, FakeClock::reads - 1);  // one is the busy cursor's
        EXPECT_EQ(0u, IsTelephonyEnabled());
        const std::string initialize = "lineInitialize '" + Text(1) + "'";
        EXPECT_EQ((Lines{initialize, initialize}), service.Transcript());
    }
}

// Until the client start binds the service, a dial with no line chosen is
// told so, and one on a line finds the line unusable; a library handed over
// later takes the registration down and is bound at the next start.
TEST_F(TelephonyTest, ALibraryIsBoundAtTheClientStartAndAgainWhenReplaced)
{
    for (int replaced = 0; replaced < 2; ++replaced) {
        SCOPED_TRACE(replaced);
        EXPECT_EQ(1u, IsTelephonyEnabled());
        EXPECT_FALSE(Dial("555", {{1153, MB_OK | MB_ICONEXCLAMATION, IDOK}}, -1));
        EXPECT_FALSE(Dial("555", {{1165, MB_OK, IDOK}}));
        EXPECT_EQ(Lines{}, service.Transcript());
        Register();
        EXPECT_TRUE(Dial("555"));
        EXPECT_EQ(kDialPreamble + Lines{MakeCall("555")}, service.Transcript());
        Telephony_Initialize(StandIn::Load("tapi_standin").module);
        EXPECT_EQ(kHangup + Lines{"lineShutdown a0"}, service.Transcript());
        EXPECT_EQ(std::vector<LPARAM>{0x4000}, Hangups());
        Hangups().clear();
    }
}

TEST_F(TelephonyTest, AServiceLackingOneEntryPointSwitchesTelephonyOff)
{
    StandIn lacking = StandIn::Load("tapi_lacking");
    ASSERT_TRUE(lacking.module);
    Telephony_Initialize(lacking.module);
    EXPECT_EQ(1u, IsTelephonyEnabled());
    TelephonyClientStart(host);
    EXPECT_EQ(0u, IsTelephonyEnabled());
    EXPECT_EQ(Lines{}, lacking.Transcript());
}

// Attach binds the service by name: Wine's own answers here. Without one
// the library still loads, with telephony off: the ctest "telephony_missing"
// runs the same probe with the service disabled.
TEST(TelephonyAttach, AServiceFoundAtAttachSwitchesTelephonyOn)
{
    EXPECT_EQ(1u, RunChild("telephony_probe.exe"));
}
}
