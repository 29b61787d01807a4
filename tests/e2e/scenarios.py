"""What a person does with Kalvero 4 and what he must then see on screen or find on disk.

Each scenario receives a `Run`, starts the program as often as it needs with `run.game(save)`
(a fresh working directory each time, holding that save file or none) and checks with
`check`. Board positions are logical: cell (x, y), x the column from the left and y the row
from the top, 1 to 7 on the usual board; a piece's sprite lies at (30x + 6, 30y + 6).
"""

from __future__ import annotations

import random
import time
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

from harness import (BLACK, GRID_BLUE, ID_CANCEL, ID_NO, ID_YES, PLAYED, SAVE_FILE_NAME,
                     BoardView, Environment, Game, SaveFile, ShotKeeper, check,
                     decode_line_ends, near)

CELLS = 7  # the usual board: BoardSize 8

HOME = "Acceuil"
CHARACTERS = "Personnages"
STATS = "Statistiques vitales pour le Kalvero 4"
ABOUT = "À propos de..."
WARNING = "Attention"

# Controls of the dialogs, by id.
HOME_ONE_PLAYER, HOME_TWO_PLAYERS = 18004, 18005
HOME_LEVELS = (18001, 18002, 18003)
HOME_LEVEL_GROUP, HOME_CELLS, HOME_CHALLENGE = 1029, 1022, 1030
CHARACTERS_LIST, CHARACTERS_DESCRIPTION = 1031, 1032
CHARACTERS_NAME, CHARACTERS_STRATEGY = 1033, 1037
STATS_PLAYED, STATS_WON, STATS_LOST, STATS_SHARE, STATS_MODE, STATS_VERDICT = (
    1024, 1025, 1026, 1027, 1028, 1041)

ROSTER_SIZE = 14
CONFIRM_ABANDON = "La partie sera perdue si vous continuez!\nÊtes-vous sûr(e)?"
CONFIRM_HOME = ("L'acceuil n'est accessible qu'en début de partie!\nVous abandonnerez cette "
                "partie si vous continuez.\nÊtes-vous sûr(e)?")


@dataclass
class Scenario:
    name: str
    run: Callable[["Run"], None]
    doc: str
    expected_failure: str | None = None


SCENARIOS: list[Scenario] = []


def scenario(function=None, *, expected_failure: str | None = None):
    """Registers a scenario; `expected_failure` names a known fault of the game that makes
    it fail (the runner then reports it as such, and a pass as unexpected)."""
    def register(fn):
        SCENARIOS.append(Scenario(fn.__name__, fn, (fn.__doc__ or "").strip().splitlines()[0],
                                  expected_failure))
        return fn
    return register(function) if function else register


class Run:
    """One scenario's share of the environment: its games, its pictures, its deadline."""

    def __init__(self, env: Environment, name: str, deadline: float, shots: Path | None):
        self.env, self.name, self.deadline = env, name, deadline
        self.shots = ShotKeeper(shots, name) if shots else None
        self.games: list[Game] = []

    def game(self, save: bytes | SaveFile | None = None) -> Game:
        # One program at a time: whatever an earlier game left behind is ended first.
        for earlier in self.games:
            earlier.end()
        game = Game(self.env, self.env.root / "runs" / f"{self.name}-{len(self.games) + 1}",
                    self.deadline, save, self.shots)
        self.games.append(game)
        return game

    def finish(self) -> None:
        for game in self.games:
            game.end()


# --------------------------------------------------------------------------------------------
# Helpers
# --------------------------------------------------------------------------------------------

def started(run: Run, save: bytes | SaveFile | None = None, one_player: bool = True) -> Game:
    """The program started and both dialogs of the first start confirmed with Enter."""
    game = run.game(save)
    game.start()
    game.confirm_start_dialogs(one_player)
    return game


def started_against(run: Run, strategy: int, character: int) -> Game:
    """Started with a save file naming the opponent and its strategy, which the characters
    dialog proposes; both dialogs confirmed with Enter."""
    game = run.game(SaveFile.initial().with_settings(AiNumber=strategy, CharacterId=character))
    game.start()
    game.key("Return")
    shown = game.wait_window(CHARACTERS).text(CHARACTERS_STRATEGY)
    check(shown == str(strategy), f"the characters dialog proposes strategy {shown!r}, "
                                  f"not {strategy}")
    game.key("Return")
    game.wait_gone(CHARACTERS)
    game.logical = game.wait_main("the main window to take input", lambda w: w.enabled).client_size
    return game


