// Gadget registration with memory or GDI objects short: a failed
// registration takes down what it made, so nothing leaks and a retry works;
// and registering, making one of each gadget and taking all down again
// survives a refusal at every point.
#include "failure_seam.h"
#include "import_patch.h"
#include "qz_test.h"
#include "readback.h"

namespace {

const char *const kClasses[] = {"DialogTab", "Zimbo",       "QzBitmap",   "QzVListBox", "QzDVListBox",
                                "TimeTracker", "DateTracker", "TimeSetter", "Tumbler"};

int RegisteredClasses()
{
    WNDCLASSA wc;
    int count = 0;
    for (const char *name : kClasses)
        count += GetClassInfoA(LibraryModule(), name, &wc) ? 1 : 0;
    return count;
}

BOOL CALLBACK CountWindow(HWND, LPARAM counter)
{
    ++*reinterpret_cast<int *>(counter);
    return TRUE;
}

int ThreadWindows()
{
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

// One of each gadget in a parent, destroyed with it.
void MakeEveryGadget()
{
    HWND parent = CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr, nullptr, nullptr);
    for (const char *name : kClasses)
        CreateWindowA(name, "", WS_CHILD | WS_VISIBLE, 0, 0, 200, 150, parent, nullptr, nullptr, nullptr);
    DestroyWindow(parent);
}

using GadgetRegistrationShortOfMemory = ErrorStateTest;

// The label refused fails the registration; any refusal leaves no class
// registered, and after them all a registration takes every class again.
TEST_F(GadgetRegistrationShortOfMemory, EveryRefusalInRegisteringAndMakingEachGadget)
{
    auto run = [] {
        bool registered = RegisterGadgets(0) != 0;
        MakeEveryGadget();
        if (registered)
            UnRegisterGadgets();
        return registered;
    };
    run();  // once for what the system keeps after a first use
    ASSERT_EQ(0, RegisteredClasses());
    EXPECT_EQ(-1, UnRegisterGadgets());
    unsigned points;
    {
        FailureSeam count(FailureSeam::Memory | FailureSeam::Gdi, 0);
        EXPECT_TRUE(run());
        points = count.Calls();
    }
    ASSERT_GT(points, 9u);
    long gdiBefore = GdiObjectsInUse();
    int windowsBefore = ThreadWindows();
    {
        // Registration's one allocation: the copy of the colour label.
        FailureSeam seam(FailureSeam::Memory, 1);
        EXPECT_FALSE(RegisterGadgets(0));
        EXPECT_TRUE(seam.Refused());
    }
    ASSERT_EQ(0, RegisteredClasses());
    for (unsigned n = 1; n <= points; ++n) {
        {
            FailureSeam seam(FailureSeam::Memory | FailureSeam::Gdi, n);
            run();
        }
        ASSERT_EQ(0, RegisteredClasses()) << n;
        OSErrorClearError();
    }
    EXPECT_EQ(windowsBefore, ThreadWindows());
    EXPECT_EQ(gdiBefore, GdiObjectsInUse());
    EXPECT_TRUE(RegisterGadgets(0));
    EXPECT_EQ(9, RegisteredClasses());
    EXPECT_EQ(0, UnRegisterGadgets());
}

}  // namespace
