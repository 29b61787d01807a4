"""Runs the real kalvero4.exe under Wine on a virtual X display and uses it as a person would.

One `Environment` per run: a virtual X display (Xvfb), a throw-away Wine prefix prepared once,
whose default desktop is a Wine virtual desktop ("k4e2e", 1024 x 768). Without a window
manager X windows have no frame; inside the virtual desktop Wine draws the frames itself, so
the game looks as it does on Windows, and only the desktop is an X window that matters.

One `Game` per scenario: a fresh working directory holding the chosen save file (or none),
the program started there, its windows found through kalvero4-probe.exe (a small Win32
program run in the same desktop, which writes what it sees as JSON), keys and clicks sent
with xdotool, pictures taken with ImageMagick's `import`, and the save file read back from
disk. Every wait is bounded: each helper takes a timeout, and each scenario has a deadline
that no wait outlives.

Only the Python standard library is used.
"""

from __future__ import annotations

import json
import os
import select
import shutil
import struct
import subprocess
import tempfile
import time
import zlib
from dataclasses import dataclass, field
from pathlib import Path

DESKTOP_NAME = "k4e2e"
DESKTOP_SIZE = (1024, 768)
MAIN_TITLE = "Kalvero 4"
MAIN_CLASS = "Tovrelia"
MENU_POPUP_CLASS = "#32768"
SAVE_FILE_NAME = "Fichier de sauvegarde"

# Buttons of the message boxes and dialogs, by their ids.
ID_CANCEL, ID_YES, ID_NO = 2, 6, 7

POLL_INTERVAL = 0.15


class EnvironmentFailure(Exception):
    """Xvfb, Wine or a tool could not do its part: the suite cannot judge the game."""


class ScenarioFailure(AssertionError):
    """What the game showed or wrote is not what a person should see or find."""


class StartFailure(ScenarioFailure):
    """The program did not come up with its home dialog."""


def check(condition: bool, message: str) -> None:
    if not condition:
        raise ScenarioFailure(message)


# --------------------------------------------------------------------------------------------
# Save files
# --------------------------------------------------------------------------------------------

SETTINGS_SLOTS = 99
STATS_RECORDS = 60
COUNTERS_PER_RECORD = 6
NAME_BYTES = 26
CONTENT_BYTES = SETTINGS_SLOTS * 4 + STATS_RECORDS * COUNTERS_PER_RECORD * 2 + NAME_BYTES

# Settings slots, by what they hold.
SLOT = {name: index for index, name in enumerate(
    ["BoardSize", "ShowImages", "Smoothing", "Level", "GameMode", "CustomColours", "AiNumber",
     "Challenge", "CharacterId", "NormalTitle", "AlwaysSquare"])}
PLAYED, WON, LOST = 0, 1, 2


def encode_line_ends(content: bytes) -> bytes:
    """The file is a text stream: every 0x0A of the content is stored as 0x0D 0x0A."""
    return content.replace(b"\n", b"\r\n")


def decode_line_ends(stored: bytes) -> bytes:
    return stored.replace(b"\r\n", b"\n")


@dataclass
class SaveFile:
    """The content of the save file: settings slots, statistics records and the player's name."""

    settings: list[int] = field(default_factory=lambda: [0] * SETTINGS_SLOTS)
    stats: list[list[int]] = field(
        default_factory=lambda: [[0] * COUNTERS_PER_RECORD for _ in range(STATS_RECORDS)])
    name: bytes = b"<Votre nom>".ljust(NAME_BYTES, b"\0")

    @classmethod
    def initial(cls) -> "SaveFile":
        """What the program holds when it starts without a save file."""
        save = cls()
        for slot, value in {"BoardSize": 8, "ShowImages": 1, "Smoothing": 0, "Level": 0,
                            "GameMode": 1, "CustomColours": 1, "AiNumber": 0, "Challenge": 0,
                            "CharacterId": 0, "NormalTitle": 1, "AlwaysSquare": 1}.items():
            save.settings[SLOT[slot]] = value
        return save

    def with_settings(self, **values: int) -> "SaveFile":
        for name, value in values.items():
            self.settings[SLOT[name]] = value
        return self

    def content(self) -> bytes:
        out = struct.pack("<99i", *self.settings)
        for record in self.stats:
            out += struct.pack("<6H", *(c & 0xFFFF for c in record))
        return out + self.name

    def stored(self) -> bytes:
        return encode_line_ends(self.content())

    @classmethod
    def from_content(cls, content: bytes) -> "SaveFile":
        if len(content) != CONTENT_BYTES:
            raise ScenarioFailure(f"save file holds {len(content)} bytes of content, "
                                  f"expected {CONTENT_BYTES}")
        settings = list(struct.unpack_from("<99i", content, 0))
        counters = struct.unpack_from("<360H", content, SETTINGS_SLOTS * 4)
        stats = [list(counters[r * 6:(r + 1) * 6]) for r in range(STATS_RECORDS)]
        return cls(settings, stats, content[-NAME_BYTES:])

    @classmethod
    def from_stored(cls, stored: bytes) -> "SaveFile":
        return cls.from_content(decode_line_ends(stored))

    def name_text(self) -> bytes:
        return self.name.split(b"\0", 1)[0]

    def difference(self, other: "SaveFile") -> list[str]:
        """Readable differences, for failure messages."""
        found = []
        for k, (a, b) in enumerate(zip(self.settings, other.settings)):
            if a != b:
                found.append(f"slot {k}: {a} != {b}")
        for r, (a, b) in enumerate(zip(self.stats, other.stats)):
            if a != b:
                found.append(f"record {r}: {a} != {b}")
        if self.name_text() != other.name_text():
            found.append(f"name: {self.name_text()!r} != {other.name_text()!r}")
        return found


