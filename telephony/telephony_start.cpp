// Loading the telephony service, binding its entry points, and the
// application's registration with it and its end.
#include "telephony_internal.h"

TelephonyState g_tel;

static const char *const kEntryNames[21] = {
    "lineInitialize",      "lineTranslateDialog",  "lineGetTranslateCaps",   "lineSetCurrentLocation",
    "lineGetCountry",      "lineGetAddressCaps",   "lineGetDevCaps",         "lineOpen",
    "lineClose",           "lineNegotiateAPIVersion", "lineGetAddressStatus", "lineConfigDialogEdit",
    "lineSetDevConfig",    "lineGetDevConfig",     "lineMakeCall",           "lineDial",
    "lineGetCallStatus",   "lineDeallocateCall",   "lineDrop",               "lineShutdown",
    "lineTranslateAddress",
};

bool TapiBindEntries(HMODULE library)
{
    FARPROC *slots = reinterpret_cast<FARPROC *>(&g_tel.tapi);
    for (int i = 0; i < 21; ++i) {
        if (!(slots[i] = GetProcAddress(library, kEntryNames[i]))) {
            ZeroMemory(&g_tel.tapi, sizeof g_tel.tapi);
            return false;
        }
    }
    return true;
}

// Run by attach. A missing service is no failure: the library goes on
// without telephony.
extern "C" BOOL WINAPI TelephonyStart(DWORD)
{
    g_module.hTelephonyLibrary = LoadLibraryA("TAPI32.DLL");
    g_module.telephonyLoaded = g_module.hTelephonyLibrary != nullptr;
    return 1;
}

// A registration with the old library ends before the library goes, so that
// the next client start registers with the new one.
extern "C" BOOL WINAPI Telephony_Initialize(HMODULE library)
{
    if (TelephonyOn())
        TelephonyLineStop(nullptr);
    g_tel.lineApp = 0;
    if (g_module.telephonyLoaded)
        FreeLibrary(g_module.hTelephonyLibrary);
    g_module.hTelephonyLibrary = library;
    g_module.telephonyLoaded = library != nullptr;
    ZeroMemory(&g_tel.tapi, sizeof g_tel.tapi); // they pointed into the old module
    return 1;
}

extern "C" DWORD WINAPI IsTelephonyEnabled(void) { return g_module.telephonyLoaded; }

extern "C" DWORD WINAPI Telephony_GetNumDevices(void) { return g_tel.numDevices; }

// Registers the application once its main window exists. A failed start
// switches telephony off without a word to the user.
extern "C" void WINAPI TelephonyClientStart(HWND window)
{
    if (g_tel.lineApp)
        return;
    if (!g_module.telephonyLoaded) {
        g_module.telephonyLoaded = 0;
        return;
    }
    OSWait();
    if (!TapiBindEntries(g_module.hTelephonyLibrary)) {
        g_module.telephonyLoaded = 0;
        OSUnWait();
        return;
    }
    TelephonyLineStart(window, FALSE);
    OSUnWait();
    if (!g_tel.lineApp)
        g_module.telephonyLoaded = 0;
}

// Shows string `id` with the application title as the text and the string
// as the caption: these boxes have the two the other way round.
static int ShowReversedBox(UINT id, UINT flags)
{
    char *caption = LoadStringCopy(g_module.hResourceLibrary, id);
    int answer = MessageBoxA(nullptr, g_module.appTitle, caption, flags);
    if (caption)
        LocalFree(caption);
    return answer;
}

static void PumpFor(DWORD milliseconds)
{
    DWORD start = GetTickCount();
    while (GetTickCount() - start < milliseconds)
        PumpOne();
}

static void OfferModemInstall()
{
    if (ShowReversedBox(1157, MB_YESNO) != IDYES)
        return;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    char command[] = "CONTROL.EXE MODEM.CPL,,ADD";
    if (CreateProcessA(nullptr, command, nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr,
                       nullptr, &startup, &process)) {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    } else {
        ShowReversedBox(1155, 0);
    }
}

BOOL TelephonyLineStart(HWND window, BOOL interactive)
{
    if (g_tel.lineApp)
        return 1;
    if (g_tel.lineStarting)
        return 0;
    g_tel.lineStarting = 1;
    bool paused = false;
    BOOL started = 0;
    for (;;) {
        LONG result = g_tel.tapi.lineInitialize(&g_tel.lineApp, g_module.hModule, TelephonyLineCallback,
                                                g_module.appTitle, &g_tel.numDevices);
        if (result == TAPI_REINIT) {
            if (!paused) {
                PumpFor(5000);
                paused = true;
                continue;
            }
            ShowReversedBox(1156, 0);
            break;
        }
        if (result == TAPI_NODEVICE) {
            if (interactive)
                OfferModemInstall();
            break;
        }
        if (!TelephonyCheckResult(window, result, interactive))
            break;
        if (result == 0) {
            started = 1;
            break;
        }
    }
    g_tel.lineStarting = 0;
    return started;
}

BOOL TelephonyLineStop(HWND window)
{
    if (!g_tel.lineApp || g_tel.lineStopping)
        return 1;
    g_tel.lineStopping = 1;
    Telephony_HangupCall(window, TAPI_CALLSTATE_DISCONNECTED);
    LONG result;
    do
        result = g_tel.tapi.lineShutdown(g_tel.lineApp);
    while (TelephonyCheckResult(window, result, 1) && result != 0);
    g_tel.lineInUse = 0;
    g_tel.lineApp = 0;
    g_tel.currentCall = 0;
    g_tel.currentLine = 0;
    g_tel.lineStopping = 0;
    return 1;
}
