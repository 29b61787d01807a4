#!/usr/bin/env python3
"""Checks that the program's compiled resources are complete and exact.

    check_resources.py --windres PATH --rc src/resources/kalvero4.rc --work DIR
        compiles the resource script into DIR/kalvero4.res and checks it;
    check_resources.py --exe kalvero4.exe
        checks the resources linked into an executable;
    check_resources.py --windres PATH --rc src/resources/kalvero4.rc --work DIR --self-test
        puts known faults into copies of the script and fails unless the checks find each.

Every resource the program loads by number must be there, in French, with the texts, styles
and rectangles it is laid out with; the pictures must have the sizes and colours the painting
code relies on. Standard library only. Exits 1 and lists every difference when one is found.
"""

import argparse
import os
import shutil
import struct
import subprocess
import sys

# Resource types.
RT_BITMAP, RT_ICON, RT_MENU, RT_DIALOG, RT_STRING = 2, 3, 4, 5, 6
RT_ACCELERATOR, RT_GROUP_ICON, RT_VERSION, RT_MANIFEST = 9, 14, 16, 24
TYPE_NAMES = {RT_BITMAP: "bitmap", RT_ICON: "icon image", RT_MENU: "menu", RT_DIALOG: "dialog",
              RT_STRING: "string block", RT_ACCELERATOR: "accelerators",
              RT_GROUP_ICON: "icon", RT_VERSION: "version", RT_MANIFEST: "manifest"}

FRENCH = 0x040C

# Window, dialog and control styles.
WS_POPUP, WS_CHILD, WS_VISIBLE = 0x80000000, 0x40000000, 0x10000000
WS_CAPTION, WS_BORDER, WS_SYSMENU, WS_VSCROLL = 0x00C00000, 0x00800000, 0x00080000, 0x00200000
WS_GROUP, WS_TABSTOP = 0x00020000, 0x00010000
WS_EX_CLIENTEDGE = 0x200
DS_SETFONT, DS_MODALFRAME = 0x40, 0x80
BS_PUSHBUTTON, BS_DEFPUSHBUTTON, BS_AUTOCHECKBOX, BS_GROUPBOX = 0, 1, 3, 7
BS_AUTORADIOBUTTON, BS_OWNERDRAW, BS_MULTILINE = 9, 0xB, 0x2000
ES_CENTER, ES_AUTOHSCROLL, ES_NUMBER = 0x1, 0x80, 0x2000
SS_LEFT, SS_RIGHT, SS_ICON, SS_NOPREFIX = 0, 2, 3, 0x80
LBS_NOTIFY, LBS_NOINTEGRALHEIGHT = 0x1, 0x100
CONTROL_CLASSES = {0x80: "button", 0x81: "edit", 0x82: "static", 0x83: "listbox"}

STATIC_ID = -1
ICON_107 = ("#", 107)  # a control whose text is the icon resource 107

# ---------------------------------------------------------------------------------------------
# What the program expects.

# Menu 109: (text, command) for an entry, (text, [entries]) for a submenu.
MENU = [
    ("&Menu", [
        ("&Acceuil\t   A", 32775),
        ("&Recommencer\t   R", 32773),
        ("&Stats\t   S", 32782),
        ("Discretos\t   O", 32790),
        ("\u00c0 propos &de...\t   D", 104),
        ("&Quitter\t   Q", 105),
    ]),
    ("&Graphisme", [
        ("&Images\t   I", 32777),
        ("&Couleurs perso\t   C", 32783),
        ("Lissage &en \u00e9tir\u00e9\t   E", 32778),
        ("Troujours carr\u00e9\t   T", 32791),
        ("&Ratio \u00e9cran", [
            ("&1x", 32788),
            ("&2x", 32785),
            ("&3x", 32786),
            ("&4x", 32787),
        ]),
    ]),
]

# Accelerator table 109: letter, command. Each is the letter key alone.
ACCELERATORS = {"A": 32775, "C": 32783, "D": 104, "E": 32778, "I": 32777, "O": 32790,
                "Q": 105, "R": 32773, "S": 32782, "T": 32791}
FVIRTKEY, FNOINVERT, FSHIFT, FCONTROL, FALT = 0x01, 0x02, 0x04, 0x08, 0x10

STRINGS = {103: "Kalvero 4", 109: "Tovrelia", 110: "C:\\"}

# Group icon: the square sizes it must hold, all 32 bits per pixel.
ICONS = {107: {16, 32}, 108: {16}, 109: {16}}

