"""Kalvero 4 by the keyboard alone, and as a screen reader finds it: the dialogs, the message
boxes and the menus by their keys, the accelerators whatever Caps Lock's state, the roles and
names of the page, and a whole game played with the keys "1" onward and heard through the live
region, never looking at the canvas. Names and roles are the browser's own computation (the
WebDriver's computed label and role)."""

import re

import pytest
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys
from webpage import wait

HOME, CHARACTERS, RANGE = "Acceuil", "Personnages", "Trop la deception"
STATS = "Statistiques vitales pour le Kalvero 4"
CHALLENGE, CELLS, ONE, TWO = "1030", "1022", "18004", "18005"
LEVELS = ["18001", "18002", "18003"]

# Every text the live region takes, in order, as a screen reader hears it.
LISTEN = """const region = document.getElementById('speech');
window.__said = [];
new MutationObserver(() => { if (region.textContent) __said.push(region.textContent); })
    .observe(region, {childList: true, characterData: true, subtree: true});"""

# What the keyboard is on in the menus: the focused element's name, and the menus open.
MENU_STATE = """const a = document.activeElement;
return [a.closest('.menu-bar') ? a.getAttribute('aria-label') : a.id,
        [...document.querySelectorAll('.menu-title.open, .menu-submenu.open')]
            .map(e => e.getAttribute('aria-label'))];"""

PLAYED = re.compile(r"(Vous|[^.! ][^.!]*?) : colonne (\d+)\.")
RESULT = re.compile(r"[^.!]*a gagné!|Aucun gagnant!")


def press(page, *keys):
    """Keys as a person types them: a string, a Keys constant, "alt" alone, ("alt", letter) or
    ("shift", key)."""
    for key in keys:
        chain = ActionChains(page.driver)
        if key == "alt":
            chain.key_down(Keys.ALT).key_up(Keys.ALT)
        elif isinstance(key, tuple):
            modifier = {"alt": Keys.ALT, "shift": Keys.SHIFT}[key[0]]
            chain.key_down(modifier).send_keys(key[1]).key_up(modifier)
        else:
            chain.send_keys(key)
        chain.perform()


def caps_lock_key(page, key, shift=False):
    """A letter key as the page receives it with Caps Lock on (its capital, without Shift), or
    with Shift: WebDriver can press Shift but cannot lock the capitals."""
    page.js("""document.activeElement.dispatchEvent(new KeyboardEvent('keydown', {
               key: arguments[0], code: 'Key' + arguments[0].toUpperCase(),
               shiftKey: arguments[1], bubbles: true}));""", key, shift)


def said(page):
    return page.js("return window.__said")


def focused(page):
    """The focused element: its control number in a dialog (or its id), and its name."""
    element = page.driver.switch_to.active_element
    control = page.js("return arguments[0].closest('[data-control]')?.dataset.control"
                      " ?? arguments[0].id", element)
    return control, element.accessible_name


def checked(page, controls):
    return [page.js(f"return document.querySelector('[data-control=\"{c}\"] input').checked")
            for c in controls]


def start_game(page):
    """Home and characters dialogs by Enter alone; the words heard from then on are recorded."""
    page.open()
    page.js(LISTEN)
    press(page, Keys.ENTER)
    page.box(CHARACTERS)
    press(page, Keys.ENTER)
    wait("the dialogs to close", lambda: page.boxes() == [])
    wait("the window to have the focus", lambda: focused(page)[0] == "client")


def play(page, column):
    """A key "1" onward, and the words until nobody is thinking any more."""
    count = len(said(page))
    press(page, str(column))
    return wait(f"the game to answer column {column}",
                lambda: (new := said(page)[count:]) and "réfléchit" not in new[-1] and new)