def resting(pieces: dict[tuple[int, int], str], upside_down: bool = False) -> bool:
    """Every piece lies on the floor or on another piece (hangs from the ceiling when the
    board is shown upside down)."""
    edge, step = (1, -1) if upside_down else (CELLS, 1)
    return all(y == edge or (x, y + step) in pieces for (x, y) in pieces)


def colours(pieces: dict[tuple[int, int], str]) -> dict[str, int]:
    counted: dict[str, int] = {}
    for colour in pieces.values():
        counted[colour] = counted.get(colour, 0) + 1
    return counted


def wait_pieces(game: Game, what: str, expected: dict[str, int],
                timeout: float = 20.0) -> tuple[BoardView, dict]:
    """Waits until the board shows exactly `expected` pieces of each colour."""
    def shown(view: BoardView) -> bool:
        return colours(view.pieces(CELLS)) == expected
    view = game.wait_board(what, shown, timeout)
    return view, view.pieces(CELLS)


def stays_the_same(game: Game, pieces: dict, settle: float = 1.0) -> None:
    time.sleep(settle)
    now = game.board().pieces(CELLS)
    check(now == pieces, f"the board changed from {pieces} to {now}")


def no_window(game: Game, title: str, settle: float = 1.0) -> None:
    time.sleep(settle)
    titles = game.snapshot().titles()
    check(title not in titles, f"a window {title!r} opened: {titles}")


def answer(game: Game, title: str, button: int, text: str | None = None) -> None:
    """Answers a message box by clicking one of its buttons (Yes 6, No 7, OK 1)."""
    box = game.wait_window(title)
    if text is not None:
        shown = [t for t in box.texts() if t == text]
        check(shown != [], f"the box {title!r} shows {box.texts()}, not {text!r}")
    game.click_control(box, button)
    game.wait_gone(title)


def drop(game: Game, key: str, count: int) -> None:
    """Two players: presses a column's key and waits for the board to hold `count` pieces."""
    game.key(key)
    # The move is judged at the end of the repaint that shows it, before the program reads
    # the next key: once the piece is seen, the next key plays for the other player.
    game.wait_board(f"piece {count} after key {key!r}", lambda v: len(v.pieces(CELLS)) == count)


def sprite_in_place(view: BoardView, x: int, y: int, colour: tuple[int, int, int]) -> bool:
    """The piece of cell (x, y) is drawn within its 20 x 20 sprite at (30x + 6, 30y + 6),
    with its colour at the middle."""
    def of_piece(p):
        return near(p, colour)
    inside = view.count(30 * x + 6, 30 * y + 6, 30 * x + 26, 30 * y + 26, of_piece)
    cell = view.count(30 * x + 1, 30 * y + 1, 30 * x + 30, 30 * y + 30, of_piece)
    return inside >= 60 and cell == inside and near(view.pixel(30 * x + 16, 30 * y + 16), colour)


def red_pixels(view: BoardView, x0: int, y0: int, x1: int, y1: int) -> int:
    return view.count(x0, y0, x1, y1, lambda p: p == (255, 0, 0))


# --------------------------------------------------------------------------------------------
# Scenarios
# --------------------------------------------------------------------------------------------

