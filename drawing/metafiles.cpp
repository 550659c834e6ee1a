// Metafile handles: a METAFILEPICT in a global block, from a placeable
// metafile file or a stream, to a stream, measured on a device and played
// into a rectangle.
#include <cstring>
#include "metafile_bits.h"

namespace {

const DWORD kNewFormHeader = 16;  // mode, xExt, yExt, handle: four u32
const DWORD kOldFormHeader = 8;   // the same as four 16-bit words

// Reads the metafile bits of an open placeable file into a metafile.
HMETAFILE ReadPlaceable(HFILE file, DWORD fileSize, const char *name, METAFILEPICT *picture)
{
    BYTE placeable[kPlaceableHeaderSize], header[kMetaHeaderSize];
    if (_lread(file, placeable, sizeof placeable) != sizeof placeable) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return nullptr;
    }
    if (ReadU32(placeable, 0) != kPlaceableKey) {
        OSErrorSetErrorInfo(RV_WrongMetafileFormat);
        return nullptr;
    }
    DWORD size;
    if (_lread(file, header, sizeof header) != sizeof header || !MetafileByteCount(header, &size)) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return nullptr;
    }
    // The bits are read only as far as the file holds them (both headers
    // were read, so the file holds at least 40 bytes).
    if (size > fileSize - kPlaceableHeaderSize) {
        OSErrorSetErrorInfo(RV_ReadFailure, name);
        return nullptr;
    }
    if (!PlaceableExtents(placeable, picture)) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return nullptr;
    }
    BYTE *bits = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, size ? size : 1));
    if (!bits)
        return nullptr;
    HMETAFILE metafile = nullptr;
    _llseek(file, kPlaceableHeaderSize, FILE_BEGIN);
    if (_lread(file, bits, size) != size)
        OSErrorSetErrorInfo(RV_ReadFailure, name);
    else
        metafile = MetafileFromBits(bits, size);
    LocalFree(bits);
    return metafile;
}

LONG SignExtended(const BYTE *bytes, DWORD offset)
{
    return static_cast<SHORT>(ReadU16(bytes, offset));
}

int CALLBACK PlayOneRecord(HDC dc, HANDLETABLE *table, METARECORD *record, int objects, LPARAM)
{
    // A record whose counts run past its end, or that names an object the
    // table has no slot for, is passed over, not played.
    if (objects >= 0 && MetaRecordIsSound(record, static_cast<DWORD>(objects)))
        PlayMetaFileRecord(dc, table, record, static_cast<UINT>(objects));
    else
        OSErrorSetErrorInfo(RV_BadMetafile);
    // Escape pressed since the last record stops the picture.
    return (GetAsyncKeyState(VK_ESCAPE) & 1) ? 0 : 1;
}

// True when the metafile's records chain to their end.
bool PlayableMetafile(HMETAFILE metafile)
{
    UINT size = GetMetaFileBitsEx(metafile, 0, nullptr);
    BYTE *bits = size ? static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, size)) : nullptr;
    bool sound = bits && GetMetaFileBitsEx(metafile, size, bits) == size &&
                 MetafileBitsAreSound(bits, size);
    if (bits)
        LocalFree(bits);
    return sound;
}

}  // namespace

extern "C" HGLOBAL WINAPI MF_OpenMetaFile(const char *name)
{
    HGLOBAL block;
    METAFILEPICT *picture = static_cast<METAFILEPICT *>(AllocateLocked(sizeof(METAFILEPICT), &block));
    if (!picture)
        return nullptr;
    HFILE file = name ? _lopen(name, OF_READ) : HFILE_ERROR;
    if (file == HFILE_ERROR) {
        OSErrorSetErrorInfo(RV_NoFile, name ? name : "");
    } else {
        LONG end = _llseek(file, 0, FILE_END);
        _llseek(file, 0, FILE_BEGIN);
        DWORD fileSize = end > 0 ? static_cast<DWORD>(end) : 0;
        picture->hMF = ReadPlaceable(file, fileSize, name, picture);
        _lclose(file);
    }
    return PictureBlockIf(block, picture->hMF != nullptr);
}

extern "C" HGLOBAL WINAPI MF_StreamToMF(const BYTE *stream, DWORD oldForm)
{
    HGLOBAL block;
    METAFILEPICT *picture = static_cast<METAFILEPICT *>(AllocateLocked(sizeof(METAFILEPICT), &block));
    if (!picture)
        return nullptr;
    // The bits begin with mtType 1 or 2, which tells the old form by the byte
    // at its offset.
    bool sound = ReadableRoom(stream, kOldFormHeader + 1) == kOldFormHeader + 1;
    DWORD offset = 0, size = 0;
    if (sound) {
        bool old = stream[kOldFormHeader] == 1 || stream[kOldFormHeader] == 2 || oldForm;
        if (old) {
            picture->mm = SignExtended(stream, 0);
            picture->xExt = SignExtended(stream, 2);
            picture->yExt = SignExtended(stream, 4);
            offset = kOldFormHeader;
        } else {
            sound = ReadableRoom(stream, kNewFormHeader) == kNewFormHeader;
            if (sound) {
                picture->mm = static_cast<LONG>(ReadU32(stream, 0));
                picture->xExt = static_cast<LONG>(ReadU32(stream, 4));
                picture->yExt = static_cast<LONG>(ReadU32(stream, 8));
            }
            offset = kNewFormHeader;
        }
    }
    sound = sound && ReadableRoom(stream + offset, kMetaHeaderSize) == kMetaHeaderSize &&
            MetafileByteCount(stream + offset, &size) && ReadableRoom(stream + offset, size) == size;
    if (!sound) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return PictureBlockIf(block, false);
    }
    picture->hMF = MetafileFromBits(stream + offset, size);
    return PictureBlockIf(block, picture->hMF != nullptr);
}

