#!/usr/bin/env python3
"""Changes the library one operator, constant, jump or statement at a time and looks whether a test notices.

    mutate.py [--file PATH ...] [--sample N] [--seed S] [--resume] [--again] [--explained] [--list]

Works on a copy of the sources in build/mutants and leaves the tree alone. Each change is compiled alone, linked into the
test programs of its room, and run: the unit tests first, then random cases, library against twin. A change that no test
notices has survived; the exit status is 1 where there is one that equivalent.txt does not explain. What it explains is
counted, and run only with --explained: the reader of the explanation is its judge, and a survivor costs most. Outcomes
are recorded as they come, so that --resume goes on where a run has ended: it runs what is not recorded, what survived,
and all of a file that has changed.
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
import threading
import time

from mutations import mutations_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/mutants"
TREE = BUILD / "tree"  # the copy that everything is built from
OBJECTS = BUILD / "objects"
RECORD = BUILD / "outcomes.txt"
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
    # The same tests for every set of kernels. Of a pass, those of the rooms that use it.
    "kernels": [f"{UNIT_TESTS[room]} --kernels={name}" for name in ("AVX512", "plain", "SSE2", "AVX2")
                for room in ("kernels", "extract", "image", "profile", "calib")] + [*FUZZ_CASES, SIZE_TESTS],
    "algo": [*UNIT_TESTS.values(), *FUZZ_CASES],
}
ROOM_OF_FUZZ = {"calibration": "calib", "profile": "profile", "extraction": "extract", "image": "image"}
PROGRAMS = [*UNIT_TESTS.values(), FAILURE_TESTS, SIZE_TESTS, FUZZ]

NO_SUBJECT = "src/kernels/check"  # is a test itself, and part of the check build alone

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


def set_of(object_name):
    """The set of kernels that the object holds, or None."""
    match = re.search(r"kernels/sets/(\w+)\.cpp", object_name)
    return match and match[1]


UNCHANGED_TABLE = "kUnchanged"  # what the table of the unchanged passes is called beside a changed one
LINKER = ["-fuse-ld=gold"] if shutil.which("ld.gold") else []  # takes half the time of the default


class Recipes:
    """How each object is compiled and each program linked, and which objects a source file is part of."""

    def __init__(self):
        self.compile = {}  # object -> command
        self.link = {}  # program -> command
        self.archives = {}  # library -> objects
        self.objects_of = collections.defaultdict(list)  # file -> objects
        self.headers = {}  # options -> precompiled header
        self.renamed = set()
        self.lock = threading.Lock()
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

    def plain(self, object_name):
        """The command that compiles an object and does nothing else.

        Of warnings, one is left: a function that no header declares is another one than the library's, in whose place
        the linker would take the unchanged one.
        """
        command = [word for word in self.compile[object_name] if not word.startswith("-W")]
        for option in ("-MF", "-MT"):
            if option in command:
                del command[command.index(option):command.index(option) + 2]
        return [*(word for word in command if word != "-MD"), "-Werror=missing-declarations"]

    def header_of(self, object_name):
        """A precompiled header of what the library includes of the compiler's: it takes a third of the time."""
        command = self.plain(object_name)
        options = command[:command.index("-o")]
        with self.lock:
            if tuple(options) not in self.headers:
                header = BUILD / f"headers-{len(self.headers)}" / "compiler.h"
                header.parent.mkdir(exist_ok=True)
                names = set()
                for path in (TREE / "src").rglob("*.[ch]*"):
                    names.update(re.findall(r"^#include <([\w.]+)>", path.read_text(encoding="utf-8"), re.MULTILINE))
                header.write_text("".join(f"#if __has_include(<{name}>)\n#include <{name}>\n#endif\n"
                                          for name in sorted(names)), encoding="utf-8")
                if not build_step([*options, "-w", "-x", "c++-header", str(header), "-o", f"{header}.gch"], OBJECTS):
                    sys.exit(f"mutate: {header} does not compile")
                self.headers[tuple(options)] = header
            return self.headers[tuple(options)]

    def with_other_table(self, object_name):
        """A copy of a set's object, in which the table has another name."""
        copy = OBJECTS / f"{object_name}.unchanged.o"
        with self.lock:
            if copy not in self.renamed:
                scope = f"_ZN16KORVANELASERALGO7kernels{len(set_of(object_name))}{set_of(object_name)}"
                subprocess.run(["objcopy", "--redefine-sym",
                                f"{scope}6kTableE={scope}{len(UNCHANGED_TABLE)}{UNCHANGED_TABLE}E",
                                OBJECTS / object_name, copy], check=True)
                self.renamed.add(copy)
        return copy

    def linked_into(self, program):
        """The program's objects: its own, and those in the project's static libraries."""
        objects = set(objects_in(self.link[program]))
        for word in self.link[program]:
            objects.update(self.archives.get(word, []))
        return objects


