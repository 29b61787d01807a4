"""What a person does with Kalvero 4 and what he must then see on screen or find on disk."""

import random
import time
from collections import Counter

import pytest
from desktop import (BLACK, GRID_BLUE, HOME, MAIN, MENU, PIECES, SAVE_NAME, SIZE, cells, colours,
                     count, fit, mark, near, piece, wait)
from savefile_layout import PLAYED, SLOT, SaveFile

CELLS, STATS, WARNING = 7, "Statistiques vitales pour le Kalvero 4", "Attention"
ID_OK, ID_CANCEL, ID_YES, ID_NO = 1, 2, 6, 7
ONE_PLAYER, TWO_PLAYERS, LEVELS = 18004, 18005, (18001, 18002, 18003)
LEVEL_GROUP, HOME_CELLS, CHALLENGE = 1029, 1022, 1030
LIST, DESCRIPTION, NAME, STRATEGY = 1031, 1032, 1033, 1037
ABANDON = "La partie sera perdue si vous continuez!\nÊtes-vous sûr(e)?"
ABANDON_FOR_HOME = ("L'acceuil n'est accessible qu'en début de partie!\nVous abandonnerez "
                    "cette partie si vous continuez.\nÊtes-vous sûr(e)?")
CHALLENGE_BOX = (231, 248, 320, 268)  # where "Challenge" is written on the usual board


def window_size(size):
    return 30 * size + 91, 30 * size + 109


def resting(pieces, upside_down=False) -> bool:
    """Every piece lies on the floor or on another piece (hangs from the top, upside down)."""
    edge, step = (1, -1) if upside_down else (CELLS, 1)
    return all(y == edge or (x, y + step) in pieces for x, y in pieces)


def wait_pieces(game, what, expected: dict, size=CELLS):
    """Waits until the board shows exactly `expected` pieces of each colour."""
    board = game.wait_board(what, lambda b: Counter(cells(b, size).values()) == expected)
    return board, cells(board, size)


def unchanged(game, pieces, title=None, settle=1.0) -> None:
    """After a while, the board still shows those pieces and no window `title` opened."""
    time.sleep(settle)
    assert cells(game.board(), CELLS) == pieces and (title is None or not game.find(title))


def answer(game, title, button, text) -> None:
    """Reads a message box's text and clicks one of its buttons."""
    box = game.window(title)
    assert text in [c.text for c in box.controls]
    game.click_control(box, button)
    game.gone(title)


def red(board, box=CHALLENGE_BOX) -> int:
    return count(board, box, lambda p: p == PIECES["red"])


def in_place(board, x, y, colour) -> bool:
    """The piece of cell (x, y) lies within its 20 x 20 sprite, its colour at the middle."""
    inside, cell = (count(board, (30 * x + a, 30 * y + a, 30 * x + b, 30 * y + b),
                          lambda p: near(p, colour)) for a, b in ((6, 26), (1, 30)))
    middle = board.getpixel((30 * x + 16, 30 * y + 16))
    return inside >= 60 and cell == inside and near(middle, colour)


SAVED = SaveFile.initial(BoardSize=15, NormalTitle=0, ShowImages=0, Level=1, AlwaysSquare=0,
                         CharacterId=5, AiNumber=5)
SAVED.name, SAVED.stats[21], SAVED.settings[50] = "Zoé".encode("cp1252"), [4, 1, 2, 0, 0, 0], 1234


@pytest.mark.parametrize("save, title, name, graphics, discreet, close, record", [
    (None, "Kalvero 4", "<Votre nom>", [True, True, False, True], False, "alt+F4", 0),
    (SAVED, "C:\\", "Zoé", [False, True, False, False], True, "q", 21)],
    ids=["first-start", "saved-settings"])
def test_start_and_close(game, save, title, name, graphics, discreet, close, record):
    """Dialogs, window, check marks and the file written at exit, without and with a save."""
    expected = SaveFile.from_stored((save or SaveFile.initial()).stored())
    size, level = expected.setting("BoardSize") - 1, expected.setting("Level")
    home = game.start(save)
    main = game.main()
    assert (main.title, main.size, main.enabled, home.owner) == (
        title, window_size(size), False, main.hwnd)
    assert [home.control(i).check for i in (ONE_PLAYER, TWO_PLAYERS, *LEVELS, CHALLENGE)] == [
        1, 0, *(int(i == level) for i in range(3)), 0]
    assert [home.text(i) for i in (LEVEL_GROUP, *LEVELS, HOME_CELLS)] == [
        "Niveau", "Facile", "Normal", "Dur", str(size)]
    characters = game.confirm()
    listed = characters.control(LIST)
    assert (listed.items, listed.selection) == (14, expected.setting("CharacterId"))
    assert [characters.text(i) for i in (STRATEGY, NAME)] == [
        str(expected.setting("AiNumber")), name]
    assert characters.text(DESCRIPTION).startswith("Sélectionnez un personnage")
    board = game.board()
    for k in range(1, size + 2):
        assert board.getpixel((30 * k, 135)) == board.getpixel((135, 30 * k)) == GRID_BLUE, k
    assert cells(board, size) == cells(board, size, mark) == {}
    # Images, Couleurs perso, Lissage, Troujours carré, Ratio écran; Discretos in Menu.
    assert game.menu_marks("g", 5) == graphics + [False]
    assert game.menu_marks("m", 6) == [False, False, False, discreet, False, False]
    game.key(close)
    assert game.exit_status() == 0
    expected.stats[record][PLAYED] += 1  # the game begun at start, left unplayed
    assert (game.work / SAVE_NAME).read_bytes() == expected.stored()


