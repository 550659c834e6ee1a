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

// One row per patched import: its module, kind, name, return type, calling
// convention, parameters and arguments. Each gets a stand-in that answers
// null when refused and otherwise calls the function it stands in for.
#define QZ_SEAM_IMPORTS(X) \
    X("kernel32.dll", Memory, LocalAlloc, HLOCAL, WINAPI, (UINT f, SIZE_T n), (f, n)) \
    X("kernel32.dll", Memory, LocalReAlloc, HLOCAL, WINAPI, (HLOCAL h, SIZE_T n, UINT f), (h, n, f)) \
    X("kernel32.dll", Memory, GlobalAlloc, HGLOBAL, WINAPI, (UINT f, SIZE_T n), (f, n)) \
    X("kernel32.dll", Memory, GlobalReAlloc, HGLOBAL, WINAPI, (HGLOBAL h, SIZE_T n, UINT f), (h, n, f)) \
    X("kernel32.dll", Memory, HeapAlloc, LPVOID, WINAPI, (HANDLE h, DWORD f, SIZE_T n), (h, f, n)) \
    X("kernel32.dll", Memory, HeapReAlloc, LPVOID, WINAPI, \
      (HANDLE h, DWORD f, LPVOID p, SIZE_T n), (h, f, p, n)) \
    X("msvcrt.dll", Memory, malloc, void *, __cdecl, (size_t n), (n)) \
    X("msvcrt.dll", Memory, calloc, void *, __cdecl, (size_t c, size_t n), (c, n)) \
    X("msvcrt.dll", Memory, realloc, void *, __cdecl, (void *p, size_t n), (p, n)) \
    X("gdi32.dll", Gdi, CreateCompatibleDC, HDC, WINAPI, (HDC dc), (dc)) \
    X("gdi32.dll", Gdi, CreateCompatibleBitmap, HBITMAP, WINAPI, (HDC dc, int w, int h), (dc, w, h)) \
    X("gdi32.dll", Gdi, CreateBitmap, HBITMAP, WINAPI, \
      (int w, int h, UINT p, UINT b, const void *bits), (w, h, p, b, bits)) \
    X("gdi32.dll", Gdi, CreateBitmapIndirect, HBITMAP, WINAPI, (const BITMAP *bm), (bm)) \
    X("gdi32.dll", Gdi, CreateDIBSection, HBITMAP, WINAPI, \
      (HDC dc, const BITMAPINFO *bi, UINT u, void **bits, HANDLE s, DWORD o), (dc, bi, u, bits, s, o)) \
    X("gdi32.dll", Gdi, CreateDIBitmap, HBITMAP, WINAPI, \
      (HDC dc, const BITMAPINFOHEADER *h, DWORD f, const void *b, const BITMAPINFO *bi, UINT u), (dc, h, f, b, bi, u)) \
    X("gdi32.dll", Gdi, CreateSolidBrush, HBRUSH, WINAPI, (COLORREF c), (c)) \
    X("gdi32.dll", Gdi, CreatePatternBrush, HBRUSH, WINAPI, (HBITMAP b), (b)) \
    X("gdi32.dll", Gdi, CreateBrushIndirect, HBRUSH, WINAPI, (const LOGBRUSH *lb), (lb)) \
    X("gdi32.dll", Gdi, CreatePen, HPEN, WINAPI, (int s, int w, COLORREF c), (s, w, c)) \
    X("gdi32.dll", Gdi, CreatePenIndirect, HPEN, WINAPI, (const LOGPEN *lp), (lp)) \
    X("gdi32.dll", Gdi, CreateFontIndirectA, HFONT, WINAPI, (const LOGFONTA *lf), (lf)) \
    X("gdi32.dll", Gdi, CreateRectRgn, HRGN, WINAPI, (int l, int t, int r, int b), (l, t, r, b)) \
    X("gdi32.dll", Gdi, CreateRectRgnIndirect, HRGN, WINAPI, (const RECT *r), (r)) \
    X("gdi32.dll", Gdi, CreateRoundRectRgn, HRGN, WINAPI, \
      (int l, int t, int r, int b, int w, int h), (l, t, r, b, w, h)) \
    X("gdi32.dll", Gdi, CreateEllipticRgn, HRGN, WINAPI, (int l, int t, int r, int b), (l, t, r, b)) \
    X("gdi32.dll", Gdi, CreatePolygonRgn, HRGN, WINAPI, (const POINT *p, int n, int m), (p, n, m)) \
    X("gdi32.dll", Gdi, ExtCreateRegion, HRGN, WINAPI, (const XFORM *x, DWORD n, const RGNDATA *d), (x, n, d))

#define QZ_SEAM_HOOK(dll, kind, Name, Ret, CallConv, Params, Args)                 \
    void *g_original_##Name;                                                       \
    Ret CallConv Seam_##Name Params                                                \
    {                                                                              \
        if (Refuse())                                                              \
            return nullptr;                                                        \
        return reinterpret_cast<Ret(CallConv *) Params>(g_original_##Name) Args;  \
    }
QZ_SEAM_IMPORTS(QZ_SEAM_HOOK)

struct Hook {
    const char *dll;
    const char *name;
    unsigned kind;
    const void *replacement;
    void **original;  // where the stand-in finds the function it stands in for
};

#define QZ_SEAM_ROW(dll, kind, Name, ...) \
    {dll, #Name, FailureSeam::kind, reinterpret_cast<const void *>(Seam_##Name), &g_original_##Name},
const Hook kHooks[] = {QZ_SEAM_IMPORTS(QZ_SEAM_ROW)};

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
