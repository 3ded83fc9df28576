#!/usr/bin/env python3
"""Runs the quick shell commands of README.md and the pages below: check_commands.py ROOT PROGRAM ...

commands.txt beside this file sorts them all: under the line `run:` those that are run, in its order, in one empty folder;
under other lines those that are not, and why. A fault is a command that fails, or stands in one place but not in the
other.
"""

import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(sys.argv[1])
PROGRAMS = {pathlib.Path(program).stem: program for program in sys.argv[2:]}
PAGES = [ROOT / "README.md", *(ROOT / "docs" / f"{page}.md" for page in ("calibration", "packages", "windows"))]

BLOCK = re.compile(r"^```(?P<language>\w*)\n(?P<lines>.*?)^```$", re.MULTILINE | re.DOTALL)
QUOTED = re.compile(r"`([^`\n]+)`")
INDENTED = re.compile(r"^ {4}(\S.*)$", re.MULTILINE)
COMMAND = re.compile(r"(scripts/|build/|\.ci/|korvane-)\S+|(apt-get|cmake|ctest|export|g\+\+) .")
FOLDER_OR_FILE = re.compile(r"build/\S+$")


def commands_of(page):
    """Lines of blocks without a language, indented lines, and quoted text, that begin like a command."""
    text = page.read_text(encoding="utf-8")
    lines = [line for block in BLOCK.finditer(text) if block["language"] in ("", "sh", "bash")
             for line in block["lines"].splitlines()]
    text = BLOCK.sub("", text)
    lines += INDENTED.findall(text)
    quoted = [candidate for candidate in QUOTED.findall(text)
              if "/" in candidate and not FOLDER_OR_FILE.match(candidate)]  # no bare names
    for candidate in [*lines, *quoted]:
        command = candidate.split("  #")[0].strip()
        if COMMAND.match(command) and not command.endswith("/"):
            yield command


def sorted_commands():
    sections = {}
    for line in (pathlib.Path(__file__).parent / "commands.txt").read_text(encoding="utf-8").splitlines():
        if line.endswith(":"):
            section = sections.setdefault(line[:-1], [])
        elif line and not line.startswith("#"):
            section.append(line)
    return sections


def main():
    sections = sorted_commands()
    known = {command for section in sections.values() for command in section}
    written = {command for page in PAGES for command in commands_of(page)}
    faults = [f"commands.txt does not sort: {command}" for command in sorted(written - known)]
    faults += [f"no page has: {command}" for command in sorted(known - written)]

    with tempfile.TemporaryDirectory() as folder:
        for command in sections["run"]:
            program, *arguments = shlex.split(command)
            run = subprocess.run([PROGRAMS[pathlib.Path(program).name], *arguments], cwd=folder, stdout=subprocess.DEVNULL, check=False)
            if run.returncode != 0:
                faults.append(f"exit status {run.returncode}: {command}")

    print("\n".join(faults))
    print(f"{len(sections['run'])} commands run, {len(known) - len(sections['run'])} not, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