@scenario
def first_start(run: Run) -> None:
    """Without a save file: home dialog, characters dialog, window, check marks, save file."""
    game = run.game()
    home = game.start()
    snap = game.snapshot()
    main = snap.main()
    check(main is not None and main.title == "Kalvero 4", f"windows: {snap.titles()}")
    check(main.size == (301, 319), f"the window is {main.size}, not 301 x 319")
    check(not main.enabled, "the main window takes input while the home dialog is open")
    check(home.owner == main.hwnd, "the home dialog does not belong to the main window")
    check([home.control(i).check for i in (HOME_ONE_PLAYER, HOME_TWO_PLAYERS)] == [1, 0],
          "'1 Joueur' is not the chosen mode")
    check([home.control(i).check for i in HOME_LEVELS] == [1, 0, 0], "'Facile' is not chosen")
    check([home.text(i) for i in (HOME_LEVEL_GROUP, *HOME_LEVELS)]
          == ["Niveau", "Facile", "Normal", "Dur"], "the level group has other labels")
    check(home.text(HOME_CELLS) == "7", f"'Cases' shows {home.text(HOME_CELLS)!r}")
    check(home.control(HOME_CHALLENGE).check == 0, "'Challenge' is checked")
    game.shot("home")

    game.key("Return")
    characters = game.wait_window(CHARACTERS)
    listed = characters.control(CHARACTERS_LIST)
    check(len(listed.items) == ROSTER_SIZE and listed.selection == 0,
          f"the list holds {listed.items} with {listed.selection} selected")
    check(characters.text(CHARACTERS_STRATEGY) == "0", "the strategy number is not 0")
    check(characters.text(CHARACTERS_NAME) == "<Votre nom>", "the name is not '<Votre nom>'")
    check(characters.text(CHARACTERS_DESCRIPTION).startswith("Sélectionnez un personnage"),
          f"the description area shows {characters.text(CHARACTERS_DESCRIPTION)!r}")
    check(game.snapshot().one(HOME) is None, "the home dialog is still open")
    game.shot("characters")

    game.key("Return")
    game.wait_gone(CHARACTERS)
    main = game.main()
    check(main.enabled and main.size == (301, 319), f"the main window: {main}")
    game.logical = main.client_size
    view = game.board(main)
    for k in range(1, CELLS + 2):
        check(view.pixel(30 * k, 135) == GRID_BLUE and view.pixel(135, 30 * k) == GRID_BLUE,
              f"board line {k} is not drawn in RGB(0,192,255)")
    check(view.pieces(CELLS) == {} and view.fills(CELLS) == {}, "the new board is not empty")
    game.shot("board")

    graphics = game.menu_marks("g", 5)
    check(graphics == [True, True, False, True, False],
          f"Images, Couleurs perso, Lissage, Troujours carré, Ratio: marks {graphics}")
    menu = game.menu_marks("m", 6)
    check(menu == [False] * 6, f"the entries of 'Menu' carry marks {menu}")

    game.key("alt+F4")
    check(game.wait_exit() == 0, "the program did not end with status 0")
    expected = SaveFile.initial()
    expected.stats[0][PLAYED] = 1
    written = game.save_bytes()
    check(len(written) == 1142, f"the save file has {len(written)} bytes, not 1142")
    check(written == expected.stored(),
          "the save file differs from the first run's: "
          + "; ".join(SaveFile.from_stored(written).difference(expected)))


@scenario
def home_cancel(run: Run) -> None:
    """"Pas OK" in the home dialog ends the program without writing a save file."""
    game = run.game()
    home = game.start()
    game.click_control(home, ID_CANCEL)
    check(game.wait_exit() == 0, "the program did not end with status 0")
    check(not (game.workdir / SAVE_FILE_NAME).exists(), "a save file was written")


@scenario
def saved_settings(run: Run) -> None:
    """A save file's settings: board 14 x 14, discreet title, letters, no fixed ratio, name."""
    save = SaveFile.initial().with_settings(BoardSize=15, NormalTitle=0, ShowImages=0, Level=1,
                                            AlwaysSquare=0, CharacterId=5, AiNumber=5)
    save.name = "Zoé".encode("cp1252").ljust(26, b"\0")
    save.stats[21] = [4, 1, 2, 0, 0, 0]
    save.settings[50] = 123456
    game = run.game(save)
    home = game.start()
    main = game.snapshot().main()
    check(main.title == "C:\\", f"the discreet title is {main.title!r}")
    check(main.size == (511, 529), f"a 14-cell board gives a window of {main.size}")
    check(home.text(HOME_CELLS) == "14", f"'Cases' shows {home.text(HOME_CELLS)!r}")
    check([home.control(i).check for i in HOME_LEVELS] == [0, 1, 0], "'Normal' is not chosen")
    game.key("Return")
    characters = game.wait_window(CHARACTERS)
    check(characters.control(CHARACTERS_LIST).selection == 5, "character 5 is not selected")
    check(characters.text(CHARACTERS_NAME) == "Zoé", f"the name shows "
                                                      f"{characters.text(CHARACTERS_NAME)!r}")
    check(characters.text(CHARACTERS_STRATEGY) == "5", "the strategy number is not 5")
    game.key("Return")
    game.wait_gone(CHARACTERS)
    main = game.main()
    check(main.size == (511, 529), f"the window is {main.size} after the dialogs")
    game.shot("board")
    check(game.menu_marks("g", 5)[:4] == [False, True, False, False],
          "Images, Couleurs perso, Lissage, Troujours carré are not as saved")
    check(game.menu_marks("m", 6)[3], "'Discretos' is not checked")
    game.key("q")
    check(game.wait_exit() == 0, "'Q' did not end the program")
    expected = SaveFile.from_stored(save.stored())
    expected.stats[21][PLAYED] += 1  # strategy 5 at Normal: the game started and left unplayed
    found = game.save_file()
    check(found.difference(expected) == [], "; ".join(found.difference(expected)))


