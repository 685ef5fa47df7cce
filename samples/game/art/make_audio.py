#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes the sounds and the music of the game in the folder named. Nothing is needed but Python and
# libsndfile, with which the engine reads them too.
import os
import sys

import effects
import synth
import tunes

LOUDNESS, CEILING = -18.0, 0.6  # of all music: decibels on average, and where its peaks bend
QUALITY = 0.0

if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_audio.py FOLDER")
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    for make, peak in effects.ALL:
        synth.write_effect(f"{folder}/{make.__name__}.wav", make(), peak)
    for make in tunes.ALL:
        synth.write_music(f"{folder}/{make.__name__}.ogg", make(), LOUDNESS, CEILING, QUALITY)
