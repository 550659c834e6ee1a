// Fails one allocation or GDI creation of the library, counted from the
// seam's construction, so a test can walk every point where the library
// asks the system for memory or a GDI object:
//
//     unsigned points;
//     { FailureSeam count(FailureSeam::Memory | FailureSeam::Gdi, 0); Run(); points = count.Calls(); }
//     for (unsigned n = 1; n <= points; ++n) {
//         FailureSeam seam(FailureSeam::Memory | FailureSeam::Gdi, n);
//         Run();   // the n-th request fails; nothing may crash, hang or leak
//     }
//
// It patches the library's import table (see import_patch.h): the library
// itself has no test hook. Only calls the library makes through its imports
// are counted; one seam lives at a time.
#pragma once
#include <windows.h>
#include <memory>
#include <vector>

class ImportPatch;

class FailureSeam {
public:
    enum Kinds : unsigned {
        Memory = 0x1, // LocalAlloc, GlobalAlloc, HeapAlloc and their ReAllocs, malloc, calloc, realloc
        Gdi = 0x2,    // the GDI object creators: DCs, bitmaps, DIB sections, brushes, pens, fonts, regions
    };
    // Counts the requests of `kinds` from now on; the `failAt`-th (from 1)
    // fails, and when `sticky` every one after it too. 0 fails none.
    FailureSeam(unsigned kinds, unsigned failAt, bool sticky = false);
    ~FailureSeam();
    FailureSeam(const FailureSeam &) = delete;
    FailureSeam &operator=(const FailureSeam &) = delete;

    // Requests counted so far.
    unsigned Calls() const;
    // True once a request was refused.
    bool Refused() const;

private:
    std::vector<std::unique_ptr<ImportPatch>> patches_;
};
