# SPDX-License-Identifier: MIT
#
# What is after the player: a puffer with spines, and the dart, a long fish with teeth.
import math

from paint import Canvas, band, cells, cloud, noise
from shape import add, ball, clamp, dense, lathe, mix, mul, plate, smooth, tube, unit, write_model

BODY, EYE, SPINE, FIN = (0, 0, 1, 0.5), (0, 0.5, 0.5, 1), (0.5, 0.5, 0.75, 1), (0.75, 0.5, 1, 1)


def directions(count):
    """Points on a ball, evenly spread."""
    for k in range(count):
        y = 1 - 2 * (k + 0.5) / count
        r, turn = math.sqrt(1 - y * y), k * math.pi * (3 - math.sqrt(5))
        yield r * math.cos(turn), y, r * math.sin(turn)


def eye(at, look, radius, rect=EYE):
    """A ball whose pole, the end of t, looks along a direction."""
    ahead = unit(look)
    side = unit((ahead[2], 0, -ahead[0]))
    up = (ahead[1] * side[2] - ahead[2] * side[1], ahead[2] * side[0] - ahead[0] * side[2],
          ahead[0] * side[1] - ahead[1] * side[0])
    return ball(radius, 8, 12, rect, lambda p: add(at, add(mul(side, p[0]),
                                                           add(mul(up, p[1]), mul(ahead, p[2])))), 90)


PUFF = 0.50


def puff(p):
    """Round, with a snout, and a little flat below."""
    x, y, z = p
    snout = smooth(0.30, 0.50, z) * 0.10
    return x * (1 - 1.2 * snout), y * (0.94 if y > 0 else 0.90) * (1 - 1.6 * snout), z * 1.05 + snout * 0.5


def puffer():
    parts = [ball(PUFF, 14, 22, BODY, puff, 90)]
    for d in directions(58):
        if d[2] > 0.72 or d[2] < -0.86 or (abs(d[0]) > 0.45 and d[2] > 0.35 and 0 < d[1] < 0.75):
            continue
        root = puff(mul(d, PUFF * 0.94))
        length = 0.21 + 0.04 * noise(d[0] * 5 + 9, d[1] * 5 + 9, 0, 3)
        tip = add(puff(mul(d, PUFF)), mul(unit((d[0], d[1], d[2] - 0.25)), length))
        parts.append(tube([root, mix(root, tip, 0.4), tip], [0.066, 0.036, 0.0], 4, SPINE, 50))
    for side in (-1, 1):
        parts.append(eye((side * 0.295, 0.17, 0.335), (side * 0.62, 0.10, 0.72), 0.155))
        lid = ball(0.172, 8, 12, (0.02, 0.12, 0.2, 0.3), lambda p, side=side: (
            p[0] + side * 0.285, max(p[1], 0.045 - 0.35 * side * p[0]) + 0.17, p[2] + 0.32), 60)
        parts.append(lid)
        flap = [(0.02, 0.10), (-0.02, -0.12), (-0.20, -0.20), (-0.28, -0.04), (-0.24, 0.10), (-0.12, 0.15)]
        parts.append(plate(flap, 0.02, FIN, lambda a, b, d, side=side: (
            side * (0.46 - 0.55 * a) + d, b - 0.10, a * 0.8 - 0.02)))
    tail = [(-0.44, 0.06), (-0.44, -0.06), (-0.60, -0.20), (-0.72, -0.24), (-0.66, 0.0), (-0.72, 0.24),
            (-0.60, 0.20)]
    parts.append(plate(tail, 0.03, FIN, lambda a, b, d: (d, b, a)))
    top = [(-0.10, 0.42), (-0.40, 0.30), (-0.46, 0.44), (-0.34, 0.60), (-0.18, 0.56)]
    parts.append(plate(top, 0.025, FIN, lambda a, b, d: (d, b, a)))
    lips = [(0.105 * math.cos(a), 0.06 * math.sin(a) - 0.06, 0.565 - 0.01 * math.cos(2 * a))
            for a in (2 * math.pi * k / 14 for k in range(14))]
    parts.append(tube(lips, [0.034] * 14, 6, (0.5, 0.88, 0.75, 0.98), closed=True))
    for k, x in enumerate((-0.05, 0.0, 0.05)):  # teeth
        parts.append(tube([(x, -0.015, 0.555), (x, -0.085, 0.575)], [0.03, 0.012], 5,
                          (0.42, 0.55, 0.46, 0.6)))
    return parts


