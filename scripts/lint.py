#!/usr/bin/env python3
"""Runs the linter over the files that have changed since they last passed it.

usage: lint.py [--all] [--since COMMIT] BUILD FOLDER...

BUILD is a folder with compile_commands.json and the dependencies that ninja recorded. The files are those of the folders
that git does not ignore and that BUILD compiles; a header is linted through a source that includes it. A file that passed is
remembered by its contents, the linter's version and its configuration, below $XDG_CACHE_HOME (~/.cache); --all forgets
that. What a changed header does to an unchanged source is therefore only seen with --all. With --since only what differs
from that commit is looked at.
"""
import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "kestova" / "linted"
# The linter reads sources as they are, without precompiled headers and instrumentation.
LEFT_OUT = ("-include-pch", "-include", "-fno-pch-timestamp")


def output_of(*command):
    return subprocess.run(command, cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True).stdout


def without_precompiled_header(words):
    kept = []
    words = collections.deque(words)
    while words:
        word = words.popleft()
        if word == "-Xclang" and words and words[0] in LEFT_OUT:
            option = words.popleft()
            if option != "-fno-pch-timestamp":
                words.popleft()
                words.popleft()
        elif word != "-Winvalid-pch" and not word.startswith("-fsanitize"):
            kept.append(word)
    return kept


def compile_commands(build):
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        words = entry["command"].split()
        if entry["file"].endswith(".c"):
            continue  # compiled by another compiler
        compiler = next(at for at, word in enumerate(words) if word.endswith("clang++"))
        entry["command"] = " ".join(without_precompiled_header(words[compiler:]))
        commands[entry["file"]] = entry
    return commands


def headers_of_sources(build):
    """For each source the headers of this tree that it includes, as ninja recorded them."""
    headers = collections.defaultdict(set)
    source = None
    for line in output_of("ninja", "-C", str(build), "-t", "deps").splitlines():
        if not line.startswith(" "):
            source = None
            continue
        path = os.path.normpath(os.path.join(build, line.strip()))
        source = source or path
        headers[source].add(path)
    return headers


class Passed:
    """The files that passed, remembered by what they and the linter's configuration hold."""

    def __init__(self):
        self.version = output_of("clang-tidy", "--version")

    def key(self, file):
        parts = [self.version, file.read_text()]
        for folder in file.parents:
            if (folder / ".clang-tidy").exists():
                parts.append((folder / ".clang-tidy").read_text())
            if folder == ROOT:
                break
        return CACHE / hashlib.sha256("\0".join(parts).encode()).hexdigest()

    def holds(self, file):
        return self.key(file).exists()

    def add(self, file):
        CACHE.mkdir(parents=True, exist_ok=True)
        self.key(file).touch()


def choose_sources(pending, commands, headers):
    """The sources to lint, each with the pending files that it covers."""
    chosen = {str(file): {file} for file in pending if str(file) in commands}
    for header in pending:
        if header.suffix != ".h":
            continue
        includers = [source for source in sorted(commands) if str(header) in headers[source]]
        covered = next((source for source in includers if source in chosen), None)
        covered = covered or next(iter(sorted(includers, key=lambda s: os.path.dirname(s) != str(header.parent))), None)
        if covered:
            chosen.setdefault(covered, set()).add(header)
    return chosen


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true", help="also what passed before")
    parser.add_argument("--since", metavar="COMMIT", help="only what differs from this commit")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folders", nargs="+")
    arguments = parser.parse_args()
    build = arguments.build.resolve()

    listing = ["diff", "--name-only", arguments.since] if arguments.since else ["ls-files"]
    names = set(output_of("git", *listing, "--", *arguments.folders).splitlines())
    names.update(output_of("git", "ls-files", "--others", "--exclude-standard", "--", *arguments.folders).splitlines())
    files = [ROOT / name for name in sorted(names)]
    files = [file for file in files if file.suffix in (".h", ".cpp") and file.exists()]
    passed = Passed()
    pending = [file for file in files if arguments.all or not passed.holds(file)]
    commands = compile_commands(build)
    chosen = choose_sources(pending, commands, headers_of_sources(build))

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # which removes the temporary folder
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "compile_commands.json").write_text(json.dumps(list(commands.values())))

        def lint(source):
            return source, subprocess.run(["clang-tidy", "-quiet", "-p", folder, source], cwd=ROOT, text=True,
                                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

        failures = 0
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for source, result in pool.map(lint, chosen):
                if result.returncode == 0:
                    for file in chosen[source]:
                        passed.add(file)
                else:
                    failures += 1
                    print(result.stdout, end="")
    print(f"{len(files)} files, {len(chosen)} sources linted, {failures} with findings")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
