# SPDX-License-Identifier: MIT
#
# What shines by itself, all from one texture: the jelly with its bones, sparks, spines and rings.
import math

from paint import Canvas, band, cloud, hot, noise
from shape import Bone, Part, clamp, lathe, mix, mul, region, ring, smooth, tube, write_model

BELL, TENTACLE, ARM = (0, 0, 0.5, 0.5), (0.5, 0, 0.75, 0.5), (0.75, 0, 1, 0.5)
SPARK, SPINE, RING, UNDER = (0, 0.5, 0.25, 1), (0.25, 0.5, 0.5, 1), (0.5, 0.5, 0.75, 1), (0.75, 0.5, 1, 1)

# Eight petals make the bell; a tentacle hangs from each, and four frilled arms from the middle.
PETALS, LINKS, LINK = 8, 5, 0.43
ARMS, ARM_LINKS, ARM_LINK = 4, 4, 0.36
SHOULDER, SHOULDER_Y, RIM_Y = 0.42, 0.50, -0.10
SECONDS, BEATS, KEYS = 8.0, 3, 72


def turn_of(k, count):
    return 2 * math.pi * k / count


def petal_bone(k):
    return 1 + k % PETALS


def link_bone(petal, link):
    return 1 + PETALS + petal * LINKS + link


def arm_bone(arm, link):
    return 1 + PETALS * (1 + LINKS) + arm * ARM_LINKS + link


def quaternion(axis, turn):
    s = math.sin(turn / 2)
    return axis[0] * s, axis[1] * s, axis[2] * s, math.cos(turn / 2)


def combined(*turns):
    """Small turns about several axes, as one."""
    axis = (sum(a[0] * t for a, t in turns), sum(a[1] * t for a, t in turns), sum(a[2] * t for a, t in turns))
    size = math.sqrt(sum(c * c for c in axis))
    return quaternion(mul(axis, 1 / size), size) if size > 1e-9 else (0.0, 0.0, 0.0, 1.0)


def beat(t):
    """The stroke: quick together, slowly apart, from -1 to 1."""
    phase = (t * BEATS) % 1
    return math.cos(2 * math.pi * phase) * -0.8 + 0.35 * math.sin(4 * math.pi * phase)


def skeleton():
    bones = [Bone("bell", -1, (0, 0, 0), lambda t: combined(((0, 0, 1), 0.05 * math.sin(2 * math.pi * t))))]
    for k in range(PETALS):
        a = turn_of(k, PETALS)
        along = (-math.sin(a), 0, math.cos(a))
        at = (SHOULDER * math.cos(a), SHOULDER_Y, SHOULDER * math.sin(a))
        bones.append(Bone(f"petal{k}", 0, at, lambda t, along=along: quaternion(along,
                                                                                0.10 - 0.30 * beat(t))))
    for k in range(PETALS):
        a = turn_of(k, PETALS)
        along, out = (-math.sin(a), 0, math.cos(a)), (math.cos(a), 0, math.sin(a))
        for link in range(LINKS):
            at = (0.88 * math.cos(a), RIM_Y - link * LINK, 0.88 * math.sin(a))

            def turn(t, along=along, out=out, link=link, k=k):
                late = t - 0.035 * (link + 1)
                own = 2 * math.pi * (2 * late + 0.37 * k)
                return combined((along, (0.26 if link == 0 else 0.13) * beat(late) + 0.10 * math.sin(own)),
                                (out, 0.15 * math.sin(2 * math.pi * (2 * late + 0.29 * k) + 1)))
            bones.append(Bone(f"link{k}_{link}", link_bone(k, link - 1) if link else petal_bone(k), at, turn))
    for k in range(ARMS):
        a = turn_of(k + 0.5, ARMS)
        along, out = (-math.sin(a), 0, math.cos(a)), (math.cos(a), 0, math.sin(a))
        for link in range(ARM_LINKS):
            at = (0.16 * math.cos(a), 0.20 - link * ARM_LINK, 0.16 * math.sin(a))

            def turn(t, along=along, out=out, link=link, k=k):
                late = t - 0.05 * (link + 1)
                return combined((along, 0.10 + 0.10 * beat(late)),
                                (out, 0.16 * math.sin(2 * math.pi * (2 * late + 0.23 * k))))
            bones.append(Bone(f"arm{k}_{link}", arm_bone(k, link - 1) if link else 0, at, turn))
    return bones


def bell_skin(turn, share):
    """Between the bell's middle and the two petals about this turn."""
    at = turn / (2 * math.pi) * PETALS
    first, part = math.floor(at), at - math.floor(at)
    part = part * part * (3 - 2 * part)
    return (0, petal_bone(first), petal_bone(first + 1), 0), (1 - share, share * (1 - part), share * part,
                                                              0.0)


