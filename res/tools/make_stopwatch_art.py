#!/usr/bin/env python3
"""Writes the StopWatch's pictures into res/art. Run from anywhere; the
outputs are committed, so a build needs no Python.

  res/art/stopwatch_up.bmp    41 x 47, 24 bit: the watch at rest, a crown
                              and a round dial (centre 20, 26, radius 20)
                              with twelve marks, on the transparent key
                              0xFFFF00 (COLORREF); the gadget draws the hands
  res/art/stopwatch_down.bmp  the same watch with its crown pressed in

The gadget maps the light grey case (0xC0C0C0), its grey shadow (0x808080)
and the white dial (0xFFFFFF) to the system's button colours.
"""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, pixel_bitmap  # noqa: E402

W, H = 41, 47
CX, CY, R = 20, 26, 20
KEY = (0, 255, 255)  # COLORREF 0xFFFF00: blue 0xFF, green 0xFF, red 0
CASE, SHADOW, DIAL, INK = (192, 192, 192), (128, 128, 128), (255, 255, 255), (0, 0, 0)


def watch(pressed):
    crown_top = 2 if pressed else 0

    def pixel(x, y):
        d = math.hypot(x - CX, y - CY)
        if d <= R - 4:
            angle = math.degrees(math.atan2(x - CX, CY - y)) % 30
            on_mark = d >= R - 7 and (angle < 4 or angle > 26)
            return INK if on_mark else DIAL
        if d <= R - 3:
            return INK
        if d <= R:
            return SHADOW if x + y > CX + CY else CASE
        if 17 <= x <= 23 and crown_top <= y < 7:
            return SHADOW if x == 23 or y == 6 else CASE
        return KEY
    return pixel


def main():
    art = os.path.join(ROOT, "res", "art")
    for name, pressed in (("stopwatch_up.bmp", False), ("stopwatch_down.bmp", True)):
        with open(os.path.join(art, name), "wb") as f:
            f.write(pixel_bitmap(W, H, watch(pressed)))


if __name__ == "__main__":
    main()
