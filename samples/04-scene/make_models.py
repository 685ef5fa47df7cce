#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes the models and pictures of the reef: data/mesh/reef_*.mesh and data/img/reef_*.png. Nothing is
# needed but Python. docs/model_file.md describes what is written. Runs in the repository's root.
import math
import struct
import zlib


class Model:
    def __init__(self):
        self.points, self.uvs, self.skins, self.indices = [], [], [], []

    def add(self, point, uv, skin=None):
        self.points.append(point), self.uvs.append(uv), self.skins.append(skin)
        return len(self.points) - 1

    def grid(self, rows, columns, place):
        """A surface: place(i, j) gives point and uv, and the bones of a skinned one."""
        first = len(self.points)
        for i in range(rows + 1):
            for j in range(columns + 1):
                self.add(*place(i / rows, j / columns))
        for i in range(rows):
            for j in range(columns):
                a = first + i * (columns + 1) + j
                b = a + columns + 1
                self.indices += [a, b, a + 1, a + 1, b, b + 1]

    def normals(self):
        """The mean of the faces about each place, seams included."""
        sums = {}
        key = lambda p: tuple(round(c, 4) for c in p)
        for t in range(0, len(self.indices), 3):
            p, q, r = (self.points[i] for i in self.indices[t:t + 3])
            u, v = [b - a for a, b in zip(p, q)], [b - a for a, b in zip(p, r)]
            n = (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])
            for corner in (p, q, r):
                sums[key(corner)] = [a + b for a, b in zip(sums.get(key(corner), (0, 0, 0)), n)]
        for point in self.points:
            n = sums.get(key(point), (0, 1, 0))
            length = math.sqrt(sum(c * c for c in n)) or 1
            yield tuple(c / length for c in n)

    def write(self, name, tail=b""):
        skinned = self.skins[0] is not None
        out = b"VORN" + struct.pack("<I", 1) + b"MESH" + struct.pack("<I", 1)
        out += struct.pack("<II", skinned, len(self.indices))
        out += struct.pack(f"<{len(self.indices)}I", *self.indices)
        out += struct.pack("<I", len(self.points))
        for point, normal, uv, skin in zip(self.points, self.normals(), self.uvs, self.skins):
            out += struct.pack("<8f", *point, *normal, *uv)
            if skinned:
                bones, weights = skin
                out += struct.pack("<4f4B", *weights, *bones)
        with open(f"data/mesh/{name}", "wb") as file:
            file.write(out + tail)


def lump(width, height, length, bumps):
    """A ball, stretched along the axes; `bumps` is how far its surface goes in and out."""
    def place(i, j):
        up, round_ = (i - 0.5) * math.pi, j * 2 * math.pi
        x, y, z = math.cos(up) * math.cos(round_), math.sin(up), math.cos(up) * math.sin(round_)
        r = 1 + bumps * (math.sin(3 * x + 1) * math.sin(4 * y) + math.sin(5 * z + 2 * y))
        return (x * r * width, y * r * height, z * r * length), (2 * j, i)
    model = Model()
    model.grid(16, 24, place)
    return model


def fish():
    model = lump(0.4, 0.6, 1.1, 0)
    turns = lambda f: (f[1][1] - f[0][1]) * (f[2][2] - f[0][2]) > (f[1][2] - f[0][2]) * (f[2][1] - f[0][1])
    for fin in (((0, 0.1, -0.9), (0, 0.7, -1.7), (0, 0, -1.4)), ((0, -0.1, -0.9), (0, -0.7, -1.7), (0, 0, -1.4)),
                ((0, 0.5, 0.3), (0, 1.0, -0.5), (0, 0.5, -0.5))):
        for side in (0.03, -0.03):
            corners = [model.add((side, y, z), (0.1 * z, 0.55 + 0.1 * y)) for _, y, z in fin]
            model.indices += corners if turns(fin) == (side > 0) else corners[::-1]
    return model


def sand():
    height = lambda x, z: 0.25 * math.sin(0.5 * x + math.sin(0.21 * z)) + 0.2 * math.sin(0.37 * z - 0.15 * x)
    def place(i, j):
        x, z = (i - 0.5) * 90, (j - 0.5) * 90
        return (x, height(x, z), z), (x / 6, z / 6)
    model = Model()
    model.grid(40, 40, lambda i, j: place(j, i))
    return model


