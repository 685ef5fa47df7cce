# SPDX-License-Identifier: MIT
#
# Pictures: noise, and files of the formats that the game reads. Colours have channels from 0 to 1 here.
import math
import struct
import zlib

from shape import INSET, clamp, smooth

KNOWN = {}


def lattice(x, y, z, seed):
    key = (x, y, z, seed)
    value = KNOWN.get(key)
    if value is None:
        h = (x * 374761393 + y * 668265263 + z * 2147483647 + seed * 1274126177) & 0xFFFFFFFF
        h = ((h ^ (h >> 13)) * 1274126177) & 0xFFFFFFFF
        h = ((h ^ (h >> 16)) * 2246822519) & 0xFFFFFFFF
        value = KNOWN[key] = ((h ^ (h >> 15)) & 0xFFFF) / 65535.0
    return value


def noise(x, y, z=0.0, seed=0, wrap=0):
    """From 0 to 1. With wrap, x and y come round after so many steps."""
    xi, yi, zi = math.floor(x), math.floor(y), math.floor(z)
    xf, yf, zf = x - xi, y - yi, z - zi
    xf, yf, zf = (f * f * (3 - 2 * f) for f in (xf, yf, zf))
    x0, x1, y0, y1 = (xi, xi + 1, yi, yi + 1) if not wrap else (
        xi % wrap, (xi + 1) % wrap, yi % wrap, (yi + 1) % wrap)

    def level(zz):
        a, b = lattice(x0, y0, zz, seed), lattice(x1, y0, zz, seed)
        c, d = lattice(x0, y1, zz, seed), lattice(x1, y1, zz, seed)
        low, high = a + (b - a) * xf, c + (d - c) * xf
        return low + (high - low) * yf
    low = level(zi)
    return low if zf == 0 else low + (level(zi + 1) - low) * zf


def cloud(x, y, z=0.0, octaves=4, seed=0, wrap=0):
    """From 0 to 1, mostly about a half."""
    total, share, whole = 0.0, 1.0, 0.0
    for k in range(octaves):
        total += share * noise(x, y, z, seed + k, wrap)
        whole += share
        share *= 0.5
        x, y, z, wrap = 2 * x, 2 * y, 2 * z, 2 * wrap
    return total / whole


def cells(x, y, seed=0, wrap=0):
    """How far to the nearest and the next of scattered points, and a number of the nearest."""
    xi, yi = math.floor(x), math.floor(y)
    near, next_, which = 9.0, 9.0, 0.0
    for j in (-1, 0, 1):
        for i in (-1, 0, 1):
            cx, cy = xi + i, yi + j
            wx, wy = (cx % wrap, cy % wrap) if wrap else (cx, cy)
            px, py = cx + lattice(wx, wy, 0, seed + 71), cy + lattice(wx, wy, 1, seed + 71)
            away = math.hypot(px - x, py - y)
            if away < near:
                near, next_, which = away, near, lattice(wx, wy, 2, seed + 71)
            elif away < next_:
                next_ = away
    return near, next_, which


def band(x, middle, width, soft=0.0):
    """1 within half the width of the middle, and soft beyond."""
    return 1 - smooth(width / 2, width / 2 + max(soft, 1e-6), abs(x - middle))


def hot(rgb, light):
    """A colour that goes to white where there is more light than it can show."""
    over = max(0.0, max(rgb) * light - 1)
    return tuple(clamp(c * light + 0.5 * over) for c in rgb)


class Canvas:
    def __init__(self, width, height=None, color=(0, 0, 0)):
        self.width, self.height = width, height or width
        self.pixels = [[color] * self.width for _ in range(self.height)]

    def fill(self, rect, color, inset=INSET):
        """color(s, t) over a rectangle, told as for models; its edges go on to the rectangle's."""
        left, top, right, bottom = (rect[0] * self.width, rect[1] * self.height,
                                    rect[2] * self.width, rect[3] * self.height)
        far_x, far_y = inset * self.width, inset * self.height
        for y in range(round(top), round(bottom)):
            t = clamp((y + 0.5 - top - far_y) / (bottom - top - 2 * far_y), 0.001, 0.999)
            for x in range(round(left), round(right)):
                s = clamp((x + 0.5 - left - far_x) / (right - left - 2 * far_x), 0.001, 0.999)
                self.pixels[y][x] = color(s, t)
        return self

    def all(self, color):
        return self.fill((0, 0, 1, 1), color, 0.0)

    def bytes_of(self, dither=False):
        bayer = (0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5)
        for y, row in enumerate(self.pixels):
            out = bytearray()
            for x, color in enumerate(row):
                up = (bayer[y % 4 * 4 + x % 4] + 0.5) / 16 if dither else 0.5
                for c in color:
                    out.append(min(255, max(0, math.floor(c * 255 + up))))
            yield out

    def png(self, path, dither=False):
        channels = len(self.pixels[0][0])
        rows, before = bytearray(), bytearray(self.width * channels)
        for row in self.bytes_of(dither):
            rows += filtered(row, before, channels)
            before = row
        chunk = lambda tag, data: (struct.pack(">I", len(data)) + tag + data +
                                   struct.pack(">I", zlib.crc32(tag + data)))
        head = struct.pack(">IIBBBBB", self.width, self.height, 8, {3: 2, 4: 6}[channels], 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) +
                       chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))

    def dds(self, path):
        """Uncompressed, blue first, with alpha."""
        head = b"DDS " + struct.pack("<7I44x", 124, 0x100F, self.height, self.width, self.width * 4, 0, 0)
        head += struct.pack("<8I", 32, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000)
        head += struct.pack("<5I", 0x1000, 0, 0, 0, 0)
        out = bytearray()
        for row in self.bytes_of():
            for x in range(0, len(row), 4):
                r, g, b, a = row[x:x + 4]
                out += bytes((b, g, r, a))
        with open(path, "wb") as file:
            file.write(head + out)


def filtered(row, before, step):
    """A row of a PNG by the filter after which it is likely to be smallest."""
    left = bytearray(step) + row[:-step]
    corner = bytearray(step) + before[:-step]

    def nearest(a, b, c):
        p = a + b - c
        pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
        return a if pa <= pb and pa <= pc else b if pb <= pc else c
    tries = [row, bytes((x - a) & 255 for x, a in zip(row, left)),
             bytes((x - b) & 255 for x, b in zip(row, before)),
             bytes((x - (a + b) // 2) & 255 for x, a, b in zip(row, left, before)),
             bytes((x - nearest(a, b, c)) & 255 for x, a, b, c in zip(row, left, before, corner))]
    size = [sum(min(x, 256 - x) for x in t) for t in tries]
    best = size.index(min(size))
    return bytes((best,)) + tries[best]


def bmp(path, side, height):
    """24 bits, of which blue is the height; the first row is the nearest."""
    pad = b"\0" * (-side * 3 % 4)
    rows = b"".join(b"".join(bytes((v, v, v)) for v in (
        round(clamp(height(x / (side - 1), y / (side - 1)), 0,
                    255)) for x in range(side))) + pad for y in range(side))
    with open(path, "wb") as file:
        file.write(b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54) +
                   struct.pack("<IiiHHIIiiII", 40, side, side, 1, 24, 0, len(rows), 2835, 2835, 0, 0) + rows)