# Dialog templates: style, caption, font, rectangle, and the controls in template order as
# (id, class, text, style, (x, y, w, h), extended style). Control styles are given without
# WS_CHILD | WS_VISIBLE, which every control must have.
DIALOGS = {
    132: dict(
        style=DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU,
        caption="Acceuil", font=(8, "MS Sans Serif"), rect=None, size=(186, 58),
        controls=[
            (STATIC_ID, "button", "Mode de jeu", BS_GROUPBOX, (7, 3, 63, 30), 0),
            (18004, "button", "1 Joueur", BS_AUTORADIOBUTTON | WS_GROUP, (12, 12, 44, 10), 0),
            (18005, "button", "2 Joueurs", BS_AUTORADIOBUTTON, (12, 22, 46, 10), 0),
            (1, "button", "OK", BS_OWNERDRAW | WS_TABSTOP, (143, 3, 36, 13), 0),
            (2, "button", "Pas OK", BS_OWNERDRAW | WS_TABSTOP, (143, 20, 36, 13), 0),
            (1029, "button", "Niveau", BS_GROUPBOX, (76, 3, 53, 39), 0),
            (18001, "button", "Facile", BS_AUTORADIOBUTTON | WS_GROUP, (80, 12, 42, 10), 0),
            (18002, "button", "Normal", BS_AUTORADIOBUTTON, (80, 22, 40, 8), 0),
            (18003, "button", "Dur", BS_AUTORADIOBUTTON, (80, 31, 38, 8), 0),
            (STATIC_ID, "static", None, SS_LEFT, (144, 47, 34, 10), 0),
            (1022, "edit", "", ES_CENTER | ES_NUMBER | WS_BORDER | WS_TABSTOP, (41, 41, 14, 13),
             0),
            (STATIC_ID, "static", "Cases", SS_LEFT, (10, 43, 24, 9), 0),
            (1030, "button", "Challenge", BS_AUTOCHECKBOX | WS_TABSTOP, (76, 45, 53, 8), 0),
        ]),
    161: dict(
        style=DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU,
        caption="Personnages", font=(9, "Arial"), rect=None, size=(207, 62),
        controls=[
            (1, "button", "OK", BS_OWNERDRAW | WS_TABSTOP, (174, 46, 28, 12), 0),
            (1031, "listbox", "",
             LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_BORDER | WS_VSCROLL | WS_TABSTOP,
             (13, 3, 83, 55), 0),
            (1032, "static",
             "S\u00e9lectionnez un personnage SVP et rentrez \u00e9ventuellement votre nom.",
             SS_LEFT | WS_GROUP, (100, 3, 102, 33), 0),
            (1033, "edit", "", ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, (100, 46, 55, 12), 0),
            (1038, "static", "Nom | N\u00b0 d'IA (g\u00e9n. n\u00b0 du perso)",
             SS_LEFT | WS_GROUP, (100, 37, 102, 8), 0),
            (1037, "edit", "", WS_BORDER | WS_TABSTOP, (157, 46, 15, 12), 0),
            (1039, "button", "A\nI\nD\nE", BS_PUSHBUTTON | BS_MULTILINE | WS_TABSTOP,
             (2, 3, 10, 55), WS_EX_CLIENTEDGE),
        ]),
    156: dict(
        style=DS_MODALFRAME | WS_POPUP | WS_CAPTION,
        caption="Statistiques vitales pour le Kalvero 4", font=(9, "Tahoma"), rect=None,
        size=(187, 76),
        controls=[
            (1, "button", "Ok\u00e9!", BS_DEFPUSHBUTTON | WS_TABSTOP, (149, 6, 35, 11), 0),
            (32775, "static", "Satistiques (eeeeh oui!)", SS_LEFT, (8, 5, 115, 9), 0),
            (1024, "static", "Parties jou\u00e9es", SS_LEFT, (8, 16, 115, 9), 0),
            (1025, "static", "Parties gagn\u00e9es", SS_LEFT, (8, 24, 115, 9), 0),
            (1027, "static", "Moyennant", SS_LEFT, (8, 40, 115, 9), 0),
            (1026, "static", "Parties perdues", SS_LEFT, (8, 32, 115, 9), 0),
            (1028, "static", "Mode de jeu", SS_LEFT, (8, 64, 95, 9), 0),
            (STATIC_ID, "static", None, SS_RIGHT, (129, 64, 52, 9), 0),
            (STATIC_ID, "static", ICON_107, SS_ICON, (150, 24, 20, 20), 0),
            (1041, "static", "Rien du tout", SS_LEFT, (46, 52, 138, 8), 0),
            (STATIC_ID, "static", "Moi je dis:", SS_LEFT, (8, 52, 33, 9), 0),
        ]),
    103: dict(
        style=DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU,
        caption="\u00c0 propos de...", font=(10, "Comic Sans MS"), rect=(22, 17),
        size=(195, 28),
        controls=[
            (2, "static", ICON_107, SS_ICON, (12, 7, 20, 20), 0),
            (STATIC_ID, "static", "KALVERO QUATRE v 5", SS_LEFT | SS_NOPREFIX | WS_GROUP,
             (44, 7, 112, 8), 0),
            (STATIC_ID, "static", None, SS_LEFT, (44, 16, 94, 8), 0),
            (1, "button", "OK", BS_DEFPUSHBUTTON | WS_GROUP | WS_TABSTOP, (160, 6, 30, 11), 0),
        ]),
}
# A text of None is a credit line: any short text of the team's own.

