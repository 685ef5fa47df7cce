#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes the sounds of this sample: data/audio/sound_*. Nothing is needed but Python and libsndfile,
# with which the engine reads them too. Runs in the repository's root.
import ctypes
import math
import random

RATE = 48000
BEAT = 22500  # frames; 128 beats a minute
BARS = 8

# Numbers of libsndfile.
WAV, OGG, FLAC = 0x010002, 0x200060, 0x170002
WRITE, SET_QUALITY = 0x20, 0x1300


class Info(ctypes.Structure):
    _fields_ = [("frames", ctypes.c_int64), ("samplerate", ctypes.c_int), ("channels", ctypes.c_int),
                ("format", ctypes.c_int), ("sections", ctypes.c_int), ("seekable", ctypes.c_int)]


def write(name, format, *sides, peak):
    """One side or two; the loudest frame gets `peak`."""
    scale = peak / max(abs(x) for side in sides for x in side)
    samples = [x * scale for frame in zip(*sides) for x in frame]
    library = ctypes.CDLL("libsndfile.so.1")
    library.sf_open.restype = ctypes.c_void_p
    info = Info(0, RATE, len(sides), format, 0, 0)
    file = ctypes.c_void_p(library.sf_open(f"data/audio/sound_{name}".encode(), WRITE, ctypes.byref(info)))
    quality = ctypes.c_double(0.4)
    library.sf_command(file, SET_QUALITY, ctypes.byref(quality), ctypes.sizeof(quality))
    for at in range(0, len(samples), 8192):
        part = samples[at:at + 8192]
        block = (ctypes.c_float * len(part))(*part)
        library.sf_writef_float(file, block, ctypes.c_int64(len(part) // len(sides)))
    library.sf_close(file)


def pitch(key):
    """Of a key of the piano, where 69 is the A of 440 Hz."""
    return 440 * 2 ** ((key - 69) / 12)


def edges(length, attack, release):
    """From 0 to 1 and back again, without a corner."""
    soft = lambda x: 0.5 - 0.5 * math.cos(math.pi * min(max(x, 0), 1))
    return [soft(i / attack) * soft((length - 1 - i) / release) for i in range(length)]


def tone(frequency, length, partials, attack, release):
    """Partials (multiple, loudness, seconds until it has fallen to a third), each a sine that dies away."""
    out = [0.0] * length
    for multiple, loudness, fall in partials:
        step, decay, level = math.tau * frequency * multiple / RATE, math.exp(-1 / (fall * RATE)), loudness
        for i in range(length):
            out[i] += level * math.sin(step * i)
            level *= decay
    return [x * e for x, e in zip(out, edges(length, attack, release))]


def string(frequency, length, dullness):
    """A plucked string: noise that runs round in a delay and loses its heights."""
    random.seed(3)
    period = RATE / frequency - 0.5
    ring = [random.uniform(-1, 1) for _ in range(int(period))]
    for _ in range(dullness):
        ring = [(a + b) / 2 for a, b in zip(ring, ring[1:] + ring[:1])]
    stretch, out, before, at = period - int(period), [], 0.0, 0
    for _ in range(length):
        value, following = ring[at], ring[(at + 1) % len(ring)]
        # The mean of two neighbours loses the heights; the fraction of a frame keeps it in tune.
        mean = 0.996 * (0.5 * value + 0.5 * following)
        ring[at] = (1 - stretch) * mean + stretch * before
        before, at = mean, (at + 1) % len(ring)
        out.append(value)
    return out


def band(noise, low, high):
    """Noise between two heights, each a list with a value for each frame."""
    out, a, b = [], 0.0, 0.0
    for x, bottom, top in zip(noise, low, high):
        a += (x - a) * (1 - math.exp(-math.tau * top / RATE))
        b += (a - b) * (1 - math.exp(-math.tau * bottom / RATE))
        out.append(a - b)
    return out


# --- effects


def bell():
    length = int(2.2 * RATE)
    partials = [(0.5, 0.35, 0.9), (1, 1, 0.7), (1.183, 0.45, 0.5), (1.506, 0.35, 0.4), (2, 0.5, 0.45), (2.514, 0.2, 0.25),
                (2.662, 0.2, 0.2), (3.011, 0.18, 0.15), (4.166, 0.12, 0.08), (5.433, 0.08, 0.05)]
    return tone(pitch(79), length, partials, 90, RATE // 2)


def pluck():
    length = int(1.3 * RATE)
    return [x * e for x, e in zip(string(pitch(67), length, 6), edges(length, 60, RATE // 2))]


def step():
    """As long as a beat of the music: in a loop it walks."""
    random.seed(5)
    noise = [random.uniform(-1, 1) for _ in range(BEAT)]
    gravel = band(noise, [350] * BEAT, [2600] * BEAT)
    out = []
    for i in range(BEAT):
        t = i / RATE
        heel = 1.1 * math.sin(math.tau * (75 * t + 3 * (1 - math.exp(-t / 0.03)))) * math.exp(-t / 0.045)
        toe = max(t - 0.07, 0)
        crunch = math.exp(-t / 0.03) + (0.6 * (1 - math.exp(-toe / 0.006)) * math.exp(-toe / 0.035) if toe else 0)
        out.append(heel + 1.6 * gravel[i] * crunch)
    return [x * e for x, e in zip(out, edges(BEAT, 120, BEAT // 2))]


def whoosh():
    """From left to right."""
    length = int(1.1 * RATE)
    random.seed(8)
    # Rises, and falls again behind the listener.
    middle = [200 + 1300 * math.sin(math.pi * (i / length) ** 0.8) ** 2 for i in range(length)]
    low, high = [0.6 * m for m in middle], [1.6 * m for m in middle]
    air = [band([random.uniform(-1, 1) for _ in range(length)], low, high) for _ in range(2)]
    air = [band(side, low, high) for side in air]
    left, right = [], []
    for i in range(length):
        place = i / length
        loud = math.sin(math.pi * place) ** 2
        left.append(loud * math.cos(place * math.pi / 2) * (0.8 * air[0][i] + 0.2 * air[1][i]))
        right.append(loud * math.sin(place * math.pi / 2) * (0.8 * air[0][i] - 0.2 * air[1][i]))
    return left, right


def drop():
    """A bubble that closes: its pitch rises; and its echoes."""
    length = int(0.9 * RATE)
    out = [0.0] * length
    for delay, loudness in ((0, 1), (0.11, 0.3), (0.23, 0.12), (0.37, 0.05)):
        phase = 0.0
        for i in range(int(0.4 * RATE)):
            t, at = i / RATE, i + int(delay * RATE)
            phase += math.tau * (620 + 900 * (1 - math.exp(-t / 0.05))) / RATE
            out[at] += loudness * math.sin(phase) * math.exp(-t / 0.045) * min(i / 150, 1)
    return [x * e for x, e in zip(out, edges(length, 2, RATE // 5))]


# --- music

# The key of the bass, and the chord above it, a bar each: G, Em, C, D, G, Em, Am, D7.
CHORDS = [(43, (59, 62, 67)), (40, (59, 64, 67)), (48, (60, 64, 67)), (50, (57, 62, 66)),
          (43, (59, 62, 67)), (40, (59, 64, 67)), (45, (57, 60, 64)), (38, (60, 62, 66))]
# Key and beats; 0 is a rest.
MELODY = [(71, 1), (74, 1), (79, 1.5), (78, 0.5), (76, 1.5), (74, 0.5), (71, 1), (67, 1),
          (72, 1), (76, 1), (79, 1), (76, 1), (74, 1.5), (76, 0.5), (78, 1), (0, 1),
          (79, 1), (74, 1), (71, 1.5), (72, 0.5), (74, 1), (83, 0.5), (81, 0.5), (79, 1), (76, 1),
          (72, 1), (76, 1), (81, 1), (79, 0.5), (76, 0.5), (78, 1.5), (76, 0.5), (74, 1), (69, 1)]
FLUTE = [(1, 1, 1.2), (2, 0.35, 0.7), (3, 0.12, 0.4), (4, 0.05, 0.2)]
HARP = [(1, 1, 0.35), (2, 0.4, 0.2), (3, 0.25, 0.13), (4, 0.12, 0.1), (5, 0.06, 0.07)]
BASS = [(1, 1, 0.6), (2, 0.45, 0.4), (3, 0.15, 0.2)]
PAD = [(1, 1, 9), (1.004, 0.8, 9), (2, 0.2, 9)]


class Music:
    """What rings on at the end rings at the start: a loop has no seam."""

    def __init__(self):
        self.length = BARS * 4 * BEAT
        self.sides = [[0.0] * self.length, [0.0] * self.length]

    def add(self, samples, beat, loudness, place):
        """`place` from 0, left, to 1, right."""
        start = round(beat * BEAT)
        for side, share in zip(self.sides, (math.cos(place * math.pi / 2), math.sin(place * math.pi / 2))):
            for i, x in enumerate(samples, start):
                side[i % self.length] += x * loudness * share

    def note(self, key, beat, beats, partials, loudness, place, attack=300, ring=0.06):
        length = round(beats * BEAT + ring * RATE)
        self.add(tone(pitch(key), length, partials, attack, round(ring * RATE) + 1200), beat, loudness, place)

    def echo(self, beats, loudness):
        """Each side comes back on the other one, fainter and fainter."""
        delay, (left, right) = round(beats * BEAT), self.sides
        dry = list(left), list(right)
        for n, side in ((1, 1), (2, 0), (3, 1)):
            for i in range(self.length):
                left[i] += loudness ** n * dry[side][i - n * delay]
                right[i] += loudness ** n * dry[1 - side][i - n * delay]

    def turned(self):
        """From the quietest frame just before the first beat on: who starts it hears no click."""
        quiet = min(range(self.length - RATE // 50, self.length), key=lambda i: sum(abs(side[i]) for side in self.sides))
        return [side[quiet:] + side[:quiet] for side in self.sides]


def music():
    song = Music()
    for bar, (bass, chord) in enumerate(CHORDS):
        beat = bar * 4
        song.note(bass, beat, 1.4, BASS, 0.5, 0.5)
        song.note(bass + 12, beat + 1.5, 0.5, BASS, 0.3, 0.5)
        song.note(bass + 7, beat + 2, 1.9, BASS, 0.42, 0.5)
        for i, place in zip(range(3), (0.2, 0.5, 0.8)):
            song.note(chord[i], beat, 3.9, PAD, 0.055, place, 9000, 0.25)
        for eighth, i in enumerate((0, 1, 2, 1, 0, 2, 1, 2)):
            loudness = 0.26 if eighth % 4 == 0 else 0.19
            song.note(chord[i] + 12 * (eighth == 5), beat + eighth / 2, 0.9, HARP, loudness, 0.3, 120, 0.2)
    beat = 0
    for key, beats in MELODY:
        if key:
            song.note(key, beat, beats * 0.92, FLUTE, 0.34, 0.62, 700, 0.08)
        beat += beats
    assert beat == BARS * 4
    song.echo(0.75, 0.22)
    return song.turned()


if __name__ == "__main__":
    write("bell.flac", FLAC, bell(), peak=0.5)
    write("pluck.flac", FLAC, pluck(), peak=0.5)
    write("step.wav", WAV, step(), peak=0.4)
    write("whoosh.ogg", OGG, *whoosh(), peak=0.5)
    write("drop.flac", FLAC, drop(), peak=0.5)
    write("tune.ogg", OGG, *music(), peak=0.6)
