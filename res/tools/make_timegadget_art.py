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
import struct

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def mono_bitmap(rows):
    """A bottom-up 1-bit .bmp from strings of '#' (bit 0) and '.' (bit 1), top row first."""
    width, height = len(rows[0]), len(rows)
    stride = ((width + 31) // 32) * 4
    bits = b""
    for row in reversed(rows):
        value = 0
        for x, c in enumerate(row):
            if c == ".":
                value |= 0x80 >> (x % 8) << (8 * (x // 8))
        line = bytes((value >> (8 * i)) & 0xFF for i in range((width + 7) // 8))
        bits += line + b"\0" * (stride - len(line))
    palette = struct.pack("<4B4B", 0, 0, 0, 0, 255, 255, 255, 0)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 1, 0, len(bits), 2835, 2835, 2, 2)
    offset = 14 + len(info) + len(palette)
    header = struct.pack("<2sIHHI", b"BM", offset + len(bits), 0, 0, offset)
    return header + info + palette + bits


def colour_bitmap(rows, palette):
    """A bottom-up 24-bit .bmp from strings of palette keys, top row first."""
    width, height = len(rows[0]), len(rows)
    stride = ((width * 3 + 3) // 4) * 4
    bits = b""
    for row in reversed(rows):
        line = b"".join(bytes((b, g, r)) for r, g, b in (palette[c] for c in row))
        bits += line + b"\0" * (stride - len(line))
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(bits), 2835, 2835, 0, 0)
    offset = 14 + len(info)
    header = struct.pack("<2sIHHI", b"BM", offset + len(bits), 0, 0, offset)
    return header + info + bits


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
