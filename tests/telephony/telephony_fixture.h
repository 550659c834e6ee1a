// The telephony tests' fixture: the stand-in service handed to the library,
// a host window that records the hang-up message, and the transcript as a
// table of lines.
#pragma once
#include "message_box_driver.h"
#include "qz_test.h"
#include "tapi_standin.h"
#include <string>
#include <vector>

typedef std::vector<std::string> Lines;

// The stand-in's extra exports, from the loaded "tapi32.dll".
struct StandIn {
    HMODULE module = nullptr;
    StandInResetProc Reset = nullptr;
    StandInSetDeviceProc SetDevice = nullptr;
    StandInPlanProc PlanProc = nullptr;
    StandInPostProc PostProc = nullptr;
    StandInGrowOnceProc GrowOnce = nullptr;
    StandInTakeTranscriptProc TakeTranscriptProc = nullptr;

    // Loads bin/<folder>/tapi32.dll; another reference each time.
    static StandIn Load(const char *folder);
    void Plan(const char *function, LONG result, LONG reply = 0, std::vector<StandInEvent> events = {}) const
    {
        PlanProc(function, result, reply, events.data(), static_cast<DWORD>(events.size()));
    }
    void Post(std::vector<StandInEvent> events) const
    {
        PostProc(events.data(), static_cast<DWORD>(events.size()));
    }
    Lines Transcript() const;
};

// Events, by name.
StandInEvent CallState(DWORD state, DWORD target = kStandInCall, DWORD privilege = 0);
StandInEvent DeviceState(DWORD state, DWORD detail = 0, DWORD further = 0);
StandInEvent LineClose();
StandInEvent LineCreate(DWORD device);

// Each test starts with the stand-in handed to the library, nothing
// registered and an empty transcript; the hang-up message goes to a window
// of the test.
class TelephonyTest : public ErrorStateTest {
protected:
    static const UINT kHangupMessage = WM_APP + 5;
    void SetUp() override;
    void TearDown() override;
    // Registers with the stand-in and forgets that part of the transcript.
    void Register();
    // Handles every message waiting, the stand-in's events among them.
    static void Pump();
    // A resource string of the library in force.
    static std::string Text(UINT id);
    static std::vector<LPARAM> &Hangups();

    StandIn service;
    HWND host = nullptr;
};
