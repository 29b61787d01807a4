"""What a person does with Kalvero 4 in the browser and then sees, or finds in its export."""

import os
import random
import subprocess
from collections import Counter
from pathlib import Path

import pytest
from desktop import GRID_BLUE, PIECES, cells, count, mark, near
from savefile_layout import PLAYED, SLOT, SaveFile
from selenium.webdriver.support.ui import Select
from webpage import wait

CLI = os.environ.get("KALVERO_CLI", Path(__file__).parents[2] / "build/native/kalvero4-cli")
CELLS, LOGICAL, OUTER = 7, [293, 273], [301, 319]  # a first start's board and window at 1x
HOME, CHARACTERS, WARNING, ABOUT = "Acceuil", "Personnages", "Attention", "À propos de..."
TWO_PLAYERS, HOME_CELLS, LIST, NAME = "18005", "1022", "1031", "1033"


def wait_pieces(page, what, expected: dict):  # exactly so many pieces of each colour
    board = page.wait_picture(what, lambda b: Counter(cells(b, CELLS).values()) == expected)
    return board, cells(board, CELLS)


def grid_drawn(board, size) -> bool:
    """The board's lines at x = 30k and y = 30k, k = 1..size+1, and none a pixel beside."""
    return all(board.getpixel((30 * k, 135)) == board.getpixel((135, 30 * k)) == GRID_BLUE
               and board.getpixel((30 * k + 1, 135)) != GRID_BLUE for k in range(1, size + 2))


def coloured(board, colour) -> int:  # on the board: about 110 pixels a sprite, 20 a letter
    return count(board, (30, 30, 240, 240), lambda p: near(p, PIECES[colour]))


def test_first_start_and_moves(page):
    """Home and characters dialogs, the board at 1x, then a move by click, key and touch."""
    home = page.open()
    assert [home[i] for i in ("18004", TWO_PLAYERS, "18001", "1029", HOME_CELLS)] == [
        ["1 Joueur", True], ["2 Joueurs", False], ["Facile", True], ["Niveau", None],
        [str(CELLS), None]]
    page.enter(HOME)
    characters = page.box(CHARACTERS)
    assert characters[NAME][0] == "<Votre nom>"
    assert characters["1032"][0].startswith("Sélectionnez un personnage")
    page.enter(CHARACTERS)
    assert page.boxes() == [] and page.titles() == ["Kalvero 4", "Kalvero 4"]
    assert page.sizes() == [OUTER, LOGICAL, LOGICAL]  # the picture pixel for pixel
    board = page.wait_picture("the empty board", lambda b: grid_drawn(b, CELLS))
    assert cells(board, CELLS) == {}
    assert [page.checked(t) for t in ("Images", "Couleurs perso", "Lissage en étiré",
                                      "Troujours carré", "Discretos")] == [
        True, True, False, True, False]
    for n, (play, column) in enumerate([(lambda: page.click_board(95, 150), 3),
                                        (lambda: page.keys("3"), 3),
                                        (lambda: page.touch_board(155, 100), 5)], start=1):
        before = cells(page.picture(), CELLS)
        play()
        board, pieces = wait_pieces(page, f"move {n} and its reply", {"green": n, "red": n})
        new = {c: p for c, p in pieces.items() if c not in before}
        (x, y), = [c for c, p in new.items() if p == "green"]
        assert sorted(new.values()) == ["green", "red"] and x == column, new
        assert y == CELLS or (x, y + 1) in before, "the piece hangs in the air"
        assert near(board.getpixel((30 * x + 16, 30 * y + 16)), PIECES["green"])


def test_dialogs_from_their_templates(page):
    """The owner-drawn buttons show what the Windows dialogs draw on them, and the about box
    ("D") opens where its template places it, not at the client area's corner."""
    def buttons(caption):
        page.box(caption)
        return page.js("return [...document.querySelectorAll('.box button[data-control]')]"
                       ".map(b => [b.dataset.control, b.textContent])")
    page.open()
    assert buttons(HOME) == [["1", "Ok"], ["2", "Pas Ok"]]
    page.enter(HOME)
    assert buttons(CHARACTERS) == [["1", "Ok"], ["1039", "A\nI\nD\nE"]]
    page.enter(CHARACTERS)
    page.keys("d")
    assert buttons(ABOUT) == [["1", "OK"]]
    frame, client = page.js("""return [document.querySelector('.box').getBoundingClientRect(),
        document.getElementById('screen').getBoundingClientRect()]""")
    # 22, 17 dialog units in the box's font, Comic Sans MS at 10 points, whose average character
    # is 7 x 18 pixels: a unit is a quarter of its width across and an eighth of its height down.
    assert abs(frame["left"] - client["left"] - 39) <= 1
    assert abs(frame["top"] - client["top"] - 38) <= 1
    page.enter(ABOUT)
    assert page.boxes() == []


