"""Small helpers for the end-to-end tests: writing TGA files and an
independent drand48, so expected offsets can be worked out from a seed."""
import struct


def tga(path, width, height, pixels, kind="rgb", descriptor=0, imagetype=None, bits=None):
    """Writes an uncompressed TGA. pixels: rows bottom first, each a list of
    (r, g, b) tuples (kind "rgb", 24 bits) or grey values (kind "grey")."""
    if imagetype is None:
        imagetype = 2 if kind == "rgb" else 3
    if bits is None:
        bits = 24 if kind == "rgb" else 8
    data = bytearray(struct.pack("<BBBHHBHHHHBB", 0, 0, imagetype, 0, 0, 0, 0, 0,
                                 width, height, bits, descriptor))
    for row in pixels:
        for p in row:
            data += bytes([p[2], p[1], p[0]]) if kind == "rgb" else bytes([p])
    with open(path, "wb") as f:
        f.write(data)


def rgb_image(path, width, height, pixel):
    """A 24-bit image; pixel(x, y) gives (r, g, b), y counted up from the bottom row."""
    tga(path, width, height, [[pixel(x, y) for x in range(width)] for y in range(height)])


def image(path, width, height, black):
    """A grey image, black where black(x, y) holds, white elsewhere."""
    tga(path, width, height,
        [[0 if black(x, y) else 255 for x in range(width)] for y in range(height)], kind="grey")


class Drand48:
    """The 48-bit linear congruential generator of srand48/drand48."""

    def __init__(self, seed):
        self.x = ((seed & 0xFFFFFFFF) << 16) | 0x330E

    def __call__(self):
        self.x = (0x5DEECE66D * self.x + 0xB) & ((1 << 48) - 1)
        return self.x / float(1 << 48)
