"""Kalvero 4 on a phone and a tablet, in Chromium's mobile emulation with touch events: the
window maximised with its frame stretched by the game's own fit, fitted again when the phone
turns, finger-sized menus and controls, a whole game by taps, a page that never moves under the
finger; and, on any screen, the frame pixel for pixel at every pixel ratio."""

import base64
import io
from collections import Counter

import pytest
from desktop import BLACK, GRID_BLUE, cells, fit, mark
from PIL import Image
from webpage import ENGINES, Phone, emulate, launch, launch_phone, opened, wait

pytestmark = pytest.mark.engines("chromium", reason="a phone is Chromium's mobile emulation")

CELLS, LOGICAL = 7, (293, 273)  # a first start's board and its logical size
BACKGROUND_BLUE = (0, 0, 187)  # the lower half of the background picture
FINGER = 44  # CSS pixels
HOME, CHARACTERS, WARNING = "Acceuil", "Personnages", "Attention"
STATS = "Statistiques vitales pour le Kalvero 4"
PHONE, TURNED, TABLET = (390, 844), (844, 390), (820, 1180)


@pytest.fixture
def phone(server, tmp_path, request):
    """A phone upright at a pixel ratio of 1, or the screen and ratio given as the parameter."""
    width, height, ratio = getattr(request, "param", (*PHONE, 1))
    downloads = tmp_path / "downloads"
    downloads.mkdir()
    with opened(lambda: launch_phone(tmp_path / "profile", downloads, width, height, ratio),
                lambda driver: Phone(driver, server.url, downloads), server) as page:
        yield page


def start(phone):
    """The first start's two dialogs, each left by a tap on its own "Ok"."""
    phone.open()
    phone.tap_button(HOME, "Ok")
    phone.tap_button(CHARACTERS, "Ok")


def layout(phone):
    """Rectangles of the window's parts on the page, the canvas's own pixels, the pixel ratio."""
    return phone.js("""const rect = id => { const r = document.getElementById(id)
            .getBoundingClientRect(); return [r.left, r.top, r.width, r.height]; };
        const s = document.getElementById('screen');
        const caption = document.querySelector('.title-bar').getBoundingClientRect();
        return {window: rect('window'), caption: [caption.left, caption.top, caption.width,
                                                  caption.height], close: rect('close-box'),
                menu: rect('menu-bar'), client: rect('client'), canvas: rect('screen'),
                pixels: [s.width, s.height], ratio: devicePixelRatio};""")


def placement(phone, square=True):
    """Where the game's fit puts the logical picture on the canvas, in device pixels, and the
    canvas rectangle on the page: the picture is stretched over the client area, keeping its
    proportions with "Troujours carré"."""
    shown = layout(phone)
    client = [int(shown["canvas"][2]), int(shown["canvas"][3])]
    left, top, width, height = fit(client, LOGICAL, square)
    box = tuple(round(v * shown["ratio"]) for v in (left, top, left + width, top + height))
    return box, shown["canvas"], (left, top, width, height)


def logical(picture, box):
    """The frame as the game composed it, sampled back from the canvas at each logical pixel's
    centre (exact for a picture presented without smoothing and not made smaller)."""
    return picture.resize(LOGICAL, Image.Resampling.NEAREST, box=box)


def lines_drawn(board) -> bool:
    """The board's lines at x = 30k and y = 30k, and none a pixel beside."""
    return all(board.getpixel((30 * k, 135)) == board.getpixel((135, 30 * k)) == GRID_BLUE
               and board.getpixel((30 * k + 1, 135)) != GRID_BLUE for k in range(1, CELLS + 2))


def edges_at(picture, box) -> bool:
    """The background's blue reaches the picture's bottom right-hand corner exactly, and what
    lies beyond it on the canvas is black."""
    x0, y0, x1, y1 = box
    inside = picture.getpixel((x1 - 1, y1 - 1)) == BACKGROUND_BLUE
    right = x1 >= picture.width or picture.getpixel((x1, y1 - 1)) == BLACK
    below = y1 >= picture.height or picture.getpixel((x1 - 1, y1)) == BLACK
    left = x0 <= 1 or (picture.getpixel((x0 - 1, y1 - 1)) == BLACK
                       and picture.getpixel((x0, y1 - 1)) == BACKGROUND_BLUE)
    return inside and right and below and left


