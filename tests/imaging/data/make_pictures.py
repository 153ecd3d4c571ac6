#!/usr/bin/env python3
"""Writes the test pictures of this folder: small BMPs of every depth the preview reads, with
photo-like gradients, text-like strokes and flat areas, odd widths and padded rows. Run it again
to regenerate them; the output is deterministic."""
import math
import random
import struct

def row_bytes(width, bpp):
    return ((width * bpp + 31) // 32) * 4

def write_bmp(name, width, height, bpp, palette, pixel, top_down=False, core=False):
    """pixel(x, y) gives an index (paletted) or (r, g, b); y = 0 is the top of the picture."""
    stride = row_bytes(width, bpp)
    rows = []
    for fy in range(height):
        y = fy if top_down else height - 1 - fy
        row = bytearray(stride)
        for x in range(width):
            v = pixel(x, y)
            if bpp == 24:
                r, g, b = v
                row[3 * x:3 * x + 3] = bytes((b, g, r))
            elif bpp == 8:
                row[x] = v
            elif bpp == 4:
                row[x // 2] |= (v & 15) << (4 if x % 2 == 0 else 0)
            else:
                if v & 1:
                    row[x // 8] |= 0x80 >> (x % 8)
        rows.append(bytes(row))
    if core:
        header = struct.pack('<IhhHH', 12, width, height, 1, bpp)
        pal = b''.join(bytes((b, g, r)) for r, g, b in palette)
    else:
        header = struct.pack('<IiiHHIIiiII', 40, width, -height if top_down else height, 1, bpp, 0,
                             stride * height, 2835, 2835, len(palette), 0)
        pal = b''.join(bytes((b, g, r, 0)) for r, g, b in palette)
    off = 14 + len(header) + len(pal)
    data = b''.join(rows)
    with open(name, 'wb') as f:
        f.write(b'BM' + struct.pack('<IHHI', off + len(data), 0, 0, off) + header + pal + data)

def clamp(v):
    return 0 if v < 0 else 255 if v > 255 else int(v)

def photo(rng, w, h):
    px, py = rng.random(), rng.random()
    def f(x, y, c):
        fx, fy = x / max(w - 1, 1), y / max(h - 1, 1)
        d = (fx - px) ** 2 + (fy - py) ** 2
        v = 120 + 80 * math.sin(5 * fx + c) * math.cos(3 * fy + 0.5 * c) + 90 * math.exp(-d * 10) - 30 * fy
        return clamp(v + rng.randint(-6, 6))
    return f

def strokes(x, y):
    # Mostly white paper with letter-like bars, rules and a grey box.
    if 4 <= y % 14 <= 11 and (x % 7 in (1, 2) or (y % 14 in (4, 11) and x % 7 < 5)):
        return 0
    if y % 14 == 13 and x % 31 < 20:
        return 64
    return 255

rng = random.Random(1234)
grey = [(i, i, i) for i in range(256)]

f = photo(rng, 96, 102)
write_bmp('sample96x102_24.bmp', 96, 102, 24, [], lambda x, y: (f(x, y, 0), f(x, y, 1), f(x, y, 2)))
f = photo(rng, 97, 61)
write_bmp('photo97x61_24.bmp', 97, 61, 24, [], lambda x, y: (f(x, y, 0), f(x, y, 0.7), f(x, y, 2.1)))
f = photo(rng, 33, 21)
write_bmp('photo33x21_24_topdown.bmp', 33, 21, 24, [], lambda x, y: (f(x, y, 1), f(x, y, 2), f(x, y, 0)),
          top_down=True)
write_bmp('text121x40_8grey.bmp', 121, 40, 8, grey, strokes)
f = photo(rng, 75, 50)
write_bmp('photo75x50_8grey.bmp', 75, 50, 8, grey, lambda x, y: f(x, y, 0))
colour = [(rng.randrange(256), rng.randrange(256), rng.randrange(256)) for _ in range(256)]
f = photo(rng, 50, 37)
write_bmp('colour50x37_8.bmp', 50, 37, 8, colour, lambda x, y: f(x, y, 0))
std16 = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128), (0, 128, 128),
         (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0), (255, 255, 0), (0, 0, 255),
         (255, 0, 255), (0, 255, 255), (255, 255, 255)]
f = photo(rng, 45, 29)
write_bmp('icon45x29_4.bmp', 45, 29, 4, std16, lambda x, y: f(x, y, 0) >> 4)
write_bmp('logo71x23_1.bmp', 71, 23, 1, [(0, 0, 0), (255, 255, 255)],
          lambda x, y: 0 if strokes(x, y) < 128 else 1)
write_bmp('logo19x9_1_inverted.bmp', 19, 9, 1, [(250, 250, 240), (20, 10, 60)],
          lambda x, y: (x * y + x) % 3 == 0)
write_bmp('core17x5_8.bmp', 17, 5, 8, grey, lambda x, y: (x * 15 + y * 40) % 256, core=True)
write_bmp('tiny1x1_24.bmp', 1, 1, 24, [], lambda x, y: (129, 129, 129))
write_bmp('column1x13_8grey.bmp', 1, 13, 8, grey, lambda x, y: 20 * y)