BLACK, WHITE = (0, 0, 0), (255, 255, 255)
RED, BLUE, GREEN = (255, 0, 0), (0, 0, 255), (0, 255, 0)
YELLOW, MAGENTA, CYAN = (255, 255, 0), (255, 0, 255), (0, 255, 255)
VIOLET, ORANGE, SILVER = (192, 0, 255), (255, 128, 0), (192, 192, 192)

SPRITES = {152: RED, 153: BLUE, 155: GREEN, 156: YELLOW, 157: MAGENTA, 158: CYAN, 159: VIOLET,
           160: ORANGE, 161: SILVER}
MASK = 154
BACKGROUND = 148

# Portraits by character: the size the game draws it at, the size it is stored at, and the
# colour of the character's pieces, which the portrait is drawn in.
PORTRAITS = [
    ((31, 30), (31, 30), RED),
    ((29, 38), (29, 38), BLUE),
    ((32, 30), (32, 30), ORANGE),
    ((38, 33), (38, 33), SILVER),
    ((19, 39), (19, 39), RED),
    ((32, 37), (32, 37), YELLOW),
    ((23, 38), (23, 38), MAGENTA),
    ((28, 38), (28, 38), BLUE),
    ((32, 39), (32, 39), CYAN),
    ((32, 49), (32, 49), ORANGE),
    ((23, 68), (46, 136), VIOLET),
    ((32, 41), (32, 41), SILVER),
    ((27, 48), (18, 32), BLUE),
    ((32, 32), (32, 32), YELLOW),
]
FIRST_PORTRAIT = 30000
# Share of a portrait's pixels that must be exactly its character's colour.
PORTRAIT_COLOUR_SHARE = 0.05

VERSION = dict(file=(5, 5, 0, 0), block="040C04E4", translation=(FRENCH, 1252),
               strings={"ProductName": "Kalvero 4", "FileVersion": "5.5.0"},
               non_empty=("FileDescription", "CompanyName"))


