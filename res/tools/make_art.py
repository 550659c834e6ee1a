#!/usr/bin/env python3
"""Writes the pictures the resource libraries carry, and the broken ones the
tests use. Run from anywhere; the files land in res/art and tests/probes/art.
The outputs are committed, so a build needs no Python.

  res/art/sample.bmp       32 x 16, 24 bits: red left half, blue right half
  res/art/sample.wmf       placeable metafile, bounds 0,0,1000,500 at 1440 per
                           inch: a red rectangle over the middle quarter
  tests/probes/art/*.wmf   the same picture with a wrong key, an inch of 0,
                           left beyond right, and a size past the resource's end
"""
import os
import struct
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, pixel_bitmap as bitmap  # noqa: E402

PLACEABLE_KEY = 0x9AC6CDD7


def record(function, *params):
    """One metafile record: size in words, function number, 16-bit parameters."""
    return struct.pack("<IH", 3 + len(params), function) + struct.pack("<%dH" % len(params), *params)


def metafile(right, bottom):
    red = 0x000000FF  # COLORREF: 0x00bbggrr
    records = [
        record(0x020B, 0, 0),  # SetWindowOrg(y, x)
        record(0x020C, bottom, right),  # SetWindowExt(y, x)
        # CreateBrushIndirect: style BS_SOLID, colour as two words, hatch
        record(0x02FC, 0, red & 0xFFFF, red >> 16, 0),
        record(0x012D, 0),  # SelectObject(object 0)
        # Rectangle(bottom, right, top, left): the middle quarter
        record(0x041B, bottom * 3 // 4, right * 3 // 4, bottom // 4, right // 4),
        record(0x0000),  # end of file
    ]
    body = b"".join(records)
    size_words = 9 + len(body) // 2
    biggest = max(len(r) // 2 for r in records)
    header = struct.pack("<HHHIHIH", 1, 9, 0x0300, size_words, 1, biggest, 0)
    return header + body


def placeable(left, top, right, bottom, inch, key=PLACEABLE_KEY, body=None):
    head = struct.pack("<IHhhhhHI", key, 0, left, top, right, bottom, inch, 0)
    checksum = 0
    for (word,) in struct.iter_unpack("<H", head):
        checksum ^= word
    return head + struct.pack("<H", checksum) + (body if body is not None else metafile(1000, 500))


def too_long():
    """A header whose metafile size reaches past the end of the resource."""
    body = bytearray(metafile(1000, 500))
    struct.pack_into("<I", body, 6, 0x10000)
    return placeable(0, 0, 1000, 500, 1440, body=bytes(body))


def write(relative, data):
    path = os.path.join(ROOT, relative)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as out:
        out.write(data)
    print(relative, len(data), "bytes")


def main():
    write("res/art/sample.bmp",
          bitmap(32, 16, lambda x, y: (200, 0, 0) if x < 16 else (0, 0, 200)))
    write("res/art/sample.wmf", placeable(0, 0, 1000, 500, 1440))
    write("tests/probes/art/wrong_key.wmf", placeable(0, 0, 1000, 500, 1440, key=0x12345678))
    write("tests/probes/art/inch_zero.wmf", placeable(0, 0, 1000, 500, 0))
    write("tests/probes/art/left_beyond_right.wmf", placeable(1000, 0, 0, 500, 1440))
    write("tests/probes/art/too_long.wmf", too_long())


if __name__ == "__main__":
    main()
