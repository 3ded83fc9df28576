#!/usr/bin/env python3
"""Holds the C++ of README.md and docs/ against the examples that it is taken from: check_code.py ROOT [--write]

Above each block of C++ in a page stands `<!-- FILE: MARK -->`; the block shows what stands in that file between the
lines `// [MARK]` and `// [/MARK]`. With --write the pages get the code of the examples. Faults are a block without such a
line, one that differs from its file, and a mark that no page shows.
"""

import pathlib
import re
import sys
import textwrap

ROOT = pathlib.Path(sys.argv[1])
WRITE = "--write" in sys.argv[2:]
PAGES = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]
SOURCES = sorted((ROOT / "examples").rglob("*.cpp"))

BLOCK = re.compile(r"(?:^<!-- (?P<file>\S+\.cpp): (?P<mark>\S+) -->\n)?^```(?:cpp|c\+\+)\n(?P<code>.*?)^```$",
                   re.MULTILINE | re.DOTALL | re.IGNORECASE)
MARKED = re.compile(r"^ *// \[(?P<mark>[a-z0-9-]+)\]\n(?P<code>.*?)^ *// \[/(?P=mark)\]\n", re.MULTILINE | re.DOTALL)


def marked_code():
    """(file, mark) -> code, without the indentation of its file."""
    code = {}
    for path in SOURCES:
        for match in MARKED.finditer(path.read_text(encoding="utf-8")):
            code[path.relative_to(ROOT).as_posix(), match["mark"]] = textwrap.dedent(match["code"])
    return code


def main():
    examples = marked_code()
    shown = set()
    faults = []
    for page in PAGES:
        text = page.read_text(encoding="utf-8")
        name = page.relative_to(ROOT).as_posix()

        def checked(block):
            place = f"{name}:{text.count(chr(10), 0, block.start('code'))}"
            key = block["file"], block["mark"]
            if key not in examples:
                faults.append(f"{place}: no line above this code says which marked lines of an example it shows")
                return block[0]
            shown.add(key)
            if block["code"] == examples[key]:
                return block[0]
            if not WRITE:
                faults.append(f"{place}: differs from {key[0]}, [{key[1]}]; check_code.py ROOT --write takes it over")
            start, end = block.start("code") - block.start(), block.end("code") - block.start()
            return block[0][:start] + examples[key] + block[0][end:]

        written = BLOCK.sub(checked, text)
        if WRITE and written != text:
            page.write_text(written, encoding="utf-8")
    faults += [f"{file}: no page shows [{mark}]" for file, mark in sorted(examples.keys() - shown)]
    if not shown:
        faults.append("no code found")

    print("\n".join(faults))
    print(f"{len(shown)} blocks of code, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
