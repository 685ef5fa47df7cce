# SPDX-License-Identifier: MIT
#
# The player's submarine, and the pearl that it collects.
import math

from paint import Canvas, band, cloud, noise
from shape import ball, box, clamp, dense, lathe, mix, plate, ring, smooth, tube, write_model

HULL, DOME, LAMP = (0, 0, 1, 0.5), (0, 0.5, 0.25, 0.75), (0.25, 0.5, 0.5, 0.625)
LENS, PANE = (0.25, 0.625, 0.375, 0.75), (0.375, 0.625, 0.5, 0.75)
FIN, BRASS, TOWER = (0.5, 0.5, 0.75, 0.75), (0.75, 0.5, 1, 0.75), (0, 0.75, 0.25, 1)
BLADE, TANK = (0.25, 0.75, 0.5, 1), (0.5, 0.75, 1, 1)

AMBER, DEEP, CREAM = (0.98, 0.64, 0.13), (0.06, 0.25, 0.33), (1.0, 0.93, 0.74)
BRASSY, CORAL, WARM = (0.80, 0.56, 0.24), (0.95, 0.30, 0.22), (1.0, 0.86, 0.52)
PORTS = ((-0.36, 0.07, 0.080), (-0.13, 0.08, 0.095), (0.10, 0.08, 0.080))  # z, y, radius


def hull_radius(profile, z):
    for (z0, r0), (z1, r1) in zip(profile, profile[1:]):
        if z0 <= z <= z1 and z1 > z0:
            return r0 + (r1 - r0) * (z - z0) / (z1 - z0)
    return 0.0


def tilted(angle, at):
    """What looks along Z looks up by the angle, at a place."""
    c, s = math.cos(angle), math.sin(angle)
    return lambda p: (p[0] + at[0], p[1] * c + p[2] * s + at[1], -p[1] * s + p[2] * c + at[2])


def upright(at):
    """What looks along Z looks along Y."""
    return lambda p: (p[0] + at[0], p[2] + at[1], -p[1] + at[2])


def aside(side, at):
    """What looks along Z looks along X."""
    return lambda p: (side * p[2] + at[0], p[1] + at[1], -side * p[0] + at[2])


