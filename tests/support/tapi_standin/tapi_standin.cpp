// The scripted stand-in of the telephony service; see ../tapi_standin.h.
#include "../tapi_standin.h"
#include <cstdarg>
#include <cstdio>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {
typedef void(CALLBACK *LineCallback)(DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR);

const DWORD kLineApp = 0xA0, kLine = 0x11, kCall = 0xC0, kOtherCall = 0xC1;
const DWORD kLineReply = 12, kLineCallState = 2;
const DWORD kDialing = 0x20, kIdle = 0x1;
const UINT kDeliver = WM_APP + 17;
DWORD s_openedDevice = 0;

struct Plan {
    LONG result;
    LONG reply;
    std::vector<StandInEvent> events;
};

struct State {
    std::string transcript;
    std::map<std::string, std::deque<Plan>> plans;
    std::set<std::string> growOnce;
    std::vector<StandInDevice> devices;
    std::deque<StandInEvent> pending;
    LineCallback callback = nullptr;
    HWND window = nullptr;
    LONG nextRequest = 1;
    DWORD callState = 0;
} g;

void Note(const char *format, ...)
{
    char line[512];
    va_list args;
    va_start(args, format);
    vsnprintf(line, sizeof line, format, args);
    va_end(args);
    g.transcript += line;
    g.transcript += '\n';
}

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != kDeliver || g.pending.empty())
        return DefWindowProcA(window, message, wParam, lParam);
    StandInEvent event = g.pending.front();
    g.pending.pop_front();
    static const DWORD kDevices[] = {kLine, kCall, kOtherCall, 0};
    DWORD device = kDevices[event.target & 3];
    if (event.message == kLineCallState && device == kCall)
        g.callState = static_cast<DWORD>(event.param1);
    if (g.callback)
        g.callback(device, event.message, 0, event.param1, event.param2, event.param3);
    return 0;
}

void Post(const StandInEvent &event)
{
    g.pending.push_back(event);
    PostMessageA(g.window, kDeliver, 0, 0);
}

// The next plan of `function`, or the default: `result`, a reply of 0.
Plan TakePlan(const char *function, LONG result)
{
    auto &queue = g.plans[function];
    if (queue.empty())
        return Plan{result, 0, {}};
    Plan plan = queue.front();
    queue.pop_front();
    return plan;
}

// A synchronous call: its planned result, then its events.
LONG Sync(const char *function)
{
    Plan plan = TakePlan(function, 0);
    for (const StandInEvent &event : plan.events)
        Post(event);
    return plan.result;
}

// An asynchronous call: a request id and its reply, then its events.
LONG Async(const char *function, std::vector<StandInEvent> defaultEvents = {})
{
    auto &queue = g.plans[function];
    Plan plan = queue.empty() ? Plan{kStandInAsync, 0, defaultEvents} : queue.front();
    if (!queue.empty())
        queue.pop_front();
    if (plan.result != kStandInAsync) {
        for (const StandInEvent &event : plan.events)
            Post(event);
        return plan.result;
    }
    LONG request = g.nextRequest++;
    if (plan.reply != kStandInNever)
        Post(StandInEvent{kLineReply, kStandInNoDevice, static_cast<DWORD_PTR>(request),
                          static_cast<DWORD_PTR>(static_cast<DWORD>(plan.reply)), 0});
    for (const StandInEvent &event : plan.events)
        Post(event);
    return request;
}

const StandInDevice *Device(DWORD device)
{
    return device < g.devices.size() ? &g.devices[device] : nullptr;
}

// Whether a read of `size` bytes must ask for more first.
bool MustGrow(const char *function, DWORD *header)
{
    if (!g.growOnce.erase(function))
        return false;
    header[1] = header[0] + 100;
    header[2] = 12;
    return true;
}

void Fill(DWORD *record, DWORD recordSize)
{
    record[1] = recordSize;
    record[2] = recordSize;
}
}

#define STANDIN_EXPORT extern "C" __declspec(dllexport)

STANDIN_EXPORT void WINAPI StandIn_Reset(void)
{
    g.transcript.clear();
    g.plans.clear();
    g.growOnce.clear();
    g.pending.clear();
    g.devices.assign(1, StandInDevice{0x10004, 1, 8, 0, 0x10000, 2});
    g.callState = 0;
}

STANDIN_EXPORT void WINAPI StandIn_SetDevice(DWORD device, const StandInDevice *record)
{
    if (g.devices.size() <= device)
        g.devices.resize(device + 1, g.devices.empty() ? StandInDevice{} : g.devices[0]);
    g.devices[device] = *record;
}

STANDIN_EXPORT void WINAPI StandIn_Plan(const char *function, LONG result, LONG reply,
                                        const StandInEvent *events, DWORD count)
{
    g.plans[function].push_back(Plan{result, reply, std::vector<StandInEvent>(events, events + count)});
}

