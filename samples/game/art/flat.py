# SPDX-License-Identifier: MIT
#
# Flat pictures: the sea behind everything, the name of the game, what the display shows, particles, and
# the map of the sea's floor.
import math

from paint import Canvas, band, bmp, cells, cloud, noise
from shape import clamp, mix, smooth


def from_middle(x, y):
    return 2 * math.hypot(x - 0.5, y - 0.5)


# The sea. It comes round at its left and right edges.

def skyline(x, scale, seed):
    """How high rocks stand, from 0 to 1."""
    broad = cloud(x * scale, 0.5, 0, 5, seed, scale)
    tooth = abs(cloud(x * scale * 2, 7.5, 0, 4, seed + 9, scale * 2) - 0.5)
    return broad + 0.7 * tooth


def shafts(x, y):
    """Light that falls in slanting beams from the surface."""
    lean = x - 0.22 * y
    broad = noise(lean * 8, 0.0, 0, 61, 8) * 0.6 + noise(lean * 20, 0.0, 0, 62, 20) * 0.4
    drift = 0.75 + 0.25 * noise(lean * 14, y * 3, 0, 63, 14)
    return smooth(0.40, 0.82, broad) * drift * smooth(0.86, 0.0, y) ** 1.4


def backdrop(x, y):
    deep = (0.010, 0.034, 0.074)
    color = mix((0.050, 0.255, 0.365), (0.022, 0.118, 0.220), smooth(0.0, 0.50, y))
    color = mix(color, deep, smooth(0.40, 1.0, y))
    murk = cloud(x * 6, y * 5, 0, 4, 64, 6) - 0.5
    color = tuple(max(0.0, c * (1 + 0.5 * murk)) for c in color)
    light = shafts(x, y)
    color = tuple(c + k * light for c, k in zip(color, (0.030, 0.120, 0.140)))
    # Far rocks, each range nearer and darker than the last, with haze at its feet.
    for low, high, scale, seed, tone in ((0.46, 0.30, 6, 70, (0.022, 0.112, 0.192)),
                                         (0.62, 0.36, 9, 80, (0.016, 0.078, 0.146)),
                                         (0.78, 0.34, 13, 90, (0.009, 0.038, 0.082))):
        top = low + high * (0.62 - skyline(x, scale, seed))
        inside = smooth(top - 0.003, top + 0.003, y)
        rim = 1 - smooth(0.0, 0.035, y - top)
        haze = smooth(0.02, 0.22, y - top)
        face = mix(tuple(c * (0.92 + 0.5 * rim * light + 0.35 * rim) for c in tone),
                   mix(tone, (0.014, 0.070, 0.135), 0.6), haze)
        weed = cloud(x * scale * 4, y * 18, 0, 3, seed + 3, scale * 4)
        face = tuple(c * (0.8 + 0.4 * weed) for c in face)
        color = mix(color, face, inside)
    # Faint lights of what lives there.
    near, _, which = cells(x * 26, y * 26, 96, 26)
    if y > 0.45 and which > 0.80:
        glow = 0.22 * smooth(0.22, 0.0, near) ** 3 * (which - 0.80) * 5
        tint = (0.3, 0.9, 0.95) if which < 0.93 else (0.7, 0.45, 1.0)
        color = tuple(c + k * glow for c, k in zip(color, tint))
    return mix(color, deep, 0.6 * smooth(0.86, 1.0, y))


def trench(x, y):
    """The same water deeper down: little blue is left, and the rocks stand elsewhere."""
    r, g, b = backdrop((1.5 - x) % 1, 0.06 + 0.94 * y)
    return 0.46 * b + 0.9 * r, 0.58 * g + 0.06 * b, 0.98 * b + 0.14 * g


# The name. Letters are lines in a field one high; a bow is (centre, radius, from, to) in degrees.

LETTERS = {
    "L": (0.52, [((0.06, 0), (0.06, 1)), ((0.06, 1), (0.52, 1))]),
    "A": (0.84, [((0, 1), (0.42, 0)), ((0.42, 0), (0.84, 1))]),
    "N": (0.70, [((0.03, 1), (0.03, 0)), ((0.03, 0), (0.67, 1)), ((0.67, 1), (0.67, 0))]),
    "T": (0.68, [((0, 0), (0.68, 0)), ((0.34, 0), (0.34, 1))]),
    "E": (0.52, [((0.05, 0), (0.05, 1)), ((0.05, 0), (0.52, 0)), ((0.05, 0.5), (0.44, 0.5)),
                 ((0.05, 1), (0.52, 1))]),
    "R": (0.62, [((0.05, 1), (0.05, 0)), ((0.05, 0), (0.33, 0)), ((0.05, 0.54), (0.33, 0.54)),
                 ((0.33, 0.27), 0.27, -90, 90), ((0.30, 0.54), (0.62, 1))]),
}


