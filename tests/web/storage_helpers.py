"""A session played in the page, and the save file as the browser's storage holds it, read
straight from IndexedDB (where Emscripten's file system keeps it) by the test's own script."""

import os
import shutil
from pathlib import Path

import pytest
from desktop import cells
from savefile_layout import LOST, PLAYED, SaveFile
from webpage import serve, wait

FAULTS = Path(__file__).with_name("faults.js")
SITE = Path(os.environ.get("KALVERO_SITE", Path(__file__).parents[2] / "build" / "web" / "site"))
CELLS, HOME, CHARACTERS, WARNING, NAME = 7, "Acceuil", "Personnages", "Attention", "1033"

# The stored save file's bytes, or null; through the plain open where faults are planted.
STORED = """const done = arguments[arguments.length - 1];
const request = (window.__plainOpen || ((...a) => indexedDB.open(...a)))('/kalvero4');
request.onerror = () => done(null);
request.onsuccess = () => {
  const db = request.result;
  if (!db.objectStoreNames.contains('FILE_DATA')) { db.close(); return done(null); }
  const get = db.transaction('FILE_DATA').objectStore('FILE_DATA')
      .get('/kalvero4/Fichier de sauvegarde');
  get.onsuccess = () => { db.close(); done(get.result ? Array.from(new Uint8Array(get.result.contents.buffer || get.result.contents, get.result.contents.byteOffset || 0, get.result.contents.length)) : null); };
  get.onerror = () => { db.close(); done(null); };
};"""


@pytest.fixture(scope="module")  # a module that imports it serves this site
def server(tmp_path_factory):
    """Two copies of the site on one origin, /a/ and /b/, each with faulty.html and blank.html
    (a page of the origin that is not the game); the page fixture opens /a/index.html."""
    if not (SITE / "kalvero4.wasm").is_file():
        pytest.fail(f"no built site in {SITE}", pytrace=False)
    root = tmp_path_factory.mktemp("origin")
    page = (SITE / "index.html").read_text(encoding="utf-8")
    for folder in ("a", "b"):
        (root / folder).mkdir()
        for item in SITE.iterdir():
            (root / folder / item.name).symlink_to(item)
        (root / folder / "index.html").unlink()
        (root / folder / "index.html").write_text(page, encoding="utf-8")
        (root / folder / "faulty.html").write_text(page.replace(
            '<meta charset="utf-8">', '<meta charset="utf-8">\n<script src="faults.js"></script>'),
            encoding="utf-8")
        shutil.copy(FAULTS, root / folder / "faults.js")
        (root / folder / "blank.html").write_text(
            '<!DOCTYPE html><html><head><title>-</title><link rel="icon" href="data:,"></head></html>')
    url, served = serve(root)
    served.url = url.replace("/index.html", "/a/index.html")
    yield served
    served.shutdown()


def go(page, name):
    page.driver.get(page.url.replace("index.html", name))


def stored(page) -> bytes | None:
    found = page.driver.execute_async_script(STORED)
    return None if found is None else bytes(found)


def totals(data: bytes):
    """The name and the games played and lost, over every record."""
    save = SaveFile.from_stored(data)
    return (save.name.decode("cp1252"), sum(r[PLAYED] for r in save.stats),
            sum(r[LOST] for r in save.stats))


def wait_stored(page, expected):
    """Waits until the stored file holds that (name, played, lost); returns its bytes."""
    return wait(f"the stored file with {expected}",
                lambda: (data := stored(page)) and totals(data) == expected and data)


def play_session(page, name=None):
    """The first dialogs (with that name typed), a move and its reply, then the game given up:
    the game begun at the start and the one begun after it are counted, the first as lost."""
    page.enter(HOME)
    field = page.control(CHARACTERS, NAME)
    if name:
        field.clear()
        field.send_keys(name)
    page.enter(CHARACTERS)
    page.keys("4")
    page.wait_picture("the move and its reply", lambda b: len(cells(b, CELLS)) == 2)
    page.menu("Menu", "Recommencer")
    page.answer(WARNING, "Oui")
    page.wait_picture("the cleared board", lambda b: cells(b, CELLS) == {})


def hide(page):
    """What Safari sends when the page goes: pagehide (the others send visibilitychange)."""
    page.js("dispatchEvent(new PageTransitionEvent('pagehide'))")


def name_shown(page) -> str:
    page.enter(HOME)
    return page.box(CHARACTERS)[NAME][0]
