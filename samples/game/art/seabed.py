# SPDX-License-Identifier: MIT
#
# What lies and grows in the sea: rocks, corals, and a piece of a wreck.
import math
import random

from paint import Canvas, band, cells, cloud, noise
from shape import Part, add, ball, clamp, dot, frame_of, mix, mul, region, smooth, tube, unit, write_model

WHOLE = (0, 0, 1, 1)


class Rock:
    """A ball that planes have cut, with a rough surface."""

    def __init__(self, seed, planes, stretch, lumps):
        dice = random.Random(seed)
        self.seed, self.stretch, self.lumps = seed, stretch, lumps
        self.planes = []
        for k in range(planes):
            n = unit(tuple(dice.gauss(0, 1) for _ in range(3)))
            self.planes.append((n, dice.uniform(0.60, 0.92)))

    def at(self, d):
        """Radius, how near to an edge, from 0 to 1, and which of its faces."""
        near, next_, which = 1.06, 1.5, -1
        for k, (n, far) in enumerate(self.planes):
            facing = dot(n, d)
            if facing > 0.05:
                r = far / facing
                if r < near:
                    near, next_, which = r, near, k
                elif r < next_:
                    next_ = r
        rough = cloud(4 + d[0] * 2.6, 4 + d[1] * 2.6, 4 + d[2] * 2.6, 3, self.seed) - 0.5
        return near * (1 + self.lumps * rough), clamp(1 - (next_ - near) / 0.06), which

    def shape(self, p):
        d = unit(p)
        r = self.at(d)[0]
        return tuple(c * r * k for c, k in zip(d, self.stretch))

    def part(self):
        # The poles lie in Y.
        return ball(1.0, 16, 26, WHOLE, lambda p: self.shape((p[0], p[2], -p[1])), 46)

    def paint(self, moss, glow):
        dark, pale = (0.19, 0.25, 0.35), (0.64, 0.71, 0.82)

        def color(s, t):
            turn, up = 2 * math.pi * s, -math.cos(math.pi * t)
            r = math.sin(math.pi * t)
            d = (r * math.sin(turn), up, r * math.cos(turn))
            _, edge, face = self.at(d)
            # Turned, so that no row of the noise lies along the picture's.
            x = 8 + 3 * (0.36 * d[0] + 0.48 * d[1] - 0.80 * d[2])
            y = 8 + 3 * (-0.80 * d[0] + 0.60 * d[1])
            z = 8 + 3 * (0.48 * d[0] + 0.64 * d[1] + 0.60 * d[2])
            grain = cloud(x * 5, y * 5, z * 5, 4, self.seed + 20)
            tone = 0.5 + 0.55 * (cloud(x * 1.2, y * 1.2, z * 1.2, 3,
                                       self.seed + 30) - 0.5) + 0.32 * (noise(face, 0.5, 0.5,
                                                                              self.seed) - 0.5)
            strata = 0.5 + 0.5 * math.sin(26 * d[1] + 5 * grain + 3 * d[0])
            c = mix(dark, pale, clamp(tone + 1.1 * (grain - 0.5) + 0.16 * (strata - 0.5)))
            c = mix(c, (0.30, 0.24, 0.34), 0.6 * smooth(0.5, 0.7,
                                                        cloud(x * 0.7, y * 0.7, z * 0.7, 2, self.seed + 40)))
            c = mix(c, (0.84, 0.88, 0.92), 0.65 * edge * smooth(0.25, 0.5, grain))
            crack = band(cloud(x * 0.8, y * 0.8, z * 0.8, 4, self.seed + 50), 0.5, 0.002, 0.012)
            c = mix(c, (0.05, 0.06, 0.10), 0.7 * crack)
            growth = cloud(x * 1.1, y * 1.1, z * 1.1, 5, self.seed + 60) + 0.22 * d[1]
            c = mix(c, tuple(k * (0.6 + 0.9 * grain) for k in moss), 0.85 * smooth(0.52, 0.66, growth))
            dot_ = noise(x * 4.5, y * 4.5, z * 4.5, self.seed + 80)
            c = mix(c, glow, smooth(0.78, 0.86, dot_) * smooth(0.46, 0.56, growth))
            return tuple(k * (0.84 + 0.24 * d[1]) for k in c)
        return color