def test_two_players_lines_and_export(page, tmp_path):
    """Two players: lines on sky blue and gold; the export is what the driver writes then."""
    page.open()
    page.control(HOME, TWO_PLAYERS, "input").click()
    assert page.box(HOME)["1029"][0] == "Stats"
    page.enter(HOME)
    assert page.boxes() == [], "the characters dialog follows for two players"
    # The first repaint begins a game with the settings read, before the home dialog; its
    # first confirmation takes "Troujours carré" from the file's slot (1 without a file).
    script = ["load /nonexistent", "newgame", "set GameMode 2", "set AlwaysSquare 1"]
    for keys, column, fill, colour in [("1212121", 1, "sky", "green"),
                                       ("512121232", 2, "gold", "red")]:
        for n, key in enumerate(keys, start=1 - keys.startswith("5")):
            page.keys(key)  # the next key plays for the other player once the piece is seen
            page.wait_picture(f"piece {n}", lambda b: len(cells(b, CELLS)) == n)
            script += [f"key {key}", "settle"]  # after a result, a key starts the next game
        board = page.wait_picture("the line", lambda b: len(cells(b, CELLS, mark)) == 4)
        assert cells(board, CELLS, mark) == {(column, y): fill for y in (4, 5, 6, 7)}
        assert {p for (x, _), p in cells(board, CELLS).items() if x == column} == {colour}
    page.menu("Menu", "Exporter la sauvegarde…")
    exported = page.download("Fichier de sauvegarde")
    driver = subprocess.run([CLI], input="\n".join(script + [f"save {tmp_path / 'cli'}"]),
                            text=True, capture_output=True, check=True)
    assert driver.stderr == "" and exported == (tmp_path / "cli").read_bytes()


def test_menu_toggles_and_ratio(page):
    """Each toggle changes the picture or its check mark; "2x" doubles the window's client."""
    page.open()
    page.enter(HOME)
    Select(page.control(CHARACTERS, LIST)).select_by_index(1)  # his own colour: blue
    page.enter(CHARACTERS)
    page.keys("4")
    wait_pieces(page, "the piece and the reply", {"green": 1, "blue": 1})
    page.menu("Graphisme", "Images")
    board, _ = wait_pieces(page, "letters", {"green": 1, "red": 1})
    assert not page.checked("Images") and 8 <= coloured(board, "green") < 60
    page.menu("Graphisme", "Images")
    wait_pieces(page, "sprites again", {"green": 1, "blue": 1})
    page.menu("Graphisme", "Couleurs perso")
    board, _ = wait_pieces(page, "the computer's piece in red", {"green": 1, "red": 1})
    assert not page.checked("Couleurs perso") and coloured(board, "red") >= 80
    page.menu("Graphisme", "Troujours carré")
    assert not page.checked("Troujours carré")
    page.menu("Menu", "Discretos")
    assert page.answer(WARNING, "OK").startswith("Les changements seront pris en compte")
    assert page.checked("Discretos") and page.titles() == ["Kalvero 4", "Kalvero 4"]

    def crossing(board):  # the colours across the line x = 30 (60 and 61 at 2x), up high
        return {board.getpixel((x, 150)) for x in range(50, 72)}
    page.menu("Graphisme", "Ratio écran", "2x")
    board = page.wait_picture("2x", lambda b: b.size == (586, 546) and GRID_BLUE in crossing(b))
    assert page.sizes() == [[301 + 293, 319 + 273], [586, 546], [586, 546]]
    assert board.getpixel((60, 150)) == board.getpixel((61, 150)) == GRID_BLUE
    assert len(crossing(board)) == 2, "pixels blended without smoothing"
    page.menu("Graphisme", "Lissage en étiré")
    page.wait_picture("smoothed pixels", lambda b: len(crossing(b)) > 2)
    assert page.checked("Lissage en étiré")
    page.menu("Graphisme", "Ratio écran", "1x")
    page.wait_picture("the picture at 1x", lambda b: grid_drawn(b, CELLS))
    assert page.sizes() == [OUTER, LOGICAL, LOGICAL]