def wait_fitted(phone, square=True):
    """Waits for the frame stretched over the client area as the game's fit places it."""
    def fitted():
        box, _, _ = placement(phone, square)
        picture = phone.picture()
        if picture.size != tuple(layout(phone)["pixels"]):
            return None
        board = logical(picture, box)
        return board if lines_drawn(board) and edges_at(picture, box) else None
    return wait("the frame fitted to the client area", fitted)


def tap_column(phone, column, square=True):
    """A tap in the middle of a column of the stretched board."""
    _, canvas, (left, top, width, height) = placement(phone, square)
    x, y = 30 * column + 15, 30 * 4 + 15
    phone.touch((canvas[0] + left + (x + 0.5) * width / LOGICAL[0],
                 canvas[1] + top + (y + 0.5) * height / LOGICAL[1]))


def board_now(phone, square=True):
    box, _, _ = placement(phone, square)
    return logical(phone.picture(), box)


def page_still(phone):
    """The page neither scrolled, zoomed nor wider than the screen."""
    shown = phone.screen()
    assert shown["scroll"] == [0, 0, 0, 0] and shown["scale"] == 1, shown
    assert shown["width"] <= shown["size"][0], shown


def test_maximised_and_fitted_again_when_turned(phone):
    """The window fills the phone's screen, caption and menu bar on top; the game stretches its
    frame over the rest, keeping its proportions with "Troujours carré" and filling the area
    without; turned, and turned back, the phone's window fits again and a tap plays where it
    lands (two players: each tap one piece, whatever the computer would reply)."""
    phone.open()
    phone.tap(phone.control(HOME, "18005", "input"))
    phone.tap_button(HOME, "Ok")
    for n, (screen, square, column) in enumerate([(PHONE, True, 1), (PHONE, False, 3),
                                                  (TURNED, False, 5), (TURNED, True, 7),
                                                  (PHONE, True, 2)]):
        if screen != phone.screen()["size"]:
            emulate(phone.driver, *screen)
            wait("the window turned", lambda: layout(phone)["window"] == [0, 0, *screen])
        if square != phone.checked("Troujours carré"):
            phone.tap_menu("Graphisme", "Troujours carré")
        shown = layout(phone)
        caption, menu = shown["caption"], shown["menu"]
        assert caption == [0, 0, screen[0], caption[3]] and caption[3] >= FINGER
        assert menu == [0, caption[3], screen[0], menu[3]] and menu[3] >= FINGER
        top = caption[3] + menu[3]
        assert shown["client"] == [0, top, screen[0], screen[1] - top]
        wait("the canvas over the client area",
             lambda: layout(phone)["canvas"] == shown["client"])
        wait_fitted(phone, square)
        before = cells(board_now(phone, square), CELLS)
        tap_column(phone, column, square)  # along the bottom row: no line of four
        board = wait("the piece", lambda: b if len(cells(b := board_now(phone, square), CELLS))
                     == n + 1 else None)
        new = {c: p for c, p in cells(board, CELLS).items() if c not in before}
        assert new == {(column, CELLS): ["green", "red"][n % 2]}
        page_still(phone)


@pytest.mark.parametrize("phone", [(*PHONE, 3), (*TABLET, 2)], ids=["phone", "tablet"],
                         indirect=True)
def test_device_pixels_of_a_maximised_window(phone):
    """At a phone's and a tablet's pixel ratio, the canvas has the device's pixels and the
    frame is stretched over them by the game's fit, every logical pixel in whole pixels."""
    start(phone)
    shown = layout(phone)
    assert shown["window"] == [0, 0, *phone.screen()["size"]]
    assert shown["pixels"] == [round(v * shown["ratio"]) for v in shown["canvas"][2:]]
    board = wait_fitted(phone)
    assert cells(board, CELLS) == {}


def controls_of(phone, caption):
    """A box's rectangle, and the texts and rectangles of its controls: those a finger taps
    (buttons, radio buttons and check boxes, the close box among them) and the fields."""
    return phone.js("""const box = [...document.querySelectorAll('.box')].find(
            b => b.querySelector('.box-caption span').textContent === arguments[0]);
        const rect = e => { const r = e.getBoundingClientRect();
                            return [r.left, r.top, r.width, r.height]; };
        const all = selector => [...box.querySelectorAll(selector)].map(
            e => [e.textContent || e.dataset.control, rect(e)]);
        return {box: rect(box), tapped: all('button, label.control'),
                fields: all('input.control, select.control')};""", caption)


