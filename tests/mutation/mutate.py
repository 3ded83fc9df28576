#!/usr/bin/env python3
"""Changes the library one operator, constant, jump or statement at a time and looks whether a test notices.

    mutate.py [--file PATH ...] [--sample N] [--seed S] [--again] [--list]

Works on a copy of the sources in build/mutants and leaves the tree alone. Each change is compiled alone, linked into the
test programs of its room, and run: the unit tests first, then random cases, library against twin. A change that no test
notices has survived; the exit status is 1 where there is one that equivalent.txt does not explain.
"""

import argparse
import collections
import concurrent.futures
import hashlib
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time

from mutations import mutations_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/mutants"
TREE = BUILD / "tree"  # the copy that everything is built from
OBJECTS = BUILD / "objects"
LAST_SURVIVORS = BUILD / "survivors.txt"
EXPLAINED = ROOT / "tests/mutation/equivalent.txt"
COPIED = ("CMakeLists.txt", "cmake", "include", "src", "scenes", "tests")

# Room -> its test programs, in the order in which they run. A fuzz room stands for random cases of it.
UNIT_TESTS = {room: f"tests/{room}/{room}_tests" for room in ("algo", "kernels", "calib", "profile", "extract", "image")}
FAILURE_TESTS = "tests/faults/failure_tests"
SIZE_TESTS = "tests/faults/size_tests"
FUZZ = "tests/fuzz/fuzz_cases"
FUZZ_CASES = {"calibration": 100000, "profile": 20000, "extraction": 4000, "image": 3000, "chain": 2000}
FUZZ_SEED = 11
TESTS_OF_ROOM = {
    "calib": [UNIT_TESTS["calib"], "calibration"],
    "profile": [UNIT_TESTS["profile"], "profile"],
    "extract": [UNIT_TESTS["extract"], "extraction"],
    "image": [UNIT_TESTS["image"], FAILURE_TESTS, "image"],
    # The same tests for every set of kernels.
    "kernels": [f"{UNIT_TESTS[room]} --kernels={name}" for name in ("AVX512", "plain", "SSE2", "AVX2")
                for room in ("kernels", "extract", "image", "profile", "calib")] + [*FUZZ_CASES, SIZE_TESTS],
    "algo": [*UNIT_TESTS.values(), *FUZZ_CASES],
}
PROGRAMS = [*UNIT_TESTS.values(), FAILURE_TESTS, SIZE_TESTS, FUZZ]

BUILD_SECONDS = 600
MEMORY = 6 << 30  # bytes of address space; a changed size may ask for all there is

Mutant = collections.namedtuple("Mutant", "file mutation")
KILLED, TIMED_OUT, NOT_COMPILING, SAME_CODE, EXPLAINED_SURVIVOR, SURVIVED = OUTCOMES = (
    "killed", "timed out", "not compiling", "same code", "explained", "survived")


# ---- building ----