def test_home_cancelled_writes_no_file(game):
    game.click_control(game.start(), ID_CANCEL)
    assert game.exit_status() == 0 and not (game.work / SAVE_NAME).exists()


def test_background_then_move_by_mouse_and_key(game):
    """Empty cells black above the middle, (0, 0, 187) below; column 3 by click, then by key."""
    game.play()
    assert tuple(game.main().client) == game.logical  # shown pixel for pixel
    board, half = game.board(), game.logical[1] / 2
    for y in range(1, CELLS + 1):
        expected = BLACK if 30 * y + 30 <= half else (0, 0, 187) if 30 * y >= half else None
        for x in range(1, CELLS + 1):
            shown = colours(board, (30 * x + 1, 30 * y + 1, 30 * x + 30, 30 * y + 30))
            assert expected is None or set(shown) == {expected}, f"cell {(x, y)}: {shown}"
    game.click_board(game.main(), 95, 150)
    board, pieces = wait_pieces(game, "the click's piece and the reply", {"green": 1, "red": 1})
    reply = next(cell for cell, colour in pieces.items() if colour == "red")
    assert pieces[(3, 7)] == "green" and in_place(board, 3, 7, PIECES["green"])
    assert in_place(board, *reply, PIECES["red"]) and resting(pieces)
    assert red(board) == 0, "'Challenge' is shown at Facile"
    game.key("3")
    _, pieces = wait_pieces(game, "the key's piece and the reply", {"green": 2, "red": 2})
    greens = [y for (x, y), colour in pieces.items() if x == 3 and colour == "green"]
    assert len(greens) == 2 and 7 in greens and resting(pieces)  # a reply may lie between
    game.key("9", "8", "0")  # no column of a 7-column board
    unchanged(game, pieces)


def test_two_players_marked_lines(game):
    """Two players: a won line on sky blue, then one on gold."""
    game.click_control(game.start(), TWO_PLAYERS)
    home = game.window(HOME, where=lambda h: h.text(LEVEL_GROUP) == "Stats")
    assert [home.text(i) for i in LEVELS] == ["Case 1", "Case 2", "Case 3"]
    game.confirm(one_player=False)
    for keys, column, fill, colour in [("1212121", 1, "sky", "green"),
                                       ("12121232", 2, "gold", "red")]:
        if column == 2:
            game.key("5")  # after a result, a key starts the next game without playing
            game.wait_board("an empty board", lambda b: not cells(b, CELLS, mark))
        for n, key in enumerate(keys, start=1):
            game.key(key)  # the next key plays for the other player once the piece is seen
            game.wait_board(f"piece {n}", lambda b: len(cells(b, CELLS)) == n)
        board = game.wait_board("the line", lambda b: len(cells(b, CELLS, mark)) == 4)
        assert cells(board, CELLS, mark) == {(column, y): fill for y in (4, 5, 6, 7)}
        assert [piece(board, column, y) for y in (4, 5, 6, 7)] == [colour] * 4


def test_challenge_in_red(game):
    """"Challenge" in red under the board at Dur; gone after choosing "Normal" again."""
    home = game.start(SaveFile.initial(Level=2, Challenge=1))
    assert home.control(CHALLENGE).check == home.control(LEVELS[2]).check == 1
    game.confirm()
    board = game.board()
    assert red(board) >= 15 and red(board, (231, 248, 240, 268)) > 0, "no 'C' at x = 231"
    assert red(board, (0, 240, 231, 268)) == red(board, (231, 230, 320, 248)) == 0
    assert count(board, (0, 248, 60, 268), lambda p: near(p, (255, 128, 0), 30)) > 10, "status"
    game.key("a")
    game.click_control(game.window(HOME), LEVELS[1])
    answer(game, "Mince alors!", ID_OK, "Le challenge n'est applicable qu'en mode 1 joueur dur.")
    assert game.window(HOME).control(CHALLENGE).check == 0
    game.confirm()
    game.wait_board("no 'Challenge'", lambda b: red(b) == 0)


