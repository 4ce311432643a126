#!/usr/bin/env python3
"""Mutation testing of the product: changes one thing of a source and requires that a test notices.

usage: mutants.py BUILD [NUMBER] [SEED] [--changed COMMIT] [--again] [--of FILE...]

BUILD is a folder where CMake and ninja have built the test programs, best without sanitizers. Tried are NUMBER mutants (1000
unless given) that SEED (a random one unless given) chooses; with --changed those of the lines that differ from a commit
in more than comments, for a minute; with --again those that survived the last run; with --of FILE all of these files, or
NUMBER. For each the altered source is compiled, the test programs of its folder are linked with it and run, then those of
the folders above and those of the faults. A program that takes LIMIT times its usual processor time hangs, and so
notices too. An interrupted run counts as far as it came.

tests/figures/equivalent-mutants.tsv lists the mutants that no test can notice, with the reason; they are found by their
text ("-> *": whatever the lines become) and are not tried. A run of 100 mutants and more is added to
tests/figures/mutants.tsv. The exit status is 1 if a mutant survived.
"""
import argparse
import collections
import concurrent.futures
import csv
import filecmp
import json
import os
import pathlib
import queue
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import threading
import time

import mutations

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIGURES = ROOT / "tests/figures/mutants.tsv"
EQUIVALENT = ROOT / "tests/figures/equivalent-mutants.tsv"
SURVIVORS = ROOT / "build/survivors.json"  # of the last run
# The programs that notice, the cheapest first.
FAULTS = ["faults", "faults/memory"]
PROGRAMS = {
    "platform": ["platform", "vds", "manager"],
    "base": ["base", "device", "vds", "manager", *FAULTS],
    "logging": ["logging", "diag", "manager"],
    "diag": ["diag", "diag/framework", "device", "vds", "manager"],
    "device": ["device", "vds", "manager", *FAULTS],
    "vds": ["vds", "manager", *FAULTS],
    "manager": ["manager", *FAULTS],
}
# The product folders that each program links.
LINKED = {"platform": [], "base": ["base"], "logging": ["logging"], "diag": ["base", "logging", "diag"],
          "diag/framework": ["diag/framework_binding"]}
LINKED["device"] = LINKED["diag"] + ["device"]
LINKED["vds"] = LINKED["device"] + ["vds"]
LINKED["manager"] = LINKED["vds"] + ["manager"]
LINKED |= {program: LINKED["manager"] for program in FAULTS}
# They hold nothing but assertions of the compiler, about the headers of their folder.
ASSERTIONS = ["platform/layout_checks.cpp", "platform/slot_checks.cpp"]
NUMBER = 1000
LIMIT = 20  # times the usual processor time
MEMORY = 4 << 30  # bytes for a test program
BLOCKED_SECONDS = 30  # added to LIMIT times the usual duration: after that a program hangs that uses no processor
CHANGED_SECONDS = 60
WORKERS = 2


def output_of(*command):
    return subprocess.run(command, cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True).stdout


