#!/usr/bin/env python3
"""Draws the game's pictures: background, disc sprites and their mask, portraits and icons.

Everything is drawn from simple geometric shapes, so the output is the same byte for byte on
every run and every machine. The files are committed under src/resources/pictures/ and the
build uses them as they are; run this script again only after changing a drawing:

    python3 tools/make_pictures.py [--out DIR]

Standard library only.
"""

import argparse
import math
import os
import struct
import sys

BLACK = (0, 0, 0)
WHITE = (255, 255, 255)

# ---------------------------------------------------------------------------------------------
# Shapes. Coordinates are continuous, in the pixels of the size a picture is drawn at, with
# (0, 0) at the top-left corner; pixel (i, j) covers [i, i + 1) x [j, j + 1).


class Ellipse:
    def __init__(self, cx, cy, rx, ry):
        self.cx, self.cy, self.rx, self.ry = cx, cy, rx, ry

    def contains(self, x, y):
        dx = (x - self.cx) / self.rx
        dy = (y - self.cy) / self.ry
        return dx * dx + dy * dy <= 1.0


def Circle(cx, cy, r):
    return Ellipse(cx, cy, r, r)


class Ring:
    def __init__(self, cx, cy, outer, inner):
        self.cx, self.cy, self.outer, self.inner = cx, cy, outer, inner

    def contains(self, x, y):
        d = math.hypot(x - self.cx, y - self.cy)
        return self.inner <= d <= self.outer


class Rect:
    def __init__(self, x0, y0, x1, y1):
        self.x0, self.y0, self.x1, self.y1 = x0, y0, x1, y1

    def contains(self, x, y):
        return self.x0 <= x < self.x1 and self.y0 <= y < self.y1


class RoundRect:
    def __init__(self, x0, y0, x1, y1, radius):
        self.x0, self.y0, self.x1, self.y1, self.r = x0, y0, x1, y1, radius

    def contains(self, x, y):
        if not (self.x0 <= x < self.x1 and self.y0 <= y < self.y1):
            return False
        nx = min(max(x, self.x0 + self.r), self.x1 - self.r)
        ny = min(max(y, self.y0 + self.r), self.y1 - self.r)
        return math.hypot(x - nx, y - ny) <= self.r


class Polygon:
    def __init__(self, *points):
        self.points = points

    def contains(self, x, y):
        inside = False
        pts = self.points
        j = len(pts) - 1
        for i in range(len(pts)):
            xi, yi = pts[i]
            xj, yj = pts[j]
            if (yi > y) != (yj > y) and x < (xj - xi) * (y - yi) / (yj - yi) + xi:
                inside = not inside
            j = i
        return inside


class Stroke:
    """A segment with round ends, `r` wide on each side."""

    def __init__(self, x0, y0, x1, y1, r):
        self.x0, self.y0, self.x1, self.y1, self.r = x0, y0, x1, y1, r

    def contains(self, x, y):
        vx, vy = self.x1 - self.x0, self.y1 - self.y0
        wx, wy = x - self.x0, y - self.y0
        length2 = vx * vx + vy * vy
        t = 0.0 if length2 == 0 else max(0.0, min(1.0, (wx * vx + wy * vy) / length2))
        return math.hypot(wx - t * vx, wy - t * vy) <= self.r


