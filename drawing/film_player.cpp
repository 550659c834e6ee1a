// The film player: a short animation kept as one bitmap, a sheet of equally
// sized frames in columns and rows, drawn frame after frame at a place on a
// device context over what was there, which is saved first and put back at
// the end. A transparent frame is always composed over the saved background,
// never over the frame before. One film plays at a time.
#include "qziso32.h"

namespace {

// A sheet whose id carries 1 in its high word is kept once loaded: the
// player does not delete it, and plays it again from the same bitmap.
const DWORD kKeptSheet = 1;

enum MaskMode { MM_Copy = 0, MM_MaskHalf = 1, MM_KeyColour = 2 };

struct FilmState;
typedef bool (*FramePainter)(FilmState &);

struct FilmState {
    LONG Playing;
    HDC Target;
    LONG X, Y;
    LONG Columns, Rows;
    LONG FrameWidth, FrameHeight;
    LONG MaskMode;
    DWORD FrameCount;
    DWORD FrameIndex;
    DWORD MinInterval;
    DWORD LastTick;  // kept from film to film
    COLORREF Transparent;
    const LONG *Sequence;
    LONG Column, Row;
    DWORD BitmapId;
    HBITMAP Sheet;
    HBITMAP Background;
    HDC WorkDC;
    FramePainter PaintFrame;
};

FilmState g_film;

// The one kept sheet, by module and id.
HMODULE g_keptModule;
DWORD g_keptId;
HBITMAP g_keptSheet;

bool IsKept(DWORD id) { return HIWORD(id) == kKeptSheet; }

HBITMAP LoadSheet(HMODULE module, DWORD id)
{
    if (!IsKept(id))
        return HIWORD(id) ? nullptr : ResourceLoadBitmap(module, id);
    if (g_keptSheet && g_keptModule == module && g_keptId == id)
        return g_keptSheet;
    HBITMAP sheet = ResourceLoadBitmap(module, LOWORD(id));
    if (sheet) {
        if (g_keptSheet)
            DeleteObject(g_keptSheet);
        g_keptSheet = sheet;
        g_keptModule = module;
        g_keptId = id;
    }
    return sheet;
}

// Deletes what the film holds, each handle once, and forgets it.
void ReleaseFilmObjects(FilmState &f)
{
    if (f.Background)
        DeleteObject(f.Background);
    if (f.WorkDC)
        DeleteDC(f.WorkDC);
    if (f.Sheet && !IsKept(f.BitmapId))
        DeleteObject(f.Sheet);
    f.Background = nullptr;
    f.WorkDC = nullptr;
    f.Sheet = nullptr;
}

// ---------------------------------------------------------------- painters
// The cell the frame shows: the sequence's entry, or the running column
// and row.
void ChooseCell(FilmState &f)
{
    if (!f.Sequence)
        return;
    LONG cell = f.Sequence[f.FrameIndex];
    f.Column = cell % f.Columns;
    f.Row = cell / f.Columns;
}

LONG MaskFrameNumber(const FilmState &f)
{
    return f.Sequence ? f.Sequence[f.FrameIndex] : static_cast<LONG>(f.FrameIndex);
}

void NextCell(FilmState &f)
{
    if (f.Sequence)
        return;
    if (++f.Column == f.Columns) {
        f.Column = 0;
        ++f.Row;
    }
}

bool SelectSheet(FilmState &f, HGDIOBJ *earlier)
{
    *earlier = f.Sheet && f.WorkDC ? SelectObject(f.WorkDC, f.Sheet) : nullptr;
    if (*earlier)
        return true;
    OSErrorSetErrorInfo(RV_GDIError, "SelectObject");
    return false;
}

bool PaintCopy(FilmState &f)
{
    ChooseCell(f);
    HGDIOBJ earlier;
    if (!SelectSheet(f, &earlier))
        return false;
    BOOL done = BitBlt(f.Target, f.X, f.Y, f.FrameWidth, f.FrameHeight, f.WorkDC,
                       f.FrameWidth * f.Column, f.FrameHeight * f.Row, SRCCOPY);
    SelectObject(f.WorkDC, earlier);
    if (!done) {
        OSErrorSetErrorInfo(RV_GDIError, "BitBlt");
        return false;
    }
    NextCell(f);
    return true;
}

// A transparent frame: the mask from the cell's right half, or made from
// the transparent colour, and the picture composed over the background.
bool PaintMasked(FilmState &f)
{
    ChooseCell(f);
    LONG frame = MaskFrameNumber(f);
    HBITMAP cut = nullptr, mask = nullptr;
    if (f.MaskMode == MM_MaskHalf) {
        mask = GetFrame(f.Target, nullptr, reinterpret_cast<DWORD_PTR>(f.Sheet), f.Columns, f.Rows,
                        1, frame, 1);
    } else {
        cut = GetFrame(f.Target, nullptr, reinterpret_cast<DWORD_PTR>(f.Sheet), f.Columns, f.Rows,
                       0, frame, 0);
        mask = cut ? CreateMask(f.Target, cut, f.Transparent) : nullptr;
    }
    bool done = false;
    HGDIOBJ earlier;
    if (mask && SelectSheet(f, &earlier)) {
        done = MaskBltWithBitmap(f.Target, f.X, f.Y, f.FrameWidth, f.FrameHeight, f.WorkDC,
                                 f.FrameWidth * f.Column, f.FrameHeight * f.Row, SRCCOPY, mask, 0,
                                 f.Background) != 0;
        SelectObject(f.WorkDC, earlier);
    }
    if (mask)
        DeleteObject(mask);
    if (cut)
        DeleteObject(cut);
    if (done)
        NextCell(f);
    return done;
}

FramePainter ChoosePainter(LONG maskMode)
{
    return maskMode == MM_MaskHalf || maskMode == MM_KeyColour ? PaintMasked : PaintCopy;
}

// ---------------------------------------------------------------- checks
// The layout and the frames asked for must make sense before anything is
// loaded: cells to divide the sheet into, at least one frame, and every
// cell of a sequence on the sheet.
bool FilmArgumentsValid(LONG columns, LONG rows, DWORD frameCount, const LONG *sequence)
{
    if (columns <= 0 || rows <= 0 || frameCount == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "PlayFilm");
        return false;
    }
    if (sequence) {
        LONGLONG cells = static_cast<LONGLONG>(columns) * rows;
        for (DWORD i = 0; i < frameCount; ++i)
            if (sequence[i] < 0 || sequence[i] >= cells) {
                OSErrorSetErrorInfo(RV_BadParms, "PlayFilm");
                return false;
            }
    }
    return true;
}