@scenario
def move_by_mouse_and_key(run: Run) -> None:
    """A click in column 3, then the key "3": green pieces there, each with a red reply."""
    game = started(run)
    main = game.main()
    game.click_logical(main, 95, 150)
    view, pieces = wait_pieces(game, "the click's piece and the reply", {"green": 1, "red": 1})
    check(pieces.get((3, 7)) == "green", f"the clicked column shows {pieces}")
    check(sprite_in_place(view, 3, 7, (0, 255, 0)), "the green sprite is not at (96, 216)")
    (rx, ry), = [cell for cell, c in pieces.items() if c == "red"]
    check(sprite_in_place(view, rx, ry, (255, 0, 0)), f"the red sprite of cell {(rx, ry)} is "
                                                      "not in its place")
    check(resting(pieces), f"a piece floats: {pieces}")
    check(red_pixels(view, 231, 248, 320, 268) == 0, "'Challenge' is shown at Facile")
    game.shot("click")

    game.key("3")
    view, pieces = wait_pieces(game, "the key's piece and the reply", {"green": 2, "red": 2})
    column = sorted(y for (x, y), c in pieces.items() if x == 3 and c == "green")
    check(len(column) == 2 and column[1] == 7, f"column 3 does not hold both green pieces: "
                                                f"{pieces}")
    check(resting(pieces), f"a piece floats: {pieces}")
    game.shot("key")

    # "9" names no column of a 7-column board and "8" the column that does not exist.
    game.key("9", "8", "0")
    stays_the_same(game, pieces)


@scenario
def two_players_marked_lines(run: Run) -> None:
    """Two players chosen in the home dialog: a won line on sky-blue, then one on gold."""
    game = run.game()
    home = game.start()
    game.click_control(home, HOME_TWO_PLAYERS)
    home = game.wait_window(HOME, where=lambda h: h.text(HOME_LEVEL_GROUP) == "Stats",
                            what="the two-player labels")
    check([home.text(i) for i in HOME_LEVELS] == ["Case 1", "Case 2", "Case 3"],
          f"the level group reads {[home.text(i) for i in HOME_LEVELS]}")
    game.shot("two-players")
    game.confirm_start_dialogs(one_player=False)

    # Player 1 (green) fills column 1 while player 2 (red) plays column 2.
    for count, key in enumerate("1212121", start=1):
        drop(game, key, count)
    view = game.wait_board("the sky-blue line", lambda v: len(v.fills(CELLS)) == 4)
    fills = view.fills(CELLS)
    check(fills == {(1, y): "sky" for y in (4, 5, 6, 7)}, f"marked cells: {fills}")
    check(all(view.piece(1, y) == "green" for y in (4, 5, 6, 7)),
          "the winning line's pieces are not green")
    check(view.pixel(1 * 30 + 3, 4 * 30 + 3) == (0, 160, 255), "the mark is not RGB(0,160,255)")
    game.shot("player-1-won")

    game.key("5")  # after a result, a key starts the next game without playing
    game.wait_board("the new game's empty board",
                    lambda v: v.pieces(CELLS) == {} and v.fills(CELLS) == {})
    for count, key in enumerate("12121232", start=1):
        drop(game, key, count)
    view = game.wait_board("the gold line", lambda v: len(v.fills(CELLS)) == 4)
    fills = view.fills(CELLS)
    check(fills == {(2, y): "gold" for y in (4, 5, 6, 7)}, f"marked cells: {fills}")
    check(all(view.piece(2, y) == "red" for y in (4, 5, 6, 7)),
          "the winning line's pieces are not red")
    check(view.pixel(2 * 30 + 3, 4 * 30 + 3) == (255, 210, 0), "the mark is not RGB(255,210,0)")
    game.shot("player-2-won")

    game.key("alt+F4")
    check(game.wait_exit() == 0, "the program did not end with status 0")
    stats = game.save_file().stats
    # The first game began before the home dialog chose two players, so it was counted as
    # played for one player; its win counts where the settings were when the second game
    # began, in the first two-player section, which also counts that second game as played.
    # The second game's win would count only when a third one began.
    check(stats[0][:3] == [1, 0, 0], f"one player, strategy 0, Facile: {stats[0][:3]}")
    check(stats[56][:3] == [1, 1, 0], f"two-player section 1: {stats[56][:3]}")