OUTLINE = [(0.0, 0.80), (0.18, 0.78), (0.34, 0.725), (0.52, 0.62), (0.68, 0.47), (0.81, 0.29), (0.90, 0.10),
           (0.95, -0.06), (0.97, -0.16)]  # radius and height from the top to the rim
INSIDE = [(0.97, -0.16), (0.87, -0.02), (0.70, 0.26), (0.36, 0.48), (0.0, 0.52)]


def bell(profile, rect, sides=48):
    def place(i, j):
        r, y = profile[round(i * (len(profile) - 1))]
        turn = j * 2 * math.pi
        # Between the petals the rim is drawn in and up.
        notch = 0.5 - 0.5 * math.cos(PETALS * turn)
        low = smooth(0.35, -0.16, y)
        r, y = r * (1 - 0.07 * notch * smooth(0.4, 0.97, r)), y + 0.13 * notch * low
        share = smooth(0.30, 0.85, r)
        across = 1 - abs(1 - 2 * ((j * PETALS) % 1.0))
        return (r * math.cos(turn), y, r * math.sin(turn)), region(rect, 0.02 + 0.96 * across,
                                                                   i), bell_skin(turn, share)
    part = Part(80)
    part.grid(len(profile) - 1, sides, place)
    return part


def hanging(at, length, links, width, bone_of, above, rect, sides, frill=0.0, rows=18):
    """A thread from a place downwards, which hangs on its chain of bones."""
    part = Part(80)

    def place(i, j):
        far = i * links
        lower = min(int(far), links - 1)
        share = clamp((far - lower) + 0.5)
        before = bone_of(lower - 1) if lower else above
        around = 2 * math.pi * j
        wave = 1 + 0.30 * math.sin(far * 7) * frill
        w = width * (1 - 0.86 * i ** 1.3) * wave * math.sin(math.pi * min(1, 0.10 + i * 2) / 2)
        w *= 0.0 if i == 1 else 1.0
        flat = 1 + frill * 0.55 * math.cos(3 * around + far * 5)
        point = (at[0] + w * flat * math.cos(around), at[1] - i * length, at[2] + w * flat * math.sin(around))
        return point, region(rect, j, i), ((before, bone_of(lower), 0, 0), (1 - share, share, 0.0, 0.0))
    part.grid(rows, sides, place)
    return part


def jelly():
    # Both sides of the bell are one closed surface.
    bell_part = bell(OUTLINE, BELL)
    bell_part.triangles += bell(INSIDE, UNDER).triangles
    parts = [bell_part]
    for k in range(PETALS):
        a = turn_of(k, PETALS)
        parts.append(hanging((0.88 * math.cos(a), RIM_Y, 0.88 * math.sin(a)), LINKS * LINK, LINKS, 0.062,
                             lambda link, k=k: link_bone(k, link), petal_bone(k), TENTACLE, 5, 0.0, 14))
    for k in range(ARMS):
        a = turn_of(k + 0.5, ARMS)
        parts.append(hanging((0.16 * math.cos(a), 0.44, 0.16 * math.sin(a)), ARM_LINKS * ARM_LINK + 0.24,
                             ARM_LINKS, 0.15,
                             lambda link, k=k: arm_bone(k, link), 0, ARM, 8, 1.0, 17))
    return parts


def bell_paint(s, t):
    """From the notch to the petal's middle, and from the top to the rim."""
    color = mix((0.12, 0.62, 0.90), (0.42, 0.26, 0.98), smooth(0.10, 0.70, t))
    light = 0.80 + 0.35 * smooth(0.35, 0.0, t)
    rib = band(s, 1.0, 0.05, 0.22) * smooth(0.10, 0.35, t)
    side = band(s, 0.0, 0.03, 0.12) * smooth(0.25, 0.6, t)
    color = mix(color, (0.35, 0.95, 1.0), 0.85 * rib)
    color = mix(color, (0.75, 0.45, 1.0), 0.55 * side)
    # Inside shine four rings; spots run down the ribs.
    ring_ = band(math.hypot((s - 1) * 0.40, t - 0.27), 0.16, 0.05, 0.06)
    color = mix(color, (1.0, 0.55, 0.95), 0.9 * ring_)
    for k in range(5):
        color = mix(color, (0.85, 1.0, 1.0), smooth(0.045, 0.015,
                                                    math.hypot((s - 0.62 - 0.04 * k) * 0.8,
                                                               t - 0.42 - 0.095 * k)))
    veil = cloud(s * 5, t * 9, 0, 3, 41)
    light += 0.6 * (veil - 0.5) + 0.5 * smooth(0.80, 0.95, t)
    color = mix(color, (0.45, 1.0, 1.0), smooth(0.90, 0.985, t))
    return hot(color, light)


