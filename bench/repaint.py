#!/usr/bin/env python3
"""Times repaints of a full 19 x 19 board of the 64-bit game under Wine (bench/README.md).

    bench/repaint.py [--count N] [--keep] [LABEL=EXE ...]

Each EXE (for instance the build before and after a change) runs in turn in the same virtual
display and Wine prefix, once per picture option (piece images or letters, smoothing off or
on). Each run starts the program with a save file for a two-player game on the largest board,
confirms the home dialog, fills the board with kalvero4-repaint-probe.exe (typed keys, no line
of four), then asks for N repaints and prints the probe's summary. Without LABEL=EXE it times
build/windows64/kalvero4.exe. The probe is built first, into build/windows64.

Needs Xvfb and Wine; standard library only.
"""

import argparse
import os
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import full_board  # noqa: E402

ROOT = HERE.parent
BUILD = ROOT / "build" / "windows64"
PROBE = BUILD / "kalvero4-repaint-probe.exe"
DESKTOP = ("k4bench", "1024x768")

# Settings slots of the save file, by position: BoardSize, ShowImages, Smoothing, Level,
# GameMode, CustomColours, AiNumber, Challenge, CharacterId, NormalTitle, AlwaysSquare.
VARIANTS = {
    "images": dict(images=1, smoothing=0),
    "images+smoothing": dict(images=1, smoothing=1),
    "letters": dict(images=0, smoothing=0),
    "letters+smoothing": dict(images=0, smoothing=1),
}


def save_file(images: int, smoothing: int) -> bytes:
    settings = [0] * 99
    settings[:11] = [20, images, smoothing, 0, 2, 1, 0, 0, 0, 1, 1]
    content = struct.pack("<99i", *settings) + bytes(60 * 6 * 2)
    content += b"<Votre nom>".ljust(26, b"\0")
    return content.replace(b"\n", b"\r\n")  # the file is a text stream


class Wine:
    def __init__(self, root: Path):
        self.root = root
        self.log = open(root / "wine.log", "ab")
        # -displayfd: the server takes a free display number and writes it to the pipe.
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                                      "1280x1024x24", "-nolisten", "tcp"], pass_fds=(write_end,),
                                     stdout=self.log, stderr=self.log)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            display = pipe.readline().strip()
        if not display:
            raise SystemExit("Xvfb did not start")
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(("LC_", "WINE"))}
        self.env.update(DISPLAY=":" + display, WINEPREFIX=str(root / "prefix"),
                        WINEDEBUG="-all", LANG="C.UTF-8")
        self.run(["wineboot", "-i"], WINEDLLOVERRIDES="mscoree=d;mshtml=d")
        self.run(["wineserver", "-w"])
        name, size = DESKTOP
        self.run(["wine", "reg", "add", r"HKCU\Software\Wine\Explorer", "/v", "Desktop", "/d",
                  name, "/f"])
        self.run(["wine", "reg", "add", r"HKCU\Software\Wine\Explorer\Desktops", "/v", name,
                  "/d", size, "/f"])
        self.stop()

    def run(self, args, cwd=None, out=None, **extra) -> int:
        return subprocess.run(args, cwd=cwd, env=dict(self.env, **extra), timeout=600,
                              stdin=subprocess.DEVNULL, stdout=out or self.log,
                              stderr=self.log).returncode

    def stop(self) -> None:
        for args in (["wineserver", "-k"], ["wineserver", "-w"]):
            subprocess.run(args, env=self.env, stdout=self.log, stderr=self.log, timeout=60)

    def close(self) -> None:
        self.stop()
        self.xvfb.terminate()
        self.xvfb.wait(10)


def measure(wine: Wine, exe: Path, variant: str, count: int, keys: str) -> str:
    work = Path(tempfile.mkdtemp(dir=wine.root, prefix=variant + "-"))
    (work / "Fichier de sauvegarde").write_bytes(save_file(**VARIANTS[variant]))
    game = subprocess.Popen(["wine", str(exe)], cwd=work, env=wine.env, stdin=subprocess.DEVNULL,
                            stdout=wine.log, stderr=wine.log)
    try:
        if wine.run(["wine", str(PROBE), "start"]) != 0:
            return "the home dialog could not be confirmed"
        if wine.run(["wine", str(PROBE), "play", keys]) != 0:
            return "the board could not be filled"
        result = work / "measure.txt"
        with open(result, "wb") as out:
            status = wine.run(["wine", str(PROBE), "measure", str(count)], out=out)
        lines = result.read_text(errors="replace").splitlines()
        return lines[-1] if status == 0 and lines else "the measurement failed"
    finally:
        wine.stop()
        game.wait(30)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("programs", nargs="*", metavar="LABEL=EXE",
                        default=[f"current={BUILD / 'kalvero4.exe'}"])
    parser.add_argument("--count", type=int, default=60, help="repaints per run (default 60)")
    parser.add_argument("--keep", action="store_true", help="keep the prefix and the logs")
    args = parser.parse_args()
    if not (BUILD / "build.ninja").exists():
        subprocess.run(["cmake", "--preset", "windows64"], cwd=ROOT, check=True)
    subprocess.run(["cmake", "--build", "--preset", "windows64", "--target",
                    "kalvero4-repaint-probe"], cwd=ROOT, check=True)
    programs = [(p.split("=", 1)[0], Path(p.split("=", 1)[1]).resolve()) for p in args.programs]
    for path in [PROBE] + [exe for _, exe in programs]:
        if not path.is_file():
            raise SystemExit(f"{path} is missing")
    keys = full_board.keys()
    root = Path(tempfile.mkdtemp(prefix="kalvero4-repaint-"))
    wine = Wine(root)
    try:
        for variant in VARIANTS:
            for label, exe in programs:
                print(f"{variant:18} {label:10} {measure(wine, exe, variant, args.count, keys)}",
                      flush=True)
    finally:
        wine.close()
        if args.keep:
            print(f"kept {root}")
        else:
            shutil.rmtree(root, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
