#!/usr/bin/env python3
"""Writes the seed corpus of both fuzz targets: save files that are whole, short, long and
damaged, and short driver scripts that reach every strategy and command. Run it again after
changing it; the fuzzers add their own finds beside these files. With --check it writes nothing
and fails when a committed seed is not what it would write."""
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests"))  # the save-file layout
from savefile_layout import COUNTERS, DEFAULT_NAME, SaveFile  # noqa: E402


def stored(slots=None, stats=None, name=DEFAULT_NAME):
    """A save file as on disk: the initial settings with `slots` changed (by slot index), the
    counters of `stats` set (by index in the table of all counters), and the name."""
    save = SaveFile.initial()
    save.name = name
    for k, v in (slots or {}).items():
        save.settings[k] = v
    for k, v in (stats or {}).items():
        save.stats[k // COUNTERS][k % COUNTERS] = v
    return save.stored()


def write(folder, name, data):
    path = os.path.join(HERE, "..", "fuzz", "corpus", folder, name)
    if CHECK:
        if not os.path.isfile(path) or open(path, "rb").read() != data:
            STALE.append(path)
        return
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)


CHECK = sys.argv[1:] == ["--check"]
STALE = []


SAVES = {
    "default": stored(stats={0: 1}),
    "line-ends": stored({0: 10, 3: 2, 20: 0x0D0A1A0D}, {6: 0x0A0A, 7: 26, 359: 0x0D0A}),
    "lone-cr-and-eof-byte": stored({0: 13, 6: 3}, {0: 0x0D1A, 1: 0x1A0D}),
    "empty": b"",
    "short-in-slot-10": stored({0: 12, 6: 5})[:40],
    "short-in-record-0": stored({0: 12, 6: 5}, {0: 7})[:398],
    "short-in-name": stored(name=b"Abc")[:1120],
    "long": stored({0: 9, 4: 2}) + b"\n" * 2000,
    "out-of-range": stored({0: 99, 1: 5, 2: -1, 3: 7, 4: 3, 5: 2, 6: -3, 7: 9, 8: 200, 9: 4,
                            10: 2}),
    "extremes": stored({0: -2**31, 3: 2**31 - 1, 6: 2**31 - 1, 8: -2**31}),
    "name-without-zero": stored(name=b"Z" * 26),
    "two-players-strategy-13": stored({4: 2, 6: 13, 3: 2}),
    "two-players-section-3": stored({4: 2, 3: 2}, {58 * 6: 4, 58 * 6 + 1: 2}),
    "board-2": stored({0: 2, 3: 2, 6: 1}),
    "board-20-normal": stored({0: 20, 3: 1, 6: 9, 8: 13}),
    "board-20-challenge": stored({0: 20, 3: 2, 7: 1, 6: 4}),
    "ceiling-board-4": stored({0: 5, 3: 1, 6: 6, 8: 6}),
    "three-in-a-row": stored({0: 6, 3: 2, 6: 3, 8: 3}),
    "five-in-a-row": stored({0: 11, 3: 1, 6: 11}),
    "openings-dur": stored({0: 8, 3: 2, 6: 7, 8: 7}),
    "surplus-normal": stored({0: 8, 3: 1, 6: 8}),
    "engine-challenge": stored({0: 8, 3: 2, 7: 1, 6: 10, 8: 10}),
    "engine-board-12": stored({0: 12, 3: 1, 6: 10}),
    "upside-down-hidden": stored({0: 7, 3: 2, 6: 13, 8: 12, 1: 0}),
}

SCRIPTS = {
    "first-game": "seed 7\nnewgame\nmove 95\nclick\npaint\nstatus\ngrid\nsettle\nstate\n",
    "full-game": "seed 3\nnewgame\n" + "".join(f"move {30 * (i % 7 + 1) + 5}\nclick\nsettle\n"
                                              for i in range(30)) + "status\nstats\n",
    "engine-dur": "seed 5\nset AiNumber 10\nset Level 2\nnewgame\n" +
                  "".join(f"key {i % 7 + 1}\nsettle\n" for i in range(14)) + "engine\ngrid\n",
    "engine-dur-2p": "set AiNumber 10\nset GameMode 2\nset Level 2\nnewgame\n" +
                           "key 4\nkey 4\nkey 3\nkey 5\nsettle\nengine\nstatus\n",
    "two-players-keys": "set GameMode 2\nset Level 1\nnewgame\n" +
                        "".join(f"key {c}\nsettle\n" for c in "1212121") + "status\nstats\n",
    "ceiling": "seed 2\nset AiNumber 6\nset BoardSize 4\nset Level 1\nnewgame\n" +
               "key 1\nsettle\nkey 1\nsettle\nkey 1\nsettle\ngrid\nstatus\nclick\nsettle\n",
    "openings": "seed 9\nset AiNumber 7\nset Level 2\nnewgame\nkey 4\nsettle\nkey 3\nsettle\n"
                "key 5\nsettle\nkey 2\nsettle\ngrid\n",
    "surplus": "seed 4\nset AiNumber 8\nset Level 1\nnewgame\nkey 1\nsettle\nkey 7\nsettle\n"
               "key 1\nsettle\ngrid\n",
    "board-20-edges": "set BoardSize 20\nset Level 1\nset AiNumber 11\nnewgame\nkey D\nsettle\n"
                      "key 1\nsettle\nmove 599\nclick\nsettle\nmove 630\nclick\nmove -40\nclick\n"
                      "settle\ngrid\n",
    "board-2": "set BoardSize 2\nset Level 2\nnewgame\nkey 1\nsettle\nkey 1\nsettle\nstatus\n"
               "key 2\nclick\nsettle\n",
    "restart-close-save-load": "newgame\nkey 2\nsettle\nrestart\nstats\nsave a.sav\n"
                               "set BoardSize 12\nload a.sav\nkey 3\nsettle\nclose\nstate\n"
                               "load missing.sav\nsave .\nstate\n",
    "out-of-range-sets": "set BoardSize 40\nset Level -1\nset AiNumber 99\nset CharacterId 14\n"
                         "set ShowImages 2\nset PlayerName ÀÉÎõüÿ€ and a name far too long\n"
                         "newgame\nkey 1\nsettle\nstatus\n",
    "change-board-mid-game": "set BoardSize 12\nnewgame\nkey 9\nsettle\nkey 9\nsettle\n"
                             "set BoardSize 3\nkey 1\nsettle\nkey 2\nsettle\ngrid\nstatus\n",
    "malformed": "seed 1\nnewgame\nmove x\nclick\n",
    "comments-and-crlf": "# a comment\r\n\r\n  seed 8\t\r\nnewgame\r\nkey 4\r\nsettle\r\n",
}

for name, data in SAVES.items():
    write("savefile", name, data)
for name, text in SCRIPTS.items():
    write("driver", name, text.encode("utf-8"))
for path in STALE:
    print("out of date: " + path)
if STALE:
    sys.exit("run tools/make_corpus.py and commit its output")