@scenario
def challenge_in_red(run: Run) -> None:
    """"Challenge" in red under the board at Dur; gone after choosing "Normal" again."""
    game = run.game(SaveFile.initial().with_settings(Level=2, Challenge=1))
    home = game.start()
    check(home.control(HOME_CHALLENGE).check == 1 and home.control(HOME_LEVELS[2]).check == 1,
          "the home dialog does not show 'Dur' with 'Challenge'")
    game.confirm_start_dialogs()
    view = game.board()
    red = red_pixels(view, 231, 248, 320, 268)
    check(red >= 15, f"'Challenge' at (231, 248) has {red} pixels of RGB(255,0,0)")
    check(red_pixels(view, 231, 248, 240, 268) > 0, "the 'C' of 'Challenge' is not at x = 231")
    check(red_pixels(view, 0, 240, 231, 268) == 0 and red_pixels(view, 231, 230, 320, 248) == 0,
          "red pixels left of or above 'Challenge'")
    check(view.count(0, 248, 60, 268, lambda p: near(p, (255, 128, 0), 30)) > 10,
          "no orange status line")
    game.shot("challenge")

    game.key("a")
    home = game.wait_window(HOME)
    game.click_control(home, HOME_LEVELS[1])  # "Normal" does not allow the challenge
    box = game.wait_window("Mince alors!")
    check("Le challenge n'est applicable qu'en mode 1 joueur dur." in box.texts(),
          f"the challenge message reads {box.texts()}")
    game.key("Return")
    game.wait_gone("Mince alors!")
    check(game.wait_window(HOME).control(HOME_CHALLENGE).check == 0,
          "'Challenge' stays checked with 'Normal'")
    game.confirm_start_dialogs()
    view = game.wait_board("the board without 'Challenge'",
                           lambda v: red_pixels(v, 231, 248, 320, 268) == 0)
    game.shot("normal")


@scenario
def upside_down_board(run: Run) -> None:
    """Strategy 13 shows the board upside down: the pieces hang from the top row."""
    game = started_against(run, strategy=13, character=13)
    game.key("1")
    view, pieces = wait_pieces(game, "the piece and the reply", {"green": 1, "yellow": 1})
    check(pieces.get((1, 1)) == "green", f"column 1's piece is not in the top row: {pieces}")
    check(resting(pieces, upside_down=True), f"a piece does not hang from the top: {pieces}")
    game.shot("upside-down")


@scenario
def hidden_letters(run: Run) -> None:
    """Strategy 12 with "&Images" off (key I): the human's X shows, the computer's pieces not."""
    game = started_against(run, strategy=12, character=0)
    game.key("4")
    _, pieces = wait_pieces(game, "the piece and the reply as sprites", {"green": 1, "red": 1})
    check(pieces.get((4, 7)) == "green", f"column 4 does not hold the piece: {pieces}")
    game.shot("images")

    game.key("i")
    view, letters = wait_pieces(game, "letters without the computer's", {"green": 1})
    check(letters == {(4, 7): "green"}, f"shown with letters: {letters}")
    letter = view.count(4 * 30 + 2, 7 * 30 + 2, 4 * 30 + 29, 7 * 30 + 29,
                        lambda p: near(p, (0, 255, 0), 60))
    check(letter < 150, f"the X letter looks like a sprite ({letter} green pixels)")
    game.shot("letters")

    game.key("i")
    _, again = wait_pieces(game, "the sprites again", {"green": 1, "red": 1})
    check(again == pieces, f"the pieces moved: {pieces} became {again}")


