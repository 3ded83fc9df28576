#!/usr/bin/env python3
"""Compares the options of a program's help with those of its manual page: check_manual.py PROGRAM PAGE"""

import pathlib
import re
import subprocess
import sys

program, page = sys.argv[1:]
text = subprocess.run([program, "--help"], check=True, capture_output=True, text=True).stdout
shown = set(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", text, re.MULTILINE))
manual = pathlib.Path(page).read_text(encoding="utf-8").replace("\\-", "-")
written = set(re.findall(r'^\.TP\n\.B\w* "?(?:-\w " *, " *)?(--[a-z-]+)', manual, re.MULTILINE))

for option in sorted(shown - written):
    print(f"not in the manual: {option}")
for option in sorted(written - shown):
    print(f"in the manual only: {option}")
print(f"{len(shown)} options")
sys.exit(0 if shown == written and shown else 1)
