#!/usr/bin/python3
"""Checks the resources linked into the Windows executables that the game loads by number.

    /usr/bin/python3 tests/check_resources.py build/windows/kalvero4.exe [more.exe ...]

Every such resource must be there once, in French; the texts must have been read from the
Windows-1252 script with their accents intact; the pictures must have the sizes the painting
code draws them at. The Debian interpreter is named because python3-pefile (tools/setup)
belongs to it. Exits 1 and lists every fault.
"""

import struct
import sys

import pefile

RT_BITMAP, RT_ICON, RT_MENU, RT_DIALOG, RT_STRING, RT_ACCELERATOR, RT_GROUP_ICON = (
    2, 3, 4, 5, 6, 9, 14)
FRENCH = (0x0C, 0x01)  # LANG_FRENCH, SUBLANG_FRENCH

# Bitmaps by number: width, height, bits per pixel. The discs are drawn at 20 x 20 from a
# 16 x 16 picture; the portraits are stored at the size they are drawn at, except two.
PORTRAITS = [(31, 30), (29, 38), (32, 30), (38, 33), (19, 39), (32, 37), (23, 38), (28, 38),
             (32, 39), (32, 49), (46, 136), (32, 41), (18, 32), (32, 32)]
BITMAPS = {148: (1, 2, 4), **{i: (16, 16, 4) for i in range(152, 162)},
           **{30000 + i: (w, h, 24) for i, (w, h) in enumerate(PORTRAITS)}}

# Icons by number: the sizes of their images (the large one, the small one, the discreet one).
ICONS = {107: [32, 16], 108: [16], 109: [16]}

# The strings the window is made with, exactly.
STRINGS = {103: "Kalvero 4", 109: "Tovrelia", 110: "C:\\"}

# Menus and dialogs by number, each with texts that must read as written: those with accents
# would come out garbled if the script were not compiled as Windows-1252.
TEXTS = {
    (RT_MENU, 109): ["À propos &de...", "Lissage &en étiré", "Troujours carré", "&Ratio écran"],
    (RT_DIALOG, 132): ["Acceuil", "Équipe K4"],
    (RT_DIALOG, 161): ["Sélectionnez un personnage SVP et rentrez éventuellement votre nom.",
                       "Nom | N° d'IA (gén. n° du perso)"],
    (RT_DIALOG, 156): ["Oké!", "Parties jouées", "Parties gagnées", "Équipe Kalvero"],
    (RT_DIALOG, 103): ["À propos de...", "Par l'équipe Kalvero"],
}


def resources(pe):
    """{(type, id): [(language, data), ...]} for every resource addressed by number."""
    found = {}
    for kind in pe.DIRECTORY_ENTRY_RESOURCE.entries:
        for item in kind.directory.entries:
            if kind.id is None or item.id is None:
                continue
            for lang in item.directory.entries:
                entry = lang.data.struct
                data = pe.get_data(entry.OffsetToData, entry.Size)
                found.setdefault((kind.id, item.id), []).append(
                    ((lang.data.lang, lang.data.sublang), data))
    return found


def check(path):
    faults = []
    pe = pefile.PE(path, fast_load=True)
    pe.parse_data_directories([pefile.DIRECTORY_ENTRY["IMAGE_DIRECTORY_ENTRY_RESOURCE"]])
    if not hasattr(pe, "DIRECTORY_ENTRY_RESOURCE"):
        return ["no resources at all"]
    found = resources(pe)

    def one(kind, number, what):
        """The data of a resource that must be there once, in French; None when it is not."""
        versions = found.get((kind, number), [])
        if not versions:
            faults.append(f"{what} {number} is missing")
            return None
        languages = [language for language, _ in versions]
        if languages != [FRENCH]:
            faults.append(f"{what} {number} is in languages {languages}, not only French")
        return versions[0][1]

    one(RT_ACCELERATOR, 109, "accelerator table")

    block = one(RT_STRING, 103 // 16 + 1, "string block")
    if block is not None:
        strings, at = [], 0
        for _ in range(16):  # 16 counted UTF-16 strings per block
            (length,) = struct.unpack_from("<H", block, at)
            strings.append(block[at + 2:at + 2 + 2 * length].decode("utf-16-le"))
            at += 2 + 2 * length
        for number, text in STRINGS.items():
            if strings[number % 16] != text:
                faults.append(f"string {number} is {strings[number % 16]!r}, not {text!r}")

    for (kind, number), texts in TEXTS.items():
        what = "menu" if kind == RT_MENU else "dialog"
        data = one(kind, number, what)
        if data is None:
            continue
        # Menu and dialog templates keep their texts as UTF-16 on 2-byte boundaries.
        decoded = data[:len(data) // 2 * 2].decode("utf-16-le", errors="replace")
        faults += [f"{what} {number} lacks the text {t!r}" for t in texts if t not in decoded]

    for number, (width, height, bits) in BITMAPS.items():
        data = one(RT_BITMAP, number, "bitmap")
        if data is None:
            continue
        _, w, h, _, b = struct.unpack_from("<IiiHH", data)  # BITMAPINFOHEADER
        if (w, abs(h), b) != (width, height, bits):
            faults.append(f"bitmap {number} is {w} x {abs(h)} at {b} bits, "
                          f"not {width} x {height} at {bits}")

    for number, sizes in ICONS.items():
        group = one(RT_GROUP_ICON, number, "icon")
        if group is None:
            continue
        (count,) = struct.unpack_from("<H", group, 4)
        images = [struct.unpack_from("<BBBBHHIH", group, 6 + 14 * i) for i in range(count)]
        got = [width or 256 for width, *_ in images]
        if got != sizes or any(width != height for width, height, *_ in images):
            faults.append(f"icon {number} has images {[(w, h) for w, h, *_ in images]}, "
                          f"not the squares {sizes}")
        for *_, image in images:
            one(RT_ICON, image, f"image of icon {number}: icon image")
    return faults


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    failed = False
    for path in sys.argv[1:]:
        faults = check(path)
        for fault in faults:
            print(f"{path}: {fault}")
        print(f"{path}: resources {'FAULTY' if faults else 'complete'}")
        failed |= bool(faults)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
