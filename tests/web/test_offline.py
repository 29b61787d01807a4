"""The web edition as an installed app: its manifest and icons, the one picture file the page
draws from, and the service worker that keeps the site for playing without the network."""

import contextlib
import importlib.util
import io
import json
import re
import shutil
from collections import Counter
from pathlib import Path

import pytest
from conftest import SITE
from desktop import cells
from PIL import Image
from webpage import Handler, serve, wait

ROOT = Path(__file__).resolve().parents[2]
PICTURES = ROOT / "src" / "resources" / "pictures"
HOME, CHARACTERS, CELLS = "Acceuil", "Personnages", 7


def tool(name):
    spec = importlib.util.spec_from_file_location(name, ROOT / "tools" / f"{name}.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def site_copy(tmp_path, folder="deep/er") -> Path:
    """The built site in a folder below the server's root: it must not depend on its place."""
    copy = tmp_path / "www" / folder
    shutil.copytree(SITE, copy)
    return copy


def worker_files(site: Path):
    """The files the built worker keeps, and the name part of its store (the hash)."""
    text = (site / "service-worker.js").read_text()
    files = json.loads(re.search(r"var kFiles = (\[.*?\]);", text).group(1))
    return files, re.search(r"var kHash = '([0-9a-f]+)';", text).group(1)


KEPT = """const done = arguments[arguments.length - 1];
navigator.serviceWorker.ready.then(async () => {
  while (!navigator.serviceWorker.controller) await new Promise(r => setTimeout(r, 20));
  done(await caches.keys());
});"""


def stores(page):
    return page.driver.execute_async_script(
        "const done = arguments[arguments.length - 1]; caches.keys().then(done);")


def kept_stores(page):
    """Once the worker has kept the site and answers for the page: the names of the stores."""
    return page.driver.execute_async_script(KEPT)


def play_move_and_reply(page):
    page.open()
    page.enter(HOME)
    page.enter(CHARACTERS)
    page.click_board(95, 150)
    board = page.wait_picture("a move and its reply",
                              lambda b: Counter(cells(b, CELLS).values()) == {"green": 1, "red": 1})
    return cells(board, CELLS)


@contextlib.contextmanager
def serving(page, root, folder, handler=None):
    """root/www served by a server of the test's own, the page's address in its folder; the
    server stops at the end of the block."""
    url, server = serve(root / "www", handler)
    page.url = url.replace("index.html", f"{folder}/index.html")
    try:
        yield server
    finally:
        server.shutdown()
        server.server_close()


def test_second_start_offline(page, tmp_path):
    """A first visit; the server stops; the page opens again from the worker's store, from its
    folder's own address too, and a move and its reply play; the discreet icon is there."""
    site = site_copy(tmp_path)
    with serving(page, tmp_path, "deep/er"):
        page.open()
        stores = kept_stores(page)
        files, digest = worker_files(site)
        assert [s.split(" ")[0] for s in stores] == [f"kalvero4-{digest}"]
        kept = page.driver.execute_async_script(
            """const done = arguments[arguments.length - 1];
            caches.open(arguments[0]).then(s => s.keys()).then(
                k => done(k.map(r => r.url)))""", stores[0])
        assert sorted(kept) == sorted(page.url.replace("index.html", f) for f in files)
    for address in (page.url, page.url.replace("index.html", "")):
        page.driver.get(address)
        page.box(HOME)
    pieces = play_move_and_reply(page)
    assert sorted(pieces.values()) == ["green", "red"]
    icon = page.driver.execute_async_script(
        """const done = arguments[arguments.length - 1];
        fetch('pictures/discreet.ico').then(r => r.arrayBuffer()).then(b => done(b.byteLength),
                                                                      e => done(String(e)))""")
    assert icon == (PICTURES / "discreet.ico").stat().st_size


def test_a_new_build_is_taken_at_the_next_start(page, tmp_path):
    """A new build on the server: the next start fills the new build's store and removes the
    old one; the start after that shows the new build's page."""
    site = site_copy(tmp_path, "v")
    with serving(page, tmp_path, "v"):
        page.open()
        old = kept_stores(page)
        files, _ = worker_files(site)
        index = site / "index.html"
        index.write_text(index.read_text().replace("</body>", "<!-- build 2 --></body>"))
        tool("make_service_worker").main([str(ROOT / "web" / "service-worker.js"), str(site),
                                          str(site / "service-worker.js"), *files])
        _, digest = worker_files(site)
        page.driver.get(page.url)
        folder = page.url[:-len("index.html")]
        wait("the new build's store alone", lambda: stores(page) == [f"kalvero4-{digest} {folder}"])
        assert old != stores(page)
        page.driver.get(page.url)
        page.box(HOME)
        assert "<!-- build 2 -->" in page.driver.page_source


@pytest.mark.parametrize("change, same", [
    ("nothing", True),
    ("one byte of the program", False),
    ("a file's name", False),
    ("a file less", False),
])
def test_store_name_follows_the_files(tmp_path, change, same):
    make = tool("make_service_worker")
    site = site_copy(tmp_path)
    files, digest = worker_files(site)
    assert digest == make.site_hash(site, files)  # the build's worker names the built files
    if change == "one byte of the program":
        data = bytearray((site / "kalvero4.wasm").read_bytes())
        data[len(data) // 2] ^= 1
        (site / "kalvero4.wasm").write_bytes(data)
    elif change == "a file's name":
        (site / "resources.js").rename(site / "resources2.js")
        files = [f.replace("resources.js", "resources2.js") for f in files]
    elif change == "a file less":
        files.remove("pictures/small.ico")
    assert (make.site_hash(site, files) == digest) == same


def test_worker_refuses_a_site_without_its_files(tmp_path):
    make = tool("make_service_worker")
    site = site_copy(tmp_path)
    template = (ROOT / "web" / "service-worker.js").read_text()
    with pytest.raises(SystemExit, match="resources.js"):
        (site / "resources.js").unlink()
        make.worker(template, site, ["index.html", "resources.js"])
    with pytest.raises(SystemExit, match="placeholders"):
        make.worker("var kFiles = [];", site, ["index.html"])


def program_icon() -> Image.Image:
    icon = Image.open(PICTURES / "kalvero4.ico")
    icon.size = (32, 32)
    return icon.convert("RGBA")


APP = """const done = arguments[arguments.length - 1];
const caption = getComputedStyle(document.querySelector('.title-bar')).backgroundImage;
done({background: getComputedStyle(document.body).backgroundColor, caption,
      theme: document.querySelector('meta[name=theme-color]').content,
      head: [...document.head.querySelectorAll('[href], [src]')].map(
          e => e.getAttribute('href') || e.getAttribute('src'))});"""


def rgb(hex_colour):
    return "rgb({}, {}, {})".format(*bytes.fromhex(hex_colour[1:]))


@pytest.mark.engines("chromium", reason="the manifest as the browser reads it comes from "
                     "Chromium's DevTools protocol")
def test_manifest_and_icons(page):
    """The manifest as Chromium reads it: installable, named, standalone, in the window's
    colours, every address relative; the icons are the program's icon, pixel for pixel."""
    page.open()
    kept_stores(page)
    found = page.driver.execute_cdp_cmd("Page.getAppManifest", {})
    assert found["errors"] == [] and found["url"].startswith(page.url.replace("index.html", ""))
    assert page.driver.execute_cdp_cmd("Page.getInstallabilityErrors", {}) == {
        "installabilityErrors": []}
    manifest = json.loads(found["data"])
    window = page.driver.execute_async_script(APP)
    assert (manifest["name"], manifest["display"], manifest["lang"]) == (
        "Kalvero 4", "standalone", "fr")
    assert rgb(manifest["background_color"]) == window["background"]
    assert manifest["theme_color"] == window["theme"]
    assert window["caption"].startswith("linear-gradient(to right, " + rgb(manifest["theme_color"]))
    addresses = [manifest["start_url"], manifest["scope"]] + [i["src"] for i in manifest["icons"]]
    for address in addresses + window["head"]:
        assert not re.match(r"^([a-z]+:|/)", address), f"{address} is not relative"
    purposes = Counter()
    for icon in manifest["icons"]:
        picture = Image.open(io.BytesIO((SITE / icon["src"]).read_bytes()))
        side = picture.size[0]
        assert icon["sizes"] == f"{side}x{side}" and icon["type"] == "image/png"
        purposes[icon["purpose"], side] += 1
        if icon["purpose"] == "any":
            assert picture.resize((32, 32), Image.NEAREST).convert("RGBA").tobytes() == \
                program_icon().tobytes()
        else:
            check_maskable(picture.convert("RGBA"))
    assert purposes == {("any", 192): 1, ("any", 512): 1, ("maskable", 512): 1}


def check_maskable(picture):
    """Opaque (a mask shows every pixel it keeps), and nothing but the background outside the
    circle that every mask keeps (40 % of the side around the centre)."""
    side = picture.size[0]
    assert picture.getextrema()[3] == (255, 255)
    background = {picture.getpixel((0, y)) for y in range(side)}
    assert len(background) == 2, "the board's two background colours down the edge"
    icon_pixels = 0
    for y in range(0, side, 2):
        for x in range(0, side, 2):
            inside = (x + 0.5 - side / 2) ** 2 + (y + 0.5 - side / 2) ** 2 < (0.4 * side) ** 2
            pixel = picture.getpixel((x, y))
            if pixel != picture.getpixel((0, y)):
                icon_pixels += 1
                assert inside, f"the icon at ({x}, {y}) is outside the safe circle"
    assert icon_pixels > (0.25 * side / 2) ** 2, "the icon fills the middle"


# Each picture the page loaded, as the page draws it: its pixels, read back from a canvas.
PICTURES_LOADED = """const out = {};
for (const [id, picture] of Object.entries(Page.state.pictures)) {
  const canvas = document.createElement('canvas');
  canvas.width = picture.width;
  canvas.height = picture.height;
  const g = canvas.getContext('2d');
  g.drawImage(picture, 0, 0);
  out[id] = [picture.width, picture.height,
             Array.from(g.getImageData(0, 0, picture.width, picture.height).data)];
}
return [Page.pictureAtlas.file, out];"""


def test_pictures_come_from_one_file_as_they_are(page):
    """The page loads one PNG and cuts every bitmap of the program out of it, pixel for pixel."""
    page.open()
    atlas, loaded = page.js(PICTURES_LOADED)
    assert (SITE / atlas).is_file() and atlas.endswith(".png")
    bitmaps = {int(re.sub(r"\D", "", p.stem)): p for p in PICTURES.glob("*.bmp")}
    assert sorted(map(int, loaded)) == sorted(bitmaps)
    for number, path in bitmaps.items():
        width, height, pixels = loaded[str(number)]
        original = Image.open(path).convert("RGBA")
        assert (width, height) == original.size, path.name
        assert bytes(pixels) == original.tobytes(), path.name


ASKED = "() => { window.__asked = true; return %s; }"


@pytest.mark.parametrize("persist, asked", [
    ("delete StorageManager.prototype.persist", False),
    ("StorageManager.prototype.persist = " + ASKED % "Promise.reject(new Error('refusé'))", True),
    ("StorageManager.prototype.persist = " + ASKED % "Promise.resolve(false)", True),
])
@pytest.mark.engines("chromium", reason="WebKitGTK has no navigator.storage at all, and the "
                     "script must run before the page's own, through Chromium's DevTools")
def test_storage_refused_changes_nothing(page, persist, asked):
    """The page asks to keep its storage at start; whether the browser lacks the question,
    refuses or says no, the game plays."""
    page.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument",
                                {"source": f"window.__asked = false; {persist};"})
    pieces = play_move_and_reply(page)
    assert sorted(pieces.values()) == ["green", "red"]
    assert page.js("return window.__asked") == asked


class GzipEncodingHandler(Handler):
    """A server that sends .gz files as gzip-encoded, which the browser inflates itself."""

    def end_headers(self):
        if self.path.endswith(".gz"):
            self.send_header("Content-Encoding", "gzip")
        super().end_headers()


FETCHED = """return performance.getEntriesByType('resource').map(e => e.name.replace(/^.*\\//, ''))
    .filter(n => /\\.(js|wasm)(\\.gz)?$/.test(n))"""


PLAIN = {"kalvero4-program.js", "kalvero4.wasm"}


@pytest.mark.parametrize("case, plain", [
    ("inflated by the page", False),
    ("gzip Content-Encoding", False),
    ("no .gz files", True),
])
def test_program_arrives_however_the_server_sends_it(page, tmp_path, case, plain):
    """The program and its WebAssembly come compressed where the browser inflates them, and as
    they are otherwise; a move and its reply play in every case."""
    program_arrives(page, tmp_path, case, plain)


@pytest.mark.engines("chromium", reason="the browser's DecompressionStream is taken away before "
                     "the page's scripts through Chromium's DevTools")
def test_program_arrives_plain_without_decompression(page, tmp_path):
    """A browser that cannot inflate gets the plain files, and plays."""
    page.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument",
                                {"source": "delete window.DecompressionStream;"})
    program_arrives(page, tmp_path, "no DecompressionStream", True)


