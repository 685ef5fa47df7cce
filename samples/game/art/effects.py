# SPDX-License-Identifier: MIT
#
# The short sounds of the game. All of them happen under water: few heights, and a little room.
import math
import random

from synth import (RATE, bell, cycle, dying, faded, frames, hall, high, low, mixed, noise, pitch, plucked, sine, slide,
                   soft, times, warm)


def in_room(samples, back, loudness, seconds):
    """With the walls, and time for them to fall silent."""
    dry = samples + [0.0] * (frames(seconds) - len(samples))
    return faded([a + loudness * b for a, b in zip(dry, hall(dry, back))], 0.001, 0.3 * seconds)


def hump(length, top):
    """Rises until `top`, a part of the length, and falls again."""
    first = round(length * top)
    return soft(first) + soft(length - first)[::-1]


def bubble(frequency, seconds):
    """It closes while it sounds, so that its pitch rises."""
    length = frames(seconds)
    rise = [frequency * (1 + 0.9 * i / length) for i in range(length)]
    return faded(times(sine(*rise), dying(length, seconds / 4)), 0.004, seconds / 3)


def bubbles(count, first, last, seed):
    dice = random.Random(seed)
    out = []
    for n in range(count):
        at = first + (last - first) * (n + dice.random()) / count
        out.append((at, dice.uniform(0.3, 1) * (1 - 0.6 * n / count),
                    bubble(dice.uniform(280, 1100), dice.uniform(0.04, 0.11))))
    return out


def shot():
    length = frames(0.13)
    body = times(sine(*slide(1250, 430, 0.03, length)), dying(length, 0.032))
    edge = times(sine(*slide(2500, 860, 0.03, length)), dying(length, 0.012))
    return faded([a + 0.25 * b for a, b in zip(body, edge)], 0.003, 0.05)


def hit():
    length = frames(0.24)
    knock = bell(1, length, [(310, 1, 0.05), (467, 0.7, 0.04), (742, 0.5, 0.03), (1187, 0.3, 0.02)])
    tick = times(low(noise(length, 11), 2600), dying(length, 0.008))
    return faded([a + 1.6 * b for a, b in zip(knock, tick)], 0.001, 0.08)


def boom():
    length = frames(1.0)
    thump = warm(times(sine(*slide(190, 50, 0.07, length)), dying(length, 0.22)), 2.5)
    rumble = low(noise(length, 21), slide(1500, 140, 0.14, length))
    burst = warm([3 * x for x in times(rumble, dying(length, 0.24))], 1.5)
    out = mixed(length, (0, 0.7, thump), (0, 1.2, burst),
                *((at, 0.36 * loud, part) for at, loud, part in bubbles(16, 0.12, 0.95, 4)))
    return faded(warm(out, 1.2), 0.002, 0.35)


def pearl():
    length = frames(0.5)
    glass = [(1, 1, 0.13), (2, 0.25, 0.08), (2.76, 0.22, 0.05), (5.4, 0.06, 0.02)]
    first, second = (faded(bell(pitch(key), length, glass), 0.002, 0.3) for key in (88, 95))
    return faded(mixed(length, (0, 0.7, first), (0.065, 1, second)), 0.001, 0.2)


def pulse():
    length = frames(0.9)
    ping = times(sine(*slide(1180, 1040, 0.05, length)), dying(length, 0.2))
    deep = times(sine(*slide(420, 70, 0.12, length)), dying(length, 0.22))
    water = low(high(noise(length, 31), 300), slide(5200, 260, 0.2, length))
    sweep = times(times(water, hump(length, 0.12)), dying(length, 0.3))
    out = mixed(frames(1.2), (0, 0.55, faded(ping, 0.004, 0.3)), (0, 0.8, faded(deep, 0.004, 0.3)), (0, 1.5, sweep),
                (0.3, 0.2, faded(ping, 0.02, 0.3)), (0.6, 0.07, faded(ping, 0.03, 0.3)))
    return in_room(out, 0.74, 0.4, 1.3)


