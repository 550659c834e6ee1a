#!/usr/bin/env python3
"""Writes the FreeTime gadget's person icons into res/art/freetime. Run from
anywhere; the outputs are committed, so a build needs no Python.

  res/art/freetime/state1.bmp .. state4.bmp   12 x 12, 24 bit, on the
      transparent key 0xFFFF00 (COLORREF): a head and shoulders in black
      outline, filled by the state: 1 green (invited), 2 yellow (tentative),
      3 red (declined), 4 grey (not answered)

A person's icon is bitmap state + 9, so these are bitmaps 10 to 13.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, pixel_bitmap  # noqa: E402

W = H = 12
KEY = (0, 255, 255)  # COLORREF 0xFFFF00
INK = (0, 0, 0)
FILLS = {1: (0, 160, 0), 2: (230, 200, 0), 3: (200, 0, 0), 4: (128, 128, 128)}


def person(fill):
    def pixel(x, y):
        # The head: a disc of radius 3 at (5.5, 3.5); the shoulders: a half
        # disc of radius 5.5 at (5.5, 12).
        head = (x - 5.5) ** 2 + (y - 3.5) ** 2
        body = (x - 5.5) ** 2 + (y - 12) ** 2
        if head <= 6.5:
            return fill
        if head <= 12.5:
            return INK
        if y >= 7 and body <= 20:
            return fill
        if y >= 7 and body <= 30.5:
            return INK
        return KEY
    return pixel


def main():
    art = os.path.join(ROOT, "res", "art", "freetime")
    os.makedirs(art, exist_ok=True)
    for state, fill in FILLS.items():
        with open(os.path.join(art, "state%d.bmp" % state), "wb") as f:
            f.write(pixel_bitmap(W, H, person(fill)))


if __name__ == "__main__":
    main()
