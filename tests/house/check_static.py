#!/usr/bin/env python3
"""Holds the static library to what a host needs: a host's own shared library must not export anything of ours, and the
kernels cannot be switched: check_static.py ARCHIVE (ELF)."""

import re
import subprocess
import sys

OURS = "KORVANELASERALGO"
ONLY_FOR_TESTS = re.compile(r"kernels8activate|kernels5check")

listing = subprocess.run(["readelf", "--symbols", "--wide", sys.argv[1]], check=True, capture_output=True,
                         text=True).stdout
faults = set()
hidden = 0
for line in listing.splitlines():
    words = line.split()
    if len(words) != 8 or words[4] not in ("GLOBAL", "WEAK") or words[6] == "UND" or OURS not in words[7]:
        continue
    if ONLY_FOR_TESTS.search(words[7]):
        faults.add(f"only for tests: {words[7]}")
    if words[5] == "HIDDEN":
        hidden += 1
    else:
        faults.add(f"visible: {words[7]}")

print("\n".join(sorted(faults)))
print(f"{hidden} hidden names, {len(faults)} faults")
sys.exit(1 if faults or hidden < 30 else 0)
