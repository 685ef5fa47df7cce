#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes what the night has and the reef does not: a jellyfish with bones, particles, and the pieces of the
# display. Nothing is needed but Python. Runs in the repository's root.
import math
import os
import struct
import sys

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "04-scene"))
from make_models import Model, picture  # noqa: E402

ARMS, LINKS, LINK = 8, 4, 0.55
SHOULDER, RIM, HEIGHT = 0.5, 1.0, 0.75
PERIOD, KEYS = 7.2, 48  # three are drawn, and each moves the animation on
BONES = 1 + ARMS * (1 + LINKS)


def angle(arm):
    return arm / ARMS * 2 * math.pi


def on_ring(arm, radius, height):
    return radius * math.cos(angle(arm)), height, radius * math.sin(angle(arm))


def petal(arm):
    return 1 + arm * (1 + LINKS)


def jellyfish():
    """A bell that hangs on its middle and on eight petals about it, and a band below each petal."""
    def bell(i, j):
        out = math.sin(i * math.pi / 2)
        round_, height = j * 2 * math.pi, HEIGHT * math.cos(i * math.pi / 2) ** 1.3
        wave = 1 + 0.05 * math.cos(ARMS * round_) * out
        point = (RIM * out * wave * math.cos(round_), height, RIM * out * wave * math.sin(round_))
        share = min(max((out - 0.35) / 0.5, 0), 1)
        at = j * ARMS
        first, part = int(at) % ARMS, at - int(at)
        return point, (j * 4, 0.5 * i), ((0, petal(first), petal((first + 1) % ARMS), 0),
                                         (1 - share, share * (1 - part), share * part, 0))

    def band(arm):
        def place(i, j):
            at = i * LINKS
            lower = min(int(at), LINKS - 1)
            bone = petal(arm) + 1 + lower
            wide = 0.13 * (1 - 0.85 * i) * (1 + 0.3 * math.sin(at * 9))
            x, y, z = on_ring(arm, RIM * 0.86, -at * LINK)
            side = (j - 0.5) * 2 * wide
            point = (x - side * math.sin(angle(arm)), y, z + side * math.cos(angle(arm)))
            above = bone if lower == 0 else bone - 1
            share = min(max(at - lower + 0.5, 0), 1)
            return point, (j, 0.5 + 0.5 * i), ((above, bone, 0, 0), (1 - share, share, 0, 0))
        return place

    model = Model()
    model.grid(16, 64, bell)
    for arm in range(ARMS):
        model.grid(20, 4, band(arm))
    return model


def quaternion(axis, turn):
    s = math.sin(turn / 2)
    return axis[0] * s, axis[1] * s, axis[2] * s, math.cos(turn / 2)


def bones():
    """Name, parent, place in the model, place in the parent, and rotation at a time from 0 to 1."""
    beat = lambda t: math.sin(2 * math.pi * 3 * t) + 0.3 * math.sin(2 * math.pi * 6 * t)
    yield "bell", -1, (0, 0, 0), (0, 0, 0), lambda t: (0, 0, 0, 1)
    for arm in range(ARMS):
        along = (-math.sin(angle(arm)), 0, math.cos(angle(arm)))
        out = (math.cos(angle(arm)), 0, math.sin(angle(arm)))
        at = on_ring(arm, SHOULDER, 0.55)
        yield f"petal{arm}", 0, at, at, lambda t, along=along: quaternion(along, 0.10 + 0.24 * beat(t))
        above = at
        for link in range(LINKS):
            at = on_ring(arm, RIM * 0.86, -link * LINK)
            def turn(t, along=along, out=out, link=link, arm=arm):
                late = t - 0.05 * (link + 1)
                swing = 0.16 * beat(late) + 0.07 * math.sin(2 * math.pi * (late + arm * 0.37))
                aside = 0.12 * math.sin(2 * math.pi * (2 * late + arm * 0.21))
                x, z = (a * swing + o * aside for a, o in ((along[0], out[0]), (along[2], out[2])))
                size = math.hypot(x, z)
                return quaternion((x / size, 0, z / size), size) if size > 1e-9 else (0, 0, 0, 1)
            yield f"link{arm}_{link}", petal(arm) + link, at, tuple(a - b for a, b in zip(at, above)), turn
            above = at


