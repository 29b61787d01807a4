"""tools/serve-site, which tools/play --web ends with: each file of the site as it is on disk,
with the type a browser needs (WebAssembly compiles while it downloads only as
application/wasm)."""

import subprocess
import sys
import urllib.request
from pathlib import Path

from conftest import SITE

REPO = Path(__file__).resolve().parents[2]
TYPES = {"index.html": "text/html", "kalvero4.wasm": "application/wasm",
         "kalvero4.css": "text/css", "kalvero4.js": "javascript"}


def test_serve_site_serves_every_file_as_it_is():
    server = subprocess.Popen([sys.executable, str(REPO / "tools/serve-site"), str(SITE)],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    try:
        line = server.stdout.readline()  # its address; nothing once it ended (pytest's timeout)
        assert "http://127.0.0.1:" in line, line or server.stderr.read()
        address = line.split()[3]
        files = sorted(p.relative_to(SITE).as_posix() for p in SITE.rglob("*") if p.is_file())
        served = {}
        for name in files + [""]:
            with urllib.request.urlopen(address + name) as answer:
                served[name] = (answer.headers["Content-Type"], answer.read())
        assert served[""] == served["index.html"]
        assert {n: (SITE / n).read_bytes() for n in files} == {n: served[n][1] for n in files}
        assert {n: t for n, t in TYPES.items() if t not in served[n][0]} == {}
    finally:
        server.terminate()
        server.wait(10)
