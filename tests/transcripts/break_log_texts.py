#!/usr/bin/env python3
"""Changes every text of the log, one at a time, and requires that a test notices.

    break_log_texts.py [FOLDER]     FOLDER: where the altered copy is built, build/log-texts unless given

In a copy of the tree every literal of a log record becomes a variable. The programs are built once; when they
run with KESTOVA_BREAK=N in the environment, text N begins with a character more. Shown are the texts that no
test notices and those whose change reaches more transcript files than LIMIT; both make the run fail.
"""
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PRODUCT = ["diag", "device", "vds", "manager"]
# Those that compare transcripts; the slow ones run only for a text that these do not notice.
FAST = ["tests_device", "tests_vds", "tests_manager"]
SLOW = ["tests_faults"]
LIMIT = 5
# No PC makes the library log these; the reason why. They are compared here.
UNREACHED = {
    r"Kestova::ActiveOrvoBootPartition\tGetDriveLetter\tERROR_GET_DRIVE_LETTER.": "SetDriveLetter found a letter",
    r"Kestova::ActiveGPTSystemPartition\tGetDriveLetter\tERROR_GET_DRIVE_LETTER.": "SetDriveLetter found a letter",
    r"Kestova::GetSystemVolumeIni\tGetDriveLetter\tError": "SetDriveLetter found a letter",
    r"Kestova::AssignRecoveryPartition\tIsExistRecoveryPartition return FALSE": "the search returns 1",
    r"Kestova CVDSPartition::QuerySecondPartitions GetSecondInternalDriveNumber m_DiskNumber = -1":
        "then GetSecondInternalDriveNumber returns FALSE",
    r"Kestova Kestova::IsExistRecoveryPartition\tSelectPartition return false": "SelectPartition returns TRUE",
    r"Kestova CVDSPartition::IsExistWinREPartition SelectPartition return false": "SelectPartition returns TRUE",
    r"Kestova::GetVistaOSInfo   GPT Does not get os partition number": "the boot partition is 3 or missing",
    r"Kestova::GetBitLockerSystemInfo\tNULL == m_pVDSPartition": "then there is no internal disk either",
    r"Kestova::GetBitLockerSystemInfo\tGetDiskStyle ERROR_GET_DISK_STYLE": "fails only without a volume layer",
}

LITERAL = re.compile(r'TEXT\(\s*"((?:[^"\\]|\\.)+)"\)')
STATEMENT = re.compile(r"LogRecord\(\s*\w+\s*\).*?;", re.S)
# A text in a table: it names its function, or it is the label of a value.
MESSAGE = re.compile(r"\w+::\w+|^ .*[=:] $")

HEADER = """\
#pragma once
#include <cstdlib>
#include <string>
#include "platform/windows_api.h"
namespace broken {{
{variables}
inline WCHAR* const texts[] = {{{names}}};
inline const bool done = [] {{
    const char* const number = std::getenv("KESTOVA_BREAK");
    if (number == nullptr) return false;
    WCHAR* const text = texts[std::atoi(number)];
    const size_t length = std::char_traits<WCHAR>::length(text);
    for (size_t i = length + 1; i > 0; --i)
        text[i] = text[i - 1];
    text[0] = TEXT('~');
    return true;
}}();
}}  // namespace broken
"""


class Text:
    def __init__(self, path, line, literal):
        self.path, self.line, self.literal = path, line, literal

    def __str__(self):
        return f'{self.path}:{self.line}: "{self.literal}"'


def alter(path, source, texts):
    """The source with each of its log literals replaced by a variable; the literals are added to texts."""
    statements = [match.span() for match in STATEMENT.finditer(source)]

    def variable(match):
        line = source[source.rfind("\n", 0, match.start()) + 1:match.start()]
        if line.lstrip().startswith("//"):
            return match.group(0)
        in_statement = any(begin <= match.start() < end for begin, end in statements)
        if not in_statement and not MESSAGE.search(match.group(1)):
            return match.group(0)
        texts.append(Text(path, source.count("\n", 0, match.start()) + 1, match.group(1)))
        return f"broken::text{len(texts) - 1}"

    altered = LITERAL.sub(variable, source)
    return altered if altered == source else '#include "diag/broken_texts.h"\n' + altered


def write(path, content):
    """Leaves a file alone that has the content already, so that a second run builds nothing."""
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def altered_copy(tree):
    texts = []
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True, text=True,
                            stdout=subprocess.PIPE).stdout.split("\n")
    files = sorted(path for path in listed if path and (ROOT / path).is_file())
    for path in files:
        content = (ROOT / path).read_bytes()
        if path.split("/")[0] in PRODUCT and path.endswith((".cpp", ".h")):
            content = alter(path, content.decode(), texts).encode()
        write(tree / path, content)
        shutil.copymode(ROOT / path, tree / path)
    for path in tree.glob("tests/**/*"):
        if path.is_file() and str(path.relative_to(tree)) not in files:
            path.unlink()
    variables = "\n".join(
        f'inline WCHAR text{n}[sizeof(TEXT("{text.literal}")) / sizeof(WCHAR) + 1] = TEXT("{text.literal}");'
        for n, text in enumerate(texts))
    names = ", ".join(f"text{n}" for n in range(len(texts)))
    write(tree / "diag/broken_texts.h", HEADER.format(variables=variables, names=names).encode())
    return texts


def build(tree):
    subprocess.run(["cmake", "--preset", "linux", "-DKESTOVA_TESTS=ON"], cwd=tree, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "build/linux", "--target", *FAST, *SLOW], cwd=tree, check=True,
                   stdout=subprocess.DEVNULL)


def run(tree, programs, number=None):
    """Whether all tests passed, and the transcript files named by those that did not."""
    environment = dict(os.environ) if number is None else os.environ | {"KESTOVA_BREAK": str(number)}
    passed, files = True, set()
    for program in programs:
        result = subprocess.run([tree / "build/linux/tests" / program, "--gtest_brief=1"], env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
        passed = passed and result.returncode == 0
        files |= set(re.findall(r'tests/transcripts/(\S+\.txt)"', result.stdout))
    return passed, files


def break_text(tree, number):
    passed, files = run(tree, FAST, number)
    if passed:
        passed, _ = run(tree, SLOW, number)
    return not passed, files


def report(texts, results):
    """Prints what was found; 1 if anything is wrong, otherwise 0."""
    silent = [text for text, (noticed, _) in zip(texts, results) if not noticed]
    unnoticed = [text for text in silent if text.literal not in UNREACHED]
    stale = UNREACHED.keys() - {text.literal for text in silent}
    wide = [(text, files) for text, (_, files) in zip(texts, results) if len(files) > LIMIT]
    most, text = max(((len(files), str(text)) for text, (_, files) in zip(texts, results)))
    print(f"{len(texts)} texts broken, {len(texts) - len(silent)} noticed by a test, "
          f"{len(silent) - len(unnoticed)} that no PC reaches")
    print(f"at most {most} transcript files changed by one text: {text}")
    for text in unnoticed:
        print("UNNOTICED", text)
    for literal in sorted(stale):
        print("NOT IN THE CODE OR NOT UNREACHED", literal)
    for text, files in wide:
        print(f"{len(files)} FILES", text, *sorted(files))
    return 1 if unnoticed or stale or wide else 0


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/log-texts").resolve()
    tree = folder / "tree"
    texts = altered_copy(tree)
    build(tree)
    if not run(tree, FAST + SLOW)[0]:
        sys.exit("A test fails although no text is broken.")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda number: break_text(tree, number), range(len(texts))))

    sys.exit(report(texts, results))


if __name__ == "__main__":
    main()