def limit_process():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, seconds, folder=BUILD):
    """Runs a command; returns its exit status, or None where the time ran out. Leaves no child behind."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, start_new_session=True, preexec_fn=limit_process)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def build_step(command, folder):
    """Whether a compiler or linker succeeds."""
    status = run(command, BUILD_SECONDS, folder)
    if status is None:
        sys.exit(f"mutate: no end after {BUILD_SECONDS} seconds: {shlex.join(command)}")
    return status == 0


def copy_tree():
    """Copies what has changed, so that a second run builds little."""
    for name in COPIED:
        source, target = ROOT / name, TREE / name
        files = [source] if source.is_file() else [p for p in source.rglob("*") if p.is_file()]
        kept = set()
        for path in files:
            copy = TREE / path.relative_to(ROOT)
            kept.add(copy)
            if copy.exists() and copy.read_bytes() == path.read_bytes():
                continue
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, copy)
        if target.is_dir():
            for path in target.rglob("*"):
                if path.is_file() and path not in kept:
                    path.unlink()


def build_tree(jobs):
    log = BUILD / "build.log"
    with open(log, "w", encoding="utf-8") as output:
        configure = ["cmake", "-S", TREE, "-B", OBJECTS, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                     "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG", "-DCMAKE_CXX_COMPILER_LAUNCHER=",
                     "-DKORVANE_BUILD_EXAMPLES=OFF", "-DKORVANE_BUILD_BENCHMARKS=OFF"]
        build = ["cmake", "--build", OBJECTS, "--parallel", str(jobs), "--target",
                 *[pathlib.Path(program).name for program in PROGRAMS]]
        for command in (configure, build):
            if subprocess.run(command, stdout=output, stderr=subprocess.STDOUT, check=False).returncode != 0:
                sys.exit(f"mutate: the build failed, see {log}")


def ninja(*arguments):
    return subprocess.run(["ninja", "-C", OBJECTS, "-t", *arguments], check=True, capture_output=True,
                          text=True).stdout


def split_at(words, separator):
    parts = [[]]
    for word in words:
        if word == separator:
            parts.append([])
        else:
            parts[-1].append(word)
    return parts


def objects_in(words):
    return [word for word in words if word.endswith((".o", ".obj"))]


class Recipes:
    """How each object is compiled and each program linked, and which objects a source file is part of."""

    def __init__(self):
        self.compile = {}  # object -> command
        self.link = {}  # program -> command
        self.archives = {}  # library -> objects
        self.objects_of = collections.defaultdict(list)  # file -> objects
        for program in PROGRAMS:
            for line in ninja("commands", program).splitlines():
                words = shlex.split(line)
                if "-c" in words and words[-2] == "-c":
                    self.compile[words[words.index("-o") + 1]] = words
                elif objects_in(words) and any(word.endswith(".a") for word in words) and program not in words:
                    self.archives[next(word for word in words if word.endswith(".a"))] = objects_in(words)
                elif program in words:
                    self.link[program] = next(part for part in split_at(words, "&&") if "-o" in part)
        current = None
        for line in ninja("deps").splitlines():
            if line.startswith(" "):
                path = pathlib.Path(line.strip())
                if path.is_relative_to(TREE / "src") and current in self.compile:
                    self.objects_of[path.relative_to(TREE).as_posix()].append(current)
            else:
                current = line.split(":")[0]

    def linked_into(self, program):
        """The program's objects: its own, and those in the project's static libraries."""
        objects = set(objects_in(self.link[program]))
        for word in self.link[program]:
            objects.update(self.archives.get(word, []))
        return objects


# ---- one mutant ----

def tests_of(file):
    return TESTS_OF_ROOM[file.split("/")[1]]


def command_of(test, program):
    """The command that runs a test, with the program in place of the one that was built."""
    if test in FUZZ_CASES:
        return [program, "--cases", str(FUZZ_CASES[test]), str(FUZZ_SEED), test]
    return [program, "--gtest_brief=1", "--gtest_fail_fast", *test.split()[1:]]


def may_run(object_name, test):
    """Whether a test can reach an object: of the kernels in lanes, a test of one set runs those of that set alone."""
    lanes = re.search(r"kernels/sets/(\w+)\.cpp", object_name)
    chosen = re.search(r"--kernels=(\w+)", test)
    return not lanes or not chosen or lanes[1] == chosen[1].lower()


def program_of(test):
    return FUZZ if test in FUZZ_CASES else test.split()[0]


class Worker:
    """A folder with a copy of the library's sources, in which one mutant at a time is built and run."""

    def __init__(self, number, recipes, time_limits):
        self.folder = BUILD / f"worker-{number}"
        self.recipes = recipes
        self.time_limits = time_limits
        self.unchanged = {}  # object -> digest, compiled in this folder
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(TREE / "src", self.folder / "src")

    def compile(self, object_name):
        """The digest of the object, or None where it does not compile."""
        output = self.folder / "changed" / object_name
        output.parent.mkdir(parents=True, exist_ok=True)
        source_folder = str(TREE / "src")
        command = [word.replace(source_folder, str(self.folder / "src"))
                   for word in self.recipes.compile[object_name] if not word.startswith("-W")]
        command[command.index("-o") + 1] = str(output)
        for option in ("-MF", "-MT"):
            if option in command:
                del command[command.index(option):command.index(option) + 2]
        command = [word for word in command if word != "-MD"]
        if not build_step([*command, "-w"], self.folder):
            return None
        return hashlib.sha256(output.read_bytes()).digest()

    def link(self, program, objects):
        output = self.folder / "program"
        # Before all others: a library's object is left out where what it defines is there already.
        command = [word for word in self.recipes.link[program] if word not in objects]
        command[command.index("-o") + 1] = str(output)
        command[1:1] = [str(self.folder / "changed" / name) for name in objects]
        return output if build_step(command, OBJECTS) else None

    def outcome_of(self, mutant):
        original = (TREE / mutant.file).read_text(encoding="utf-8")
        source = self.folder / mutant.file
        objects = self.recipes.objects_of[mutant.file]
        for name in objects:
            if name not in self.unchanged:
                self.unchanged[name] = self.compile(name)
                if self.unchanged[name] is None:
                    sys.exit(f"mutate: {name} does not compile unchanged")
        change = mutant.mutation
        source.write_text(original[:change.start] + change.replacement + original[change.end:], encoding="utf-8")
        try:
            return self.run_tests(mutant, objects)
        finally:
            source.write_text(original, encoding="utf-8")

    def run_tests(self, mutant, objects):
        # The library's objects first: most mutants are noticed before the tests' own objects are needed.
        compiled = {}  # object -> whether it differs
        linked = None
        for test in tests_of(mutant.file):
            program = program_of(test)
            needed = [name for name in objects if name in self.recipes.linked_into(program)]
            if not needed:
                sys.exit(f"mutate: {mutant.file} is no part of {program}")
            needed = [name for name in needed if may_run(name, test)]
            for name in needed:
                if name in compiled:
                    continue
                digest = self.compile(name)
                if digest is None:
                    return NOT_COMPILING
                compiled[name] = digest != self.unchanged[name]
            changed = [name for name in needed if compiled[name]]
            if not changed:
                continue
            if (program, changed) != linked:
                path = self.link(program, changed)
                if path is None:
                    return NOT_COMPILING
                linked = program, changed
            status = run(command_of(test, path), self.time_limits[test], OBJECTS / pathlib.Path(program).parent)
            if status is None:
                return TIMED_OUT
            if status != 0:
                return KILLED
        return SURVIVED if any(compiled.values()) else SAME_CODE


