"""Emulated PCs: faults, the trace, what is outstanding, files, saving."""

import json
import subprocess
import sys

import pytest
from conftest import KEPT_BY_THE_CLASS, run_tool

import kestova

SET_FLAG = "IVdsAdvancedDisk::ChangeAttributes"


def switched(pc, name="factory-mbr", fault=None):
    """A PC after a switch, and the result of that."""
    emulated = pc(name)
    with kestova.Kestova() as recovery:
        recovery.initialize()
        emulated.fail(fault)
        result = recovery.set_rcvprt_active()
    return emulated, result


def calls_in(trace):
    return [line for line in trace if not line.startswith("log ")]


def test_fault_the_call_fails_and_the_trace_says_so(pc):
    emulated, result = switched(pc, fault=f"{SET_FLAG}#1=E_FAIL")
    assert result is kestova.SwitchResult.FLAG_NOT_SET
    flags = [line for line in emulated.trace() if line.startswith(SET_FLAG)]
    assert [line.endswith("= 0x80004005  (injected)") for line in flags] == [True, False]


def test_fault_taken_back_calls_succeed(pc):
    emulated = pc("factory-mbr")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        emulated.fail(f"{SET_FLAG}=E_FAIL")
        assert recovery.set_rcvprt_active() is kestova.SwitchResult.FLAG_NOT_SET
        emulated.fail(None)
        assert recovery.set_rcvprt_active() is kestova.SwitchResult.DONE


def test_trace_has_the_calls_that_the_tool_shows_once(pc):
    emulated = pc("factory-mbr")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert calls_in(emulated.trace())
        recovery.set_rcvprt_active()
        names = [line[: line.index("(")] for line in calls_in(emulated.trace())]
        assert list(emulated.trace()) == []
    expected = run_tool("--pc", "factory-mbr", "--trace", "call", "SetRcvprtActive")[-1]["trace"]
    assert names == [entry["call"] for entry in expected if "call" in entry]


def test_outstanding_is_what_the_class_keeps(pc):
    emulated = pc("factory-mbr")
    assert emulated.outstanding() == {}
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert emulated.outstanding()["IVdsService"] == 1
        recovery.set_rcvprt_active()
    ledger = run_tool("--pc", "factory-mbr", "--ledger", "call", "SetRcvprtActive")[-1]["ledger"]
    assert emulated.outstanding() == {kind: count for kind, count in ledger.items() if count}
    assert set(emulated.outstanding()) <= set(KEPT_BY_THE_CLASS)


def test_saved_pc_is_the_one_that_the_tool_saves_and_opens_again(pc, tmp_path):
    emulated, _ = switched(pc)
    emulated.save(tmp_path / "ours.json")
    emulated.close()
    run_tool("--pc", "factory-mbr", "--save", str(tmp_path / "theirs.json"), "call", "SetRcvprtActive")
    assert (tmp_path / "ours.json").read_text() == (tmp_path / "theirs.json").read_text()
    pc(tmp_path / "ours.json")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert recovery.set_system_active() is kestova.SwitchBackResult.DONE


def test_description_is_the_pc_as_it_is_now(pc, tmp_path):
    emulated, _ = switched(pc)
    emulated.save(tmp_path / "pc.json")
    assert emulated.description() == json.loads((tmp_path / "pc.json").read_text())


def test_file_of_the_pc_is_read_by_its_path_in_any_case(pc):
    emulated, _ = switched(pc)
    record = b"[System]\r\nActive=2\r\n"
    for path in (r"E:\SystemVolume.ini", "e:/systemvolume.INI"):
        assert emulated.read_file(path) == record


@pytest.mark.parametrize("path", [r"E:\nothing", r"Q:\SystemVolume.ini", "E:/sources/data/", "SystemVolume.ini", ""])
def test_file_that_is_not_there_is_not_found(pc, path):
    emulated, _ = switched(pc)
    with pytest.raises(FileNotFoundError):
        emulated.read_file(path)


def test_file_of_bytes_and_of_a_stick_are_read(pc, tmp_path):
    described = tmp_path / "stick.json"
    volume = {"letters": "FG", "driveType": "removable", "files": {"a/text": "ä", "bytes": {"hex": "ff 00"}}}
    described.write_text(json.dumps({"volumes": [volume]}))
    emulated = pc(described)
    assert emulated.read_file("G:\\bytes") == b"\xff\0"
    assert emulated.read_file("F:\\a\\text") == "ä".encode()


@pytest.mark.parametrize("name", ["ä.json", "with a blank.json"])
def test_names_of_files_are_those_of_the_system(pc, tmp_path, name):
    (tmp_path / name).write_text("{}")
    pc(tmp_path / name).save(tmp_path / ("saved " + name))
    assert (tmp_path / ("saved " + name)).exists()


def test_variable_names_the_pc_of_a_program_that_opens_none():
    program = "import kestova; k = kestova.Kestova(); k.initialize(); print(k.get_disk_style().style.name)"
    for name, style in (("factory-mbr", "MBR"), ("factory-gpt", "GPT")):
        said = subprocess.run([sys.executable, "-c", program], env={"KESTOVA_PC": name}, check=True,
                              stdout=subprocess.PIPE, text=True).stdout
        assert said == style + "\n"
