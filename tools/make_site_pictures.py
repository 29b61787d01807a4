#!/usr/bin/env python3
"""Makes the web edition's pictures from the Windows program's own bitmaps and icon, at build
time (cmake/web.cmake runs it):

    make_site_pictures.py atlas PICTURES_DIR ATLAS.png URL MAP.js
        every bitmap of the folder in one lossless PNG, and the script that tells the page
        where each one lies in it (Page.pictureAtlas: the PNG's URL from the page, and for each
        resource number [x, y, width, height])
    make_site_pictures.py icons PICTURES_DIR OUT_DIR
        the installed app's icons: icon-192.png and icon-512.png (the program's icon enlarged
        pixel for pixel, its transparency kept) and icon-maskable.png (512 px, the icon inside
        the circle that every mask shape keeps, over the board's own background)

One file instead of 25 saves a phone 24 round trips at the start. Standard library only, and
the output is the same byte for byte on every run.
"""

import json
import struct
import sys
import zlib
from pathlib import Path

# ----- Reading the program's files -----------------------------------------------------------


def read_bmp(data: bytes):
    """A Windows bitmap (4-bit palette or 24-bit, bottom row first) as rows of (r, g, b)."""
    if data[:2] != b"BM":
        raise ValueError("not a bitmap")
    offset = struct.unpack_from("<I", data, 10)[0]
    size, width, height, _, bits, compression = struct.unpack_from("<IiiHHI", data, 14)
    if compression != 0 or bits not in (4, 24):
        raise ValueError(f"unsupported bitmap: {bits} bits, compression {compression}")
    colours = struct.unpack_from("<I", data, 46)[0] or (16 if bits == 4 else 0)
    palette = [tuple(data[14 + size + 4 * i + k] for k in (2, 1, 0)) for i in range(colours)]
    row_bytes = (width * bits + 31) // 32 * 4
    rows = []
    for r in range(abs(height)):
        line = data[offset + r * row_bytes:offset + (r + 1) * row_bytes]
        if bits == 4:
            rows.append([palette[(line[i // 2] >> (4 if i % 2 == 0 else 0)) & 15]
                         for i in range(width)])
        else:
            rows.append([(line[3 * i + 2], line[3 * i + 1], line[3 * i]) for i in range(width)])
    return rows[::-1] if height > 0 else rows


def read_ico(data: bytes, side: int):
    """The 32-bit image of that side in an icon file, as rows of (r, g, b, a), top first."""
    count = struct.unpack_from("<H", data, 4)[0]
    for i in range(count):
        width, height, _, _, _, bits, length, offset = struct.unpack_from("<BBBBHHII", data,
                                                                          6 + 16 * i)
        if (width or 256) != side or (height or 256) != side or bits != 32:
            continue
        header = struct.unpack_from("<I", data, offset)[0]
        pixels = data[offset + header:offset + header + 4 * side * side]
        rows = [[(pixels[4 * (r * side + c) + 2], pixels[4 * (r * side + c) + 1],
                  pixels[4 * (r * side + c)], pixels[4 * (r * side + c) + 3])
                 for c in range(side)] for r in range(side)]
        return rows[::-1]
    raise ValueError(f"no 32-bit {side} x {side} image in the icon")


# ----- Writing PNG ---------------------------------------------------------------------------


def png(rows, alpha: bool) -> bytes:
    """A PNG of 8-bit RGB or RGBA rows. Each row takes the filter that leaves the smallest sum
    of bytes (the usual guess at what compresses best); zlib at its best level."""
    channels = 4 if alpha else 3
    width, height = len(rows[0]), len(rows)
    raw = bytearray()
    previous = bytes(width * channels)
    for row in rows:
        line = bytes(v for pixel in row for v in pixel[:channels])
        candidates = [bytes([0]) + line]
        sub = bytes((line[i] - (line[i - channels] if i >= channels else 0)) & 255
                    for i in range(len(line)))
        up = bytes((line[i] - previous[i]) & 255 for i in range(len(line)))
        candidates += [bytes([1]) + sub, bytes([2]) + up]
        raw += min(candidates, key=lambda c: sum(v if v < 128 else 256 - v for v in c[1:]))
        previous = line

    def chunk(kind: bytes, body: bytes) -> bytes:
        return (struct.pack(">I", len(body)) + kind + body
                + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF))

    header = struct.pack(">IIBBBBB", width, height, 8, 6 if alpha else 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b""))


# ----- The atlas -----------------------------------------------------------------------------


def resource_number(path: Path) -> int:
    """bg148.bmp -> 148: the number the resource script gives the bitmap."""
    digits = "".join(c for c in path.stem if c.isdigit())
    if not digits:
        raise ValueError(f"{path.name}: no resource number in the name")
    return int(digits)


def pack(sizes, width):
    """Shelves, tallest pictures first: {key: (x, y)} and the height used."""
    places, x, y, shelf = {}, 0, 0, 0
    for key, (w, h) in sorted(sizes.items(), key=lambda kv: (-kv[1][1], -kv[1][0], kv[0])):
        if x + w > width:
            x, y, shelf = 0, y + shelf, 0
        places[key] = (x, y)
        x += w
        shelf = max(shelf, h)
    return places, y + shelf


def make_atlas(folder: Path, atlas_path: Path, url: str, map_path: Path):
    pictures = {resource_number(p): read_bmp(p.read_bytes())
                for p in sorted(folder.glob("*.bmp"))}
    sizes = {n: (len(rows[0]), len(rows)) for n, rows in pictures.items()}
    width = max(128, max(w for w, _ in sizes.values()))
    # The narrowest shelves that keep the atlas no taller than it is wide.
    while True:
        places, height = pack(sizes, width)
        if height <= width:
            break
        width += 16
    canvas = [[(0, 0, 0)] * width for _ in range(height)]
    for n, rows in pictures.items():
        x, y = places[n]
        for r, row in enumerate(rows):
            canvas[y + r][x:x + len(row)] = row
    atlas_path.write_bytes(png(canvas, alpha=False))
    where = {str(n): [*places[n], *sizes[n]] for n in sorted(pictures)}
    map_path.write_text(
        "// Made by tools/make_site_pictures.py: where each bitmap lies in "
        f"{url}.\nPage.pictureAtlas = {{ file: {json.dumps(url)}, "
        f"pictures: {json.dumps(where, separators=(',', ':'))} }};\n", encoding="utf-8")


# ----- The app's icons -----------------------------------------------------------------------


def enlarge(rows, factor):
    return [[pixel for pixel in row for _ in range(factor)] for row in rows for _ in range(factor)]


def over(top, bottom):
    """top (r, g, b, a) over an opaque bottom (r, g, b): the opaque result."""
    a = top[3]
    return tuple((top[k] * a + bottom[k] * (255 - a) + 127) // 255 for k in range(3)) + (255,)


def make_icons(folder: Path, out: Path):
    icon = read_ico((folder / "kalvero4.ico").read_bytes(), 32)
    out.mkdir(parents=True, exist_ok=True)
    for side in (192, 512):
        (out / f"icon-{side}.png").write_bytes(png(enlarge(icon, side // 32), alpha=True))
    # A mask may keep no more than the circle of 40 % of the side around the centre: the icon,
    # 10 times, has its corners inside it, over the board's background (one black row above one
    # dark blue row) in rows as tall as the icon's pixels.
    side, factor = 512, 10
    background = read_bmp((folder / "bg148.bmp").read_bytes())
    rows = [[background[(y // factor) % len(background)][0]] * side for y in range(side)]
    big = enlarge(icon, factor)
    start = (side - len(big)) // 2
    rows = [[over(big[y - start][x - start], rows[y][x])
             if start <= y < start + len(big) and start <= x < start + len(big)
             else rows[y][x] + (255,) for x in range(side)] for y in range(side)]
    (out / "icon-maskable.png").write_bytes(png(rows, alpha=False))


def main(argv):
    if len(argv) == 5 and argv[0] == "atlas":
        make_atlas(Path(argv[1]), Path(argv[2]), argv[3], Path(argv[4]))
    elif len(argv) == 3 and argv[0] == "icons":
        make_icons(Path(argv[1]), Path(argv[2]))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
