#!/usr/bin/python3
"""Measures the web edition (bench/README.md, "Web edition").

    bench/web_measure.py size                 # the site's transfer size after gzip -9
    bench/web_measure.py start [--runs 10]    # navigation to first frame, cold, headless Chromium
    bench/web_measure.py start --mobile       # the same under a phone's processor and network
    bench/web_measure.py offline [--runs 10]  # the second start, offline, from the worker's store
    bench/web_measure.py reply [--repeat 3]   # a 19 x 19 Dur + Challenge reply, page vs native
    bench/web_measure.py reply --mobile       # the same with the page's processor 4x slower
    bench/web_measure.py repaint [--count 300] [--breakdown]  # a full 19 x 19 board's repaint

Needs the builds: `cmake --build --preset web` (the site), and for `reply` also
`cmake --build --preset web --target kalvero4-reply-time` and the native
`build/native/bench/kalvero4-reply-time` (`cmake --build --preset native --target
kalvero4-reply-time`). The browser is Debian's chromium driven through chromium-driver by
python3-selenium, headless, each start with a fresh profile; the pages come from a local
server on 127.0.0.1 started here. Run it with /usr/bin/python3, which has selenium.
"""

import argparse
import functools
import gzip
import http.server
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import full_board  # noqa: E402

ROOT = HERE.parent
SITE = ROOT / "build" / "web" / "site"
WEB_BENCH = ROOT / "build" / "web" / "bench"
NATIVE_REPLY = ROOT / "build" / "native" / "bench" / "kalvero4-reply-time"


def load() -> str:
    return "load average " + ", ".join(f"{x:.2f}" for x in os.getloadavg())


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, max(0, round(share * (len(ordered) - 1))))]


# ----- The local server ---------------------------------------------------------------------

class Handler(http.server.SimpleHTTPRequestHandler):
    extensions_map = dict(http.server.SimpleHTTPRequestHandler.extensions_map,
                          **{".wasm": "application/wasm", ".js": "text/javascript"})
    isolated = False

    def end_headers(self):
        self.send_header("Cache-Control", "no-store")
        if self.isolated:
            # A cross-origin isolated page gets performance.now() in 5 us steps instead of 100.
            self.send_header("Cross-Origin-Opener-Policy", "same-origin")
            self.send_header("Cross-Origin-Embedder-Policy", "require-corp")
        super().end_headers()

    def log_message(self, *args):
        pass


class Server:
    """A static server for one folder on 127.0.0.1, on a free port, in a thread."""

    def __init__(self, folder: Path, isolated: bool):
        handler = type("FolderHandler", (Handler,), {"isolated": isolated})
        self.httpd = http.server.ThreadingHTTPServer(
            ("127.0.0.1", 0), functools.partial(handler, directory=str(folder)))
        self.url = f"http://127.0.0.1:{self.httpd.server_address[1]}/"
        threading.Thread(target=self.httpd.serve_forever, daemon=True).start()

    def close(self):
        self.httpd.shutdown()
        self.httpd.server_close()


# ----- A phone's processor and network -------------------------------------------------------

# Lighthouse's mobile conditions: the processor 4 times slower, a 150 ms round trip, 1.6 Mbit/s
# down and 750 kbit/s up (DevTools takes bytes per second).
MOBILE_CPU = 4
MOBILE_NETWORK = {"offline": False, "latency": 150,
                  "downloadThroughput": 1.6e6 / 8, "uploadThroughput": 750e3 / 8}


def throttle(driver, offline=False):
    """The mobile conditions on the browser's tab, through the DevTools protocol. They hold for
    the tab's next navigations; the service worker runs in a thread of its own, which the
    processor's slowing does not reach."""
    driver.execute_cdp_cmd("Network.enable", {})
    driver.execute_cdp_cmd("Network.setCacheDisabled", {"cacheDisabled": False})
    driver.execute_cdp_cmd("Network.emulateNetworkConditions",
                           dict(MOBILE_NETWORK, offline=offline))
    driver.execute_cdp_cmd("Emulation.setCPUThrottlingRate", {"rate": MOBILE_CPU})


