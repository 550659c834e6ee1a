#!/usr/bin/env python3
"""Writes the time gadgets' pictures into res/art. Run from anywhere; the
outputs are committed, so a build needs no Python.

  res/art/tumbler_up.bmp    7 x 4, 1 bit: an upward arrow (bit 0) on bit 1
  res/art/tumbler_down.bmp  the same arrow pointing down

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


UP = ["...#...", "..###..", ".#####.", "#######"]


def main():
    art = os.path.join(ROOT, "res", "art")
    with open(os.path.join(art, "tumbler_up.bmp"), "wb") as f:
        f.write(mono_bitmap(UP))
    with open(os.path.join(art, "tumbler_down.bmp"), "wb") as f:
        f.write(mono_bitmap(list(reversed(UP))))


if __name__ == "__main__":
    main()