# --------------------------------------------------------------------------------------------
# Pictures
# --------------------------------------------------------------------------------------------

class Image:
    """An RGB picture: a screenshot or a part of one."""

    def __init__(self, width: int, height: int, rgb: bytes):
        self.width, self.height, self.rgb = width, height, rgb

    @classmethod
    def from_ppm(cls, data: bytes) -> "Image":
        # P6, possibly with comments; 8 bits per channel (import is asked for -depth 8).
        fields, pos = [], 0
        while len(fields) < 4:
            while data[pos:pos + 1].isspace():
                pos += 1
            if data[pos:pos + 1] == b"#":
                pos = data.index(b"\n", pos) + 1
                continue
            end = pos
            while not data[end:end + 1].isspace():
                end += 1
            fields.append(data[pos:end])
            pos = end
        if fields[0] != b"P6" or int(fields[3]) != 255:
            raise EnvironmentFailure(f"unexpected picture format from import: {fields!r}")
        width, height = int(fields[1]), int(fields[2])
        pixels = data[pos + 1:pos + 1 + width * height * 3]
        if len(pixels) != width * height * 3:
            raise EnvironmentFailure("import gave a truncated picture")
        return cls(width, height, pixels)

    def pixel(self, x: int, y: int) -> tuple[int, int, int]:
        if not (0 <= x < self.width and 0 <= y < self.height):
            raise ScenarioFailure(f"pixel ({x}, {y}) lies outside a {self.width} x {self.height} "
                                  "picture")
        i = (y * self.width + x) * 3
        return self.rgb[i], self.rgb[i + 1], self.rgb[i + 2]

    def crop(self, x: int, y: int, width: int, height: int) -> "Image":
        x0, y0 = max(0, x), max(0, y)
        x1, y1 = min(self.width, x + width), min(self.height, y + height)
        rows = [self.rgb[(row * self.width + x0) * 3:(row * self.width + x1) * 3]
                for row in range(y0, y1)]
        return Image(max(0, x1 - x0), max(0, y1 - y0), b"".join(rows))

    def count(self, x0: int, y0: int, x1: int, y1: int, wanted) -> int:
        """Pixels in [x0, x1) x [y0, y1) for which wanted(rgb) holds."""
        return sum(1 for y in range(max(0, y0), min(self.height, y1))
                   for x in range(max(0, x0), min(self.width, x1)) if wanted(self.pixel(x, y)))

    def save_png(self, path: Path) -> None:
        raw = b"".join(b"\0" + self.rgb[y * self.width * 3:(y + 1) * self.width * 3]
                       for y in range(self.height))

        def chunk(kind: bytes, body: bytes) -> bytes:
            return (struct.pack(">I", len(body)) + kind + body
                    + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF))

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                         + chunk(b"IDAT", zlib.compress(raw, 6)) + chunk(b"IEND", b""))


def near(colour: tuple[int, int, int], target: tuple[int, int, int], tolerance: int = 40) -> bool:
    return all(abs(a - b) <= tolerance for a, b in zip(colour, target))