# ----- The browser --------------------------------------------------------------------------

class Browser:
    """Headless Chromium with a profile of its own, removed afterwards: nothing cached."""

    def __init__(self):
        from selenium import webdriver
        from selenium.webdriver.chrome.service import Service
        self.profile = tempfile.mkdtemp(prefix="k4-chromium-")
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for flag in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     "--no-first-run", "--no-default-browser-check", "--window-size=1024,768",
                     f"--user-data-dir={self.profile}"):
            options.add_argument(flag)
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.driver.set_script_timeout(600)

    def wait_for(self, script, timeout=60.0, every=0.02):
        end = time.monotonic() + timeout
        while True:
            value = self.driver.execute_script(script)
            if value:
                return value
            if time.monotonic() > end:
                raise SystemExit(f"timed out waiting for: {script}")
            time.sleep(every)

    def canvas_mode(self) -> str:
        """What chrome://gpu says of the canvas: "Software only..." or "Hardware accelerated"."""
        self.driver.get("chrome://gpu")
        text = self.driver.execute_script("""
            var app = document.querySelector('info-view') || document.body;
            return (app.shadowRoot || app).textContent || document.body.innerText;""")
        found = re.search(r"Canvas:\s*([^\n]+?)(?=\s{2,}|Canvas out-of|Direct|Compositing|$)",
                          text or "")
        return found.group(1).strip() if found else "unknown"

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.profile, ignore_errors=True)


def versions() -> str:
    chromium = subprocess.run(["/usr/bin/chromium", "--version"], capture_output=True,
                              text=True).stdout.strip()
    node = subprocess.run(["node", "--version"], capture_output=True, text=True).stdout.strip()
    return f"{chromium}; Node {node}"


# ----- Size ---------------------------------------------------------------------------------

def measure_size(args):
    rows = []
    for path in sorted(p for p in SITE.rglob("*") if p.is_file()):
        data = path.read_bytes()
        rows.append((len(gzip.compress(data, compresslevel=9, mtime=0)), len(data),
                     str(path.relative_to(SITE))))
    if not rows:
        raise SystemExit(f"no site in {SITE}: cmake --preset web && cmake --build --preset web")
    total = sum(r[0] for r in rows)
    raw = sum(r[1] for r in rows)
    print(f"{len(rows)} files, {raw} bytes, {total} bytes after gzip -9 "
          f"({total / 1024:.1f} KiB, {total / 1000:.1f} kB)")
    for gz, size, name in sorted(rows, reverse=True)[:args.top]:
        print(f"  {gz:8d} gzip  {size:8d} raw  {name}")


# ----- Start --------------------------------------------------------------------------------

FIRST_FRAME = """
var mark = performance.getEntriesByName('kalvero4-first-frame')[0];
if (!mark) return null;
var nav = performance.getEntriesByType('navigation')[0];
var wasm = performance.getEntriesByType('resource').filter(function (e) {
  return /\\.wasm(\\.gz)?$/.test(e.name); })[0];
var files = {};
[nav].concat(performance.getEntriesByType('resource')).forEach(function (e) {
  files[e.name.replace(/^.*\\//, '') || 'page'] = [e.startTime, e.responseStart, e.responseEnd]; });
var before = [nav].concat(performance.getEntriesByType('resource')).filter(function (e) {
  return e.startTime < mark.startTime; });
return { frame: mark.startTime, domContentLoaded: nav.domContentLoadedEventEnd,
         load: nav.loadEventEnd, wasmEnd: wasm ? wasm.responseEnd : -1, files: files,
         requests: before.length,
         transferred: before.reduce(function (sum, e) { return sum + e.transferSize; }, 0) };
"""