@scenario
def restart_confirmation(run: Run) -> None:
    """"&Recommencer" (R) asks only mid-game: No (also to "&Acceuil") keeps it, Yes loses it."""
    game = started(run)
    game.key("r")
    no_window(game, WARNING)

    game.key("4")
    _, pieces = wait_pieces(game, "the piece and the reply", {"green": 1, "red": 1})
    game.key("r")
    answer(game, WARNING, ID_NO, CONFIRM_ABANDON)
    stays_the_same(game, pieces, settle=0.5)
    game.key("a")  # the home dialog would abandon the game too: No keeps it as well
    answer(game, "Déception", ID_NO, CONFIRM_HOME)
    no_window(game, HOME, settle=0.5)
    stays_the_same(game, pieces, settle=0)
    game.shot("kept")

    game.key("r")
    answer(game, WARNING, ID_YES, CONFIRM_ABANDON)
    game.wait_board("the cleared board", lambda v: v.pieces(CELLS) == {})
    game.shot("restarted")

    game.key("q")  # no piece in the new game: no question
    check(game.wait_exit() == 0, "'Q' did not end the program")
    record = game.save_file().stats[0]
    check(record[:3] == [2, 0, 1], f"played, won, lost: {record[:3]}, expected [2, 0, 1]")


STATS_CASES = [
    # (settings, record, counters in the file, texts shown, verdict)
    ({}, 0, (3, 1, 2),
     ["Parties jouées:\t 4", "Parties gagnées:\t 1", "Parties perdues:\t 2",
      "Moyennant:\t\t 33.33%", "1 joueurs (section 1)"], "A la limite. Ca va mieux!"),
    ({"GameMode": 2, "Level": 2}, 58, (20, 19, 1),
     ["Parties jouées:\t 21", "Parties gagnées:\t 19", "Parties perdues:\t 1",
      "Moyennant:\t\t 95.00%", "2 joueurs (section 59)"], "Cherche toi un autre adversaire!"),
    ({"AiNumber": 3, "CharacterId": 3, "Level": 2, "Challenge": 1}, 15, (4, 0, 0),
     ["Parties jouées:\t 5", "Parties gagnées:\t 0", "Parties perdues:\t 0",
      "Moyennant:\t\t 0.00%", "1 joueurs (section 16)"], "Vraiment nul!"),
]


@scenario
def statistics_dialog(run: Run) -> None:
    """"&Stats" (S) shows the counters of the current settings, the share and the verdict."""
    for settings, record, counters, texts, verdict in STATS_CASES:
        save = SaveFile.initial().with_settings(**settings)
        save.stats[record][:3] = counters
        game = started(run, save, one_player=settings.get("GameMode", 1) == 1)
        game.key("s")
        dialog = game.wait_window(STATS)
        shown = [dialog.text(i) for i in (STATS_PLAYED, STATS_WON, STATS_LOST, STATS_SHARE,
                                          STATS_MODE)]
        check(shown == texts, f"{settings}: the dialog shows {shown}, expected {texts}")
        check(dialog.text(STATS_VERDICT) == verdict,
              f"{settings}: the verdict is {dialog.text(STATS_VERDICT)!r}, not {verdict!r}")
        game.shot(f"section-{record + 1}")
        game.key("Escape")  # does not close it
        time.sleep(0.5)
        check(game.snapshot().one(STATS) is not None, "Escape closed the statistics dialog")
        game.key("Return")
        game.wait_gone(STATS)


