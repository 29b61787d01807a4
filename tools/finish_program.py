#!/usr/bin/env python3
"""Makes the linked web program smaller for the network (cmake/web.cmake runs it after the
link, on the site's files):

    finish_program.py PROGRAM.js PROGRAM.wasm

- PROGRAM.js, the runtime and the page's rooms joined, is compressed and its local names
  shortened by Terser (Debian's node-terser, run with Node), in place: Emscripten 3.1.6 only
  takes the blanks out;
- PROGRAM.wasm.gz is PROGRAM.wasm compressed (gzip -9, no name or time), which the page
  inflates itself where the browser can (web/download.js): a static server that does not
  compress would otherwise send the program at its full size.

Both are the same on every run for the same input.
"""

import gzip
import os
import subprocess
import sys
from pathlib import Path

# Terser's options: everything but the top level, where the page's records (Page, Module) and
# the functions the WebAssembly imports by name live.
MINIFY = """
const { minify } = require('terser');
const fs = require('fs');
const path = process.argv[1];
minify(fs.readFileSync(path, 'utf8'), { compress: { passes: 2 }, mangle: true, toplevel: false })
  .then(result => fs.writeFileSync(path, result.code))
  .catch(error => { console.error(error); process.exit(1); });
"""


def main(argv):
    if len(argv) != 2:
        raise SystemExit(__doc__)
    script, program = Path(argv[0]), Path(argv[1])
    environment = dict(os.environ, NODE_PATH="/usr/share/nodejs")
    subprocess.run(["node", "-e", MINIFY, str(script)], check=True, env=environment)
    packed = gzip.compress(program.read_bytes(), compresslevel=9, mtime=0)
    Path(str(program) + ".gz").write_bytes(packed)


if __name__ == "__main__":
    main(sys.argv[1:])