def program_arrives(page, tmp_path, case, plain):
    site = site_copy(tmp_path, "s")
    handler = Handler
    if case == "gzip Content-Encoding":
        handler = GzipEncodingHandler
    elif case == "no .gz files":
        for packed in site.glob("*.gz"):
            packed.unlink()
    # The server's own: the missing .gz files of one case are its own, and the page falls back.
    with serving(page, tmp_path, "s", handler) as server:
        pieces = play_move_and_reply(page)
        assert sorted(pieces.values()) == ["green", "red"]
        loaded = set(page.js(FETCHED))
    packed = {"kalvero4-program.js.gz", "kalvero4.wasm.gz"}
    assert "kalvero4.js" in loaded
    assert (PLAIN <= loaded) == plain and (PLAIN & loaded == set()) == (not plain)
    assert (packed <= loaded) == (case != "no DecompressionStream")
    if case == "no .gz files":  # the two files asked for and missing, and nothing else
        assert sorted(server.failed) == ["404 GET /s/kalvero4-program.js.gz",
                                         "404 GET /s/kalvero4.wasm.gz"]
        if page.engine == "chromium":  # its console tells of them too: read, and so not errors
            missing = [e["message"] for e in page.driver.get_log("browser")
                       if e["level"] == "SEVERE"]
            assert len(missing) == 2 and all(".gz" in m and "404" in m for m in missing), missing