def submarine():
    hull = dense([(-0.86, 0), (-0.84, 0.075), (-0.66, 0.19), (-0.38, 0.385), (-0.05, 0.485), (0.18, 0.485),
                  (0.28, 0.465)], 2) + [(0.325, 0.44), (0.325, 0)]
    parts = [lathe(hull, 24, HULL, lambda p: (p[0] * 0.94, p[1], p[2]), 60)]

    # The nose is of glass.
    wide, long = 0.425, 0.46
    dome = [(long * math.sin(a), wide * math.cos(a)) for a in (math.pi / 2 * k / 7 for k in range(7))] + [(long, 0)]
    look = tilted(0.06, (0, 0.02, 0.31))
    parts.append(lathe(dome, 22, DOME, lambda p: look((p[0] * 0.96, p[1], p[2])), 80))
    parts.append(ring(0.44, 0.045, 24, 6, BRASS, lambda p: look((p[0] * 0.96, p[1], p[2] + 0.01))))
    parts.append(ring(0.30, 0.016, 18, 4, BRASS, lambda p: look((p[0] * 0.96, p[1], p[2] + 0.325))))
    for turn in (math.pi / 4, math.pi * 3 / 4):  # its frame, outside the ring in front
        for low, high in ((0, 0.25), (0.75, 1)):
            arc = [(wide * math.cos(a) * math.cos(turn), wide * math.cos(a) * math.sin(turn),
                    long * math.sin(a))
                   for a in (math.pi * (low + (high - low) * k / 5) for k in range(6))]
            parts.append(tube([look(p) for p in arc], [0.017] * 6, 4, BRASS))

    lamp = [(-0.20, 0), (-0.19, 0.05), (-0.10, 0.085), (0.02, 0.15), (0.06, 0.155), (0.065, 0.12)]
    glass = [(0.05, 0.13), (0.085, 0.105), (0.105, 0.06), (0.11, 0)]
    front = tilted(-0.05, (0, -0.50, 0.50))
    parts.append(lathe(lamp, 14, LAMP, front, 35))
    parts.append(lathe(glass, 14, LENS, front, 80))
    parts.append(ring(0.148, 0.024, 16, 5, BRASS, lambda p: front((p[0], p[1], p[2] + 0.06))))
    parts.append(box((0.08, 0.20, 0.12), BRASS, lambda p: (p[0], p[1] - 0.40,
                                                           p[2] + 0.36 + 0.4 * (-0.1 - p[1]))))

    for side in (-1, 1):
        for z, y, r in PORTS:
            x = side * (hull_radius(hull, z) * 0.94 - 0.01)
            lean = lambda p, x=x, y=y, z=z, side=side: aside(side, (x, y, z))(p)
            parts.append(ring(r, 0.026, 12, 5, BRASS, lean))
            pane = [(0.0, r), (0.018, r * 0.8), (0.026, 0)]
            parts.append(lathe(pane, 12, PANE, lean, 80))
        tank = dense([(-0.50, 0), (-0.49, 0.06), (-0.40, 0.105), (-0.1, 0.12), (0.22, 0.115), (0.36, 0.07),
                      (0.39, 0)], 1)
        parts.append(lathe(tank, 12, TANK, lambda p, side=side: (p[0] + side * 0.30, p[1] - 0.44, p[2]), 60))
        for z in (-0.28, 0.16):
            parts.append(tube([(side * 0.22, -0.30, z), (side * 0.30, -0.42, z)], [0.03, 0.03], 6, BRASS))
        plane = [(-0.02, 0.36), (0.22, 0.38), (0.12, 0.72), (-0.06, 0.74)]
        parts.append(plate(plane, 0.03, FIN, lambda a, b, d,
                           side=side: (side * b, d - 0.14 + 0.1 * (0.4 - b), a - 0.04)))
        tail = [(-0.46, 0.2), (-0.72, 0.55), (-0.92, 0.56), (-0.80, 0.1)]
        parts.append(plate(tail, 0.03, FIN, lambda a, b, d, side=side: (side * b, d, a)))
    for top in (-1, 1):
        tail = [(-0.40, 0.25), (-0.66, 0.60), (-0.74, 0.66), (-0.93, 0.66), (-0.80, 0.1)]
        parts.append(plate(tail, 0.034, FIN, lambda a, b, d,
                           top=top: (d, top * b * (1 if top > 0 else 0.8), a)))

    # Round the screw, and the screw.
    shroud = [(-1.0, 0.30), (-0.96, 0.325), (-0.82, 0.335), (-0.80, 0.315), (-0.84, 0.30), (-1.0, 0.30)]
    parts.append(lathe(shroud, 20, TOWER, crease=35))
    parts.append(lathe([(-1.04, 0), (-1.01, 0.05), (-0.9, 0.075), (-0.84, 0.08)], 10, BRASS, crease=60))
    blade = [(0.04, -0.02), (0.12, -0.085), (0.25, -0.075), (0.285, 0.0), (0.24, 0.06), (0.1, 0.04)]
    for k in range(4):
        c, s = math.cos(k * math.pi / 2 + 0.4), math.sin(k * math.pi / 2 + 0.4)

        def place(a, b, d, c=c, s=s):
            along, across, out = a, b * 0.75 - d * 0.6, -0.93 + b * 0.6 + d * 0.75
            return along * c - across * s, along * s + across * c, out
        parts.append(plate(blade, 0.014, BLADE, place))

    # The tower, its hatch, a periscope and a mast with a light.
    tower = [(-0.1, 0.21), (0.06, 0.175), (0.20, 0.15), (0.215, 0.165), (0.245, 0.165), (0.25, 0.13),
             (0.285, 0.09), (0.30, 0)]
    parts.append(lathe(tower, 16, TOWER, lambda p: upright((0, 0.44, -0.20))((p[0] * 0.8, p[1] * 1.25, p[2])),
                       35))
    parts.append(tube([(0, 0.66, -0.17), (0, 0.86, -0.17), (0, 0.885, -0.15), (0, 0.885, -0.04)],
                      [0.026, 0.026, 0.028, 0.034], 8, BRASS))
    parts.append(tube([(0, 0.62, -0.33), (0, 0.84, -0.37)], [0.012, 0.008], 5, BRASS))
    red = (TOWER[0], 0.97, TOWER[2], 1.0)
    parts.append(ball(0.03, 5, 8, red, lambda p: (p[0], p[1] + 0.85, p[2] - 0.37)))
    scale = 0.88
    return [part.moved(lambda p: (p[0] * scale, (p[1] - 0.02) * scale,
                                  (p[2] + 0.06) * scale)) for part in parts]


def hull_place(z):
    """How far along the hull's picture. Its rows are not evenly spread: 18 of them, two for each point."""
    rows = [-0.86, -0.84, -0.66, -0.38, -0.05, 0.18, 0.28]
    for k, (a, b) in enumerate(zip(rows, rows[1:])):
        if a <= z <= b:
            return (k + (z - a) / (b - a)) * 2 / 14
    return 1.0


def line(x, at, width=0.008):
    """A groove: dark in the middle, with light on its lower edge."""
    return band(x, at, width, width * 0.4), band(x, at + width * 1.2, width * 0.6, width * 0.4)


