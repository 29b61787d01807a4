"""A local server for the built site, and a Page in headless Chromium or in WebKitGTK (the engine
of Safari, under Xvfb) that types, clicks, touches, opens menus and reads the window, its boxes
and the canvas (logical pixels at 1x). Every helper works alike in both engines: W3C actions,
scripts, and what the server adds to the page for the tests."""

import base64
import contextlib
import functools
import glob
import http.server
import io
import os
import threading
import time

import pytest
from desktop import start_xvfb, wait  # the suites poll and start displays alike
from PIL import Image
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.actions import interaction
from selenium.webdriver.common.actions.action_builder import ActionBuilder
from selenium.webdriver.common.actions.pointer_input import PointerInput
from selenium.webdriver.common.keys import Keys

ENGINES = ("chromium", "webkit")
WINDOW = (1200, 900)
# Debian's webkit2gtk-driver drives this browser; its folder names the API version.
MINIBROWSER = next(iter(sorted(glob.glob("/usr/lib/*/webkit2gtk-4.*/MiniBrowser"))), None)

# Put by the server at the head of every HTML document it sends, so that it runs before the
# page's own scripts in any engine: errors and rejections, console.error, and the bytes of each
# download the page offers (a link with a download name), kept by that name.
TEST_HOOKS = """<script>(function () {
  const errors = window.__errors = [], downloads = window.__downloads = {};
  addEventListener('error', e => errors.push('error: ' + (e.message || 'a resource failed: ' +
      (e.target && (e.target.src || e.target.href)))), true);
  addEventListener('unhandledrejection', e => errors.push('rejection: ' + e.reason));
  const report = console.error;
  console.error = function (...args) {
    errors.push('console: ' + args.join(' '));
    report(...args);
  };
  const click = HTMLAnchorElement.prototype.click;
  HTMLAnchorElement.prototype.click = function () {
    if (this.download) {
      downloads[this.download] = fetch(this.href).then(r => r.arrayBuffer()).then(b => {
        let text = '';
        for (const byte of new Uint8Array(b)) text += String.fromCharCode(byte);
        return btoa(text);
      });
    }
    return click.call(this);
  };
})();</script>"""

# The box of a caption: each control's text (an edit's or a list's value) and check mark.
BOX = """const box = [...document.querySelectorAll('.box')].find(
    b => b.querySelector('.box-caption span').textContent === arguments[0]);
if (!box) return null;
const out = {message: box.querySelector('.message-text')?.textContent};
box.querySelectorAll('[data-control]').forEach(c => out[c.dataset.control] = [
    c.value ?? c.textContent, c.querySelector('input')?.checked ?? null]);
return out;"""

DOWNLOADED = """const [name, done] = arguments;  // [base64] once offered, else null
const offered = window.__downloads?.[name];
if (!offered) done(null); else offered.then(b => done([b]), e => done(['failed: ' + e]));"""


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map,
                      ".wasm": "application/wasm", ".js": "text/javascript"}

    def send_head(self):
        path = self.translate_path(self.path)
        if os.path.isdir(path):
            path = os.path.join(path, "index.html")
        if not path.endswith(".html") or not os.path.isfile(path):
            return super().send_head()
        with open(path, "rb") as html:
            body = html.read().replace(b"<head>", b"<head>" + TEST_HOOKS.encode(), 1)
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        return io.BytesIO(body)

    def log_request(self, code="-", size="-"):
        if isinstance(code, int) and code >= 400:  # whatever the page asks for must be there
            self.server.failed.append(f"{code} {self.command} {self.path}")

    def log_message(self, *_):
        pass


def serve(site, handler=None):
    """Serves the site on 127.0.0.1 at a free port from a thread (by Handler, or a handler class
    of its own); returns (url, server). The server's `failed` lists the requests it could not
    answer."""
    handler = functools.partial(handler or Handler, directory=str(site))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    server.failed = []
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_address[1]}/index.html", server


@contextlib.contextmanager
def opened(start, make, server, what="the browser"):
    """A browser from start(), opened as make(driver); afterwards quits it and fails on any error
    the page reported and on any request the server could not answer."""
    try:
        driver = start()
    except Exception as error:  # noqa: BLE001 - whatever stops the browser, nothing can be judged
        pytest.fail(f"{what} could not start: {error}", pytrace=False)
    page, failed = make(driver), len(server.failed)
    try:
        yield page
        errors = page.all_errors()
    finally:
        driver.quit()
    assert errors == [], "the page reported errors"
    assert server.failed[failed:] == [], "the page asked for what the site does not have"


def start_display(log):
    """Starts Xvfb on a free display; returns (process, ":N"). Raises when it cannot start."""
    return start_xvfb(log, (1280, 1024))