def render(width, height, layers, background, scale=1.0, samples=4):
    """Paints `layers` ((shape, rgb) pairs, later ones on top) into width x height pixels.

    `scale` is stored pixels per drawn pixel; each pixel averages samples x samples points.
    A background of None leaves uncovered points transparent. Returns rows of (r, g, b, a),
    top row first.
    """
    rows = []
    n = samples * samples
    for j in range(height):
        row = []
        for i in range(width):
            acc = [0, 0, 0, 0]
            for sj in range(samples):
                y = (j + (sj + 0.5) / samples) / scale
                for si in range(samples):
                    x = (i + (si + 0.5) / samples) / scale
                    colour = background
                    for shape, rgb in reversed(layers):
                        if shape.contains(x, y):
                            colour = rgb
                            break
                    if colour is not None:
                        acc[0] += colour[0]
                        acc[1] += colour[1]
                        acc[2] += colour[2]
                        acc[3] += 255
            if acc[3] == 0:
                row.append((0, 0, 0, 0))
            else:
                covered = acc[3] // 255
                row.append((round(acc[0] / covered), round(acc[1] / covered),
                             round(acc[2] / covered), round(acc[3] / n)))
        rows.append(row)
    return rows


def shade(rgb):
    return tuple((c + 1) // 2 for c in rgb)


def tint(rgb, amount):
    return tuple(round(c + (255 - c) * amount) for c in rgb)


# ---------------------------------------------------------------------------------------------
# File formats.


def bmp_file(width, height, bits, pixel_rows, palette=()):
    """A Windows bitmap file: bits 4 (palette indices) or 24 (rgb), rows given top first."""
    row_bytes = (width * bits + 31) // 32 * 4
    body = bytearray()
    for row in reversed(pixel_rows):  # bottom row first
        line = bytearray()
        if bits == 4:
            for i in range(0, width, 2):
                high = row[i]
                low = row[i + 1] if i + 1 < width else 0
                line.append(high << 4 | low)
        elif bits == 24:
            for r, g, b in row:
                line += bytes((b, g, r))
        else:
            raise ValueError(bits)
        line += bytes(row_bytes - len(line))
        body += line
    colours = 16 if bits == 4 else 0
    table = bytearray()
    if bits == 4:
        entries = list(palette) + [BLACK] * (16 - len(palette))
        for r, g, b in entries:
            table += bytes((b, g, r, 0))
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, len(body), 2835, 2835,
                       colours, 0)
    offset = 14 + len(info) + len(table)
    header = struct.pack("<2sIHHI", b"BM", offset + len(body), 0, 0, offset)
    return header + info + bytes(table) + bytes(body)


