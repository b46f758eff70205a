#!/usr/bin/env python3
"""floors_test.py SOURCE-FOLDER: no include of the reader library points up, and none leads in a circle."""
import re
import sys
from graphlib import CycleError, TopologicalSorter
from pathlib import Path

SOURCE = Path(sys.argv[1])
FLOORS = ["records", "services", "families", "drive"]


def floor_of(name):
    if name.startswith("reader/drive/"):
        return "drive"
    if name in ("formats/style.h", "formats/extended_style.h", "reader/list.h", "reader/index.h") or name.endswith("/records.h"):
        return "records"
    return "services" if name.startswith("reader/") else "families"


failures = []
modules = {}
for path in sorted(SOURCE.rglob("*.[ch]*")):
    name = path.relative_to(SOURCE).as_posix()
    for included in re.findall(r'^#include "(.+)"', path.read_text(encoding="utf-8"), re.MULTILINE):
        if included.startswith("mifreader/"):
            continue
        assert (SOURCE / included).exists(), f"{name} includes {included}"
        if FLOORS.index(floor_of(included)) > FLOORS.index(floor_of(name)):
            failures.append(f"{name} includes {included}, which is on a floor above it")
        module, other = (re.sub(r"\.\w+$", "", file) for file in (name, included))
        if module != other:
            modules.setdefault(module, set()).add(other)
assert "reader/drive/scanner" in modules, "the sources are not there"
try:
    TopologicalSorter(modules).prepare()
except CycleError as error:
    failures.append("a circle: " + " -> ".join(error.args[1]))
print("\n".join(failures))
sys.exit(1 if failures else 0)