def launch(profile, downloads, engine="chromium", display=None) -> webdriver.Remote:
    """A fresh browser of that engine: its own profile folder, downloads into `downloads`.
    WebKitGTK needs an X display (see start_display); a phone is launch_phone's."""
    if engine == "webkit":
        return launch_webkit(profile, downloads, display)
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     f"--user-data-dir={profile}", "--window-size=%d,%d" % WINDOW):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    driver.execute_cdp_cmd("Browser.setDownloadBehavior",
                           {"behavior": "allow", "downloadPath": str(downloads)})
    return driver


def launch_webkit(profile, downloads, display) -> webdriver.WebKitGTK:
    if not MINIBROWSER:
        raise RuntimeError("no MiniBrowser in /usr/lib/*/webkit2gtk-4.*/ (tools/setup webtest)")
    if not display:
        raise RuntimeError("WebKitGTK needs an X display")
    options = webdriver.WebKitGTKOptions()
    options.binary_location = MINIBROWSER
    options.add_argument("--automation")
    # The browser keeps its storage, cache and settings under the home and XDG folders, and
    # saves downloads in the user's download folder: all of them in this test's profile.
    config = profile / "config"
    config.mkdir(parents=True)
    (config / "user-dirs.dirs").write_text(f'XDG_DOWNLOAD_DIR="{downloads}"\n')
    env = {"DISPLAY": display, "GDK_BACKEND": "x11", "HOME": str(profile),
           "XDG_CONFIG_HOME": str(config),
           "XDG_DATA_HOME": str(profile / "data"), "XDG_CACHE_HOME": str(profile / "cache")}
    saved = {k: os.environ.get(k) for k in env}
    os.environ.update(env)  # the driver's service starts with this process's environment
    try:
        driver = webdriver.WebKitGTK(executable_path="/usr/bin/WebKitWebDriver", options=options)
    finally:
        for k, v in saved.items():
            if v is None:
                os.environ.pop(k)
            else:
                os.environ[k] = v
    try:
        driver.set_window_size(*WINDOW)
    except Exception:
        driver.quit()
        raise
    return driver


class Page:
    def __init__(self, driver, url, downloads):
        self.driver, self.url, self.downloads = driver, url, downloads
        self.engine = "chromium" if driver.name in ("chrome", "chromium") else "webkit"
        self.errors = []  # those of the documents that a reload left behind

    def js(self, script, *args):
        return self.driver.execute_script(script, *args)

    def open(self):
        self.driver.get(self.url)
        return self.box("Acceuil")

    def reload(self, file=None):
        """Reloads the page, or hands it a file to import, which reloads it."""
        self.errors += self.js("window.__left = true; return window.__errors")
        if file:
            self.driver.find_element("id", "import-file").send_keys(str(file))
        else:
            self.driver.refresh()
        wait("the page started again", lambda: self.js("return !window.__left"))
        return self.box("Acceuil")

    def all_errors(self):
        """The errors of every document so far; in Chromium its console's too, which also
        holds those of workers."""
        logged = [e["message"] for e in self.driver.get_log("browser")
                  if e["level"] == "SEVERE"] if self.engine == "chromium" else []
        errors = []
        if self.driver.current_url.startswith("http"):  # served by serve(), hence hooked
            errors = self.js("return window.__errors")
            assert isinstance(errors, list), "the page came without the tests' hooks"
        return self.errors + errors + logged

    def box(self, caption):
        """Waits for the box of that caption; returns {control id: [text, checked], message}."""
        return wait(f"the box '{caption}'", lambda: self.js(BOX, caption))

    def boxes(self):
        return self.js("return [...document.querySelectorAll('.box-caption span')]"
                       ".map(s => s.textContent)")

    def enter(self, caption=None):
        """Enter on the box of that caption, or on each box while there is one."""
        for _ in range(1 if caption else 8):
            if caption:
                self.box(caption)
            if not (shown := self.boxes()):
                break
            self.keys(Keys.ENTER)
            wait("the next box", lambda: self.boxes() != shown)
        return self.boxes()

    def answer(self, caption, button):
        """Clicks a box's button by its text; returns the box's message."""
        message = self.box(caption)["message"]
        self.driver.find_element("xpath", f"//div[div/span='{caption}']//button[.='{button}']"
                                 ).click()
        wait(f"the box '{caption}' to close", lambda: caption not in self.boxes())
        return message

    def control(self, caption, control, inner=""):
        self.box(caption)
        return self.driver.find_element("css selector", f'[data-control="{control}"] {inner}')

    def keys(self, *keys):
        for key in keys:
            ActionChains(self.driver).send_keys(key).perform()

    def click_board(self, x, y):
        actions = ActionBuilder(self.driver)
        actions.pointer_action.move_to_location(*map(int, self.in_viewport(x, y))).click()
        actions.perform()

    def touch_board(self, x, y):
        """A tap of a finger (a W3C touch pointer). WebKitGTK's driver delivers it as a mouse
        pointer: only Chromium sends the page a pointer of type "touch"."""
        finger = PointerInput(interaction.POINTER_TOUCH, "finger")
        actions = ActionBuilder(self.driver, mouse=finger)
        actions.pointer_action.move_to_location(*map(int, self.in_viewport(x, y)))
        actions.pointer_action.pointer_down().pointer_up()
        actions.perform()

    def entry(self, text):
        return self.driver.find_element("xpath", f"//div[span[@class='menu-label']='{text}']")

    def menu(self, title, *entries):
        """Opens a menu and clicks its entry, through submenus, all by their texts."""
        actions = ActionChains(self.driver).click(self.driver.find_element(
            "xpath", f"//div[contains(@class, 'menu-title') and starts-with(., '{title}')]"))
        for text in entries:
            actions.move_to_element(self.entry(text))
        actions.click().perform()

    def checked(self, text) -> bool:
        return "checked" in self.entry(text).get_attribute("class").split()

    def in_viewport(self, x, y):
        box = self.js("return document.getElementById('screen').getBoundingClientRect()")
        return box["left"] + x + 0.5, box["top"] + y + 0.5

    def titles(self):
        return self.js("return [document.getElementById('title-text').textContent,"
                       " document.title]")

    def sizes(self):
        """The window's outer size, the canvas's pixels and its size on the page."""
        return self.js("""const w = document.getElementById('window').getBoundingClientRect();
            const s = document.getElementById('screen'), r = s.getBoundingClientRect();
            return [[w.width, w.height], [s.width, s.height], [r.width, r.height]];""")

    def picture(self) -> Image.Image:
        data = self.js("return document.getElementById('screen').toDataURL('image/png')")
        return Image.open(io.BytesIO(base64.b64decode(data.split(",", 1)[1]))).convert("RGB")

    def wait_picture(self, what, condition):
        return wait(what, lambda: p if condition(p := self.picture()) else None)

    def download(self, name) -> bytes:
        """The bytes of the download the page offered under that name, as the page gave them;
        the browser must save the same bytes under that name in the downloads folder."""
        given, = wait(f"the download '{name}'",
                      lambda: self.driver.execute_async_script(DOWNLOADED, name))
        assert not given.startswith("failed"), given
        data, path = base64.b64decode(given), self.downloads / name
        wait(f"'{name}' saved with the page's bytes",
             lambda: path.is_file() and path.read_bytes() == data)
        return data