def strokes(word, width, middle, height):
    """All lines of a word, as wide as told, in points of the picture; and where its A has its lamp."""
    gap = 0.21
    whole = sum(LETTERS[c][0] for c in word) + gap * (len(word) - 1)
    size = min(height, width / whole)
    x, top = 256 - whole * size / 2, middle - size / 2
    lines, lamp = [], (0, 0)
    for c in word:
        wide, parts = LETTERS[c]
        if c == "A":
            lamp = x + 0.42 * size, top + 0.66 * size
        for part in parts:
            if len(part) == 4:
                (cx, cy), r, low, high = part
                turns = [math.radians(low + (high - low) * k / 10) for k in range(11)]
                points = [(x + (cx + r * math.cos(a)) * size,
                           top + (cy + r * math.sin(a)) * size) for a in turns]
            else:
                points = [(x + px * size, top + py * size) for px, py in part]
            lines += list(zip(points, points[1:]))
        x += (wide + gap) * size
    return lines, lamp, size


def away_from(lines, px, py):
    """From the nearest line, and a softer measure that all lines have a share in."""
    best, near = 1e9, 0.0
    for (ax, ay), (bx, by) in lines:
        if min(ax, bx) - px > 70 or px - max(ax, bx) > 70:
            continue
        dx, dy = bx - ax, by - ay
        t = ((px - ax) * dx + (py - ay) * dy) / (dx * dx + dy * dy)
        t = 0.0 if t < 0 else 1.0 if t > 1 else t
        ex, ey = px - ax - dx * t, py - ay - dy * t
        square = ex * ex + ey * ey
        best, near = min(best, square), near + 1 / (square + 4) ** 2
    return math.sqrt(best), near ** -0.25 if near > 0 else 99.0


def logo():
    lines, (lx, ly), size = strokes("LANTERN", 424, 108, 84)
    top = 108 - size / 2

    def color(x, y):
        px, py = x * 512, y * 256
        far, soft = away_from(lines, px, py)
        fade = smooth(58, 6, soft)
        core = 1 - smooth(3.6, 5.2, far)
        tube_ = 1 - smooth(1.0, 4.6, far)
        height = clamp((py - top) / size)
        body = mix((1.0, 0.95, 0.80), (1.0, 0.66, 0.22), height)
        body = mix(body, (1.0, 1.0, 0.97), 0.75 * tube_ * (1 - 0.5 * height))
        glow = 0.85 * math.exp(-soft / 8.0) + 0.34 * math.exp(-soft / 24.0)
        tint = mix((1.0, 0.62, 0.25), (0.10, 0.62, 0.86), smooth(4, 24, soft))
        # The lamp in the A, and its light on the water below.
        lamp = math.hypot(px - lx, py - ly)
        bulb = 1 - smooth(5.5, 7.5, lamp)
        down = (py - ly) / 130
        cone = 0.0
        if down > 0:
            half = 5 + (py - ly) * 0.55
            cone = 0.42 * smooth(half, half * 0.15, abs(px - lx)) * smooth(1.0, 0.0, down) ** 1.3
        halo = 0.9 * math.exp(-lamp / 12.0)
        # A line of water beneath.
        swell = 196 + 2.6 * math.sin(px * 0.062) + 1.2 * math.sin(px * 0.13 + 1)
        span = smooth(250, 40, abs(px - 256))
        water = span * (0.9 * math.exp(-abs(py - swell) / 1.3) + 0.25 * math.exp(-abs(py - swell) / 7.0))
        swell2 = 208 + 2.2 * math.sin(px * 0.07 + 2)
        water += 0.45 * smooth(150, 20, abs(px - 256)) * math.exp(-abs(py - swell2) / 1.2)
        light = [(core, body), (fade * glow, tint), (bulb, (1.0, 1.0, 0.94)), (halo, (1.0, 0.80, 0.42)),
                 (cone, (1.0, 0.82, 0.46)), (clamp(water), (0.25, 0.85, 0.95))]
        clear, total, weight = 1.0, (0.0, 0.0, 0.0), 0.0
        for share, c in light:
            share = clamp(share)
            total = tuple(a + share * b for a, b in zip(total, c))
            weight += share
            clear *= 1 - share
        if weight < 1e-4:
            return 0.0, 0.0, 0.0, 0.0
        out = tuple(a / weight for a in total)
        out = mix(out, body, core)
        return (*mix(out, (1.0, 1.0, 0.94), bulb), 1 - clear)
    return Canvas(512, 256, (0, 0, 0, 0)).all(color)