extern "C" DWORD WINAPI MF_Size(HGLOBAL metafile)
{
    const METAFILEPICT *picture =
        metafile ? static_cast<const METAFILEPICT *>(GlobalLock(metafile)) : nullptr;
    DWORD size = 0;
    if (picture && picture->hMF)
        size = GetMetaFileBitsEx(picture->hMF, 0, nullptr) + kNewFormHeader;
    else
        OSErrorSetErrorInfo(RV_BadMetafile);
    if (picture)
        GlobalUnlock(metafile);
    return size;
}

extern "C" BOOL WINAPI MF_MFToStream(BYTE *out, HGLOBAL metafile)
{
    DWORD size = MF_Size(metafile);
    if (!size)
        return FALSE;
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return FALSE;
    }
    const METAFILEPICT *picture = static_cast<const METAFILEPICT *>(GlobalLock(metafile));
    if (!picture)
        return FALSE;
    BOOL written = FALSE;
    if (picture->hMF) {
        // Four 32-bit fields on both builds; the handle is kept only as it was.
        DWORD fields[4] = {static_cast<DWORD>(picture->mm), static_cast<DWORD>(picture->xExt),
                           static_cast<DWORD>(picture->yExt),
                           static_cast<DWORD>(reinterpret_cast<UINT_PTR>(picture->hMF))};
        memcpy(out, fields, sizeof fields);
        GetMetaFileBitsEx(picture->hMF, size - kNewFormHeader, out + kNewFormHeader);
        written = TRUE;
    }
    GlobalUnlock(metafile);
    return written;
}

extern "C" LONG WINAPI MF_GetDimensions(HDC hdc, HGLOBAL metafile, SIZE *size)
{
    if (!size) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    // A handle with no picture behind it leaves the fall-back standing.
    const METAFILEPICT *picture =
        metafile ? static_cast<const METAFILEPICT *>(GlobalLock(metafile)) : nullptr;
    if (!picture)
        return size->cy;
    int measure = picture->mm;
    if (measure == MM_ISOTROPIC || measure == MM_ANISOTROPIC) {
        if (picture->xExt < 1 || picture->yExt < 1) {
            GlobalUnlock(metafile);
            return size->cy;
        }
        measure = MM_HIMETRIC;
    }
    int oldMode = SetMapMode(hdc, measure);
    POINT oldOrigin;
    SetWindowOrgEx(hdc, 0, 0, &oldOrigin);
    POINT extent = {picture->xExt, picture->yExt};
    LPtoDP(hdc, &extent, 1);
    size->cx = extent.x;
    size->cy = measure == MM_TEXT ? extent.y : -extent.y;
    SetMapMode(hdc, oldMode);
    SetWindowOrgEx(hdc, oldOrigin.x, oldOrigin.y, nullptr);
    GlobalUnlock(metafile);
    return size->cy;
}

extern "C" BOOL WINAPI MF_Play(HDC hdc, RECT *rect, HGLOBAL metafile)
{
    const METAFILEPICT *picture =
        metafile && rect ? static_cast<const METAFILEPICT *>(GlobalLock(metafile)) : nullptr;
    if (!picture) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return FALSE;
    }
    // An empty block plays nothing, as the enumerator answers for no
    // metafile; records that do not chain are refused before playing.
    if (!picture->hMF || !PlayableMetafile(picture->hMF)) {
        if (picture->hMF)
            OSErrorSetErrorInfo(RV_BadMetafile);
        GlobalUnlock(metafile);
        return FALSE;
    }
    int saved = SaveDC(hdc);
    SIZE size = {rect->right - rect->left, rect->bottom - rect->top};
    MF_GetDimensions(hdc, metafile, &size);
    IntersectClipRect(hdc, rect->left, rect->top, rect->right, rect->bottom);
    SetMapMode(hdc, picture->mm);
    switch (picture->mm) {
    case MM_ISOTROPIC:
        SetViewportOrgEx(hdc, rect->left, rect->top, nullptr);
        if (picture->xExt && picture->yExt)
            SetWindowExtEx(hdc, picture->xExt, picture->yExt, nullptr);
        SetViewportExtEx(hdc, size.cx, size.cy, nullptr);
        break;
    case MM_ANISOTROPIC:
        SetViewportOrgEx(hdc, rect->left, rect->top, nullptr);
        SetWindowExtEx(hdc, size.cx, size.cy, nullptr);
        SetViewportExtEx(hdc, size.cx, size.cy, nullptr);
        break;
    default:
        SetViewportOrgEx(hdc, rect->left, rect->top + size.cy, nullptr);
        break;
    }
    GetAsyncKeyState(VK_ESCAPE);  // clears the key's latch
    BOOL result = EnumMetaFile(hdc, picture->hMF, PlayOneRecord, 0);
    RestoreDC(hdc, saved);
    GlobalUnlock(metafile);
    return result;
}

extern "C" HGLOBAL WINAPI MF_Destroy(HGLOBAL metafile)
{
    const METAFILEPICT *picture =
        metafile ? static_cast<const METAFILEPICT *>(GlobalLock(metafile)) : nullptr;
    if (picture) {
        if (picture->hMF)
            DeleteMetaFile(picture->hMF);
        GlobalUnlock(metafile);
    }
    return GlobalFree(metafile);
}
