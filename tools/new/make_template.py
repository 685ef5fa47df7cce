#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes the models and pictures of the starter: template/data/mesh and template/data/img. Nothing is needed but
# Python. docs/model_file.md describes what is written. Runs in its own folder.
import math
import struct
import zlib


def mesh(name, vertices, indices):
    """`vertices` are (point, normal, uv)."""
    out = b"VORN" + struct.pack("<I", 1) + b"MESH" + struct.pack("<I", 1)
    out += struct.pack("<II", 0, len(indices)) + struct.pack(f"<{len(indices)}I", *indices)
    out += struct.pack("<I", len(vertices))
    for point, normal, uv in vertices:
        out += struct.pack("<8f", *point, *normal, *uv)
    with open(f"template/data/mesh/{name}", "wb") as file:
        file.write(out)


def ball(rows=24, columns=32):
    """Half a metre in radius."""
    vertices, indices = [], []
    for i in range(rows + 1):
        up = (i / rows - 0.5) * math.pi
        for j in range(columns + 1):
            turn = j / columns * 2 * math.pi
            n = (math.cos(up) * math.cos(turn), math.sin(up), math.cos(up) * math.sin(turn))
            vertices.append(([c / 2 for c in n], n, (2 * j / columns, 1 - i / rows)))
    for i in range(rows):
        for j in range(columns):
            a = i * (columns + 1) + j
            b = a + columns + 1
            indices += [a, b, a + 1, a + 1, b, b + 1]
    mesh("ball.mesh", vertices, indices)


def block():
    """A cube, a metre on each edge."""
    vertices, indices = [], []
    for axis in range(3):
        for side in (1, -1):
            first = len(vertices)
            normal = [0, 0, 0]
            normal[axis] = side
            for a, b in ((-1, -1), (-1, 1), (1, 1), (1, -1)):
                point = [0, 0, 0]
                point[axis], point[(axis + 1) % 3], point[(axis + 2) % 3] = side / 2, a * side / 2, b / 2
                vertices.append((point, normal, ((a + 1) / 2, (b + 1) / 2)))
            # Clockwise seen from outside, in left-handed coordinates.
            indices += [first + k for k in (0, 2, 1, 0, 3, 2)]
    mesh("block.mesh", vertices, indices)


def picture(name, color, side=64):
    rows = b"".join(b"\0" + bytes(round(c) for x in range(side) for c in color(x / side, y / side)) for y in range(side))
    chunk = lambda tag, data: (struct.pack(">I", len(data)) + tag + data + struct.pack(">I", zlib.crc32(tag + data)))
    with open(f"template/data/img/{name}", "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", side, side, 8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    ball()
    block()
    picture("ball.png", lambda x, y: (236, 240, 244) if (int(x * 4) + int(y * 4)) % 2 else (38, 118, 196))
    picture("board.png", lambda x, y: (118, 142, 112) if (int(x * 8) + int(y * 8)) % 2 else (98, 122, 96))
    picture("post.png", lambda x, y: (232, 148, 62) if 0.12 < x < 0.88 and 0.12 < y < 0.88 else (150, 84, 36))