# ---- all mutants ----

def all_mutants(files):
    mutants = []
    for file in files:
        text = (TREE / file).read_text(encoding="utf-8")
        mutants += [Mutant(file, mutation) for mutation in mutations_of(text)]
    return mutants


def key_of(mutant):
    return mutant.file, mutant.mutation.before, mutant.mutation.after


def read_changes(path):
    """Blocks of a file's name, "- line", "+ changed line" and, for an explanation, "= reason"."""
    changes = {}
    if not path.exists():
        return changes
    for block in re.split(r"\n\s*\n", path.read_text(encoding="utf-8")):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        file = lines[0]
        parts = {line[0]: line[2:] for line in lines[1:] if line[:2] in ("- ", "+ ", "= ")}
        if "-" not in parts or "+" not in parts:
            sys.exit(f"mutate: {path}: a block without its lines: {block}")
        changes[file, parts["-"], parts["+"]] = parts.get("=", "")
    return changes


def measure_time_limits(recipes):
    """Runs every test on the unchanged library: it must pass, and its time sets the limit."""
    limits = {}
    for test in dict.fromkeys(test for tests in TESTS_OF_ROOM.values() for test in tests):
        program = program_of(test)
        start = time.monotonic()
        status = run(command_of(test, OBJECTS / program), 600, OBJECTS / pathlib.Path(program).parent)
        if status != 0:
            sys.exit(f"mutate: {test} fails on the unchanged library")
        limits[test] = 10.0 + 5.0 * (time.monotonic() - start)
    return limits