def branch(parts, dice, at, direction, length, thick, depth, spread, flat):
    """A tube, and thinner ones at its end."""
    path, radii = [at], [thick]
    d = direction
    for k in range(3):
        d = unit(add(d, (dice.uniform(-1, 1) * 0.22, 0.12, 0 if flat else dice.uniform(-1, 1) * 0.22)))
        path.append(add(path[-1], mul(d, length / 3)))
        radii.append(thick * (1 - 0.12 * (k + 1)))
    tip = depth == 0
    if tip:  # a round bud
        path += [add(path[-1], mul(d, thick * 0.9)), add(path[-1], mul(d, thick * 1.5))]
        radii += [thick * 0.95, thick * 0.35]
    levels = (0.0, 0.5, 0.8, 1.0)
    rect = (0, levels[3 - depth - 1] if depth < 3 else 0.0, 1, levels[3 - depth] if depth < 3 else 0.3)
    parts.append(tube(path, radii, 6 if depth else 5, rect, 80))
    if tip:
        return
    side, up = frame_of(d)
    count = 2 if flat or depth == 1 else 3
    for k in range(count):
        turn = 2 * math.pi * k / count + dice.uniform(0, 1.5)
        if flat:
            away = (-1 if k else 1) * (d[1], -d[0], 0)[0], (-1 if k else 1) * -d[0], 0.06 * dice.uniform(-1,
                                                                                                         1)
        else:
            away = add(mul(side, math.cos(turn)), mul(up, math.sin(turn)))
        branch(parts, dice, path[3], unit(add(d, mul(away, spread * dice.uniform(0.7, 1.2)))),
               length * dice.uniform(0.62, 0.82), thick * 0.74, depth - 1, spread, flat)


def tree_coral():
    dice, parts = random.Random(11), []
    parts.append(ball(0.3, 6, 10, (0, 0, 1, 0.2), lambda p: (p[0], max(p[2] * 0.45, -0.02) - 0.02, p[1])))
    for k in range(3):
        turn = 2.1 * k + 0.4
        branch(parts, dice, (0.08 * math.cos(turn), 0, 0.08 * math.sin(turn)),
               unit((0.55 * math.cos(turn), 1, 0.55 * math.sin(turn))), 0.54, 0.10, 2, 1.0, False)
    return parts


def fan_coral():
    """Flat, so that it shows its face to one who looks along Z."""
    dice, parts = random.Random(5), []
    parts.append(ball(0.22, 6, 10, (0, 0, 1, 0.2), lambda p: (p[0], max(p[2] * 0.5, -0.02) - 0.02,
                                                              p[1] * 0.8)))
    levels = 5
    rows = []
    for k in range(13):
        a = math.radians(18 + 144 * k / 12)
        rows.append((math.cos(a), math.sin(a)))
    reach = lambda k: 1.28 + 0.16 * math.sin(k * 2.3) - 0.022 * (k - 6) ** 2 * 0.5
    place = lambda k, r: (rows[k][0] * r * 0.86 + 0.03 * math.sin(9 * r + k), 0.08 + rows[k][1] * r,
                          0.10 * math.sin(2.4 * r + 0.5 * k) * r)
    for k in range(13):
        start = 0.0 if k % 4 == 0 else 0.34 if k % 2 == 0 else 0.62
        first = place(k, start)
        if k % 4 == 2:
            first = place(k + (2 if k < 6 else -2), 0.2)
        elif k % 2:
            first = place(k + (1 if k < 6 else -1), 0.5)
        steps = [start + (reach(k) - start) * i / 5 for i in range(6)]
        path = [first] + [place(k, r) for r in steps[1:]]
        thick = 0.062 if k % 4 == 0 else 0.048 if k % 2 == 0 else 0.038
        parts.append(tube(path, [thick * (1 - 0.10 * i) for i in range(6)], 5, (0, 0.15 + 0.5 * start, 1, 1),
                          80))
    for level in range(levels):  # the net between the ribs
        r = 0.55 + 0.16 * level
        for k in range(12):
            if r > min(reach(k), reach(k + 1)) - 0.03 or (r < 0.62 and k % 4 == 1):
                continue
            a, b = place(k, r), place(k + 1, r + 0.05 * math.sin(3.0 * k + level))
            m = mul(add(a, b), 0.5)
            t = 0.2 + 0.55 * r
            parts.append(tube([a, add(m, (0, 0.03, 0)), b], [0.025, 0.018, 0.025], 4,
                              (0, t, 1, min(1, t + 0.05)), 80))
    return parts


