#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes all models and pictures of the game in the folder that the first argument names; further ones
# choose scripts. Nothing is needed but Python.
import importlib
import sys

for name in sys.argv[2:] or ("lantern", "foes", "seabed", "beams", "flat"):
    print(name)
    importlib.import_module(name).make(sys.argv[1])
