// The telephony tests' fixture: the stand-in service handed to the library,
// a host window that records the hang-up message, the library's clock under
// the test's hand, and the transcript as a table of lines.
#pragma once
#include "import_patch.h"
#include "message_box_driver.h"
#include "qz_test.h"
#include "tapi_standin.h"
#include <string>
#include <vector>

typedef std::vector<std::string> Lines;
Lines operator+(Lines a, const Lines &b);

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

// A line device: voice, calls, these dial capabilities, partial dialling
// (unless `addrCaps` says otherwise), calls possible now.
StandInDevice Line(DWORD devCaps = 0, DWORD addrCaps = 0x10000);

// The library's tick count, read through its import: it starts just below
// the wrap and moves on `step` ms at each read, so no wait takes real time.
struct FakeClock {
    static DWORD now, step, reads;
    static DWORD WINAPI Read();
};

// A message box the library is to show, with the application title as its
// caption, and the button pressed.
struct Box {
    UINT id;
    UINT style;
    int answer;
};

// The service calls a usable-line check makes, and those of a dial up to
// its first piece.
extern const Lines kVerify, kDialPreamble, kHangup;
std::string MakeCall(const std::string &piece, const std::string &name = "");

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
    // Dials on device 0 while exactly `boxes` show, in order.
    BOOL Dial(const char *number, std::vector<Box> boxes = {}, LONG device = 0, HWND window = nullptr);
    // Handles every message waiting, the stand-in's events among them.
    static void Pump();
    // A resource string of the library in force.
    static std::string Text(UINT id);
    static std::vector<LPARAM> &Hangups();

    ImportPatch clock{LibraryModule(), "kernel32.dll", "GetTickCount", reinterpret_cast<void *>(&FakeClock::Read)};
    StandIn service;
    HWND host = nullptr;
};