def expected_inventory():
    wanted = {(RT_MENU, 109), (RT_ACCELERATOR, 109), (RT_VERSION, 1)}
    wanted |= {(RT_STRING, ident // 16 + 1) for ident in STRINGS}
    wanted |= {(RT_GROUP_ICON, ident) for ident in ICONS}
    wanted |= {(RT_DIALOG, ident) for ident in DIALOGS}
    wanted |= {(RT_BITMAP, ident) for ident in [BACKGROUND, MASK, *SPRITES]}
    wanted |= {(RT_BITMAP, FIRST_PORTRAIT + c) for c in range(len(PORTRAITS))}
    return wanted


# ---------------------------------------------------------------------------------------------
# Reading compiled resources.


class Reader:
    def __init__(self, data, pos=0):
        self.data, self.pos = data, pos

    def take(self, fmt):
        values = struct.unpack_from("<" + fmt, self.data, self.pos)
        self.pos += struct.calcsize("<" + fmt)
        return values if len(values) > 1 else values[0]

    def align(self, n=4):
        self.pos = (self.pos + n - 1) // n * n

    def text(self):
        """A zero-terminated UTF-16 text."""
        end = self.pos
        while self.data[end:end + 2] != b"\0\0":
            end += 2
        value = self.data[self.pos:end].decode("utf-16-le")
        self.pos = end + 2
        return value

    def text_or_number(self):
        """A name: 0xFFFF then a number, or a text (empty when it starts with zero)."""
        if self.data[self.pos:self.pos + 2] == b"\xff\xff":
            self.pos += 2
            return ("#", self.take("H"))
        return self.text()


def read_res(data):
    """(type, name) -> (language, bytes) from a .res file. Names given as text stay text."""
    resources = {}
    pos = 0
    while pos + 8 <= len(data):
        size, header = struct.unpack_from("<II", data, pos)
        r = Reader(data, pos + 8)
        kind, name = r.text_or_number(), r.text_or_number()
        r.align()
        _, _, language = r.take("IHH")
        if size:
            kind = kind[1] if isinstance(kind, tuple) else kind
            name = name[1] if isinstance(name, tuple) else name
            resources[(kind, name)] = (language, data[pos + header:pos + header + size])
        pos = (pos + header + size + 3) // 4 * 4
    return resources


def read_exe(data):
    """(type, name) -> (language, bytes) from the resource section of a Windows executable."""
    pe = struct.unpack_from("<I", data, 0x3C)[0]
    if data[pe:pe + 4] != b"PE\0\0":
        raise ValueError("not a Windows executable")
    sections, optional_size = struct.unpack_from("<H12xH", data, pe + 6)
    optional = pe + 24
    magic = struct.unpack_from("<H", data, optional)[0]
    directories = optional + (96 if magic == 0x10B else 112)
    root_rva, _ = struct.unpack_from("<II", data, directories + 2 * 8)
    table = []
    for k in range(sections):
        size, rva, raw_size, raw = struct.unpack_from("<IIII", data, optional + optional_size +
                                                      40 * k + 8)
        table.append((rva, max(size, raw_size), raw))

    def offset(rva):
        for start, size, raw in table:
            if start <= rva < start + size:
                return raw + rva - start
        raise ValueError("address 0x%x outside every section" % rva)

    root = offset(root_rva)

    def entries(directory):
        named, numbered = struct.unpack_from("<HH", data, root + directory + 12)
        for k in range(named + numbered):
            name, target = struct.unpack_from("<II", data, root + directory + 16 + 8 * k)
            if name & 0x80000000:
                at = root + (name & 0x7FFFFFFF)
                length = struct.unpack_from("<H", data, at)[0]
                name = data[at + 2:at + 2 + 2 * length].decode("utf-16-le")
            yield name, target

    resources = {}
    for kind, kinds in entries(0):
        for name, names in entries(kinds & 0x7FFFFFFF):
            for language, leaf in entries(names & 0x7FFFFFFF):
                rva, size = struct.unpack_from("<II", data, root + leaf)
                at = offset(rva)
                resources[(kind, name)] = (language, data[at:at + size])
    return resources


def read_menu(data):
    r = Reader(data)
    version, header = r.take("HH")
    r.pos += header

    def items():
        result = []
        while True:
            flags = r.take("H")
            if flags & 0x10:  # a submenu
                text = r.text()
                result.append((text, items(), flags & ~0x90))
            else:
                command = r.take("H")
                text = r.text()
                result.append((text, command, flags & ~0x80))
            if flags & 0x80:  # the last entry of its menu
                return result

    return version, items()


def read_dialog(data):
    r = Reader(data)
    extended = data[2:4] == b"\xff\xff"
    if extended:
        _, _, _, exstyle, style, count = r.take("HHIIIH")
    else:
        style, exstyle, count = r.take("IIH")
    x, y, w, h = r.take("hhhh")
    menu, window_class, caption = r.text_or_number(), r.text_or_number(), r.text()
    font = None
    if style & DS_SETFONT:
        points = r.take("H")
        if extended:
            r.take("HBB")
        font = (points, r.text())
    controls = []
    for _ in range(count):
        r.align()
        if extended:
            _, item_exstyle, item_style = r.take("III")
            cx, cy, cw, ch, ident = r.take("hhhhi")
        else:
            item_style, item_exstyle = r.take("II")
            cx, cy, cw, ch, ident = r.take("hhhhH")
            ident = -1 if ident == 0xFFFF else ident
        kind = r.text_or_number()  # window classes are named without regard to case
        kind = CONTROL_CLASSES.get(kind[1], kind) if isinstance(kind, tuple) else kind.lower()
        text = r.text_or_number()
        extra = r.take("H")
        r.pos += extra
        controls.append((ident, kind, text, item_style, (cx, cy, cw, ch), item_exstyle))
    return dict(extended=extended, style=style, exstyle=exstyle, rect=(x, y), size=(w, h),
                menu=menu, window_class=window_class, caption=caption, font=font,
                controls=controls)


def read_strings(data):
    r = Reader(data)
    strings = []
    for _ in range(16):
        length = r.take("H")
        strings.append(data[r.pos:r.pos + 2 * length].decode("utf-16-le"))
        r.pos += 2 * length
    return strings


def read_version(data):
    """The version tree as (key, value, children); text values decoded."""

    def node(r):
        start = r.pos
        length, value_length, is_text = r.take("HHH")
        key = r.text()
        r.align()
        if is_text:
            value = data[r.pos:r.pos + 2 * value_length].decode("utf-16-le").rstrip("\0")
            r.pos += 2 * value_length
        else:
            value = data[r.pos:r.pos + value_length]
            r.pos += value_length
        children = []
        r.align()
        while r.pos < start + length:
            children.append(node(r))
            r.align()
        r.pos = start + length
        return key, value, children

    return node(Reader(data))


class Bitmap:
    def __init__(self, data):
        (self.header_size, self.width, self.height, _, self.bits, self.compression, _, _, _,
         used, _) = struct.unpack_from("<IiiHHIIiiII", data, 0)
        colours = used or (1 << self.bits if self.bits <= 8 else 0)
        self.palette = []
        for k in range(colours):
            b, g, r, _ = data[self.header_size + 4 * k:self.header_size + 4 * k + 4]
            self.palette.append((r, g, b))
        self.data = data
        self.bits_at = self.header_size + 4 * colours

    def pixel(self, x, y):
        """The colour at (x, y), y counted from the top."""
        row_bytes = (self.width * self.bits + 31) // 32 * 4
        row = self.bits_at + (self.height - 1 - y) * row_bytes
        if self.bits == 4:
            byte = self.data[row + x // 2]
            return self.palette[byte >> 4 if x % 2 == 0 else byte & 0x0F]
        if self.bits == 24:
            b, g, r = self.data[row + 3 * x:row + 3 * x + 3]
            return (r, g, b)
        raise ValueError("%d bits per pixel" % self.bits)

    def pixels(self):
        return [[self.pixel(x, y) for x in range(self.width)] for y in range(self.height)]


# ---------------------------------------------------------------------------------------------
# Checks. Each returns a list of differences.


def name_of(key):
    kind, name = key
    return "%s %s" % (TYPE_NAMES.get(kind, "type %s" % (kind,)), name)


def check_inventory(res):
    problems = []
    for key in sorted(expected_inventory()):
        if key not in res:
            problems.append("missing: %s" % name_of(key))
    for key, (language, _) in sorted(res.items(), key=str):
        if key[0] == RT_MANIFEST:
            problems.append("%s: no manifest may be linked (it would change the scaling of the "
                            "window on high-DPI screens)" % name_of(key))
        if key[0] != RT_ICON and key not in expected_inventory() and key[0] != RT_MANIFEST:
            problems.append("unexpected resource: %s" % name_of(key))
        if language != FRENCH:
            problems.append("%s: language 0x%04X, not French (0x040C)" % (name_of(key), language))
    return problems


def check_menu(res):
    if (RT_MENU, 109) not in res:
        return []
    version, items = read_menu(res[(RT_MENU, 109)][1])
    problems = [] if version == 0 else ["menu 109: template version %d" % version]

    def compare(got, wanted, where):
        if len(got) != len(wanted):
            problems.append("%s: %d entries, expected %d" % (where, len(got), len(wanted)))
        for k, ((text, body, flags), (want_text, want_body)) in enumerate(zip(got, wanted)):
            place = "%s entry %d" % (where, k + 1)
            if text != want_text:
                problems.append("%s: text %r, expected %r" % (place, text, want_text))
            if flags:
                problems.append("%s: flags 0x%x (nothing may be grayed, disabled or checked in "
                                "the template)" % (place, flags))
            if isinstance(want_body, list) != isinstance(body, list):
                problems.append("%s: %s expected" % (
                    place, "a submenu" if isinstance(want_body, list) else "a command"))
            elif isinstance(want_body, list):
                compare(body, want_body, "%s %r" % (where, want_text))
            elif body != want_body:
                problems.append("%s: command %d, expected %d" % (place, body, want_body))

    compare(items, MENU, "menu 109")
    return problems


def check_accelerators(res):
    if (RT_ACCELERATOR, 109) not in res:
        return []
    data = res[(RT_ACCELERATOR, 109)][1]
    problems = []
    found = {}
    for k in range(0, len(data), 8):
        flags, key, command, _ = struct.unpack_from("<HHHH", data, k)
        last = bool(flags & 0x80)
        flags &= ~0x80
        if last != (k + 8 == len(data)):
            problems.append("accelerators 109: the end mark is not on the last entry")
        letter = chr(key) if 32 < key < 127 else "0x%x" % key
        if flags != FVIRTKEY | FNOINVERT:
            problems.append("accelerators 109: %s has flags 0x%x, expected the virtual key alone "
                            "(0x%x)" % (letter, flags, FVIRTKEY | FNOINVERT))
        found[letter] = command
    if found != ACCELERATORS:
        problems.append("accelerators 109: %r, expected %r" % (found, ACCELERATORS))
    return problems


def check_strings(res):
    problems = []
    for ident, wanted in STRINGS.items():
        key = (RT_STRING, ident // 16 + 1)
        if key in res:
            got = read_strings(res[key][1])[ident % 16]
            if got != wanted:
                problems.append("string %d: %r, expected %r" % (ident, got, wanted))
    return problems


def check_dialogs(res):
    problems = []
    for ident, wanted in DIALOGS.items():
        if (RT_DIALOG, ident) not in res:
            continue
        got = read_dialog(res[(RT_DIALOG, ident)][1])
        where = "dialog %d" % ident
        for field, value in [("style", wanted["style"] | DS_SETFONT), ("exstyle", 0),
                             ("caption", wanted["caption"]), ("font", wanted["font"]),
                             ("size", wanted["size"]), ("menu", ""), ("window_class", "")]:
            if got[field] != value:
                problems.append("%s: %s %r, expected %r" % (where, field, got[field], value))
        if wanted["rect"] is not None and got["rect"] != wanted["rect"]:
            problems.append("%s: placed at %r, expected %r" % (where, got["rect"], wanted["rect"]))
        if len(got["controls"]) != len(wanted["controls"]):
            problems.append("%s: %d controls, expected %d" % (
                where, len(got["controls"]), len(wanted["controls"])))
        for k, (control, expected) in enumerate(zip(got["controls"], wanted["controls"])):
            ident_, kind, text, style, rect, exstyle = control
            w_ident, w_kind, w_text, w_style, w_rect, w_exstyle = expected
            place = "%s control %d (id %d)" % (where, k + 1, w_ident)
            checks = [("id", ident_, w_ident), ("class", kind, w_kind),
                      ("style", hex(style), hex(w_style | WS_CHILD | WS_VISIBLE)),
                      ("rectangle", rect, w_rect), ("extended style", hex(exstyle),
                                                    hex(w_exstyle))]
            if w_text is None:
                if not isinstance(text, str) or not 0 < len(text) <= 40:
                    problems.append("%s: credit line %r must be a short text" % (place, text))
            else:
                checks.append(("text", text, w_text))
            for field, value, want in checks:
                if value != want:
                    problems.append("%s: %s %r, expected %r" % (place, field, value, want))
    return problems


def check_icons(res):
    problems = []
    for ident, sizes in ICONS.items():
        if (RT_GROUP_ICON, ident) not in res:
            continue
        data = res[(RT_GROUP_ICON, ident)][1]
        _, kind, count = struct.unpack_from("<HHH", data, 0)
        found = set()
        for k in range(count):
            w, h, _, _, _, bits, size, image = struct.unpack_from("<BBBBHHIH", data, 6 + 14 * k)
            w, h = w or 256, h or 256
            where = "icon %d, %dx%d image" % (ident, w, h)
            found.add(w)
            if w != h or bits != 32:
                problems.append("%s: %d bits per pixel, expected square 32-bit" % (where, bits))
            if (RT_ICON, image) not in res:
                problems.append("%s: image %d missing" % (where, image))
                continue
            icon = res[(RT_ICON, image)][1]
            _, iw, ih, _, ibits = struct.unpack_from("<IiiHH", icon, 0)
            if (iw, ih, ibits) != (w, 2 * h, bits) or len(icon) != size:
                problems.append("%s: image header %dx%d/2, %d bits, %d bytes does not match" % (
                    where, iw, ih, ibits, len(icon)))
                continue
            alpha = icon[40 + 3:40 + 4 * w * h:4]
            if not any(alpha):
                problems.append("%s: fully transparent" % where)
        if kind != 1 or found != sizes:
            problems.append("icon %d: sizes %s, expected %s" % (
                ident, sorted(found), sorted(sizes)))
    return problems


def bitmap(res, ident, problems, size, bits):
    if (RT_BITMAP, ident) not in res:
        return None
    bmp = Bitmap(res[(RT_BITMAP, ident)][1])
    if (bmp.width, bmp.height, bmp.bits, bmp.compression) != (*size, bits, 0):
        problems.append("bitmap %d: %dx%d, %d bits, compression %d; expected %dx%d, %d bits, "
                        "uncompressed" % (ident, bmp.width, bmp.height, bmp.bits, bmp.compression,
                                          *size, bits))
        return None
    return bmp


def check_pieces(res):
    problems = []
    bg = bitmap(res, BACKGROUND, problems, (1, 2), 4)
    if bg and (bg.pixel(0, 0), bg.pixel(0, 1)) != (BLACK, (0, 0, 187)):
        problems.append("bitmap 148: pixels %r above %r, expected black above (0, 0, 187)" % (
            bg.pixel(0, 0), bg.pixel(0, 1)))
    mask = bitmap(res, MASK, problems, (16, 16), 4)
    if mask is None:
        return problems
    m = mask.pixels()
    if {c for row in m for c in row} != {BLACK, WHITE}:
        problems.append("bitmap 154: the mask must be black and white only")
    edge = [m[0][x] for x in range(16)] + [m[15][x] for x in range(16)]
    edge += [m[y][0] for y in range(16)] + [m[y][15] for y in range(16)]
    if BLACK in edge or m[8][8] != BLACK:
        problems.append("bitmap 154: a black disc inside a white border expected")
    for ident, colour in SPRITES.items():
        sprite = bitmap(res, ident, problems, (16, 16), 4)
        if sprite is None:
            continue
        s = sprite.pixels()
        counts = {}
        uncovered = []
        for y in range(16):
            for x in range(16):
                if s[y][x] == BLACK:
                    continue
                counts[s[y][x]] = counts.get(s[y][x], 0) + 1
                # A one-pixel black outline around the piece: every neighbour of a coloured
                # pixel lies inside the mask's disc.
                near = [m[j][i] for j in range(y - 1, y + 2) for i in range(x - 1, x + 2)
                        if 0 <= i < 16 and 0 <= j < 16]
                if x in (0, 15) or y in (0, 15) or WHITE in near:
                    uncovered.append((x, y))
        if uncovered:
            problems.append("bitmap %d: %d pixels, such as %r, are not inside the mask's disc "
                            "with a pixel to spare" % (ident, len(uncovered), uncovered[0]))
        main = max(counts, key=counts.get) if counts else None
        if main != colour:
            problems.append("bitmap %d: main colour %r, expected %r" % (ident, main, colour))
        if sum(counts.values()) < 80:
            problems.append("bitmap %d: the disc covers only %d pixels" % (
                ident, sum(counts.values())))
    return problems


def check_portraits(res):
    problems = []
    for character, (drawn, stored, colour) in enumerate(PORTRAITS):
        ident = FIRST_PORTRAIT + character
        # Scaled on loading from the stored to the drawn size: same proportions both ways.
        if drawn[0] * stored[1] != drawn[1] * stored[0]:
            problems.append("portrait %d: stored %r and drawn %r differ in shape" % (
                ident, stored, drawn))
        bmp = bitmap(res, ident, problems, stored, 24)
        if bmp is None:
            continue
        pixels = [c for row in bmp.pixels() for c in row]
        share = pixels.count(colour) / len(pixels)
        if share < PORTRAIT_COLOUR_SHARE:
            problems.append("portrait %d: only %.0f%% of the pixels in the colour %r of "
                            "character %d" % (ident, share * 100, colour, character))
        if len(set(pixels)) < 4:
            problems.append("portrait %d: %d colours, not a drawing" % (ident, len(set(pixels))))
    return problems


def check_version(res):
    if (RT_VERSION, 1) not in res:
        return []
    data = res[(RT_VERSION, 1)][1]
    key, fixed, children = read_version(data)
    problems = []
    if key != "VS_VERSION_INFO" or len(fixed) < 52:
        return ["version: not a version resource (%r)" % key]
    signature, _, file_ms, file_ls, product_ms, product_ls = struct.unpack_from("<6I", fixed, 0)
    as_tuple = lambda ms, ls: (ms >> 16, ms & 0xFFFF, ls >> 16, ls & 0xFFFF)
    if signature != 0xFEEF04BD:
        problems.append("version: bad fixed information")
    for what, got in [("file", as_tuple(file_ms, file_ls)),
                      ("product", as_tuple(product_ms, product_ls))]:
        if got != VERSION["file"]:
            problems.append("version: %s version %r, expected %r" % (what, got, VERSION["file"]))
    tables = {k: c for k, _, c in children}
    blocks = {k: c for k, _, c in tables.get("StringFileInfo", [])}
    if VERSION["block"] not in blocks:
        problems.append("version: no string block %s, found %s" % (
            VERSION["block"], sorted(blocks)))
    else:
        values = {k: v for k, v, _ in blocks[VERSION["block"]]}
        for name, wanted in VERSION["strings"].items():
            if values.get(name) != wanted:
                problems.append("version: %s %r, expected %r" % (name, values.get(name), wanted))
        for name in VERSION["non_empty"]:
            if not values.get(name):
                problems.append("version: %s missing" % name)
    translations = {k: v for k, v, _ in tables.get("VarFileInfo", [])}
    raw = translations.get("Translation", b"")
    if (struct.unpack("<HH", raw[:4]) if len(raw) >= 4 else None) != VERSION["translation"]:
        problems.append("version: translation %r, expected French, code page 1252" % raw)
    return problems


CHECKS = [check_inventory, check_menu, check_accelerators, check_strings, check_dialogs,
          check_icons, check_pieces, check_portraits, check_version]


def check(res):
    problems = []
    for run in CHECKS:
        try:
            problems += run(res)
        except (struct.error, ValueError, IndexError, UnicodeDecodeError) as error:
            problems.append("%s: unreadable resource (%s)" % (run.__name__, error))
    return problems


class CompileError(Exception):
    pass


def compile_rc(windres, rc, work, script=None):
    """Compiles `rc` (or `script`, the bytes of a variant of it) into a .res; returns its bytes.
    Relative file names in the script are found next to `rc`."""
    found = shutil.which(windres or "")
    if not found:
        raise CompileError("the resource compiler %s was not found, so the resources cannot be "
                           "checked; tools/setup installs the mingw-w64 tools"
                           % (windres or "windres"))
    os.makedirs(work, exist_ok=True)
    source = os.path.abspath(rc)
    if script is not None:
        source = os.path.join(os.path.abspath(work), "variant.rc")
        with open(source, "wb") as f:
            f.write(script)
    out = os.path.join(work, "kalvero4.res")
    run = subprocess.run([found, "-I", os.path.dirname(os.path.abspath(rc)), "-i", source,
                          "-O", "res", "-o", out], cwd=work, capture_output=True, text=True)
    if run.returncode != 0 or run.stderr.strip():
        raise CompileError("%s failed or warned on %s:\n%s%s" % (found, source, run.stdout,
                                                                 run.stderr))
    with open(out, "rb") as f:
        return f.read()


# Faults that the checks must find: (what, text of the script, replacement, part of the report).
# None as the text stands for the whole script.
FAULTS = [
    ("script saved as UTF-8", None, lambda s: s.decode("cp1252").encode("utf-8"), "menu 109"),
    ("portrait left out", b'IDB_PORTRAIT_12 BITMAP "pictures/portrait30012.bmp"', b"",
     "missing: bitmap 30012"),
    ("list box that does not notify", b"LBS_NOTIFY | ", b"", "dialog 161 control 2"),
    ("manifest linked", b"// Version information.", b'1 24 "pictures/bg148.bmp"', "manifest"),
    ("accelerator with Ctrl", b'"Q", ID_MENU_QUIT,          VIRTKEY,',
     b'"Q", ID_MENU_QUIT,          VIRTKEY, CONTROL,', "accelerators 109: Q"),
    ("no language", b"LANGUAGE LANG_FRENCH, SUBLANG_FRENCH", b"", "not French"),
    ("sprite of the wrong colour", b"disc153.bmp", b"disc158.bmp", "bitmap 153: main colour"),
    ("sprite as mask", b"mask154.bmp", b"disc152.bmp", "bitmap 154"),
    ("portrait of another size", b"portrait30003.bmp", b"portrait30004.bmp", "bitmap 30003"),
    ("about box moved", b"22, 17, 195, 28", b"0, 0, 195, 28", "dialog 103: placed"),
    ("menu text changed", b'"&2x"', b'"&2X"', "menu 109"),
    ("string cut", b'"C:\\\\"', b'"C:"', "string 110"),
    ("close box on the statistics", b"STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION\r\n",
     b"STYLE DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU\r\n", "dialog 156: style"),
    ("icon without its large images", b'ICON "pictures/kalvero4.ico"', b'ICON "pictures/small.ico"',
     "icon 107: sizes"),
    ("old version", b"FILEVERSION 5, 5, 0, 0", b"FILEVERSION 5, 4, 0, 0", "file version"),
]


def self_test(windres, rc, work):
    """Checks variants of the script with one fault each; returns the faults that went unseen."""
    with open(rc, "rb") as f:
        script = f.read()
    unseen = []
    for what, text, replacement, report in FAULTS:
        if text is None:
            variant = replacement(script)
        elif text in script:
            variant = script.replace(text, replacement)
        else:
            unseen.append("%s: the script no longer contains %r" % (what, text))
            continue
        try:
            problems = check(read_res(compile_rc(windres, rc, work, variant)))
        except CompileError as error:
            unseen.append("%s: %s" % (what, error))
            continue
        if not any(report in problem for problem in problems):
            unseen.append("%s: not reported as %r (reports: %r)" % (what, report, problems))
    return unseen


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--windres", help="the resource compiler")
    parser.add_argument("--rc", help="the resource script")
    parser.add_argument("--work", default=".", help="folder for the compiled resources")
    parser.add_argument("--exe", help="check the resources of this executable instead")
    parser.add_argument("--self-test", action="store_true",
                        help="check that faults put into the script are found")
    args = parser.parse_args(argv)
    try:
        if args.exe:
            with open(args.exe, "rb") as f:
                res = read_exe(f.read())
            source = args.exe
        elif not args.rc:
            parser.error("--rc or --exe is needed")
        elif args.self_test:
            unseen = self_test(args.windres, args.rc, args.work)
            for fault in unseen:
                print("unseen fault: %s" % fault)
            print("%d of %d faults found" % (len(FAULTS) - len(unseen), len(FAULTS)))
            return 1 if unseen else 0
        else:
            res = read_res(compile_rc(args.windres, args.rc, args.work))
            source = args.rc
    except CompileError as error:
        print(error)
        return 1
    problems = check(res)
    for problem in problems:
        print(problem)
    if problems:
        print("%s: %d differences" % (source, len(problems)))
        return 1
    print("%s: %d resources, all as expected" % (source, len(res)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
