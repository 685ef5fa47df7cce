# SPDX-License-Identifier: MIT
#
# Sounds from nothing: tones, noise, rooms, songs, and the files of them. A sound is a list of frames.
import array
import ctypes
import functools
import math
import random
import struct
import wave

RATE = 44100

# Numbers of libsndfile.
OGG, READ, WRITE, SET_QUALITY = 0x200060, 0x10, 0x20, 0x1300


def pitch(key):
    """Of a key of the piano, where 69 is the A of 440 Hz."""
    return 440 * 2 ** ((key - 69) / 12)


def frames(seconds):
    return round(seconds * RATE)


# --- shapes


@functools.lru_cache(maxsize=64)
def soft(length):
    """From 0 to 1 without a corner."""
    return [0.5 - 0.5 * math.cos(math.pi * i / length) for i in range(length)]


def faded(samples, attack, release):
    """The same with soft edges, so many seconds long."""
    rise, fall = soft(frames(attack)), soft(frames(release))[::-1]
    out = list(samples)
    out[:len(rise)] = [x * e for x, e in zip(out, rise)]
    out[-len(fall):] = [x * e for x, e in zip(out[-len(fall):], fall)]
    return out


def dying(length, fall):
    """From 1, and after each `fall` seconds a third of it."""
    step, level, out = math.exp(-1 / (fall * RATE)), 1.0, []
    for _ in range(length):
        out.append(level)
        level *= step
    return out


def times(a, b):
    return [x * y for x, y in zip(a, b)]


def mixed(length, *parts):
    """Parts are (seconds, loudness, samples); what comes too late is cut off."""
    out = [0.0] * length
    for seconds, loudness, samples in parts:
        start = frames(seconds)
        end = min(start + len(samples), length)
        out[start:end] = [o + loudness * x for o, x in zip(out[start:end], samples)]
    return out


def warm(samples, drive):
    """Pressed together as a tired amplifier does it: fuller, with no higher peaks."""
    return [math.tanh(drive * x) / math.tanh(drive) for x in samples]


# --- sources

SIZE = 4096


@functools.lru_cache(maxsize=None)
def cycle(*partials):
    """A wave with the loudness of each harmonic, to be read round and round."""
    turn = [math.tau * i / SIZE for i in range(SIZE)]
    return tuple(sum(loud * math.sin(n * x) for n, loud in enumerate(partials, 1)) for x in turn)


def sine(*glide):
    """Through these frequencies, one a frame."""
    phase, out = 0.0, []
    for frequency in glide:
        phase += math.tau * frequency / RATE
        out.append(math.sin(phase))
    return out


def slide(start, end, fall, length):
    """Frequencies that run from start towards end."""
    return [end + (start - end) * e for e in dying(length, fall)]


def plucked(frequency, length, bright, dull, dim, fall):
    """Begins with the wave `bright`, is `dull` after about `dim` seconds, and dies away."""
    step, phase, out = SIZE * frequency / RATE, 0.0, []
    for mix, level in zip(dying(length, dim), dying(length, fall)):
        at = int(phase) & (SIZE - 1)
        out.append(level * (dull[at] + mix * (bright[at] - dull[at])))
        phase += step
    return out


def held(frequency, length, table, spread):
    """Three voices beside each other, `spread` apart."""
    steps = [SIZE * frequency * (1 + spread * n) / RATE for n in (-1, 0.13, 1)]
    (a, b, c), (p, q, r), out, mask = steps, (0.0, SIZE / 3, SIZE / 1.7), [], SIZE - 1
    for _ in range(length):
        out.append((table[int(p) & mask] + table[int(q) & mask] + table[int(r) & mask]) / 3)
        p, q, r = p + a, q + b, r + c
    return out


def bell(frequency, length, partials):
    """Partials are (multiple, loudness, seconds until it has fallen to a third)."""
    out = [0.0] * length
    for multiple, loudness, fall in partials:
        step, decay = math.tau * frequency * multiple / RATE, math.exp(-1 / (fall * RATE))
        turn, shrink, last, now = 2 * decay * math.cos(step), decay * decay, 0.0, loudness * math.sin(step)
        for i in range(length):
            out[i] += now
            last, now = now, turn * now - shrink * last
    return out


def noise(length, seed):
    dice = random.Random(seed).random
    return [2 * dice() - 1 for _ in range(length)]


# --- filters


