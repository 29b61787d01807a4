#!/usr/bin/env python3
"""Writes the web page's resources from the Windows program's own: the menu, the accelerators,
the string table and the dialog templates of src/resources/kalvero4.rc, with the numbers of
resource.h, as one JavaScript file that the page reads (KalveroResources). One script for both
hosts: a text or a control changed in the .rc changes in the page at the next build.

usage: make_page_resources.py RC_FILE RESOURCE_H OUTPUT_JS
"""
import json
import re
import sys

# The numbers that the .rc takes from the platform's headers.
PLATFORM_IDS = {"IDOK": 1, "IDCANCEL": 2}


def read_defines(path):
    ids = dict(PLATFORM_IDS)
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
    out = {"menu": [], "accelerators": {}, "strings": {}, "dialogs": {}}
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
        elif m := re.match(r"(\w+) DIALOG(?:EX)? (\d+), (\d+), (\d+), (\d+)$", line):
            dialog = {"size": [int(m.group(4)), int(m.group(5))], "controls": []}
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


def main():
    rc_path, header, output = sys.argv[1:4]
    ids = read_defines(header)
    resources = parse(open(rc_path, encoding="cp1252").read(), ids)
    with open(output, "w", encoding="utf-8") as f:
        f.write("// Made at build time from the Windows program's resource script.\n")
        f.write("var KalveroResources = " + json.dumps(resources, ensure_ascii=False, separators=(",", ":")) + ";\n")


if __name__ == "__main__":
    main()