def measure_start(args):
    print(versions() + (f"; CPU {MOBILE_CPU}x slower, {MOBILE_NETWORK}" if args.mobile else ""))
    server = Server(args.site, isolated=False)
    results = []
    try:
        for run in range(args.runs):
            browser = Browser()
            try:
                if args.mobile:
                    throttle(browser.driver)
                browser.driver.get(server.url + "index.html")
                results.append(browser.wait_for(FIRST_FRAME, timeout=60))
            finally:
                browser.close()
            r = results[-1]
            print(f"start {run + 1}: first frame {r['frame']:.1f} ms (DOMContentLoaded "
                  f"{r['domContentLoaded']:.1f}, wasm received {r['wasmEnd']:.1f}, "
                  f"load {r['load']:.1f}; {r['requests']} requests before it, "
                  f"{r['transferred']} bytes with headers); {load()}")
            if args.files:
                for name, (begin, first, end) in sorted(r["files"].items(), key=lambda f: f[1]):
                    print(f"    {name:24s} asked {begin:7.1f}, first byte {first:7.1f}, "
                          f"received {end:7.1f} ms")
    finally:
        server.close()
    frames = [r["frame"] for r in results]
    print(f"first frame over {len(frames)} cold starts: median {statistics.median(frames):.1f} "
          f"ms, min {min(frames):.1f}, max {max(frames):.1f}; {load()}")


# ----- Second start, offline ----------------------------------------------------------------

# Once the service worker has kept the site and answers for the page.
KEPT = """var done = arguments[arguments.length - 1];
navigator.serviceWorker.ready.then(async function () {
  while (!navigator.serviceWorker.controller) {
    await new Promise(function (r) { setTimeout(r, 20); });
  }
  done((await caches.keys()).length);
});"""


def measure_offline(args):
    """Each run in a new browser: a first visit under the mobile conditions, until the worker
    has kept the site; then the server stops, the tab goes offline too, and the page opens
    again: the second start, all from the worker's store."""
    print(versions() + f"; CPU {MOBILE_CPU}x slower, {MOBILE_NETWORK}")
    results = []
    for run in range(args.runs):
        server = Server(args.site, isolated=False)
        browser = Browser()
        try:
            throttle(browser.driver)
            browser.driver.get(server.url + "index.html")
            first = browser.wait_for(FIRST_FRAME, timeout=60)
            browser.driver.set_script_timeout(60)
            if not browser.driver.execute_async_script(KEPT):
                raise SystemExit("the service worker kept nothing")
            server.close()
            throttle(browser.driver, offline=True)
            browser.driver.get(server.url + "index.html")
            second = browser.wait_for(FIRST_FRAME, timeout=60)
        finally:
            browser.close()
        results.append(second)
        print(f"run {run + 1}: first visit {first['frame']:.1f} ms, second start offline "
              f"{second['frame']:.1f} ms (DOMContentLoaded {second['domContentLoaded']:.1f}); "
              f"{load()}")
        if args.files:
            for name, (begin, _, end) in sorted(second["files"].items(), key=lambda f: f[1]):
                print(f"    {name:24s} asked {begin:7.1f}, received {end:7.1f} ms")
    frames = [r["frame"] for r in results]
    print(f"second start offline over {len(frames)} runs: median {statistics.median(frames):.1f} "
          f"ms, min {min(frames):.1f}, max {max(frames):.1f}; {load()}")


# ----- Reply --------------------------------------------------------------------------------

LINE = re.compile(r"^(strategy (\d+)|all): .*median ([\d.]+) ms, max ([\d.]+) ms, sum ([\d.]+) ms",
                  re.M)


