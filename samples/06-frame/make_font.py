#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Makes the font of the samples, data/font/vorn.fnt with data/img/vorn_font.png: DejaVu Sans, whose
# licence allows it, in white with alpha. Needs Debian's libfreetype6 and fonts-dejavu-core.
# docs/font_file.md describes what is written. Runs in the repository's root.
import ctypes as c
import os
import struct
import zlib

FACE, PIXELS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 20
WIDTH, GAP = 256, 1
CHARACTERS = range(32, 127)
FT_LOAD_RENDER, FT_LOAD_TARGET_LIGHT = 1 << 2, 1 << 16  # sharp from top to bottom, true from side to side


class Generic(c.Structure):
    _fields_ = [("data", c.c_void_p), ("finalizer", c.c_void_p)]


class Metrics(c.Structure):
    _fields_ = [(name, c.c_long) for name in "width height left top advance vleft vtop vadvance".split()]


class Bitmap(c.Structure):
    _fields_ = [("rows", c.c_uint), ("width", c.c_uint), ("pitch", c.c_int),
                ("buffer", c.POINTER(c.c_ubyte)), ("grays", c.c_ushort), ("mode", c.c_ubyte),
                ("palette_mode", c.c_ubyte), ("palette", c.c_void_p)]


class Slot(c.Structure):
    _fields_ = [("library", c.c_void_p), ("face", c.c_void_p), ("next", c.c_void_p),
                ("index", c.c_uint), ("generic", Generic), ("metrics", Metrics),
                ("linear_x", c.c_long), ("linear_y", c.c_long), ("advance_x", c.c_long),
                ("advance_y", c.c_long), ("format", c.c_int), ("bitmap", Bitmap),
                ("bitmap_left", c.c_int), ("bitmap_top", c.c_int)]


class SizeMetrics(c.Structure):
    _fields_ = [("x_ppem", c.c_ushort), ("y_ppem", c.c_ushort), ("x_scale", c.c_long),
                ("y_scale", c.c_long), ("ascender", c.c_long), ("descender", c.c_long),
                ("height", c.c_long), ("max_advance", c.c_long)]


class Size(c.Structure):
    _fields_ = [("face", c.c_void_p), ("generic", Generic), ("metrics", SizeMetrics)]


class Face(c.Structure):
    _fields_ = [("counts", c.c_long * 5), ("family", c.c_char_p), ("style", c.c_char_p),
                ("sizes", c.c_int), ("size_list", c.c_void_p), ("charmaps", c.c_int),
                ("charmap_list", c.c_void_p), ("generic", Generic), ("bbox", c.c_long * 4),
                ("units", c.c_ushort), ("heights", c.c_short * 7), ("slot", c.POINTER(Slot)),
                ("size", c.POINTER(Size))]


class Glyph:
    def __init__(self, face, code, base):
        check(freetype.FT_Load_Char(face, c.c_ulong(code), FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT))
        slot = face.contents.slot.contents
        bitmap = slot.bitmap
        self.code, self.width, self.height = code, bitmap.width, bitmap.rows
        self.rows = [bytes(bitmap.buffer[y * bitmap.pitch:y * bitmap.pitch + bitmap.width])
                     for y in range(bitmap.rows)]
        self.xoffset, self.yoffset = slot.bitmap_left, base - slot.bitmap_top
        self.xadvance = (slot.advance_x + 32) // 64
        self.x = self.y = 0


def check(error):
    if error:
        raise SystemExit(f"FreeType: error {error}")


def load():
    """The glyphs, the line's height and where letters stand in it."""
    library, face = c.c_void_p(), c.POINTER(Face)()
    check(freetype.FT_Init_FreeType(c.byref(library)))
    check(freetype.FT_New_Face(library, FACE.encode(), c.c_long(0), c.byref(face)))
    check(freetype.FT_Set_Pixel_Sizes(face, 0, PIXELS))
    metrics = face.contents.size.contents.metrics
    base = (metrics.ascender + 63) // 64
    return [Glyph(face, code, base) for code in CHARACTERS], (metrics.height + 63) // 64, base


def pack(glyphs):
    """In rows, the tallest first, each glyph a gap from the others and from the edge; the height."""
    x, y, row = GAP, GAP, 0
    for glyph in sorted(glyphs, key=lambda g: (-g.height, g.code)):
        if x + glyph.width + GAP > WIDTH:
            x, y, row = GAP, y + row + GAP, 0
        glyph.x, glyph.y = x, y
        x, row = x + glyph.width + GAP, max(row, glyph.height)
    return 1 << (y + row + GAP - 1).bit_length()


def write_picture(path, glyphs, height):
    alpha = [bytearray(WIDTH) for _ in range(height)]
    for glyph in glyphs:
        for y, row in enumerate(glyph.rows, glyph.y):
            alpha[y][glyph.x:glyph.x + glyph.width] = row
    # White everywhere, so that nothing dark shows at the edges between two pixels.
    lines = b"".join(b"\0" + b"".join(b"\xff\xff\xff" + bytes([a]) for a in row) for row in alpha)
    chunk = lambda kind, data: (struct.pack(">I", len(data)) + kind + data +
                                struct.pack(">I", zlib.crc32(kind + data)))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" +
                   chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, height, 8, 6, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def write_description(path, picture, glyphs, height, line_height, base):
    lines = [f'info face="DejaVu Sans" size={PIXELS} bold=0 italic=0 charset="" unicode=1 stretchH=100 '
             f"smooth=1 aa=1 padding=0,0,0,0 spacing={GAP},{GAP}",
             f"common lineHeight={line_height} base={base} scaleW={WIDTH} scaleH={height} pages=1 packed=0",
             f'page id=0 file="{picture}"',
             f"chars count={len(glyphs)}"]
    for g in glyphs:
        x, y = (g.x, g.y) if g.rows else (0, 0)
        lines.append(f"char id={g.code:<4} x={x:<4} y={y:<4} width={g.width:<3} height={g.height:<3} "
                     f"xoffset={g.xoffset:<3} yoffset={g.yoffset:<3} xadvance={g.xadvance:<3} page=0 chnl=15")
    with open(path, "w") as file:
        file.write("\n".join(lines) + "\n")


freetype = c.CDLL("libfreetype.so.6")
glyphs, line_height, base = load()
height = pack(glyphs)
os.makedirs("data/font", exist_ok=True)
write_picture("data/img/vorn_font.png", glyphs, height)
write_description("data/font/vorn.fnt", "vorn_font.png", glyphs, height, line_height, base)
