"""The .bmp and .cur writers the art scripts share. Every picture is given
top row first and written bottom-up, the way the files store it."""
import os
import struct

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def pixel_bitmap(width, height, pixel):
    """A bottom-up 24-bit .bmp; pixel(x, y) gives (r, g, b) with y from the top."""
    stride = ((width * 3 + 3) // 4) * 4
    bits = b""
    for y in reversed(range(height)):
        line = b"".join(bytes((b, g, r)) for r, g, b in (pixel(x, y) for x in range(width)))
        bits += line + b"\0" * (stride - len(line))
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(bits), 2835, 2835, 0, 0)
    offset = 14 + len(info)
    header = struct.pack("<2sIHHI", b"BM", offset + len(bits), 0, 0, offset)
    return header + info + bits


def colour_bitmap(rows, palette):
    """A bottom-up 24-bit .bmp from strings of palette keys, top row first."""
    return pixel_bitmap(len(rows[0]), len(rows), lambda x, y: palette[rows[y][x]])


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


def mono_cursor(size, pixel, hot):
    """A .cur file holding one size x size, 1-bit image with its AND mask;
    pixel(x, y) gives '.' transparent, 'b' black or 'w' white, y from the top;
    the hot spot is at (hot, hot)."""
    stride = size // 8
    xor_rows, and_rows = [], []
    for y in reversed(range(size)):
        xor_bits = and_bits = 0
        for x in range(size):
            p = pixel(x, y)
            bit = 1 << (size - 1 - x)
            if p == ".":
                and_bits |= bit
            elif p == "w":
                xor_bits |= bit
        xor_rows.append(xor_bits.to_bytes(stride, "big"))
        and_rows.append(and_bits.to_bytes(stride, "big"))
    info = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 1, 0, 0, 0, 0, 2, 0)
    colours = struct.pack("<II", 0x000000, 0xFFFFFF)
    image = info + colours + b"".join(xor_rows) + b"".join(and_rows)
    directory = struct.pack("<HHH", 0, 2, 1)
    entry = struct.pack("<BBBBHHII", size, size, 2, 0, hot, hot, len(image), 6 + 16)
    return directory + entry + image
