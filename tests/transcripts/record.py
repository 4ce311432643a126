#!/usr/bin/env python3
"""Records all transcripts anew, or checks that every file and every section is compared by a test.

    record.py TESTS [--check]     TESTS: the folder of the test programs, such as build/sanitize/tests

Without --check the files beside this script are replaced: read the difference as critically as code. With it
the tests record into an empty folder, and a file or section that is missing there, or differs, is shown.
"""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
PROGRAMS = ["tests_device", "tests_vds", "tests_manager"]


def record(programs_folder, folder):
    for program in PROGRAMS:
        subprocess.run([programs_folder / program, "--gtest_brief=1"], check=True, stdout=subprocess.DEVNULL,
                       env=os.environ | {"KESTOVA_RECORD": str(folder)})


def transcripts(folder):
    return {path.relative_to(folder) for path in folder.glob("*/*.txt")}


def differences(expected, recorded):
    """The unified difference of the two folders; a file that is missing on one side counts as empty."""
    text = ""
    for path in sorted(transcripts(expected) | transcripts(recorded)):
        text += subprocess.run(["diff", "-uN", expected / path, recorded / path], stdout=subprocess.PIPE,
                               text=True).stdout
    return text


def replace(folder):
    for path in transcripts(HERE):
        (HERE / path).unlink()
    shutil.copytree(folder, HERE, dirs_exist_ok=True)
    for path in HERE.iterdir():
        if path.is_dir() and not any(path.iterdir()):
            path.rmdir()


def main():
    programs_folder = pathlib.Path(sys.argv[1]).resolve()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # which removes the temporary folder
    with tempfile.TemporaryDirectory() as folder:
        recorded = pathlib.Path(folder)
        record(programs_folder, recorded)
        found = differences(HERE, recorded)
        if "--check" not in sys.argv:
            replace(recorded)
        elif found:
            sys.exit(found + "tests/transcripts differs from what the tests compare.")
        print(len(transcripts(recorded)), "transcript files,", "all compared" if not found else "recorded")


if __name__ == "__main__":
    main()
