#!/usr/bin/env python3
"""Writes dither_sample.bmp, the picture the Dithering page previews: 96 x 102 pixels, 24 bits per
pixel, uncompressed. It holds what shows the dithering methods apart: a lit sphere (smooth
shading), a sky-to-ground background (large gentle gradients), a grey ramp (every level side by
side) and a few thin dark strokes (edges that error diffusion keeps and ordered dither frays)."""
import math
import struct

W, H = 96, 102


def pixel(x, y):
    # Background: a sky that darkens upwards over a warm floor.
    if y < 62:
        t = y / 62.0
        r, g, b = 120 + 100 * t, 160 + 80 * t, 220 + 30 * t
    else:
        t = (y - 62) / 40.0
        r, g, b = 200 - 80 * t, 160 - 70 * t, 110 - 60 * t
    # A sphere lit from the upper left, with a soft shadow on the floor.
    cx, cy, rad = 44.0, 40.0, 24.0
    dx, dy = (x - cx) / rad, (y - cy) / rad
    d2 = dx * dx + dy * dy
    sx, sy = (x - cx - 8) / (rad * 1.1), (y - 66) / (rad * 0.25)
    if sx * sx + sy * sy < 1.0 and d2 >= 1.0:
        shade = 0.55 + 0.45 * (sx * sx + sy * sy)
        r, g, b = r * shade, g * shade, b * shade
    if d2 < 1.0:
        nz = math.sqrt(1.0 - d2)
        light = max(0.0, -0.5 * dx - 0.6 * dy + 0.62 * nz)
        glint = light ** 24
        r = 40 + 200 * light + 255 * glint
        g = 20 + 120 * light + 255 * glint
        b = 10 + 60 * light + 255 * glint
    # Thin strokes: a frame corner and three lines of "text".
    if (x in (4, 5) and 4 <= y <= 30) or (y in (4, 5) and 4 <= x <= 30):
        r = g = b = 20
    for row in (70, 75, 80):
        if 6 <= x <= 70 - (row - 70) * 3 and y == row:
            r = g = b = 30
    # The grey ramp along the bottom edge.
    if y >= 88:
        r = g = b = 255.0 * x / (W - 1)
    return tuple(max(0, min(255, int(round(c)))) for c in (r, g, b))


def main():
    stride = (W * 3 + 3) & ~3
    pixels = bytearray()
    for y in range(H - 1, -1, -1):  # bottom-up rows
        row = bytearray()
        for x in range(W):
            r, g, b = pixel(x, y)
            row += bytes((b, g, r))
        row += bytes(stride - len(row))
        pixels += row
    header = struct.pack('<IiiHHIIiiII', 40, W, H, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    file_header = struct.pack('<2sIHHI', b'BM', 14 + 40 + len(pixels), 0, 0, 14 + 40)
    with open('dither_sample.bmp', 'wb') as out:
        out.write(file_header + header + pixels)


if __name__ == '__main__':
    main()