def overlapping(named_rects):
    return [(a, b) for i, (a, ra) in enumerate(named_rects) for b, rb in named_rects[i + 1:]
            if ra[0] < rb[0] + rb[2] and rb[0] < ra[0] + ra[2]
            and ra[1] < rb[1] + rb[3] and rb[1] < ra[1] + ra[3]]


def finger_sized(phone, caption, buttons):
    """The box's buttons (these among them), radio buttons and check boxes are a finger tall,
    no two of its controls overlap, and it lies within the screen's width."""
    found = controls_of(phone, caption)
    assert set(buttons) <= {text for text, _ in found["tapped"]}
    assert [text for text, r in found["tapped"] if r[3] < FINGER] == [], found
    assert overlapping(found["tapped"] + found["fields"]) == []
    width = phone.screen()["size"][0]
    assert 0 <= found["box"][0] and found["box"][0] + found["box"][2] <= width


def test_finger_sized_menus_controls_and_boxes(phone):
    """Under a finger the menu titles and entries, submenus included, every dialog's buttons,
    radio buttons and check boxes, and a message box's buttons are at least 44 pixels tall."""
    phone.open()
    finger_sized(phone, HOME, ["1 Joueur", "2 Joueurs", "Ok", "Pas Ok", "Facile", "Normal",
                               "Dur", "Challenge"])
    phone.tap_button(HOME, "Ok")
    finger_sized(phone, CHARACTERS, ["Ok", "A\nI\nD\nE"])
    phone.tap_button(CHARACTERS, "Ok")
    assert layout(phone)["close"][3] >= FINGER
    seen = []
    for title in ["Menu", "Graphisme"]:
        phone.tap_menu(title)
        entries = phone.js("""return [...document.querySelectorAll('.menu-title.open .menu-item')]
            .filter(e => e.offsetParent).map(e => { const r = e.getBoundingClientRect();
            return [e.querySelector('.menu-label').textContent, r.height, r.left + r.width]; })""")
        titles = phone.js("return [...document.querySelectorAll('.menu-title')].map("
                          "t => t.getBoundingClientRect().height)")
        assert min(titles) >= FINGER and len(titles) == 2
        assert [e for e in entries if e[1] < FINGER] == [], entries
        assert max(e[2] for e in entries) <= PHONE[0]
        seen += [e[0] for e in entries]
        page_still(phone)
        phone.touch((PHONE[0] / 2, 20))  # on the caption: the menu closes
        wait("the menu closed", lambda: not phone.js("return !!document.querySelector("
                                                     "'.menu-title.open')"))
    assert {"Acceuil", "Stats", "Quitter", "Exporter la sauvegarde…", "Lissage en étiré",
            "Ratio écran", "1x", "4x"} <= set(seen)
    for entry, caption, buttons, leave in [("Stats", STATS, ["Oké!"], "Oké!"),
                                           ("À propos de...", "À propos de...", ["OK"], "OK")]:
        phone.tap_menu("Menu", entry)
        phone.box(caption)
        finger_sized(phone, caption, buttons)
        phone.tap_button(caption, leave)
    tap_column(phone, 4)
    wait("the move and its reply", lambda: len(cells(board_now(phone), CELLS)) == 2)
    phone.tap_menu("Menu", "Recommencer")
    phone.box(WARNING)
    finger_sized(phone, WARNING, ["Oui", "Non"])
    phone.tap_button(WARNING, "Non")
    assert len(cells(board_now(phone), CELLS)) == 2, "the game goes on"


def test_whole_game_by_taps(phone):
    """Dialogs, moves, menus and boxes all by taps, one move by a key: a game played to its
    end, the next one started by a tap, and the statistics counting the result."""
    start(phone)
    phone.keys("4")  # a keyboard still plays
    wait("the key's move and its reply",
         lambda: Counter(cells(board_now(phone), CELLS).values()) == {"green": 1, "red": 1})
    for turn in range(CELLS * CELLS):
        board = board_now(phone)
        pieces, marks = cells(board, CELLS), cells(board, CELLS, mark)
        if marks or len(pieces) == CELLS * CELLS:
            break
        free = [x for x in range(1, CELLS + 1) if (x, 1) not in pieces]
        tap_column(phone, free[turn % len(free)])
        wait("the tap's move", lambda: len(cells(board_now(phone), CELLS)) > len(pieces))
        # The reply follows unless the move ended the game.
        wait("the reply", lambda: (b := board_now(phone)) and (
            len(cells(b, CELLS)) == len(pieces) + 2 or cells(b, CELLS, mark)
            or len(cells(b, CELLS)) == CELLS * CELLS))
        page_still(phone)
    else:
        pytest.fail("the game never ended")
    line = {mark(board, *c) for c in marks}
    assert line <= {"sky", "gold"} and len(line) <= 1
    winner = {"sky": "green", "gold": "red"}.get(next(iter(line), None))
    assert all(pieces[c] == winner for c in marks), "the line is of the winner's pieces"
    tap_column(phone, 1)  # after a result, a tap starts the next game
    wait("the cleared board", lambda: cells(board_now(phone), CELLS) == {})
    phone.tap_menu("Menu", "Stats")
    shown = phone.box(STATS)
    won, lost = (shown[i][0].split("\t")[-1].strip() for i in ("1025", "1026"))
    assert [won, lost] == {"green": ["1", "0"], "red": ["0", "1"], None: ["0", "0"]}[winner]
    phone.tap_button(STATS, "Oké!")
    page_still(phone)


