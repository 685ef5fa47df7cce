# SPDX-License-Identifier: MIT
#
# The music of the game: one song to wait, one to dive, one to meet the mother. Loops, all of them.
import functools
import math

from synth import (RATE, Song, bell, cycle, dying, faded, frames, held, high, low, noise, pitch, plucked, sine, slide,
                   soft, times)

SMOOTH = cycle(1, 0.35, 0.12, 0.06, 0.02)
ROUND = cycle(1, 0.12, 0.03)
REED = cycle(1, 0.6, 0.5, 0.36, 0.3, 0.2, 0.16, 0.1, 0.08, 0.05)
STRING = cycle(*(1 / n for n in range(1, 15)))


# --- instruments


@functools.lru_cache(maxsize=None)
def pad(key, seconds, table, attack, side):
    """Two sides that differ a little are wide."""
    return faded(held(pitch(key), frames(seconds), table, 0.0028 + 0.0009 * side), attack, min(attack, 0.6 * seconds))


def pads(song, keys, beat, seconds, loudness, table=SMOOTH, attack=1.2):
    for key in keys:
        for side in range(2):
            song.lay(side, beat, loudness, pad(key, seconds, table, attack, side))


@functools.lru_cache(maxsize=None)
def pluck(key, seconds, bright, dim, fall):
    return faded(plucked(pitch(key), frames(seconds), bright, ROUND, dim, fall), 0.003, 0.4 * seconds)


@functools.lru_cache(maxsize=None)
def chime(key, seconds):
    partials = [(1, 1, 0.7), (2.003, 0.3, 0.5), (2.74, 0.16, 0.25), (5.1, 0.05, 0.08), (0.5, 0.18, 0.9)]
    return faded(bell(pitch(key), frames(seconds), partials), 0.006, 0.5 * seconds)


@functools.lru_cache(maxsize=None)
def whistle(key, seconds):
    """A far voice: almost a sine, and it begins to tremble."""
    length = frames(seconds)
    glide = [pitch(key) * (1 + 0.006 * min(i / RATE, 0.7) * math.sin(math.tau * 4.6 * i / RATE)) for i in range(length)]
    tone = [a + 0.16 * b for a, b in zip(sine(*glide), sine(*(2 * f for f in glide)))]
    return faded(tone, min(0.12, 0.4 * seconds), min(0.3, 0.5 * seconds))


@functools.lru_cache(maxsize=None)
def kick(top, bottom, fall):
    length = frames(4 * fall)
    return faded(times(sine(*slide(top, bottom, 0.035, length)), dying(length, fall)), 0.002, 2 * fall)


@functools.lru_cache(maxsize=None)
def hiss(edge, fall, seed):
    """A shaker: sand that is thrown."""
    length = frames(5 * fall)
    return faded(times(high(low(noise(length, seed), 7000), edge), dying(length, fall)), 0.006, 2 * fall)


@functools.lru_cache(maxsize=None)
def tock(seed):
    """Wood under water, in the place of a snare drum."""
    length = frames(0.3)
    skin = bell(1, length, [(196, 1, 0.06), (331, 0.6, 0.04), (523, 0.3, 0.02)])
    sand = times(high(low(noise(length, seed), 2200), 500), dying(length, 0.05))
    return faded([0.6 * a + 1.3 * b for a, b in zip(skin, sand)], 0.002, 0.12)


