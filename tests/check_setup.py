#!/usr/bin/env python3
"""Fails when tools/setup's package lists stop matching the scripts that ask for them: a list
name that a script uses and tools/setup does not know, a list of everything that misses a
package, or the play lists (tools/play, tools/play --web) growing the test tools back (what
players download first)."""
import re
import subprocess
import sys
from pathlib import Path

repo = Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
faults = []


def setup(*names):
    done = subprocess.run(["bash", str(repo / "tools/setup"), "--print", *names],
                          capture_output=True, text=True, check=False)
    return done.returncode, done.stdout.split()


# Every list name that a script passes, literally or through its lists=(...) array.
asked = set()
for script in sorted((repo / "tools").iterdir()):
    if script.name == "setup" or not script.is_file():
        continue
    text = script.read_text(errors="replace")
    calls = re.findall(r"^\s*tools/setup((?: +[a-z][a-z0-9-]*)*)\s*(?:#.*)?$", text, re.M)
    for words in [c or "all" for c in calls] + re.findall(r"\blists\+?=\(([a-z0-9 -]+)\)", text):
        for name in words.split():
            asked.add(name)
            if setup(name)[0] != 0:
                faults.append(f"tools/{script.name} asks tools/setup for '{name}', an unknown list")
if not {"play", "all"} <= asked:
    faults.append(f"no script asks for the play list and for all of them (found {sorted(asked)})")

# The browser suite: both engines with their drivers, the display WebKitGTK draws on, and the
# Python that drives them and reads the canvas.
BROWSER_TESTS = {"chromium", "chromium-driver", "webkit2gtk-driver", "xvfb", "python3-selenium",
                 "python3-pytest", "python3-pytest-timeout", "python3-pil"}
# (names, packages that must be there, packages that must not): what each purpose runs.
CASES = [
    (["play"], {"cmake", "ninja-build", "binutils-mingw-w64-x86-64", "wine", "wine64"},
     {"xvfb", "clang", "g++", "debootstrap", "python3-pytest", "g++-mingw-w64-i686-win32",
      "emscripten"}),
    (["play", "virtual"], {"wine", "xvfb"}, {"xdotool", "clang"}),
    (["package"], {"cmake", "ninja-build", "binutils-mingw-w64-i686", "zip", "unzip"},
     {"wine", "g++-mingw-w64-x86-64-win32"}),
    (["test"], {"clang", "libgtest-dev", "debootstrap", "python3-pefile", "xdotool"},
     {"chromium"}),
    (["web"], {"cmake", "ninja-build", "python3", "emscripten", "nodejs", "node-terser"},
     BROWSER_TESTS | {"wine", "g++", "clang"}),
    (["webtest"], BROWSER_TESTS | {"emscripten", "cmake"}, {"wine", "clang", "debootstrap"}),
]
for names, wanted, unwanted in CASES:
    status, packages = setup(*names)
    if status != 0:
        faults.append(f"tools/setup --print {' '.join(names)}: status {status}")
    if len(set(packages)) != len(packages):
        faults.append(f"{names}: a package is listed twice")
    if missing := wanted - set(packages):
        faults.append(f"{names} lacks {sorted(missing)}")
    if extra := unwanted & set(packages):
        faults.append(f"{names} holds {sorted(extra)}, which belong to another purpose")

# tools/test runs tools/package and the game under Xvfb, and installs all: so test must hold play,
# virtual and package, webtest the web build it tests, and all (also what no name means) every list.
NAMES = ("play", "virtual", "package", "test", "web", "webtest")
lists = {name: set(setup(name)[1]) for name in NAMES}
if gap := (lists["play"] | lists["virtual"] | lists["package"]) - lists["test"]:
    faults.append(f"the test list lacks {sorted(gap)}")
if gap := lists["web"] - lists["webtest"]:
    faults.append(f"the webtest list lacks {sorted(gap)}")
for names in (["all"], []):
    if gap := set().union(*lists.values()) - set(setup(*names)[1]):
        faults.append(f"tools/setup --print {' '.join(names)} lacks {sorted(gap)}")

# An unknown name is an error that prints no package (and so installs none), even beside known ones.
for names in (["plya"], ["play", "tset"]):
    status, packages = setup(*names)
    if status != 2 or packages:
        faults.append(f"tools/setup --print {' '.join(names)}: status {status}, "
                      f"{len(packages)} packages")

print("\n".join(faults) or f"{len(asked)} list names asked for by tools/, every list consistent")
sys.exit(1 if faults else 0)