def puffer_body(s, t):
    height = -math.cos(2 * math.pi * s) * math.sin(math.pi * clamp(t, 0.08, 0.92))
    back, belly = (0.30, 0.10, 0.42), (1.0, 0.72, 0.52)
    color = mix(mix((0.78, 0.22, 0.40), back, smooth(-0.1, 0.55, height)), belly,
                smooth(-0.05, -0.65, height))
    near, next_, which = cells(s * 14, t * 7, 4, 14)
    spot = smooth(0.42, 0.30, near) * smooth(-0.35, 0.1, height) * (0.5 + 0.5 * (which > 0.35))
    color = mix(color, (0.13, 0.04, 0.24), 0.75 * spot)
    color = mix(color, (0.95, 0.40, 0.75), 0.65 * band(near, 0.40, 0.05, 0.05) * smooth(-0.2, 0.2, height))
    color = mix(color, (0.20, 0.03, 0.08), smooth(0.955, 0.99, t))
    return tuple(c * (0.78 + 0.18 * height + 0.24 * (cloud(s * 22, t * 11, 0, 3, 6) - 0.5)) for c in color)


def eye_paint(iris, rim):
    def paint(s, t):
        away = 1 - t  # from where it looks
        if away > 0.40:
            return mix((0.96, 0.93, 0.84), (0.55, 0.30, 0.34), smooth(0.45, 0.62, away))
        color = mix(iris, rim, smooth(0.16, 0.38, away + 0.06 * (noise(s * 22, away * 3, 0, 8) - 0.5)))
        color = mix(color, (0.03, 0.01, 0.05), smooth(0.19, 0.15, away))
        color = mix(color, (0.10, 0.02, 0.04), band(away, 0.39, 0.03, 0.02))
        return mix(color, (1, 1, 1), smooth(0.09, 0.05, math.hypot((s - 0.42) * away * 4, away - 0.15)))
    return paint


def puffer_picture():
    canvas = Canvas(256)
    canvas.fill(BODY, puffer_body)
    canvas.fill(EYE, eye_paint((1.0, 0.88, 0.25), (0.95, 0.42, 0.10)))
    canvas.fill(SPINE, lambda s, t: tuple(c * (0.85 + 0.2 * noise(s * 8, t * 20)) for c in mix(
        (0.34, 0.06, 0.22), mix((0.92, 0.24, 0.18), (1.0, 0.86, 0.60), smooth(0.50, 0.72, t)), smooth(0.22,
                                                                                                      0.52, t))))

    def fin(s, t):
        ray = 0.5 + 0.5 * math.sin(t * 40 + 2 * math.sin(s * 3))
        return tuple(c * (0.65 + 0.35 * ray) for c in mix((1.0, 0.45, 0.30), (0.50, 0.12, 0.38),
                                                          smooth(0.15, 0.9, s)))
    return canvas.fill(FIN, fin)


def bend(p):
    """The dart's body is a little curved, like a fish that is about to strike."""
    x, y, z = p
    return x, y + 0.05 * math.sin(1.6 * z + 0.3), z


def jaw(profile, low):
    """Half a snout: flat on the side of the mouth, which opens towards its end."""
    def place(p):
        x, y, z = p
        open_ = max(0.0, z - 0.62)
        y = (min(y, 0.012) if low else max(y, -0.004)) * (0.85 if low else 1.0)
        return bend((x, y - (0.30 * open_ + 0.02 if low else -0.10 * open_), z))
    return lathe(profile, 14, (0, 0.36, 1, 0.5), place, 50)