def launch_phone(profile, downloads, width, height, ratio) -> webdriver.Chrome:
    """Chromium as a phone or a tablet: its screen, pixel ratio and touch, before any page."""
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     f"--user-data-dir={profile}", "--window-size=1200,1200"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    driver.execute_cdp_cmd("Browser.setDownloadBehavior",
                           {"behavior": "allow", "downloadPath": str(downloads)})
    emulate(driver, width, height, ratio)
    driver.execute_cdp_cmd("Emulation.setTouchEmulationEnabled",
                           {"enabled": True, "maxTouchPoints": 5})
    return driver


def emulate(driver, width, height, ratio=1, mobile=True):
    """A screen of that size in CSS pixels (a phone turned when wider than tall)."""
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": ratio, "mobile": mobile,
        "screenOrientation": {"type": "landscapePrimary", "angle": 90} if width > height
        else {"type": "portraitPrimary", "angle": 0}})


class Phone(Page):
    """The page under a finger: taps, presses and swipes at points of the viewport."""

    def touch(self, *points, hold=0.0):
        """A finger down at the first point, moved through the others, then lifted."""
        cdp = self.driver.execute_cdp_cmd
        (x, y), *path = points
        cdp("Input.dispatchTouchEvent", {"type": "touchStart", "touchPoints": [{"x": x, "y": y}]})
        time.sleep(hold)
        for x, y in path:
            cdp("Input.dispatchTouchEvent", {"type": "touchMove",
                                             "touchPoints": [{"x": x, "y": y}]})
        cdp("Input.dispatchTouchEvent", {"type": "touchEnd", "touchPoints": []})

    def rect(self, element):
        return self.js("const r = arguments[0].getBoundingClientRect();"
                       " return [r.left, r.top, r.width, r.height]", element)

    def tap(self, element):
        left, top, width, height = self.rect(element)
        self.touch((left + width / 2, top + height / 2))

    def tap_menu(self, title, *entries):
        """Opens a menu and taps its entry, through submenus, all by their texts."""
        self.tap(self.driver.find_element(
            "xpath", f"//div[contains(@class, 'menu-title') and starts-with(., '{title}')]"))
        for text in entries:
            self.tap(self.entry(text))

    def tap_button(self, caption, text):
        """Taps a box's button by its text, and waits for the box to close."""
        self.box(caption)
        self.tap(self.driver.find_element(
            "xpath", f"//div[div/span='{caption}']//button[.='{text}']"))
        wait(f"the box '{caption}' to close", lambda: caption not in self.boxes())

    def screen(self):
        """The viewport's size, how far the page is scrolled or zoomed, and its widest extent."""
        return self.js("""const d = document.documentElement, v = visualViewport;
            return {size: [innerWidth, innerHeight], scroll: [scrollX, scrollY, v.offsetLeft,
                    v.offsetTop], scale: v.scale, width: d.scrollWidth};""")