@pytest.mark.parametrize("phone", [(568, 320, 1)], indirect=True)
def test_box_taller_than_the_screen_scrolls_within_it(phone):
    """On a small phone turned, the home dialog stretched for a finger is taller than the
    screen: a swipe scrolls it within the screen, the page stays put, and its lowest control
    can be tapped."""
    phone.open()
    layer = phone.driver.find_element("css selector", ".modal-layer")
    heights = phone.js("return [arguments[0].scrollHeight, arguments[0].clientHeight]", layer)
    assert heights[0] > heights[1] == 320
    phone.touch((200, 280), (200, 200), (200, 100), (200, 40))
    wait("the dialog scrolled", lambda: phone.js("return arguments[0].scrollTop", layer) > 0)
    page_still(phone)
    challenge = phone.control(HOME, "1030", "input")
    left, top, width, height = phone.rect(challenge)
    assert 0 <= top and top + height <= 320, "the check box scrolled into the screen"
    phone.tap(challenge)
    assert phone.box(HOME)["1030"][1] is True


@pytest.mark.engines(*ENGINES, reason="a mouse on a desktop screen")
def test_window_larger_than_a_desktop_screen(page):
    """With a mouse, the window at its own size while it fits; "4x" makes it larger than the
    screen, and it is then maximised with its frame fitted; "1x" brings it back to its size."""
    page.open()
    page.enter(HOME)
    page.enter(CHARACTERS)
    own = layout(page)["window"]
    assert own[2:] == [301, 319] and own[:2] == [8, 8]
    screen = page.js("return [document.documentElement.clientWidth, innerHeight]")
    page.menu("Graphisme", "Ratio écran", "4x")  # 1180 x 1138: taller than the screen
    wait("the window maximised", lambda: layout(page)["window"] == [0, 0, *screen])
    shown = layout(page)
    assert shown["caption"][3] == shown["menu"][3] == 19, "no finger: the Windows sizes"
    wait("the canvas over the client area", lambda: layout(page)["canvas"] == shown["client"])
    wait_fitted(page)
    page.menu("Graphisme", "Ratio écran", "1x")
    wait("the window at its size", lambda: layout(page)["window"] == own)
    assert layout(page)["canvas"][2:] == list(LOGICAL)
    page.wait_picture("the frame pixel for pixel", lines_drawn)


# What a finger meets at points every 15 pixels across the screen: whether the element or one
# around it takes no gesture of the browser's (pan, zoom), whether its text can be selected,
# and whether a long press's menu is refused.
UNDER_THE_FINGER = """const found = [];
for (let y = 5; y < innerHeight; y += 15) for (let x = 5; x < innerWidth; x += 15) {
  const e = document.elementFromPoint(x, y);
  if (!e || found.some(f => f.element === e)) continue;
  let still = false;
  for (let a = e; a; a = a.parentElement) still ||= getComputedStyle(a).touchAction === 'none';
  const menu = new MouseEvent('contextmenu', {bubbles: true, cancelable: true});
  e.dispatchEvent(menu);
  found.push({element: e, still, selectable: getComputedStyle(e).userSelect !== 'none'
              || getComputedStyle(e).webkitUserSelect === 'text', menu: !menu.defaultPrevented});
}
return found.map(f => ({what: [f.element.id, f.element.className].join(' ').trim() || f.element.tagName,
                        still: f.still, selectable: f.selectable, menu: f.menu}));"""