@scenario
def accelerators(run: Run) -> None:
    """The keys A, S, D, O, I, C, E, T, R and Q do what their menu entries do; Shift+A not."""
    game = started(run)
    game.key("shift+a")
    no_window(game, HOME)

    game.key("a")
    game.wait_window(HOME)
    game.confirm_start_dialogs()
    game.key("s")
    game.wait_window(STATS)
    game.key("Return")
    game.wait_gone(STATS)
    game.key("d")
    about = game.wait_window(ABOUT)
    check("KALVERO QUATRE v 5" in about.texts(), f"the about box shows {about.texts()}")
    game.shot("about")
    game.key("Escape")
    game.wait_gone(ABOUT)
    game.key("o")
    notice = game.wait_window(WARNING)
    check(any("prochaine ouverture du programme" in t for t in notice.texts()),
          f"'Discretos' tells {notice.texts()}")
    game.key("Return")
    game.wait_gone(WARNING)
    game.activate(game.main())  # the notice has no owner: the main window takes the keys again

    game.key("i", "c", "e", "t")
    graphics = game.menu_marks("g", 5)
    check(graphics[:4] == [False, False, True, False],
          f"after I, C, E, T the marks are {graphics[:4]}")
    check(game.menu_marks("m", 6)[3], "'Discretos' is not checked after O")

    game.key("r")
    no_window(game, WARNING)
    game.key("4")
    wait_pieces(game, "the piece and the reply as letters", {"green": 1, "red": 1})
    game.shot("letters")
    game.key("r")
    answer(game, WARNING, ID_NO, CONFIRM_ABANDON)
    game.key("q")
    answer(game, WARNING, ID_YES, CONFIRM_ABANDON)
    check(game.wait_exit() == 0, "'Q' did not end the program")
    save = game.save_file()
    settings = {name: save.settings[slot] for name, slot in
                [("NormalTitle", 9), ("ShowImages", 1), ("CustomColours", 5), ("Smoothing", 2),
                 ("AlwaysSquare", 10)]}
    check(settings == {"NormalTitle": 0, "ShowImages": 0, "CustomColours": 0, "Smoothing": 1,
                       "AlwaysSquare": 0}, f"saved settings: {settings}")
    check(save.stats[0][:3] == [2, 0, 1], f"played, won, lost: {save.stats[0][:3]}")


