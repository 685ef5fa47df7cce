# SPDX-License-Identifier: MIT
#
# Shapes, and glTF files of them. Shapes are made in the engine's coordinates: X to the right, Y up, Z
# ahead. A part is a closed surface of triangles; which way they face is found out from its volume.
import base64
import json
import math
import struct


def add(a, b):
    return a[0] + b[0], a[1] + b[1], a[2] + b[2]


def sub(a, b):
    return a[0] - b[0], a[1] - b[1], a[2] - b[2]


def mul(a, k):
    return a[0] * k, a[1] * k, a[2] * k


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def cross(a, b):
    return a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]


def unit(a):
    length = math.sqrt(dot(a, a))
    return mul(a, 1 / length) if length > 1e-12 else (0.0, 1.0, 0.0)


def mix(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def clamp(x, low=0.0, high=1.0):
    return low if x < low else high if x > high else x


def smooth(low, high, x):
    t = clamp((x - low) / (high - low))
    return t * t * (3 - 2 * t)


class Part:
    """Corners of triangles; each has a point, a place in the texture, and bones where there are any."""

    def __init__(self, crease=40.0):
        self.triangles = []  # three corners each: (point, uv, skin)
        self.crease = math.cos(math.radians(crease))

    def grid(self, rows, columns, place):
        """place(i, j), each from 0 to 1, gives point, uv and maybe the bones."""
        points = [[self.corner(place(i / rows, j / columns)) for j in range(columns + 1)]
                  for i in range(rows + 1)]
        for i in range(rows):
            for j in range(columns):
                self.quad(points[i][j], points[i][j + 1], points[i + 1][j + 1], points[i + 1][j])
        return self

    @staticmethod
    def corner(c):
        return c if len(c) == 3 else (c[0], c[1], None)

    def quad(self, a, b, c, d):
        self.triangle(a, b, c)
        self.triangle(a, c, d)

    def triangle(self, a, b, c):
        n = cross(sub(b[0], a[0]), sub(c[0], a[0]))
        if dot(n, n) > 1e-16:
            self.triangles.append((self.corner(a), self.corner(b), self.corner(c)))

    def moved(self, place):
        """The same part with each point taken through place."""
        other = Part()
        other.crease = self.crease
        other.triangles = [tuple((place(p), uv, skin) for p, uv, skin in t) for t in self.triangles]
        return other

    def facing(self):
        """The triangles, with the outside outside."""
        volume = sum(dot(a[0], cross(b[0], c[0])) for a, b, c in self.triangles)
        return self.triangles if volume > 0 else [(a, c, b) for a, b, c in self.triangles]

    def corners(self):
        """(point, normal, uv, skin) of every corner: smooth, but for edges sharper than the crease."""
        triangles = self.facing()
        key = lambda p: tuple(round(c, 5) for c in p)
        faces = [cross(sub(b[0], a[0]), sub(c[0], a[0])) for a, b, c in triangles]
        around = {}
        for n, t in zip(faces, triangles):
            for p, _, _ in t:
                around.setdefault(key(p), []).append((n, unit(n)))
        for n, t in zip(faces, triangles):
            own = unit(n)
            for p, uv, skin in t:
                total = (0.0, 0.0, 0.0)
                for other, direction in around[key(p)]:
                    if dot(own, direction) > self.crease:
                        total = add(total, other)
                yield p, unit(total), uv, skin


INSET = 0.01  # of the texture: so far models stay away from the edges of their rectangles


def region(rect, s, t):
    """A place in a rectangle (left, top, right, bottom) of the texture."""
    return (rect[0] + INSET + (rect[2] - rect[0] - 2 * INSET) * s,
            rect[1] + INSET + (rect[3] - rect[1] - 2 * INSET) * t)


def lathe(profile, sides, rect, shape=lambda p: p, crease=40.0, skin=None):
    """Turned about Z: profile has (z, radius) from back to front. Round it goes s, from below over +X and
    the top to -X; along it goes t."""
    part = Part(crease)
    rows = len(profile) - 1

    def place(i, j):
        z, r = profile[round(i * rows)]
        turn = j * 2 * math.pi
        p = shape((r * math.sin(turn), -r * math.cos(turn), z))
        return (p, region(rect, j, i), skin(p)) if skin else (p, region(rect, j, i))
    return part.grid(rows, sides, place)


def dense(profile, steps):
    """A profile with more rows: a smooth curve (Catmull and Rom) through its points."""
    out = []
    last = len(profile) - 1
    for k in range(last):
        a, b, c, d = (profile[clamp(n, 0, last)] for n in (k - 1, k, k + 1, k + 2))
        for s in range(steps):
            t = s / steps
            out.append(tuple(max(0.5 * (2 * q + (r - p) * t + (2 * p - 5 * q + 4 * r - s_) * t * t +
                                        (3 * q - p - 3 * r + s_) * t ** 3), -99 if axis == 0 else 0)
                             for axis, (p, q, r, s_) in enumerate(zip(a, b, c, d))))
    return out + [tuple(profile[-1])]


def ball(radius, rows, sides, rect, shape=lambda p: p, crease=60.0):
    profile = [(-radius * math.cos(math.pi * i / rows), radius * math.sin(math.pi * i / rows))
               for i in range(rows + 1)]
    return lathe(profile, sides, rect, shape, crease)


def frame_of(direction):
    """Two directions that stand on this one."""
    d = unit(direction)
    side = unit(cross((0, 1, 0) if abs(d[1]) < 0.9 else (1, 0, 0), d))
    return side, cross(d, side)


def tube(path, radii, sides, rect, crease=60.0, skin=None, closed=False):
    """Along a path of points; ends are closed by points of their own unless the path is."""
    part = Part(crease)
    last = len(path) - 1
    rings = []
    side = None
    for k, p in enumerate(path):
        ahead = path[(k + 1) % len(path) if closed else min(k + 1, last)]
        behind = path[k - 1 if closed else max(k - 1, 0)]
        d = unit(sub(ahead, behind))
        side = frame_of(d)[0] if side is None else unit(sub(side, mul(d, dot(side, d))))
        up = cross(d, side)
        rings.append([add(p, add(mul(side, radii[k] * math.cos(a)), mul(up, radii[k] * math.sin(a))))
                      for a in (2 * math.pi * j / sides for j in range(sides + 1))])
    if closed:
        rings.append(rings[0])
    else:
        rings = [[path[0]] * (sides + 1)] + rings + [[path[-1]] * (sides + 1)]
    rows = len(rings) - 1

    def place(i, j):
        p = rings[round(i * rows)][round(j * sides)]
        return (p, region(rect, j, i), skin(p)) if skin else (p, region(rect, j, i))
    return part.grid(rows, sides, place)


def ring(radius, thickness, around, sides, rect, place=lambda p: p):
    """A torus about Z."""
    path = [(radius * math.cos(a), radius * math.sin(a), 0.0)
            for a in (2 * math.pi * k / around for k in range(around))]
    return tube(path, [thickness] * around, sides, rect, closed=True).moved(place)


def plate(outline, thickness, rect, place, bulge=1.0, crease=35.0):
    """A fin: a flat outline of (a, b), thick in the middle and thin at its edge; place(a, b, side) puts it
    up. It shows its rectangle of the texture stretched over the outline's own."""
    low = [min(p[k] for p in outline) for k in (0, 1)]
    high = [max(p[k] for p in outline) for k in (0, 1)]
    middle = tuple(sum(p[k] for p in outline) / len(outline) for k in (0, 1))
    uv = lambda p: region(rect, (p[0] - low[0]) / (high[0] - low[0]), (p[1] - low[1]) / (high[1] - low[1]))
    part = Part(crease)
    inner = [mix(p, middle, 0.45) for p in outline]
    for side in (1, -1):
        for k, p in enumerate(outline):
            n = (k + 1) % len(outline)
            q = outline[n]
            edge, thick = side * thickness * 0.25, side * thickness * bulge
            a, b = (place(*p, edge), uv(p)), (place(*q, edge), uv(q))
            c, d = (place(*inner[n], thick), uv(inner[n])), (place(*inner[k], thick), uv(inner[k]))
            m = (place(*middle, thick), uv(middle))
            order = (a, b, c, d) if side > 0 else (a, d, c, b)
            part.quad(*order)
            part.triangle(*((d, c, m) if side > 0 else (c, d, m)))
    for k, p in enumerate(outline):
        q = outline[(k + 1) % len(outline)]
        edge = thickness * 0.25
        part.quad((place(*p, edge), uv(p)), (place(*p, -edge), uv(p)),
                  (place(*q, -edge), uv(q)), (place(*q, edge), uv(q)))
    return part


def box(size, rect, place=lambda p: p, crease=20.0):
    part = Part(crease)
    x, y, z = (c / 2 for c in size)
    for axis in range(3):
        for side in (-1, 1):
            def corner(a, b):
                p = [0, 0, 0]
                p[axis], p[(axis + 1) % 3], p[(axis + 2) % 3] = side, a * side, b
                long_s, long_t = ((b, a * side) if axis == 1 else (a * side, b))
                return place((p[0] * x, p[1] * y, p[2] * z)), region(rect, (long_s + 1) / 2, (long_t + 1) / 2)
            part.quad(corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1))
    return part


