#!/usr/bin/env python3
"""Writes the web page's resources from the Windows program's own: the menu, the accelerators,
the string table and the dialog templates of src/resources/kalvero4.rc, with the numbers of
resource.h, as one JavaScript file that the page reads (KalveroResources). One script for both
hosts: a text or a control changed in the .rc changes in the page at the next build.

It carries as well the numbers that the page shares with the portable core and that the core
holds only as C++ constants (the message boxes' flags and answers, the dialogs' OK and Cancel,
the buffers' side): they are read from the core's headers, whose `constexpr` lines are plain
enough to read with one pattern, rather than handed over by the glue at run time, so that the
page has them before the game starts and a renamed or removed one fails the build's check
(tests/check_page_resources.py) instead of the page.

usage: make_page_resources.py SRC_DIR OUTPUT_JS [DEPFILE]
(SRC_DIR is the sources' src/; DEPFILE lists, for the build, every file that was read)
"""
import json
import re
import sys
from pathlib import Path

# The resource script and its numbers, and the core's headers whose constants the page uses.
RESOURCE_SCRIPT = "resources/kalvero4.rc"
RESOURCE_NUMBERS = "resources/resource.h"
CORE_HEADERS = ["ground/platform.h", "dialogs/dialog_host.h", "render/viewport.h",
                "render/board_plan.h"]

# The numbers that the .rc takes from the platform's headers, as the core names them.
PLATFORM_IDS = {"IDOK": "kOkControl", "IDCANCEL": "kCancelControl"}


def read_constants(paths):
    """The core's integer constants (`constexpr TYPE kName = NUMBER;`) of the given headers, and
    its enumerations (`enum class Name { A, B, C };`, numbered from 0 as C++ numbers them) as
    {"Name": {"A": 0, ...}}."""
    constants = {}
    for path in paths:
        text = open(path, encoding="cp1252").read()
        for name, value in re.findall(r"^constexpr [\w:]+ (k\w+) = (0x[0-9A-Fa-f]+|-?\d+);", text, re.M):
            constants[name] = int(value, 0)
        for name, body in re.findall(r"^enum class (\w+) \{(.*?)\};", text, re.M | re.S):
            words = [w.strip() for w in re.sub(r"//[^\n]*", "", body).split(",") if w.strip()]
            if any(not re.fullmatch(r"\w+", w) for w in words):
                sys.exit(f"{path}: enum class {name} sets its own numbers, which this script does not read")
            constants[name] = {w: i for i, w in enumerate(words)}
    return constants


def read_defines(path, constants):
    ids = {name: constants[core] for name, core in PLATFORM_IDS.items()}
    for name, value in re.findall(r"^#define (\w+) \(?(-?\d+)\)?", open(path, encoding="cp1252").read(), re.M):
        ids[name] = int(value)
    return ids


def strings_of(line):
    """The quoted texts of a line, with the .rc's escapes ("" and \\\\, \\n, \\t) undone."""
    texts = []
    for raw in re.findall(r'"((?:[^"]|"")*)"', line):
        text = raw.replace('""', '"')
        text = re.sub(r"\\(.)", lambda m: {"n": "\n", "t": "\t"}.get(m.group(1), m.group(1)), text)
        texts.append(text)
    return texts


def number(word, ids):
    word = word.strip()
    return int(word) if re.fullmatch(r"-?\d+", word) else ids[word]


