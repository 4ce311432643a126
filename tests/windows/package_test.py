#!/usr/bin/python3
"""The zip for integrators: what is in it, and that the example builds and runs from it alone, under Wine.

usage: package_test.py ZIP
"""
import itertools
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest
import zipfile

SOURCE = pathlib.Path(__file__).resolve().parents[2]
CONTENTS = """
CHANGELOG.md LICENCE.txt README.md SECURITY.md THIRD-PARTY.md sbom.spdx.json
bin/x64/Kestova.dll bin/x64/KestovaC.dll bin/x64/Logging.dll bin/x64/kestova.exe
bin/x86/Kestova.dll bin/x86/KestovaC.dll bin/x86/Logging.dll bin/x86/kestova.exe
docs/command-line.md docs/hazards.md docs/integrators.md docs/log.md docs/operations.md docs/pc-description.md
docs/csharp.md docs/powershell.md docs/result-codes.md docs/real-pc.md docs/recovery-partitions.md docs/survey.md
csharp/Kestova.cs csharp/Kestova.dll.config powershell/Kestova/Kestova.psd1 powershell/Kestova/Kestova.psm1
examples/CMakeLists.txt examples/Recovery.cs examples/Recovery.ps1 examples/open_pc.h examples/open_pc_real.cpp
examples/recovery.c examples/recovery.cpp examples/recovery.py
include/kestova/kestova_c.h include/logging/logging.h include/manager/kestova.h
lib/cmake/Kestova/KestovaConfig.cmake lib/cmake/Kestova/KestovaConfigVersion.cmake
lib/x64/KestovaC.def lib/x64/KestovaC.lib
lib/x64/libKestova.dll.a lib/x64/libKestovaC.dll.a lib/x64/libLogging.dll.a
lib/x86/KestovaC.def lib/x86/KestovaC.lib
lib/x86/libKestova.dll.a lib/x86/libKestovaC.dll.a lib/x86/libLogging.dll.a
licences/CLI11.txt licences/gcc.txt licences/mingw-w64.txt licences/nlohmann-json.txt
""".split()
VERSION = re.search(r"project\(Kestova VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
WORD_SIZES = (("x86_64", "x64"), ("i686", "x86"))
LINE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z \d+ \d+ (ERROR|TRACE) (Kestova.+)")


class Package(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        with zipfile.ZipFile(package) as archive:
            archive.extractall(folder.name)
        self.root, = pathlib.Path(folder.name).iterdir()

    def run_shell(self, command):
        result = subprocess.run(["bash", "-ec", command], cwd=self.root, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, f"{command}\n{result.stdout}{result.stderr}")
        self.assertNotIn("warning", result.stderr)

    def start_example(self, program):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("KESTOVA_")}
        process = subprocess.Popen(["wine", program], stdout=subprocess.PIPE, text=True, env=environment)
        self.addCleanup(process.communicate)
        return process

    def test_Zip_Unpack_HasTheseFilesAndNoOthers(self):
        files = sorted(str(file.relative_to(self.root)) for file in self.root.rglob("*") if file.is_file())
        self.assertEqual([file for file in files if not file.startswith("docs/reference/")], sorted(CONTENTS))

    def test_Reference_EveryOperation_HasItsPlaceAndWords(self):
        header = (self.root / "include/manager/kestova.h").read_text()
        page = (self.root / "docs/reference/classKestova.html").read_text()
        public = header[header.index("class KESTOVA_API Kestova"):header.index("  private:")]
        for operation in set(re.findall(r"^    \w+ (\w+)\(", public, re.M)):
            self.assertIn(f"</span>{operation}()", page)
        self.assertIn("Makes the recovery partition active and records the one that was active before.", page)
        self.assertTrue((self.root / "docs/reference/search/search.js").exists())

    def test_Example_BuildAndRunAsThePageShows_LeavesALog(self):
        commands = re.findall(r"^    \$ (.*)$", (self.root / "docs/integrators.md").read_text(), re.M)
        self.assertEqual(len(commands), 3)
        for command in commands:
            self.run_shell(command)
        self.assertTrue((self.root / "build/KestovaC.dll").exists())
        self.run_shell("x86_64-w64-mingw32-gcc -std=c89 -Wall -Wextra -Wpedantic -Werror -I include examples/recovery.c"
                       " lib/x64/libKestovaC.dll.a -o build/recovery-in-c.exe")
        programs = ["bin/x64/recovery.exe", "build/recovery.exe", "build/recovery-c.exe", "build/recovery-in-c.exe"]
        processes = [self.start_example(self.root / program) for program in programs]
        for program, process in zip(programs, processes):
            with self.subTest(program):
                output, _ = process.communicate(timeout=90)
                # Wine has no such service, and the library has waited for it.
                self.assertEqual((process.returncode, output.strip()),
                                 (9, "The Virtual Disk Service cannot be reached."))
        self.look_at_log(self.root / "bin/x64/Kestova.log")

    def test_CodeOfThePage_OfEachLanguage_Compiles(self):
        page = (self.root / "docs/integrators.md").read_text()
        compilers = {"c": "gcc -std=c89 -Wpedantic -x c", "cpp": "g++ -std=c++20 -DUNICODE -D_UNICODE -x c++"}
        blocks = re.findall(r"^```(c|cpp)\n(.*?)^```$", page, re.M | re.S)
        self.assertEqual(sorted(language for language, _ in blocks), ["c", "c", "cpp", "cpp"])
        for language, code in blocks:
            (self.root / "block").write_text(code)
            self.run_shell(f"x86_64-w64-mingw32-{compilers[language]} -Wall -Wextra -Werror -I include -fsyntax-only block")

    def look_at_log(self, log):
        records = [LINE.fullmatch(line) for line in log.read_text("utf-8").splitlines()]
        self.assertNotIn(None, records)
        texts = [record[2] for record in records]
        self.assertEqual(texts[:3], ["Kestova::Kestova\tStart", "Kestova::Kestova\tEnd", "Kestova::Initialize\tStart"])
        self.assertEqual(texts[-1], "Kestova::~Kestova\tEnd")
        self.assertIn("Kestova::Initialize\tEnd. bRet = 0", texts)

    def test_Sbom_KeepsToItsFormatAndIsTrue(self):
        self.run_shell(f"{SOURCE}/tests/package/sbom.py . sbom.spdx.json")

    def test_Licence_IsThatOfTheOwnerWhoHasNoneYet(self):
        self.assertIn("has not chosen a licence yet", (self.root / "LICENCE.txt").read_text())

    def test_Sums_BesideTheZip_AreItsOwn(self):
        self.run_shell(f"cd {package.resolve().parent} && sha256sum --check --quiet SHA256SUMS")

    def test_Zip_EntriesAndDates_AreInOrderAndOfTheCommit(self):
        with zipfile.ZipFile(package) as archive:
            names = [entry.filename for entry in archive.infolist()]
            self.assertEqual(names, sorted(names))
            self.assertEqual(len({entry.date_time for entry in archive.infolist()}), 1)

    def test_Headers_InApplicationThatDraws_LeaveItTheNamesOfGdi(self):
        for word_size, _ in WORD_SIZES:
            with self.subTest(word_size):
                self.run_shell(f"{word_size}-w64-mingw32-g++ -std=c++20 -DUNICODE -D_UNICODE -Wall -Wextra -I include"
                               f" -fsyntax-only {SOURCE}/tests/releases/gdi_client.cpp")

    def test_ProgramInC_BuildFromThePackage_CallsTheLibraries(self):
        for word_size, folder in WORD_SIZES:
            with self.subTest(word_size):
                self.run_shell(f"{word_size}-w64-mingw32-gcc -std=c89 -Wall -Wextra -Wpedantic -Werror -I include"
                               f" {SOURCE}/tests/package/client.c lib/{folder}/libKestovaC.dll.a -o bin/{folder}/client.exe")
        output, _ = self.start_example(self.root / "bin/x64/client.exe").communicate(timeout=90)
        self.assertEqual(output.splitlines(), [f"Kestova {VERSION}, interface 1", "IsDynamic: 0, no",
                                               "SetActive: 1, code 2, the handle is null or closed"])

    def test_ProgramOfAnotherCompiler_LinkWithItsImportLibrary_CallsTheLibraries(self):
        for (word_size, folder), language in itertools.product(WORD_SIZES, ("c", "c++")):
            with self.subTest(f"{word_size}, {language}"):
                program = f"bin/{folder}/{language}.exe"
                # Names and calling conventions as MSVC has them, without its headers.
                self.run_shell(f"clang --target={word_size}-pc-windows-msvc -Wall -Wextra -Wpedantic -Werror -ffreestanding"
                               f" -I include -x {language} -c {SOURCE}/tests/package/no_runtime_client.c -o client.obj")
                self.run_shell(f"lld-link -nologo -subsystem:console -entry:start -nodefaultlib -safeseh:no -out:{program}"
                               f" client.obj lib/{folder}/KestovaC.lib /usr/{word_size}-w64-mingw32/lib/libkernel32.a")
                if folder == "x64":
                    process = self.start_example(self.root / program)
                    output, _ = process.communicate(timeout=90)
                    self.assertEqual((output, process.returncode), (VERSION, 2))

    def test_ProjectOfAnotherCompiler_FindPackage_FindsTheInterfaceForCAlone(self):
        self.run_shell(f"cmake -G Ninja -S {SOURCE}/tests/package/other_compiler -B other -DCMAKE_PREFIX_PATH=$PWD | grep KestovaC.lib")

    def test_Example_BuildForX86_Links(self):
        self.run_shell("i686-w64-mingw32-g++ -std=c++20 -DUNICODE -D_UNICODE -I include -I . examples/recovery.cpp"
                       " examples/open_pc_real.cpp lib/x86/libKestova.dll.a -lole32 -static -o bin/x86/recovery.exe")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    package = pathlib.Path(sys.argv[1])
    # The runner would count an exit as a failed test and go on.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    unittest.main(argv=sys.argv[:1])