# ---- the passes of src/kernels ----

LANES = "src/kernels/lanes"
TABLE = f"{LANES}/Table.h"


class Passes:
    """Which passes a file of lanes or plain twins takes part in, and which rooms use them."""

    def __init__(self):
        table = self.text_of(TABLE)
        self.entries = re.findall(r"\.(\w+) = \1,", table)
        self.headers = included_lanes(table)
        self.closures = {header: self.closure_of(header) for header in self.headers}
        self.header_of = {entry: next(header for header in self.headers if self.defines(header, entry))
                          for entry in self.entries}
        self.rooms_of = {entry: self.users_of(entry) for entry in self.entries}

    @staticmethod
    def text_of(file):
        return (TREE / file).read_text(encoding="utf-8")

    def closure_of(self, header):
        files = {header}
        for included in included_lanes(self.text_of(header)):
            files |= self.closure_of(included)
        return files

    def defines(self, file, entry):
        return re.search(rf"^[^\n/;]*\b{entry}\([^;]*?\) {{$", self.text_of(file), re.MULTILINE) is not None

    @staticmethod
    def users_of(entry):
        """Rooms whose sources name the entry of the table; those of the shared parts of src/kernels are two."""
        rooms = set()
        for path in (TREE / "src").rglob("*.[ch]*"):
            parts = path.relative_to(TREE / "src").parts
            if not re.search(rf"[.>]{entry}\b", path.read_text(encoding="utf-8")):
                continue
            if parts[0] != "kernels":
                rooms.add(parts[0])
            elif len(parts) == 2:
                rooms |= {"extract", "image"}
        return rooms

    def of(self, file):
        """The entries of the table that a change of the file can reach, or None where it is no file of passes."""
        if file.startswith(f"{LANES}/") and file != TABLE:
            return [entry for entry in self.entries if file in self.closures[self.header_of[entry]]]
        if re.match(r"src/kernels/plain/[A-Z]", file):
            return [entry for entry in self.entries if self.defines(file, entry)] or None
        return None

    def tests_of(self, file):
        tests = TESTS_OF_ROOM[file.split("/")[1]]
        entries = self.of(file)
        if entries is None:
            return tests
        rooms = {"kernels"}.union(*(self.rooms_of[entry] for entry in entries))
        # Passes have tests of their own with buffers of many sizes, beside which those of the methods notice no more.
        return [test for test in tests if room_of(test) in (None, *rooms) and test != SIZE_TESTS]


def included_lanes(text):
    return [f"src/{name}" for name in re.findall(r'#include "(kernels/lanes/\w+\.h)"', text)]


def room_of(test):
    """The room whose tests these are, or None for those of the whole."""
    if test in FUZZ_CASES:
        return ROOM_OF_FUZZ.get(test)
    return test.split("/")[1] if program_of(test) in UNIT_TESTS.values() else None


# ---- one mutant ----


def command_of(test, program):
    """The command that runs a test, with the program in place of the one that was built."""
    if test in FUZZ_CASES:
        return [program, "--cases", str(FUZZ_CASES[test]), str(FUZZ_SEED), test]
    return [program, "--gtest_brief=1", "--gtest_fail_fast", *test.split()[1:]]


