"""Storage that fails loses nothing. Each fault is planted by tests/web/faults.js, loaded
before the page's own scripts in faulty.html, a copy of the page beside it on the same origin;
what the browser then stores is read from IndexedDB itself, and the next normal start shows it."""

import json
from base64 import b64decode
import time

import pytest
from storage_helpers import (CHARACTERS, go, hide, name_shown, play_session, server, stored,  # noqa: F401 - server: this module's site
                             totals, wait_stored)
from webpage import wait

ENDED = """const e = document.getElementById('ended');
return e.hidden ? null : [document.getElementById('ended-text').textContent,
    [...e.querySelectorAll('button')].filter(b => !b.hidden).map(b => b.textContent)];"""


def ended(page):
    return wait("the page over the window", lambda: page.js(ENDED))


def first_session(page):
    """A normal session named Zoé, stored; returns the stored file's bytes."""
    page.open()
    play_session(page, "Zoé")
    hide(page)
    return wait_stored(page, ("Zoé", 2, 1))


@pytest.mark.parametrize("choice, kept", [
    ("Jouer sans enregistrer", ("Zoé", 2, 1)),
    ("Jouer et remplacer la sauvegarde", ("Léa", 2, 1))], ids=["play", "store-over"])
def test_failed_read_stores_nothing_unless_agreed(page, choice, kept):
    """Opening IndexedDB throws at the start: the page says so and offers its choices; playing
    without storing leaves the stored file byte for byte, storing over it replaces it."""
    before = first_session(page)
    go(page, "faulty.html?fault=open-once")
    text, buttons = ended(page)
    assert "n'a pas pu être lue" in text and page.boxes() == []
    assert buttons == ["Jouer sans enregistrer", "Jouer et remplacer la sauvegarde",
                       "Relancer Kalvero 4"]
    page.driver.find_element("xpath", f"//div[@id='ended-choices']/button[.='{choice}']").click()
    play_session(page, "Léa")
    hide(page)
    page.menu("Menu", "Quitter")  # the game's own end writes and stores the file too
    wait("the end", lambda: page.js(ENDED))
    if kept[0] == "Léa":
        wait_stored(page, kept)
    go(page, "blank.html")
    time.sleep(0.5)  # what a closing page would store has had the time to arrive
    after = stored(page)
    assert totals(after) == kept
    assert kept[0] == "Léa" or after == before, "the stored file was written over"
    page.open()
    assert name_shown(page) == kept[0]


def test_quota_failure_keeps_the_session_in_the_copy(page):
    """Every write fails on quota: the player is told, the stored file stays as it was, and the
    copy the page keeps brings the session back at the next start, then is removed."""
    before = first_session(page)
    go(page, "faulty.html?fault=quota")
    play_session(page)  # the name read, Zoé, kept
    hide(page)
    message = page.box("Kalvero 4")["message"]
    assert "n'a pas pu être enregistrée" in message and "Exporter la sauvegarde" in message
    page.enter("Kalvero 4")
    go(page, "blank.html")
    assert stored(page) == before
    key = "kalvero4-last-save-file:/a/"

    def kept():
        return json.loads(page.js("return localStorage.getItem(arguments[0])", key))

    copy = kept()
    assert totals(b64decode(kept()["bytes"])) == ("Zoé", 4, 2)
    go(page, "faulty.html?fault=quota")  # the copy is taken but cannot be stored: it stays
    page.box("Acceuil")
    assert kept()["time"] == copy["time"]
    go(page, "blank.html")  # and the session begun from it is kept over it
    assert stored(page) == before and totals(b64decode(kept()["bytes"])) == ("Zoé", 5, 2)
    page.open()  # taken and stored, then removed
    assert page.js("return localStorage.getItem(arguments[0])", key) is None
    assert name_shown(page) == "Zoé"
    page.enter(CHARACTERS)
    hide(page)
    wait_stored(page, ("Zoé", 6, 2))


INTRUDER = "Intrus"


def checksum(text: str) -> int:  # the page's sum over a copy's Base64 text
    total = 0
    for c in text:
        total = (total * 31 + ord(c)) % 2**32
    return total


def damaged_copies(good: dict):
    """Copies that must never be taken, each made from a whole copy of a file named Intrus."""
    cut = good["bytes"][:40]
    return {
        "not-json": json.dumps(good)[:-10],
        "not-base64": json.dumps(dict(good, bytes="%%%" + good["bytes"][3:])),
        "wrong-sum": json.dumps(dict(good, sum=(good["sum"] + 1) % 2**32)),
        "cut-short": json.dumps(dict(good, bytes=cut, sum=checksum(cut))),  # only the length tells
        "no-time": json.dumps({k: v for k, v in good.items() if k != "time"}),
    }


def intruders_copy_beside_zoe(page):
    """The backup copy kept by a session of the intruder, made newer than anything stored, while
    the stored file is Zoé's (2 played, 1 lost); the page left for a blank one. Returns the
    copy's key, the copy and the stored file."""
    page.open()
    play_session(page, INTRUDER)
    hide(page)
    key = "kalvero4-last-save-file:/a/"
    copy = json.loads(page.js("return localStorage.getItem(arguments[0])", key))
    go(page, "blank.html")
    page.js("indexedDB.deleteDatabase('/kalvero4'); localStorage.clear()")
    page.open()
    play_session(page, "Zoé")
    hide(page)
    stored_file = wait_stored(page, ("Zoé", 2, 1))
    go(page, "blank.html")
    copy["time"] = int(time.time() * 1000) + 10**9
    return key, copy, stored_file


@pytest.mark.parametrize("damage", ["not-json", "not-base64", "wrong-sum", "cut-short",
                                    "no-time"])
