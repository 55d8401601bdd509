#!/usr/bin/python3
"""Writes the seed corpus of the fuzzers into fuzz/corpus/: one small valid TGA
file for every image type and depth the reader accepts (and the header
variants it must handle), and a few command lines. Run it again after
changing it; the files it writes are committed."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 3, 2
# Six pixels that differ in every channel, as (r, g, b, a).
PIXELS = [(255, 0, 0, 255), (0, 255, 0, 128), (0, 0, 255, 0),
          (10, 20, 30, 255), (200, 100, 50, 255), (255, 255, 255, 255)]


def header(imagetype, bits, idlen=0, maptype=0, maplen=0, mapbits=0, descriptor=0):
    return struct.pack("<BBBHHBHHHHBB", idlen, maptype, imagetype, 0, maplen, mapbits, 0, 0,
                       W, H, bits, descriptor)


def value(p, nbytes):
    r, g, b, a = p
    if nbytes == 1:
        return bytes([(r + g + b) // 3])
    if nbytes == 2:
        v = (0x8000 if a >= 128 else 0) | (r >> 3) << 10 | (g >> 3) << 5 | (b >> 3)
        return struct.pack("<H", v)
    return bytes([b, g, r, a][:nbytes])


def raw(bits):
    return b"".join(value(p, bits // 8) for p in PIXELS)


def rle(bits):
    """A run of the first pixel over two, a raw packet of three, a run of one."""
    n = bits // 8
    return (bytes([0x81]) + value(PIXELS[0], n) + bytes([0x02]) +
            b"".join(value(p, n) for p in PIXELS[2:5]) + bytes([0x80]) + value(PIXELS[5], n))


def mapped(mapbits):
    # 15-bit entries are read as one byte each, but skipped as 15 bits each.
    n = mapbits // 8
    colourmap = b"".join(value(p, n) for p in PIXELS)
    colourmap += bytes(len(PIXELS) * mapbits // 8 - len(colourmap))
    return (header(1, 8, maptype=1, maplen=len(PIXELS), mapbits=mapbits) + colourmap +
            bytes([0, 1, 2, 3, 4, 200]))  # the last index is beyond the map


TGA = {
    "true16.tga": header(2, 16) + raw(16),
    "true24.tga": header(2, 24) + raw(24),
    "true32.tga": header(2, 32, descriptor=8) + raw(32),
    "true24-topdown.tga": header(2, 24, descriptor=0x20) + raw(24),
    "true24-id-map.tga": header(2, 24, idlen=4, maptype=1, maplen=2, mapbits=24) + b"seed" +
                         bytes(6) + raw(24),
    "grey8.tga": header(3, 8) + raw(8),
    "grey16.tga": header(3, 16) + raw(16),
    "rle16.tga": header(10, 16) + rle(16),
    "rle24.tga": header(10, 24) + rle(24),
    "rle32.tga": header(10, 32, descriptor=0x28) + rle(32),
    "rlegrey8.tga": header(11, 8) + rle(8),
    "map15.tga": mapped(15),
    "map16.tga": mapped(16),
    "map24.tga": mapped(24),
    "map32.tga": mapped(32),
}

CMDLINE = {
    "quiet": ["-q", "-i", "image.tga"],
    "boxes": ["-b1", "2", "-b2", "1", "-bf", "1.5", "-n", "3"],
    "region": ["-sl", "10", "-sr", "30", "-sb", "2", "-st", "20"],
    "region-switch-value": ["-sl", "-q", "-st", "7"],
    "flags": ["-bw", "-p", "-d", "-q"],
    "usage": ["-n", "5", "-h", "-n", "7"],
    "trailing": ["-q", "-bf"],
}


def main():
    for sub, files in (("tga", TGA), ("cmdline", {k: "\0".join(v).encode() for k, v in CMDLINE.items()})):
        d = os.path.join(HERE, "corpus", sub)
        os.makedirs(d, exist_ok=True)
        for name, data in files.items():
            with open(os.path.join(d, name), "wb") as f:
                f.write(data)


if __name__ == "__main__":
    main()