def hull_paint(s, t):
    height = -math.cos(2 * math.pi * s)
    color = mix(mix(AMBER, (0.85, 0.42, 0.07), smooth(0.2, -0.4, height)), (1.0, 0.78, 0.32),
                smooth(0.5, 1, height))
    color = mix(color, DEEP, smooth(-0.40, -0.44, height))
    color = mix(color, CREAM, band(height, -0.37, 0.09, 0.02))
    # A collar of slanting stripes before the tail.
    stripe = band(t, 0.155, 0.075, 0.004)
    slant = smooth(0.42, 0.58, 0.5 + 0.5 * math.sin(2 * math.pi * (s * 12 + t * 9)))
    color = mix(color, mix(CORAL, CREAM, slant), stripe)
    groove = light = 0.0
    for at in (0.21, 0.40, 0.60, 0.79):
        a, b = line(t, at, 0.010)
        groove, light = max(groove, a), max(light, b)
    for at in (0.135, 0.365, 0.635, 0.865):
        if 0.21 < t < 0.79:
            groove = max(groove, band(s, at, 0.004, 0.003))
    # Rivets on both sides of the grooves that go round.
    for at in (0.228, 0.382, 0.418, 0.582, 0.618, 0.772):
        away = math.hypot(((s * 44) % 1 - 0.5) / 44 * 3.0, (t - at) * 1.55)
        groove = max(groove, 0.75 * band(away, 0, 0.020, 0.008))
        light = max(light, band(math.hypot(((s * 44) % 1 - 0.44) / 44 * 3.0, (t - at - 0.003) * 1.55), 0,
                                0.008, 0.008))
    wear = cloud(s * 14, t * 7, 0, 4, 5, 0)
    streak = noise(s * 60, t * 5, 0, 9) * smooth(0.9, -0.9, height)
    shade = 0.80 + 0.22 * height + 0.20 * (wear - 0.5) - 0.14 * streak
    shade *= 1 - 0.30 * smooth(0.30, 0.10, t) - 0.40 * smooth(0.80, 0.90, t)
    # Dark about the windows and below the tower.
    for z, y, r in PORTS:
        at = hull_place(z)
        for middle in (0.25 + 0.022, 0.75 - 0.022):
            away = math.hypot((s - middle) * 3.0, (t - at) * 1.55)
            shade *= 1 - 0.45 * smooth(r * 1.9, r * 0.9, away)
    shade *= 1 - 0.4 * smooth(0.24, 0.15, math.hypot((s - 0.5) * 3.0, (t - 0.50) * 1.2))
    color = mix(color, (0.16, 0.09, 0.05), 0.62 * smooth(0.62, 0.80, wear) * smooth(0.7, -0.5, height))
    color = mix(color, (0.10, 0.06, 0.04), 0.8 * groove)
    return mix(tuple(c * shade for c in color), (1, 0.92, 0.7), 0.22 * light)


def dome_paint(s, t):
    """As one sees it from the side: up is y, ahead z, and x tells how near it is."""
    turn, tall = 2 * math.pi * s, math.pi / 2 * t
    x, y, z = math.cos(tall) * math.sin(turn), -math.cos(tall) * math.cos(turn), math.sin(tall)
    color = mix((0.03, 0.20, 0.32), (0.14, 0.58, 0.74), smooth(-0.5, 0.9, y + 0.35 * z))
    # Lamps inside shine up from the panel, and who steers sits before them.
    inside = smooth(1.15, 0.15, math.hypot(z - 0.35, (y + 0.25) * 1.1))
    color = mix(color, (1.0, 0.74, 0.32), 0.9 * inside)
    near = smooth(0.30, 0.55, abs(x))
    head = smooth(0.20, 0.16, math.hypot(z - 0.30, (y - 0.03) * 0.95))
    body = smooth(0.36, 0.30, math.hypot((z - 0.24) * 1.15, (y + 0.52) * 0.80))
    color = mix(color, (0.08, 0.14, 0.22), 0.92 * near * body)
    color = mix(color, mix((0.30, 0.14, 0.10), (0.78, 0.48, 0.32), smooth(0.22, 0.42, z)), near * head)
    color = mix(color, (0.93, 0.30, 0.20), near * smooth(0.235, 0.20,
                                                         math.hypot(z - 0.29, y - 0.04)) * smooth(0.075,
                                                                                                  0.095, y))
    color = mix(color, CREAM, 0.9 * near * band(y, 0.09, 0.035, 0.01) * smooth(0.22, 0.20, abs(z - 0.29)))
    # What the glass mirrors: a window above, and its edge.
    gloss = band(math.hypot(z - 0.05, y + 0.1), 0.86, 0.09, 0.05) * smooth(0.35, 0.65, y) * smooth(0.02, 0.12,
                                                                                                   z)
    gloss += 0.55 * band(math.hypot(z - 0.05, y + 0.1), 0.70, 0.03, 0.03) * smooth(0.40, 0.6, y) * smooth(0.1,
                                                                                                          0.2, z)
    color = mix(color, (0.90, 1.0, 1.0), 0.8 * clamp(gloss))
    return mix(color, (0.02, 0.07, 0.10), 0.75 * smooth(0.16, 0.0, t))


