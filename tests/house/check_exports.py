#!/usr/bin/env python3
"""Compares the names that the shared library exports with the list kept in the repository."""

import pathlib
import subprocess
import sys

library, expected_file = sys.argv[1:3]
listing = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
exported = {line.split()[-1].split("@")[0] for line in listing.splitlines()}
expected = set(pathlib.Path(expected_file).read_text(encoding="utf-8").split())

for name in sorted(exported - expected):
    print(f"exported, not in the list: {name}")
for name in sorted(expected - exported):
    print(f"in the list, not exported: {name}")
print(f"{len(exported)} names")
sys.exit(0 if exported == expected and exported else 1)