def coral_paint(root, body, tip, seed):
    def color(s, t):
        c = mix(mix(root, body, smooth(0.0, 0.45, t)), tip, smooth(0.80, 0.97, t))
        near = cells(s * 8, t * 12, seed, 0)[0]
        c = mix(c, mix(tip, (1, 1, 1), 0.2), 0.55 * smooth(0.28, 0.16, near) * smooth(0.1, 0.4, t))
        c = mix(c, root, 0.5 * smooth(0.35, 0.6, near))
        return tuple(k * (0.72 + 0.5 * cloud(s * 9, t * 12, 0, 3, seed)) for k in c)
    return color


WOOD, KEEL, IRON = (0, 0, 1, 0.5), (0, 0.5, 1, 0.8), (0, 0.8, 1, 1)


def wreck():
    """Along X, on y = 0, with its planks on the far side: a bow's keel and ribs, a mast that has fallen."""
    dice, parts = random.Random(3), []
    keel = [(-3.0, 0.10, 0), (-1.5, 0.02, 0), (0, 0.02, 0), (1.4, 0.10, 0), (2.2, 0.40, 0), (2.7, 1.0, 0),
            (2.95, 1.7, 0), (3.05, 2.05, 0)]
    parts.append(tube(keel, [0.16, 0.17, 0.17, 0.16, 0.15, 0.13, 0.11, 0.09], 6, KEEL, 50))
    half = lambda x: 1.0 - 0.75 * smooth(0.6, 2.7, x) - 0.15 * smooth(-1, -3, x)
    base = lambda x: 0.06 + 0.5 * smooth(1.2, 2.6, x) ** 1.5

    def rib_point(x, side, a):
        """From the keel, a = 0, up to the rail, a = 1."""
        out = math.sin(min(a * 1.9, math.pi / 2 + 0.12 * a))
        return x + 0.12 * a, base(x) + 1.75 * a ** 1.15, side * half(x) * out
    for k in range(8):
        x = -2.7 + 0.68 * k
        for side in (-1, 1):
            whole = 1.0 if side > 0 else dice.choice((0.32, 0.55, 0.8, 0.95))
            whole *= dice.uniform(0.86, 1.0)
            path = [rib_point(x, side, whole * i / 7) for i in range(8)]
            parts.append(tube(path, [0.10 - 0.006 * i for i in range(8)], 5, KEEL, 60))
    # Planks, some of them broken off.
    for row in range(7):
        a0, a1 = 0.16 + 0.115 * row, 0.16 + 0.115 * row + 0.112
        x0 = -2.9 + dice.uniform(0, 0.9) * (row % 3)
        x1 = 2.3 - dice.uniform(0, 0.7) - (1.4 if row in (2, 5) else 0)
        for first, last in ((x0, x1),) if row != 3 else ((x0, -0.9), (0.3, x1)):
            part = plank(lambda u, v, w, f=first, l=last, a0=a0, a1=a1: add(
                rib_point(f + (l - f) * u, 1, a0 + (a1 - a0) * v), (0, 0, 0.10 + w)), 8, dice.uniform(0,
                                                                                                      0.4), row)
            parts.append(part)
    parts.append(tube([(-2.2, 0.25, -0.9), (-0.8, 0.75, -0.5), (0.9, 1.35, 0.1), (2.0, 1.75, 0.4)],
                      [0.12, 0.115, 0.10, 0.07], 8, WOOD, 60))
    for x, y, z in ((-0.8, 0.75, -0.5), (0.9, 1.35, 0.1)):
        parts.append(tube([(x - 0.06, y - 0.03, z), (x + 0.06, y + 0.03, z)], [0.15, 0.15], 8, IRON, 50))
    hoop = [(-1.6 + 0.3 * math.cos(a), 0.3 + 0.3 * math.sin(a), -0.75 + 0.06 * math.sin(a))
            for a in (2 * math.pi * k / 12 for k in range(12))]
    parts.append(tube(hoop, [0.04] * 12, 5, IRON, closed=True))
    return parts


