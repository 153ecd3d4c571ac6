#!/usr/bin/env python3
"""bmp_to_png.py FILE.bmp...: converts the 24-bit snapshots of dialog_snapshot to PNG beside them."""
import struct
import sys
import zlib


def convert(src, dst):
    data = open(src, 'rb').read()
    offset = struct.unpack_from('<I', data, 10)[0]
    width, height = struct.unpack_from('<ii', data, 18)
    stride = (width * 3 + 3) & ~3
    rows = []
    for y in range(abs(height)):
        sy = (height - 1 - y) if height > 0 else y
        bgr = data[offset + sy * stride: offset + sy * stride + width * 3]
        rgb = bytearray(width * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = bgr[2::3], bgr[1::3], bgr[0::3]
        rows.append(b'\0' + bytes(rgb))

    def chunk(kind, body):
        return struct.pack('>I', len(body)) + kind + body + struct.pack('>I', zlib.crc32(kind + body) & 0xffffffff)

    header = struct.pack('>IIBBBBB', width, abs(height), 8, 2, 0, 0, 0)
    with open(dst, 'wb') as out:
        out.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', header) + chunk(b'IDAT', zlib.compress(b''.join(rows), 9))
                  + chunk(b'IEND', b''))


for name in sys.argv[1:]:
    convert(name, name[:-4] + '.png')
