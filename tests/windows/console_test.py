#!/usr/bin/python3
"""The question before the PC itself is changed, on a console under Wine (in the prefix of WINEPREFIX).

usage: console_test.py BIN_FOLDER
"""
import os
import pathlib
import pty
import re
import select
import sys
import unittest

SEQUENCE = re.compile(rb"\x1b\[[?0-9;]*[A-Za-z]")
QUESTION = b"Goon?[y/N]"


def run_on_console(words, answer):
    """What the console showed, without blanks, and the exit status."""
    child, console = pty.fork()
    if child == 0:
        os.environ["KESTOVA_LOG_LEVEL"] = "0"
        os.execvp("wine", ["wine", str(binaries / "kestova.exe"), *words])
    shown = b""
    ended = (0, 0)
    while ended[0] == 0 or select.select([console], [], [], 0)[0]:
        # What serves the console outlives the program, and keeps it open.
        ended = ended if ended[0] != 0 else os.waitpid(child, os.WNOHANG)
        if not select.select([console], [], [], 0.5)[0]:
            # A console drops what it gets before it reads.
            if QUESTION in text_of(shown) and ended[0] == 0:
                os.write(console, answer + b"\r")
            continue
        try:
            shown += os.read(console, 4096)
        except OSError:  # nobody has it open any more
            break
    if ended[0] == 0:
        ended = os.waitpid(child, 0)
    os.close(console)
    return text_of(shown), os.waitstatus_to_exitcode(ended[1])


def text_of(shown):
    """A console draws blanks by moving on."""
    return re.sub(rb"\s", b"", SEQUENCE.sub(b"", shown))


class ConsoleTest(unittest.TestCase):
    def test_answer_is_no_boot_recovery_changes_nothing(self):
        shown, status = run_on_console(["boot", "recovery"], b"n")
        self.assertIn(QUESTION, shown)
        self.assertIn(b"nothingwaschanged", shown)
        self.assertNotIn(b"SetRcvprtActive", shown)
        self.assertEqual(status, 1)

    def test_answer_is_yes_boot_recovery_goes_on(self):
        shown, _ = run_on_console(["--no-initialize", "boot", "recovery"], b"y")
        self.assertIn(QUESTION, shown)
        self.assertIn(b"SetRcvprtActive()=", shown)

    def test_yes_is_given_or_nothing_changes_asks_nothing(self):
        for words in (
            ["--no-initialize", "--yes", "boot", "recovery"],
            ["--no-initialize", "--dry-run", "boot", "recovery"],
            ["--no-initialize", "call", "GetDiskStyle"],
            ["--pc", "factory-mbr", "boot", "recovery"],
        ):
            shown, _ = run_on_console(words, b"n")
            self.assertNotIn(QUESTION, shown, words)
            self.assertIn(b"()=", shown, words)

    def test_dry_run_ends_before_the_first_change(self):
        boot_loader = pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c/windows/system32/winload.exe"
        boot_loader.touch()
        self.addCleanup(boot_loader.unlink)
        words = ["--no-initialize", "--dry-run", "call", "GetWinDriveLetters", "1"]
        shown, status = run_on_console(words, b"n")
        self.assertRegex(shown, rb"GetWinDriveLetters\(.*\):wouldfirstcreatethefile[A-Z]:.LoadRegistry.bat;")
        self.assertEqual(status, 0)
        shown, status = run_on_console(["--json", *words], b"n")
        self.assertRegex(shown, rb'"result":null,"outputs":{},.*"stoppedBefore":"createthefile')
        self.assertEqual(status, 0)


if __name__ == "__main__":
    binaries = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
