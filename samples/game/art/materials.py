# SPDX-License-Identifier: MIT
#
# What an import cannot know of the game's materials: how they stand in the one light of the dark sea.
# The first argument is the folder of the materials.
import json
import sys

# Ambient and emissive carry what the lamp does not reach, so foes have more of it than rocks.
LOOKS = {
    #           ambient                diffuse                specular              emissive                 shininess
    "lantern": ((0.72, 0.74, 0.82), (0.95, 0.93, 0.92), (0.50, 0.48, 0.42), (0.20, 0.19, 0.17), 30),
    "puffer": ((1.00, 0.86, 0.96), (1.05, 0.98, 1.02), (0.30, 0.28, 0.32), (0.46, 0.30, 0.34), 22),
    "dart": ((0.95, 1.00, 1.10), (1.00, 1.04, 1.10), (0.55, 0.60, 0.66), (0.36, 0.44, 0.52), 34),
    "pearl": ((0.66, 0.66, 0.72), (0.60, 0.58, 0.56), (0.90, 0.86, 0.80), (0.52, 0.48, 0.42), 60),
    "rock1": ((0.50, 0.64, 0.82), (0.88, 0.98, 1.14), (0.08, 0.10, 0.12), (0.05, 0.09, 0.13), 10),
    "rock2": ((0.52, 0.60, 0.84), (0.90, 0.96, 1.16), (0.08, 0.09, 0.13), (0.06, 0.08, 0.14), 10),
    "rock3": ((0.50, 0.64, 0.80), (0.88, 0.98, 1.12), (0.08, 0.10, 0.11), (0.05, 0.09, 0.12), 10),
    "coral1": ((0.80, 0.68, 0.74), (1.00, 0.92, 0.98), (0.16, 0.15, 0.15), (0.20, 0.12, 0.14), 12),
    "coral2": ((0.74, 0.70, 0.88), (0.95, 0.92, 1.10), (0.16, 0.16, 0.20), (0.18, 0.16, 0.26), 12),
    "wreck": ((0.52, 0.62, 0.76), (0.84, 0.92, 1.04), (0.08, 0.09, 0.10), (0.05, 0.08, 0.10), 8),
}

for name, (ambient, diffuse, specular, emissive, shininess) in LOOKS.items():
    path = f"{sys.argv[1]}/{name}.json"
    with open(path) as file:
        material = json.load(file)
    material.update(Ambient=[*ambient, 1.0], Diffuse=[*diffuse, 1.0], Specular=[*specular, 1.0],
                    Emissive=[*emissive, 1.0], Shininess=float(shininess))
    with open(path, "w") as file:
        json.dump(material, file, indent=2)
        file.write("\n")
