#!/usr/bin/python3
"""What ships, looked at from outside. For Windows: exports, imports, protections, version, size. For Linux, where the
tool reads disk images as root: its protections, and what the library for C needs.

usage: shipped_test.py BUILD_FOLDER...
"""
import os
import pathlib
import re
import subprocess
import sys
import unittest

import pefile

SOURCE = pathlib.Path(__file__).resolve().parents[2]
LARGEST_LIBRARY = 192 * 1024
LARGE_ADDRESSES = {"IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA"}
PROTECTIONS = {"IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE", "IMAGE_DLLCHARACTERISTICS_NX_COMPAT"}
WINDOWS_OWN = {name + ".dll" for name in ("advapi32", "kernel32", "msvcrt", "ole32", "oleaut32", "setupapi", "shell32",
                                          "shlwapi", "user32")}
GET_INSTANCE = "CLoggingFactory::GetInstance()"
MACHINES = {"x86_64": "IMAGE_FILE_MACHINE_AMD64", "x86": "IMAGE_FILE_MACHINE_I386"}
PRESETS = {"windows": "x86_64", "windows-x86": "x86"}
LINUX = "linux"
# What the toolchain's stack guard says before it ends the program.
STACK_GUARD = b"stack smashing detected"


def demangled(names):
    lines = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True, check=True).stdout
    return {line.replace("[abi:cxx11]", "").replace(" ", "") for line in lines.splitlines()}


def parameter_type(parameter):
    if parameter == "...":
        return parameter
    words = re.sub(r"\s*\w+$", "", parameter) if re.search(r"[*&\s]\w+$", parameter) else parameter
    words = re.sub(r"^const (\w+)", r"\1 const", words)
    return words.replace("WCHAR", "wchar_t").replace("DWORD", "unsigned long").replace(" ", "")


def declared_members():
    """The functions that class Kestova declares, as the demangler writes them, without blanks."""
    text = re.sub(r"//.*", "", (SOURCE / "manager/kestova.h").read_text())
    body = re.search(r"class KESTOVA_API Kestova \{(.*?)\n\};", text, re.S)[1]
    members = set()
    for name, parameters in re.findall(r"(~?\w+|operator=)\(([^)']*)\);", body):
        types = [parameter_type(parameter.strip()) for parameter in parameters.split(",") if parameter.strip()]
        members.add(f"Kestova::{name}({','.join(types)})")
    return members


