// Registration with the service, the device count, the wrappers, the service's
// errors as messages, and telephony switching itself off.
#include "telephony_fixture.h"

namespace {
TEST_F(TelephonyTest, RegistersOnceAndCountsDevicesAsTheyAreCreated)
{
    service.SetDevice(1, Line());
    TelephonyClientStart(host);
    TelephonyClientStart(host);
    EXPECT_EQ(1u, IsTelephonyEnabled());
    EXPECT_EQ(2u, Telephony_GetNumDevices());
    EXPECT_EQ(Lines{"lineInitialize '" + Text(1) + "'"}, service.Transcript());
    // Devices 0 and 1 are known; a new one at, below, one past and beyond
    // the last, announced directly or by a re-initialisation.
    const struct {
        StandInEvent event;
        DWORD devices;
    } steps[] = {
        {LineCreate(1), 2}, {LineCreate(0), 2}, {LineCreate(2), 3}, {LineCreate(5), 6}, {LineCreate(4), 6},
        {DeviceState(0x40000, 0x13, 5), 6}, {DeviceState(0x40000, 0x13, 6), 7},
        {DeviceState(0x40000, 0x13, 9), 10}, {DeviceState(0x40000, 0x12, 20), 10},
    };
    for (const auto &step : steps) {
        service.Post({step.event});
        Pump();
        EXPECT_EQ(step.devices, Telephony_GetNumDevices()) << step.event.param1 << " " << step.event.param3;
    }
    // A request to start over ends the registration until the next start.
    service.Post({DeviceState(0x40000, 0)});
    Pump();
    TelephonyClientStart(host);
    EXPECT_EQ((Lines{"lineShutdown a0", "lineInitialize '" + Text(1) + "'"}), service.Transcript());
}

TEST_F(TelephonyTest, TheWrappersPutTheLibrarysRegistrationInPlaceOfTheCallers)
{
    Register();
    DWORD version = 0;
    service.Plan("lineGetDevConfig", kFailed);
    const LONG results[] = {
        Telephony_lineGetTranslateCaps(0x55, 0x10004, nullptr),
        Telephony_lineSetCurrentLocation(0x55, 3),
        Telephony_lineNegotiateAPIVersion(0x55, 0, 0x10003, 0x10004, &version, nullptr),
        Telephony_lineTranslateDialog(0, 0x10004, host, "555"),
        Telephony_lineClose(0x55, 0x11),
        Telephony_lineGetCountry(0x55, 49, 0x10004, nullptr),
        Telephony_lineSetDevConfig(0x55, 0, nullptr, 8, "comm/datamodem"),
        Telephony_lineGetDevConfig(0x55, 0, nullptr, "comm"),
    };
    EXPECT_EQ((std::vector<LONG>{0, 0, 0, 0, 0, 0, 0, kFailed}), std::vector<LONG>(results, results + 8));
    EXPECT_EQ(0x10004u, version);
    const Lines expected = {"lineGetTranslateCaps a0 10004", "lineSetCurrentLocation a0 3",
                            "lineNegotiateAPIVersion a0 0 10003 10004", "lineTranslateDialog a0 0 10004 555",
                            "lineClose 11", "lineGetCountry 49 10004", "lineSetDevConfig 0 8 'comm/datamodem'",
                            "lineGetDevConfig 0 'comm'"};
    EXPECT_EQ(expected, service.Transcript());

    // The legacy version: agreed, refused at once, and refused only on a
    // repeat, which gives the window handle back.
    EXPECT_EQ(0x10004u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    service.Plan("lineNegotiateAPIVersion", LONG(0x8000000C));
    EXPECT_EQ(0u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    service.Plan("lineNegotiateAPIVersion", kUnavailable);
    service.Plan("lineNegotiateAPIVersion", LONG(0x8000000C));
    MessageBoxDriver boxes;
    ExpectBoxes(boxes, {{1163, MB_RETRYCANCEL, IDRETRY}});
    EXPECT_EQ(DWORD(reinterpret_cast<DWORD_PTR>(host)), Telephony_lineNegotiateLegacyAPIVersion(host, 0));
}

// Each service error as the user meets it when a line is checked: the
// message, its buttons, the answer, the verdict and what the library asked
// the service after the failed open.
TEST_F(TelephonyTest, EachServiceErrorBecomesItsMessage)
{
    const Lines kTranslate = {"lineTranslateDialog a0 0 10004 null"};
    const struct {
        LONG error;
        Boxes boxes;
        DWORD verdict;
        Lines after;
    } rows[] = {
        {LONG(0x8000000E), {{1158, MB_OKCANCEL, IDOK}}, 1, kTranslate},
        {LONG(0x8000001E), {{1158, MB_OKCANCEL, IDCANCEL}}, 1, {}},
        {LONG(0x8000002D), {{1158, MB_OKCANCEL, IDOK}}, 1, kTranslate},
        {LONG(0x80000043), {{1159, MB_OK, IDOK}}, 1, {}},
        {LONG(0x80000044), {{1161, MB_OK, IDOK}}, 1, {}},
        {kFailed, {{1162, MB_OK, IDOK}}, 1, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDCANCEL}}, 1, {}},
        {kUnavailable, {{1163, MB_RETRYCANCEL, IDRETRY}}, 0, {kVerify[2], kVerify[3], kVerify[4]}},
        {LONG(0x80000056), {{1160, MB_OK, IDOK}}, 1, {}},
        {LONG(0x80000099), {{1162, MB_OK, IDOK}}, 1, {}},
        {LONG(0x80000052), {}, 1, {"lineShutdown a0"}},  // start over: no word
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.error);
        Register();
        service.Plan("lineOpen", row.error);
        MessageBoxDriver boxes;
        ExpectBoxes(boxes, row.boxes);
        EXPECT_EQ(row.verdict, Telephony_VerifyUsableLine(host, 0));
        EXPECT_EQ(First(kVerify, 3) + row.after, service.Transcript());
    }
    // With no box to answer (the parent gone) an unavailable line is tried
    // again eight times, not for ever.
    Register();
    HWND gone = CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    for (int i = 0; i < 12; ++i)
        service.Plan("lineOpen", kUnavailable);
    MessageBoxDriver boxes;
    EXPECT_EQ(1u, Telephony_VerifyUsableLine(gone, 0));
    EXPECT_EQ(First(kVerify, 2) + Lines(9, kVerify[2]), service.Transcript());
}

