#!/usr/bin/env python3
"""links_test.py ROOT [INSTALLED-FOLDER]: no document of the project has a dead link, nor has one that is installed."""
import re
import sys
from pathlib import Path

IN_CODE = re.compile(r"```.*?```|`[^`]*`|^    .*$", re.DOTALL | re.MULTILINE)


def anchors_of(path):
    """As the places that show such documents make them of headings."""
    headings = re.findall(r"^#+ (.*)$", path.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def dead_links(path, root):
    for target in re.findall(r"\]\(([^)\s]+)\)", IN_CODE.sub("", path.read_text(encoding="utf-8"))):
        if "://" in target:
            continue
        file, _, anchor = target.partition("#")
        place = (path.parent / file).resolve() if file else path
        if not place.exists() or not place.is_relative_to(root):
            yield f"{path}: {target}: there is no such file"
        elif anchor and anchor not in anchors_of(place):
            yield f"{path}: {target}: there is no such heading"


dead = []
for argument in sys.argv[1:]:
    root = Path(argument).resolve()
    documents = [path for path in sorted(root.rglob("*.md")) if "build" not in path.relative_to(root).parts]
    assert documents, f"no documents in {root}"
    for document in documents:
        dead += dead_links(document, root)
print("\n".join(dead))
sys.exit(1 if dead else 0)
