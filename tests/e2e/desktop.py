"""Kalvero 4 under Wine on Xvfb, in a Wine virtual desktop: the probe describes its windows,
xdotool sends keys and clicks, Pillow takes pictures; every wait is bounded. Board pictures are
in logical pixels: cell (x, y) (column, row from the top) spans (30x, 30y) to (30x+30, 30y+30)."""

import json
import os
import select
import shutil
import struct
import subprocess
import time
from collections import Counter
from types import SimpleNamespace

from PIL import Image, ImageGrab
from savefile_layout import SaveFile

DESKTOP, SIZE = "k4e2e", (1024, 768)
MAIN, MENU = "Tovrelia", "#32768"  # window classes
SAVE_NAME, HOME, CHARACTERS = "Fichier de sauvegarde", "Acceuil", "Personnages"
WINESERVER = os.environ.get("WINESERVER", "wineserver")
BLACK, GRID_BLUE = (0, 0, 0), (0, 192, 255)
MARKS = {"sky": (0, 160, 255), "gold": (255, 210, 0), "lightgreen": (128, 255, 128)}
PIECES = {"green": (0, 255, 0), "red": (255, 0, 0), "blue": (0, 0, 255), "yellow": (255, 255, 0),
          "magenta": (255, 0, 255), "cyan": (0, 255, 255), "violet": (192, 0, 255),
          "orange": (255, 128, 0), "silver": (192, 192, 192)}  # sprites and letters


class EnvironmentFailure(Exception):  # Xvfb, Wine or a tool failed: nothing can be judged
    pass


def near(colour, target, tolerance=40) -> bool:
    return all(abs(a - b) <= tolerance for a, b in zip(colour, target))


def wait(what, condition, timeout=20.0):
    limit = time.monotonic() + timeout
    while not (value := condition()):
        assert time.monotonic() < limit, f"timed out after {timeout:.0f} s waiting for {what}"
        time.sleep(0.1)
    return value


def windows_path(path) -> str:
    return "Z:" + str(path).replace("/", "\\")


def colours(picture, box) -> Counter:
    area = picture.crop(box)
    return Counter({c: n for n, c in area.getcolors(area.width * area.height)})


def count(picture, box, wanted) -> int:
    return sum(n for c, n in colours(picture, box).items() if wanted(c))


def piece(board, x, y):
    found = Counter()
    for colour, n in colours(board, (30 * x + 2, 30 * y + 2, 30 * x + 29, 30 * y + 29)).items():
        found.update({k: n for k, p in PIECES.items() if near(colour, p)})
    # A sprite covers hundreds of pixels, a letter dozens, stray pixels far fewer.
    return next((k for k, n in found.most_common(1) if n >= 8), None)


def mark(board, x, y):
    """The mark of cell (x, y), read in its top-left corner, which no piece reaches."""
    return next((k for k, c in MARKS.items() if c == board.getpixel((30 * x + 3, 30 * y + 3))),
                None)


def cells(board, size, read=piece) -> dict:
    return {(x, y): f for y in range(1, size + 1) for x in range(1, size + 1)
            if (f := read(board, x, y))}


def fit(client, logical, square: bool):
    """(offX, offY, destW, destH) of the picture: "Troujours carré" keeps its ratio, centred."""
    (cw, ch), (w, h) = client, logical
    dest_w, dest_h = cw, ch
    if square and (cw, ch) != (w, h):
        ratio = struct.unpack("<f", struct.pack("<f", w / h))[0]  # single precision
        if cw / ch > ratio:
            dest_w = int(ch * ratio + 1.0)
        if ch / dest_w > h / w:
            dest_h = int(dest_w * h / w)
    return int((cw - dest_w) / 2), int((ch - dest_h) / 2), dest_w, dest_h


def start_xvfb(log, size):
    """Starts Xvfb on a free display of that size; returns (process, ":N"). -displayfd: a free
    display, its number written; -noreset: no restart when clients leave. Raises RuntimeError
    when it does not start."""
    read_end, write_end = os.pipe()
    with open(log, "wb") as out:
        xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "%dx%dx24" % tuple(size),
             "-nolisten", "tcp", "-noreset"], pass_fds=(write_end,), stdout=out, stderr=out,
            stdin=subprocess.DEVNULL)
    os.close(write_end)
    number = b""  # written in pieces; the end of the pipe ends it too
    while not number.endswith(b"\n") and select.select([read_end], [], [], 20)[0]:
        number += os.read(read_end, 16) or b"\n"
    os.close(read_end)
    if not number.strip().isdigit():
        xvfb.kill()
        raise RuntimeError(f"Xvfb did not start: {open(log).read()[-800:]}")
    return xvfb, f":{number.decode().strip()}"