def parse_reply(text: str):
    """{'0': (median, max, sum), ..., 'all': (...)}, the chosen columns, the clock step."""
    figures = {(m.group(2) or "all"): tuple(float(m.group(k)) for k in (3, 4, 5))
               for m in LINE.finditer(text)}
    columns = re.findall(r"^strategy \d+ columns:.*$", text, re.M)
    step = re.search(r"clock step: ([\d.]+) ms", text)
    if "all" not in figures:
        raise SystemExit("no figures in the output:\n" + text)
    return figures, columns, float(step.group(1)) if step else None


def reply_native(runs: int) -> str:
    if not NATIVE_REPLY.exists():
        raise SystemExit(f"no {NATIVE_REPLY}: cmake --build --preset native "
                         "--target kalvero4-reply-time")
    return subprocess.run([str(NATIVE_REPLY), str(runs)], check=True, capture_output=True,
                          text=True).stdout


def reply_web(browser: Browser, server: Server, runs: int) -> str:
    browser.driver.get(server.url + f"reply_time.html?runs={runs}")
    state = browser.wait_for("return document.body.dataset.state;", timeout=600, every=0.2)
    text = browser.driver.execute_script("return document.getElementById('out').textContent;")
    if state != "done":
        raise SystemExit("the timing page failed:\n" + text)
    return text


def measure_reply(args):
    if not (WEB_BENCH / "kalvero4-reply-time.js").exists():
        raise SystemExit("no web timing program: cmake --build --preset web "
                         "--target kalvero4-reply-time")
    print(versions())
    server = Server(WEB_BENCH, isolated=True)
    browser = Browser()
    if args.mobile:
        browser.driver.execute_cdp_cmd("Emulation.setCPUThrottlingRate", {"rate": MOBILE_CPU})
        print(f"the page's processor {MOBILE_CPU}x slower")
    native_all, web_all = [], []
    try:
        for round_ in range(args.repeat):
            # Alternated, so that a busier spell of the shared machine hits both alike.
            native_text = reply_native(args.runs)
            native, native_columns, _ = parse_reply(native_text)
            print(f"round {round_ + 1} native done; {load()}")
            web, web_columns, step = parse_reply(reply_web(browser, server, args.runs))
            print(f"round {round_ + 1} web done (clock step {step} ms); {load()}")
            if native_columns != web_columns:
                raise SystemExit("the page chose other columns than the native program:\n"
                                 + "\n".join(native_columns) + "\n---\n" + "\n".join(web_columns))
            native_all.append(native)
            web_all.append(web)
            print(f"{'strategy':>8} | native median  max     sum    | web median  max     sum    "
                  f"| web/native median, sum")
            for key in native:
                n, w = native[key], web[key]
                print(f"{key:>8} | {n[0]:9.3f} {n[1]:7.3f} {n[2]:7.1f} | {w[0]:9.3f} {w[1]:7.3f} "
                      f"{w[2]:7.1f} | {w[0] / n[0]:.2f}x, {w[2] / n[2]:.2f}x")
    finally:
        browser.close()
        server.close()
    if args.repeat > 1:
        # The best round of each for each strategy: the least disturbed by the other processes.
        print("best round of each (by sum):")
        for key in native_all[0]:
            n = min((r[key] for r in native_all), key=lambda f: f[2])
            w = min((r[key] for r in web_all), key=lambda f: f[2])
            print(f"{key:>8} | {n[0]:9.3f} {n[1]:7.3f} {n[2]:7.1f} | {w[0]:9.3f} {w[1]:7.3f} "
                  f"{w[2]:7.1f} | {w[0] / n[0]:.2f}x, {w[2] / n[2]:.2f}x")
    print("chosen columns identical in both editions; " + load())


# ----- Repaint ------------------------------------------------------------------------------

IDLE = """
var s = Page.state;
return s.started && s.queue.length === 0 && !s.running && !s.repaintWanted;
"""

# Counts the drawing steps of one repaint by kind, through the page's own drawing function.
COUNT_STEPS = """
var counts = {};
var draw = Page.draw;
Page.draw = function (kind) { counts[kind] = (counts[kind] || 0) + 1;
                              return draw.apply(this, arguments); };
try { Module._WebPaint(); } finally { Page.draw = draw; }
return counts;
"""