# The display.

def over(base, share, color):
    """A colour laid over another, both with alpha."""
    share = clamp(share)
    alpha = share + base[3] * (1 - share)
    if alpha < 1e-4:
        return base
    return (*(clamp((c * share + b * base[3] * (1 - share)) / alpha) for b, c in zip(base, color)), alpha)


def lamp_icon(x, y):
    """A little lantern that is lit."""
    u, v = abs(x - 0.5) * 64, y * 64
    color = over((1.0, 0.72, 0.25, 0.0), 0.55 * math.exp(-max(0.0,
                                                              math.hypot(u, v - 36) - 11) / 6.0) * smooth(1.0,
                                                                                                          0.8, from_middle(x, y)), (1.0, 0.72, 0.25))
    half = 12.5 * math.sqrt(max(0.0, 1 - ((v - 36) / 17) ** 2)) if 21 < v < 51 else 0
    glass = smooth(half + 0.8, half - 0.8, u) if half else 0
    lit = math.hypot(u, v - 38)
    color = over(color, glass, mix((1.0, 0.98, 0.85), (1.0, 0.62, 0.16), smooth(2, 15, lit)))
    color = over(color, glass * band(u, 6.2, 1.2, 0.8) * 0.8, (0.55, 0.30, 0.08))
    color = over(color, glass * band(half - u, 0.4, 1.8, 0.8), (0.62, 0.38, 0.12))
    flame = smooth(1.1, 0.7, math.hypot(u / 4.2, (v - 39) / 7.0))
    color = over(color, flame, (1.0, 1.0, 0.92))
    metal = mix((0.98, 0.82, 0.46), (0.52, 0.32, 0.12), smooth(0, 12, u))
    for top, bottom, wide in ((17, 22, 9), (13.5, 17, 5), (49, 55, 10)):
        color = over(color, smooth(top - 0.7, top + 0.3, v) * smooth(bottom + 0.7, bottom - 0.3,
                                                                     v) * smooth(wide + 0.7, wide - 0.7,
                                                                                 u), metal)
    loop = math.hypot(u, (v - 9.5) * 1.05)
    return over(color, band(loop, 5.2, 2.0, 1.0) * smooth(15, 13.5, v), metal)


def pulse_icon(x, y):
    """Waves that run out of a point."""
    r = from_middle(x, y)
    color = (0.30, 0.90, 1.0, 0.0)
    color = over(color, 0.45 * smooth(1.0, 0.0, r) ** 1.5, (0.10, 0.45, 0.85))
    for radius, width, share in ((0.86, 0.06, 0.75), (0.60, 0.075, 0.9), (0.34, 0.09, 1.0)):
        color = over(color, share * band(r, radius, width, 0.05), mix((0.80, 1.0, 1.0), (0.24, 0.72, 1.0), r))
        color = over(color, 0.3 * band(r, radius, width, 0.16), (0.35, 0.80, 1.0))
    return over(color, smooth(0.19, 0.12, r), (0.95, 1.0, 1.0))


def cross_icon(x, y):
    u, v, r = abs(x - 0.5) * 64, abs(y - 0.5) * 64, from_middle(x, y)
    color = (0.0, 0.04, 0.08, 0.0)
    shapes = [band(r, 0.60, 0.05, 0.035) * smooth(2.6, 4.0, min(u, v))]
    for a, b in ((u, v), (v, u)):
        shapes.append(band(a, 0, 2.0, 0.9) * smooth(10.5, 12, b) * smooth(27.5, 25.5, b))
    shapes.append(smooth(0.085, 0.045, r))
    dark = [band(r, 0.60, 0.13, 0.06) * 0.55, smooth(0.16, 0.06, r) * 0.55]
    for a, b in ((u, v), (v, u)):
        dark.append(0.55 * band(a, 0, 5.0, 1.6) * smooth(8.5, 11, b) * smooth(30, 27, b))
    color = over(color, max(dark), (0.0, 0.05, 0.09))
    return over(color, max(shapes), mix((1.0, 0.96, 0.80), (1.0, 0.78, 0.34), r))


def panel(x, y):
    """Dark, and soft at its edges, so that it can be drawn in any size."""
    inside = smooth(0.0, 0.20, min(x, 1 - x)) * smooth(0.0, 0.30, min(y, 1 - y))
    return (*mix((0.02, 0.08, 0.13), (0.01, 0.04, 0.08), y), 0.85 * inside)