def test_a_whole_game_by_keys_and_words(page):
    """The level and the opponent chosen by keys, then a game played from the live region
    alone: the player keeps each column's height from what he hears, and plays until he hears
    the result; the board's own text then agrees with every move heard."""
    page.open()
    page.js(LISTEN)
    assert focused(page) == ("1", "Ok")
    press(page, Keys.TAB, Keys.TAB, Keys.TAB)  # Ok, Pas Ok, Cases, then Challenge
    assert focused(page) == (CHALLENGE, "Challenge")
    press(page, Keys.DOWN, Keys.DOWN)  # round the group to "Facile", then "Normal"
    assert focused(page) == (LEVELS[1], "Normal") and checked(page, LEVELS) == [False, True, False]
    press(page, Keys.ENTER)
    page.box(CHARACTERS)
    press(page, Keys.TAB)
    assert focused(page)[0] == "1031"  # the list
    first = page.js("return document.activeElement.selectedIndex")
    press(page, Keys.DOWN)
    wait("the next character", lambda: page.js("return document.activeElement.selectedIndex")
         == first + 1)
    press(page, Keys.ENTER)
    wait("the game", lambda: page.boxes() == [] and focused(page)[0] == "client")
    assert page.js("const r = document.getElementById('speech');"
                   "return [r.getAttribute('aria-live'), r.getAttribute('aria-atomic')]") == [
        "polite", "true"]
    wait("the level heard", lambda: any(s.endswith("Normal.") for s in said(page)))

    columns, result = {c: [] for c in range(1, 8)}, None  # who played, from the bottom up
    while result is None:
        mine = sum(who == "vous" for pieces in columns.values() for who in pieces)
        assert mine < 25, "no result after 25 moves"
        column = next(c for c in (4, 3, 5, 2, 6, 1, 7) if len(columns[c]) < 7)
        words = " ".join(play(page, column))
        plays = PLAYED.findall(words)
        assert plays and plays[0] == ("Vous", str(column)), words
        for who, played in plays:
            columns[int(played)].append("vous" if who == "Vous" else who)
            assert len(columns[int(played)]) <= 7, f"column {played} is full: {words}"
        result = RESULT.search(words)
    # The board's own text is what was heard, column by column.
    board = page.js("return document.getElementById('board-text').textContent")
    assert board == "De bas en haut. " + " ".join(
        f"Colonne {c} : {', '.join(columns[c]) or 'vide'}." for c in range(1, 8)), board
    # After the result the next key starts a new game, as a click does.
    count = len(said(page))
    press(page, "1")
    assert wait("a new game", lambda: said(page)[count:])[0].startswith("Nouvelle partie.")


@pytest.mark.parametrize("focus", ["kept", "lost"])
def test_focus_back_to_the_dialog_after_a_message_box(page, focus):
    """99 cells and Enter: the range box; Enter closes it and the focus is back on "Cases";
    then Tab goes on from there, and Escape still reaches the home dialog and cancels it, even
    with the focus lost to the page."""
    page.open()
    press(page, Keys.TAB, Keys.TAB)
    assert focused(page) == (CELLS, "Cases")
    press(page, Keys.END, Keys.BACKSPACE, Keys.BACKSPACE, "99", Keys.ENTER)
    page.box(RANGE)
    box = page.driver.switch_to.active_element
    assert box.text == "OK" and box.aria_role == "button"
    press(page, Keys.ENTER)
    wait("the range box to close", lambda: page.boxes() == [HOME])
    assert focused(page) == (CELLS, "Cases")
    if focus == "lost":
        page.js("document.activeElement.blur()")
        assert focused(page)[0] == ""
    press(page, Keys.TAB)  # from "Cases" on, or from the start when nothing had the focus
    assert focused(page) == ((CHALLENGE, "Challenge") if focus == "kept" else ("1", "Ok"))
    press(page, Keys.ESCAPE)
    wait("the home dialog cancelled", lambda: HOME not in page.boxes())


def test_dialog_keys_tab_order_groups_and_focus_rectangle(page):
    """The home dialog by its keys: Tab through the template's tab stops, the arrows round a
    group (a radio button reached is checked), Space on the check box, and the dotted focus
    rectangle on what has the focus."""
    page.open()
    # One step a row, each from where the last left: the keys, then the focused control and
    # its name, the players' radio buttons and the levels'.
    rows = [
        ([], ("1", "Ok"), [True, False], [True, False, False]),
        ([Keys.TAB], ("2", "Pas Ok"), [True, False], [True, False, False]),
        ([Keys.TAB], (CELLS, "Cases"), [True, False], [True, False, False]),
        ([Keys.TAB], (CHALLENGE, "Challenge"), [True, False], [True, False, False]),
        ([Keys.TAB], ("1", "Ok"), [True, False], [True, False, False]),  # round
        ([("shift", Keys.TAB)], (CHALLENGE, "Challenge"), [True, False], [True, False, False]),
        ([Keys.DOWN], (LEVELS[0], "Facile"), [True, False], [True, False, False]),
        ([Keys.DOWN], (LEVELS[1], "Normal"), [True, False], [False, True, False]),
        ([Keys.RIGHT], (LEVELS[2], "Dur"), [True, False], [False, False, True]),
        ([Keys.DOWN], (CELLS, "Cases"), [True, False], [False, False, True]),
        ([Keys.UP], (CELLS, "Cases"), [True, False], [False, False, True]),  # the edit's own
        ([("shift", Keys.TAB)] * 2, ("1", "Ok"), [True, False], [False, False, True]),
        ([Keys.UP], (TWO, "2 Joueurs"), [False, True], [False, False, True]),
        ([Keys.LEFT], (ONE, "1 Joueur"), [True, False], [False, False, True]),
        ([Keys.UP], ("2", "Pas Ok"), [True, False], [False, False, True]),  # round the group
    ]
    for keys, where, players, levels in rows:
        press(page, *keys)
        assert (focused(page), checked(page, [ONE, TWO]), checked(page, LEVELS)) == (
            where, players, levels), keys
    dotted = "return getComputedStyle(arguments[0]).outlineStyle"
    assert page.js(dotted, page.driver.switch_to.active_element) == "dotted"
    press(page, Keys.TAB, Keys.TAB)
    assert focused(page) == (CHALLENGE, "Challenge")
    label = page.driver.find_element("css selector", f'[data-control="{CHALLENGE}"] span')
    assert page.js(dotted, label) == "dotted"
    for expected in (True, False):
        press(page, Keys.SPACE)
        assert checked(page, [CHALLENGE]) == [expected]


