#!/usr/bin/python3
"""What applications that are compiled already need of the DLLs: tests/releases keeps the exports of each release. One
that is missing is an error; one that is new is recorded for the release that the project's version names.

The declarations in the header of the C interface are compared in the same way.

usage: abi.py check|record WINDOWS_BUILD_FOLDER...
"""
import pathlib
import re
import shutil
import sys

import pefile

SOURCE = pathlib.Path(__file__).resolve().parents[1]
RELEASES = SOURCE / "tests/releases"
LIBRARIES = ("Kestova.dll", "KestovaC.dll", "Logging.dll")
HEADERS = ("manager/kestova.h", "logging/logging.h", "kestova/kestova_c.h")
C_HEADER = "kestova/kestova_c.h"
WORD_SIZES = {"windows": "x64", "windows-x86": "x86"}


def current_release():
    return re.search(r"project\(Kestova VERSION (\d+\.\d+)", (SOURCE / "CMakeLists.txt").read_text())[1]


def exports(folder):
    """Lines of a library and the mangled name of what it exports, sorted."""
    lines = []
    for library in LIBRARIES:
        with pefile.PE(folder / "bin" / library) as file:
            lines += [f"{library} {export.name.decode()}" for export in file.DIRECTORY_ENTRY_EXPORT.symbols]
    return sorted(lines)


def releases():
    """The recorded ones, the oldest first."""
    return sorted((folder for folder in RELEASES.iterdir() if folder.is_dir()),
                  key=lambda folder: [int(number) for number in folder.name.split(".")])


def recorded(release, word_size):
    file = release / f"exports-{word_size}.txt"
    return file.read_text().splitlines() if file.exists() else []


def missing(folder):
    """What a release exported and the build does not, in words."""
    word_size, now = WORD_SIZES[folder.name], set(exports(folder))
    return [f"{word_size}: {line} is missing: applications compiled with release {release.name} do not start"
            for release in releases() for line in recorded(release, word_size) if line not in now]


def unrecorded(folder):
    word_size = WORD_SIZES[folder.name]
    known = set(recorded(RELEASES / current_release(), word_size))
    return [f"{word_size}: {line} is new: ./dev record-abi records it for release {current_release()}"
            for line in exports(folder) if line not in known]


def declarations(header):
    """What a header in C declares, each under its name: an enumerator with its value, a record with its fields in order,
    a function or type with its whole declaration."""
    code = re.sub(r"/\*.*?\*/|^#.*?(?<!\\)$", " ", header, flags=re.DOTALL | re.MULTILINE)
    declared = {}
    for enumerators in re.findall(r"enum \w*\s*\{(.*?)\}", code, re.DOTALL):
        for enumerator in enumerators.split(","):
            name, value = enumerator.split("=")
            declared[name.strip()] = value.strip()
    for fields, name in re.findall(r"typedef struct \w+ \{(.*?)\} (\w+);", code, re.DOTALL):
        declared[name] = [" ".join(field.split()) for field in fields.split(";") if field.strip()]
    rest = re.sub(r"(typedef struct|enum) \w*\s*\{.*?\}[^;]*;", " ", code, flags=re.DOTALL)
    for declaration in re.findall(r"[^;{}]+(?=;)", rest):
        declaration = " ".join(declaration.split())
        name = re.search(r"\*(\w+)\)\(|(\w+)\(|(\w+)$", declaration)
        declared[next(filter(None, name.groups()))] = declaration
    return declared


def changed_declarations(before, now):
    """What a header no longer declares as it did, in words. Records may have more fields behind those they had."""
    old, new = declarations(before), declarations(now)
    for name, declaration in old.items():
        if name not in new:
            yield f"{name} is missing"
        elif (new[name][: len(declaration)] if isinstance(declaration, list) else new[name]) != declaration:
            yield f"{name} was {declaration}, and is {new[name]}"


def changed_header():
    now = (SOURCE / C_HEADER).read_text()
    return [f"{C_HEADER}: {words}: applications compiled with release {release.name} break"
            for release in releases() if (release / "include" / C_HEADER).exists()
            for words in changed_declarations((release / "include" / C_HEADER).read_text(), now)]


def record(folders):
    release = RELEASES / current_release()
    for folder in folders:
        release.mkdir(exist_ok=True)
        (release / f"exports-{WORD_SIZES[folder.name]}.txt").write_text("\n".join(exports(folder)) + "\n")
    for header in HEADERS:
        target = release / "include" / header
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(SOURCE / header, target)


def main(command, folders):
    problems = changed_header() + [line for folder in folders for line in missing(folder)]
    if command == "check":
        problems += [line for folder in folders for line in unrecorded(folder)]
    if problems:
        sys.exit("\n".join(problems))
    if command == "record":
        record(folders)
    print(f"{current_release()}: {sum(len(exports(folder)) for folder in folders)} exports")


if __name__ == "__main__":
    words, build_folders = sys.argv[1:2], [pathlib.Path(word) for word in sys.argv[2:]]
    names = {folder.name for folder in build_folders}
    if words not in (["check"], ["record"]) or not names or not names <= set(WORD_SIZES):
        sys.exit(f"{__doc__}\nA folder is named {' or '.join(WORD_SIZES)}.")
    main(words[0], build_folders)