# Times `count` repaints one after another: the call alone (the frame composed from the draw
# plan and its canvas steps issued), and up to the drawing being done, which a one-pixel read
# of the screen canvas forces (the canvas otherwise draws lazily, later); then that read alone,
# with nothing left to draw, to tell its own cost. With a `mode`, the page's drawing function
# is replaced for the time of the measurement, to tell where the time goes: "nothing" draws no
# step (what is left is the core's plan and the calls into the page), "sprites" draws each
# piece's sprite alone, without its mask and the raster modes (a wrong picture, but the cost
# of one plain copy per piece).
TIME_REPAINTS = """
var count = arguments[0], mode = arguments[1];
var g = Page.state.screenContext, back = Page.state.backContext, draw = Page.draw;
if (mode === 'nothing') Page.draw = function () {};
if (mode === 'sprites') Page.draw = function (kind, x, y, width, height, x2, y2, what, raster) {
  if (kind !== 4) return draw.apply(this, arguments);
  var picture = Page.state.pictures[what];
  if (raster !== 1 && picture) back.drawImage(picture, x, y, width, height);
};
var call = [], drawn = [], read = [], painted = 0;
try {
  for (var i = 0; i < count; ++i) {
    var t0 = performance.now();
    painted += Module._WebPaint();
    var t1 = performance.now();
    g.getImageData(0, 0, 1, 1);
    var t2 = performance.now();
    g.getImageData(0, 0, 1, 1);
    var t3 = performance.now();
    call.push(t1 - t0); drawn.push(t2 - t0); read.push(t3 - t2);
  }
} finally {
  Page.draw = draw;
}
return { call: call, drawn: drawn, read: read, painted: painted,
         step: (function () { var a = performance.now(), b = a;
                              while (b === a) b = performance.now(); return b - a; })(),
         isolated: self.crossOriginIsolated };
"""

# The picture options timed, in turn, each reached from the one before by menu commands (the
# menu's toggles: "Images" 32777, "2x" 32785, "Lissage en étiré" 32778). A first start has
# piece images, no smoothing and the 1x ratio.
VARIANTS = [
    ("images", []),
    ("letters", [32777]),
    ("images, 2x, smoothing", [32777, 32785, 32778]),
]


def fill_board(browser: Browser):
    """From the home dialog of a first start: two players, 19 cells, then the 361 moves of
    full_board.py typed as key presses through the page's own key handler."""
    from selenium.webdriver.common.by import By
    d = browser.driver
    browser.wait_for("return !!document.querySelector('.dialog-132');", timeout=60)
    d.find_element(By.CSS_SELECTOR, '[data-control="18005"] input').click()  # "2 Joueurs"
    cells = d.find_element(By.CSS_SELECTOR, '[data-control="1022"]')
    cells.clear()
    cells.send_keys("19")
    d.find_element(By.CSS_SELECTOR, '.dialog-132 [data-control="1"]').click()  # "Ok"
    browser.wait_for("return !document.querySelector('.dialog-132');")
    browser.wait_for(IDLE)
    # One key at a time, each once the page is idle again: as a player types, a move the
    # game receives before the previous one has been painted is not played.
    d.execute_async_script("""
        var keys = arguments[0].split(''), done = arguments[arguments.length - 1];
        function idle() { var s = Page.state;
                          return s.queue.length === 0 && !s.running && !s.repaintWanted; }
        (function next() {
          if (!idle()) return setTimeout(next, 1);
          if (keys.length === 0) return done();
          document.dispatchEvent(new KeyboardEvent('keydown', { key: keys.shift(), bubbles: true }));
          setTimeout(next, 1);
        })();""", full_board.keys())
    browser.wait_for(IDLE)