def print_table(mutants, outcomes):
    print(f"{'file':34}" + "".join(f"{name:>15}" for name in OUTCOMES))
    counts = collections.defaultdict(collections.Counter)
    for mutant, outcome in zip(mutants, outcomes):
        counts[mutant.file][outcome] += 1
        counts["total"][outcome] += 1
    for file in [*sorted(set(counts) - {"total"}), "total"]:
        print(f"{file:34}" + "".join(f"{counts[file][name]:15}" for name in OUTCOMES))


def describe(mutant):
    change = mutant.mutation
    return f"{mutant.file}:{change.line}\n- {change.before}\n+ {change.after}"


def main():
    parser = argparse.ArgumentParser(description="Changes the library and looks whether a test notices.")
    parser.add_argument("--file", action="append", help="only this file or folder below src; may be repeated")
    parser.add_argument("--sample", type=int, help="run this many mutants, drawn at random")
    parser.add_argument("--seed", type=int, default=1, help="of the sample, default 1")
    parser.add_argument("--again", action="store_true", help="run only what survived the last run")
    parser.add_argument("--list", action="store_true", help="list the mutants and run none")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="mutants that run at once")
    options = parser.parse_args()

    BUILD.mkdir(parents=True, exist_ok=True)
    copy_tree()
    files = sorted(p.relative_to(TREE).as_posix() for p in (TREE / "src").rglob("*") if p.suffix in (".h", ".cpp"))
    if options.file:
        wanted = [pathlib.PurePosixPath(name) for name in options.file]
        files = [f for f in files if any(pathlib.PurePosixPath(f).is_relative_to(w) for w in wanted)]
    mutants = all_mutants(files)
    of_all = len(mutants)
    explained = read_changes(EXPLAINED)
    stale = explained.keys() - {key_of(mutant) for mutant in mutants} if not options.file else ()
    if stale:
        sys.exit("\n".join([f"mutate: {EXPLAINED.name} explains what is no mutant any more:",
                            *(f"{file}: {after}" for file, _, after in sorted(stale))]))
    if options.again:
        survivors = read_changes(LAST_SURVIVORS)
        mutants = [mutant for mutant in mutants if key_of(mutant) in survivors]
    if options.sample is not None and options.sample < len(mutants):
        chosen = sorted(random.Random(options.seed).sample(range(len(mutants)), options.sample))
        mutants = [mutants[i] for i in chosen]
    if options.list:
        print("\n\n".join(describe(mutant) for mutant in mutants))
        return 0

    build_tree(options.jobs)
    recipes = Recipes()
    time_limits = measure_time_limits(recipes)
    print(f"{len(mutants)} of {of_all} mutants", flush=True)

    idle = [Worker(number, recipes, time_limits) for number in range(options.jobs)]
    survived = []

    def examine(mutant):
        worker = idle.pop()
        outcome = worker.outcome_of(mutant)
        idle.append(worker)
        if outcome == SURVIVED:
            if key_of(mutant) in explained:
                return EXPLAINED_SURVIVOR
            print(f"\nsurvived: {describe(mutant)}", flush=True)
            survived.append(mutant)
        return outcome

    outcomes = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for outcome in pool.map(examine, mutants):
            outcomes.append(outcome)
            if len(outcomes) % 100 == 0:
                print(f"... {len(outcomes)} of {len(mutants)}", flush=True)

    LAST_SURVIVORS.write_text("\n\n".join(
        "\n".join([mutant.file, f"- {mutant.mutation.before}", f"+ {mutant.mutation.after}"]) for mutant in survived),
        encoding="utf-8")
    print()
    print_table(mutants, outcomes)
    return 1 if survived else 0


if __name__ == "__main__":
    sys.exit(main())