def hurt():
    length = frames(0.8)
    crash = times(low(noise(length, 41), slide(2600, 180, 0.07, length)), dying(length, 0.13))
    thump = times(sine(*slide(140, 55, 0.05, length)), dying(length, 0.15))
    plate = bell(1, length, [(173, 0.8, 0.16), (251, 0.6, 0.2), (397, 0.5, 0.14), (541, 0.4, 0.1), (893, 0.2, 0.06)])
    # Round at its corners: it has to be heard, not to hurt.
    horn = cycle(1, 0, 0.3, 0, 0.1)
    high_tone, low_tone = (faded(plucked(f, frames(0.16), horn, horn, 9, 9), 0.012, 0.05) for f in (660, 495))
    out = mixed(length, (0, 2.2, crash), (0, 0.8, thump), (0, 0.3, plate), (0.14, 0.36, high_tone),
                (0.31, 0.36, low_tone), (0.48, 0.3, high_tone), (0.65, 0.24, low_tone))
    return faded(warm(out, 1.3), 0.001, 0.25)


def wave():
    """A horn over the water: a fifth that is reached from below and opens while it swells."""
    length = frames(1.0)
    out = [0.0] * length
    for key, loudness in ((50, 1), (57, 0.7), (62, 0.35)):
        for detune in (0.997, 1.003):
            phase = 0.0
            for i in range(length):
                t = i / RATE
                bend = 1 - 0.05 * math.exp(-t / 0.07) + 0.004 * math.sin(math.tau * 5.2 * t) * min(t, 0.6)
                phase += math.tau * pitch(key) * detune * bend / RATE
                open_ = 0.75 * math.sin(math.pi * min(t / 0.95, 1)) ** 0.7
                # Each harmonic is as much fainter than the last as the horn is closed.
                out[i] += loudness * math.sin(phase) / (1 + open_ * open_ - 2 * open_ * math.cos(phase))
    return in_room(faded(out, 0.07, 0.3), 0.7, 0.3, 1.1)


def over():
    """The lamp goes out: four notes down, each of them sinking, over a tone that falls to the ground."""
    length = frames(1.9)
    fall = slide(294, 49, 0.8, length)
    ground = times(low([a + 0.5 * b + 0.25 * c for a, b, c in zip(
        sine(*fall), sine(*(2.004 * f for f in fall)), sine(*(2.99 * f for f in fall)))],
        slide(1400, 120, 0.7, length)), hump(length, 0.06))
    parts = [(0, 0.7, ground)]
    for n, key in enumerate((74, 70, 65, 62)):
        span = frames(0.8)
        sink = [pitch(key) * (1 - 0.06 * (i / span) ** 1.5) for i in range(span)]
        note = times([a + 0.3 * b for a, b in zip(sine(*sink), sine(*(2 * f for f in sink)))], dying(span, 0.25))
        parts.append((0.05 + 0.36 * n, 0.6, faded(note, 0.01, 0.3)))
    return in_room(mixed(length, *parts), 0.78, 0.3, 2.0)


def click():
    length = frames(0.07)
    tick = bell(1, length, [(880, 1, 0.012), (1870, 0.5, 0.006)])
    return faded(tick, 0.001, 0.03)


def dart():
    """A rush that comes near, and a thin tone that climbs with it."""
    length = frames(0.45)
    way = hump(length, 0.55)
    rush = high(low(noise(length, 51), [500 + 3600 * w for w in way]), 350)
    climb = sine(*(430 * 3 ** (i / length) for i in range(length)))
    shiver = [0.6 + 0.4 * math.sin(math.tau * 22 * i / RATE) for i in range(length)]
    return [w ** 1.5 * (1.6 * a + 0.4 * b * c) for w, a, b, c in zip(way, rush, climb, shiver)]


# With the loudest frame of each. The engine plays one side at 0.6 of it on both: eight booms at once, when
# a pulse meets a swarm, still fit below 1.
ALL = [(shot, 0.1), (hit, 0.17), (boom, 0.2), (pearl, 0.16), (pulse, 0.34), (hurt, 0.38), (wave, 0.3), (over, 0.38),
       (click, 0.16), (dart, 0.2)]