def may_run(object_name, test):
    """Whether a test can reach an object: of the kernels in lanes, a test of one set runs those of that set alone."""
    chosen = re.search(r"--kernels=(\w+)", test)
    return not set_of(object_name) or not chosen or set_of(object_name) == chosen[1].lower()


def program_of(test):
    return FUZZ if test in FUZZ_CASES else test.split()[0]


class Worker:
    """A folder with a copy of the library's sources, in which one mutant at a time is built and run."""

    def __init__(self, number, recipes, passes, time_limits):
        self.folder = BUILD / f"worker-{number}"
        self.recipes = recipes
        self.passes = passes
        self.time_limits = time_limits
        self.unchanged = {}  # file, object -> digest, compiled in this folder
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(TREE / "src", self.folder / "src")

    def compile(self, object_name, file):
        """The digest of the object, or None where it does not compile. `file` is what has changed in it."""
        output = self.folder / "changed" / object_name
        output.parent.mkdir(parents=True, exist_ok=True)
        source_folder = str(TREE / "src")
        command = [word.replace(source_folder, str(self.folder / "src")) for word in self.recipes.plain(object_name)]
        command[command.index("-o") + 1] = str(output)
        if set_of(object_name) and self.passes.of(file) is not None:
            command[command.index("-c") + 1] = str(self.write_part(object_name, file))
        command[1:1] = ["-include", str(self.recipes.header_of(object_name))]
        if not build_step(command, self.folder):
            return None
        return hashlib.sha256(output.read_bytes()).digest()

    def write_part(self, object_name, file):
        """Writes a source of the passes that the file takes part in; all others come from the unchanged object."""
        name = set_of(object_name)
        source = (TREE / f"src/kernels/sets/{name}.cpp").read_text(encoding="utf-8")
        defines = [line for line in source.splitlines() if line.startswith("#define")]
        entries = self.passes.of(file)
        headers = sorted({self.passes.header_of[entry] for entry in entries})
        part = self.folder / "part.cpp"
        part.write_text("\n".join([
            *defines,
            *(f'#include "{header.removeprefix("src/")}"' for header in headers),
            f"namespace KORVANELASERALGO::kernels::{name} {{",
            f"extern const KernelSet {UNCHANGED_TABLE};",
            "extern const KernelSet kTable;",
            "__attribute__((init_priority(101))) const KernelSet kTable = [] {",
            f"    KernelSet set = {UNCHANGED_TABLE};",
            *(f"    set.{entry} = {entry};" for entry in entries),
            "    return set;",
            "}();",
            "}",
        ]), encoding="utf-8")
        return part

    def link(self, program, objects, file):
        output = self.folder / "program"
        # Before all others: a library's object is left out where what it defines is there already.
        command = [word for word in self.recipes.link[program] if word not in objects]
        command[command.index("-o") + 1] = str(output)
        inputs = [str(self.folder / "changed" / name) for name in objects]
        if self.passes.of(file) is not None:
            inputs += [str(self.recipes.with_other_table(name)) for name in objects if set_of(name)]
        command[1:1] = inputs
        return output if build_step([*command, *LINKER], OBJECTS) else None

    def outcome_of(self, mutant):
        original = (TREE / mutant.file).read_text(encoding="utf-8")
        source = self.folder / mutant.file
        objects = self.recipes.objects_of[mutant.file]
        for name in objects:
            if (mutant.file, name) not in self.unchanged:
                digest = self.compile(name, mutant.file)
                if digest is None:
                    sys.exit(f"mutate: {name} does not compile unchanged")
                self.unchanged[mutant.file, name] = digest
        change = mutant.mutation
        source.write_text(original[:change.start] + change.replacement + original[change.end:], encoding="utf-8")
        try:
            return self.run_tests(mutant, objects)
        finally:
            source.write_text(original, encoding="utf-8")

    def commands_of(self, test, program, file):
        """The commands that run a test; of the passes of the file alone first, because most mutants end there."""
        entries = self.passes.of(file)
        if entries and program_of(test) == UNIT_TESTS["kernels"]:
            suites = ":".join(f"{entry[0].upper()}{entry[1:]}*" for entry in entries)
            yield [*command_of(test, program), f"--gtest_filter={suites}"]
        yield command_of(test, program)

    def run_test(self, test, program, file):
        """The outcome where the test notices the change, or None."""
        folder = OBJECTS / pathlib.Path(program_of(test)).parent
        for command in self.commands_of(test, program, file):
            status = run(command, self.time_limits[test], folder)
            if status != 0:
                return TIMED_OUT if status is None else KILLED
        return None

    def run_tests(self, mutant, objects):
        # The library's objects first: most mutants are noticed before the tests' own objects are needed.
        compiled = {}  # object -> whether it differs
        linked = None
        for test in self.passes.tests_of(mutant.file):
            program = program_of(test)
            needed = [name for name in objects if name in self.recipes.linked_into(program)]
            if not needed:
                sys.exit(f"mutate: {mutant.file} is no part of {program}")
            needed = [name for name in needed if may_run(name, test)]
            for name in needed:
                if name in compiled:
                    continue
                digest = self.compile(name, mutant.file)
                if digest is None:
                    return NOT_COMPILING
                compiled[name] = digest != self.unchanged[mutant.file, name]
                # What one of several objects makes a test notice needs no more of them.
                if compiled[name] and sum(compiled.values()) == 1 and name != needed[-1]:
                    path = self.link(program, [name], mutant.file)
                    outcome = path and self.run_test(test, path, mutant.file)
                    if outcome:
                        return outcome
            changed = [name for name in needed if compiled[name]]
            if not changed:
                continue
            if (program, changed) != linked:
                path = self.link(program, changed, mutant.file)
                if path is None:
                    return NOT_COMPILING
                linked = program, changed
            outcome = self.run_test(test, path, mutant.file)
            if outcome is not None:
                return outcome
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