def skeleton():
    out = b"SKEL" + struct.pack("<II", 1, BONES)
    for name, parent, at, local, _ in bones():
        text = name.encode() + b"\0"
        out += struct.pack("<B", len(text)) + text + struct.pack("<i", parent)
        out += struct.pack("<7f", *local, 0, 0, 0, 1) + struct.pack("<7f", *(-c for c in at), 0, 0, 0, 1)
    out += b"ANIM" + struct.pack("<IfI", 1, PERIOD, BONES)
    for _, _, _, local, turn in bones():
        out += struct.pack("<I", KEYS + 1)
        for key in range(KEYS + 1):
            out += struct.pack("<8f", key / KEYS * PERIOD, *local, *turn(key / KEYS))
    return out


def glow(x, y):
    """Light and tips of the jellyfish: the bell above, the bands below."""
    if y < 0.5:
        rim = 2 * y
        rib = 0.5 + 0.5 * math.cos(2 * math.pi * 2 * x)
        light = 0.6 + 0.45 * rim + 1.1 * rib ** 6 * (0.3 + rim) + 5 * max(0, rim - 0.9)
        return 70 * light + 130 * rim ** 4, 215 * light, 255 * light
    tip = 2 * y - 1
    fade = (1 - 0.6 * tip) * (0.5 + 0.5 * math.sin(math.pi * x))
    return (110 + 190 * tip) * fade, 230 * (1 - 0.6 * tip) * fade, 290 * fade


def from_middle(x, y):
    return 2 * math.hypot(x - 0.5, y - 0.5)


def spark(x, y):
    return 170, 255, 235, 255 * max(0, 1 - from_middle(x, y)) ** 1.7


def bubble(x, y):
    r = from_middle(x, y)
    ring = math.exp(-((r - 0.82) / 0.10) ** 2)
    light = 1.2 * math.exp(-((2 * math.hypot(x - 0.34, y - 0.66)) / 0.22) ** 2)
    body = 0.16 if r < 0.82 else 0
    return 190, 235, 255, 255 * min(1, ring + light + body) * (1 if r < 0.98 else 0)


def dial(x, y):
    r, turn = from_middle(x, y), math.atan2(y - 0.5, x - 0.5)
    ring = max(0, 1 - abs(r - 0.93) / 0.05)
    tick = (math.cos(turn * 16) > 0.94) and 0.74 < r < 0.86 or (math.cos(turn * 4) > 0.995) and 0.62 < r < 0.88
    face = 0.45 if r < 0.93 else 0
    light = max(ring, 0.8 if tick else 0)
    return 30 + 180 * light, 60 + 190 * light, 80 + 175 * light, 255 * max(face, ring, 0.9 if tick else 0)


def needle(x, y):
    up, aside = 0.5 - y, abs(x - 0.5)
    inside = abs(up) < 0.42 and aside < 0.075 * (1 - abs(up) / 0.42)
    hub = from_middle(x, y) < 0.11
    return (255, 110, 90, 255) if inside and up > 0 else (205, 225, 235, 255) if inside or hub else (0, 0, 0, 0)


def panel(x, y):
    edge = min(x, y, 1 - x, 1 - y)
    return 12, 30, 46, 255 * min(1, edge / 0.04)


def white_particle(side=32):
    """The name is the engine's. Uncompressed, blue first, with alpha."""
    header = b"DDS " + struct.pack("<7I44x", 124, 0x100F, side, side, side * 4, 0, 0)
    header += struct.pack("<8I", 32, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000) + struct.pack("<5I", 0x1000, 0, 0, 0, 0)
    pixels = b""
    for y in range(side):
        for x in range(side):
            r = from_middle((x + 0.5) / side, (y + 0.5) / side)
            pixels += struct.pack("<I", round(150 * max(0, 1 - r) ** 2) << 24 | 0xFFFFFF)
    with open("data/img/WhiteParticle.dds", "wb") as file:
        file.write(header + pixels)


def main():
    jellyfish().write("night_jelly.mesh", skeleton())
    for name, side, color in (("jelly", 128, glow), ("spark", 32, spark), ("bubble", 64, bubble), ("dial", 128, dial),
                              ("needle", 128, needle), ("panel", 64, panel)):
        picture(f"night_{name}.png", side, color)
    white_particle()


main()