def stats_shown(page, played, lost):
    page.menu("Menu", "Stats")
    shown = page.box(caption := "Statistiques vitales pour le Kalvero 4")
    assert [shown[i][0] for i in ("1024", "1025", "1026", "1027", "1028", "1041")] == [
        f"Parties jouées:\t {played}", "Parties gagnées:\t 0", f"Parties perdues:\t {lost}",
        "Moyennant:\t\t 0.00%", "1 joueurs (section 1)", "Vraiment nul!"]
    page.enter(caption)


@pytest.mark.parametrize("leave", ["quit", "reload"])
def test_reload_keeps_settings_statistics_and_name(page, leave):
    """A game given up counts as lost; settings, counters and name come back at the next
    start, after "Quitter" or a plain reload; "Discretos" then names everything "C:\\"."""
    page.open()
    page.enter(HOME)
    name = page.control(CHARACTERS, NAME)
    name.clear()
    name.send_keys("Zoé")
    page.enter(CHARACTERS)
    page.menu("Graphisme", "Images")
    page.keys("4")
    wait_pieces(page, "the piece and the reply as letters", {"green": 1, "red": 1})
    page.menu("Menu", "Recommencer")
    assert page.answer(WARNING, "Oui").startswith("La partie sera perdue si vous continuez!")
    page.wait_picture("the cleared board", lambda b: cells(b, CELLS) == {})
    stats_shown(page, 2, 1)  # the game begun at the start, then the one begun now
    page.menu("Menu", "Discretos")
    page.answer(WARNING, "OK")
    if leave == "quit":  # no piece in the new game: nothing is asked
        page.menu("Menu", "Quitter")
        wait("the end", lambda: page.js("return !document.getElementById('ended').hidden"))
        assert page.js("return document.body.innerText").startswith("Kalvero 4 est terminé.")
    home = page.reload()
    assert page.titles() == ["C:\\", "C:\\"] and home[HOME_CELLS][0] == str(CELLS)
    page.enter(HOME)
    assert page.box(CHARACTERS)[NAME][0] == "Zoé"
    page.enter(CHARACTERS)
    assert [page.checked(t) for t in ("Images", "Discretos")] == [False, True]
    stats_shown(page, 3, 1)


# The settings that index a table; the display flags index nothing and are kept as read.
RANGES = {"BoardSize": (2, 20), "Level": (0, 2), "GameMode": (1, 2), "AiNumber": (0, 13),
          "Challenge": (0, 1), "CharacterId": (0, 13)}
OUT_OF_RANGE = SaveFile.initial(BoardSize=99, ShowImages=0, Level=3, GameMode=0, AiNumber=14,
                                Challenge=5, CharacterId=-1, NormalTitle=0)
OUT_OF_RANGE.stats[0][:3] = [5, 2, 3]


@pytest.mark.parametrize("stored", [
    b"", SaveFile.initial(BoardSize=12).stored()[:5], random.Random(2).randbytes(3000),
    OUT_OF_RANGE.stored()], ids=["empty", "short", "garbage", "out-of-range"])
def test_import_damaged_file(page, tmp_path, stored):
    """An imported file is read at the next start as the Windows program reads it: what it
    holds over the presets, the settings that index a table in range, the rest as read."""
    page.open()
    (tmp_path / "import").write_bytes(stored)
    home = page.reload(tmp_path / "import")
    presets = SaveFile(settings=[0] * 10 + [1] + [0] * 88).content()
    data = stored.replace(b"\r\n", b"\n")[:len(presets)]
    read = SaveFile.from_content(data + presets[len(data):])
    size = read.setting("BoardSize") if 2 <= read.setting("BoardSize") <= 20 else 8
    assert home[HOME_CELLS][0] == str(size - 1)
    assert page.titles()[1] == ("Kalvero 4" if read.setting("NormalTitle") else "C:\\")
    assert page.enter() == [], "Enter does not lead through the dialogs"
    page.wait_picture("the board", lambda b: grid_drawn(b, size - 1))
    page.menu("Menu", "Exporter la sauvegarde…")
    found = SaveFile.from_stored(page.download("Fichier de sauvegarde"))
    assert [k for k, (low, high) in RANGES.items() if not low <= found.setting(k) <= high] == []
    flags = [k for k in SLOT if k not in RANGES]
    assert [found.setting(k) for k in flags] == [read.setting(k) for k in flags]
    assert found.settings[len(SLOT):] == read.settings[len(SLOT):]
    s = found.setting  # the game begun at the start counts in the record of the settings used
    section = 4 * s("AiNumber") + s("Level") + s("Challenge") + 56 * (s("GameMode") - 1)
    read.stats[section][PLAYED] = (read.stats[section][PLAYED] + 1) & 0xFFFF
    assert found.stats == read.stats
