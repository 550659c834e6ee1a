// Bitmap files built byte by byte, and the bits of metafiles, for the
// drawing tests and the fuzzer.
#pragma once
#include <windows.h>
#include <cstring>
#include <vector>

struct BmpShape {
    int width = 4, height = 3;
    WORD bits = 8;
    bool core = false;       // 12-byte header, 3-byte colours
    DWORD clrUsed = 0;       // entries written (0: by the bit count)
    DWORD compression = 0;
    DWORD sizeImage = 0;     // 0: left for the reader to compute
    DWORD offBits = 1;       // 0 sends the reader back to the file's start
};

// The bits of `made`, which is deleted.
inline std::vector<BYTE> BitsOfMetafile(HMETAFILE made)
{
    std::vector<BYTE> bits(GetMetaFileBitsEx(made, 0, nullptr));
    GetMetaFileBitsEx(made, static_cast<UINT>(bits.size()), bits.data());
    DeleteMetaFile(made);
    return bits;
}

inline DWORD BmpRowBytes(const BmpShape &s) { return ((s.bits * s.width + 31) / 32) * 4; }

inline DWORD BmpColours(const BmpShape &s)
{
    if (s.clrUsed && !s.core)
        return s.clrUsed & 0xFFFF;
    return s.bits == 1 ? 2 : s.bits == 4 ? 16 : s.bits == 8 ? 256 : 0;
}

// Colour i of the table is (i, 255 - i, i * 3); row y byte x is y * 16 + x.
inline std::vector<BYTE> MakeBmp(const BmpShape &s)
{
    std::vector<BYTE> f(14);
    f[0] = 'B';
    f[1] = 'M';
    memcpy(&f[10], &s.offBits, 4);
    auto put = [&f](const void *p, size_t n) {
        f.insert(f.end(), static_cast<const BYTE *>(p), static_cast<const BYTE *>(p) + n);
    };
    if (s.core) {
        BITMAPCOREHEADER h = {12, static_cast<WORD>(s.width), static_cast<WORD>(s.height), 1, s.bits};
        put(&h, sizeof h);
    } else {
        BITMAPINFOHEADER h = {};
        h.biSize = 40;
        h.biWidth = s.width;
        h.biHeight = s.height;
        h.biPlanes = 1;
        h.biBitCount = s.bits;
        h.biCompression = s.compression;
        h.biSizeImage = s.sizeImage;
        h.biClrUsed = s.clrUsed;
        put(&h, sizeof h);
    }
    for (DWORD i = 0; i < BmpColours(s); ++i) {
        BYTE c[4] = {static_cast<BYTE>(i * 3), static_cast<BYTE>(255 - i), static_cast<BYTE>(i), 0};
        put(c, s.core ? 3 : 4);
    }
    DWORD rows = BmpRowBytes(s) * static_cast<DWORD>(s.height < 0 ? -s.height : s.height);
    for (DWORD i = 0; i < rows; ++i)
        f.push_back(static_cast<BYTE>((i / BmpRowBytes(s)) * 16 + i % BmpRowBytes(s)));
    return f;
}