@pytest.mark.parametrize("strategy, character, key, cell, reply", [
    (13, 13, "1", (1, 1), "yellow"), (12, 0, "4", (4, 7), "red")], ids=["13", "12"])
def test_strategy_variant(game, strategy, character, key, cell, reply):
    """13: the board upside down. 12, "&Images" off (I): the human's X, not the computer's."""
    game.play(SaveFile.initial(AiNumber=strategy, CharacterId=character))
    game.key(key)
    _, pieces = wait_pieces(game, "the piece and the reply", {"green": 1, reply: 1})
    assert pieces[cell] == "green" and resting(pieces, upside_down=strategy == 13)
    if strategy == 12:
        game.key("i")
        board, letters = wait_pieces(game, "letters, not the computer's", {"green": 1})
        assert letters == {cell: "green"}
        green = count(board, (122, 212, 149, 239), lambda p: near(p, PIECES["green"], 60))
        assert green < 150, "the X looks like a sprite"
        game.key("i")
        assert wait_pieces(game, "the sprites again", {"green": 1, "red": 1})[1] == pieces


def test_restart_asks_only_mid_game(game):
    """R asks mid-game: No (also to A) keeps the game, Yes loses it; Q asks nothing after."""
    game.play()
    game.key("4")
    _, pieces = wait_pieces(game, "the piece and the reply", {"green": 1, "red": 1})
    game.key("r")
    answer(game, WARNING, ID_NO, ABANDON)
    unchanged(game, pieces, settle=0.5)
    game.key("a")  # the home dialog would abandon the game too
    answer(game, "Déception", ID_NO, ABANDON_FOR_HOME)
    unchanged(game, pieces, HOME, settle=0.5)
    game.key("r")
    answer(game, WARNING, ID_YES, ABANDON)
    game.wait_board("the cleared board", lambda b: cells(b, CELLS) == {})
    game.key("q")  # no piece in the new game: no question
    assert game.exit_status() == 0 and game.saved().stats[0][:3] == [2, 0, 1]


@pytest.mark.parametrize("settings, record, counters, share, verdict", [
    ({}, 0, [3, 1, 2], "33.33%", "A la limite. Ca va mieux!"),
    ({"GameMode": 2, "Level": 2}, 58, [20, 19, 1], "95.00%", "Cherche toi un autre adversaire!")],
    ids=["one-player", "two-players"])
def test_statistics_dialog(game, settings, record, counters, share, verdict):
    """S shows the counters in use; Escape does not close the dialog, Enter does."""
    save = SaveFile.initial(**settings)
    save.stats[record][:3] = counters
    players = settings.get("GameMode", 1)
    game.play(save, one_player=players == 1)
    game.key("s")
    dialog = game.window(STATS)
    assert [dialog.text(i) for i in (1024, 1025, 1026, 1027, 1028, 1041)] == [
        f"Parties jouées:\t {counters[0] + 1}", f"Parties gagnées:\t {counters[1]}",
        f"Parties perdues:\t {counters[2]}", f"Moyennant:\t\t {share}",
        f"{players} joueurs (section {record + 1})", verdict]
    game.key("Escape")
    time.sleep(0.5)
    assert game.find(STATS), "Escape closed the statistics dialog"
    game.key("Return")
    game.gone(STATS)


def test_accelerators(game):
    """The keys A, D, O, I, C, E, T and Q do what their menu entries do; Shift+A not."""
    game.play()
    game.key("shift+a")
    unchanged(game, {}, HOME)
    game.key("a")
    game.window(HOME)
    game.confirm()
    for key, title, text, close in [
            ("d", "À propos de...", "KALVERO QUATRE v 5", "Escape"),
            ("o", WARNING, "Les changements seront pris en compte à la prochaine ouverture du "
                           "programme.", "Return")]:
        game.key(key)
        assert text in [c.text for c in game.window(title).controls]
        game.key(close)
        game.gone(title)
    game.activate(game.main())  # the notice has no owner: the main window takes the keys again
    game.key("i", "c", "e", "t")
    assert game.menu_marks("g", 5)[:4] == [False, False, True, False]
    assert game.menu_marks("m", 6)[3], "'Discretos' is not checked after O"
    game.key("4")
    wait_pieces(game, "the piece and the reply as letters", {"green": 1, "red": 1})
    game.key("q")  # mid-game, it asks
    answer(game, WARNING, ID_YES, ABANDON)
    assert game.exit_status() == 0
    assert [game.saved().setting(s) for s in ("NormalTitle", "ShowImages", "CustomColours",
                                             "Smoothing", "AlwaysSquare")] == [0, 0, 0, 1, 0]