def plank(place, steps, jag, row):
    """A plank: place(u, v, w) with w its thickness; its end is splintered."""
    part, thick = Part(30), 0.045
    rim = ((0, 0), (1, 0), (1, 1), (0, 1))

    def ring_of(i):
        u = i / steps
        return [(place(u * (1 - (0.06 + jag * 0.1) * (v if i == steps else 0)), v, thick * w),
                 region(WOOD, u, (row % 3 + 0.06 + 0.88 * v) / 3)) for v, w in rim]
    rings = [ring_of(i) for i in range(steps + 1)]
    for a, b in zip(rings, rings[1:]):
        for k in range(4):
            n = (k + 1) % 4
            part.quad(a[k], a[n], b[n], b[k])
    part.quad(*rings[0][::-1])
    part.quad(*rings[-1])
    return part


def wood_paint(s, t):
    grain = cloud(s * 6, t * 40, 0, 4, 31)
    c = mix((0.20, 0.15, 0.13), (0.66, 0.50, 0.36), clamp(1.7 * (grain - 0.25)))
    edge = abs((t * 3) % 1 - 0.5)
    c = mix(c, (0.05, 0.04, 0.05), 0.6 * smooth(0.36, 0.49, edge))
    c = mix(c, (0.06, 0.04, 0.04), 0.8 * smooth(0.012, 0.008,
                                                math.hypot((s * 6) % 1 / 6 - 0.08, (edge - 0.28) * 0.25)))
    weed = cloud(s * 7, t * 7, 0, 4, 33)
    c = mix(c, (0.11, 0.33, 0.30), 0.8 * smooth(0.54, 0.68, weed))
    near = cells(s * 16, t * 16, 35, 16)
    if near[2] > 0.72:
        c = mix(c, (0.70, 0.72, 0.66), 0.8 * band(near[0], 0.16, 0.08, 0.06) * smooth(0.45, 0.6, weed))
    return c


def keel_paint(s, t):
    color = wood_paint(s * 0.8, (0.07 + 0.9 * t) % 1)
    return tuple(c * (0.75 + 0.35 * math.cos(2 * math.pi * s)) for c in color)


def iron_paint(s, t):
    rust = cloud(s * 14, t * 8, 0, 4, 37)
    return mix((0.16, 0.15, 0.17), (0.55, 0.24, 0.12), smooth(0.38, 0.6, rust))


def make(folder):
    for name, rock, moss, glow in (
            ("rock1", Rock(101, 20, (1.0, 0.86, 0.94), 0.16), (0.10, 0.36, 0.36), (0.35, 0.95, 0.92)),
            ("rock2", Rock(203, 18, (0.74, 1.12, 0.74), 0.24), (0.30, 0.18, 0.44), (0.75, 0.55, 1.0)),
            ("rock3", Rock(307, 22, (1.14, 0.58, 0.94), 0.20), (0.08, 0.32, 0.26), (0.40, 0.95, 0.75))):
        write_model(folder, name, [rock.part()])
        Canvas(256, 128).fill(WHOLE, rock.paint(moss, glow)).png(f"{folder}/{name}.png")
    write_model(folder, "coral1", tree_coral())
    Canvas(64, 128).all(coral_paint((0.36, 0.07, 0.20), (0.92, 0.30, 0.34), (1.0, 0.80, 0.62),
                                    15)).png(f"{folder}/coral1.png")
    write_model(folder, "coral2", fan_coral())
    Canvas(64, 128).all(coral_paint((0.16, 0.08, 0.34), (0.50, 0.26, 0.82), (0.60, 0.92, 1.0),
                                    17)).png(f"{folder}/coral2.png")
    write_model(folder, "wreck", wreck())
    canvas = Canvas(128)
    for rect, color in ((WOOD, wood_paint), (KEEL, keel_paint), (IRON, iron_paint)):
        canvas.fill(rect, color)
    canvas.png(f"{folder}/wreck.png")
