"""What is refused, with words that say why; the object and the PC can be used afterwards."""

import gc
import subprocess
import sys

import pytest

import kestova
from kestova import ProblemCode


def refused(code, call, *arguments):
    with pytest.raises(kestova.KestovaError) as caught:
        call(*arguments)
    assert caught.value.problem.code is code
    return str(caught.value)


def test_no_pc_open_object_is_refused(monkeypatch):
    monkeypatch.delenv("KESTOVA_PC", raising=False)
    words = refused(ProblemCode.PC, kestova.Kestova)
    assert words == "no PC is open: call kestova_open_pc, or name one in the variable KESTOVA_PC"


def test_closed_object_refuses_every_call(pc):
    pc("factory-mbr")
    recovery = kestova.Kestova()
    recovery.close()
    recovery.close()
    assert refused(ProblemCode.HANDLE, recovery.initialize) == "Initialize: the handle is null or closed"
    for call in (recovery.stop_waiting, recovery.wait, recovery.last_problem):
        refused(ProblemCode.HANDLE, call)
    refused(ProblemCode.HANDLE, recovery.set_wait, 1)
    refused(ProblemCode.HANDLE, recovery.set_log, print)
    refused(ProblemCode.HANDLE, recovery.get_drive_letter, 0, 1)


def test_unknown_pc_and_wrong_description_are_refused(pc, tmp_path):
    wrong = tmp_path / "wrong.json"
    wrong.write_text('{"disks": [{"number": "x"}]}')
    assert refused(ProblemCode.PC, kestova.EmulatedPc, "nothing.json") == "nothing.json: there is no such file"
    assert refused(ProblemCode.PC, kestova.EmulatedPc, wrong).startswith(f"{wrong}: disks[0].number: ")
    assert pc("factory-mbr").is_open


def test_second_pc_is_refused_until_the_first_is_closed(pc):
    first = pc("factory-mbr")
    assert refused(ProblemCode.PC, kestova.EmulatedPc, "factory-gpt") == "a PC is open in this process already"
    first.close()
    first.close()
    assert not first.is_open
    pc("factory-gpt")


def test_pc_with_an_open_object_is_not_closed(pc):
    emulated = pc("factory-mbr")
    with kestova.Kestova():
        assert refused(ProblemCode.PC, emulated.close) == "a handle is still open"
        assert emulated.is_open
    emulated.close()
    assert refused(ProblemCode.PC, emulated.fail, None) == "this PC is not open"
    assert refused(ProblemCode.PC, emulated.outstanding) == "this PC is not open"
    refused(ProblemCode.PC, lambda: list(emulated.trace()))


@pytest.mark.parametrize("fault", ["CreateFileW", "NoSuchCall=5", "CreateFileW#0=5", "CreateFileW=E_NOTHING", ""])
def test_text_that_is_no_fault_is_refused(pc, fault):
    emulated = pc("factory-mbr")
    assert refused(ProblemCode.PC, emulated.fail, fault).startswith(f"kestova_fail '{fault}': ")


def test_file_that_cannot_be_written_is_refused(pc, tmp_path):
    emulated = pc("factory-mbr")
    nowhere = tmp_path / "missing" / "pc.json"
    assert str(nowhere) in refused(ProblemCode.PC, emulated.save, nowhere)


def test_argument_that_does_not_fit_is_refused(pc):
    pc("factory-mbr")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        for wrong in ("", "CD", "\U0001f4be", None, 67):
            with pytest.raises(ValueError, match="a drive letter is one character"):
                recovery.is_vista_os(wrong)
        for wrong in (2**31, -(2**31) - 1):
            with pytest.raises(OverflowError, match="does not fit into 32 bits"):
                recovery.get_drive_letter(wrong, 1)
        with pytest.raises(TypeError):
            recovery.get_drive_letter("0", 1)
        assert recovery.get_drive_letter(0, 2) == "C"


def test_text_without_room_is_refused(pc):
    pc("factory-mbr")
    with kestova.Kestova() as recovery:
        words = refused(ProblemCode.ARGUMENT, recovery.get_all_encrypt_volume, 0)
        assert words == "GetAllEncryptVolume: a pointer is null, or a size is not possible"
        for call in (recovery.get_all_encrypt_volume, recovery.get_win_drive_letters):
            with pytest.raises(ValueError):
                call(-1)


def test_waits_that_are_none_are_refused(pc):
    pc("factory-mbr")
    with kestova.Kestova() as recovery:
        for wrong in (-1, 2**32 / 1000, 0):
            with pytest.raises(ValueError, match="cannot wait"):
                recovery.set_wait(wrong)
        with pytest.raises(ValueError, match="cannot wait"):
            recovery.wait(-1)


def test_operation_that_fails_is_no_misuse_and_says_why(pc):
    emulated = pc("factory-mbr")
    emulated.fail("IVdsAdvancedDisk::ChangeAttributes=E_FAIL")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert recovery.set_rcvprt_active() is kestova.SwitchResult.FLAG_NOT_SET
        problem = recovery.last_problem()
        assert problem.code is ProblemCode.FAILED
        assert (problem.operation, problem.result) == ("SetRcvprtActive", 5)
        assert problem.words == kestova.describe("SetRcvprtActive", 5)
        assert "ChangeAttributes" in problem.record or "SetActive" in problem.record
        assert recovery.is_dynamic() == 0
        assert recovery.last_problem() == (ProblemCode.NONE, "IsDynamic", 0, "no", "")


def test_forgotten_object_is_closed(pc):
    emulated = pc("factory-mbr")
    recovery = kestova.Kestova(log=print)
    recovery.set_log(lambda level, text: recovery)
    del recovery
    gc.collect()
    emulated.close()


def test_object_open_at_the_end_of_the_program_does_no_harm():
    program = "import kestova; k = kestova.Kestova(log=lambda *_: None); k.initialize(); print(k.is_dynamic())"
    outcome = subprocess.run([sys.executable, "-c", program], env={"KESTOVA_PC": "factory-mbr"}, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True)
    assert (outcome.returncode, outcome.stdout) == (0, "0\n")