// Measures the sheet, places the picture and saves what lies under it.
bool PrepareFilm(FilmState &f, DWORD centred)
{
    f.WorkDC = CreateCompatibleDC(f.Target);
    if (!f.WorkDC) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateCompatibleDC");
        return false;
    }
    BITMAP sheet;
    if (!GetObjectA(f.Sheet, sizeof sheet, &sheet)) {
        OSErrorSetErrorInfo(RV_GDIError, "GetObject");
        return false;
    }
    f.FrameWidth = sheet.bmWidth / f.Columns;
    f.FrameHeight = sheet.bmHeight / f.Rows;
    if (centred) {
        f.X -= f.FrameWidth / 2;
        f.Y -= f.FrameHeight / 2;
    }
    f.Background = CreateCompatibleBitmap(f.Target, f.FrameWidth, f.FrameHeight);
    if (!f.Background) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateCompatibleBitmap");
        return false;
    }
    HGDIOBJ earlier = SelectObject(f.WorkDC, f.Background);
    BOOL saved = earlier && BitBlt(f.WorkDC, 0, 0, f.FrameWidth, f.FrameHeight, f.Target, f.X,
                                   f.Y, SRCCOPY);
    if (earlier)
        SelectObject(f.WorkDC, earlier);
    if (!saved) {
        OSErrorSetErrorInfo(RV_GDIError, "BitBlt");
        return false;
    }
    return true;
}

}  // namespace

extern "C" BOOL WINAPI EndFilm(void)
{
    FilmState &f = g_film;
    if (f.Background && f.WorkDC) {
        HGDIOBJ earlier = SelectObject(f.WorkDC, f.Background);
        if (earlier) {
            BitBlt(f.Target, f.X, f.Y, f.FrameWidth, f.FrameHeight, f.WorkDC, 0, 0, SRCCOPY);
            SelectObject(f.WorkDC, earlier);
        }
    }
    ReleaseFilmObjects(f);
    f.Playing = 0;
    return TRUE;
}

extern "C" LONG WINAPI IsFilmPlaying(void) { return g_film.Playing; }

extern "C" BOOL WINAPI NextFrame(void)
{
    FilmState &f = g_film;
    if (!f.Playing) {
        OSErrorSetErrorInfo(RV_Failure, "NextFrame");
        EndFilm();
        return FALSE;
    }
    if (f.MinInterval && GetTickCount() - f.LastTick < f.MinInterval)
        return TRUE;
    if (!f.PaintFrame(f)) {
        EndFilm();
        return FALSE;
    }
    ++f.FrameIndex;
    f.LastTick = GetTickCount();
    if (f.FrameIndex == f.FrameCount)
        EndFilm();
    return TRUE;
}