def welded(parts):
    """Vertices without doubles, and indices."""
    vertices, indices, known = [], [], {}
    for part in parts:
        for corner in part.corners():
            key = tuple(tuple(round(c, 5) for c in piece) if piece else None for piece in corner[:3]) + (
                repr(corner[3]),)
            if key not in known:
                known[key] = len(vertices)
                vertices.append(corner)
            indices.append(known[key])
    return vertices, indices


class Bone:
    """A place in the model, a parent, and a turn (a quaternion) at a time from 0 to 1."""

    def __init__(self, name, parent, at, turn):
        self.name, self.parent, self.at, self.turn = name, parent, at, turn


class Gltf:
    """A glTF file with its buffer inside. Z is mirrored, since glTF looks along -Z."""

    def __init__(self):
        self.data, self.views, self.accessors = b"", [], []

    def accessor(self, kind, component, rows, bounds=False):
        code = {5121: "B", 5123: "H", 5125: "I", 5126: "f"}[component]
        flat = [c for row in rows for c in row]
        self.data += b"\0" * (-len(self.data) % 4)
        self.views.append({"buffer": 0, "byteOffset": len(self.data),
                           "byteLength": struct.calcsize(code) * len(flat)})
        self.data += struct.pack(f"<{len(flat)}{code}", *flat)
        entry = {"bufferView": len(self.views) - 1, "componentType": component, "count": len(rows),
                 "type": kind}
        if bounds:
            floats = [struct.unpack("<f", struct.pack("<f", c))[0] for c in flat]
            width = len(rows[0])
            entry["min"] = [min(floats[k::width]) for k in range(width)]
            entry["max"] = [max(floats[k::width]) for k in range(width)]
        self.accessors.append(entry)
        return len(self.accessors) - 1

    def write(self, path, name, parts, image, unlit=False, bones=(), seconds=0.0, keys=0):
        vertices, indices = welded(parts)
        attributes = {
            "POSITION": self.accessor("VEC3", 5126, [(p[0], p[1], -p[2]) for p, _, _, _ in vertices], True),
            "NORMAL": self.accessor("VEC3", 5126, [(n[0], n[1], -n[2]) for _, n, _, _ in vertices]),
            "TEXCOORD_0": self.accessor("VEC2", 5126, [v[2] for v in vertices])}
        if bones:
            attributes["JOINTS_0"] = self.accessor("VEC4", 5121, [v[3][0] for v in vertices])
            attributes["WEIGHTS_0"] = self.accessor("VEC4", 5126, [v[3][1] for v in vertices])
        order = [(indices[t + k],) for t in range(0, len(indices), 3) for k in (0, 2, 1)]
        material = {"name": name, "pbrMetallicRoughness": {"baseColorTexture": {"index": 0},
                                                           "metallicFactor": 0}}
        root = {"asset": {"version": "2.0"}, "scene": 0}
        if unlit:
            material["extensions"] = {"KHR_materials_unlit": {}}
            root["extensionsUsed"] = ["KHR_materials_unlit"]
        root["materials"] = [material]
        root["images"], root["textures"] = [{"uri": image}], [{"source": 0}]
        root["meshes"] = [{"name": name, "primitives": [{
            "attributes": attributes, "indices": self.accessor("SCALAR", 5125, order), "material": 0}]}]
        root["nodes"] = [{"name": name, "mesh": 0}]
        root["scenes"] = [{"nodes": [0]}]
        if bones:
            self.skeleton(root, bones, seconds, keys)
        root["bufferViews"], root["accessors"] = self.views, self.accessors
        root["buffers"] = [{"byteLength": len(self.data), "uri": "data:application/octet-stream;base64," +
                            base64.b64encode(self.data).decode()}]
        with open(path, "w") as file:
            json.dump(root, file)
        print(f"  {name}: {len(indices) // 3} triangles, {len(vertices)} vertices")

    def skeleton(self, root, bones, seconds, keys):
        first = len(root["nodes"])
        for bone in bones:
            above = bones[bone.parent].at if bone.parent >= 0 else (0, 0, 0)
            x, y, z = sub(bone.at, above)
            root["nodes"].append({"name": bone.name, "translation": [x, y, -z]})
        for k, bone in enumerate(bones):
            if bone.parent >= 0:
                root["nodes"][first + bone.parent].setdefault("children", []).append(first + k)
            else:
                root["scenes"][0]["nodes"].append(first + k)
        inverse = [(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -b.at[0], -b.at[1], b.at[2], 1) for b in bones]
        root["skins"] = [{"joints": [first + k for k in range(len(bones))],
                          "inverseBindMatrices": self.accessor("MAT4", 5126, inverse)}]
        root["nodes"][0]["skin"] = 0
        times = self.accessor("SCALAR", 5126, [(seconds * k / keys,) for k in range(keys + 1)], True)
        samplers, channels = [], []
        for k, bone in enumerate(bones):
            turns = [bone.turn(i / keys) for i in range(keys + 1)]
            # A mirrored turn: of the axis, what lies in the mirror's plane changes its sign.
            out = self.accessor("VEC4", 5126, [(-x, -y, z, w) for x, y, z, w in turns])
            samplers.append({"input": times, "output": out})
            channels.append({"sampler": k, "target": {"node": first + k, "path": "rotation"}})
        root["animations"] = [{"name": "swim", "samplers": samplers, "channels": channels}]


def write_model(folder, name, parts, image=None, **more):
    Gltf().write(f"{folder}/{name}.gltf", name, parts, image or f"{name}.png", **more)
