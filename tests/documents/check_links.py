#!/usr/bin/env python3
"""Holds the links and pictures of README.md, CONTRIBUTING.md and docs/ against the files: check_links.py ROOT

A fault is a link to a file of the project that is not there, and a page or picture that nothing leads to from README.md.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
LINK = re.compile(r"\]\((?!https?:)([^)#\s]+)(?:#[^)\s]*)?\)")


def main():
    faults = []
    reached = set()
    waiting = [ROOT / "README.md"]
    while waiting:
        page = waiting.pop()
        if page in reached:
            continue
        reached.add(page)
        if page.suffix != ".md":
            continue
        for link in LINK.findall(page.read_text(encoding="utf-8")):
            target = (page.parent / link).resolve()
            if target.is_file():
                waiting.append(target)
            else:
                faults.append(f"{page.relative_to(ROOT)}: {link} is not there")
    pages = {*(ROOT / "docs").glob("*.md"), *(ROOT / "docs" / "pictures").iterdir()}
    faults += [f"{page.relative_to(ROOT)}: nothing leads to it from README.md" for page in sorted(pages - reached)]

    print("\n".join(faults))
    print(f"{len(reached)} files reached, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
