#!/usr/bin/env python3
"""Looks for folders of this machine in the files of a prefix: check_installed.py PREFIX CONFIGURATION FOLDER ...

Programs and libraries are left out where the configuration has debugging information, which names sources."""

import pathlib
import sys

prefix, configuration, *folders = sys.argv[1:]
BINARY = (b"\x7fELF", b"!<arch>", b"MZ")

faults = []
files = [path for path in pathlib.Path(prefix).rglob("*") if path.is_file()]
for path in files:
    content = path.read_bytes()
    if content.startswith(BINARY) and configuration in ("Debug", "RelWithDebInfo"):
        continue
    faults += [f"{path} names {folder}" for folder in [prefix, *folders] if folder.encode() in content]

print("\n".join(faults))
print(f"{len(files)} files, {len(faults)} faults")
sys.exit(1 if faults or len(files) < 8 else 0)