def vignette(x, y):
    dark = smooth(0.62, 1.42, from_middle(x, y))
    return 0.0, 0.006, 0.016, 0.88 * dark


# Light.

def lamplight(x, y):
    """A halo, and a beam to the right, on black: it is added to the picture."""
    u, v = x - 0.5, y - 0.5
    r = 2 * math.hypot(u, v)
    halo = 0.26 * math.exp(-r / 0.10) + 0.10 * math.exp(-r / 0.30)
    half = 0.03 + 0.42 * max(u, 0.0)
    across = math.exp(-(v / (0.55 * half)) ** 2)
    dust = 0.75 + 0.5 * cloud(x * 9, y * 9, 0, 4, 57)
    beam = 0.26 * smooth(-0.01, 0.06, u) * across * dust * (1 - smooth(0.05, 0.48, u)) ** 1.3
    edge = smooth(1.0, 0.6, r)
    return (*(c * (halo + beam) * edge for c in (1.0, 0.80, 0.48)), 1.0)


def sonar(x, y):
    """One colour: the grid of the pulse has no coordinates of its own."""
    return 0.10, 0.42, 0.50, 1.0


# Particles.

def spark(x, y):
    r = from_middle(x, y)
    u, v = abs(x - 0.5) * 2, abs(y - 0.5) * 2
    star = math.exp(-v / 0.05) * smooth(1.0, 0.1, u) ** 2 + math.exp(-u / 0.05) * smooth(1.0, 0.1, v) ** 2
    soft = smooth(1.0, 0.0, r) ** 2.6
    return (*mix((1.0, 0.58, 0.20), (1.0, 0.98, 0.86), smooth(0.55, 0.05, r)),
            clamp(soft + 0.6 * star * smooth(1.0, 0.7, r)))


def bubble(x, y):
    r = from_middle(x, y)
    shell = math.exp(-((r - 0.80) / 0.085) ** 2) * (0.55 + 0.45 * smooth(0.9, 0.1, x * 0.5 + y * 0.5))
    glint = 1.1 * math.exp(-(2 * math.hypot(x - 0.35, y - 0.33) / 0.17) ** 2)
    low = 0.5 * math.exp(-(2 * math.hypot(x - 0.66, y - 0.68) / 0.20) ** 2)
    body = (0.07 + 0.10 * r * r) * smooth(0.86, 0.80, r)
    alpha = clamp(shell + glint + low + body) * smooth(0.99, 0.94, r)
    return (*mix((0.45, 0.85, 0.95), (0.95, 1.0, 1.0), clamp(glint + 0.5 * shell)), alpha)


def smoke(x, y):
    r = from_middle(x, y)
    curl = cloud(x * 5 + 0.8 * noise(x * 4, y * 4, 0, 52), y * 5, 0, 4, 51)
    alpha = smooth(1.0, 0.15, r + 0.75 * (0.5 - curl)) * smooth(1.0, 0.75, r)
    return (*mix((0.30, 0.36, 0.46), (0.62, 0.66, 0.74), smooth(0.3, 0.7, curl)), 0.62 * alpha)


def white(x, y):
    return 1.0, 1.0, 1.0, 0.6 * max(0.0, 1 - from_middle(x, y)) ** 2


def seabed(x, z):
    """Hills on both sides of a trench that runs along X."""
    trench = smooth(0.20, 0.0, abs(z - 0.5 - 0.13 * math.sin(5 * x + 0.6)))
    return 206 + 26 * (cloud(x * 5, z * 5, 0, 4, 55) - 0.5) * 2 - 26 * trench


def make(folder):
    Canvas(512).all(backdrop).png(f"{folder}/backdrop.png", True)
    Canvas(512).all(trench).png(f"{folder}/backdrop2.png", True)
    logo().png(f"{folder}/logo.png")
    for name, side, color in (("lamp", 64, lamp_icon), ("pulse", 64, pulse_icon), ("cross", 64, cross_icon),
                              ("panel", 64, panel),
                              ("vignette", 256, vignette), ("spark", 64, spark), ("bubble", 64,
                                                                                  bubble), ("smoke", 64,
                                                                                            smoke)):
        Canvas(side, None, (0, 0, 0, 0)).all(color).png(f"{folder}/{name}.png", name == "vignette")
    Canvas(256, None, (0, 0, 0, 0)).all(lamplight).png(f"{folder}/light.png", True)
    Canvas(4, None, (0, 0, 0, 0)).all(sonar).png(f"{folder}/sonar.png")
    Canvas(32, None, (0, 0, 0, 0)).all(white).dds(f"{folder}/WhiteParticle.dds")
    bmp(f"{folder}/seabed.bmp", 40, seabed)
