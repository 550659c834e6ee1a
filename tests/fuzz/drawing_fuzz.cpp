// Seeded fuzzer of the picture loaders: a generated corpus of valid and
// broken bitmap files, placeable metafiles and metafile streams, each
// mutated and fed through every loader. The in-memory loaders get the bytes
// right before an inaccessible page, so a read past the input faults; one
// bitmap in ten and one placeable metafile in three also go through the
// file loaders; one loaded metafile in four is measured (and played, for
// the corpus). Every input must end in a handle or in a recorded error and
// no handle, never a crash or hang. A crash names its loader and input, and
// writes the input to the file QZ_FUZZ_CRASH names.
//   drawing_fuzz [inputs] [seed]     (or QZ_FUZZ_INPUTS, QZ_FUZZ_SEED)
// The default is 100,000 mutated inputs on x86_64 and 20,000 on i686.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>
#include "../drawing/picture_files.h"
#include "fuzz_setting.h"
#include "qziso32.h"

namespace {

enum Kind { BitmapFile, PlaceableMetafile, MetafileStream, OldMetafileStream };

struct Input {
    Kind kind;
    std::vector<BYTE> bytes;
};

std::mt19937 g_random;
long g_failures = 0, g_loaded = 0, g_refused = 0;

unsigned Pick(unsigned n) { return static_cast<unsigned>(g_random() % n); }

// What runs now, so that a crash names its loader and input.
const char *g_step = "start";
unsigned long g_stepIndex;
const std::vector<BYTE> *g_stepBytes;

LONG WINAPI ReportCrash(EXCEPTION_POINTERS *info)
{
    std::printf("CRASH (code %08lx) in %s on input %lu\n",
                static_cast<unsigned long>(info->ExceptionRecord->ExceptionCode), g_step, g_stepIndex);
    std::fflush(stdout);
    // The input, for a test of its own: QZ_FUZZ_CRASH names the file.
    char name[MAX_PATH];
    if (g_stepBytes && GetEnvironmentVariableA("QZ_FUZZ_CRASH", name, sizeof name)) {
        if (FILE *f = std::fopen(name, "wb")) {
            std::fwrite(g_stepBytes->data(), 1, g_stepBytes->size(), f);
            std::fclose(f);
        }
    }
    ExitProcess(3);
}

void Step(const char *what, unsigned long index)
{
    g_step = what;
    g_stepIndex = index;
}

void Fail(const char *what, unsigned long index)
{
    if (++g_failures <= 20)
        std::printf("FAIL %s on input %lu\n", what, index);
}

void Put32(std::vector<BYTE> &b, size_t at, DWORD v)
{
    if (at + 4 <= b.size())
        memcpy(&b[at], &v, 4);
}

std::vector<BYTE> MetafileBits(int shapes)
{
    HDC m = CreateMetaFileA(nullptr);
    HBRUSH brush = CreateSolidBrush(RGB(10, 20, 30));
    SelectObject(m, brush);
    for (int i = 0; i < shapes; ++i) {
        Rectangle(m, i, i, 40 + i, 30 + i);
        POINT line[3] = {{0, 0}, {i, 9}, {20, i}};
        Polyline(m, line, 3);
        TextOutA(m, i, i, "Fuzz", 4);
    }
    HMETAFILE made = CloseMetaFile(m);
    DeleteObject(brush);
    return BitsOfMetafile(made);
}

std::vector<BYTE> PlaceableOf(const std::vector<BYTE> &bits)
{
    std::vector<BYTE> f(22);
    Put32(f, 0, 0x9AC6CDD7);
    WORD box[5] = {0, 0, 400, 300, 1440};
    memcpy(&f[6], box, sizeof box);
    f.insert(f.end(), bits.begin(), bits.end());
    return f;
}

std::vector<BYTE> StreamOf(const std::vector<BYTE> &bits, bool old)
{
    std::vector<BYTE> s(old ? 8 : 16);
    DWORD head[4] = {8, 400, 300, 0};
    SHORT small[4] = {1, 40, 30, 0};
    memcpy(s.data(), old ? static_cast<const void *>(small) : static_cast<const void *>(head), s.size());
    s.insert(s.end(), bits.begin(), bits.end());
    return s;
}

// Valid pictures and the classic broken ones.
std::vector<Input> Corpus()
{
    std::vector<Input> corpus;
    for (WORD bits : {1, 4, 8, 16, 24, 32})
        for (bool core : {false, true}) {
            BmpShape s;
            s.bits = bits;
            s.core = core;
            s.width = 5 + bits % 3;
            s.height = 9;
            corpus.push_back({BitmapFile, MakeBmp(s)});
            s.offBits = 0;
            corpus.push_back({BitmapFile, MakeBmp(s)});
        }
    BmpShape few;
    few.clrUsed = 7;
    corpus.push_back({BitmapFile, MakeBmp(few)});
    BmpShape rle;
    rle.compression = BI_RLE8;
    rle.sizeImage = 24;
    corpus.push_back({BitmapFile, MakeBmp(rle)});
    BmpShape topDown;
    topDown.bits = 24;
    topDown.height = -4;
    topDown.sizeImage = 48;
    corpus.push_back({BitmapFile, MakeBmp(topDown)});
    // Broken: cut at every header boundary, huge and negative sizes,
    // colours past the palette, depths and compressions that do not exist,
    // offsets past the end.
    const std::vector<BYTE> base = MakeBmp(BmpShape());
    for (size_t cut : {1u, 2u, 13u, 14u, 25u, 26u, 53u, 54u, 300u, 1078u, 1085u})
        corpus.push_back({BitmapFile, std::vector<BYTE>(base.begin(), base.begin() + cut)});
    const struct {
        size_t at;
        DWORD value;
    } pokes[] = {{14, 12}, {14, 64}, {14, 0xFFFFFFFF}, {18, 0x7FFFFFFF}, {18, 0x80000000},
                 {22, 0x7FFFFFFF}, {22, 0x80000000}, {22, 0xFFFFFFFF}, {28, 3}, {28, 0xFFFF},
                 {30, 7}, {30, 0xFFFFFFFF}, {34, 0xFFFFFFFF}, {34, 0xFFFFFFF0}, {46, 257},
                 {46, 0xFFFF}, {46, 0x10000}, {46, 0xFFFFFFFF}, {10, 0xFFFFFFFF}, {2, 0xFFFFFFFF}};
    for (const auto &p : pokes) {
        std::vector<BYTE> b = base;
        Put32(b, p.at, p.value);
        corpus.push_back({BitmapFile, b});
    }
    for (int shapes : {1, 3}) {
        std::vector<BYTE> bits = MetafileBits(shapes);
        corpus.push_back({PlaceableMetafile, PlaceableOf(bits)});
        corpus.push_back({MetafileStream, StreamOf(bits, false)});
        corpus.push_back({OldMetafileStream, StreamOf(bits, true)});
        std::vector<BYTE> zero = bits;
        Put32(zero, 18, 0);  // the first record of size 0
        corpus.push_back({PlaceableMetafile, PlaceableOf(zero)});
        corpus.push_back({MetafileStream, StreamOf(zero, false)});
        std::vector<BYTE> huge = bits;
        Put32(huge, 6, 0xFFFFFFFF);
        corpus.push_back({MetafileStream, StreamOf(huge, false)});
        corpus.push_back({PlaceableMetafile, PlaceableOf(huge)});
        const std::vector<BYTE> whole = PlaceableOf(bits);
        for (size_t cut : {4u, 21u, 22u, 39u, 40u, 46u})
            corpus.push_back({PlaceableMetafile, std::vector<BYTE>(whole.begin(), whole.begin() + cut)});
    }
    return corpus;
}

const DWORD kInteresting[] = {0, 1, 2, 3, 12, 40, 0xFF, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000,
                              0xFFFFFFFF, 0xFFFFFFFE, 0x3FFFFFFF};

std::vector<BYTE> Mutated(const std::vector<BYTE> &from)
{
    std::vector<BYTE> b = from;
    for (unsigned n = 1 + Pick(4); n; --n) {
        switch (Pick(6)) {
        case 0:  // flip a bit, mostly in the headers
            if (!b.empty())
                b[Pick(Pick(2) ? std::min<size_t>(b.size(), 64) : b.size())] ^= 1 << Pick(8);
            break;
        case 1:  // a random byte
            if (!b.empty())
                b[Pick(static_cast<unsigned>(b.size()))] = static_cast<BYTE>(g_random());
            break;
        case 2:  // an interesting 32-bit value at a header place
            if (b.size() >= 4)
                Put32(b, Pick(static_cast<unsigned>(std::min<size_t>(b.size(), 80) - 3)),
                      kInteresting[Pick(sizeof kInteresting / sizeof kInteresting[0])]);
            break;
        case 3:  // cut short
            b.resize(Pick(static_cast<unsigned>(b.size()) + 1));
            break;
        case 4:  // grow with noise
            for (unsigned k = Pick(64); k; --k)
                b.push_back(static_cast<BYTE>(g_random()));
            break;
        default:  // a 16-bit interesting value
            if (b.size() >= 2) {
                WORD v = static_cast<WORD>(kInteresting[Pick(sizeof kInteresting / sizeof kInteresting[0])]);
                memcpy(&b[Pick(static_cast<unsigned>(b.size()) - 1)], &v, 2);
            }
        }
    }
    return b;
}

// Bytes that end right where an inaccessible page begins.
struct GuardedBuffer {
    GuardedBuffer()
    {
        base = static_cast<BYTE *>(VirtualAlloc(nullptr, kRoom + kPage, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
        DWORD old;
        VirtualProtect(base + kRoom, kPage, PAGE_NOACCESS, &old);
    }
    const BYTE *Hold(const std::vector<BYTE> &bytes)
    {
        size_t n = std::min(bytes.size(), kRoom);
        BYTE *at = base + kRoom - n;
        if (n)
            memcpy(at, bytes.data(), n);
        return at;
    }
    static const size_t kPage = 4096, kRoom = 256 * 1024;
    BYTE *base;
};

// A result is either a handle with no error, or no handle and an error.
template <typename Release> void Check(HGLOBAL handle, const char *loader, unsigned long index, Release release)
{
    if (handle) {
        ++g_loaded;
        release(handle);
    } else {
        ++g_refused;
        if (OSErrorGetErrorValue() == RV_Success)
            Fail(loader, index);
    }
    OSErrorClearError();
}

void ReleaseDib(HGLOBAL dib)
{
    if (!DIB_DIBSize(dib))
        Fail("DIB_DIBSize of a loaded picture", 0);
    // Every 32nd loaded picture is made into a device bitmap too.
    if (!Pick(32)) {
        HBITMAP bitmap = DIB_BitmapFromDib(dib, nullptr);
        if (bitmap)
            DeleteObject(bitmap);
    }
    DIB_Destroy(dib);
}

// A small surface the loaded metafiles are played on.
HDC PlayingSurface()
{
    static HDC dc = [] {
        HDC memory = CreateCompatibleDC(nullptr);
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, 64, 64, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void *bits = nullptr;
        SelectObject(memory, CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        return memory;
    }();
    return dc;
}

void ReleaseMetafile(HGLOBAL metafile)
{
    MF_Size(metafile);
    // Every 4th loaded metafile is measured and played, records and all:
    // a mutant's records may claim more than they hold.
    if (!Pick(4)) {
        RECT rect = {2, 3, 60, 50};
        SIZE size = {58, 47};
        Step("MF_GetDimensions / MF_Play of a loaded metafile", g_stepIndex);
        MF_GetDimensions(PlayingSurface(), metafile, &size);
        MF_Play(PlayingSurface(), &rect, metafile);
        OSErrorClearError();
    }
    MF_Destroy(metafile);
}

}  // namespace

// Films with random layouts, frame counts, sequences and modes played from
// the resource library's film sheets on a memory context: refused or played,
// each must end with no film running.
void FuzzFilms(unsigned long count)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, CreateBitmap(64, 48, 1, 32, nullptr));
    for (unsigned long i = 0; i < count; ++i) {
        LONG sequence[12];
        for (LONG &cell : sequence)
            cell = static_cast<LONG>(Pick(14)) - 3;
        PlayFilm(dc, LONG(Pick(80)) - 8, LONG(Pick(60)) - 8, ResourceGetHandle(),
                 Pick(4) ? 9200 + Pick(2) : Pick(3) << 16 | 9200, LONG(Pick(12)) - 2, LONG(Pick(12)) - 2,
                 Pick(4), Pick(13), 0, 0xFF00FF, Pick(2), Pick(2) ? sequence : nullptr, Pick(4) != 0);
        if (Pick(2))
            NextFrame();
        if (EndFilm() && IsFilmPlaying())
            Fail("EndFilm", i);
    }
    OSErrorClearError();
    DeleteObject(SelectObject(dc, old));
    DeleteDC(dc);
}

int main(int argc, char **argv)
{
#if defined(_WIN64)
    const unsigned long defaultInputs = 100000;
#else
    const unsigned long defaultInputs = 20000;  // the 32-bit lane runs emulated
#endif
    const unsigned long inputs = Setting(argc, argv, 1, "QZ_FUZZ_INPUTS", defaultInputs);
    const unsigned long seed = Setting(argc, argv, 2, "QZ_FUZZ_SEED", 19980101);
    g_random.seed(seed);
    SetUnhandledExceptionFilter(ReportCrash);
    std::vector<Input> corpus = Corpus();
    GuardedBuffer guarded;
    char folder[MAX_PATH];
    GetTempPathA(sizeof folder, folder);
    std::string path = std::string(folder) + "qz_drawing_fuzz.tmp";
    // The corpus itself first, then its mutants.
    for (unsigned long i = 0; i < corpus.size() + inputs; ++i) {
        const Input &from = corpus[i < corpus.size() ? i : Pick(static_cast<unsigned>(corpus.size()))];
        std::vector<BYTE> bytes = i < corpus.size() ? from.bytes : Mutated(from.bytes);
        const BYTE *held = guarded.Hold(bytes);
        g_stepBytes = &bytes;
        OSErrorClearError();
        bool viaFile = i < corpus.size() || !Pick(from.kind == PlaceableMetafile ? 3 : 10);
        if (viaFile) {
            FILE *f = std::fopen(path.c_str(), "wb");
            if (f) {
                if (!bytes.empty())
                    std::fwrite(bytes.data(), 1, bytes.size(), f);
                std::fclose(f);
            }
        }
        switch (from.kind) {
        case BitmapFile:
            Step("DIB_FileStreamToDIB", i);
            Check(DIB_FileStreamToDIB(held), "DIB_FileStreamToDIB", i, ReleaseDib);
            Step("DIB_StreamToDIB", i);
            if (bytes.size() >= 14)
                Check(DIB_StreamToDIB(held + 14), "DIB_StreamToDIB", i, ReleaseDib);
            Step("DIB_OpenDIB / DIB_FiletoBM", i);
            if (viaFile) {
                Check(DIB_OpenDIB(path.c_str()), "DIB_OpenDIB", i, ReleaseDib);
                HBITMAP bitmap = DIB_FiletoBM(path.c_str());
                if (bitmap)
                    DeleteObject(bitmap);
                OSErrorClearError();
            }
            break;
        case PlaceableMetafile:
            Step("MF_OpenMetaFile / MF_StreamToMF old form", i);
            if (viaFile)
                Check(MF_OpenMetaFile(path.c_str()), "MF_OpenMetaFile", i, ReleaseMetafile);
            // From offset 14 the file reads as an old-form stream: the last
            // eight bytes of the placeable header, then the bits.
            if (bytes.size() >= 14)
                Check(MF_StreamToMF(held + 14, 1), "MF_StreamToMF old form", i, ReleaseMetafile);
            break;
        case MetafileStream:
        case OldMetafileStream:
            Step("MF_StreamToMF", i);
            Check(MF_StreamToMF(held, from.kind == OldMetafileStream || !Pick(4)), "MF_StreamToMF", i,
                  ReleaseMetafile);
            break;
        }
    }
    DeleteFileA(path.c_str());
    Step("films", 0);
    FuzzFilms(inputs / 20);
    std::printf("%zu corpus files and %lu mutants, seed %lu: %ld loaded, %ld refused, %ld failures\n",
                corpus.size(), inputs, seed, g_loaded, g_refused, g_failures);
    return g_failures ? 1 : 0;
}
