#!/usr/bin/env python3
"""Writes the TimeTracker's pictures and cursors into res/art/tracker. Run
from anywhere; the outputs are committed, so a build needs no Python.

  bar.bmp              8 x 8, 24 bit: the pattern of the bar between the clocks
  arrow2300.bmp ..     11 x 13, 24 bit: the scroll buttons, in pairs (plain,
  arrow2311.bmp        pressed): 2300 down, 2302 up, 2304 down towards the
                       appointment, 2306 up towards it, 2308 down at the day's
                       end, 2310 up at its start
  cursor80.cur ..      32 x 32 monochrome: 80 move the appointment, 81 move
  cursor85.cur         (only up: the day's end), 82 (only down: the day's
                       start), 83 move one end, 84 and 85 the same at the limits
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, colour_bitmap, mono_cursor  # noqa: E402

OUT = os.path.join(ROOT, "res", "art", "tracker")


BAR = ["#..##..#", "##..##..", ".##..##.", "..##..##", "#..##..#", "##..##..", ".##..##.", "..##..##"]

# A button face: 'w' light edge, 'd' dark edge, 'f' face, '#' the glyph.
UP_GLYPH = ["....#....", "...###...", "..#####..", ".#######.", "#########"]
TOWARDS = ["....#....", "...###...", "..#####..", ".#######.", "#########", ".........", "#########"]
LIMIT = ["#########", ".........", "....#....", "...###...", "..#####..", ".#######.", "#########"]


def button(glyph, pressed, flip):
    rows = [["f"] * 11 for _ in range(13)]
    for x in range(11):
        rows[0][x] = "d" if pressed else "w"
        rows[12][x] = "w" if pressed else "d"
    for y in range(13):
        rows[y][0] = "d" if pressed else "w"
        rows[y][10] = "w" if pressed else "d"
    lines = list(reversed(glyph)) if flip else glyph
    top = (13 - len(lines)) // 2 + (1 if pressed else 0)
    for dy, line in enumerate(lines):
        for dx, c in enumerate(line):
            if c == "#":
                rows[top + dy][1 + dx + (1 if pressed and dx < 8 else 0)] = "#"
    return ["".join(r) for r in rows]


def arrows():
    palette_plain = {"w": (255, 255, 255), "d": (128, 128, 128), "f": (192, 192, 192), "#": (0, 0, 0)}
    palette_towards = dict(palette_plain, **{"#": (0, 0, 255)})
    palette_limit = dict(palette_plain, **{"#": (128, 128, 128)})
    forms = [
        (2300, UP_GLYPH, True, palette_plain), (2302, UP_GLYPH, False, palette_plain),
        (2304, TOWARDS, True, palette_towards), (2306, TOWARDS, False, palette_towards),
        (2308, LIMIT, True, palette_limit), (2310, LIMIT, False, palette_limit),
    ]
    for base, glyph, flip, palette in forms:
        for pressed in (0, 1):
            yield base + pressed, colour_bitmap(button(glyph, pressed, flip), palette)


def cursor_pixel(kind, x, y):
    """'.' transparent, 'b' black, 'w' white: a vertical double arrow."""
    c = 15
    up = kind in (80, 81, 83, 84) and not kind in (82, 85)
    down = kind in (80, 82, 83, 85)
    if kind in (81, 84):
        down = False
    wide = 1 if kind >= 83 else 2
    # the stem
    if abs(x - c) <= wide and 8 <= y <= 22:
        return "b" if abs(x - c) < wide else "w"
    # the heads
    for on, tip, sign in ((up, 3, 1), (down, 27, -1)):
        if on:
            d = (y - tip) * sign
            if 0 <= d <= 6 and abs(x - c) <= d:
                return "b" if abs(x - c) < d else "w"
    if kind in (80, 81, 82) and 14 <= y <= 16 and 8 <= abs(x - c) + 8 <= 14 and abs(x - c) <= 6:
        return "b"
    return "."


def cursor(kind):
    return mono_cursor(32, lambda x, y: cursor_pixel(kind, x, y), 15)


def main():
    os.makedirs(OUT, exist_ok=True)
    with open(os.path.join(OUT, "bar.bmp"), "wb") as f:
        f.write(colour_bitmap(BAR, {"#": (64, 64, 64), ".": (255, 255, 255)}))
    for number, data in arrows():
        with open(os.path.join(OUT, "arrow%d.bmp" % number), "wb") as f:
            f.write(data)
    for kind in range(80, 86):
        with open(os.path.join(OUT, "cursor%d.cur" % kind), "wb") as f:
            f.write(cursor(kind))


if __name__ == "__main__":
    main()