def test_menus_by_keyboard(page):
    """F10 or Alt alone takes the menu bar; the arrows go between menus and entries, into and
    out of the submenu; Escape steps back; a letter chooses."""
    start_game(page)
    # The keys from a closed bar, then the focused element's name and the menus open.
    rows = [
        ([Keys.F10], "Menu", []),
        (["alt"], "Menu", []),
        ([Keys.F10, Keys.F10], "client", []),
        (["alt", "alt"], "client", []),
        ([Keys.F10, Keys.ESCAPE], "client", []),
        ([Keys.F10, Keys.DOWN], "Acceuil", ["Menu"]),
        ([Keys.F10, Keys.ENTER], "Acceuil", ["Menu"]),
        ([Keys.F10, Keys.DOWN, Keys.UP], "Quitter", ["Menu"]),
        ([Keys.F10, Keys.DOWN, Keys.DOWN], "Recommencer", ["Menu"]),
        ([Keys.F10, Keys.RIGHT], "Graphisme", []),
        ([Keys.F10, Keys.LEFT], "Graphisme", []),  # round
        ([Keys.F10, Keys.DOWN, Keys.RIGHT], "Images", ["Graphisme"]),
        ([Keys.F10, Keys.DOWN, Keys.ESCAPE], "Menu", []),
        ([("alt", "g")], "Images", ["Graphisme"]),
        ([Keys.F10, "g"], "Images", ["Graphisme"]),
        ([("alt", "g"), Keys.UP], "Ratio écran", ["Graphisme"]),
        ([("alt", "g"), Keys.UP, Keys.RIGHT], "1x", ["Graphisme", "Ratio écran"]),
        ([("alt", "g"), Keys.UP, Keys.ENTER, Keys.END], "4x", ["Graphisme", "Ratio écran"]),
        ([("alt", "g"), Keys.UP, Keys.RIGHT, Keys.LEFT], "Ratio écran", ["Graphisme"]),
        ([("alt", "g"), Keys.UP, Keys.RIGHT, Keys.ESCAPE], "Ratio écran", ["Graphisme"]),
        ([("alt", "g"), Keys.DOWN, Keys.RIGHT], "Acceuil", ["Menu"]),  # round, open
        ([("alt", "g"), Keys.DOWN, "9"], "Couleurs perso", ["Graphisme"]),  # no such letter
    ]
    for keys, where, open_menus in rows:
        press(page, *keys)
        assert page.js(MENU_STATE) == [where, open_menus], keys
        press(page, Keys.ESCAPE, Keys.ESCAPE, Keys.ESCAPE)
        assert page.js(MENU_STATE) == ["client", []], keys


def test_menu_choices_by_keyboard(page):
    """Enter and the underlined letters choose: a toggle, the ratio in the submenu (the digit
    goes to the menu, not to the game), a dialog; the window has the keys again after each."""
    start_game(page)
    entry = lambda text: page.entry(text).get_attribute("aria-checked")  # noqa: E731
    assert entry("Images") == "true"
    count = len(said(page))
    press(page, Keys.F10, Keys.RIGHT, Keys.DOWN, Keys.ENTER)
    wait("Images off", lambda: entry("Images") == "false")
    assert page.js(MENU_STATE) == ["client", []]
    width = page.sizes()[0][0]
    press(page, ("alt", "g"), "r", "2")
    wait("the ratio 2x", lambda: page.sizes()[0][0] > 1.5 * width)
    assert page.js(MENU_STATE) == ["client", []]
    assert not any(PLAYED.search(s) for s in said(page)[count:])  # "2" played nothing
    press(page, ("alt", "m"), "s")
    page.box(STATS)
    press(page, Keys.ENTER)
    wait("the statistics to close", lambda: page.boxes() == [])
    assert focused(page)[0] == "client"


