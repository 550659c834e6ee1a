#!/usr/bin/env python3
"""Writes the film sheets into res/art. Run from anywhere; the outputs are
committed, so a build needs no Python.

  res/art/film_cells.bmp   64 x 32, 24 bit: 4 columns x 2 rows of 16 x 16
                           cells; cell n is a square of colour n (8 x 8, at
                           4, 4) on the transparent key 0xFF00FF (COLORREF)
  res/art/film_masked.bmp  128 x 32, 24 bit: the same 4 x 2 cells at 32 x 16,
                           each cell's left half the picture (wholly colour
                           n) and its right half the mask, white where the
                           picture is transparent and black over the square
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from bmp_writer import ROOT, pixel_bitmap  # noqa: E402

KEY = (255, 0, 255)
CELL = 16
COLUMNS, ROWS = 4, 2
COLOURS = [(255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0),
           (0, 255, 255), (128, 0, 0), (0, 128, 0), (0, 0, 128)]


def in_square(x, y):
    return 4 <= x < 12 and 4 <= y < 12


def cells(x, y):
    n = (y // CELL) * COLUMNS + x // CELL
    return COLOURS[n] if in_square(x % CELL, y % CELL) else KEY


def masked(x, y):
    n = (y // CELL) * COLUMNS + x // (2 * CELL)
    cx, cy = x % (2 * CELL), y % CELL
    if cx < CELL:
        return COLOURS[n]
    return (0, 0, 0) if in_square(cx - CELL, cy) else (255, 255, 255)


def main():
    art = os.path.join(ROOT, "res", "art")
    with open(os.path.join(art, "film_cells.bmp"), "wb") as f:
        f.write(pixel_bitmap(COLUMNS * CELL, ROWS * CELL, cells))
    with open(os.path.join(art, "film_masked.bmp"), "wb") as f:
        f.write(pixel_bitmap(COLUMNS * 2 * CELL, ROWS * CELL, masked))


if __name__ == "__main__":
    main()
