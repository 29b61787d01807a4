"""A local server for the built site, and a Page in headless Chromium that types, clicks,
touches, opens menus and reads the window, its boxes and the canvas (logical pixels at 1x)."""

import base64
import functools
import http.server
import io
import threading
import time

from desktop import wait  # the suites poll alike
from PIL import Image
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.actions.action_builder import ActionBuilder
from selenium.webdriver.common.keys import Keys

# Installed before the page's own scripts, in every document the browser opens.
CATCH_ERRORS = """window.__errors = [];
addEventListener('error', e => __errors.push('error: ' + e.message));
addEventListener('unhandledrejection', e => __errors.push('rejection: ' + e.reason));"""

# The box of a caption: each control's text (an edit's or a list's value) and check mark.
BOX = """const box = [...document.querySelectorAll('.box')].find(
    b => b.querySelector('.box-caption span').textContent === arguments[0]);
if (!box) return null;
const out = {message: box.querySelector('.message-text')?.textContent};
box.querySelectorAll('[data-control]').forEach(c => out[c.dataset.control] = [
    c.value ?? c.textContent, c.querySelector('input')?.checked ?? null]);
return out;"""


class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = {**http.server.SimpleHTTPRequestHandler.extensions_map,
                      ".wasm": "application/wasm", ".js": "text/javascript"}

    def log_message(self, *_):
        pass


def serve(site):
    """Serves the site on 127.0.0.1 at a free port from a thread; returns (url, server)."""
    handler = functools.partial(Handler, directory=str(site))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_address[1]}/index.html", server


def launch(profile, downloads) -> webdriver.Chrome:
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     f"--user-data-dir={profile}", "--window-size=1200,900"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": CATCH_ERRORS})
    driver.execute_cdp_cmd("Browser.setDownloadBehavior",
                           {"behavior": "allow", "downloadPath": str(downloads)})
    return driver


class Page:
    def __init__(self, driver, url, downloads):
        self.driver, self.url, self.downloads = driver, url, downloads
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
        logged = [e["message"] for e in self.driver.get_log("browser") if e["level"] == "SEVERE"]
        return self.errors + (self.js("return window.__errors") or []) + logged

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
        cdp, (px, py) = self.driver.execute_cdp_cmd, self.in_viewport(x, y)
        cdp("Input.dispatchTouchEvent", {"type": "touchStart", "touchPoints": [{"x": px, "y": py}]})
        cdp("Input.dispatchTouchEvent", {"type": "touchEnd", "touchPoints": []})

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
        path = self.downloads / name
        wait(f"the download '{name}'",
             lambda: path.exists() and not any(self.downloads.glob("*.crdownload")))
        return path.read_bytes()


def launch_phone(profile, downloads, width, height, ratio) -> webdriver.Chrome:
    """Chromium as a phone or a tablet: its screen, pixel ratio and touch, before any page."""
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     f"--user-data-dir={profile}", "--window-size=1200,1200"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": CATCH_ERRORS})
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