# The piece sprites by the colour of their disc; "letter" colours are the same pure colours.
PIECE_COLOURS = {
    "green": (0, 255, 0), "red": (255, 0, 0), "blue": (0, 0, 255), "yellow": (255, 255, 0),
    "magenta": (255, 0, 255), "cyan": (0, 255, 255), "violet": (192, 0, 255),
    "orange": (255, 128, 0), "silver": (192, 192, 192),
}
SKY_BLUE = (0, 160, 255)
GOLD = (255, 210, 0)
LIGHT_GREEN = (128, 255, 128)
GRID_BLUE = (0, 192, 255)
MARK_FILLS = {"sky": SKY_BLUE, "gold": GOLD, "lightgreen": LIGHT_GREEN}
BLACK = (0, 0, 0)


# --------------------------------------------------------------------------------------------
# What the probe sees
# --------------------------------------------------------------------------------------------

@dataclass
class Control:
    id: int
    cls: str
    text: str
    visible: bool
    enabled: bool
    rect: tuple[int, int, int, int]
    check: int | None = None
    selection: int | None = None
    items: list[str] | None = None

    @property
    def centre(self) -> tuple[int, int]:
        return (self.rect[0] + self.rect[2]) // 2, (self.rect[1] + self.rect[3]) // 2


@dataclass
class Window:
    hwnd: int
    owner: int
    pid: int
    cls: str
    title: str
    visible: bool
    enabled: bool
    rect: tuple[int, int, int, int]
    client_size: tuple[int, int]
    client_origin: tuple[int, int]
    controls: list[Control]
    menu: list | None

    @property
    def size(self) -> tuple[int, int]:
        return self.rect[2] - self.rect[0], self.rect[3] - self.rect[1]

    def control(self, control_id: int) -> Control:
        found = [c for c in self.controls if c.id == control_id]
        check(len(found) == 1, f"window {self.title!r} has {len(found)} controls with id "
                               f"{control_id}: {[(c.id, c.text) for c in self.controls]}")
        return found[0]

    def text(self, control_id: int) -> str:
        return self.control(control_id).text

    def texts(self) -> list[str]:
        return [c.text for c in self.controls]


class Snapshot:
    def __init__(self, data: dict):
        self.unanswered = bool(data.get("unanswered"))
        self.windows = []
        for w in data["windows"]:
            controls = [Control(c["id"], c["class"], c["text"], c["visible"], c["enabled"],
                                tuple(c["rect"]), c.get("check"), c.get("selection"),
                                c.get("items")) for c in w.get("controls", [])]
            self.windows.append(Window(w["hwnd"], w["owner"], w["pid"], w["class"], w["title"],
                                       w["visible"], w["enabled"], tuple(w["window"]),
                                       tuple(w["client"]), tuple(w["client_origin"]), controls,
                                       w.get("menu")))

    def visible(self) -> list[Window]:
        return [w for w in self.windows if w.visible]

    def find(self, title: str | None = None, cls: str | None = None) -> list[Window]:
        return [w for w in self.visible()
                if (title is None or w.title == title) and (cls is None or w.cls == cls)]

    def one(self, title: str | None = None, cls: str | None = None) -> Window | None:
        found = self.find(title, cls)
        if len(found) > 1:
            raise ScenarioFailure(f"{len(found)} windows titled {title!r} are open")
        return found[0] if found else None

    def main(self) -> Window | None:
        return self.one(cls=MAIN_CLASS)

    def titles(self) -> list[str]:
        return [f"{w.title or '(' + w.cls + ')'}" for w in self.visible()]


# --------------------------------------------------------------------------------------------
# The board as painted, in logical coordinates
# --------------------------------------------------------------------------------------------

def single(value: float) -> float:
    return struct.unpack("<f", struct.pack("<f", value))[0]


def fit_destination(client: tuple[int, int], logical: tuple[int, int],
                    always_square: bool) -> tuple[int, int, int, int]:
    """Where the logical picture lands in the client area: (offX, offY, destW, destH).

    The picture keeps the logical aspect ratio when "Troujours carré" is on, centred, and
    fills the client area otherwise."""
    cw, ch = client
    w, h = logical
    dest_w, dest_h = cw, ch
    if always_square and (cw, ch) != (w, h):
        r = single(w / h)
        if cw / ch > r:
            dest_w = int(ch * r + 1.0)
        if ch / dest_w > h / w:
            dest_h = int(dest_w * h / w)
    return int((cw - dest_w) / 2), int((ch - dest_h) / 2), dest_w, dest_h