@scenario
def screen_ratio_and_margins(run: Run) -> None:
    """"&2x" grows the window by one picture; "Troujours carré" keeps black margins."""
    game = started(run)
    w, h = game.logical
    game.choose_menu("g", "r", "2")
    main = game.wait_main("the window at 2x", lambda m: m.size == (301 + w, 319 + h))
    check(main.client_size == (2 * w, 2 * h), f"the client area is {main.client_size}")
    view = game.wait_board("the picture stretched to twice its size",
                           lambda v: v.pixel(30, 135) == GRID_BLUE)
    client = view.client
    check(client.pixel(61, 270) == GRID_BLUE and client.pixel(31, 270) != GRID_BLUE,
          "the first board line is not at twice its place")
    game.shot("ratio-2x")

    # Dragging the right edge makes the window wide: the picture keeps its shape, centred
    # between black margins.
    left, top, right, bottom = main.rect
    game.point(right - 2, (top + bottom) // 2)
    game.xdotool("mousedown", "1")
    for x in range(right + 50, right + 301, 50):
        game.point(x, (top + bottom) // 2)
        time.sleep(0.05)
    game.xdotool("mouseup", "1")
    main = game.wait_main("the wider window", lambda m: m.size[0] >= right - left + 200)
    game.rest_pointer()
    view = game.wait_board("black margins", lambda v: v.off_x > 20 and
                           v.client.pixel(v.off_x // 2, v.client.height - 5) == BLACK)
    cw, ch = main.client_size
    for x in (view.off_x // 2, cw - view.off_x // 2):
        check(view.client.pixel(x, ch - 5) == BLACK, f"the margin at x = {x} is not black")
    check(view.pixel(100, h - 3) != BLACK, "the picture itself is black at its bottom")
    game.shot("margins")

    game.key("t")
    game.always_square = False
    view = game.wait_board("the picture stretched over the whole width",
                           lambda v: v.client.pixel(5, ch - 5) != BLACK)
    check(view.pixel(30, 135) == GRID_BLUE, "the stretched picture has no board line at 30")
    game.shot("stretched")


def damaged(seed: int, size: int) -> bytes:
    generator = random.Random(seed)
    return bytes(generator.randrange(256) for _ in range(size))


DAMAGED_FILES = [
    # (what, file on disk)
    ("empty", b""),
    ("short", damaged(1, 200)),
    ("out of range", SaveFile.initial().with_settings(
        BoardSize=99, ShowImages=7, Smoothing=-1, Level=3, GameMode=0, CustomColours=2,
        AiNumber=14, Challenge=5, CharacterId=-1, NormalTitle=3, AlwaysSquare=9).stored()),
    ("garbage", damaged(2, 3000)),
]


def as_read(stored: bytes) -> SaveFile:
    """The content the program takes from a file: what the file holds, as far as it goes,
    over the presets (zeros, slot 10 at 1, the name "<Votre nom>")."""
    presets = SaveFile()
    presets.settings[10] = 1
    content = bytearray(presets.content())
    data = decode_line_ends(stored)[:len(content)]
    content[:len(data)] = data
    return SaveFile.from_content(bytes(content))


def settings_in_range(save: SaveFile) -> list[str]:
    ranges = {"BoardSize": (2, 20), "ShowImages": (0, 1), "Smoothing": (0, 1), "Level": (0, 2),
              "GameMode": (1, 2), "CustomColours": (0, 1), "AiNumber": (0, 13),
              "Challenge": (0, 1), "CharacterId": (0, 13), "NormalTitle": (0, 1),
              "AlwaysSquare": (0, 1)}
    return [f"{name} = {save.settings[i]}" for i, (name, (low, high)) in enumerate(ranges.items())
            if not low <= save.settings[i] <= high]


@scenario
def largest_board_challenge(run: Run) -> None:
    """19 x 19 at Dur with Challenge: the computer's six-ply reply follows the click at once."""
    cells = 19
    game = started(run, SaveFile.initial().with_settings(BoardSize=cells + 1, Level=2,
                                                          Challenge=1))
    main = game.main()
    check(main.size == (30 * (cells + 1) + 61, 30 * (cells + 1) + 79),
          f"the window is {main.size} for {cells} cells")
    clicked = time.monotonic()
    game.click_logical(main, 30 * 10 + 15, 300)
    # The straightforward look-ahead needs about a minute here: a reply within the bounded wait
    # shows that the game plays with the fast one.
    view = game.wait_board("the reply on the largest board",
                           lambda v: colours(v.pieces(cells)) == {"green": 1, "red": 1}, 20.0)
    run.env.log(f"e2e: largest_board_challenge: reply shown {time.monotonic() - clicked:.2f} s "
                "after the click")
    check(view.pieces(cells).get((10, cells)) == "green", "the clicked column 10 holds no piece")
    game.shot("reply")


@scenario
def damaged_save_files(run: Run) -> None:
    """Empty, short, out-of-range and garbage save files: the program starts as usual."""
    for what, stored in DAMAGED_FILES:
        game = run.game(stored)
        home = game.start()
        cells = int(home.text(HOME_CELLS))
        main = game.snapshot().main()
        check(main.size == (30 * (cells + 1) + 61, 30 * (cells + 1) + 79),
              f"{what}: a window of {main.size} for {cells} cells")
        # Whatever the file held, Enter leads through the dialogs to the board.
        for _ in range(6):
            game.key("Return")
            time.sleep(0.5)
            snap = game.snapshot()
            main = snap.main()
            if main is not None and main.enabled and len(snap.visible()) == 1:
                break
        check(main is not None and main.enabled and len(snap.visible()) == 1,
              f"{what}: Enter does not lead through the dialogs: {snap.titles()}")
        game.shot(what.replace(" ", "-"))
        game.key("alt+F4")
        check(game.wait_exit() == 0, f"{what}: the program did not end with status 0")
        found = game.save_file()
        check(settings_in_range(found) == [], f"{what}: saved {settings_in_range(found)}")
        # What the program has no reason to change comes back as it was read: slots 11 to
        # 98 and the counters, but for the game that began at start, counted as played in
        # the record of the settings in use (the dialogs were confirmed without a change).
        read = as_read(stored)
        check(found.settings[11:] == read.settings[11:], f"{what}: slots 11 to 98 changed")
        section = (4 * found.settings[6] + found.settings[3] + found.settings[7]
                   + 56 * (found.settings[4] - 1))
        for r in range(60):
            expected = list(read.stats[r])
            if r == section:
                expected[PLAYED] = (expected[PLAYED] + 1) & 0xFFFF
            check(found.stats[r] == expected,
                  f"{what}: record {r} is {found.stats[r]}, expected {expected}")