def under_paint(s, t):
    color = mix((0.50, 0.85, 1.0), (0.24, 0.10, 0.48), smooth(0.0, 0.3, t))
    return hot(color, 1.0 - 0.45 * t + 0.2 * band(s, 1, 0.2, 0.3))


def tentacle_paint(s, t):
    color = mix((0.30, 0.95, 1.0), (0.72, 0.34, 1.0), smooth(0.05, 0.6, t))
    bead = band((t * 11) % 1, 0.5, 0.28, 0.20)
    return hot(color, (0.75 + 0.75 * bead) * (1 - 0.50 * t))


def arm_paint(s, t):
    fringe = 0.5 + 0.5 * math.sin(2 * math.pi * 3 * s + 9 * t)
    color = mix(mix((0.95, 0.55, 0.95), (0.42, 0.22, 0.85), smooth(0.0, 0.7, t)), (0.75, 0.95, 1.0),
                0.5 * fringe ** 3)
    return hot(color, (0.85 + 0.5 * fringe + 0.5 * (cloud(s * 6, t * 12, 0, 3, 43) - 0.5)) * (1 - 0.55 * t))


def spark():
    """A bolt with its head in front."""
    body = lathe([(-0.30, 0), (-0.22, 0.018), (-0.08, 0.038), (0.06, 0.060), (0.13, 0.062), (0.18, 0.042),
                  (0.20, 0)], 8, SPARK, crease=80)
    parts = [body]
    for k in range(4):
        c, s = math.cos(k * math.pi / 2 + 0.78), math.sin(k * math.pi / 2 + 0.78)
        parts.append(tube([(0.04 * c, 0.04 * s, 0.10), (0.075 * c, 0.075 * s, 0.0),
                           (0.03 * c, 0.03 * s, -0.16)],
                          [0.012, 0.016, 0.0], 4, (SPARK[0], 0.52, SPARK[2], 0.74)))
    return parts


def spine():
    path = [(0.0, 0.014 * math.sin(3 * k / 6), -0.30 + 0.1 * k) for k in range(7)]
    parts = [tube(path, [0.030, 0.062, 0.058, 0.048, 0.036, 0.020, 0.0], 7, SPINE, 80)]
    for k in range(5):
        z, turn = -0.16 + 0.07 * k, 2.4 * k
        c, s = math.cos(turn), math.sin(turn)
        parts.append(tube([(0.035 * c, 0.035 * s, z + 0.03), (0.10 * c, 0.10 * s, z - 0.07)], [0.024, 0.0], 4,
                          SPINE))
    return parts


def spark_paint(s, t):
    color = mix((1.0, 0.45, 0.10), (1.0, 0.96, 0.62), smooth(0.15, 0.75, t))
    return hot(color, 0.45 + 1.5 * smooth(0.0, 0.75, t) + 0.15 * noise(s * 6, t * 14))


def spine_paint(s, t):
    color = mix((0.75, 0.06, 0.14), (1.0, 0.36, 0.14), smooth(0.05, 0.6, t))
    return hot(mix(color, (1.0, 0.88, 0.55), smooth(0.6, 0.9, t)),
               0.95 + 0.8 * t + 0.2 * noise(s * 5, t * 18))


def ring_paint(s, t):
    """Along the ring goes t, round its cross-section s."""
    facing = abs(math.cos(2 * math.pi * s))
    dash = 0.86 + 0.14 * math.cos(2 * math.pi * t * 16)
    return hot(mix((0.04, 0.40, 0.90), (0.55, 1.0, 1.0), smooth(0.2, 1.0, facing)),
               (0.5 + 0.9 * facing) * dash)


def make(folder):
    canvas = Canvas(256)
    for rect, color in ((BELL, bell_paint), (TENTACLE, tentacle_paint), (ARM, arm_paint),
                        (UNDER, under_paint),
                        (SPARK, spark_paint), (SPINE, spine_paint), (RING, ring_paint)):
        canvas.fill(rect, color)
    canvas.png(f"{folder}/glow.png")
    write_model(folder, "jelly", jelly(), "glow.png", unlit=True, bones=skeleton(), seconds=SECONDS,
                keys=KEYS)
    flat = lambda p: (p[0], p[1], p[2] * 0.6)
    for name, parts in (("spark", spark()), ("spine", spine()),
                        ("ring", [ring(0.95, 0.05, 48, 8, RING, flat)])):
        write_model(folder, name, parts, "glow.png", unlit=True)