def test_damaged_copy_is_never_taken(page, damage):
    """A damaged copy newer than the stored file: the page starts from the stored file, says
    nothing is wrong to the player, and stores its session over nothing but its own."""
    key, good, before = intruders_copy_beside_zoe(page)
    assert checksum(good["bytes"]) == good["sum"]
    page.js("localStorage.setItem(arguments[0], arguments[1])", key, damaged_copies(good)[damage])
    assert stored(page) == before
    page.open()
    assert name_shown(page) == "Zoé"


def test_copy_is_scoped_by_the_site_folder(page):
    """Two sites on one origin: a copy kept by /a/ is taken by /a/ and never by /b/."""
    key, copy, _ = intruders_copy_beside_zoe(page)
    page.js("localStorage.setItem(arguments[0], arguments[1])", key, json.dumps(copy))
    page.driver.get(page.url.replace("/a/", "/b/"))
    assert name_shown(page) == "Zoé"
    assert page.js("return Object.keys(localStorage)") == [key]
    page.open()
    assert name_shown(page) == INTRUDER


EVENTS = {"hide": "__hidden = true; document.dispatchEvent(new Event('visibilitychange'))",
          "show": "__hidden = false; document.dispatchEvent(new Event('visibilitychange'))",
          "pageshow": "dispatchEvent(new PageTransitionEvent('pageshow', {persisted: true}))",
          "pagehide": "dispatchEvent(new PageTransitionEvent('pagehide'))"}


@pytest.mark.parametrize("events", [["hide"], ["show", "pagehide"], ["pageshow", "pagehide"]],
                         ids=["hidden", "shown-then-pagehide", "pageshow-then-pagehide"])
def test_lost_connection_is_opened_again(page, events):
    """The IndexedDB connection is lost while the page is in the background: hidden, the store
    opens it again once and stores; back in front, the page opens a new one for the next store.
    The player is told nothing."""
    go(page, "faulty.html?fault=hide")
    play_session(page, "Zoé")
    page.js("__loseConnections()")
    for event in events:
        page.js(EVENTS[event])
    wait_stored(page, ("Zoé", 2, 1))
    assert page.js("return __opens") == 2 and page.boxes() == []


def test_hidden_then_closed_stores_once(page):
    """visibilitychange and pagehide of one hiding store once, and one store runs at a time;
    shown and hidden again after a game, the page stores again."""
    go(page, "faulty.html?fault=hide")
    play_session(page, "Zoé")
    page.js("__hidden = true; document.dispatchEvent(new Event('visibilitychange'))")
    for _ in range(2):  # a few milliseconds later, as a browser sends them
        time.sleep(0.05)
        hide(page)
    wait_stored(page, ("Zoé", 2, 1))
    time.sleep(0.5)  # any second store has had the time to begin
    assert page.js("return __writes") == 1
    page.js("__hidden = false; document.dispatchEvent(new Event('visibilitychange'))")
    page.keys("4")
    page.wait_picture("the move and its reply", lambda b: len(b.getcolors(1 << 16)) > 0)
    page.menu("Menu", "Recommencer")
    page.answer("Attention", "Oui")
    page.js("__hidden = true; document.dispatchEvent(new Event('visibilitychange'))")
    wait_stored(page, ("Zoé", 3, 2))
    assert page.js("return __writes") == 2


def test_pictures_failure_says_so(page):
    """The bitmaps arrive damaged: a message and the restart button, never a blank frame."""
    go(page, "faulty.html?fault=pictures")
    text, buttons = ended(page)
    assert "images" in text and buttons == ["Relancer Kalvero 4"] and page.boxes() == []


def test_failed_import_keeps_the_stored_file(page, tmp_path):
    """Importing while every write fails on quota: a message and the restart button, and the
    stored file as it was."""
    before = first_session(page)
    go(page, "faulty.html?fault=quota")
    page.box("Acceuil")
    (tmp_path / "import").write_bytes(before.replace(b"Zo\xe9", b"Eve"))
    page.driver.find_element("id", "import-file").send_keys(str(tmp_path / "import"))
    text, buttons = ended(page)
    assert "n'a pas pu être enregistré" in text and buttons == ["Relancer Kalvero 4"]
    assert stored(page) == before


def test_page_left_for_the_cache_stores_when_back(page):
    """A page left for the back-forward cache (pagehide persisted, then hidden) starts no
    IndexedDB work, which WebKit would freeze open and so block every page of the site; the
    copy holds the session, and the page stores it when it comes back."""
    go(page, "faulty.html?fault=hide")
    play_session(page, "Zoé")
    writes = page.js("return __writes")
    page.js("dispatchEvent(new PageTransitionEvent('pagehide', {persisted: true}));"
            "__hidden = true; document.dispatchEvent(new Event('visibilitychange'))")
    time.sleep(0.5)  # any store begun has had the time to open its transaction
    assert page.js("return __writes") == writes
    key = "kalvero4-last-save-file:/a/"
    copy = json.loads(page.js("return localStorage.getItem(arguments[0])", key))
    assert totals(b64decode(copy["bytes"])) == ("Zoé", 2, 1)
    page.js("__hidden = false; document.dispatchEvent(new Event('visibilitychange'));"
            "dispatchEvent(new PageTransitionEvent('pageshow', {persisted: true}))")
    wait_stored(page, ("Zoé", 2, 1))


def test_page_left_starts_again_with_its_session(page):
    """Played, then left for another page of the site and opened again: the next start comes at
    once and holds the session (in WebKit a store begun as the page left used to freeze in the
    back-forward cache and hold the next start for many seconds)."""
    page.open()
    play_session(page, "Zoé")
    go(page, "blank.html")
    page.open()
    assert name_shown(page) == "Zoé"
    page.enter(CHARACTERS)
    hide(page)
    wait_stored(page, ("Zoé", 3, 1))