def measure_repaint(args):
    print(versions())
    server = Server(SITE, isolated=True)
    browser = Browser()
    try:
        print("canvas in this browser: " + browser.canvas_mode())
        browser.driver.get(server.url + "index.html")
        fill_board(browser)
        if args.shot:
            browser.driver.save_screenshot(args.shot)
        for name, commands in VARIANTS:
            for command in commands:
                browser.driver.execute_script(f"Module._WebCommand({command});")
                browser.wait_for(IDLE)
            steps = browser.driver.execute_script(COUNT_STEPS)
            # Kinds: 0 black fill, 1 background copy, 2 line, 3 cell fill, 4 bitmap, 5 text.
            kinds = ", ".join(f"{k}: {v}" for k, v in sorted(steps.items()))
            print(f"{name}: drawing steps of one repaint by kind {{{kinds}}}")
            if name == "images" and steps.get("4", 0) < 2 * 361:
                raise SystemExit("the board is not full: a mask and a sprite per piece expected")
            modes = [("", args.repeat)]
            if args.breakdown and name == "images":
                modes += [("nothing", 1), ("sprites", 1)]
            for mode, rounds in modes:
                browser.driver.execute_script(TIME_REPAINTS, 20, mode)  # warm-up
                for round_ in range(rounds):
                    r = browser.driver.execute_script(TIME_REPAINTS, args.count, mode)
                    if r["painted"] != args.count:
                        raise SystemExit(f"only {r['painted']} of {args.count} repaints painted")
                    print(f"  {mode or 'as the page draws'}, round {round_ + 1}, {args.count} "
                          f"repaints (clock step {r['step']:.3f} ms, isolated {r['isolated']}):")
                    for key, label in (("call", "WebPaint call"),
                                       ("drawn", "call + drawing done"),
                                       ("read", "1-pixel read alone")):
                        v = r[key]
                        print(f"    {label:20s} median {statistics.median(v):6.3f} ms, "
                              f"p95 {percentile(v, 0.95):6.3f} ms, max {max(v):6.3f} ms")
                    print(f"    {load()}")
    finally:
        browser.close()
        server.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    sub = parser.add_subparsers(dest="what", required=True)
    p = sub.add_parser("size")
    p.add_argument("--top", type=int, default=8, help="biggest files listed")
    p.set_defaults(run=measure_size)
    p = sub.add_parser("start")
    p.add_argument("--runs", type=int, default=10, help="cold starts")
    p.add_argument("--mobile", action="store_true", help="under a phone's processor and network")
    p.add_argument("--files", action="store_true", help="when each file was asked and received")
    p.add_argument("--site", type=Path, default=SITE, help="another built site")
    p.set_defaults(run=measure_start)
    p = sub.add_parser("offline")
    p.add_argument("--runs", type=int, default=10, help="first visits, each then started offline")
    p.add_argument("--files", action="store_true", help="when each file was asked and received")
    p.add_argument("--site", type=Path, default=SITE, help="another built site")
    p.set_defaults(run=measure_offline)
    p = sub.add_parser("reply")
    p.add_argument("--repeat", type=int, default=3, help="rounds, native then web")
    p.add_argument("--runs", type=int, default=5, help="runs per reply, the best counts")
    p.add_argument("--mobile", action="store_true", help="the page's processor 4x slower")
    p.set_defaults(run=measure_reply)
    p = sub.add_parser("repaint")
    p.add_argument("--count", type=int, default=300, help="repaints per round")
    p.add_argument("--repeat", type=int, default=3, help="rounds per picture option")
    p.add_argument("--shot", help="a screenshot of the full board to this PNG file")
    p.add_argument("--breakdown", action="store_true",
                   help="also time piece images without drawing, and with sprites alone")
    p.set_defaults(run=measure_repaint)
    args = parser.parse_args()
    args.run(args)


if __name__ == "__main__":
    main()
