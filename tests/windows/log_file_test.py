#!/usr/bin/python3
"""The log file that Logging.dll writes, under Wine (in the prefix of WINEPREFIX).

usage: log_file_test.py BIN_FOLDER
"""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

LARGEST = 1024 * 1024
LINE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z [1-9]\d* [1-9]\d* (ERROR|TRACE) (\w+) (\d+) x*\r\n")
CONTROL = r"HKLM\SYSTEM\CurrentControlSet\Control"
KESTOVA = r"HKLM\SOFTWARE\Kestova"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def reg(*words):
    subprocess.run(["wine", "reg", *words, "/f"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)


class LogFileTest(unittest.TestCase):
    """Programs run elevated here, as Wine starts them, unless they are started as "limited"."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.log = self.folder / "Kestova.log"
        self.older = self.folder / "Kestova.log.old"
        for name in ("log_writer.exe", "Logging.dll"):
            shutil.copy(binaries / name, self.folder)
        self.before = set(self.folder.iterdir())

    def start(self, *words, log=None, level=None):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("KESTOVA_")}
        if log is not None:
            environment["KESTOVA_LOG"] = log
        if level is not None:
            environment["KESTOVA_LOG_LEVEL"] = level
        process = subprocess.Popen(["wine", self.folder / "log_writer.exe", *map(str, words)], env=environment,
                                   cwd=self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        # An exit code alone would not tell that the program ran.
        said = process.stdout.readline().strip()
        self.assertIn(said, ("ready", "stuck"), f"exit status {process.poll()}")
        return process

    def finish(self, process, name, count):
        output, _ = process.communicate(timeout=60)
        self.assertEqual((process.returncode, output.strip()), (0, f"{name} wrote {count}"))

    def write(self, name, count, length=0, **settings):
        self.finish(self.start(name, count, length, **settings), name, count)

    def records(self, *files):
        """(level, name, number) of every line."""
        records = []
        for file in files:
            for line in file.read_bytes().decode("utf-8").splitlines(keepends=True):
                match = LINE.fullmatch(line)
                self.assertTrue(match, line)
                records.append((match[1], match[2], int(match[3])))
        return records

    def new_files(self):
        return {file.name for file in set(self.folder.iterdir()) - self.before}


class OnInstalledWindows(LogFileTest):
    def test_NoSetting_TenRecords_AreALineEachBesideTheProgram(self):
        self.write("one", 10)
        self.assertEqual(self.records(self.log),
                         [("ERROR" if number == 10 else "TRACE", "one", number) for number in range(1, 11)])
        self.assertEqual(self.new_files(), {"Kestova.log"})

    def test_FileOfAnotherProgram_Write_AddsALine(self):
        self.write("one", 1)
        self.write("two", 1)
        self.assertEqual(self.records(self.log), [("TRACE", "one", 1), ("TRACE", "two", 1)])

    def test_LevelOfTheVariable_Write_LeavesOutRecordsAboveIt(self):
        self.write("one", 20, level="1")
        self.assertEqual(self.records(self.log), [("ERROR", "one", 10), ("ERROR", "one", 20)])

    def test_Level0_Write_MakesNoFile(self):
        self.write("one", 10, level="0")
        self.assertEqual(self.new_files(), set())

    def test_LongRecords_Write_KeepsTwoBoundedFiles(self):
        self.write("one", 30, 100_000)
        self.assertEqual(self.new_files(), {"Kestova.log", "Kestova.log.old"})
        self.assert_bounded()

    def test_TwoProgramsAtOnce_Write_LoseNoLine(self):
        processes = {name: self.start(name, 500, 1500) for name in ("one", "two")}
        for process in processes.values():
            process.stdin.write("go\n")
            process.stdin.flush()
        for name, process in processes.items():
            self.finish(process, name, 500)
        records = self.records(self.older, self.log)
        self.assertEqual(len(records), 1000)
        for name in processes:
            self.assertEqual([number for _, writer, number in records if writer == name], list(range(1, 501)))

    def test_OlderFileCannotBeReplaced_Write_StaysBounded(self):
        self.older.mkdir()
        (self.older / "in the way").touch()
        self.write("one", 15, 100_000)
        self.assertEqual([number for _, _, number in self.records(self.log)], list(range(1, 11)))

    def test_AnotherProgramStuckInItsTurn_Write_LosesNoLine(self):
        self.start("stuck")
        self.write("one", 20)
        self.assertEqual([number for _, _, number in self.records(self.log)], list(range(1, 21)))

    def assert_bounded(self):
        """After thirty records, of which two files hold twenty."""
        for file in (self.log, self.older):
            self.assertLessEqual(file.stat().st_size, LARGEST)
        self.assertEqual([number for _, _, number in self.records(self.older, self.log)], list(range(11, 31)))

    def test_AnotherProgramStuckInItsTurn_WriteLongRecords_KeepsTwoBoundedFiles(self):
        self.start("stuck")
        self.write("one", 30, 100_000)
        self.assert_bounded()

    def test_TurnsCannotBeOpened_WriteLongRecords_KeepsTwoBoundedFiles(self):
        self.start("alone")
        self.write("one", 30, 100_000)
        self.assert_bounded()

    def test_VariableOfAnElevatedProgram_Write_IgnoresIt(self):
        self.write("one", 1, log=windows_path(self.folder / "else.txt"))
        self.assertEqual(self.new_files(), {"Kestova.log"})

    def test_VariableOfAProgramWithoutElevation_Write_GoesToItsPlace(self):
        process = self.start("limited", "one", 1, 0, log=windows_path(self.folder / "else.txt"))
        self.finish(process, "one", 1)
        self.assertEqual(self.records(self.folder / "else.txt"), [("TRACE", "one", 1)])
        self.assertEqual(self.new_files(), {"else.txt"})


class AtAPlaceInTheRegistry(LogFileTest):
    def place(self, value, kind="REG_SZ"):
        reg("add", KESTOVA, "/v", "Log", "/t", kind, "/d", value)
        self.addCleanup(reg, "delete", KESTOVA)

    def test_FullPathAndVariable_Write_GoesToThePath(self):
        self.place(windows_path(self.folder / "chosen.txt"))
        self.write("one", 1, log=windows_path(self.folder / "else.txt"))
        self.assertEqual(self.records(self.folder / "chosen.txt"), [("TRACE", "one", 1)])
        self.assertEqual(self.new_files(), {"chosen.txt"})

    def test_RelativePath_Write_GoesBesideTheProgram(self):
        self.place("chosen.txt")
        self.write("one", 1)
        self.assertEqual(self.new_files(), {"Kestova.log"})

    def test_lies_beside_the_program_when_the_place_is_no_text(self):
        path = windows_path(self.folder / "chosen.txt") + "\0"
        self.place(path.encode("utf-16-le").hex(), "REG_BINARY")
        self.write("one", 1)
        self.assertEqual(self.new_files(), {"Kestova.log"})


class InWindowsPe(LogFileTest):
    @classmethod
    def setUpClass(cls):
        reg("add", CONTROL, "/v", "SystemStartOptions", "/d", " FASTDETECT MININT")
        cls.addClassCleanup(reg, "delete", CONTROL, "/v", "SystemStartOptions")

    def test_Variable_Write_GoesToItsPlace(self):
        (self.folder / "logs").mkdir()
        for setting in (windows_path(self.folder / "logs/full.txt"), "logs\\relative.txt"):
            self.write("one", 1, log=setting)
        for name in ("full.txt", "relative.txt"):
            self.assertEqual(self.records(self.folder / "logs" / name), [("TRACE", "one", 1)])
        self.assertEqual(self.new_files(), {"logs"})

    def test_PlaceCannotBeWritten_Write_DisturbsNobody(self):
        (self.folder / "taken").mkdir()
        places = {"a folder that is missing": windows_path(self.folder / "missing/log.txt"),
                  "a folder of that name": windows_path(self.folder / "taken"), "a device": "Z:\\dev\\full",
                  "a drive that is missing": "Q:\\log.txt", "a name that cannot be": "Z:\\a?b*c"}
        for what, place in places.items():
            with self.subTest(what):
                self.write("one", 10, log=place)
        self.assertEqual(self.new_files(), {"taken"})

    def test_FileOfSeveralNames_Write_LeavesIt(self):
        target = self.folder / "target"
        target.write_bytes(b"of somebody else")
        os.link(target, self.folder / "log.txt")
        self.write("one", 10, log=windows_path(self.folder / "log.txt"))
        self.assertEqual(target.read_bytes(), b"of somebody else")
        self.assertEqual(self.new_files(), {"target", "log.txt"})

    def test_FullFileOfSeveralNames_Write_DoesNotRenameIt(self):
        target = self.folder / "target"
        target.write_bytes(b"x" * LARGEST)
        os.link(target, self.folder / "log.txt")
        self.write("one", 1, log=windows_path(self.folder / "log.txt"))
        self.assertEqual(self.new_files(), {"target", "log.txt"})

    def test_Device_Write_LeavesIt(self):
        device, terminal = os.openpty()
        self.addCleanup(os.close, device)
        self.addCleanup(os.close, terminal)
        os.set_blocking(device, False)
        self.write("one", 1, log=windows_path(os.ttyname(terminal)))
        with self.assertRaises(BlockingIOError):
            os.read(device, 1)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    binaries = pathlib.Path(sys.argv[1])
    # The runner would count an exit as a failed test and go on.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    unittest.main(argv=sys.argv[:1])
