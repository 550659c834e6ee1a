#include "failure_seam.h"
#include "import_patch.h"
#include <cstdlib>

namespace {

struct SeamState {
    unsigned calls = 0;
    unsigned failAt = 0;
    bool sticky = false;
    bool refused = false;
    bool armed = false;
};
SeamState g_seam;

// True when this request is the one (or one of those) to refuse.
bool Refuse()
{
    if (!g_seam.armed)
        return false;
    unsigned n = ++g_seam.calls;
    bool refuse = g_seam.failAt != 0 && (n == g_seam.failAt || (g_seam.sticky && n > g_seam.failAt));
    g_seam.refused |= refuse;
    return refuse;
}

// One table row per patched import: its module, name, kind and the
// stand-in that refuses or calls through to the original.
struct Hook {
    const char *dll;
    const char *name;
    unsigned kind;
    const void *replacement;
    void **original; // where the stand-in finds the function it stands in for
};

// A stand-in for `Name`, which answers `failure` when refused.
#define QZ_SEAM_HOOK(Name, Ret, CallConv, failure, Params, Args)            \
    void *g_original_##Name;                                                \
    Ret CallConv Seam_##Name Params                                         \
    {                                                                       \
        if (Refuse())                                                       \
            return failure;                                                 \
        return reinterpret_cast<Ret(CallConv *) Params>(g_original_##Name) Args; \
    }

QZ_SEAM_HOOK(LocalAlloc, HLOCAL, WINAPI, nullptr, (UINT f, SIZE_T n), (f, n))
QZ_SEAM_HOOK(LocalReAlloc, HLOCAL, WINAPI, nullptr, (HLOCAL h, SIZE_T n, UINT f), (h, n, f))
QZ_SEAM_HOOK(GlobalAlloc, HGLOBAL, WINAPI, nullptr, (UINT f, SIZE_T n), (f, n))
QZ_SEAM_HOOK(GlobalReAlloc, HGLOBAL, WINAPI, nullptr, (HGLOBAL h, SIZE_T n, UINT f), (h, n, f))
QZ_SEAM_HOOK(HeapAlloc, LPVOID, WINAPI, nullptr, (HANDLE h, DWORD f, SIZE_T n), (h, f, n))
QZ_SEAM_HOOK(HeapReAlloc, LPVOID, WINAPI, nullptr, (HANDLE h, DWORD f, LPVOID p, SIZE_T n), (h, f, p, n))
QZ_SEAM_HOOK(malloc, void *, __cdecl, nullptr, (size_t n), (n))
QZ_SEAM_HOOK(calloc, void *, __cdecl, nullptr, (size_t c, size_t n), (c, n))
QZ_SEAM_HOOK(realloc, void *, __cdecl, nullptr, (void *p, size_t n), (p, n))
QZ_SEAM_HOOK(CreateCompatibleDC, HDC, WINAPI, nullptr, (HDC dc), (dc))
QZ_SEAM_HOOK(CreateCompatibleBitmap, HBITMAP, WINAPI, nullptr, (HDC dc, int w, int h), (dc, w, h))
QZ_SEAM_HOOK(CreateBitmap, HBITMAP, WINAPI, nullptr, (int w, int h, UINT p, UINT b, const void *bits),
             (w, h, p, b, bits))
QZ_SEAM_HOOK(CreateBitmapIndirect, HBITMAP, WINAPI, nullptr, (const BITMAP *bm), (bm))
QZ_SEAM_HOOK(CreateDIBSection, HBITMAP, WINAPI, nullptr,
             (HDC dc, const BITMAPINFO *bi, UINT u, void **bits, HANDLE s, DWORD o), (dc, bi, u, bits, s, o))
QZ_SEAM_HOOK(CreateDIBitmap, HBITMAP, WINAPI, nullptr,
             (HDC dc, const BITMAPINFOHEADER *h, DWORD f, const void *b, const BITMAPINFO *bi, UINT u),
             (dc, h, f, b, bi, u))
QZ_SEAM_HOOK(CreateSolidBrush, HBRUSH, WINAPI, nullptr, (COLORREF c), (c))
QZ_SEAM_HOOK(CreatePatternBrush, HBRUSH, WINAPI, nullptr, (HBITMAP b), (b))
QZ_SEAM_HOOK(CreateBrushIndirect, HBRUSH, WINAPI, nullptr, (const LOGBRUSH *lb), (lb))
QZ_SEAM_HOOK(CreatePen, HPEN, WINAPI, nullptr, (int s, int w, COLORREF c), (s, w, c))
QZ_SEAM_HOOK(CreatePenIndirect, HPEN, WINAPI, nullptr, (const LOGPEN *lp), (lp))
QZ_SEAM_HOOK(CreateFontIndirectA, HFONT, WINAPI, nullptr, (const LOGFONTA *lf), (lf))
QZ_SEAM_HOOK(CreateRectRgn, HRGN, WINAPI, nullptr, (int l, int t, int r, int b), (l, t, r, b))
QZ_SEAM_HOOK(CreateRectRgnIndirect, HRGN, WINAPI, nullptr, (const RECT *r), (r))
QZ_SEAM_HOOK(CreateRoundRectRgn, HRGN, WINAPI, nullptr, (int l, int t, int r, int b, int w, int h),
             (l, t, r, b, w, h))
QZ_SEAM_HOOK(CreateEllipticRgn, HRGN, WINAPI, nullptr, (int l, int t, int r, int b), (l, t, r, b))
QZ_SEAM_HOOK(CreatePolygonRgn, HRGN, WINAPI, nullptr, (const POINT *p, int n, int m), (p, n, m))
QZ_SEAM_HOOK(ExtCreateRegion, HRGN, WINAPI, nullptr, (const XFORM *x, DWORD n, const RGNDATA *d), (x, n, d))

#define QZ_SEAM_ROW(dll, Name, kind) \
    { dll, #Name, FailureSeam::kind, reinterpret_cast<const void *>(Seam_##Name), &g_original_##Name }

const Hook kHooks[] = {
    QZ_SEAM_ROW("kernel32.dll", LocalAlloc, Memory),
    QZ_SEAM_ROW("kernel32.dll", LocalReAlloc, Memory),
    QZ_SEAM_ROW("kernel32.dll", GlobalAlloc, Memory),
    QZ_SEAM_ROW("kernel32.dll", GlobalReAlloc, Memory),
    QZ_SEAM_ROW("kernel32.dll", HeapAlloc, Memory),
    QZ_SEAM_ROW("kernel32.dll", HeapReAlloc, Memory),
    QZ_SEAM_ROW("msvcrt.dll", malloc, Memory),
    QZ_SEAM_ROW("msvcrt.dll", calloc, Memory),
    QZ_SEAM_ROW("msvcrt.dll", realloc, Memory),
    QZ_SEAM_ROW("gdi32.dll", CreateCompatibleDC, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateCompatibleBitmap, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateBitmap, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateBitmapIndirect, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateDIBSection, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateDIBitmap, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateSolidBrush, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreatePatternBrush, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateBrushIndirect, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreatePen, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreatePenIndirect, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateFontIndirectA, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateRectRgn, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateRectRgnIndirect, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateRoundRectRgn, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreateEllipticRgn, Gdi),
    QZ_SEAM_ROW("gdi32.dll", CreatePolygonRgn, Gdi),
    QZ_SEAM_ROW("gdi32.dll", ExtCreateRegion, Gdi),
};

} // namespace

FailureSeam::FailureSeam(unsigned kinds, unsigned failAt, bool sticky)
{
    g_seam = SeamState{};
    g_seam.failAt = failAt;
    g_seam.sticky = sticky;
    for (const Hook &hook : kHooks) {
        if (!(hook.kind & kinds))
            continue;
        // The stand-in may be called by another thread of the library as
        // soon as the slot is written: give it a function to call first.
        if (HMODULE system = GetModuleHandleA(hook.dll))
            *hook.original = reinterpret_cast<void *>(GetProcAddress(system, hook.name));
        auto patch = std::make_unique<ImportPatch>(LibraryModule(), hook.dll, hook.name, hook.replacement);
        if (!patch->Applied())
            continue;
        *hook.original = patch->Original<void *>();
        patches_.push_back(std::move(patch));
    }
    g_seam.armed = true;
}

FailureSeam::~FailureSeam()
{
    g_seam.armed = false;
    patches_.clear();
}

unsigned FailureSeam::Calls() const { return g_seam.calls; }
bool FailureSeam::Refused() const { return g_seam.refused; }