STANDIN_EXPORT void WINAPI StandIn_Post(const StandInEvent *events, DWORD count)
{
    for (DWORD i = 0; i < count; ++i)
        Post(events[i]);
}

STANDIN_EXPORT void WINAPI StandIn_GrowOnce(const char *function) { g.growOnce.insert(function); }

STANDIN_EXPORT DWORD WINAPI StandIn_TakeTranscript(char *buffer, DWORD size)
{
    DWORD needed = static_cast<DWORD>(g.transcript.size() + 1);
    if (buffer && size >= needed) {
        memcpy(buffer, g.transcript.c_str(), needed);
        g.transcript.clear();
    }
    return needed;
}

// The service's entry points.

STANDIN_EXPORT LONG WINAPI lineInitialize(DWORD *lineApp, HINSTANCE, LineCallback callback,
                                          const char *appName, DWORD *numDevices)
{
    Note("lineInitialize '%s'", appName ? appName : "");
    if (!g.window || !IsWindow(g.window)) {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = WindowProc;
        windowClass.hInstance = GetModuleHandleA(nullptr);
        windowClass.lpszClassName = "TapiStandInWindow";
        RegisterClassA(&windowClass);
        g.window = CreateWindowA("TapiStandInWindow", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 windowClass.hInstance, nullptr);
    }
    LONG result = Sync("lineInitialize");
    if (result == 0) {
        *lineApp = kLineApp;
        *numDevices = static_cast<DWORD>(g.devices.size());
        g.callback = callback;
    }
    return result;
}

STANDIN_EXPORT LONG WINAPI lineShutdown(DWORD lineApp)
{
    Note("lineShutdown %x", lineApp);
    LONG result = Sync("lineShutdown");
    if (result == 0)
        g.callback = nullptr;
    return result;
}

STANDIN_EXPORT LONG WINAPI lineNegotiateAPIVersion(DWORD lineApp, DWORD device, DWORD low, DWORD high,
                                                   DWORD *version, void *)
{
    Note("lineNegotiateAPIVersion %x %u %x %x", lineApp, device, low, high);
    LONG result = Sync("lineNegotiateAPIVersion");
    const StandInDevice *record = Device(device);
    *version = 0;
    if (result == 0 && (!record || record->apiVersion < low || record->apiVersion == 0))
        result = static_cast<LONG>(0x8000000C);
    if (result == 0)
        *version = record->apiVersion > high ? high : record->apiVersion;
    return result;
}

STANDIN_EXPORT LONG WINAPI lineGetDevCaps(DWORD lineApp, DWORD device, DWORD version, DWORD extension,
                                          DWORD *caps)
{
    Note("lineGetDevCaps %x %u %x %x %u", lineApp, device, version, extension, caps[0]);
    LONG result = Sync("lineGetDevCaps");
    const StandInDevice *record = Device(device);
    if (result || !record || MustGrow("lineGetDevCaps", caps))
        return result;
    Fill(caps, 240);
    caps[13] = record->bearerModes;   // dwBearerModes
    caps[28] = record->devCapFlags;   // dwDevCapFlags
    caps[59] = record->lineFeatures;  // dwLineFeatures
    return 0;
}

STANDIN_EXPORT LONG WINAPI lineGetAddressCaps(DWORD lineApp, DWORD device, DWORD address, DWORD version,
                                              DWORD extension, DWORD *caps)
{
    Note("lineGetAddressCaps %x %u %u %x %x %u", lineApp, device, address, version, extension, caps[0]);
    LONG result = Sync("lineGetAddressCaps");
    const StandInDevice *record = Device(device);
    if (result || !record || MustGrow("lineGetAddressCaps", caps))
        return result;
    Fill(caps, 180);
    caps[26] = record->addrCapFlags;  // dwAddrCapFlags
    return 0;
}

STANDIN_EXPORT LONG WINAPI lineOpen(DWORD lineApp, DWORD device, DWORD *line, DWORD version,
                                    DWORD extension, DWORD_PTR, DWORD privileges, DWORD mediaModes,
                                    const void *params)
{
    Note("lineOpen %x %u %x %x %x %x %s", lineApp, device, version, extension, privileges, mediaModes,
         params ? "params" : "null");
    LONG result = Sync("lineOpen");
    if (result == 0) {
        *line = kLine;
        s_openedDevice = device;
    }
    return result;
}

STANDIN_EXPORT LONG WINAPI lineGetAddressStatus(DWORD line, DWORD address, DWORD *status)
{
    Note("lineGetAddressStatus %x %u %u", line, address, status[0]);
    LONG result = Sync("lineGetAddressStatus");
    if (result || MustGrow("lineGetAddressStatus", status))
        return result;
    Fill(status, 64);
    const StandInDevice *record = Device(s_openedDevice);
    status[7] = record ? record->addressFeatures : 0;  // dwAddressFeatures
    return 0;
}

