#!/usr/bin/env python3
"""Writes the web edition's service worker for a built site (cmake/web.cmake runs it):

    make_service_worker.py TEMPLATE SITE_DIR OUT FILE...

TEMPLATE is web/service-worker.js; FILE... are the site's files, relative to SITE_DIR (every
file but the worker itself). The worker gets their list and a hash of their names and
contents, which names its store: any change of any file makes another worker, which the
browser installs at the next start. Standard library only.
"""

import hashlib
import json
import sys
from pathlib import Path

FILES = "/* site files */[]"
HASH = "/* site hash */''"


def site_hash(site: Path, files) -> str:
    """SHA-256 of each file's name and contents, in the order of their names: 16 hex digits."""
    digest = hashlib.sha256()
    for name in sorted(files):
        data = (site / name).read_bytes()
        digest.update(f"{name}\0{len(data)}\0".encode())
        digest.update(data)
    return digest.hexdigest()[:16]


def worker(template: str, site: Path, files) -> str:
    if template.count(FILES) != 1 or template.count(HASH) != 1:
        raise SystemExit("make_service_worker.py: the template lacks its two placeholders")
    missing = [name for name in files if not (site / name).is_file()]
    if missing:
        raise SystemExit("make_service_worker.py: not in the site: " + ", ".join(missing))
    listed = json.dumps(sorted(files), indent=None)
    return (template.replace(FILES, listed)
            .replace(HASH, json.dumps(site_hash(site, files)).replace('"', "'")))


def main(argv):
    if len(argv) < 4:
        raise SystemExit(__doc__)
    template, site, out = Path(argv[0]), Path(argv[1]), Path(argv[2])
    files = [Path(name).as_posix() for name in argv[3:]]
    text = worker(template.read_text(encoding="utf-8"), site, files)
    out.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1:])