def record_key(mutant):
    digest = hashlib.sha256((TREE / mutant.file).read_bytes()).hexdigest()
    change = mutant.mutation
    return f"{mutant.file} {digest[:16]} {change.start} {change.end} {change.replacement!r}"


def read_record():
    """Mutant -> outcome, of earlier runs."""
    if not RECORD.exists():
        return {}
    return dict(line.split("\t") for line in RECORD.read_text(encoding="utf-8").splitlines())


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
    parser.add_argument("--resume", action="store_true", help="run what earlier runs have not killed")
    parser.add_argument("--again", action="store_true", help="run only what survived the last run")
    parser.add_argument("--explained", action="store_true", help="run what is explained, too")
    parser.add_argument("--list", action="store_true", help="list the mutants and run none")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="mutants that run at once")
    options = parser.parse_args()

    BUILD.mkdir(parents=True, exist_ok=True)
    copy_tree()
    files = sorted(p.relative_to(TREE).as_posix() for p in (TREE / "src").rglob("*") if p.suffix in (".h", ".cpp"))
    files = [file for file in files if not file.startswith(f"{NO_SUBJECT}/")]
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

    passes = Passes()
    recorded = read_record()
    if not options.resume:
        RECORD.unlink(missing_ok=True)
        recorded = {}
    record = open(RECORD, "a", encoding="utf-8", buffering=1)
    idle = [Worker(number, recipes, passes, time_limits) for number in range(options.jobs)]
    survived = []

    def examine(mutant):
        if key_of(mutant) in explained and not options.explained:
            return EXPLAINED_SURVIVOR
        key = record_key(mutant)
        if recorded.get(key, SURVIVED) != SURVIVED:
            return recorded[key]
        worker = idle.pop()
        outcome = worker.outcome_of(mutant)
        idle.append(worker)
        print(f"{key}\t{outcome}", file=record)
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