class Build:
    """How ninja compiles and links in a build folder."""

    def __init__(self, folder):
        self.folder = folder
        self.commands = {}
        self.objects = {}
        for entry in json.loads((folder / "compile_commands.json").read_text()):
            words = entry["command"]
            if entry["file"].endswith(".c"):
                continue  # compiled by another compiler
            words = words[re.search(r"\S*clang\+\+", words).start():]
            self.commands[self.relative(entry["file"])] = words
            self.objects[self.relative(entry["file"])] = re.search(r" -o (\S+)", words).group(1)
        self.headers = collections.defaultdict(set)  # of an object
        target = None
        for line in output_of("ninja", "-C", str(folder), "-t", "deps").splitlines():
            if line.startswith(" "):
                self.headers[target].add(self.relative(line.strip()))
            elif ": #deps" in line:
                target = line.partition(":")[0]
        self.links = {}
        self.is_sanitized = any("-fsanitize=" in command for command in self.commands.values())

    def relative(self, path):
        return os.path.relpath(os.path.normpath(self.folder / path), ROOT)

    def sources_with(self, header, program):
        """The product sources that a test program links and that include a header; in the header's own folder also the
        tests."""
        folders = tuple(f"{folder}/" for folder in LINKED[program])
        if header.startswith(f"{program}/"):
            folders += (f"tests/{program}/",)
        return [source for source, object in self.objects.items()
                if header in self.headers[object] and source.startswith(folders)]

    def precompiled_header(self, source):
        """The one that a source is compiled with, relative to the build folder; none for a source without."""
        used = re.search(r"-include-pch -Xclang (\S+)", self.commands[source])
        return os.path.relpath(used.group(1), self.folder) if used else None

    def source_of(self, object):
        return next(source for source, made in self.objects.items() if made == object)

    def test_program(self, program):
        return self.folder / "tests" / f"tests_{program.replace('/', '_')}"

    def link_command(self, program):
        if program not in self.links:
            target = os.path.relpath(self.test_program(program), self.folder)
            commands = output_of("ninja", "-C", str(self.folder), "-t", "commands", target)
            link = next(line for line in reversed(commands.splitlines()) if f" -o {target} " in line)
            self.links[program] = next(part for part in link.split(" && ") if f" -o {target} " in part).split()
        return self.links[program]


