"""The examples and the page do what they say."""

import collections
import doctest
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as xml

import pytest
from conftest import run_tool

SOURCES = pathlib.Path(__file__).parents[2]
PAGE = SOURCES / "python/README.md"
RECOVERY = SOURCES / "examples/recovery.py"
FAULT_MATRIX = SOURCES / "python/examples/fault_matrix.py"
SVG = {"svg": "http://www.w3.org/2000/svg"}


def run(program, *words):
    return subprocess.run([sys.executable, program, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def said(program, *words):
    outcome = run(program, *words)
    return outcome.returncode, outcome.stdout, outcome.stderr


READ = "The recovery partition is {}:\nIts Qelhdrcv.ini begins:\n[Recovery]\nVersion=1\n\n"
MBR_ONLY = "The switch failed with code 1; a GPT disk has no active partition to switch.\n"


def test_recovery_gpt_disk_reads_the_file_and_says_that_there_is_nothing_to_switch():
    assert said(RECOVERY, "factory-gpt") == (1, READ.format("D") + MBR_ONLY, "")
    assert said(RECOVERY) == said(RECOVERY, "factory-gpt")


def test_recovery_windows_pe_on_an_mbr_disk_switches():
    switched = READ.format("C") + "The next start boots the recovery partition.\n"
    assert said(RECOVERY, "winpe-two-disks") == (0, switched, "")


def test_recovery_no_recovery_partition_says_so(tmp_path):
    (tmp_path / "bare.json").write_text("{}")
    assert said(RECOVERY, tmp_path / "bare.json") == (9, "No recovery partition was found.\n", "")


def test_recovery_empty_file_says_that_it_cannot_be_read(tmp_path):
    described = tmp_path / "pc.json"
    run_tool("--pc", "factory-gpt", "--save", str(described), "call", "IsDynamic")
    text, count = re.subn(r'("sources/Qelhdrcv.ini": )".*"', r'\1""', described.read_text())
    assert count == 1
    described.write_text(text)
    words = "The recovery partition is D:\nIts Qelhdrcv.ini cannot be read.\n"
    assert said(RECOVERY, described) == (9, words, "")


def test_recovery_missing_pc_is_refused():
    assert said(RECOVERY, "nothing.json") == (3, "", "recovery: nothing.json: there is no such file\n")


@pytest.mark.parametrize("name", ["factory-mbr", "winpe-two-disks", "factory-gpt"])
def test_fault_matrix_has_a_cell_for_each_call(tmp_path, name):
    outcome = run(FAULT_MATRIX, name, tmp_path / "matrix.svg")
    assert outcome.stderr == ""
    trace = run_tool("--pc", name, "--trace", "call", "SetRcvprtActive")[-1]["trace"]
    calls = [entry["call"] for entry in trace if "call" in entry]
    assert outcome.stdout.startswith(f"{len(calls)} calls, one failed at a time:\n")
    cells = xml.parse(tmp_path / "matrix.svg").findall(".//svg:g[@class='cell']", SVG)
    assert len(cells) == len(calls)
    assert {cell.find("svg:title", SVG).text.split("#")[0] for cell in cells} == set(calls)


def test_fault_matrix_cell_has_the_result_of_the_tool(tmp_path):
    run(FAULT_MATRIX, "factory-mbr", tmp_path / "matrix.svg")
    # The tool counts from the first call of all, the picture from the first of the switch.
    trace = run_tool("--pc", "factory-mbr", "--trace", "call", "Initialize", "0")[-1]["trace"]
    before = collections.Counter(entry["call"] for entry in trace if "call" in entry)
    for cell in xml.parse(tmp_path / "matrix.svg").findall(".//svg:g[@class='cell']", SVG)[::16]:
        name, nth, code = re.match(r"(.+)#(\d+)=(\w+): ", cell.find("svg:title", SVG).text).groups()
        fault = f"{name}#{before[name] + int(nth)}={code}"
        answer = run_tool("--pc", "factory-mbr", "--fail", fault, "call", "SetRcvprtActive")[-1]
        assert cell.find("svg:text", SVG).text == str(answer["result"]), fault


def test_fault_matrix_misused_says_how_it_is_used(tmp_path):
    assert "usage: fault_matrix.py PC PICTURE.svg" in run(FAULT_MATRIX).stderr
    picture = tmp_path / "matrix.svg"
    assert said(FAULT_MATRIX, "nothing.json", picture) == (1, "", "fault_matrix: nothing.json: there is no such file\n")
    assert not picture.exists()


def test_page_its_sessions_say_what_it_shows(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    outcome = doctest.testfile(str(PAGE), module_relative=False)
    assert outcome.failed == 0 and outcome.attempted > 15


def test_page_its_test_of_an_application_passes(pytester):
    blocks = re.findall(r"```python\n(.*?)```", PAGE.read_text(), re.DOTALL)
    pytester.makepyfile(next(block for block in blocks if "def test" in block))
    pytester.runpytest_subprocess("-p", "no:cacheprovider").assert_outcomes(passed=1)


def test_page_its_commands_write_what_it_shows(tmp_path):
    block = r"^    \$ python3 (\S+\.py) (.*)\n((?:    .*\n|\n(?=    ))+)"
    commands = re.findall(block, PAGE.read_text(), re.MULTILINE)
    assert [program for program, *_ in commands] == ["examples/recovery.py", "python/examples/fault_matrix.py"]
    for program, words, shown in commands:
        outcome = subprocess.run([sys.executable, SOURCES / program, *words.split()], cwd=tmp_path,
                                 stdout=subprocess.PIPE, text=True)
        assert outcome.stdout == re.sub(r"^    ", "", shown, flags=re.MULTILINE)