def test_screen_ratio_and_black_margins(game):
    """"&2x" doubles the picture; "Troujours carré" keeps black margins, T drops them."""
    game.play()
    w, h = game.logical
    game.key("alt+g")
    game.window(cls=MENU)
    game.key("r", "2")
    main = game.main(lambda m: m.size == (301 + w, 319 + h), "the window at 2x")
    assert tuple(main.client) == (2 * w, 2 * h)
    game.wait_board("a picture twice as big", lambda b: b.getpixel((30, 135)) == GRID_BLUE)
    client = game.screen(main)
    assert client.getpixel((61, 270)) == GRID_BLUE != client.getpixel((31, 270))
    # Dragging the right edge widens the window: the picture stays centred between margins.
    left, top, right, bottom = main.rect
    game.point(right - 2, (top + bottom) // 2)
    game.xdotool("mousedown", "1")
    for x in range(right + 50, right + 301, 50):
        game.point(x, (top + bottom) // 2)
    game.xdotool("mouseup", "1")
    main = game.main(lambda m: m.size[0] >= right - left + 200, "a wider window")
    game.point(SIZE[0] - 5, SIZE[1] - 5)
    (cw, ch), margin = main.client, fit(main.client, game.logical, True)[0]
    assert margin > 20
    wait("black margins", lambda: all(game.screen(main).getpixel((x, ch - 5)) == BLACK
                                      for x in (margin // 2, cw - margin // 2)))
    assert game.board(main).getpixel((100, h - 3)) != BLACK, "the picture is black at its foot"
    game.key("t")
    game.square = False
    game.wait_board("the picture over the whole width", lambda b: b.getpixel((30, 135)) ==
                    GRID_BLUE and game.screen(main).getpixel((5, ch - 5)) != BLACK)


def test_largest_board_with_challenge_replies_at_once(game):
    """19 x 19 at Dur with Challenge: the reply comes within the bounded wait."""
    game.play(SaveFile.initial(BoardSize=20, Level=2, Challenge=1))
    main = game.main()
    assert main.size == window_size(19)
    game.click_board(main, 315, 300)
    _, pieces = wait_pieces(game, "the reply", {"green": 1, "red": 1}, size=19)
    assert pieces[(10, 19)] == "green"


# The settings that index a table; the display flags index nothing and are kept as read.
RANGES = {"BoardSize": (2, 20), "Level": (0, 2), "GameMode": (1, 2), "AiNumber": (0, 13),
          "Challenge": (0, 1), "CharacterId": (0, 13)}


@pytest.mark.parametrize("stored", [
    b"", random.Random(1).randbytes(200), random.Random(2).randbytes(3000), SaveFile.initial(
        BoardSize=99, ShowImages=7, Smoothing=-1, Level=3, GameMode=0, CustomColours=2,
        AiNumber=14, Challenge=5, CharacterId=-1, NormalTitle=3, AlwaysSquare=9).stored()],
    ids=["empty", "short", "garbage", "out-of-range"])
def test_damaged_save_file(game, stored):
    """Enter leads to the board; the file written back holds settings in range, the rest kept."""
    size = int(game.start(stored).text(HOME_CELLS))
    assert game.main().size == window_size(size)
    for _ in range(6):  # whatever the file held, Enter leads through the dialogs
        game.key("Return")
        time.sleep(0.5)
        if (shown := [(w.cls, w.enabled) for w in game.windows()]) == [(MAIN, True)]:
            break
    assert shown == [(MAIN, True)], "Enter does not lead through the dialogs"
    game.key("alt+F4")
    assert game.exit_status() == 0
    # Read: the file's bytes as far as they go, over the presets (zeros, slot 10 at 1, a name).
    presets = SaveFile(settings=[0] * 10 + [1] + [0] * 88).content()
    data = stored.replace(b"\r\n", b"\n")[:len(presets)]
    found, read = game.saved(), SaveFile.from_content(data + presets[len(data):])
    assert [k for k, (low, high) in RANGES.items() if not low <= found.setting(k) <= high] == []
    flags = [k for k in SLOT if k not in RANGES]
    assert [found.setting(k) for k in flags] == [read.setting(k) for k in flags]
    assert found.settings[len(SLOT):] == read.settings[len(SLOT):]
    # The game begun at start counts as played in the record of the settings in use.
    s = found.setting
    section = 4 * s("AiNumber") + s("Level") + s("Challenge") + 56 * (s("GameMode") - 1)
    read.stats[section][PLAYED] = (read.stats[section][PLAYED] + 1) & 0xFFFF
    assert found.stats == read.stats