class ShippedFiles(unittest.TestCase):
    folder = pathlib.Path()
    word_size = ""

    def read(self, name):
        file = pefile.PE(self.folder / "bin" / name)
        self.addCleanup(file.close)
        return file

    def exports(self, file):
        return [export.name.decode() for export in file.DIRECTORY_ENTRY_EXPORT.symbols]

    def imports(self, file):
        return {entry.dll.decode().lower(): [symbol.name.decode() for symbol in entry.imports]
                for entry in file.DIRECTORY_ENTRY_IMPORT}

    def every_file(self):
        return [(name, self.read(name)) for name in ("Kestova.dll", "KestovaC.dll", "Logging.dll", "kestova.exe")]

    def test_KestovaDll_Exports_AreTheMembersOfItsClass(self):
        members = declared_members()
        self.assertGreater(len(members), 60)
        self.assertEqual(demangled(self.exports(self.read("Kestova.dll"))), members)

    def test_LoggingDll_Exports_AreItsOneEntryPoint(self):
        self.assertEqual(demangled(self.exports(self.read("Logging.dll"))), {GET_INSTANCE})

    def test_KestovaCDll_Exports_AreTheFunctionsOfItsHeader(self):
        header = (SOURCE / "kestova/kestova_c.h").read_text()
        declared = re.findall(r"^KESTOVA_C_API .*?(kestova_\w+)\(", header[:header.index("#if !defined(_WIN32)\n\n")], re.M)
        self.assertGreater(len(declared), 40)
        self.assertEqual(sorted(self.exports(self.read("KestovaC.dll"))), sorted(declared))

    def test_KestovaDll_Imports_AreOneOfLoggingAndTheRestOfWindows(self):
        imports = self.imports(self.read("Kestova.dll"))
        self.assertEqual(demangled(imports.pop("logging.dll")), {GET_INSTANCE})
        self.assertLessEqual(set(imports), WINDOWS_OWN)

    def test_EveryFile_Imports_AreNoneOfTheToolchain(self):
        for name, file in self.every_file():
            with self.subTest(name):
                self.assertLessEqual(set(self.imports(file)), WINDOWS_OWN | {"kestova.dll", "logging.dll"})

    def test_EveryFile_Flags_LetTheLoaderPlaceItAnywhereAndRunNoData(self):
        expected = PROTECTIONS | (LARGE_ADDRESSES if self.word_size == "x86_64" else set())
        for name, file in self.every_file():
            with self.subTest(name):
                flags = {flag for flag, bit in pefile.dll_characteristics
                         if isinstance(bit, int) and file.OPTIONAL_HEADER.DllCharacteristics & bit}
                self.assertLessEqual(expected, flags)
                self.assertTrue(file.OPTIONAL_HEADER.DATA_DIRECTORY[5].Size, "no relocations")

    def test_LoggingAndTool_Code_GuardsItsStack(self):
        for name in ("KestovaC.dll", "Logging.dll", "kestova.exe"):
            with self.subTest(name):
                self.assertTrue(STACK_GUARD in (self.folder / "bin" / name).read_bytes(), "no stack guard")

    def test_EveryFile_Machine_IsThatOfItsPreset(self):
        for name, file in self.every_file():
            with self.subTest(name):
                machine = pefile.MACHINE_TYPE[file.FILE_HEADER.Machine]
                self.assertEqual(machine, MACHINES[self.word_size])

    def test_EveryFile_Version_IsThatOfTheProject(self):
        version = re.search(r"project\(Kestova VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
        for name, file in self.every_file():
            with self.subTest(name):
                texts = {key.decode(): value.decode() for block in file.FileInfo[0] if block.Key == b"StringFileInfo"
                         for table in block.StringTable for key, value in table.entries.items()}
                self.assertEqual(texts["FileVersion"], version)
                self.assertEqual(texts["ProductVersion"], version)
                self.assertEqual(texts["OriginalFilename"], name)
                fixed = file.VS_FIXEDFILEINFO[0]
                numbers = (fixed.FileVersionMS >> 16, fixed.FileVersionMS & 0xFFFF, fixed.FileVersionLS >> 16)
                self.assertEqual(".".join(map(str, numbers)), version)

    def test_EveryFile_Symbols_AreStripped(self):
        for name, file in self.every_file():
            with self.subTest(name):
                self.assertEqual(file.FILE_HEADER.NumberOfSymbols, 0)

    def test_KestovaDll_Size_IsBelowItsLimit(self):
        if self.word_size != "x86_64":
            self.skipTest("the limit is that of x86_64")
        self.assertLessEqual((self.folder / "bin/Kestova.dll").stat().st_size, LARGEST_LIBRARY)


class LinuxFiles(unittest.TestCase):
    folder = pathlib.Path()

    def readelf(self, *options, file="tools/kestova/kestova"):
        return subprocess.run(["readelf", "--wide", *options, self.folder / file],
                              capture_output=True, text=True, check=True, env={"PATH": os.environ["PATH"], "LC_ALL": "C"}).stdout

    def called_functions(self):
        return set(re.findall(r" FUNC +GLOBAL +DEFAULT +UND +(\w+)", self.readelf("--dyn-syms")))

    def test_Tool_Type_LetsTheLoaderPlaceItAnywhere(self):
        self.assertRegex(self.readelf("--file-header"), r"Type: +DYN ")
        self.assertRegex(self.readelf("--dynamic"), r"\(FLAGS_1\) .*\bPIE\b")

    def test_Tool_TablesOfFunctions_AreReadOnlyBeforeItBegins(self):
        self.assertIn(" GNU_RELRO ", self.readelf("--program-headers"))
        self.assertRegex(self.readelf("--dynamic"), r"\(FLAGS\) .*\bBIND_NOW\b")

    def test_Tool_Stack_CannotBeExecuted(self):
        self.assertRegex(self.readelf("--program-headers"), r" GNU_STACK .* RW +0x")

    def test_Tool_Code_GuardsItsStackAndBuffers(self):
        functions = self.called_functions()
        self.assertIn("__stack_chk_fail", functions)
        # The checked ones of the C library, which _FORTIFY_SOURCE calls in place of the others.
        self.assertTrue({name for name in functions if re.fullmatch(r"__\w+_chk", name)}, functions)

    def test_LibraryForC_Needs_NothingButTheCLibrary(self):
        needed = re.findall(r"\(NEEDED\) .*\[(.+)\]", self.readelf("--dynamic", file="c/libkestova-c.so"))
        self.assertIn("libc.so.6", needed)
        self.assertLessEqual(set(needed), {"libc.so.6", "ld-linux-x86-64.so.2"})


def load_tests(loader, _tests, _pattern):
    suite = unittest.TestSuite()
    for folder in folders:
        if folder.name == LINUX:
            case = type("Shipped_linux", (LinuxFiles,), {"folder": folder})
            suite.addTests(loader.loadTestsFromTestCase(case))
            continue
        case = type(f"Shipped_{folder.name}", (ShippedFiles,), {"folder": folder, "word_size": PRESETS[folder.name]})
        suite.addTests(loader.loadTestsFromTestCase(case))
    return suite


if __name__ == "__main__":
    folders = [pathlib.Path(word) for word in sys.argv[1:]]
    if not folders or not {folder.name for folder in folders} <= {*PRESETS, LINUX}:
        sys.exit(f"{__doc__}\nA folder is named {' or '.join([*PRESETS, LINUX])}.")
    unittest.main(argv=sys.argv[:1])
