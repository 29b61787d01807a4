#!/usr/bin/env python3
"""Fails when a source file includes a file of a higher floor, or when includes form a loop."""
import re
import sys
from pathlib import Path

# Folders of src/ from the ground up; a file may include its own floor or lower ones.
FLOORS = {"ground": 0, "resources": 0, "engine": 1, "opponents": 2, "render": 3, "dialogs": 3,
          "shell": 4, "cli": 5, "web": 5}
src = Path(sys.argv[1] if len(sys.argv) > 1 else "src")
graph, faults = {}, []
for path in sorted(src.glob("*/*.[ch]*")):
    name = f"{path.parent.name}/{path.name}"
    includes = re.findall(r'^#include "(\w+/\w+\.h)"', path.read_text("latin-1"), re.M)
    graph[name] = [i for i in includes if i != name]
    for inc in includes:
        if FLOORS[inc.split("/")[0]] > FLOORS[path.parent.name]:
            faults.append(f"{name} includes {inc}, a higher floor")


def visit(node, trail):
    if node in trail:
        faults.append("include loop: " + " -> ".join(trail[trail.index(node):] + [node]))
        return
    for nxt in graph.get(node, []):
        visit(nxt, trail + [node])


for header in [n for n in graph if n.endswith(".h")]:  # only headers can be included
    visit(header, [])
print("\n".join(sorted(set(faults))) or f"{len(graph)} files, floors in order, no include loop")
sys.exit(1 if faults else 0)