class BoardView:
    """The client area of the main window, read in the logical coordinates of the picture."""

    def __init__(self, client: Image, logical: tuple[int, int], always_square: bool):
        self.client = client
        self.logical = logical
        self.off_x, self.off_y, self.dest_w, self.dest_h = fit_destination(
            (client.width, client.height), logical, always_square)

    def to_client(self, lx: float, ly: float) -> tuple[int, int]:
        w, h = self.logical
        return (self.off_x + int(lx * self.dest_w / w), self.off_y + int(ly * self.dest_h / h))

    def pixel(self, lx: int, ly: int) -> tuple[int, int, int]:
        """The colour shown for the logical pixel (lx, ly), read at the middle of its stretch."""
        return self.client.pixel(*self.to_client(lx + 0.5, ly + 0.5))

    def count(self, lx0: int, ly0: int, lx1: int, ly1: int, wanted) -> int:
        """Matching pixels of the client area covering the logical box [lx0, lx1) x [ly0, ly1)."""
        x0, y0 = self.to_client(lx0, ly0)
        x1, y1 = self.to_client(lx1, ly1)
        return self.client.count(x0, y0, x1, y1, wanted)

    def piece(self, x: int, y: int) -> str | None:
        """The colour of the piece shown in cell (x, y) (sprite or letter), or None."""
        x0, y0 = self.to_client(30 * x + 2, 30 * y + 2)
        x1, y1 = self.to_client(30 * x + 29, 30 * y + 29)
        fills = set(MARK_FILLS.values())
        counts = dict.fromkeys(PIECE_COLOURS, 0)
        picture = self.client
        for cy in range(y0, min(y1, picture.height)):
            for cx in range(x0, min(x1, picture.width)):
                p = picture.pixel(cx, cy)
                # Every piece colour has a channel of 192 or more; the board's background and
                # the sprites' shades have none.
                if max(p) < 150 or p in fills:
                    continue
                for name, colour in PIECE_COLOURS.items():
                    if near(p, colour):
                        counts[name] += 1
                        break
        name, best = max(counts.items(), key=lambda item: item[1])
        # A 20 x 20 sprite covers hundreds of pixels, a letter a few dozen; stray pixels of the
        # grid or of smoothing stay far below.
        scale = (self.dest_w / self.logical[0]) * (self.dest_h / self.logical[1])
        return name if best >= 8 * scale else None

    def fill(self, x: int, y: int) -> str | None:
        """The mark colour of cell (x, y), read in its top-left corner (no piece reaches it)."""
        colour = self.pixel(30 * x + 3, 30 * y + 3)
        for name, target in MARK_FILLS.items():
            if colour == target:
                return name
        return None

    def pieces(self, cells: int) -> dict[tuple[int, int], str]:
        found = {}
        for y in range(1, cells + 1):
            for x in range(1, cells + 1):
                p = self.piece(x, y)
                if p:
                    found[(x, y)] = p
        return found

    def fills(self, cells: int) -> dict[tuple[int, int], str]:
        found = {}
        for y in range(1, cells + 1):
            for x in range(1, cells + 1):
                f = self.fill(x, y)
                if f:
                    found[(x, y)] = f
        return found

    def save_png(self, path: Path) -> None:
        self.client.save_png(path)


# --------------------------------------------------------------------------------------------
# The run: X display and Wine prefix
# --------------------------------------------------------------------------------------------

REQUIRED_TOOLS = ["Xvfb", "wine", "wineboot", "wineserver", "xdotool", "import"]


