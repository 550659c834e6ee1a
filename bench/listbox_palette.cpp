// QzListBox and the colour palette control against their platform peers,
// measured in the same run: a text of ten items turned into the selection
// of a QzListBox of 1,000 and of 10,000 items, against the system's list
// box selecting the same items by LB_FINDSTRINGEXACT and LB_SETSEL; and the
// nearest table colour for a million colours through ccPalSetRGB, against
// GetNearestPaletteIndex on a palette of the same 256 entries. Ratios
// above 1 mean the library is faster.
#include <windows.h>
#include <cstdio>
#include <string>
#include <vector>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const int kTokens = 10;
const int kColours = 1000000;

void Report(const char *what, double ours, double theirs, unsigned count)
{
    std::printf("%-56s ours %10.1f us  platform %9.1f us  ratio %.3fx\n", what, ours * 1e6 / count,
                theirs * 1e6 / count, theirs / ours);
}

// Per call, in seconds.
double TextToSelection(HWND host, int items, double *platform)
{
    HWND ours = CreateWindowExA(0, "QzListBox", "", WS_CHILD, 0, 0, 200, 300, host, nullptr, nullptr, nullptr);
    HWND peer = CreateWindowExA(0, "Listbox", "", WS_CHILD | LBS_MULTIPLESEL, 0, 0, 200, 300, host, nullptr,
                                nullptr, nullptr);
    char name[32];
    for (int i = 0; i < items; ++i) {
        snprintf(name, sizeof name, "Item %05d", i);
        SendMessageA(ours, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        SendMessageA(peer, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
    }
    // Ten items spread evenly over the list, the last near its end.
    std::string text;
    std::vector<std::string> tokens;
    char separator = static_cast<char>(OSGetSeparator());
    for (int t = 0; t < kTokens; ++t) {
        snprintf(name, sizeof name, "Item %05d", (t * 2 + 1) * items / (2 * kTokens));
        tokens.push_back(name);
        text += (t ? std::string(1, separator) : std::string()) + name;
    }
    const int calls = items > 5000 ? 5 : 40;
    double ourTime = Time([&] {
        for (int i = 0; i < calls; ++i)
            SetWindowTextA(ours, text.c_str());
    });
    *platform = Time([&] {
        for (int i = 0; i < calls; ++i) {
            SendMessageA(peer, LB_SETSEL, FALSE, -1);
            for (const std::string &token : tokens) {
                LRESULT at = SendMessageA(peer, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                          reinterpret_cast<LPARAM>(token.c_str()));
                SendMessageA(peer, LB_SETSEL, TRUE, at);
            }
        }
    }) / calls;
    if (SendMessageA(ours, LB_GETSELCOUNT, 0, 0) != kTokens || SendMessageA(peer, LB_GETSELCOUNT, 0, 0) != kTokens)
        std::printf("(the two lists did not select the same %d items)\n", kTokens);
    DestroyWindow(ours);
    DestroyWindow(peer);
    return ourTime / calls;
}

void NearestColour(HWND host)
{
    HWND control = CreateWindowExA(0, "ccpal_popup", "", WS_CHILD | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, 0, 0,
                                   100, 200, host, nullptr, nullptr, nullptr);
    struct {
        WORD version, entries;
        PALETTEENTRY colours[256];
    } logical = {0x300, 256, {}};
    for (int i = 0; i < 256; ++i) {
        COLORREF colour = 0;
        SendMessageA(control, CCPM_SETINDEX, 0, i);
        ccPalGetRGB(control, &colour);
        logical.colours[i] = {GetRValue(colour), GetGValue(colour), GetBValue(colour), 0};
    }
    HPALETTE palette = CreatePalette(reinterpret_cast<LOGPALETTE *>(&logical));
    // One round each: a million colours walk the cube in steps of 13, 7 and 3.
    UINT sink = 0;
    double start = Seconds();
    for (int i = 0; i < kColours; ++i)
        sink += ccPalSetRGB(control, RGB(i * 13, i * 7, i * 3));
    double ours = Seconds() - start;
    start = Seconds();
    for (int i = 0; i < kColours; ++i)
        sink += GetNearestPaletteIndex(palette, RGB(i * 13, i * 7, i * 3));
    double theirs = Seconds() - start;
    Report("nearest of 256 colours, a million colours", ours, theirs, kColours);
    std::printf("(checksum %u)\n", sink);
    DeleteObject(palette);
    DestroyWindow(control);
}

}  // namespace

int main()
{
    RegisterGadgets(0);
    HWND host = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 400, 400, nullptr, nullptr, nullptr, nullptr);
    double small = 0, large = 0, smallPeer = 0, largePeer = 0;
    small = TextToSelection(host, 1000, &smallPeer);
    Report("QzListBox text of 10 items to selection, 1,000 items", small, smallPeer, 1);
    large = TextToSelection(host, 10000, &largePeer);
    Report("QzListBox text of 10 items to selection, 10,000 items", large, largePeer, 1);
    std::printf("growth from 1,000 to 10,000 items: ours %.1fx, platform %.1fx\n\n", large / small,
                largePeer / smallPeer);
    NearestColour(host);
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
