#!/usr/bin/env python3
"""Checks that the page's resources, made by tools/make_page_resources.py, carry what the page
reads from them, so that a number, picture or template renamed or removed in the sources fails
here and not in a player's browser.

    python3 tests/check_page_resources.py SOURCE_ROOT

Runs the generator as the web build does, then checks its output against the page's scripts
(web/*.js), the resource numbers and the pictures. Exits 1 and lists every fault.
"""
import json
import re
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parents[1])
SRC = ROOT / "src"


def generate(folder):
    """The generated file, parsed, and the files its depfile lists."""
    out, dep = folder / "resources.js", folder / "resources.js.d"
    subprocess.run([sys.executable, ROOT / "tools/make_page_resources.py", SRC, out, dep],
                   check=True)
    text = out.read_text(encoding="utf-8")
    prefix = text.index("var KalveroResources = ")
    body = text[prefix + len("var KalveroResources = "):].rstrip()
    assert body.endswith(";"), "the file does not end its one statement"
    listed = dep.read_text(encoding="utf-8").split(":", 1)[1].split()
    return json.loads(body[:-1]), [Path(p) for p in listed]


def bitmap_size(path):
    data = path.read_bytes()
    if data[:2] != b"BM":
        return None
    width, height = struct.unpack_from("<ii", data, 18)
    return width, abs(height)


def check(resources, depends):
    faults = []
    scripts = {p.name: p.read_text(encoding="utf-8") for p in sorted((ROOT / "web").glob("*.js"))}

    # What the page reads: every section, and every named number of the core and of resource.h.
    # A number or an enumeration's member is read directly or through a name the script gives
    # its section or enumeration (`var kDraw = KalveroResources.core.DrawKind;`, `kDraw.Line`).
    used = []
    for name, text in scripts.items():
        for m in re.finditer(r"KalveroResources\.(\w+)(?:\.(\w+))?(?:\.(\w+))?", text):
            used.append((name, m.groups()))
        for alias, section, key in re.findall(
                r"var (\w+) = KalveroResources\.(core|ids)(?:\.(\w+))?;", text):
            for word in re.findall(rf"\b{alias}\.(\w+)", text):
                used.append((name, (section, key, word) if key else (section, word, None)))
    if not any(section in ("core", "ids") for _, (section, _, _) in used):
        faults.append("the page reads no number from the generated resources: the check is blind")
    for name, (section, key, member) in used:
        made = resources.get(section)
        if made is None:
            faults.append(f"{name} reads KalveroResources.{section}, which is not made")
        elif section in ("core", "ids") and key is not None and key not in made:
            faults.append(f"{name} reads KalveroResources.{section}.{key}, which is not made")
        elif section == "core" and member and member not in made[key]:
            faults.append(f"{name} reads {key}.{member}, which the core does not name")

    # Every bitmap the game draws by number has its picture, where the site copies it from.
    ids, pictures = resources["ids"], resources["pictures"]
    for name, number in ids.items():
        if name.startswith("IDB_") and name != "IDB_PORTRAIT_FIRST" and str(number) not in pictures:
            faults.append(f"{name} ({number}) has no picture in the page's map")
    for number, path in {**pictures, **resources["icons"]}.items():
        if not re.fullmatch(r"pictures/[\w.]+\.(bmp|ico)", path):
            faults.append(f"picture {number} is at {path}, outside the site's flat pictures/")
        elif not (SRC / "resources" / path).is_file():
            faults.append(f"picture {number}: {path} is not in src/resources")
    for name, number in ids.items():
        if name.startswith("IDI_") and str(number) not in resources["icons"]:
            faults.append(f"{name} ({number}) has no icon in the page's map")

    # The page draws a piece as one picture when its sprite has the mask's size.
    mask = SRC / "resources" / pictures.get(str(ids.get("IDB_DISC_MASK")), "missing")
    mask_size = bitmap_size(mask) if mask.is_file() else None
    if mask_size is None:
        faults.append("the pieces' mask is not a bitmap")
    for name, number in ids.items():
        path = SRC / "resources" / pictures.get(str(number), "missing")
        if name.startswith("IDB_DISC_") and path.is_file() and bitmap_size(path) != mask_size:
            faults.append(f"{name} is {bitmap_size(path)}, not the mask's {mask_size}")

    # Each dialog is placed and sized from its template, from the main window's client area;
    # the glue sets the texts of owner-drawn OK and Cancel buttons only.
    for name, number in ids.items():
        if not name.startswith("IDD_"):
            continue
        dialog = resources["dialogs"].get(str(number))
        if dialog is None:
            faults.append(f"{name} ({number}) has no template in the page's resources")
            continue
        if len(dialog.get("place", [])) != 2 or min(dialog["place"]) < 0:
            faults.append(f"{name} has no place of its own: {dialog.get('place')}")
        for style in ("DS_CENTER", "DS_ABSALIGN", "DS_CENTERMOUSE"):
            if style in dialog.get("style", ""):
                faults.append(f"{name} asks for {style}, which the page does not place by")
        for control in dialog["controls"]:
            if control["icon"] is not None and str(control["icon"]) not in resources["icons"]:
                faults.append(f"{name}: the icon {control['icon']} of a control is not in the map")
            if "BS_OWNERDRAW" in control["style"] and control["id"] not in (
                    resources["core"]["kOkControl"], resources["core"]["kCancelControl"]):
                faults.append(f"{name}: owner-drawn control {control['id']} gets no text")

    # The build reruns the generator when any file it read changes.
    read = {p.resolve() for p in depends}
    for path in [SRC / "resources/kalvero4.rc", SRC / "resources/resource.h"]:
        if path.resolve() not in read:
            faults.append(f"the depfile leaves out {path}")
    for path in read:
        if not path.is_file():
            faults.append(f"the depfile lists {path}, which does not exist")
    return faults


def main():
    with tempfile.TemporaryDirectory() as folder:
        resources, depends = generate(Path(folder))
    faults = check(resources, depends)
    print("\n".join(faults) or f"{len(resources['pictures'])} pictures, "
          f"{len(resources['icons'])} icons, "
          f"{len(resources['dialogs'])} dialogs, {len(resources['core'])} core numbers: "
          "all the page reads is made")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