def test_nothing_moves_the_page_under_the_finger(phone):
    """Upright and turned, while playing: swipes across, up and down and a double tap leave
    the page where it is; everywhere on the window a finger takes no gesture of the browser's,
    selects no text and opens no menu of its own; on a dialog neither."""
    phone.open()
    phone.tap_button(HOME, "Ok")
    phone.tap_button(CHARACTERS, "Ok")
    tap_column(phone, 4)
    wait("the move and its reply", lambda: len(cells(board_now(phone), CELLS)) == 2)
    for width, height in [PHONE, TURNED]:
        emulate(phone.driver, width, height)
        wait("the window turned", lambda: layout(phone)["window"] == [0, 0, width, height])
        middle = (width / 2, height / 2)
        for gesture in [(middle, (width - 10, height / 2), (10, height / 2)),  # across
                        (middle, (width / 2, 10)),  # up
                        ((width / 2, 60), (width / 2, height - 10)),  # down from the top
                        (middle,), (middle,)]:  # a double tap
            phone.touch(*gesture)
            page_still(phone)
        found = phone.js(UNDER_THE_FINGER)
        assert {w for f in found for w in f["what"].split()} >= {"screen", "title-text", "menu-bar"}
        assert [f for f in found if not f["still"] or f["selectable"] or f["menu"]] == []
    phone.tap_menu("Menu", "Stats")
    phone.box(STATS)
    found = phone.js(UNDER_THE_FINGER)
    assert {"static", "box-body"} <= {w for f in found for w in f["what"].split()}
    assert [f for f in found if f["selectable"] or f["menu"]] == []
    phone.tap_button(STATS, "Oké!")


# A window of 1200 x 900 CSS pixels with a mouse, at each pixel ratio.
@pytest.fixture(params=[1, 2, 3], ids=lambda r: f"ratio{r}")
def screen_at(server, tmp_path, request):
    downloads = tmp_path / "downloads"
    downloads.mkdir()

    def start():
        driver = launch(tmp_path / "profile", downloads)
        emulate(driver, 1200, 900, request.param, mobile=False)
        return driver
    with opened(start, lambda driver: Phone(driver, server.url, downloads), server) as page:
        yield page, request.param


def on_screen(page, ratio):
    """The canvas as the screen shows it, in device pixels."""
    left, top, width, height = page.rect(page.driver.find_element("id", "screen"))
    shot = page.driver.execute_cdp_cmd("Page.captureScreenshot", {"format": "png", "clip": {
        "x": left, "y": top, "width": width, "height": height, "scale": 1}})
    picture = Image.open(io.BytesIO(base64.b64decode(shot["data"]))).convert("RGB")
    assert picture.size == (width * ratio, height * ratio)
    return picture


def test_sharp_at_every_pixel_ratio(screen_at):
    """Without "Lissage" the screen shows each logical pixel as a square of ratio x ratio device
    pixels of its one colour; the canvas's pixels are the device's and a click still lands in
    its column. "Lissage" then smooths the edges."""
    page, ratio = screen_at
    page.open()
    page.enter(HOME)
    page.enter(CHARACTERS)
    assert not page.checked("Lissage en étiré")
    shown = layout(page)
    assert shown["canvas"][2:] == list(LOGICAL) and shown["pixels"] == [v * ratio for v in LOGICAL]
    page.click_board(95, 150)  # client pixels: column 3
    wait("the move and its reply", lambda: Counter(cells(logical(
        page.picture(), (0, 0, *shown["pixels"])), CELLS).values()) == {"green": 1, "red": 1})
    played = cells(logical(page.picture(), (0, 0, *shown["pixels"])), CELLS)
    assert played[3, CELLS] == "green"
    screen = on_screen(page, ratio)
    board = logical(screen, (0, 0, *screen.size))
    assert screen == board.resize(screen.size, Image.Resampling.NEAREST), "blended pixels"
    assert lines_drawn(board) and Counter(cells(board, CELLS).values()) == {"green": 1, "red": 1}
    hard = len(screen.getcolors(1 << 24))
    print(f"colours at ratio {ratio} without smoothing: {hard}")
    if ratio > 1:  # at 1 the frame is not stretched: nothing to smooth
        page.menu("Graphisme", "Lissage en étiré")
        smooth = wait("smoothed edges", lambda: s if len((s := on_screen(page, ratio)).getcolors(
            1 << 24)) > 2 * hard else None)
        print(f"colours at ratio {ratio} with smoothing: {len(smooth.getcolors(1 << 24))}")
