#!/usr/bin/env python3
"""Looks which dynamic libraries a library for Windows needs, and those need in turn: the system's, or a runtime library
of the compiler that stands in the same folder.

check_imports.py LIBRARY OBJDUMP"""

import pathlib
import re
import subprocess
import sys

SYSTEM = {"kernel32.dll", "msvcrt.dll"}  # the second one is a part of Windows, too
RUNTIME = {"libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll"}


def imports(library, objdump):
    listing = subprocess.run([objdump, "-p", library], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r"^\s*DLL Name: (\S+)$", listing, re.MULTILINE))


library, objdump = pathlib.Path(sys.argv[1]), sys.argv[2]
faults = 0
met = set()
waiting = [library]
while waiting:
    importer = waiting.pop()
    needed = imports(importer, objdump)
    print(f"{importer.name}: {' '.join(sorted(needed))}")
    if not needed:
        print("imports nothing: this is no library for Windows")
        faults += 1
    for name in sorted(needed):
        if name.lower() in SYSTEM or name in met:
            continue
        met.add(name)
        beside = library.parent / name
        if name in RUNTIME and beside.is_file():
            waiting.append(beside)
        else:
            print(f"{importer.name} needs {name}, which " + ("does not stand beside it" if name in RUNTIME else
                                                            "is no part of the system"))
            faults += 1
sys.exit(0 if faults == 0 else 1)
