// Library start and stop: the attach sequence the loader runs, the
// per-client start and stop calls, and the version exports.
#include "module_globals.h"
#include "../calendar/calendar_internal.h"

ModuleGlobals g_module;

// The attach sequence. Each step that fails returns false at once, with no
// rollback. The error state is still all zeros here, and zero is the
// terminating mode: a missing string ends the process with status 255.
static BOOL AttachStartUp(HMODULE module)
{
    if (!OSStartResource())
        return FALSE;
    g_module.hModule = module;
    g_module.hResourceLibrary = ResourceGetHandle();
    if (!g_module.hResourceLibrary)
        return FALSE;
    if (!(g_module.appTitle = LoadStringCopy(g_module.hResourceLibrary, 1)))
        return FALSE;
    if (!(g_module.memoryFailureText = LoadStringCopy(g_module.hResourceLibrary, 10003)))
        return FALSE;
    g_module.helpMessageId = RegisterWindowMessageA("WM_KEL_HELP");
    if (!(g_module.settingsName = LoadStringCopy(g_module.hResourceLibrary, 9)))
        return FALSE;
    if (!OSWaitInit())
        return FALSE;
    if (!DateTimeStartUp(module))
        return FALSE;
    SeedRnd();
    if (!(g_module.string800 = LoadStringCopy(g_module.hResourceLibrary, 800)))
        return FALSE;
    if (!(g_module.string801 = LoadStringCopy(g_module.hResourceLibrary, 801)))
        return FALSE;
    g_module.startedFlag = 1;
    g_module.telephonyLoaded = 0;
    return TelephonyStart(0);
}

// Detach releases the resource library and the telephony library. The
// module strings live until the process ends.
static void DetachShutDown()
{
    OSStopResource();
    if (g_module.telephonyLoaded) {
        FreeLibrary(g_module.hTelephonyLibrary);
        g_module.hTelephonyLibrary = nullptr;
        g_module.telephonyLoaded = 0;
    }
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        if (!AttachStartUp(instance))
            return FALSE;
        ErrorStateReset(instance);
        return TRUE;
    case DLL_PROCESS_DETACH:
        DetachShutDown();
        return TRUE;
    default:
        return TRUE;
    }
}

// Internal start check; it always agrees, but a refusal would fail the start.
static BOOL StartCheck(HMODULE) { return TRUE; }

extern "C" BOOL WINAPI IsolateInstanceStart(DWORD, DWORD)
{
    if (!StartCheck(g_module.hModule))
        return FALSE;
    // The bare "Settings" key under the current user's root holds this one value.
    LONG sections = OSGetProfileInt("Settings", "MaxIncludedSections", 10, g_module.settingsName, 0);
    DWORD handles = static_cast<DWORD>(sections) * 3 + 20;
    if (handles > 255)
        handles = 255;
    SetHandleCount(handles);
    g_module.versionInfo.dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
    if (!GetVersionExA(&g_module.versionInfo))
        return FALSE;
    ++g_module.instanceCount;
    return 1;
}

extern "C" BOOL WINAPI IsolateInstanceStop(DWORD)
{
    --g_module.instanceCount;
    return 1;
}

extern "C" BOOL WINAPI NetDLLGetVersion(char *out)
{
    if (out)
        lstrcpyA(out, g_module.versionString);
    return 1;
}

extern "C" OSVERSIONINFOA *WINAPI OSGetVersionInfo(void)
{
    return &g_module.versionInfo;
}