def parse(rc_text, ids):
    lines = [l.strip() for l in rc_text.splitlines()]
    out = {"menu": [], "accelerators": {}, "strings": {}, "dialogs": {}, "pictures": {},
           "icons": {}}
    i = 0
    while i < len(lines):
        line = lines[i]
        if re.match(r"\w+ MENU$", line):
            stack = [out["menu"]]
            i += 1
            while True:
                line = lines[i]
                if line.startswith("POPUP"):
                    popup = {"text": strings_of(line)[0], "items": []}
                    stack[-1].append(popup)
                    stack.append(popup["items"])
                elif line.startswith("MENUITEM"):
                    text = strings_of(line)[0]
                    stack[-1].append({"text": text, "command": number(line.rsplit(",", 1)[1], ids)})
                elif line == "END":
                    stack.pop()
                    if len(stack) == 0:
                        break
                i += 1
        elif re.match(r"\w+ ACCELERATORS$", line):
            i += 2
            while lines[i] != "END":
                key, command = strings_of(lines[i])[0], lines[i].split(",")[1]
                out["accelerators"][key] = number(command, ids)
                i += 1
        elif line == "STRINGTABLE":
            i += 2
            while lines[i] != "END":
                name = lines[i].split()[0]
                out["strings"][str(ids[name])] = strings_of(lines[i])[0]
                i += 1
        elif m := re.match(r"(\w+) +(BITMAP|ICON) +\"(.*)\"$", line):
            # The site keeps the pictures at the same paths as the script names them.
            kind = "pictures" if m.group(2) == "BITMAP" else "icons"
            out[kind][str(ids[m.group(1)])] = m.group(3)
        elif m := re.match(r"(\w+) DIALOG(?:EX)? (\d+), (\d+), (\d+), (\d+)$", line):
            # The place is the window's top-left corner, from the owner's client area.
            dialog = {"place": [int(m.group(2)), int(m.group(3))],
                      "size": [int(m.group(4)), int(m.group(5))], "controls": []}
            out["dialogs"][str(ids[m.group(1)])] = dialog
            i += 1
            while lines[i] != "BEGIN":
                if lines[i].startswith("STYLE"):
                    dialog["style"] = lines[i].split(None, 1)[1]
                elif lines[i].startswith("CAPTION"):
                    dialog["caption"] = strings_of(lines[i])[0]
                elif lines[i].startswith("FONT"):
                    size, face = re.match(r'FONT (\d+), "(.*)"', lines[i]).groups()
                    dialog["font"] = [int(size), face]
                i += 1
            i += 1
            while lines[i] != "END":
                control = lines[i]
                while control.endswith(","):  # a control written over two lines
                    i += 1
                    control += " " + lines[i]
                texts = strings_of(control)
                fields = [f.strip() for f in re.sub(r'"((?:[^"]|"")*)"', '""', control[len("CONTROL "):]).split(",")]
                text = texts[0] if fields[0] == '""' else ""
                icon = None if fields[0] == '""' else number(fields[0], ids)
                dialog["controls"].append({
                    "text": text, "icon": icon, "id": number(fields[1], ids),
                    "class": texts[-1] if fields[0] != '""' else texts[1],
                    "style": fields[3], "rect": [int(f) for f in fields[4:8]],
                })
                i += 1
        i += 1
    return out


def inputs(src):
    return [Path(src) / name for name in [RESOURCE_SCRIPT, RESOURCE_NUMBERS] + CORE_HEADERS]


def make(src):
    """The page's resources from the sources in src (the folder src/)."""
    src = Path(src)
    constants = read_constants([src / name for name in CORE_HEADERS])
    ids = read_defines(src / RESOURCE_NUMBERS, constants)
    resources = parse(open(src / RESOURCE_SCRIPT, encoding="cp1252").read(), ids)
    resources["ids"] = ids
    resources["core"] = constants
    return resources


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__.strip().splitlines()[-2])
    src, output = sys.argv[1:3]
    resources = make(src)
    if len(sys.argv) == 4:
        with open(sys.argv[3], "w", encoding="utf-8") as f:
            f.write(output.replace(" ", "\\ ") + ": " + " ".join(
                str(p.resolve()).replace(" ", "\\ ") for p in inputs(src)) + "\n")
    with open(output, "w", encoding="utf-8") as f:
        f.write("// Made at build time from the Windows program's resource script and the core's headers.\n")
        f.write("var KalveroResources = " + json.dumps(resources, ensure_ascii=False, separators=(",", ":")) + ";\n")


if __name__ == "__main__":
    main()
