// Thin exported wrappers over the service: 0 while telephony is off, else
// the service's own result, with the library's line application in place
// of the caller's where the service takes one.
#include "telephony_internal.h"

extern "C" LONG WINAPI Telephony_lineGetDevCaps(DWORD, DWORD device, DWORD version, DWORD extension,
                                                void *caps)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineGetDevCaps(g_tel.lineApp, device, version, extension,
                                     static_cast<TapiLineDevCaps *>(caps));
}

extern "C" LONG WINAPI Telephony_lineGetAddressCaps(DWORD, DWORD device, DWORD address, DWORD version,
                                                    DWORD extension, void *caps)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineGetAddressCaps(g_tel.lineApp, device, address, version, extension,
                                         static_cast<TapiLineAddressCaps *>(caps));
}

extern "C" LONG WINAPI Telephony_lineOpen(DWORD, DWORD device, DWORD *line, DWORD version,
                                          DWORD extension, DWORD_PTR instance, DWORD privileges,
                                          DWORD mediaModes, const void *params)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineOpen(g_tel.lineApp, device, line, version, extension, instance, privileges,
                               mediaModes, static_cast<const TapiLineCallParams *>(params));
}

extern "C" LONG WINAPI Telephony_lineNegotiateAPIVersion(DWORD, DWORD device, DWORD low, DWORD high,
                                                         DWORD *version, void *extension)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineNegotiateAPIVersion(g_tel.lineApp, device, low, high, version,
                                              static_cast<TapiExtensionId *>(extension));
}

extern "C" LONG WINAPI Telephony_lineTranslateAddress(DWORD, DWORD device, DWORD version,
                                                      const char *address, DWORD card, DWORD flags,
                                                      void *output)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineTranslateAddress(g_tel.lineApp, device, version, address, card, flags, output);
}

extern "C" LONG WINAPI Telephony_lineGetTranslateCaps(DWORD, DWORD version, void *caps)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineGetTranslateCaps(g_tel.lineApp, version, caps);
}

extern "C" LONG WINAPI Telephony_lineSetCurrentLocation(DWORD, DWORD location)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineSetCurrentLocation(g_tel.lineApp, location);
}

extern "C" LONG WINAPI Telephony_lineTranslateDialog(DWORD device, DWORD version, HWND owner,
                                                     const char *address)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineTranslateDialog(g_tel.lineApp, device, version, owner, address);
}

extern "C" LONG WINAPI Telephony_lineConfigDialogEdit(DWORD device, HWND owner, const char *deviceClass,
                                                      const void *config, DWORD size, void *configOut)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineConfigDialogEdit(device, owner, deviceClass, config, size, configOut);
}

extern "C" LONG WINAPI Telephony_lineClose(DWORD, DWORD line)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineClose(line);
}

extern "C" LONG WINAPI Telephony_lineSetDevConfig(DWORD, DWORD device, const void *config, DWORD size,
                                                  const char *deviceClass)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineSetDevConfig(device, config, size, deviceClass);
}

extern "C" LONG WINAPI Telephony_lineGetDevConfig(DWORD, DWORD device, void *config, const char *deviceClass)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineGetDevConfig(device, config, deviceClass);
}

extern "C" LONG WINAPI Telephony_lineGetCountry(DWORD, DWORD country, DWORD version, void *list)
{
    if (!TelephonyOn())
        return 0;
    return g_tel.tapi.lineGetCountry(country, version, list);
}