def low(samples, edge):
    """Below a frequency, or below a list of them, one a frame."""
    edges = edge if isinstance(edge, list) else [edge] * len(samples)
    out, a, b, known, share = [], 0.0, 0.0, None, 0.0
    for x, frequency in zip(samples, edges):
        if frequency != known:
            known, share = frequency, 1 - math.exp(-math.tau * frequency / RATE)
        a += (x - a) * share
        b += (a - b) * share
        out.append(b)
    return out


def high(samples, edge):
    share, a, out = 1 - math.exp(-math.tau * edge / RATE), 0.0, []
    for x in samples:
        a += (x - a) * share
        out.append(x - a)
    return out


def comb(samples, delay, back):
    """What comes round has lost some of its heights."""
    out = [0.0] * (delay + 1)
    for at in range(0, len(samples), delay):
        echo = zip(samples[at:at + delay], out[at + 1:at + 1 + delay], out[at:at + delay])
        out += [x + back * (0.7 * a + 0.3 * b) for x, a, b in echo]
    return out[delay + 1:]


def smear(samples, delay, share):
    """All frequencies as loud as before, but not at once."""
    inside, out = [0.0] * delay, []
    for at in range(0, len(samples), delay):
        before, part = inside[at:at + delay], samples[at:at + delay]
        now = [x + share * b for x, b in zip(part, before)]
        inside += now
        out += [b - share * n for b, n in zip(before, now)]
    return out


def hall(samples, back, side=0):
    """Only what the walls give back; another side has other walls."""
    delays = [d + 37 * side for d in (1559, 1801, 2069, 2357)]
    walls = [comb(samples, delay, back) for delay in delays]
    return smear(smear([0.25 * sum(x) for x in zip(*walls)], 347 + 11 * side, 0.6), 113 + 7 * side, 0.6)


# --- music


class Song:
    """What rings on at the end rings at the start: a loop has no seam."""

    def __init__(self, beat, beats):
        self.beat, self.length = beat, beat * beats
        self.sides = [[0.0] * self.length for _ in range(2)]

    def add(self, beat, loudness, place, samples):
        """`place` from 0, left, to 1, right."""
        angle = place * math.pi / 2
        self.lay(0, beat, loudness * math.cos(angle), samples)
        self.lay(1, beat, loudness * math.sin(angle), samples)

    def lay(self, side, beat, loudness, samples):
        side, done, at = self.sides[side], 0, round(beat * self.beat) % self.length
        while done < len(samples):
            part = samples[done:done + self.length - at]
            side[at:at + len(part)] = [o + loudness * x for o, x in zip(side[at:at + len(part)], part)]
            done, at = done + len(part), 0

    def join(self, other, loudness=1.0):
        for side in range(2):
            self.lay(side, 0, loudness, other.sides[side])

    def duck(self, beats, depth, seconds):
        """Gives way at these beats, so that a drum is heard."""
        down, up = soft(frames(0.012))[::-1], soft(frames(seconds))
        shape = [1 - depth * (1 - e) for e in down + up]
        for side in self.sides:
            for beat in beats:
                start = round(beat * self.beat) - len(down)
                for i, e in enumerate(shape, start):
                    side[i % self.length] *= e

    def echo(self, beats, loudness):
        """Each side comes back on the other one, fainter and fainter."""
        dry = [list(side) for side in self.sides]
        for n in (1, 2, 3, 4):
            for side in range(2):
                self.lay(side, n * beats, loudness ** n, dry[(side + n) % 2])

    def room(self, back, loudness):
        before = frames(5)  # by then the hall is as full as at the end
        wet = [hall(side[-before:] + side, back, n)[before:] for n, side in enumerate(self.sides)]
        for side in range(2):
            self.lay(side, 0, loudness, wet[side])

    def sink(self, edge):
        """Under water: the heights are lost, and with them a good part of the file."""
        before = frames(0.2)
        self.sides = [high(low(side[-before:] + side, edge), 20)[before:] for side in self.sides]

    def seams(self, count):
        """Where to cut the loop: the quietest frames just before the first beat, so that no start clicks."""
        loud = lambda i: sum(abs(side[i]) for side in self.sides)
        span = frames(0.024) // count
        return [min(range(self.length - n * span, self.length - (n - 1) * span), key=loud) for n in range(1, count + 1)]


# --- files


