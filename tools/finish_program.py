#!/usr/bin/env python3
"""Makes the linked web program smaller for the network (cmake/web.cmake runs it after the
link, on the site's files):

    finish_program.py SITE/kalvero4.js SITE/kalvero4.wasm LOADER.js

- kalvero4.js, Emscripten's runtime with the page's rooms, goes through Terser (Debian's
  node-terser, run with Node), which compresses it and shortens its local names (Emscripten
  3.1.6 only takes the blanks out), to kalvero4-program.js, and compressed (gzip -9, no name or
  time) to kalvero4-program.js.gz;
- kalvero4.wasm is compressed to kalvero4.wasm.gz;
- LOADER.js (web/loader.js) becomes kalvero4.js: it loads the program, inflating the .gz where
  the browser can, as web/download.js does the WebAssembly. A static server that does not
  compress would otherwise send both at their full size.

Both are the same on every run for the same input.
"""

import gzip
import os
import shutil
import subprocess
import sys
from pathlib import Path

# Terser's options: everything but the top level, where the page's records (Page, Module) and
# the functions the WebAssembly imports by name live.
MINIFY = """
const { minify } = require('terser');
const fs = require('fs');
const [from, to] = process.argv.slice(1);
minify(fs.readFileSync(from, 'utf8'), { compress: { passes: 2 }, mangle: true, toplevel: false })
  .then(result => fs.writeFileSync(to, result.code))
  .catch(error => { console.error(error); process.exit(1); });
"""


def packed(path: Path):
    Path(f"{path}.gz").write_bytes(gzip.compress(path.read_bytes(), compresslevel=9, mtime=0))


def main(argv):
    if len(argv) != 3:
        raise SystemExit(__doc__)
    script, program, loader = map(Path, argv)
    minified = script.with_name(script.stem + "-program.js")
    environment = dict(os.environ, NODE_PATH="/usr/share/nodejs")
    subprocess.run(["node", "-e", MINIFY, str(script), str(minified)], check=True,
                   env=environment)
    packed(minified)
    packed(program)
    shutil.copyfile(loader, script)

if __name__ == "__main__":
    main(sys.argv[1:])
