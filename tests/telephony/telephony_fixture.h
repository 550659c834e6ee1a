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
typedef std::vector<LPARAM> Reasons;
// The reasons of the hang-up messages the test's host window received.
extern Reasons hangups;
Lines operator+(Lines a, const Lines &b);
Lines First(const Lines &lines, size_t count);

// The library's tick count, read through its import: it starts just below
// the wrap and moves on `step` ms at each read, so no wait takes real time.
struct FakeClock { static DWORD now, step, reads; static DWORD WINAPI Read(); };

// A message box the library is to show, with the application title as its
// caption, and the button pressed.
struct Box { UINT id, style; int answer; };
typedef std::vector<Box> Boxes;

// The service calls of a usable-line check, those of a dial up to its first
// piece, and those of a hang-up; lineMakeCall with its call parameters.
extern const Lines kVerify, kDialPreamble, kHangup;
extern const std::string kStatus;
std::string MakeCall(const std::string &piece, const std::string &name = "");
const LONG kUnavailable = LONG(0x8000004B), kFailed = LONG(0x80000048);

// Each test starts with the stand-in handed to the library, nothing
// registered and an empty transcript; the hang-up message goes to a window
// of the test.
class TelephonyTest : public ErrorStateTest {
protected:
    void SetUp() override;
    void TearDown() override;
    // Registers with the stand-in and forgets that part of the transcript.
    void Register();
    // Dials while exactly `boxes` show, in order.
    BOOL Dial(const char *number, const Boxes &boxes = {}, LONG device = 0, const char *name = nullptr);
    static void ExpectBoxes(MessageBoxDriver &driver, const Boxes &boxes);
    // Handles every message waiting, the stand-in's events among them.
    static void Pump();
    // The stand-in built into bin/<folder>/.
    static StandIn Load(const char *folder) { return StandIn::Load(ProgramFolder() + folder + "\\tapi32.dll"); }
    // A resource string of the library in force.
    static std::string Text(UINT id);

    ImportPatch clock{LibraryModule(), "kernel32.dll", "GetTickCount", reinterpret_cast<void *>(&FakeClock::Read)};
    StandIn service;
    HWND host = nullptr;
};