BONES, SEGMENT, PERIOD, KEYS = 8, 0.8, 27.0, 36


def weed():
    """A band that narrows upwards, with a bone in each of its eight parts."""
    def place(i, j):
        # Its height in bones; each part hangs on its own bone in the middle and on two at its ends.
        at = i * BONES
        lower = min(max(math.floor(at - 0.5), 0), BONES - 1)
        upper = min(lower + 1, BONES - 1)
        share = min(max(at - 0.5 - lower, 0), 1) if upper > lower else 0
        wide, round_ = 0.34 * (1 - 0.8 * i) * (1 + 0.25 * math.sin(at * 4)), j * 2 * math.pi
        point = (wide * math.cos(round_), at * SEGMENT, 0.35 * wide * math.sin(round_))
        return point, (j, i), ((lower, upper, 0, 0), (1 - share, share, 0, 0))
    model = Model()
    model.grid(40, 10, place)
    model.indices = [i for t in range(0, len(model.indices), 3) for i in model.indices[t:t + 3][::-1]]
    return model


def weed_bones():
    out = b"SKEL" + struct.pack("<II", 1, BONES)
    for bone in range(BONES):
        name = f"part{bone}".encode() + b"\0"
        out += struct.pack("<B", len(name)) + name + struct.pack("<i", bone - 1)
        out += struct.pack("<7f", 0, SEGMENT if bone else 0, 0, 0, 0, 0, 1)
        out += struct.pack("<7f", 0, -SEGMENT * bone, 0, 0, 0, 0, 1)
    out += b"ANIM" + struct.pack("<IfI", 1, PERIOD, BONES)
    for bone in range(BONES):
        out += struct.pack("<I", KEYS + 1)
        for key in range(KEYS + 1):
            turn = key / KEYS * 2 * math.pi - 0.7 * bone
            x, z = 0.09 * math.cos(turn), (0.05 if bone == 0 else 0.17) * math.sin(turn)
            w = math.sqrt(1 - x * x / 4 - z * z / 4)
            out += struct.pack("<8f", key / KEYS * PERIOD, 0, SEGMENT if bone else 0, 0, x / 2, 0, z / 2, w)
    return out


def picture(name, side, color):
    """`color` has three channels, or four with alpha, from 0 to 255."""
    kind = 6 if len(color(0, 0)) == 4 else 2
    rows = b"".join(b"\0" + bytes(max(0, min(255, round(c))) for x in range(side) for c in color(x / side, y / side))
                    for y in range(side))
    chunk = lambda tag, data: (struct.pack(">I", len(data)) + tag + data + struct.pack(">I", zlib.crc32(tag + data)))
    with open(f"data/img/{name}", "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", side, side, 8, kind, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def wave(x, y, *turns):
    """From -1 to 1, the same on both edges."""
    return sum(math.sin(2 * math.pi * (a * x + b * y + c)) for a, b, c in turns) / len(turns)


def main():
    sand().write("reef_sand.mesh")
    lump(1.0, 0.75, 0.9, 0.09).write("reef_stone.mesh")
    fish().write("reef_fish.mesh")
    weed().write("reef_weed.mesh", weed_bones())

    def sandy(x, y):
        w = wave(x, y, (3, 1, 0), (-2, 5, 0.3), (7, 3, 0.6), (11, -9, 0.1))
        return 214 + 22 * w, 190 + 24 * w, 140 + 22 * w

    def stony(x, y):
        w = wave(x, y, (1, 2, 0), (3, -2, 0.2), (5, 7, 0.5), (-9, 4, 0.7))
        return 150 + 45 * w, 140 + 40 * w, 142 + 34 * w

    def striped(x, y):
        band = 0.5 + 0.5 * math.tanh(6 * math.sin(2 * math.pi * 3 * y + 0.9 * math.sin(4 * math.pi * x)))
        return 250 - 10 * band, 120 + 115 * band, 30 + 190 * band

    def leafy(x, y):
        light = 0.7 + 0.2 * y + 0.12 * wave(x, y, (2, 6, 0), (4, 11, 0.4))
        return 90 * light, 196 * light, 84 * light

    for name, color in (("sand", sandy), ("stone", stony), ("fish", striped), ("weed", leafy)):
        picture(f"reef_{name}.png", 64, color)


if __name__ == "__main__":
    main()
