#!/usr/bin/env python3
"""Says which lines and branches of the product no test reaches.

usage: coverage.py BUILD FOLDER...

BUILD is a folder of the preset coverage, whose test programs have left their counts in BUILD/profiles. A branch is one
outcome of one condition of the source: `if (a && b)` has four, a switch one for each label. What the compiler adds, above
all to unwind after an exception, is not counted. A template counts as one function, whatever it is instantiated for.

Prints the places that were not reached, a line for each file that has one, and the sums.
"""
import argparse
import collections
import json
import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


class Counts:
    """What ran, by file."""

    def __init__(self, build, folders):
        profiles = build / "profiles"
        programs = [program for program in sorted((build / "tests").glob("tests_*"))
                    if program.is_file() and os.access(program, os.X_OK)]
        objects = [word for program in programs for word in ("-object", str(program))][1:]
        (profiles / "list").write_text("".join(f"{profile}\n" for profile in profiles.glob("*.profraw")))
        merged = profiles / "merged"
        # A process that a test ends leaves no counts, or a part that is of no use.
        output_of("llvm-profdata", "merge", "-sparse", "-failure-mode=all", f"-input-files={profiles / 'list'}", "-o", merged)
        self.command = ["llvm-cov", "export", f"-instr-profile={merged}", *objects]
        self.folders = folders

    def export(self, *options):
        return output_of(*self.command, *options)

    def is_measured(self, file):
        return file.split("/")[0] in self.folders

    def lines(self):
        """How often each line of code ran."""
        lines = collections.defaultdict(dict)
        for record in self.export("-format=lcov").splitlines():
            kind, _, value = record.partition(":")
            if kind == "SF":
                file = os.path.relpath(value, ROOT)
            elif kind == "DA":
                line, count = value.split(",")[:2]
                lines[file][int(line)] = int(count)
        return {file: counts for file, counts in lines.items() if self.is_measured(file)}

    def branches(self):
        """How often each condition held and did not, by its place."""
        branches = collections.defaultdict(lambda: collections.defaultdict(collections.Counter))
        for data in json.loads(self.export("-format=text", "-skip-functions"))["data"]:
            for file in data["files"]:
                for line, column, end_line, end_column, held, failed, *_ in file["branches"]:
                    counts = branches[os.path.relpath(file["filename"], ROOT)][line, column, end_line, end_column]
                    counts.update({"true": held, "false": failed})
        return branches


def text_at(file, place):
    line, column, end_line, end_column = place
    lines = (ROOT / file).read_text().splitlines()[line - 1:end_line]
    lines[-1] = lines[-1][:end_column - 1]
    return " ".join(" ".join(lines)[column - 1:].split())


def share(reached, all):
    return f"{reached} of {all} ({100 * reached / all if all else 100:.1f} %)"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folders", nargs="+")
    arguments = parser.parse_args()
    counts = Counts(arguments.build.resolve(), arguments.folders)
    lines, branches = counts.lines(), counts.branches()

    sums = collections.Counter()
    for file in sorted(lines):
        missed_lines = [line for line, count in sorted(lines[file].items()) if count == 0]
        missed_branches = [(place, outcome) for place, outcomes in sorted(branches[file].items())
                           for outcome, count in outcomes.items() if count == 0]
        all_branches = 2 * len(branches[file])
        sums.update(lines=len(lines[file]), branches=all_branches, missed_lines=len(missed_lines),
                    missed_branches=len(missed_branches))
        for line in missed_lines:
            print(f"{file}:{line}: not reached: {(ROOT / file).read_text().splitlines()[line - 1].strip()}")
        for place, outcome in missed_branches:
            print(f"{file}:{place[0]}:{place[1]}: never {outcome}: {text_at(file, place)}")
        if missed_lines or missed_branches:
            print(f"{file}: lines {share(len(lines[file]) - len(missed_lines), len(lines[file]))}, "
                  f"branches {share(all_branches - len(missed_branches), all_branches)}")
    print(f"coverage: lines {share(sums['lines'] - sums['missed_lines'], sums['lines'])}, "
          f"branches {share(sums['branches'] - sums['missed_branches'], sums['branches'])}")


if __name__ == "__main__":
    main()