def test_accelerators_whatever_caps_lock(page):
    """A letter accelerator is the key, capital or not, but not with Shift; the digits, shifted
    or not (as on a French keyboard), are moves."""
    start_game(page)
    # The key, with Shift or not, and whether it opens the statistics.
    rows = [
        ("s", False, True),
        ("S", False, True),   # Caps Lock on
        ("S", True, False),   # Shift: a character for the game, which plays nothing with it
        ("3", False, False),
        ("4", True, False),
    ]
    for key, shift, opens_statistics in rows:
        count = len(said(page))
        caps_lock_key(page, key, shift)
        if opens_statistics:
            page.box(STATS)
            press(page, Keys.ENTER)
            wait("the statistics to close", lambda: page.boxes() == [])
            continue
        # Not an accelerator: a move after it is heard only if no box has taken the keys.
        column = key if key.isdigit() else "5"
        if not key.isdigit():
            caps_lock_key(page, column)
        words = wait(f"the move {column}", lambda: " ".join(said(page)[count:]))
        assert PLAYED.search(words).groups() == ("Vous", column) and page.boxes() == [], key


def test_roles_and_names(page):
    """The menus, the dialogs and the message boxes have their roles, and every control its
    name, as the browser computes them for a screen reader."""
    page.open()
    home = page.driver.find_element("css selector", ".box")
    assert (home.aria_role, home.accessible_name, home.get_attribute("aria-modal")) == (
        "dialog", HOME, "true")
    controls = page.driver.find_elements("css selector", ".box button, .box input, .box select")
    names = {c.accessible_name for c in controls}
    assert names >= {"Ok", "Pas Ok", "Cases", "Challenge", "1 Joueur", "2 Joueurs", "Facile",
                     "Normal", "Dur"} and "" not in names, names
    press(page, Keys.TAB, Keys.TAB, Keys.END, Keys.BACKSPACE, "0", Keys.ENTER)
    page.box(RANGE)
    box = [b for b in page.driver.find_elements("css selector", ".box") if b != home][0]
    assert (box.aria_role, box.accessible_name, box.get_attribute("aria-modal")) == (
        "alertdialog", RANGE, "true")
    press(page, Keys.ENTER, Keys.CONTROL + "a", "7", Keys.ENTER)
    page.box(CHARACTERS)
    characters = page.driver.find_element("css selector", ".box")
    assert (characters.aria_role, characters.accessible_name) == ("dialog", CHARACTERS)
    # The controls without a text of their own, and their names.
    for control, name in [("1031", CHARACTERS), ("1033", "Nom"),
                          ("1037", "N° d'IA (gén. n° du perso)"), ("1039", "AIDE"), ("1", "Ok")]:
        element = page.control(CHARACTERS, control)
        assert element.accessible_name == name, control
    press(page, Keys.ENTER)
    wait("the game", lambda: page.boxes() == [])
    client = page.driver.find_element("id", "client")
    assert (client.aria_role, client.accessible_name) == ("application", "Plateau de jeu")
    assert page.driver.find_element("id", "menu-bar").aria_role == "menubar"
    press(page, ("alt", "g"), Keys.UP, Keys.RIGHT)  # every menu open at once
    for title in page.driver.find_elements("css selector", ".menu-title"):
        assert (title.aria_role, title.get_attribute("aria-haspopup")) == ("menuitem", "menu")
    for popup in page.driver.find_elements("css selector", ".menu-title.open .menu-popup"):
        if popup.is_displayed():
            assert popup.aria_role == "menu"
    items = [i for i in page.driver.find_elements("css selector", ".menu-item") if i.is_displayed()]
    roles = {i.accessible_name: (i.aria_role, i.get_attribute("aria-checked")) for i in items}
    assert roles == {
        "Images": ("menuitemcheckbox", "true"), "Couleurs perso": ("menuitemcheckbox", "true"),
        "Lissage en étiré": ("menuitemcheckbox", "false"),
        "Troujours carré": ("menuitemcheckbox", "true"), "Ratio écran": ("menuitem", None),
        "1x": ("menuitem", None), "2x": ("menuitem", None), "3x": ("menuitem", None),
        "4x": ("menuitem", None)}, roles  # the ratio has no check marks