def halved(samples):
    """At half the rate, without the heights that have no place there."""
    reach = 24
    taps = [0.5 if n == 0 else math.sin(math.pi * n / 2) / (math.pi * n) * (0.5 + 0.5 * math.cos(math.pi * n / reach))
            for n in range(-reach + 1, reach)]
    padded = [0.0] * (reach - 1) + samples + [0.0] * reach
    return [sum(map(float.__mul__, taps, padded[at:at + len(taps)])) for at in range(0, len(samples), 2)]


def write_effect(path, samples, peak):
    """One side of 16 bits at half the rate; its loudest frame gets `peak`."""
    samples = halved(high(samples, 25))
    fade = soft(60)[::-1]
    samples[-60:] = times(samples[-60:], fade)
    scale = 32767 * peak / max(map(abs, samples))
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE // 2)
        file.writeframes(struct.pack(f"<{len(samples)}h", *(round(x * scale) for x in samples)))


def level(sides, loudness, ceiling):
    """So loud on average, in decibels; peaks bend before the ceiling."""
    for _ in range(3):
        power = sum(x * x for side in sides for x in side) / sum(map(len, sides))
        scale = 10 ** (loudness / 20) / math.sqrt(power) / ceiling
        sides = [[ceiling * math.tanh(scale * x) for x in side] for side in sides]
    return sides


class Info(ctypes.Structure):
    _fields_ = [("frames", ctypes.c_int64), ("samplerate", ctypes.c_int), ("channels", ctypes.c_int),
                ("format", ctypes.c_int), ("sections", ctypes.c_int), ("seekable", ctypes.c_int)]


def library():
    found = ctypes.CDLL("libsndfile.so.1")
    found.sf_open.restype = ctypes.c_void_p
    found.sf_writef_float.restype = found.sf_readf_float.restype = ctypes.c_int64
    return found


def opened(path, mode, info):
    file = ctypes.c_void_p(library().sf_open(path.encode(), mode, ctypes.byref(info)))
    if not file:
        raise OSError(f"{path} cannot be opened")
    return file


def write_ogg(path, sides, quality):
    samples = array.array("f", (x for frame in zip(*sides) for x in frame))
    file = opened(path, WRITE, Info(0, RATE, len(sides), OGG, 0, 0))
    quality = ctypes.c_double(quality)
    library().sf_command(file, SET_QUALITY, ctypes.byref(quality), ctypes.sizeof(quality))
    for at in range(0, len(samples), 8192):
        part = samples[at:at + 8192]
        block = (ctypes.c_float * len(part))(*part)
        library().sf_writef_float(file, block, ctypes.c_int64(len(part) // len(sides)))
    library().sf_close(file)
    number_stream(path)


def jump(path):
    """How far the file as it is read goes astray from its last frame to its first, on the worse side."""
    info = Info()
    file = opened(path, READ, info)
    block = (ctypes.c_float * (info.frames * info.channels))()
    library().sf_readf_float(file, block, ctypes.c_int64(info.frames))
    library().sf_close(file)
    return max(abs(block[n] - block[n - info.channels]) for n in range(info.channels))


def write_music(path, song, loudness, ceiling, quality):
    """Packing moves each frame a little, and here the last and the first must meet: the best cut is kept."""
    song.sides = level(song.sides, loudness, ceiling)
    tries = []
    for seam in song.seams(6):
        write_ogg(path, [side[seam:] + side[:seam] for side in song.sides], quality)
        tries.append((jump(path), seam))
        if tries[-1][0] < 0.008:
            return
    seam = min(tries)[1]
    write_ogg(path, [side[seam:] + side[:seam] for side in song.sides], quality)


def number_stream(path):
    """The number of the stream is drawn by lot: with another one the same song gives the same bytes."""
    table = []
    for n in range(256):
        crc = n << 24
        for _ in range(8):
            crc = (crc << 1) ^ (0x04C11DB7 if crc & 0x80000000 else 0)
        table.append(crc & 0xFFFFFFFF)
    with open(path, "rb") as file:
        data = bytearray(file.read())
    at = 0
    while at < len(data):
        lengths = data[at + 27:at + 27 + data[at + 26]]
        end = at + 27 + len(lengths) + sum(lengths)
        data[at + 14:at + 18], data[at + 22:at + 26] = b"LAMP", bytes(4)
        crc = 0
        for byte in data[at:end]:
            crc = ((crc << 8) & 0xFFFFFFFF) ^ table[(crc >> 24) ^ byte]
        data[at + 22:at + 26] = struct.pack("<I", crc)
        at = end
    with open(path, "wb") as file:
        file.write(data)