@functools.lru_cache(maxsize=None)
def swell(seconds, bottom, top, seed):
    """Water that comes and goes."""
    length = frames(seconds)
    way = soft(length // 2) + soft(length - length // 2)[::-1]
    return times(high(low(noise(length, seed), [bottom + (top - bottom) * w for w in way]), 120), way)


# --- songs


def title():
    """D minor with a bright sixth and a strange second, slow as breath."""
    beat = frames(1.0)
    song = Song(beat, 16)
    chords = [(38, (57, 62, 64, 65)), (34, (57, 60, 62, 64)), (31, (58, 62, 65, 69)), (33, (57, 62, 63, 67))]
    for bar, (bass, chord) in enumerate(chords):
        start = 4 * bar
        pads(song, chord, start, 6.0, 0.1)
        song.add(start, 0.22, 0.5, faded(held(pitch(bass), frames(5.6), cycle(1, 0.6, 0.3, 0.15), 0.0012), 0.7, 1.4))
        for n, step in enumerate((0, 2, 1, 3, 2, 1, 3, 2)):
            key = chord[step] + 12
            song.add(start + n / 2, 0.075 + 0.02 * (n % 4 == 0), 0.2 + 0.6 * (n % 2),
                     pluck(key, 1.6, SMOOTH, 0.15, 0.5))
        side = 0.25 + 0.5 * (bar % 2)
        song.add(start + 1.5, 0.3, side, swell(5.5, 150, 520, 60 + bar))
        song.add(start + 3.5, 0.2, 1 - side, swell(4.5, 120, 400, 70 + bar))
    for at, key in ((0, 81), (1.5, 76), (2, 77), (4, 76), (5.5, 72), (6, 74), (8, 77), (9.5, 74), (10, 70), (11, 72),
                    (12, 69), (13.5, 75), (14, 74)):
        song.add(at, 0.2, 0.35 + 0.3 * (key % 2), chime(key, 2.8))
    # Somebody listens, far away.
    song.add(7, 0.05, 0.85, whistle(93, 0.5))
    song.add(15, 0.05, 0.15, whistle(93, 0.5))
    song.echo(0.75, 0.36)
    song.room(0.86, 0.5)
    song.sink(4400)
    return song


# Bass and chord of a bar each: four to begin with, eight with the voice above.
DIVE = [(40, (59, 64, 66, 67)), (40, (59, 64, 67, 71)), (36, (59, 64, 66, 67)), (36, (60, 64, 67, 71)),
        (40, (59, 64, 66, 67)), (40, (59, 64, 67, 71)), (36, (59, 64, 66, 67)), (36, (60, 64, 67, 71)),
        (45, (57, 60, 64, 67)), (45, (59, 60, 64, 69)), (42, (57, 60, 64, 66)), (35, (57, 59, 63, 66))]
VOICE = [(16, 71, 3), (19, 74, 1), (20, 76, 2.5), (22.5, 74, 0.5), (23, 71, 1), (24, 67, 3), (27, 69, 1), (28, 71, 3.5),
         (32, 72, 3), (35, 76, 1), (36, 74, 2), (38, 72, 2), (40, 69, 3), (43, 72, 1), (44, 71, 2), (46, 75, 1.75)]


def groove(song, bars):
    """Drums, soft as felt."""
    for bar in range(bars):
        start = 4 * bar
        last = bar % 4 == 3 and bar > 3
        for at in (0, 1, 2, 3) if not last else (0, 1, 2, 2.75, 3.5):
            song.add(start + at, 0.5, 0.5, kick(170, 50, 0.11))
        for at in (1, 3) if not last else (1, 3, 3.25, 3.75):
            song.add(start + at, 0.3, 0.5, tock(80))
        if bar % 2:
            song.add(start + 2.75, 0.12, 0.6, tock(81))
        for n in range(16):
            loud = (0.05, 0.03, 0.13, 0.04)[n % 4] * (1 if bar >= 4 else 0.6)
            song.add(start + n / 4, loud, 0.35 + 0.3 * (n % 2), hiss(3600, 0.04 if n % 4 == 2 else 0.022, 90 + n % 3))


def dive():
    beat, bars = 22050, len(DIVE)
    drums, still, song = Song(beat, 4 * bars), Song(beat, 4 * bars), Song(beat, 4 * bars)
    groove(drums, bars)
    for bar, (bass, chord) in enumerate(DIVE):
        start = 4 * bar
        for n, step in enumerate((0, 0, 12, 0, 0, 12, 0, 7)):
            song.add(start + n / 2, 0.33 - 0.07 * (step != 0), 0.5,
                     pluck(bass - 12 * (bass > 40) + step, 0.3, REED, 0.05 + 0.05 * (n % 4 == 3), 0.22))
        pads(still, chord, start, 2.6, 0.075, REED, 0.5)
        # Three against four: the figure falls on another step in each bar.
        for n in range(16):
            figure = chord + (chord[1] + 12, chord[2] + 12)
            key = figure[(0, 2, 4, 3, 5, 1)[(n + bar * 4) % 6]] + 12 * (bar >= 8)
            wide = 0.5 + 0.38 * math.sin(0.7 * n + bar)
            loud = (0.15 if n % 3 == 0 else 0.1) * (0.7 + 0.3 * math.sin(math.tau * bar / 6))
            song.add(start + n / 4, loud, wide, pluck(key, 0.45, SMOOTH, 0.07, 0.14))
    for at, key, beats in VOICE:
        song.add(at, 0.15, 0.5, whistle(key, beats * beat / RATE))
    for n in range(3):
        song.add(16 * n + 8, 0.16, 0.3 + 0.4 * (n % 2), swell(6, 200, 1500, 100 + n))
    song.join(still)
    song.duck(range(4 * bars), 0.4, 0.26)
    song.echo(0.75, 0.3)
    song.room(0.8, 0.25)
    song.join(drums)
    song.sink(4400)
    return song


# The ground stays; what stands on it grows darker.
MOTHER = [(38, (62, 65, 69)), (38, (62, 65, 68)), (38, (63, 67, 70)), (38, (63, 66, 70)), (38, (62, 65, 69)),
          (36, (60, 63, 68)), (34, (58, 62, 65)), (34, (61, 64, 67)), (31, (58, 62, 67)), (33, (61, 64, 70))]


def mother():
    """Threes against the bar, a heart that beats, and two strings that will not agree."""
    beat, bars = 18081, len(MOTHER)
    drums, song = Song(beat, 4 * bars), Song(beat, 4 * bars)
    for bar, (bass, chord) in enumerate(MOTHER):
        start = 4 * bar
        for n, step in enumerate((0, 12, 7, 0, 12, 8, 0, 13)):
            song.add(start + n / 2, 0.3 if n in (0, 3, 6) else 0.17, 0.5, pluck(bass + step, 0.34, STRING, 0.06, 0.2))
        for at, loud in ((0, 0.56), (0.34, 0.36), (1.5, 0.4), (2, 0.48), (2.34, 0.32), (3, 0.4)):
            drums.add(start + at, loud, 0.5, kick(130, 46, 0.13))
        for at, top in ((1.5, 190), (3, 160)) if bar % 2 == 0 else ((1.5, 190), (2.5, 170), (3, 160), (3.5, 140)):
            drums.add(start + at, 0.3, 0.3 + at / 8, kick(top * 1.5, top * 0.6, 0.14))
        for n in range(8):
            drums.add(start + n / 2, 0.1 if n in (0, 3, 6) else 0.05, 0.6, hiss(3600, 0.03, 110 + n % 2))
        pads(song, chord, start, 2.1, 0.075, STRING, 0.25)
        shake = [0.6 + 0.4 * math.sin(math.tau * 9 * i / RATE) for i in range(frames(2.2))]
        rising = 0.045 + 0.04 * (bar % 5) / 4
        for side, key in enumerate((chord[2] + 12, chord[2] + 13)):
            song.add(start, rising, 0.25 + 0.5 * side,
                     faded(times(held(pitch(key), frames(2.2), REED, 0.004), shake), 0.5, 0.5))
        if bar % 2:
            song.add(start + 0.5, 0.12, 0.7, chime(chord[1] + 12, 1.8))
            song.add(start + 1, 0.1, 0.3, chime(chord[1] + 13, 1.8))
    for bar in (4, 9):
        song.add(4 * bar - 2, 0.3, 0.5, swell(3.4, 200, 2600, 120 + bar))
    song.echo(1.5, 0.22)
    song.room(0.84, 0.35)
    song.join(drums)
    song.sink(4400)
    return song


ALL = [title, dive, mother]