def metal(base, s, t, seed=0):
    wear = cloud(s * 10, t * 10, 0, 3, seed)
    return tuple(c * (0.72 + 0.5 * wear) for c in base)


def lamp_paint(s, t):
    return mix(metal(BRASSY, s, t, 3), (0.12, 0.07, 0.04), 0.7 * band((t * 5) % 1, 0.5, 0.18, 0.1))


def pane_paint(s, t):
    return mix((1.0, 0.62, 0.20), (1.0, 0.95, 0.72), smooth(0.0, 0.8, t + 0.12 * math.cos(2 * math.pi * s)))


def fin_paint(s, t):
    """Back to front, and from the root to the tip."""
    color = mix(AMBER, CORAL, smooth(0.66, 0.68, t))
    color = mix(color, CREAM, band(t, 0.66, 0.05, 0.01))
    rib = band((s * 5) % 1, 0.5, 0.10, 0.08)
    wear = cloud(s * 6, t * 8, 0, 3, 12)
    return tuple(c * (0.62 + 0.25 * t + 0.35 * (wear - 0.4) - 0.2 * rib) for c in color)


def tower_paint(s, t):
    if t > 0.86:
        return mix((1.0, 0.25, 0.18), (1.0, 0.65, 0.55), noise(s * 4, t * 4))
    color = mix(AMBER, DEEP, band(t, 0.36, 0.16, 0.01))
    color = mix(color, BRASSY, smooth(0.5, 0.55, t))
    rivet = band(math.hypot(((s * 12) % 1 - 0.5) * 0.6, (t - 0.22) * 4), 0, 0.16, 0.06)
    return tuple(c * (0.55 + 0.5 * smooth(0, 0.3, t) + 0.3 * (cloud(s * 9, t * 9, 0, 3,
                                                                    7) - 0.5)) * (1 - 0.5 * rivet) for c in color)


def tank_paint(s, t):
    height = -math.cos(2 * math.pi * s)
    color = mix(DEEP, CREAM, band(t, 0.80, 0.05, 0.01) + band(t, 0.22, 0.05, 0.01))
    seam = band((t * 6) % 1, 0.5, 0.05, 0.04)
    return tuple(c * (0.85 + 0.3 * height + 0.4 * (cloud(s * 9, t * 6, 0, 3,
                                                         8) - 0.5)) * (1 - 0.45 * seam) for c in color)


def submarine_picture():
    canvas = Canvas(256)
    for rect, color in ((HULL, hull_paint), (DOME, dome_paint), (LAMP, lamp_paint), (PANE, pane_paint),
                        (LENS, lambda s, t: mix((1.0, 0.80, 0.42), (1.0, 1.0, 0.93),
                                                smooth(0.0, 0.75, t))), (FIN, fin_paint),
                        (BRASS, lambda s, t: metal(BRASSY, s, t, 2)), (TOWER, tower_paint),
                        (BLADE, lambda s, t: metal(mix(BRASSY, (0.35, 0.22, 0.1), band(s, 0.1, 0.2, 0.2)), s,
                                                   t, 4)),
                        (TANK, tank_paint)):
        canvas.fill(rect, color)
    return canvas


def pearl_paint(s, t):
    """Mother of pearl: cream, with bands of rose and blue that run into each other."""
    x, y = math.cos(2 * math.pi * s) * math.sin(math.pi * t), math.sin(2 * math.pi * s) * math.sin(math.pi * t)
    z = math.cos(math.pi * t)
    sheen = cloud(2 + 1.6 * x, 2 + 1.6 * y, 2 + 1.6 * z, 3, 21) * 9 + z * 1.2
    tint = tuple(0.5 + 0.5 * math.sin(sheen + k) for k in (0.0, 2.6))
    color = mix((0.98, 0.93, 0.88), (0.98, 0.70, 0.84), smooth(0.15, 1.0, tint[0]))
    return mix(color, (0.66, 0.84, 1.0), 0.6 * smooth(0.2, 1.0, tint[1]))


def make(folder):
    write_model(folder, "lantern", submarine())
    submarine_picture().png(f"{folder}/lantern.png")
    write_model(folder, "pearl", [ball(0.35, 14, 20, (0, 0, 1, 1), crease=90)])
    Canvas(64).all(pearl_paint).png(f"{folder}/pearl.png")
