#!/usr/bin/env python3
"""Compares the names that the shared library exports with the list kept in the repository.

check_exports.py LIBRARY LIST [OBJDUMP]; OBJDUMP reads a library for Windows."""

import pathlib
import re
import subprocess
import sys


def printed(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def exports_of_elf(library):
    return {line.split()[-1].split("@")[0] for line in printed("nm", "-D", "--defined-only", library).splitlines()}


def exports_of_dll(library, objdump):
    # Lines such as "	[   3] _ZN16KORVANELASERALGO..." behind the heading; a later table follows an empty line.
    table = printed(objdump, "-p", library).partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    return set(re.findall(r"^\s*\[\s*\d+\].*\s(\S+)$", table, re.MULTILINE))


library, expected_file, *objdump = sys.argv[1:]
exported = exports_of_dll(library, *objdump) if objdump else exports_of_elf(library)
expected = set(pathlib.Path(expected_file).read_text(encoding="utf-8").split())

for name in sorted(exported - expected):
    print(f"exported, not in the list: {name}")
for name in sorted(expected - exported):
    print(f"in the list, not exported: {name}")
print(f"{len(exported)} names")
sys.exit(0 if exported == expected and exported else 1)
