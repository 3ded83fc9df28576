#!/usr/bin/env python3
"""Holds the includes of the project against the drawing in docs/architecture.md: who may include whom."""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PUBLIC = "KorvaneLaserAlgo.h"
LEAVES = ["algo/AlgoContext.h", "algo/ImageView.h", "algo/Int32.h"]
ROOMS = ["extract", "calib", "profile", "image"]

# Folder -> prefixes of the project headers that its files may include.
ALLOWED = {
    "src/kernels": ["kernels/"],
    **{f"src/{room}": [PUBLIC, *LEAVES, "kernels/", f"{room}/"] for room in ROOMS},
    "scenes": [PUBLIC, "scenes/"],
    "examples/loops": [PUBLIC, "scenes/"],
    "examples/pages": [PUBLIC, "scenes/", "pages/"],
    "examples": [PUBLIC, "scenes/", "common/", "host/", "calibration/", "studies/"],
    "tests/reference": [PUBLIC, "reference/"],
    "tests/consumer": [PUBLIC],
    "tests/boundary": [PUBLIC, "boundary/"],
    "bench": [PUBLIC, "bench/", "scenes/", "kernels/kernels.h", "reference.h"],
}
# The leaves include the public header only; the roof includes the four room headers.
ALLOWED_FILES = {
    **{f"src/{leaf}": [PUBLIC] for leaf in LEAVES},
    "src/algo/KorvaneLaserAlgo.cpp": [PUBLIC, "algo/AlgoContext.h", *[f"{room}/{room}.h" for room in ROOMS]],
    f"include/{PUBLIC}": [],
    # Draws with the examples' means; sees neither the library's inside nor the rest of the benchmark.
    "bench/PlotScaling.cpp": ["common/"],
}

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def allowed_for(path):
    name = path.relative_to(ROOT).as_posix()
    if name in ALLOWED_FILES:
        return ALLOWED_FILES[name]
    for folder, prefixes in ALLOWED.items():
        if name.startswith(folder + "/"):
            return prefixes
    return None


def main():
    checked = 0
    faults = []
    tops = ("include", "src", "scenes", "examples", "tests/reference", "tests/boundary", "tests/consumer", "bench")
    for path in sorted(p for top in tops for p in (ROOT / top).rglob("*") if p.suffix in (".h", ".cpp")):
        prefixes = allowed_for(path)
        name = path.relative_to(ROOT).as_posix()
        if prefixes is None:
            faults.append(f"{name}: no rule says what it may include")
            continue
        checked += 1
        for include in INCLUDE.findall(path.read_text(encoding="utf-8")):
            own_folder = (path.parent / include).exists()
            if not own_folder and not any(include.startswith(prefix) for prefix in prefixes):
                faults.append(f"{name}: must not include {include}")
    print("\n".join(faults))
    if checked < 30:
        faults.append("too few files found")
    print(f"{checked} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