def ico_file(images):
    """An icon file of 32-bit images (rows of rgba, top first), each with its AND mask."""
    entries = bytearray()
    blobs = bytearray()
    offset = 6 + 16 * len(images)
    for rows in images:
        height, width = len(rows), len(rows[0])
        xor = bytearray()
        for row in reversed(rows):
            for r, g, b, a in row:
                xor += bytes((b, g, r, a))
        mask_row = (width + 31) // 32 * 4
        mask = bytearray()
        for row in reversed(rows):
            line = bytearray(mask_row)
            for i, (_, _, _, a) in enumerate(row):
                if a == 0:
                    line[i // 8] |= 0x80 >> (i % 8)
            mask += line
        info = struct.pack("<IiiHHIIiiII", 40, width, 2 * height, 1, 32, 0,
                           len(xor) + len(mask), 0, 0, 0, 0)
        blob = info + xor + mask
        entries += struct.pack("<BBBBHHII", width % 256, height % 256, 0, 0, 1, 32, len(blob),
                               offset + len(blobs))
        blobs += blob
    return struct.pack("<HHH", 0, 1, len(images)) + entries + blobs


# ---------------------------------------------------------------------------------------------
# Background: one black pixel above one dark blue pixel, stretched over the whole board.


def background():
    return bmp_file(1, 2, 4, [[0], [1]], palette=[BLACK, (0, 0, 187)])


# ---------------------------------------------------------------------------------------------
# Disc sprites and their mask, 16 x 16 at 4 bits per pixel. A sprite is drawn over its mask
# with AND then OR, so a sprite's surroundings must be black and the mask's white, and the
# mask's black disc must cover every sprite pixel with a margin that becomes the outline.

SPRITE_SIZE = 16
SPRITE_CENTRE = 8.0
SPRITE_RADIUS = 6.0
MASK_RADIUS = 7.5

# Palette indices of a sprite.
SPRITE_BLACK, SPRITE_BASE, SPRITE_SHADE, SPRITE_LIGHT = 0, 1, 2, 3

DISCS = {
    # id: (base colour, highlight colour)
    152: ((255, 0, 0), (255, 160, 160)),
    153: ((0, 0, 255), (160, 160, 255)),
    155: ((0, 255, 0), (176, 255, 176)),
    156: ((255, 255, 0), (255, 255, 192)),
    157: ((255, 0, 255), (255, 176, 255)),
    158: ((0, 255, 255), (192, 255, 255)),
    159: ((192, 0, 255), (224, 160, 255)),
    160: ((255, 128, 0), (255, 200, 144)),
    161: ((192, 192, 192), (255, 255, 255)),
}
MASK_ID = 154


def _distance_from_centre(i, j, dx=0.0, dy=0.0):
    return math.hypot(i + 0.5 - SPRITE_CENTRE - dx, j + 0.5 - SPRITE_CENTRE - dy)


def sprite_indices():
    """Palette indices of a disc lit from the top left: base, a lower-right shade, a glint."""
    rows = []
    for j in range(SPRITE_SIZE):
        row = []
        for i in range(SPRITE_SIZE):
            if _distance_from_centre(i, j) > SPRITE_RADIUS:
                row.append(SPRITE_BLACK)
            elif _distance_from_centre(i, j, -2.0, -2.0) <= 1.6:
                row.append(SPRITE_LIGHT)
            elif _distance_from_centre(i, j, -1.5, -1.5) > SPRITE_RADIUS:
                row.append(SPRITE_SHADE)
            else:
                row.append(SPRITE_BASE)
        rows.append(row)
    return rows


def disc_sprite(base, light):
    return bmp_file(SPRITE_SIZE, SPRITE_SIZE, 4, sprite_indices(),
                    palette=[BLACK, base, shade(base), light])


def disc_mask():
    rows = [[0 if _distance_from_centre(i, j) <= MASK_RADIUS else 1 for i in range(SPRITE_SIZE)]
            for j in range(SPRITE_SIZE)]
    return bmp_file(SPRITE_SIZE, SPRITE_SIZE, 4, rows, palette=[BLACK, WHITE])


# ---------------------------------------------------------------------------------------------
# Portraits: a small figure per character in its piece colour, on a dark ground. Each drawing
# is made at the size the game draws it; two are stored at another size and scaled on loading.

PORTRAIT_GROUND = (14, 14, 30)
EYE_WHITE = (250, 250, 250)
PUPIL = (10, 10, 10)
GOLD = (255, 210, 0)
BEAK = (255, 170, 0)

RED = (255, 0, 0)
BLUE = (0, 0, 255)
ORANGE = (255, 128, 0)
SILVER = (192, 192, 192)
YELLOW = (255, 255, 0)
MAGENTA = (255, 0, 255)
CYAN = (0, 255, 255)
VIOLET = (192, 0, 255)


def eyes(cx, cy, gap, rx, ry):
    """Two eyes looking slightly to the right of the viewer."""
    layers = []
    for x in (cx - gap, cx + gap):
        layers.append((Ellipse(x, cy, rx, ry), EYE_WHITE))
        layers.append((Ellipse(x + rx * 0.3, cy + ry * 0.1, rx * 0.5, ry * 0.55), PUPIL))
    return layers


def portrait_computer(c):  # 31 x 30: a screen with a face, on a keyboard
    return [
        (Rect(3, 2, 28, 21), c),
        (Rect(6, 5, 25, 18), shade(shade(c))),
        (Ellipse(12, 10, 1.7, 2.2), tint(c, 0.6)),
        (Ellipse(19, 10, 1.7, 2.2), tint(c, 0.6)),
        (Stroke(11, 14, 20, 14, 0.9), tint(c, 0.6)),
        (Rect(13, 21, 18, 24), shade(c)),
        (Polygon((5, 24), (26, 24), (29, 29), (2, 29)), c),
        (Rect(7, 25.5, 24, 26.5), shade(c)),
        (Rect(6, 27, 25, 28), shade(c)),
    ]


def portrait_spikes(c):  # 29 x 38: swept-back spikes
    return [
        (Polygon((15, 4), (1, 2), (11, 10)), c),
        (Polygon((13, 8), (0, 12), (12, 15)), c),
        (Polygon((13, 13), (2, 21), (15, 17)), c),
        (Circle(16, 11, 8), c),
        (Ellipse(19.5, 14.5, 4.5, 3.5), tint(c, 0.75)),
        *eyes(17, 9, 2.6, 2.2, 3),
        (Stroke(12, 31, 10, 35, 1.6), c),
        (Stroke(18, 31, 20, 35, 1.6), c),
        (Ellipse(15, 25, 6, 7), c),
        (Ellipse(16, 26, 3.5, 5), tint(c, 0.75)),
        (Ellipse(8.5, 36, 3.5, 1.8), shade(c)),
        (Ellipse(21.5, 36, 3.5, 1.8), shade(c)),
    ]


def portrait_twin_tails(c):  # 32 x 30: two tails
    return [
        (Stroke(16, 21, 4, 13, 3.2), c),
        (Stroke(16, 23, 4, 24, 3.2), c),
        (Circle(4, 13, 2.4), tint(c, 0.8)),
        (Circle(4, 24, 2.4), tint(c, 0.8)),
        (Stroke(17, 26, 16, 28.5, 1.5), shade(c)),
        (Stroke(22, 26, 23, 28.5, 1.5), shade(c)),
        (Ellipse(19.5, 21.5, 5, 5.5), c),
        (Ellipse(19.5, 23, 3, 3.5), tint(c, 0.8)),
        (Polygon((14, 9), (13, 0), (19, 5)), c),
        (Polygon((21, 5), (27, 0), (26, 9)), c),
        (Ellipse(20, 10.5, 7, 6.5), c),
        (Ellipse(20, 13.5, 4.5, 2.8), tint(c, 0.8)),
        *eyes(20, 9, 2.4, 1.9, 2.3),
    ]


def portrait_moustache(c):  # 38 x 33: a round body and a broad moustache
    dark = shade(shade(c))
    return [
        (Stroke(7, 21, 2, 27, 2), c),
        (Stroke(31, 21, 36, 27, 2), c),
        (Rect(12, 29, 16, 33), dark),
        (Rect(22, 29, 26, 33), dark),
        (Ellipse(19, 23, 14, 8.5), c),
        (Rect(7, 22, 31, 24), shade(c)),
        (Ellipse(19, 10, 7, 7.5), tint(c, 0.5)),
        *eyes(19, 7.5, 3, 2.2, 1.9),
        (Ellipse(19, 11.5, 2, 1.8), tint(c, 0.8)),
        (Ellipse(14, 13.5, 5, 1.8), dark),
        (Ellipse(24, 13.5, 5, 1.8), dark),
    ]


def portrait_cap(c):  # 19 x 39: a cap and a moustache
    dark = shade(shade(c))
    return [
        (Rect(5, 31, 9, 37), shade(c)),
        (Rect(10, 31, 14, 37), shade(c)),
        (Ellipse(6.5, 37.3, 3.2, 1.6), dark),
        (Ellipse(12.5, 37.3, 3.2, 1.6), dark),
        (Rect(4, 16, 15, 26), c),
        (Rect(5, 21, 14, 32), shade(c)),
        (Circle(7, 22.5, 0.9), GOLD),
        (Circle(12, 22.5, 0.9), GOLD),
        (Ellipse(9.5, 11, 5, 4.8), tint(c, 0.75)),
        *eyes(9.5, 10, 1.8, 1.1, 1.5),
        (Ellipse(9.5, 13.8, 4, 1.3), dark),
        (Ellipse(9.5, 6.5, 6, 4.5), c),
        (Rect(3, 7, 17, 8.6), shade(c)),
        (Circle(9.5, 4.5, 1.6), EYE_WHITE),
    ]


def portrait_horns(c):  # 32 x 37: horns and a spiked shell
    dark = shade(c)
    return [
        (Ellipse(15, 24, 11, 10), dark),
        (Polygon((6, 14), (1, 12), (7, 18)), EYE_WHITE),
        (Polygon((5, 21), (0, 22), (5, 25)), EYE_WHITE),
        (Polygon((6, 29), (1, 32), (8, 32)), EYE_WHITE),
        (Ellipse(14, 35, 4, 2), dark),
        (Ellipse(24, 35, 4, 2), dark),
        (Ellipse(19, 24, 8, 9.5), c),
        (Ellipse(20, 25, 4.5, 7), tint(c, 0.7)),
        (Polygon((13, 7), (9, 0), (16, 4)), EYE_WHITE),
        (Polygon((22, 4), (29, 0), (25, 7)), EYE_WHITE),
        (Ellipse(19, 10, 8, 7), c),
        *eyes(19, 8.5, 3.2, 2, 2),
        (Rect(14, 13, 24, 15), dark),
        (Polygon((15, 13), (16.5, 13), (15.75, 14.5)), EYE_WHITE),
        (Polygon((21.5, 13), (23, 13), (22.25, 14.5)), EYE_WHITE),
    ]


def portrait_crown(c):  # 23 x 38: a crown and a long dress
    return [
        (Ellipse(11.5, 12, 7, 8.5), shade(c)),
        (Polygon((8, 16), (15, 16), (21, 37), (2, 37)), c),
        (Rect(7.5, 21, 15.5, 22.5), tint(c, 0.6)),
        (Stroke(8, 18, 5, 27, 1.2), tint(c, 0.75)),
        (Stroke(15, 18, 18, 27, 1.2), tint(c, 0.75)),
        (Ellipse(11.5, 10.5, 5, 5.3), tint(c, 0.75)),
        *eyes(11.5, 10, 2, 1.3, 1.6),
        (Polygon((6, 6), (6, 1), (8.5, 3.5), (11.5, 0), (14.5, 3.5), (17, 1), (17, 6)), GOLD),
    ]


def portrait_round_ears(c):  # 28 x 38: two big round ears
    dark = shade(c)
    return [
        (Circle(6, 6, 5), dark),
        (Circle(22, 6, 5), dark),
        (Stroke(11, 30, 8, 35, 1.4), dark),
        (Stroke(17, 30, 20, 35, 1.4), dark),
        (Ellipse(7, 36, 4.5, 1.8), tint(c, 0.6)),
        (Ellipse(21, 36, 4.5, 1.8), tint(c, 0.6)),
        (Ellipse(14, 26, 6, 6), dark),
        (Rect(8.5, 26, 19.5, 31), c),
        (Circle(11.5, 28, 0.9), EYE_WHITE),
        (Circle(16.5, 28, 0.9), EYE_WHITE),
        (Circle(14, 13, 7), c),
        (Ellipse(14, 15, 5, 4.5), tint(c, 0.75)),
        *eyes(14, 12, 2.2, 1.6, 2.4),
        (Ellipse(14, 16, 1.6, 1.2), PUPIL),
    ]


def portrait_penguin(c):  # 32 x 39: a penguin
    return [
        (Ellipse(5.5, 24, 2.5, 7), shade(c)),
        (Ellipse(26.5, 24, 2.5, 7), shade(c)),
        (Ellipse(16, 23, 10.5, 13.5), c),
        (Ellipse(16, 26, 7, 10), EYE_WHITE),
        (Ellipse(11, 37, 4, 1.7), BEAK),
        (Ellipse(21, 37, 4, 1.7), BEAK),
        (Ellipse(16, 10, 8, 7.5), c),
        (Ellipse(16, 11.5, 5.5, 5), EYE_WHITE),
        *eyes(16, 9.5, 2.3, 1.5, 2),
        (Polygon((12, 13.5), (20, 13.5), (16, 17)), BEAK),
    ]


def portrait_long_ears(c):  # 32 x 49: long upright ears
    return [
        (Ellipse(11, 10, 3.5, 10), c),
        (Ellipse(21, 10, 3.5, 10), c),
        (Ellipse(11, 10, 1.5, 7), tint(c, 0.7)),
        (Ellipse(21, 10, 1.5, 7), tint(c, 0.7)),
        (Ellipse(11, 46.5, 4.5, 2), c),
        (Ellipse(21, 46.5, 4.5, 2), c),
        (Ellipse(16, 36, 7, 8.5), c),
        (Ellipse(16, 37, 4, 6), tint(c, 0.7)),
        (Stroke(23, 33, 29, 29, 1.1), c),
        (Stroke(29, 29, 30.5, 27, 0.6), (0, 200, 0)),
        (Ellipse(16, 22, 7.5, 6.5), c),
        (Ellipse(16, 25, 4.5, 3), tint(c, 0.7)),
        *eyes(16, 20.5, 2.6, 1.8, 2.2),
        (Ellipse(16, 23.5, 1.5, 1), PUPIL),
    ]


def portrait_tall(c):  # 23 x 68: a tall slim figure with a flower in the hair
    dark = shade(shade(c))
    return [
        (Ellipse(11.5, 12, 8, 10), shade(c)),
        (Stroke(6, 21, 3, 37, 1.5), tint(c, 0.75)),
        (Stroke(17, 21, 20, 37, 1.5), tint(c, 0.75)),
        (Rect(6, 38, 11, 62), shade(c)),
        (Rect(12, 38, 17, 62), shade(c)),
        (Ellipse(8, 63.5, 4, 2), dark),
        (Ellipse(15, 63.5, 4, 2), dark),
        (Polygon((7, 20), (16, 20), (17.5, 39), (5.5, 39)), c),
        (Ellipse(11.5, 12.5, 6, 6.5), tint(c, 0.75)),
        *eyes(11.5, 12, 2.3, 1.5, 1.9),
        (Stroke(10, 16, 13, 16, 0.6), shade(c)),
        (Circle(16, 3.5, 1.6), EYE_WHITE),
        (Circle(19, 5, 1.6), EYE_WHITE),
        (Circle(16, 6.5, 1.6), EYE_WHITE),
        (Circle(13.5, 5, 1.6), EYE_WHITE),
        (Circle(16.2, 5, 1.2), GOLD),
    ]


def portrait_club(c):  # 32 x 41: a stocky figure with a club
    dark = shade(shade(c))
    return [
        (Stroke(26, 30, 28.5, 10, 1.8), shade(c)),
        (Ellipse(28.5, 9, 3.3, 5), shade(c)),
        (Rect(8, 35, 12, 40), tint(c, 0.5)),
        (Rect(17, 35, 21, 40), tint(c, 0.5)),
        (Polygon((6, 19), (24, 19), (26, 36), (4, 36)), c),
        (Ellipse(10, 24, 1.6, 1.3), dark),
        (Ellipse(19, 26, 1.6, 1.3), dark),
        (Ellipse(12, 31, 1.6, 1.3), dark),
        (Ellipse(21, 32, 1.6, 1.3), dark),
        (Polygon((12.5, 19), (17.5, 19), (15, 23)), tint(c, 0.8)),
        (Stroke(23, 22, 26.5, 29, 2), tint(c, 0.5)),
        (Ellipse(15, 8, 7.5, 5.5), dark),
        (Ellipse(15, 12, 6.5, 6), tint(c, 0.5)),
        *eyes(15, 11, 2.5, 1.6, 1.9),
        (Stroke(12, 15.5, 18, 15.5, 0.6), dark),
    ]


def portrait_long_hair(c):  # 27 x 48: long hair down to the shoulders
    return [
        (Ellipse(13.5, 17, 10, 14), shade(c)),
        (Polygon((9, 22), (18, 22), (25, 46), (2, 46)), c),
        (Rect(8, 27, 19, 28.5), tint(c, 0.6)),
        (Stroke(9, 24, 6, 33, 1.3), tint(c, 0.75)),
        (Stroke(18, 24, 21, 33, 1.3), tint(c, 0.75)),
        (Ellipse(13.5, 13, 6.5, 7), tint(c, 0.75)),
        (Ellipse(13.5, 7.5, 7, 3.5), shade(c)),
        *eyes(13.5, 13, 2.5, 1.6, 2.1),
        (Stroke(12, 17.5, 15, 17.5, 0.6), shade(c)),
    ]


def portrait_bubble(c):  # 32 x 32: a small crested creature inside a bubble
    bubble = (190, 225, 255)
    return [
        (Ring(16, 16, 15.5, 14.2), bubble),
        (Ellipse(8.5, 8, 2.5, 1.5), EYE_WHITE),
        (Polygon((11, 7.5), (13, 2.5), (15.5, 6.5)), shade(c)),
        (Polygon((15.5, 6.5), (18, 2.5), (20.5, 7)), shade(c)),
        (Ellipse(12, 27, 3, 1.5), shade(c)),
        (Ellipse(20, 27, 3, 1.5), shade(c)),
        (Ellipse(16, 20.5, 7.5, 6.5), c),
        (Ellipse(16, 22, 4.5, 4.5), tint(c, 0.7)),
        (Ellipse(16, 12.5, 7, 6), c),
        *eyes(16, 11.5, 2.8, 2.2, 2.6),
    ]


# Indexed by character: the drawing, its colour, the size the game draws it at and the size it
# is stored at.
PORTRAITS = [
    (portrait_computer, RED, (31, 30), (31, 30)),
    (portrait_spikes, BLUE, (29, 38), (29, 38)),
    (portrait_twin_tails, ORANGE, (32, 30), (32, 30)),
    (portrait_moustache, SILVER, (38, 33), (38, 33)),
    (portrait_cap, RED, (19, 39), (19, 39)),
    (portrait_horns, YELLOW, (32, 37), (32, 37)),
    (portrait_crown, MAGENTA, (23, 38), (23, 38)),
    (portrait_round_ears, BLUE, (28, 38), (28, 38)),
    (portrait_penguin, CYAN, (32, 39), (32, 39)),
    (portrait_long_ears, ORANGE, (32, 49), (32, 49)),
    (portrait_tall, VIOLET, (23, 68), (46, 136)),
    (portrait_club, SILVER, (32, 41), (32, 41)),
    (portrait_long_hair, BLUE, (27, 48), (18, 32)),
    (portrait_bubble, YELLOW, (32, 32), (32, 32)),
]


def portrait(character):
    draw, colour, (drawn_w, _), (stored_w, stored_h) = PORTRAITS[character]
    rows = render(stored_w, stored_h, draw(colour), PORTRAIT_GROUND, scale=stored_w / drawn_w)
    return bmp_file(stored_w, stored_h, 24, [[p[:3] for p in row] for row in rows])


# ---------------------------------------------------------------------------------------------
# Icons: the game's own (a blue board with red and yellow discs, red lining up four) and the
# discreet one (a plain disk drive).

BOARD_BLUE = (0, 72, 208)
BOARD_EDGE = (0, 40, 130)
HOLE = (8, 16, 56)
ICON_RED = (230, 20, 20)
ICON_YELLOW = (255, 214, 0)

# Top row first: R red, Y yellow, . empty.
PATTERN_4 = ["...R", "..RY", ".RYY", "RYRY"]
PATTERN_3 = ["..R", ".RY", "RYY"]


def game_icon(size):
    pattern = PATTERN_4 if size >= 32 else PATTERN_3
    cells = len(pattern)
    margin = size / 16
    board = (margin, margin * 2, size - margin, size - margin * 0.5)
    layers = [
        (RoundRect(*board, size / 8), BOARD_EDGE),
        (RoundRect(board[0] + margin, board[1] + margin, board[2] - margin, board[3] - margin,
                   size / 12), BOARD_BLUE),
    ]
    inner_x0, inner_y0 = board[0] + margin, board[1] + margin
    pitch_x = (board[2] - board[0] - 2 * margin) / cells
    pitch_y = (board[3] - board[1] - 2 * margin) / cells
    radius = min(pitch_x, pitch_y) * 0.38
    for row, line in enumerate(pattern):
        for col, mark in enumerate(line):
            cx = inner_x0 + (col + 0.5) * pitch_x
            cy = inner_y0 + (row + 0.5) * pitch_y
            colour = {"R": ICON_RED, "Y": ICON_YELLOW}.get(mark, HOLE)
            layers.append((Circle(cx, cy, radius), colour))
    return render(size, size, layers, None)


def discreet_icon(size):
    s = size / 16
    body = (150, 150, 150)
    return render(size, size, [
        (RoundRect(1 * s, 5 * s, 15 * s, 13 * s, 1.5 * s), (70, 70, 70)),
        (RoundRect(1.5 * s, 5.5 * s, 14.5 * s, 12 * s, 1.2 * s), (205, 205, 205)),
        (Rect(2 * s, 9 * s, 14 * s, 11.5 * s), body),
        (Rect(3 * s, 7 * s, 10 * s, 7.8 * s), (110, 110, 110)),
        (Circle(12 * s, 10.2 * s, 0.9 * s), (0, 200, 60)),
    ], None)


# ---------------------------------------------------------------------------------------------


def pictures():
    """Every picture, by file name."""
    files = {"bg148.bmp": background(), "mask154.bmp": disc_mask()}
    for ident, (base, light) in DISCS.items():
        files["disc%d.bmp" % ident] = disc_sprite(base, light)
    for character in range(len(PORTRAITS)):
        files["portrait%d.bmp" % (30000 + character)] = portrait(character)
    small = game_icon(16)
    files["kalvero4.ico"] = ico_file([game_icon(32), small])  # 32 x 32 and 16 x 16, no other
    files["small.ico"] = ico_file([small])
    files["discreet.ico"] = ico_file([discreet_icon(16)])
    return files


def stale_files(folder, files):
    """Names of the pictures that are missing from `folder` or differ from what is drawn now."""
    stale = []
    for name, data in sorted(files.items()):
        path = os.path.join(folder, name)
        if not os.path.exists(path):
            stale.append(name)
            continue
        with open(path, "rb") as f:
            if f.read() != data:
                stale.append(name)
    return stale


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", default=os.path.join(here, "..", "src", "resources", "pictures"),
                        help="folder to write into (default: src/resources/pictures)")
    parser.add_argument("--check", action="store_true",
                        help="write nothing; fail if a file in the folder is not what is drawn now")
    args = parser.parse_args(argv)
    files = pictures()
    if args.check:
        stale = stale_files(args.out, files)
        for name in stale:
            print("out of date: %s" % os.path.join(args.out, name))
        if stale:
            print("run tools/make_pictures.py and commit its output")
            return 1
        print("%d pictures up to date" % len(files))
        return 0
    os.makedirs(args.out, exist_ok=True)
    for name, data in sorted(files.items()):
        with open(os.path.join(args.out, name), "wb") as f:
            f.write(data)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