class Environment:
    def __init__(self, exe: Path, probe: Path, keep_temp: bool = False, log=print):
        self.exe, self.probe = exe.resolve(), probe.resolve()
        self.keep_temp = keep_temp
        self.log = log
        self.root: Path | None = None
        self.xvfb: subprocess.Popen | None = None
        self.display: str | None = None
        self.prefix: Path | None = None

    # -- start and stop ------------------------------------------------------------------------

    def start(self) -> None:
        missing = [t for t in REQUIRED_TOOLS if shutil.which(t) is None]
        if missing:
            raise EnvironmentFailure("missing tools: " + ", ".join(missing)
                                     + " (tools/setup installs them)")
        for path in (self.exe, self.probe):
            if not path.is_file():
                raise EnvironmentFailure(f"{path} does not exist: build the windows64 preset")
        self.root = Path(tempfile.mkdtemp(prefix="kalvero4-e2e-"))
        self.prefix = self.root / "prefix"
        self._start_xvfb()
        self._prepare_prefix()

    def close(self) -> None:
        if self.prefix is not None and self.prefix.exists():
            self.kill_wine()
        if self.xvfb is not None and self.xvfb.poll() is None:
            self.xvfb.terminate()
            try:
                self.xvfb.wait(10)
            except subprocess.TimeoutExpired:
                self.xvfb.kill()
                self.xvfb.wait(10)
        if self.root is not None and not self.keep_temp:
            shutil.rmtree(self.root, ignore_errors=True)

    def _start_xvfb(self) -> None:
        # -displayfd lets the server pick a free display and tell us which.
        read_end, write_end = os.pipe()
        log = open(self.root / "xvfb.log", "wb")
        w, h = DESKTOP_SIZE
        try:
            self.xvfb = subprocess.Popen(
                ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{w}x{h}x24",
                 "-nolisten", "tcp", "-noreset"],
                pass_fds=(write_end,), stdout=log, stderr=log, stdin=subprocess.DEVNULL)
        finally:
            os.close(write_end)
            log.close()
        text = b""
        deadline = time.monotonic() + 20
        while b"\n" not in text and time.monotonic() < deadline:
            ready, _, _ = select.select([read_end], [], [], 0.5)
            if ready:
                chunk = os.read(read_end, 64)
                if not chunk:
                    break
                text += chunk
            elif self.xvfb.poll() is not None:
                break
        os.close(read_end)
        if b"\n" not in text:
            raise EnvironmentFailure("Xvfb did not start: "
                                     + (self.root / "xvfb.log").read_text(errors="replace")[-800:])
        self.display = ":" + text.decode().strip()
        self.log(f"e2e: virtual display {self.display}")

    def env(self) -> dict[str, str]:
        env = {k: v for k, v in os.environ.items() if not k.startswith(("LC_", "WINE"))}
        env.update({
            "DISPLAY": self.display, "WINEPREFIX": str(self.prefix), "WINEDEBUG": "-all",
            "LANG": "C.UTF-8",
        })
        return env

    def run(self, args: list[str], timeout: float, what: str, env: dict | None = None) -> str:
        """Runs a Wine command to its end; returns the status and its output, in a file rather
        than a pipe: Wine's daemons started by the command would keep a pipe open."""
        log_path = self.root / "wine-commands.log"
        with open(log_path, "ab") as log:
            start = log.tell()
            try:
                done = subprocess.run(args, env=env or self.env(), timeout=timeout,
                                      stdin=subprocess.DEVNULL, stdout=log, stderr=log)
            except subprocess.TimeoutExpired:
                raise EnvironmentFailure(f"{what} did not finish within {timeout:.0f} s: {args}")
        with open(log_path, "rb") as log:
            log.seek(start)
            output = log.read().decode(errors="replace")
        if done.returncode != 0:
            raise EnvironmentFailure(f"{what} failed with status {done.returncode}: "
                                     + output[-800:])
        return output

    def _prepare_prefix(self) -> None:
        started = time.monotonic()
        # No Mono or Gecko installers while the prefix is made: the game needs neither.
        boot_env = dict(self.env(), WINEDLLOVERRIDES="mscoree=d;mshtml=d")
        output = self.run(["wineboot", "-i"], 300, "preparing the Wine prefix (wineboot -i)",
                          env=boot_env)
        self.run(["wineserver", "-w"], 120, "waiting for the first Wine session to end")
        if not (self.prefix / "system.reg").exists():
            raise EnvironmentFailure("Wine could not prepare its prefix: " + output[-800:])
        # Every program of this prefix runs in the one virtual desktop, game and probe alike.
        for key, name, value in [(r"HKCU\Software\Wine\Explorer", "Desktop", DESKTOP_NAME),
                                 (r"HKCU\Software\Wine\Explorer\Desktops", DESKTOP_NAME,
                                  "x".join(map(str, DESKTOP_SIZE)))]:
            self.run(["wine", "reg", "add", key, "/v", name, "/d", value, "/f"], 120,
                     "writing the Wine desktop setting with reg.exe")
        # A first Windows program in the desktop shows that Wine can run one there at all.
        snapshot = self.root / "first-look.json"
        self.run(["wine", str(self.probe), self.windows_path(snapshot)], 120,
                 "running kalvero4-probe.exe in the Wine desktop")
        try:
            json.loads(snapshot.read_text(encoding="utf-8"))
        except (OSError, ValueError) as error:
            raise EnvironmentFailure(f"kalvero4-probe.exe gave no description: {error}")
        self.kill_wine()
        self.log(f"e2e: Wine prefix ready in {time.monotonic() - started:.0f} s")

    def kill_wine(self) -> None:
        """Ends every Wine process of the prefix (the game, its dialogs, the desktop)."""
        for args in (["wineserver", "-k"], ["wineserver", "-w"]):
            try:
                subprocess.run(args, env=self.env(), timeout=30, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            except subprocess.TimeoutExpired:
                pass

    def windows_path(self, path: Path) -> str:
        return "Z:" + str(path).replace("/", "\\")


# --------------------------------------------------------------------------------------------
# One run of the game
# --------------------------------------------------------------------------------------------

class Game:
    """The program started in a fresh working directory, with a deadline for everything."""

    def __init__(self, env: Environment, workdir: Path, deadline: float,
                 save: bytes | SaveFile | None = None, shots: "ShotKeeper | None" = None):
        self.env = env
        self.workdir = workdir
        self.deadline = deadline
        self.shots = shots
        self.process: subprocess.Popen | None = None
        self.logical: tuple[int, int] | None = None
        self.always_square = True
        self.desktop_origin = (0, 0)
        self._probes = 0
        workdir.mkdir(parents=True)
        if save is not None:
            data = save.stored() if isinstance(save, SaveFile) else save
            (workdir / SAVE_FILE_NAME).write_bytes(data)

    # -- time ------------------------------------------------------------------------------------

    def remaining(self, timeout: float) -> float:
        left = self.deadline - time.monotonic()
        if left <= 0:
            raise ScenarioFailure("the scenario ran out of time")
        return min(timeout, left)

    def wait_for(self, what: str, condition, timeout: float = 20.0):
        """Polls condition() until it returns something true; returns that."""
        limit = time.monotonic() + self.remaining(timeout)
        while True:
            value = condition()
            if value:
                return value
            if time.monotonic() >= limit:
                raise ScenarioFailure(f"timed out after {timeout:.0f} s waiting for {what}")
            time.sleep(POLL_INTERVAL)

    # -- process ---------------------------------------------------------------------------------

    def launch(self) -> None:
        log = open(self.workdir.parent / (self.workdir.name + ".log"), "wb")
        self.process = subprocess.Popen(["wine", str(self.env.exe)], cwd=self.workdir,
                                        env=self.env.env(), stdin=subprocess.DEVNULL,
                                        stdout=log, stderr=log)
        log.close()

    def start(self) -> Window:
        """Starts the program and waits for the home dialog it opens by itself; brings the
        dialog to the front (a fresh desktop gives no window the keyboard). Returns it."""
        self.rest_pointer()  # no stray pointer move over the new window
        self.launch()
        try:
            home = self.wait_for("the home dialog 'Acceuil' of the first start",
                                 self._home_or_exit, timeout=45)
        except ScenarioFailure as error:
            raise StartFailure(str(error)) from None
        self.find_desktop()
        self.activate(home)
        return home

    def _home_or_exit(self) -> Window | None:
        if not self.running():
            raise ScenarioFailure(f"the program ended at start with status "
                                  f"{self.process.returncode}")
        return self.snapshot().one("Acceuil")

    def confirm_start_dialogs(self, one_player: bool = True) -> Window:
        """Enter on the home dialog and, for one player, on the characters dialog; returns
        the main window once it takes input again, and notes the logical size of its picture."""
        self.key("Return")
        self.wait_gone("Acceuil")
        if one_player:
            self.wait_window("Personnages")
            self.key("Return")
            self.wait_gone("Personnages")
        main = self.wait_main("the main window to take input", lambda w: w.enabled)
        self.logical = main.client_size
        return main

    def running(self) -> bool:
        return self.process is not None and self.process.poll() is None

    def wait_exit(self, timeout: float = 20.0) -> int:
        try:
            return self.process.wait(self.remaining(timeout))
        except subprocess.TimeoutExpired:
            raise ScenarioFailure(f"the program did not end within {timeout:.0f} s")

    def end(self) -> None:
        """Makes sure nothing of this run is left: the program, its dialogs, the probe."""
        if self.process is None:
            return
        if self.process.poll() is None:
            self.env.kill_wine()
            try:
                self.process.wait(15)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait(15)
        else:
            self.env.kill_wine()

    def save_file(self) -> SaveFile:
        path = self.workdir / SAVE_FILE_NAME
        check(path.exists(), "no save file was written")
        return SaveFile.from_stored(path.read_bytes())

    def save_bytes(self) -> bytes:
        path = self.workdir / SAVE_FILE_NAME
        check(path.exists(), "no save file was written")
        return path.read_bytes()

    # -- looking -------------------------------------------------------------------------------

    def snapshot(self) -> Snapshot:
        self._probes += 1
        out = self.workdir.parent / f"{self.workdir.name}-probe-{self._probes}.json"
        log_path = self.workdir.parent / (self.workdir.name + "-probe.log")
        with open(log_path, "ab") as log:
            try:
                done = subprocess.run(["wine", str(self.env.probe), self.env.windows_path(out)],
                                      env=self.env.env(), timeout=self.remaining(30),
                                      stdin=subprocess.DEVNULL, stdout=log, stderr=log)
            except subprocess.TimeoutExpired:
                raise ScenarioFailure("kalvero4-probe did not answer within 30 s")
        if done.returncode != 0 or not out.exists():
            raise EnvironmentFailure(f"kalvero4-probe failed with status {done.returncode}; "
                                     f"see {log_path}")
        data = json.loads(out.read_text(encoding="utf-8"))
        out.unlink()
        return Snapshot(data)

    def wait_window(self, title: str | None = None, cls: str | None = None,
                    timeout: float = 20.0, where=None, what: str | None = None) -> Window:
        """Waits for a visible window of that title (or class), for which where(window)
        holds when given; returns it."""
        def found():
            window = self.snapshot().one(title, cls)
            return window if window is not None and (where is None or where(window)) else None
        what = what or (f"a window titled {title!r}" if title else f"a {cls} window")
        return self.wait_for(what, found, timeout)

    def wait_gone(self, title: str | None = None, cls: str | None = None,
                  timeout: float = 20.0) -> Snapshot:
        def gone():
            snap = self.snapshot()
            return snap if not snap.find(title, cls) else None
        return self.wait_for(f"the window {title or cls!r} to close", gone, timeout)

    def main(self) -> Window:
        return self.wait_window(cls=MAIN_CLASS)

    def wait_main(self, what: str, condition, timeout: float = 20.0) -> Window:
        """Polls the main window until condition(window) holds; returns that window."""
        return self.wait_window(cls=MAIN_CLASS, timeout=timeout, where=condition, what=what)

    def steady_screen(self, timeout: float = 10.0) -> Image:
        """A screenshot taken once two in a row are alike: nothing is being drawn any more."""
        previous = [self.screen()]

        def settled():
            now = self.screen()
            same = now.rgb == previous[0].rgb
            previous[0] = now
            return now if same else None
        time.sleep(0.1)
        return self.wait_for("the screen to settle", settled, timeout)

    def screen(self) -> Image:
        """The desktop as it looks now."""
        try:
            done = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"],
                                  env=self.env.env(), timeout=self.remaining(30),
                                  stdin=subprocess.DEVNULL, capture_output=True)
        except subprocess.TimeoutExpired:
            raise EnvironmentFailure("import did not take the screenshot within 30 s")
        if done.returncode != 0:
            raise EnvironmentFailure("import failed: " + done.stderr.decode(errors="replace"))
        x, y = self.desktop_origin
        return Image.from_ppm(done.stdout).crop(x, y, *DESKTOP_SIZE)

    def client_image(self, window: Window) -> Image:
        (x, y), (w, h) = window.client_origin, window.client_size
        return self.screen().crop(x, y, w, h)

    def board(self, window: Window | None = None) -> BoardView:
        window = window or self.main()
        check(self.logical is not None, "the logical size is not known yet")
        return BoardView(self.client_image(window), self.logical, self.always_square)

    def wait_board(self, what: str, condition, timeout: float = 20.0) -> BoardView:
        """Polls the main window's picture until condition(view) holds; returns that view."""
        window = self.main()
        return self.wait_for(what, lambda: (lambda v: v if condition(v) else None)(
            self.board(window)), timeout)

    def shot(self, label: str) -> None:
        if self.shots is not None:
            self.shots.keep(self, label)

    # -- acting --------------------------------------------------------------------------------

    def xdotool(self, *args: str) -> str:
        try:
            done = subprocess.run(["xdotool", *args], env=self.env.env(),
                                  timeout=self.remaining(15), stdin=subprocess.DEVNULL,
                                  capture_output=True)
        except subprocess.TimeoutExpired:
            raise EnvironmentFailure(f"xdotool {' '.join(args)} did not finish within 15 s")
        if done.returncode != 0:
            raise EnvironmentFailure(f"xdotool {' '.join(args)} failed: "
                                     + done.stderr.decode(errors="replace"))
        return done.stdout.decode(errors="replace")

    def find_desktop(self) -> None:
        """Finds the X window of the Wine desktop and where it lies on the X screen: desktop
        coordinates, those the probe gives, are taken from its top-left corner."""
        found = self.xdotool("search", "--name", f"^{DESKTOP_NAME} - Wine desktop$").split()
        if not found:
            raise EnvironmentFailure("the Wine desktop has no X window")
        geometry = dict(line.split("=", 1) for line in
                        self.xdotool("getwindowgeometry", "--shell", found[0]).split())
        self.desktop_origin = (int(geometry["X"]), int(geometry["Y"]))

    def point(self, x: int, y: int) -> None:
        """Moves the pointer to (x, y) of the desktop. Not with --sync: xdotool would wait
        forever when the pointer is already there."""
        dx, dy = self.desktop_origin
        self.xdotool("mousemove", str(dx + x), str(dy + y))
        time.sleep(0.05)

    def click_at(self, x: int, y: int, button: int = 1) -> None:
        self.point(x, y)
        time.sleep(0.1)
        self.xdotool("click", str(button))

    def click_client(self, window: Window, cx: int, cy: int) -> None:
        ox, oy = window.client_origin
        self.click_at(ox + cx, oy + cy)

    def click_logical(self, window: Window, lx: int, ly: int) -> None:
        """Clicks a point of the board picture, given in logical coordinates."""
        check(self.logical is not None, "the logical size is not known yet")
        off_x, off_y, dest_w, dest_h = fit_destination(window.client_size, self.logical,
                                                       self.always_square)
        w, h = self.logical
        self.click_client(window, off_x + int(lx * dest_w / w), off_y + int(ly * dest_h / h))

    def click_control(self, window: Window, control_id: int) -> None:
        self.click_at(*window.control(control_id).centre)

    def activate(self, window: Window) -> None:
        """Clicks the window's caption, as a person does to bring it to the front."""
        left, top, right, _ = window.rect
        self.click_at((left + right) // 2, top + 10)

    def key(self, *keys: str) -> None:
        """Presses keys (xdotool names: "Return", "3", "alt+g", "shift+a") one after another."""
        for k in keys:
            self.xdotool("key", "--clearmodifiers", k)
            time.sleep(0.12)

    def rest_pointer(self) -> None:
        """Puts the pointer where it touches none of the game's windows."""
        self.point(DESKTOP_SIZE[0] - 5, DESKTOP_SIZE[1] - 5)

    # -- the menu, read from the screen ----------------------------------------------------------

    def menu_marks(self, mnemonic: str, entries: int) -> list[bool]:
        """Opens a menu of the main window with Alt and its letter, and reads which of its
        `entries` entries (all of them, in order) carry a check mark. Wine keeps menus in the
        memory of the program that owns them, so they are read from the picture, as a person
        reads them: the entries share the popup's height evenly, and a mark is drawn in the
        column left of the texts."""
        self.key(f"alt+{mnemonic}")
        popup = self.wait_window(cls=MENU_POPUP_CLASS, timeout=10)
        picture = self.steady_screen()  # the popup is shown before it is painted
        self.key("Escape", "Escape")
        self.wait_gone(cls=MENU_POPUP_CLASS, timeout=10)
        left, top, right, bottom = popup.rect
        marks = []
        for i in range(entries):
            centre = top + (bottom - top) * (2 * i + 1) // (2 * entries)
            background = picture.pixel(right - 4, centre)
            glyph = picture.count(left + 4, centre - 4, left + 14, centre + 5,
                                  lambda p: not near(p, background, 60))
            marks.append(glyph >= 4)
        if self.shots is not None:
            self.shots.keep_image(picture.crop(left, top, right - left, bottom - top),
                                  f"menu-{mnemonic}")
        return marks

    def choose_menu(self, *letters: str) -> None:
        """Chooses a menu entry with the keyboard: Alt and the menu's letter, then the letters
        of the entries (for instance "g", "r", "2" for Graphisme > Ratio écran > 2x)."""
        self.key(f"alt+{letters[0]}")
        self.wait_window(cls=MENU_POPUP_CLASS, timeout=10)
        for letter in letters[1:]:
            self.key(letter)
        self.wait_gone(cls=MENU_POPUP_CLASS, timeout=10)


class ShotKeeper:
    """Writes each scenario's pictures into a folder, numbered in the order they were taken."""

    def __init__(self, folder: Path, scenario: str):
        self.folder, self.scenario, self.count = folder, scenario, 0
        folder.mkdir(parents=True, exist_ok=True)

    def _path(self, label: str) -> Path:
        self.count += 1
        return self.folder / f"{self.scenario}-{self.count:02d}-{label}.png"

    def keep(self, game: Game, label: str) -> None:
        picture = game.screen()
        windows = [w for w in game.snapshot().visible() if w.pid and w.size[0] > 1]
        if windows:
            right = max(w.rect[2] for w in windows)
            bottom = max(w.rect[3] for w in windows)
            picture = picture.crop(0, 0, min(right + 8, picture.width),
                                   min(bottom + 8, picture.height))
        picture.save_png(self._path(label))

    def keep_image(self, picture: Image, label: str) -> None:
        picture.save_png(self._path(label))
