// "QzBitmap": the dialog colour under the picture, the centred transparent
// drawing, a monochrome bitmap drawn plain, and the handle it keeps.
#include "qz_test.h"
#include "readback.h"
#include "window_harness.h"

namespace {

const COLORREF kKey = RGB(255, 0, 255);
const COLORREF kInk = RGB(0, 0, 128);

// 10 x 6 pixels of the key colour with a 6 x 2 block of ink at (2, 2).
HBITMAP MakePicture()
{
    DWORD pixels[6][10];  // 0x00RRGGBB
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 10; ++x)
            pixels[y][x] = y >= 2 && y < 4 && x >= 2 && x < 8 ? 0x000080 : 0xFF00FF;
    return CreateBitmap(10, 6, 1, 32, pixels);
}

using QzBitmapGadget = GadgetTest;

TEST_F(QzBitmapGadget, DrawsOnTheDialogColourCentredWithTheKeyTransparent)
{
    RecordingParent parent;
    HWND g = parent.CreateChild("QzBitmap", 7, 0x8000, 0, 0, 30, 20);
    ASSERT_TRUE(g);
    const COLORREF dialog = UIGetDlgColor();
    Readback empty = Readback::Of(g);
    EXPECT_TRUE(empty.Uniform()) << "no bitmap: a plain rectangle";
    EXPECT_EQ(dialog, empty.At(15, 10));

    HBITMAP picture = MakePicture();
    EXPECT_EQ(0, SendMessageA(g, 0x401, reinterpret_cast<WPARAM>(picture), 0));
    EXPECT_EQ(reinterpret_cast<LRESULT>(picture), SendMessageA(g, 0x402, 0, 0));
    Readback shown = Readback::Of(g);
    // Centred: (30 - 10) / 2 = 10 across, (20 - 6) / 2 = 7 down.
    const RECT block = {12, 9, 18, 11};
    EXPECT_EQ(12, shown.Count(kInk, &block));
    EXPECT_EQ(12, shown.Count(kInk)) << "ink only where the block is";
    EXPECT_EQ(0, shown.Count(kKey)) << "no pixel of the key colour survives";
    EXPECT_EQ(30 * 20 - 12, shown.Count(dialog));

    // Back to none: the dialog colour alone, and the bitmap is still the caller's.
    SendMessageA(g, 0x401, 0, 0);
    EXPECT_TRUE(Readback::Of(g).Uniform());
    BITMAP info;
    EXPECT_NE(0, GetObjectA(picture, sizeof info, &info)) << "the gadget never deletes it";
    DestroyWindow(g);
    DeleteObject(picture);
}

TEST_F(QzBitmapGadget, PlainStyleAndMonochromeBitmapsAreDrawnAsTheyAre)
{
    HBITMAP picture = MakePicture();
    const BYTE monoBits[2 * 6] = {0xFF, 0xC0, 0xFF, 0xC0, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xC0, 0xFF, 0xC0};
    HBITMAP mono = CreateBitmap(10, 6, 1, 1, monoBits);
    struct Row {
        DWORD style;
        HBITMAP bitmap;
    } rows[] = {{0, picture}, {0x8000, mono}, {0, mono}};
    for (const Row &row : rows) {
        RecordingParent parent;
        HWND g = parent.CreateChild("QzBitmap", 7, row.style, 0, 0, 30, 20);
        SendMessageA(g, 0x401, reinterpret_cast<WPARAM>(row.bitmap), 0);
        Readback shown = Readback::Of(g);
        // Drawn over it the way UIBitBlt draws into the client rectangle.
        HDC dc = GetDC(g);
        HBRUSH brush = CreateSolidBrush(UIGetDlgColor());
        RECT client = {0, 0, 30, 20};
        FillRect(dc, &client, brush);
        UIBitBlt(dc, &client, row.bitmap);
        EXPECT_EQ(0, shown.Differences(ReadDC(dc, 0, 0, 30, 20))) << row.style << (row.bitmap == mono ? " mono" : "");
        if (row.bitmap == picture) {
            EXPECT_GT(shown.Count(kKey), 0) << "without 0x8000 the key colour stays";
        }
        ReleaseDC(g, dc);
        DeleteObject(brush);
        DestroyWindow(g);
    }
    DeleteObject(mono);
    DeleteObject(picture);
}

}  // namespace
