#!/usr/bin/env python3
"""Looks for fused multiply-adds in object files. They round once where the rules round twice, and a compiler may put
them in although contraction is switched off.

    check_no_fused_operations.py OBJDUMP FILE ...
"""

import re
import subprocess
import sys

# x86-64: vfmadd213pd, vfnmsub231ss, vfmaddsub132ps ...; ARM64: fmadd, fnmsub, fmla, fmls.
FUSED = re.compile(r"^\s+[0-9a-f]+:\s.*?\b(vfn?m(?:add|sub)\w+|fn?m(?:add|sub)|fml[as])\b", re.MULTILINE)

faults = 0
objdump, *paths = sys.argv[1:]
for path in paths:
    listing = subprocess.run([objdump, "-d", "--no-show-raw-insn", path], check=True, capture_output=True,
                             text=True).stdout
    found = FUSED.findall(listing)
    if found:
        print(f"{path}: {len(found)} fused operations, {found[0]} first")
    faults += len(found)
print(f"{len(paths)} files, {faults} fused operations")
sys.exit(0 if faults == 0 and paths else 1)
