#!/usr/bin/env python3
"""Writes the time gadgets' pictures into res/art. Run from anywhere; the
outputs are committed, so a build needs no Python.

  res/art/tumbler_up.bmp    7 x 4, 1 bit: an upward arrow (bit 0) on bit 1
  res/art/tumbler_down.bmp  the same arrow pointing down
  res/art/month_prev.bmp    9 x 9, 24 bit: the month calendar's button for the
                            month before, a black arrow pointing left on the
                            transparent key 0x818100, which its top-left
                            pixel carries
  res/art/month_next.bmp    the same arrow pointing right
  res/art/clock.bmp         17 x 17, 24 bit: the time scales' clock face, a
                            white dial with a black rim on the transparent
                            key 0x818100 (COLORREF); the gadgets draw the hands
  res/art/setter_up.bmp     11 x 13, 24 bit: the TimeSetter's up button, a
                            raised grey face with a black arrow, its corners
                            on the transparent key
  res/art/setter_down.bmp   the same button with the arrow pointing down

A monochrome glyph is ANDed onto a button face: bit 0 takes the text colour
and bit 1 the face colour.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, colour_bitmap, mono_bitmap  # noqa: E402


def clock_face(size=17):
    """A round dial without hands (the gadgets draw them): '.' the key,
    '#' the rim, 'o' the face."""
    centre = (size - 1) / 2
    rows = []
    for y in range(size):
        row = ""
        for x in range(size):
            d = ((x - centre) ** 2 + (y - centre) ** 2) ** 0.5
            row += "." if d > centre + 0.3 else "#" if d > centre - 1.2 else "o"
        rows.append(row)
    return rows


KEY = (0x00, 0x81, 0x81)  # COLORREF 0x818100: blue 0x81, green 0x81, red 0


UP = ["...#...", "..###..", ".#####.", "#######"]

# The month button: a left arrow in a 9 x 9 box, the key at the corners.
PREV = [
    ".........",
    ".....#...",
    "....##...",
    "...###...",
    "..####...",
    "...###...",
    "....##...",
    ".....#...",
    ".........",
]


def arrow_button(up, width=11, height=13):
    """A raised face: 'w' light edge, 'd' shadow, 'k' outer shadow and the
    arrow, 'g' the face, '.' the key at the corners."""
    rows = []
    for y in range(height):
        row = ""
        for x in range(width):
            corner = (x in (0, width - 1)) and (y in (0, height - 1))
            if corner:
                row += "."
            elif x == width - 1 or y == height - 1:
                row += "k"
            elif x == 0 or y == 0:
                row += "w"
            elif x == width - 2 or y == height - 2:
                row += "d"
            else:
                row += "g"
        rows.append(list(row))
    glyph = UP if up else list(reversed(UP))
    top = (height - len(glyph)) // 2
    left = (width - len(glyph[0])) // 2
    for gy, line in enumerate(glyph):
        for gx, c in enumerate(line):
            if c == "#":
                rows[top + gy][left + gx] = "k"
    return ["".join(r) for r in rows]


BUTTON_COLOURS = {".": KEY, "k": (0, 0, 0), "w": (255, 255, 255), "d": (128, 128, 128),
                  "g": (192, 192, 192)}


def main():
    art = os.path.join(ROOT, "res", "art")
    with open(os.path.join(art, "tumbler_up.bmp"), "wb") as f:
        f.write(mono_bitmap(UP))
    with open(os.path.join(art, "tumbler_down.bmp"), "wb") as f:
        f.write(mono_bitmap(list(reversed(UP))))
    month = {".": KEY, "#": (0, 0, 0)}
    with open(os.path.join(art, "month_prev.bmp"), "wb") as f:
        f.write(colour_bitmap(PREV, month))
    with open(os.path.join(art, "month_next.bmp"), "wb") as f:
        f.write(colour_bitmap([row[::-1] for row in PREV], month))
    with open(os.path.join(art, "clock.bmp"), "wb") as f:
        f.write(colour_bitmap(clock_face(), {".": KEY, "#": (0, 0, 0), "o": (255, 255, 255)}))
    for name, up in (("setter_up.bmp", True), ("setter_down.bmp", False)):
        with open(os.path.join(art, name), "wb") as f:
            f.write(colour_bitmap(arrow_button(up), BUTTON_COLOURS))


if __name__ == "__main__":
    main()