STANDIN_EXPORT LONG WINAPI lineClose(DWORD line)
{
    Note("lineClose %x", line);
    return Sync("lineClose");
}

STANDIN_EXPORT LONG WINAPI lineMakeCall(DWORD line, DWORD *call, const char *number, DWORD country,
                                        const DWORD *params)
{
    const char *name = params ? reinterpret_cast<const char *>(params) + params[15] : "";
    Note("lineMakeCall %x '%s' %u %u '%s' %x %x %x %x %u", line, number, country, params ? params[0] : 0,
         name, params ? params[1] : 0, params ? params[4] : 0, params ? params[5] : 0,
         params ? params[6] : 0, params ? params[7] : 0);
    if (line != kLine)
        return static_cast<LONG>(0x8000002B); // LINEERR_INVALLINEHANDLE
    *call = kCall;
    g.callState = kDialing;
    return Async("lineMakeCall");
}

#ifndef STANDIN_LACKS_LINEDIAL
STANDIN_EXPORT LONG WINAPI lineDial(DWORD call, const char *number, DWORD country)
{
    Note("lineDial %x '%s' %u", call, number, country);
    return Async("lineDial");
}
#endif

STANDIN_EXPORT LONG WINAPI lineGetCallStatus(DWORD call, DWORD *status)
{
    Note("lineGetCallStatus %x %u", call, status[0]);
    LONG result = Sync("lineGetCallStatus");
    if (result || MustGrow("lineGetCallStatus", status))
        return result;
    Fill(status, 36);
    status[3] = g.callState;
    status[5] = 4;
    // Digits can follow once the call has dial tone, proceeds or is connected.
    status[6] = (g.callState & (0x8 | 0x100 | 0x200)) ? 0x40 : 0;
    return 0;
}

STANDIN_EXPORT LONG WINAPI lineDrop(DWORD call, const char *, DWORD size)
{
    Note("lineDrop %x %u", call, size);
    return Async("lineDrop", {StandInEvent{kLineCallState, kStandInCall, kIdle, 0, 0}});
}

STANDIN_EXPORT LONG WINAPI lineDeallocateCall(DWORD call)
{
    Note("lineDeallocateCall %x", call);
    return Sync("lineDeallocateCall");
}

STANDIN_EXPORT LONG WINAPI lineTranslateDialog(DWORD lineApp, DWORD device, DWORD version, HWND,
                                               const char *address)
{
    Note("lineTranslateDialog %x %u %x %s", lineApp, device, version, address ? address : "null");
    return Sync("lineTranslateDialog");
}

STANDIN_EXPORT LONG WINAPI lineGetTranslateCaps(DWORD lineApp, DWORD version, void *)
{
    Note("lineGetTranslateCaps %x %x", lineApp, version);
    return Sync("lineGetTranslateCaps");
}

STANDIN_EXPORT LONG WINAPI lineSetCurrentLocation(DWORD lineApp, DWORD location)
{
    Note("lineSetCurrentLocation %x %u", lineApp, location);
    return Sync("lineSetCurrentLocation");
}

STANDIN_EXPORT LONG WINAPI lineGetCountry(DWORD country, DWORD version, void *)
{
    Note("lineGetCountry %u %x", country, version);
    return Sync("lineGetCountry");
}

STANDIN_EXPORT LONG WINAPI lineConfigDialogEdit(DWORD device, HWND, const char *deviceClass, const void *,
                                                DWORD size, void *)
{
    Note("lineConfigDialogEdit %u '%s' %u", device, deviceClass ? deviceClass : "", size);
    return Sync("lineConfigDialogEdit");
}

STANDIN_EXPORT LONG WINAPI lineSetDevConfig(DWORD device, const void *, DWORD size, const char *deviceClass)
{
    Note("lineSetDevConfig %u %u '%s'", device, size, deviceClass ? deviceClass : "");
    return Sync("lineSetDevConfig");
}

STANDIN_EXPORT LONG WINAPI lineGetDevConfig(DWORD device, void *, const char *deviceClass)
{
    Note("lineGetDevConfig %u '%s'", device, deviceClass ? deviceClass : "");
    return Sync("lineGetDevConfig");
}

STANDIN_EXPORT LONG WINAPI lineTranslateAddress(DWORD lineApp, DWORD device, DWORD version,
                                                const char *address, DWORD card, DWORD flags, void *)
{
    Note("lineTranslateAddress %x %u %x '%s' %u %x", lineApp, device, version, address ? address : "",
         card, flags);
    return Sync("lineTranslateAddress");
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        StandIn_Reset();
    return TRUE;
}
