#!/usr/bin/env python3
"""Writes the end pieces of the dialog tabs into res/art. Run from anywhere;
the outputs are committed, so a build needs no Python.

  res/art/tab_current.bmp  12 x 18, 24 bit: the current tab's end piece
  res/art/tab_other.bmp    12 x 18, 24 bit: the other tabs' end piece

A tab is drawn with one copy of its end piece at each end: the left half of
the first copy and the right half of the second make its sides, and the part
between the two middles is filled. The pieces hold only the three colours the
gadget recolours to the user's scheme, 0xC0C0C0 (face), 0x808080 (shadow) and
0xFFFFFF (highlight), on the transparent key 0xFFFF00 (COLORREF).
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, colour_bitmap  # noqa: E402

WIDTH, HEIGHT = 12, 18
INSETS = [3, 2, 1, 1]  # the rounded top corners, row by row
PALETTE = {
    ".": (0x00, 0xFF, 0xFF),  # COLORREF 0xFFFF00: red 0, green 0xFF, blue 0xFF
    "w": (0xFF, 0xFF, 0xFF),
    "f": (0xC0, 0xC0, 0xC0),
    "s": (0x80, 0x80, 0x80),
}


def end_piece(current):
    """Lit from the top left: a highlight top and left side, a shadow right
    side with a face bevel inside it. The other tabs get a second bevel on
    the left, so that they look set back."""
    rows = []
    for y in range(HEIGHT):
        inset = INSETS[y] if y < len(INSETS) else 0
        row = ""
        for x in range(WIDTH):
            if x < inset or x > WIDTH - 1 - inset:
                row += "."
            elif x == WIDTH - 1 - inset:
                row += "s"
            elif x == WIDTH - 2 - inset and y > 0:
                row += "f"
            elif not current and x == inset + 1 and y > 1:
                row += "f"
            else:
                row += "w"
        rows.append(row)
    return rows


def main():
    art = os.path.join(ROOT, "res", "art")
    with open(os.path.join(art, "tab_current.bmp"), "wb") as f:
        f.write(colour_bitmap(end_piece(True), PALETTE))
    with open(os.path.join(art, "tab_other.bmp"), "wb") as f:
        f.write(colour_bitmap(end_piece(False), PALETTE))


if __name__ == "__main__":
    main()