class Window(SimpleNamespace):  # hwnd, owner, cls, title, enabled, rect, client, origin, controls
    def control(self, control_id):
        found = [c for c in self.controls if c.id == control_id]
        assert len(found) == 1, f"{self.title!r} has {len(found)} controls {control_id}"
        return found[0]

    def text(self, control_id) -> str:
        return self.control(control_id).text

    @property
    def size(self):
        return self.rect[2] - self.rect[0], self.rect[3] - self.rect[1]


class Desktop:
    def __init__(self, root, wine: list[str], exe, probe):
        self.root, self.wine, self.exe, self.probe = root, wine, exe.resolve(), probe.resolve()
        self.xvfb = None
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(("WINE", "LC_"))}
        self.env.update(WINEPREFIX=str(root / "prefix"), WINEDEBUG="-all", LANG="C.UTF-8")

    def start(self) -> None:
        missing = [str(p) for p in (self.exe, self.probe) if not p.is_file()] + [
            t for t in ("Xvfb", "xdotool", self.wine[0], WINESERVER) if not shutil.which(t)]
        if missing:
            raise EnvironmentFailure(f"missing: {missing} (build them, or run tools/setup)")
        try:
            self.xvfb, self.display = start_xvfb(self.root / "xvfb.log", SIZE)
        except RuntimeError as error:
            raise EnvironmentFailure(str(error)) from None
        self.env["DISPLAY"] = self.display
        self.run([*self.wine, "wineboot", "-i"], 300, WINEDLLOVERRIDES="mscoree=d;mshtml=d")

    def run(self, args: list[str], timeout: float, **env) -> None:
        # Output to a file: Wine's daemons started by the command would hold a pipe open.
        with open(self.root / "wine.log", "ab") as log:
            try:
                done = subprocess.run(args, env={**self.env, **env}, timeout=timeout, stdout=log,
                                      stderr=log, stdin=subprocess.DEVNULL)
            except subprocess.TimeoutExpired:
                raise EnvironmentFailure(f"{args} did not end within {timeout} s") from None
        if done.returncode != 0:
            raise EnvironmentFailure(f"{args} ended with status {done.returncode}: see "
                                     f"{self.root / 'wine.log'}")

    def end_wine(self) -> None:
        for args in ([WINESERVER, "-k"], [WINESERVER, "-w"]):  # every program of the prefix
            subprocess.run(args, env=self.env, timeout=30, stderr=subprocess.DEVNULL)

    def close(self) -> None:
        if self.xvfb is not None:
            self.end_wine()
            self.xvfb.terminate()
            self.xvfb.wait(10)
        shutil.rmtree(self.root / "prefix", ignore_errors=True)