class Bench:
    """A worker's own folder, in which it compiles and runs one mutant after the other."""

    def __init__(self, build, folder, usual):
        self.build, self.folder, self.usual = build, folder, usual
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)

    def alter(self, mutant, source):
        """The compiler reads the altered file in place of the file of the tree."""
        altered = self.folder / f"altered{pathlib.Path(mutant.path).suffix}"
        altered.write_text(mutant.applied_to(source))
        overlay = {"version": 0, "roots": [{"type": "file", "name": str(ROOT / mutant.path),
                                            "external-contents": str(altered)}]}
        (self.folder / "overlay.yaml").write_text(json.dumps(overlay))

    def compile(self, mutant, sources):
        """The altered objects by those that they replace; none if one does not compile."""
        precompiled = {}
        objects = {}
        for source in sources:
            header = self.build.precompiled_header(source)
            if header and mutant.path in self.build.headers[header] and header not in precompiled:
                precompiled[header] = self.compile_one(self.build.source_of(header), {}, f"{len(precompiled)}.pch")
            object = self.compile_one(source, precompiled, f"{len(objects)}.o")
            if object is None or None in precompiled.values():
                return None
            objects[self.build.objects[source]] = object
        return objects

    def compile_one(self, source, precompiled, name):
        output = self.folder / name
        command = self.build.commands[source].replace(f" -o {self.build.objects[source]} ", f" -o {output} ")
        for header, altered in precompiled.items():
            command = command.replace(str(self.build.folder / header), str(altered))
        words = command.split() + ["-w", "-Wno-error", "-ivfsoverlay", str(self.folder / "overlay.yaml")]
        done = subprocess.run(words, cwd=self.build.folder, capture_output=True)
        return str(output) if done.returncode == 0 else None

    def is_as_before(self, objects):
        return all(filecmp.cmp(self.build.folder / before, after, shallow=False) for before, after in objects.items())

    def link(self, program, objects):
        """The altered objects come before the libraries, which then are not asked for what these define."""
        compiler, *words = self.build.link_command(program)
        words = [word for word in words if word not in objects]
        linked = self.folder / "tests"
        words[words.index("-o") + 1] = str(linked)
        done = subprocess.run([compiler, *objects.values(), *words], cwd=self.build.folder, capture_output=True)
        return linked if done.returncode == 0 else None

    def notices(self, program, linked):
        command = [linked, "--gtest_brief=1", "--gtest_fail_fast"]
        environment = os.environ | {"ASAN_OPTIONS": f"hard_rss_limit_mb={MEMORY >> 20}"}
        running = subprocess.Popen(command, cwd=self.folder, env=environment, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        usual = self.usual[program]
        seconds = int(LIMIT * usual.processor) + 1
        try:
            resource.prlimit(running.pid, resource.RLIMIT_CPU, (seconds, seconds))
            if not self.build.is_sanitized:  # else the address space is the sanitizer's
                resource.prlimit(running.pid, resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.prlimit(running.pid, resource.RLIMIT_CORE, (0, 0))
        except ProcessLookupError:
            pass  # it has ended
        try:
            return running.wait(LIMIT * usual.duration + BLOCKED_SECONDS) != 0
        except subprocess.TimeoutExpired:
            running.kill()
            running.wait()
            return True

    def try_mutant(self, mutant, source):
        """`killed by PROGRAM`, `survived`, `does not compile` or `same code` (0 for an enumerator that is 0)."""
        self.alter(mutant, source)
        header = mutant.path.endswith(".h")
        objects = self.compile(mutant, ASSERTIONS if header else [mutant.path])
        if objects and not header and self.is_as_before(objects):
            return "same code"
        is_code = not header
        for program in PROGRAMS[mutant.path.split("/")[0]]:
            if header and objects is not None:
                objects = self.compile(mutant, self.build.sources_with(mutant.path, program))
                if objects is not None and self.is_as_before(objects):
                    continue  # it is of another system, or used by tests alone
                is_code = True
            linked = self.link(program, objects) if objects is not None else None
            if linked is None:
                return "does not compile"
            if self.notices(program, linked):
                return f"killed by tests/{program}"
        return "survived" if is_code else "same code"


Usual = collections.namedtuple("Usual", "processor duration")  # seconds


def usual_seconds(build, folders):
    """How long each test program takes that the folders need; every one must pass."""
    seconds = {}
    for program in sorted({program for folder in folders for program in PROGRAMS[folder]}):
        start, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
        result = subprocess.run([build.test_program(program), "--gtest_brief=1"], capture_output=True, text=True)
        duration, after = time.monotonic() - start, resource.getrusage(resource.RUSAGE_CHILDREN)
        if result.returncode != 0:
            sys.exit(f"{result.stdout}\nmutants: tests/{program} fails before anything is altered")
        processor = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        seconds[program] = Usual(processor, duration)
    return seconds


def equivalent_mutants():
    """What is in the table, by file, function and change."""
    with EQUIVALENT.open(newline="") as table:
        rows = [row for row in csv.reader(table, delimiter="\t", quoting=csv.QUOTE_NONE) if row and row[0][0] != "#"]
    for row in rows:
        if len(row) != 4 or not all(row):
            sys.exit(f"{EQUIVALENT}: not file, function, change and reason: {' | '.join(row)}")
    return {tuple(row[:3]) for row in rows}


def changed_mutants(commit, sources):
    """The mutants that the sources did not have at a commit."""
    changed = []
    for path, text in sorted(sources.items()):
        known = subprocess.run(["git", "cat-file", "-e", f"{commit}:{path}"], cwd=ROOT, capture_output=True).returncode == 0
        before = output_of("git", "show", f"{commit}:{path}") if known else ""
        had = collections.Counter(mutant.key() for mutant in mutations.mutants_of(path, before))
        for mutant in mutations.mutants_of(path, text):
            if had[mutant.key()] == 0:
                changed.append(mutant)
            had[mutant.key()] -= 1
    return changed


def product_sources(build, files):
    compiled = set(build.commands) | set().union(*build.headers.values())
    return {file: (ROOT / file).read_text() for file in files
            if file.endswith((".cpp", ".h")) and file in compiled and file not in ASSERTIONS}


def choose(arguments, build):
    """The sources by their names, and the mutants to try."""
    if arguments.changed:
        listing = ["diff", "--name-only", "--diff-filter=d", arguments.changed]
    else:
        listing = ["ls-files"]
    files = arguments.of or output_of("git", *listing, "--", *PROGRAMS).splitlines()
    sources = product_sources(build, files)
    if arguments.changed:
        mutants = changed_mutants(arguments.changed, sources)
    else:
        mutants = [mutant for path, text in sorted(sources.items()) for mutant in mutations.mutants_of(path, text)]
    if arguments.again:
        last = {tuple(key) for key in json.loads(SURVIVORS.read_text())} if SURVIVORS.exists() else set()
        return sources, [mutant for mutant in mutants if mutant.key() in last]
    random.Random(arguments.seed).shuffle(mutants)
    everything = arguments.of or arguments.changed
    return sources, mutants[:arguments.number or (len(mutants) if everything else NUMBER)]


def try_all(benches, sources, mutants, deadline):
    """Each mutant with its result, as they come; none is begun after the deadline or an interrupt."""
    interrupted = threading.Event()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: interrupted.set())
    free = queue.SimpleQueue()
    for bench in benches:
        free.put(bench)

    def try_one(mutant):
        if interrupted.is_set() or time.monotonic() > deadline:
            return mutant, None
        bench = free.get()
        try:
            return mutant, bench.try_mutant(mutant, sources[mutant.path])
        finally:
            free.put(bench)

    with concurrent.futures.ThreadPoolExecutor(len(benches)) as pool:
        for done in concurrent.futures.as_completed([pool.submit(try_one, mutant) for mutant in mutants]):
            mutant, result = done.result()
            if result:
                yield mutant, result


def row(commit, mutant, result):
    return "\t".join([commit, mutant.path, str(mutant.line), mutant.kind, mutant.function,
                      f"{mutant.before} -> {mutant.after}", result])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("number", type=int, nargs="?")
    parser.add_argument("seed", type=int, nargs="?", default=random.randrange(1_000_000))
    parser.add_argument("--changed", metavar="COMMIT", help="those of the lines that differ, for a minute")
    parser.add_argument("--again", action="store_true", help="those that survived the last run")
    parser.add_argument("--of", metavar="FILE", nargs="+", help="those of these files")
    arguments = parser.parse_args()

    build = Build(arguments.build.resolve())
    sources, mutants = choose(arguments, build)
    known = equivalent_mutants()
    tried = [mutant for mutant in mutants if not known & {mutant.key(), mutant.key_of_any_change()}]
    usual = usual_seconds(build, {mutant.path.split("/")[0] for mutant in tried})
    benches = [Bench(build, build.folder / f"mutants-{n}", usual) for n in range(WORKERS)]
    deadline = time.monotonic() + CHANGED_SECONDS if arguments.changed else float("inf")

    commit = output_of("git", "rev-parse", "--short", "HEAD").strip()
    if output_of("git", "status", "--porcelain").strip():
        commit += "+"
    counts, survivors = collections.Counter(), []
    for number, (mutant, result) in enumerate(try_all(benches, sources, tried, deadline), 1):
        if number % 100 == 0:
            print(f"mutants: {number} of {len(tried)} tried", flush=True)
        counts[result.partition(" by ")[0]] += 1
        if result == "survived":
            survivors.append(mutant)
            print(f"{mutant.path}:{mutant.line}: {mutant.kind}: {mutant.before}\n    -> {mutant.after}", flush=True)
    SURVIVORS.write_text(json.dumps([mutant.key() for mutant in survivors]))

    noticeable = counts["killed"] + counts["survived"]
    summary = (f"seed {arguments.seed}: {noticeable} mutants, {counts['killed']} killed, {counts['survived']} survived; "
               f"not counted: {len(mutants) - len(tried)} equivalent, {counts['same code']} with the same code, "
               f"{counts['does not compile']} that do not compile")
    print(f"mutants: {summary}")
    if noticeable >= 100 and not (arguments.of or arguments.changed or arguments.again):
        with FIGURES.open("a") as figures:
            print(f"{commit}\t*\t\t\t\t\t{summary}", file=figures)
            for mutant in sorted(survivors, key=lambda mutant: (mutant.path, mutant.line)):
                print(row(commit, mutant, "survived"), file=figures)
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