def dart():
    body = dense([(-1.02, 0.02), (-0.9, 0.055), (-0.6, 0.10), (-0.2, 0.155), (0.2, 0.185), (0.5, 0.175),
                  (0.66, 0.145)], 2)
    flat = lambda p: bend((p[0] * 0.78, p[1] * 1.12, p[2]))
    body = [(-1.03, 0)] + body + [(0.70, 0.0)]
    parts = [lathe(body, 16, (0, 0, 0.995, 0.5 * 0.72), flat, 60)]
    upper = dense([(0.50, 0.165), (0.70, 0.135), (0.90, 0.10), (1.08, 0.065), (1.19, 0.035), (1.215, 0)], 2)
    lower = dense([(0.52, 0.15), (0.72, 0.125), (0.95, 0.09), (1.15, 0.06), (1.24, 0.03), (1.265, 0)], 2)
    for profile, low in ((upper, False), (lower, True)):
        parts.append(jaw(profile, low))
        for side in (-1, 1):
            for k in range(7):
                z = 0.74 + 0.065 * k + (0.03 if low else 0)
                open_ = z - 0.62
                y = -0.30 * open_ - 0.012 if low else 0.10 * open_
                x = side * (0.098 - 0.012 * k)
                long = (0.085 if k % 3 == 0 else 0.055) * (1 if low else -1)
                root = bend((x, y - 0.02 * (1 if low else -1), z))
                parts.append(tube([root, (root[0], root[1] + long + 0.02 * (1 if low else -1), z + 0.01)],
                                  [0.02, 0.0], 4, (0.52, 0.52, 0.56, 0.9)))
    for side in (-1, 1):
        parts.append(eye((side * 0.085, 0.095 + 0.05 * math.sin(1.6 * 0.68 + 0.3), 0.68), (side, 0.12, 0.25),
                         0.068))
        flap = [(0.0, 0.0), (0.06, -0.03), (-0.06, -0.20), (-0.22, -0.26), (-0.16, -0.08)]
        parts.append(plate(flap, 0.014, FIN, lambda a, b, d,
                           side=side: (side * (0.12 - 0.7 * b) + d, b * 0.7 - 0.02, a + 0.42)))
    sheet = lambda a, b, d: (d, b + 0.05 * math.sin(1.6 * a + 0.3), a)
    for outline in ([(-0.94, 0.0), (-1.06, 0.18), (-1.28, 0.36), (-1.16, 0.08), (-1.12, 0.0), (-1.16, -0.08),
                     (-1.28, -0.34), (-1.06, -0.17)],
                    [(0.16, 0.16), (-0.06, 0.38), (-0.22, 0.40), (-0.14, 0.28), (-0.20, 0.14)],
                    [(-0.46, 0.10), (-0.62, 0.27), (-0.76, 0.29), (-0.70, 0.18), (-0.76, 0.06)],
                    [(-0.46, -0.10), (-0.62, -0.25), (-0.76, -0.27), (-0.70, -0.16), (-0.76, -0.05)],
                    [(0.10, -0.16), (-0.04, -0.30), (-0.16, -0.32), (-0.10, -0.15)]):
        parts.append(plate(outline, 0.02, FIN, sheet))
    return parts


def dart_body(s, t):
    height = -math.cos(2 * math.pi * s)
    color = mix((0.20, 0.58, 0.68), (0.07, 0.20, 0.40), smooth(0.2, 0.85, height))
    color = mix(color, (0.88, 0.97, 0.97), smooth(0.0, -0.55, height))
    scale = cells(s * 26, t * 20, 2, 26)
    color = mix(color, tuple(c * 1.5 for c in color), 0.35 * smooth(0.2, 0.6, scale[0]))
    bars = smooth(0.45, 0.75, 0.5 + 0.5 * math.sin(t * 60 + 1.4 * math.sin(height * 3)))
    color = mix(color, (0.02, 0.07, 0.20), 0.75 * bars * smooth(0.0, 0.3, height) * smooth(0.74, 0.66, t))
    glow = band(height, 0.06 + 0.05 * math.sin(t * 22), 0.07, 0.10)
    color = mix(color, (0.85, 0.58, 1.0), 0.95 * glow * smooth(0.03, 0.12, t) * smooth(0.78, 0.7, t))
    # The mouth's edge, and a flush of red behind it.
    color = mix(color, (0.75, 0.12, 0.14), 0.7 * band(height, -0.02, 0.16, 0.2) * smooth(0.76, 0.84, t))
    gill = band(t, 0.60 + 0.04 * height, 0.012, 0.008) * smooth(0.75, 0.5, abs(height))
    color = mix(color, (0.60, 0.08, 0.12), 0.8 * gill)
    return tuple(c * (0.86 + 0.12 * height + 0.2 * (cloud(s * 20, t * 16, 0, 3, 3) - 0.5)) for c in color)


def dart_picture():
    canvas = Canvas(256)
    canvas.fill(BODY, dart_body)
    canvas.fill(EYE, eye_paint((1.0, 0.36, 0.20), (0.70, 0.06, 0.10)))
    canvas.fill(SPINE, lambda s, t: mix((0.75, 0.66, 0.55), (1.0, 0.97, 0.88), t))

    def fin(s, t):
        ray = 0.5 + 0.5 * math.sin((t + 0.3 * s) * 46)
        return tuple(c * (0.62 + 0.38 * ray) for c in mix((0.85, 0.45, 1.0), (0.12, 0.32, 0.50),
                                                          smooth(0.0, 0.75, s)))
    return canvas.fill(FIN, fin)


def make(folder):
    write_model(folder, "puffer", puffer())
    puffer_picture().png(f"{folder}/puffer.png")
    write_model(folder, "dart", dart())
    dart_picture().png(f"{folder}/dart.png")