extern "C" BOOL WINAPI PlayFilm(HDC dc, LONG x, LONG y, HMODULE module, DWORD bitmapId, LONG columns,
                                LONG rows, LONG maskMode, DWORD frameCount, DWORD minInterval,
                                COLORREF transparent, DWORD centred, const LONG *sequence,
                                LONG runToEnd)
{
    FilmState &f = g_film;
    if (f.Playing) {
        OSErrorSetErrorInfo(RV_Failure, "PlayFilm");
        return FALSE;
    }
    if (!FilmArgumentsValid(columns, rows, frameCount, sequence))
        return FALSE;
    f.Target = dc;
    f.X = x;
    f.Y = y;
    f.Columns = columns;
    f.Rows = rows;
    f.MaskMode = maskMode == MM_MaskHalf || maskMode == MM_KeyColour ? maskMode : LONG(MM_Copy);
    f.FrameCount = frameCount;
    f.MinInterval = minInterval;
    f.Transparent = transparent;
    f.Sequence = sequence;
    f.BitmapId = bitmapId;
    f.Sheet = LoadSheet(module, bitmapId);
    if (!f.Sheet) {
        OSErrorSetErrorInfo(RV_GDIError, "ResourceLoadBitmap");
        return FALSE;
    }
    if (!PrepareFilm(f, centred)) {
        ReleaseFilmObjects(f);
        return FALSE;
    }
    f.Playing = 1;
    f.Row = f.Column = 0;
    f.FrameIndex = 0;
    f.PaintFrame = ChoosePainter(f.MaskMode);
    if (!NextFrame())
        return FALSE;
    if (runToEnd) {
        while (IsFilmPlaying()) {
            if (!NextFrame())
                return FALSE;
            // Between frames the time is waited for, not spun away.
            DWORD since = GetTickCount() - f.LastTick;
            if (f.Playing && f.MinInterval && since < f.MinInterval)
                Sleep(f.MinInterval - since);
        }
        return TRUE;
    }
    // Without run to end the first frame stays on the screen and the film's
    // objects go now: a later NextFrame finds none, fails and ends the film.
    ReleaseFilmObjects(f);
    return TRUE;
}

extern "C" HBITMAP WINAPI GetFrame(HDC dc, HMODULE module, DWORD_PTR bitmap, LONG columns,
                                   LONG rows, DWORD halves, LONG frame, DWORD half)
{
    if (columns <= 0 || rows <= 0 || halves + 1 == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "GetFrame");
        return nullptr;
    }
    HBITMAP sheet = module ? ResourceLoadBitmap(module, static_cast<DWORD>(bitmap))
                           : reinterpret_cast<HBITMAP>(bitmap);
    BITMAP info;
    if (!sheet || !GetObjectA(sheet, sizeof info, &info)) {
        OSErrorSetErrorInfo(RV_GDIError, sheet ? "GetObject" : "ResourceLoadBitmap");
        if (module && sheet)
            DeleteObject(sheet);
        return nullptr;
    }
    LONG cellWidth = info.bmWidth / columns, cellHeight = info.bmHeight / rows;
    HBITMAP result = nullptr;
    HDC from = CreateCompatibleDC(dc), to = from ? CreateCompatibleDC(dc) : nullptr;
    HBITMAP cut = to ? CreateCompatibleBitmap(dc, cellWidth, cellHeight) : nullptr;
    HGDIOBJ earlierFrom = cut ? SelectObject(from, sheet) : nullptr;
    HGDIOBJ earlierTo = earlierFrom ? SelectObject(to, cut) : nullptr;
    if (earlierTo &&
        BitBlt(to, 0, 0, cellWidth / static_cast<LONG>(halves + 1), cellHeight, from,
               (frame % columns) * cellWidth + (cellWidth / 2) * static_cast<LONG>(half),
               (frame / columns) * cellHeight, SRCCOPY))
        result = cut;
    else
        OSErrorSetErrorInfo(RV_GDIError, !from || !to ? "CreateCompatibleDC"
                                         : !cut        ? "CreateCompatibleBitmap"
                                         : !earlierTo  ? "SelectObject"
                                                       : "BitBlt");
    if (earlierTo)
        SelectObject(to, earlierTo);
    if (earlierFrom)
        SelectObject(from, earlierFrom);
    if (cut && !result)
        DeleteObject(cut);
    if (to)
        DeleteDC(to);
    if (from)
        DeleteDC(from);
    if (module)
        DeleteObject(sheet);
    return result;
}

extern "C" HBITMAP WINAPI CreateMask(HDC dc, HBITMAP image, COLORREF transparent)
{
    return UICreateMaskBitmap(dc, image, transparent);
}
