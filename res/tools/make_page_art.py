#!/usr/bin/env python3
"""Writes the Page's cursors into res/art/page. Run from anywhere; the
outputs are committed, so a build needs no Python.

  cursor30.cur   32 x 32 monochrome: a double arrow up and down across a
                 line, for the top and bottom margin lines
  cursor31.cur   the same turned on its side, for the left and right ones
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, mono_cursor  # noqa: E402

OUT = os.path.join(ROOT, "res", "art", "page")


def up_down(x, y):
    """'.' transparent, 'b' black, 'w' white: arrows up and down from a bar."""
    c = 15
    if 14 <= y <= 16 and 4 <= x <= 26:
        return "b" if y == 15 else "w"
    if abs(x - c) <= 1 and 6 <= y <= 24:
        return "b" if x == c else "w"
    for tip, sign in ((2, 1), (28, -1)):
        d = (y - tip) * sign
        if 0 <= d <= 5 and abs(x - c) <= d:
            return "b" if abs(x - c) < d else "w"
    return "."


def main():
    os.makedirs(OUT, exist_ok=True)
    with open(os.path.join(OUT, "cursor30.cur"), "wb") as f:
        f.write(mono_cursor(32, up_down, 15))
    with open(os.path.join(OUT, "cursor31.cur"), "wb") as f:
        f.write(mono_cursor(32, lambda x, y: up_down(y, x), 15))


if __name__ == "__main__":
    main()