class Game:
    def __init__(self, desktop: Desktop, folder, shots):
        self.desktop, self.folder, self.shots, self.taken = desktop, folder, shots, 0
        self.logical, self.square, self.process = None, True, None
        self.status, self.work = folder / "exit-status", folder / "work"
        self.work.mkdir()

    def start(self, save=None) -> Window:
        """Starts the program on a save file (SaveFile, bytes, None); fronts its home dialog."""
        if save is not None:
            (self.work / SAVE_NAME).write_bytes(getattr(save, "stored", lambda: save)())
        self.point(SIZE[0] - 5, SIZE[1] - 5)  # where it touches none of the game's windows
        d = self.desktop
        with open(self.folder / "wine.log", "ab") as log:
            self.process = subprocess.Popen(
                [*d.wine, "explorer", "/desktop=%s,%dx%d" % (DESKTOP, *SIZE),
                 windows_path(d.probe), "--run", windows_path(self.status), windows_path(d.exe)],
                cwd=self.work, env=d.env, stdout=log, stderr=log, stdin=subprocess.DEVNULL)

        def home():
            assert not self.status.exists(), f"the program ended at start: {self.exit_status()}"
            return self.find(HOME)
        window = wait("the home dialog", home, 45)
        self.activate(window)
        return window

    def confirm(self, one_player=True) -> Window | None:
        """Enter in the home dialog and, for one player, the characters dialog (returned)."""
        self.key("Return")
        self.gone(HOME)
        characters = self.window(CHARACTERS) if one_player else None
        if one_player:
            self.key("Return")
            self.gone(CHARACTERS)
        self.logical = tuple(self.main(lambda w: w.enabled).client)
        return characters

    def play(self, save=None, one_player=True) -> Window | None:
        return self.start(save) and self.confirm(one_player)

    def end(self) -> None:
        """Ends the program should it still run; failing that, all of Wine."""
        if self.process is not None and not self.status.exists():
            self.shot()
            subprocess.run([*self.desktop.wine, "taskkill", "/f", "/im", self.desktop.exe.name],
                           env=self.desktop.env, timeout=30, capture_output=True)
            try:
                self.exit_status(10)
            except AssertionError:
                self.desktop.end_wine()

    def exit_status(self, timeout=20.0) -> int:
        s = self.status
        return int(wait("the program's end", lambda: s.exists() and s.read_text(), timeout))

    def saved(self) -> SaveFile:
        return SaveFile.from_stored((self.work / SAVE_NAME).read_bytes())

    def windows(self) -> list[Window]:
        out = self.folder / "look.json"
        self.desktop.run([*self.desktop.wine, str(self.desktop.probe), DESKTOP,
                          windows_path(out)], 30)
        return json.loads(out.read_text(encoding="utf-8"), object_hook=lambda d: (
            Window if "controls" in d else SimpleNamespace)(**d)).windows

    def find(self, title=None, cls=None) -> Window | None:
        found = [w for w in self.windows() if title in (None, w.title) and cls in (None, w.cls)]
        assert len(found) <= 1, f"{len(found)} windows {title or cls!r} are open"
        return found[0] if found else None

    def window(self, title=None, cls=None, where=lambda w: True, what=None) -> Window:
        return wait(what or f"the window {title or cls!r}",
                    lambda: (w := self.find(title, cls)) and where(w) and w)

    def gone(self, title=None, cls=None) -> None:
        wait(f"{title or cls!r} to close", lambda: self.find(title, cls) is None)

    def main(self, where=lambda w: True, what="the main window") -> Window:
        return self.window(cls=MAIN, where=where, what=what)

    def screen(self, window=None):
        picture = ImageGrab.grab(xdisplay=self.desktop.display)
        (x, y), (w, h) = (window.origin, window.client) if window else ((0, 0), SIZE)
        return picture.crop((x, y, x + w, y + h))

    def board(self, window=None):
        """The main window's picture at its logical size."""
        window = window or self.main()
        x, y, w, h = fit(window.client, self.logical, self.square)
        return self.screen(window).crop((x, y, x + w, y + h)).resize(self.logical, Image.NEAREST)

    def wait_board(self, what, condition, timeout=20.0):
        window = self.main()
        return wait(what, lambda: (b := self.board(window)) and condition(b) and b, timeout)

    def shot(self) -> None:
        if self.shots:
            self.shots.mkdir(parents=True, exist_ok=True)
            self.taken += 1
            self.screen().save(self.shots / f"{self.taken:03d}.png")

    def menu_marks(self, letter, entries) -> list[bool]:
        """Which of the menu's `entries` entries show a check mark on screen (evenly spaced)."""
        self.key(f"alt+{letter}")
        left, top, right, bottom = self.window(cls=MENU).rect
        shown = [self.screen()]  # the popup is shown before it is painted: wait until calm
        picture = wait("the menu's picture", lambda: shown.append(self.screen()) or (
            shown[-1] == shown[-2] and shown[-1]), 10)
        self.key("Escape", "Escape")
        self.gone(cls=MENU)
        middles = [top + (bottom - top) * (2 * i + 1) // (2 * entries) for i in range(entries)]
        return [count(picture, (left + 4, m - 4, left + 14, m + 5), lambda c: not near(
            c, picture.getpixel((right - 4, m)), 60)) >= 4 for m in middles]

    def xdotool(self, *args: str) -> None:
        done = subprocess.run(["xdotool", *args], env=self.desktop.env, timeout=15,
                              capture_output=True, stdin=subprocess.DEVNULL)
        if done.returncode != 0:
            raise EnvironmentFailure(f"xdotool {args}: {done.stderr.decode(errors='replace')}")

    def point(self, x, y) -> None:
        self.xdotool("mousemove", str(x), str(y))  # not --sync: it waits forever if already there
        time.sleep(0.05)

    def click(self, x, y) -> None:
        self.point(x, y)
        time.sleep(0.1)
        self.shot()
        self.xdotool("click", "1")

    def click_control(self, window: Window, control_id) -> None:
        left, top, right, bottom = window.control(control_id).rect
        self.click((left + right) // 2, (top + bottom) // 2)

    def click_board(self, window: Window, x, y) -> None:
        (ox, oy), (w, h) = window.origin, self.logical
        off_x, off_y, dest_w, dest_h = fit(window.client, self.logical, self.square)
        self.click(ox + off_x + x * dest_w // w, oy + off_y + y * dest_h // h)

    def activate(self, window: Window) -> None:
        """Clicks the window's caption to bring it to the front."""
        self.click((window.rect[0] + window.rect[2]) // 2, window.rect[1] + 10)

    def key(self, *keys: str) -> None:
        for k in keys:
            self.shot()
            self.xdotool("key", "--clearmodifiers", k)
            time.sleep(0.12)

