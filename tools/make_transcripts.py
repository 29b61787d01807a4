#!/usr/bin/env python3
"""Writes the game transcripts' scripts (tests/transcripts/*.script).

Each script plays whole games through the headless driver: the human presses column keys in a
fixed cycle, every reply runs at a repaint, and the state is printed as a person would follow
it. Finished games are followed by a click that starts the next one. tools/record-transcripts
then records what the driver prints into the matching .expected files. With --check it writes
nothing and fails when a committed script is not what it would write.
"""
import pathlib
import sys

OUT = pathlib.Path(__file__).resolve().parent.parent / "tests" / "transcripts"
LEVELS = {"facile": (0, 0), "normal": (1, 0), "dur": (2, 0), "challenge": (2, 1)}


def game_script(title, settings, moves, seed, keys, grid_every=8, double_click_at=None):
    lines = [f"# {title}", f"seed {seed}"]
    lines += [f"set {k} {v}" for k, v in settings]
    lines += ["newgame", "state"]
    for i in range(moves):
        key = keys[i % len(keys)]
        lines.append(f"key {key}")
        if double_click_at is not None and i == double_click_at:
            lines.append(f"key {key}")  # a second key before the repaint
        lines += ["paint", "status", "settle", "status", "state"]
        if (i + 1) % grid_every == 0:
            lines.append("grid")
    lines += ["grid", "engine", "state"]
    lines.append("stats")
    return "\n".join(lines) + "\n"


def scripts():
    """Every transcript script by name."""
    written = {}
    for ai in range(14):
        if ai == 10:
            continue
        for level_name, (level, challenge) in LEVELS.items():
            board = 6 if challenge else 8  # challenge on a small board keeps six plies quick
            keys = "4352617" if board == 8 else "32415"
            settings = [("AiNumber", ai), ("CharacterId", ai), ("Level", level),
                        ("Challenge", challenge), ("BoardSize", board)]
            name = f"strategy{ai:02d}_{level_name}"
            text = game_script(f"strategy {ai} at {level_name}", settings, 40,
                               1000 + 17 * ai + level, keys,
                               double_click_at=5 if level_name == "normal" else None)
            written[name] = text
    for level_name, (level, challenge) in LEVELS.items():
        settings = [("AiNumber", 10), ("CharacterId", 10), ("Level", level),
                    ("Challenge", challenge), ("BoardSize", 8)]
        name = f"engine_{level_name}"
        # Clicks by pointer position, some refused (column 0 and beyond the board).
        lines = [f"# the search engine at {level_name}", f"seed {77 + level + challenge}"]
        lines += [f"set {k} {v}" for k, v in settings] + ["newgame"]
        xs = [125, 95, 0, 155, 65, 300, 185, 35, 215, 125, 95, 155]
        for i in range(36):
            lines += [f"move {xs[i % len(xs)]}", "click", "paint", "status", "settle", "status",
                      "state", "engine"]
        lines += ["grid", "stats"]
        written[name] = "\n".join(lines) + "\n"
    for section in range(3):
        settings = [("GameMode", 2), ("AiNumber", 0), ("Level", section), ("BoardSize", 8)]
        text = game_script(f"two players, section {section + 1}", settings, 60, 5 + section,
                           "1122334455667" if section == 0 else "3434343" if section == 1
                           else "1234567", grid_every=7)
        name = f"twoplayer_section{section + 1}"
        written[name] = text
    # Boards of every size at Normal, with refused keys beyond the board.
    for cells in (1, 2, 3, 4, 9, 12, 19):
        settings = [("AiNumber", 0), ("Level", 1), ("BoardSize", cells + 1)]
        keys = "".join(chr(ord("1") + k) for k in range(min(cells + 1, 30)))
        name = f"board{cells:02d}"
        text = game_script(f"a board of {cells} cells a side", settings, 3 * cells + 4,
                           300 + cells, keys, grid_every=max(1, cells))
        written[name] = text
    return written


def main(argv):
    check = argv == ["--check"]
    if argv and not check:
        sys.exit("usage: make_transcripts.py [--check]")
    texts = scripts()
    if check:
        stale = [name for name, text in texts.items()
                 if not (OUT / f"{name}.script").is_file()
                 or (OUT / f"{name}.script").read_text() != text]
        for name in stale:
            print(f"out of date: {OUT / name}.script")
        if stale:
            print("run tools/make_transcripts.py, then tools/record-transcripts, and commit both")
            return 1
        print(f"{len(texts)} transcript scripts up to date")
        return 0
    for name, text in texts.items():
        (OUT / f"{name}.script").write_text(text)
    print(f"{len(texts)} scripts in {OUT}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
