#!/usr/bin/env python3
"""Writes the frames of the turning busy cursor that every resource library
carries. Run from anywhere; the files land in res/art/cursors and are
committed, so a build needs no Python.

  res/art/cursors/busy1.cur .. busy8.cur   32 x 32 monochrome cursors, hot spot
      in the middle: a white disc with a black rim and a black hand that
      turns by 45 degrees from one frame to the next, starting straight up
"""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, mono_cursor  # noqa: E402
SIZE = 32
CENTRE = 15.5
RADIUS = 11.0


def pixel(frame, x, y):
    """'.' transparent, 'b' black, 'w' white."""
    dx, dy = x - CENTRE, y - CENTRE
    distance = math.hypot(dx, dy)
    if distance > RADIUS + 1.0:
        return "."
    if distance > RADIUS - 1.0:
        return "b"
    angle = math.radians(frame * 45)
    ux, uy = math.sin(angle), -math.cos(angle)   # straight up at frame 0
    along = dx * ux + dy * uy
    across = abs(dx * uy - dy * ux)
    if 0 <= along <= RADIUS - 2.0 and across <= 1.5:
        return "b"
    return "w"


def cursor(frame):
    """A .cur file: one 32 x 32, 1-bit image with its AND mask."""
    return mono_cursor(SIZE, lambda x, y: pixel(frame, x, y), SIZE // 2 - 1)


def main():
    folder = os.path.join(ROOT, "res", "art", "cursors")
    os.makedirs(folder, exist_ok=True)
    for frame in range(8):
        name = "busy%d.cur" % (frame + 1)
        data = cursor(frame)
        with open(os.path.join(folder, name), "wb") as out:
            out.write(data)
        print("res/art/cursors/" + name, len(data), "bytes")


if __name__ == "__main__":
    main()
