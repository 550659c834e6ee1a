// The scripted stand-in of the telephony service: what a test gives it and
// the names of its extra exports. It is built as its own "tapi32.dll" (in
// bin/tapi_standin/, and a variant without "lineDial" in bin/tapi_lacking/)
// and handed to the library with Telephony_Initialize.
//
// It writes one transcript line per service call with its arguments, and
// delivers its events the way the real service does: it posts them to a
// hidden window of its own on the thread that registered, and calls the
// library's callback only when that thread pumps its messages.
#pragma once
#include <windows.h>

// Where an event's device argument points.
enum StandInTarget : DWORD {
    kStandInLine = 0,      // the open line
    kStandInCall = 1,      // the call made by lineMakeCall
    kStandInOtherCall = 2, // a call the library knows nothing of
    kStandInNoDevice = 3,  // 0
};

struct StandInEvent {
    DWORD message;  // LINE_CALLSTATE, LINE_CLOSE, LINE_LINEDEVSTATE, LINE_CREATE...
    DWORD target;   // StandInTarget
    DWORD_PTR param1, param2, param3;
};

// What a line device says of itself.
struct StandInDevice {
    DWORD apiVersion;       // what lineNegotiateAPIVersion agrees; 0 refuses
    DWORD bearerModes;      // LINEDEVCAPS
    DWORD lineFeatures;
    DWORD devCapFlags;
    DWORD addrCapFlags;     // LINEADDRESSCAPS
    DWORD addressFeatures;  // LINEADDRESSSTATUS
};

// Results of a plan: an asynchronous call hands out a request id when its
// result is kStandInAsync, and its reply never comes when the reply is
// kStandInNever.
const LONG kStandInAsync = 0x7FFFFFFF;
const LONG kStandInNever = 0x7FFFFFFE;

// StandIn_Reset(): no plans, an empty transcript, one usable device.
typedef void(WINAPI *StandInResetProc)(void);
// StandIn_SetDevice(device, record): devices 0.. are numbered in order.
typedef void(WINAPI *StandInSetDeviceProc)(DWORD, const StandInDevice *);
// StandIn_Plan(function, result, reply, events, count): the next call of
// `function` answers `result` (and `reply`), then posts the events.
typedef void(WINAPI *StandInPlanProc)(const char *, LONG, LONG, const StandInEvent *, DWORD);
// StandIn_Post(events, count): unsolicited events, posted now.
typedef void(WINAPI *StandInPostProc)(const StandInEvent *, DWORD);
// StandIn_GrowOnce(function): its next read says it needs 100 bytes more.
typedef void(WINAPI *StandInGrowOnceProc)(const char *);
// StandIn_TakeTranscript(buffer, size): the lines so far, each ended by
// '\n', and forgets them; returns the size needed.
typedef DWORD(WINAPI *StandInTakeTranscriptProc)(char *, DWORD);

// The client side, for a test: the extra exports of a loaded stand-in, its
// transcript as lines, and events by name.
#include <string>
#include <vector>

struct StandIn {
    HMODULE module = nullptr;
    StandInResetProc Reset = nullptr;
    StandInSetDeviceProc SetDeviceProc = nullptr;
    StandInPlanProc PlanProc = nullptr;
    StandInPostProc PostProc = nullptr;
    StandInGrowOnceProc GrowOnce = nullptr;
    StandInTakeTranscriptProc TakeTranscriptProc = nullptr;

    // Loads the stand-in at `path`; another reference each time.
    static StandIn Load(const std::string &path)
    {
        StandIn s;
        s.module = LoadLibraryA(path.c_str());
        auto proc = [&](const char *name) { return reinterpret_cast<void *>(GetProcAddress(s.module, name)); };
        s.Reset = reinterpret_cast<StandInResetProc>(proc("StandIn_Reset"));
        s.SetDeviceProc = reinterpret_cast<StandInSetDeviceProc>(proc("StandIn_SetDevice"));
        s.PlanProc = reinterpret_cast<StandInPlanProc>(proc("StandIn_Plan"));
        s.PostProc = reinterpret_cast<StandInPostProc>(proc("StandIn_Post"));
        s.GrowOnce = reinterpret_cast<StandInGrowOnceProc>(proc("StandIn_GrowOnce"));
        s.TakeTranscriptProc = reinterpret_cast<StandInTakeTranscriptProc>(proc("StandIn_TakeTranscript"));
        return s;
    }
    void SetDevice(DWORD device, StandInDevice record) const { SetDeviceProc(device, &record); }
    void Plan(const char *function, LONG result, LONG reply = 0, std::vector<StandInEvent> events = {}) const
    {
        PlanProc(function, result, reply, events.data(), static_cast<DWORD>(events.size()));
    }
    void Post(std::vector<StandInEvent> events) const { PostProc(events.data(), DWORD(events.size())); }
    std::vector<std::string> Transcript() const
    {
        std::string text(TakeTranscriptProc(nullptr, 0), '\0');
        TakeTranscriptProc(&text[0], static_cast<DWORD>(text.size()));
        std::vector<std::string> lines;
        for (size_t start = 0, end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
            lines.push_back(text.substr(start, end - start));
        return lines;
    }
};

inline StandInEvent CallState(DWORD state, DWORD target = kStandInCall, DWORD privilege = 0)
{
    return {2, target, state, 0, privilege};
}
inline StandInEvent DeviceState(DWORD state, DWORD detail = 0, DWORD further = 0)
{
    return {8, kStandInLine, state, detail, further};
}
inline StandInEvent LineClose() { return {3, kStandInLine, 0, 0, 0}; }
inline StandInEvent LineCreate(DWORD device) { return {19, kStandInNoDevice, device, 0, 0}; }
// A line device: voice, calls, these dial capabilities, partial dialling
// (unless `addrCaps` says otherwise), calls possible now.
inline StandInDevice Line(DWORD devCaps = 0, DWORD addrCaps = 0x10000) { return {0x10004, 1, 8, devCaps, addrCaps, 2}; }