TEST_F(TelephonyTest, AFailedStartSwitchesTelephonyOffInSilence)
{
    for (DWORD error : {0x80000043u, 0x80000042u, 0x80000048u, 0u}) {
        SCOPED_TRACE(error);
        // The last library lacks one entry point and is never called.
        StandIn library = Load(error ? "tapi_standin" : "tapi_lacking");
        Telephony_Initialize(library.module);
        service.Transcript();
        library.Plan("lineInitialize", LONG(error));
        EXPECT_EQ(1u, IsTelephonyEnabled());
        MessageBoxDriver boxes;  // strict: no box may show
        TelephonyClientStart(host);
        EXPECT_EQ(0u, IsTelephonyEnabled());
        EXPECT_EQ(error ? Lines{"lineInitialize '" + Text(1) + "'"} : Lines{}, library.Transcript());
    }
    // Off, every service call answers 0 and reaches nothing.
    DWORD version = 7;
    EXPECT_EQ(0, Telephony_lineNegotiateAPIVersion(0, 0, 0x10003, 0x10004, &version, nullptr));
    EXPECT_EQ(0, Telephony_lineGetDevCaps(0, 0, 0x10004, 0, nullptr));
    EXPECT_EQ(0u, Telephony_VerifyUsableLine(host, 0));
    EXPECT_EQ(0u, Telephony_lineNegotiateLegacyAPIVersion(host, 0));
    EXPECT_EQ(TRUE, Telephony_DialNumber(host, -1, 0, "555", nullptr));
    EXPECT_EQ(7u, version);
    EXPECT_EQ(Lines{}, service.Transcript());
}

// The pause pumps messages until 5000 ms have passed by the tick count: at
// 1000 ms a read, the start and five reads; at 5000, the start and one.
TEST_F(TelephonyTest, AServiceBeingRestartedTwiceIsWaitedForOnceThenReported)
{
    for (DWORD step : {1000u, 4999u, 5000u}) {
        SCOPED_TRACE(step);
        Telephony_Initialize(Load("tapi_standin").module);
        service.Plan("lineInitialize", LONG(0x80000052));
        service.Plan("lineInitialize", LONG(0x80000052));
        MessageBoxDriver boxes;
        // This box has the title as its text and the message as its caption.
        boxes.Expect(Text(1), MB_OK, IDOK, Text(1156).c_str());
        FakeClock::step = step;
        FakeClock::reads = 0;
        TelephonyClientStart(host);
        EXPECT_EQ(step == 1000 ? 6u : step == 4999 ? 3u : 2u, FakeClock::reads - 1);  // and the busy cursor's
        EXPECT_EQ(0u, IsTelephonyEnabled());
        EXPECT_EQ(Lines(2, "lineInitialize '" + Text(1) + "'"), service.Transcript());
    }
}

// Until the client start binds the service, a dial is told there is no line
// or that it is unusable; a library handed over is bound at the next start.
TEST_F(TelephonyTest, ALibraryIsBoundAtTheClientStartAndAgainWhenReplaced)
{
    for (int replaced = 0; replaced < 2; ++replaced) {
        EXPECT_EQ(1u, IsTelephonyEnabled());
        EXPECT_FALSE(Dial("555", {{1153, MB_OK | MB_ICONEXCLAMATION, IDOK}}, -1));
        EXPECT_FALSE(Dial("555", {{1165, MB_OK, IDOK}}));
        EXPECT_EQ(Lines{}, service.Transcript());
        Register();
        EXPECT_TRUE(Dial("555"));
        EXPECT_EQ(kDialPreamble + Lines{MakeCall("555")}, service.Transcript());
        Telephony_Initialize(Load("tapi_standin").module);
        EXPECT_EQ(kHangup + Lines{"lineShutdown a0"}, service.Transcript());
        EXPECT_EQ(Reasons{0x4000}, hangups);
        hangups.clear();
    }
}

// Attach binds the service by name: Wine's own answers here. Without one
// the library still loads, with telephony off: the ctest "telephony_missing"
// runs the same probe with the service disabled.
TEST(TelephonyAttach, AServiceFoundAtAttachSwitchesTelephonyOn)
{
    EXPECT_EQ(1u, RunChild("telephony_probe.exe"));
}
}
