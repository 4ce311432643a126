"""Every operation on every PC that comes with the library answers what the tool answers."""

import enum
import re

import pytest
from conftest import KEPT_BY_THE_CLASS, run_tool, table_of_operations

import kestova

# The arguments that an operation is tried with, by the names of its parameters.
ARGUMENTS = {
    (): [()],
    ("reserved",): [(False,), (True,)],
    ("disk", "partition"): [(0, 1), (0, 3), (1, 1), (-1, 99)],
    ("partition",): [(1,), (4,), (0,)],
    ("letter",): [("C",), ("D",), ("Z",)],
    ("size",): [(33,), (2,), (1,)],
    ("count",): [(26,), (1,), (0,)],
}
TABLE = {operation["operation"]: operation for operation in table_of_operations()}


def inputs_of(operation):
    return tuple(given["name"] for given in operation["parameters"] if given["direction"] == "in")


def method_of(recovery, operation):
    """GetRCVDISC -> get_rcvdisc; by the name without its underscores."""
    plain = operation.lower()
    return getattr(recovery, next(name for name in dir(recovery) if name.replace("_", "") == plain))


def as_json(value):
    """A value of an answer as the tool writes it."""
    if isinstance(value, list):
        return [{"iDiskNum": disk, "iPartNum": partition, "cDriveLetter": letter} for disk, partition, letter in value]
    return int(value) if isinstance(value, enum.IntEnum) else value


def answer_in_json(operation, answer):
    """The result and the outputs as the tool writes them."""
    is_letter = any(isinstance(result["value"], str) for result in operation["results"])
    fields = answer._asdict() if hasattr(answer, "_asdict") else {"result": answer}
    letters = {given["name"] for given in operation["parameters"] if given["kind"] == "letter"}
    letters |= {"result"} if is_letter else set()
    shown = {
        name: {None: "0", "": "\0"}.get(value, value) if name in letters else as_json(value)
        for name, value in fields.items()
    }
    return shown.pop("result"), shown


def records(log):
    """Without the numbers of pointers, which differ from run to run."""
    return [(level, re.sub(r"<pointer>|0x[0-9a-f]{8,}", "<pointer>", text)) for level, text in log]


@pytest.mark.parametrize("name", TABLE)
def test_operation_called_answers_as_the_tool(pc, machine, name):
    operation = TABLE[name]
    for arguments in ARGUMENTS[inputs_of(operation)]:
        words = [str(int(word)) if isinstance(word, bool) else str(word) for word in arguments]
        expected = run_tool("--pc", machine, "call", "--", name, *words)[-1]
        log = []
        emulated = pc(machine)
        with kestova.Kestova() as recovery:
            if name != "Initialize":
                recovery.initialize()
            recovery.set_log(lambda level, text: log.append((level, text)))
            result, outputs = answer_in_json(operation, method_of(recovery, name)(*arguments))
        kept = emulated.outstanding()
        emulated.close()
        assert result == expected["result"], arguments
        assert outputs == expected["outputs"], arguments
        assert records(log) == records((record["level"], record["text"]) for record in expected["log"]), arguments
        assert set(kept) <= set(KEPT_BY_THE_CLASS), arguments


def test_default_arguments_left_out_are_those_of_the_table(pc):
    pc("winpe-two-disks")
    with kestova.Kestova() as recovery:
        assert recovery.initialize() is kestova.InitializeResult.READY
        assert recovery.get_win_drive_letters() == recovery.get_win_drive_letters(count=26)
        assert recovery.get_all_encrypt_volume() == recovery.get_all_encrypt_volume(size=33)


def test_result_with_a_name_is_a_member_any_other_a_number(pc, tmp_path):
    pc("factory-mbr")
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert recovery.set_rcvprt_active() is kestova.SwitchResult.DONE
        assert recovery.get_disk_style().style is kestova.Style.MBR
        assert type(recovery.get_first_internal_drive_number()) is int
        assert recovery.remove_recovery_partition() is None


def test_pc_without_a_disk_has_the_named_number(pc, tmp_path):
    bare = tmp_path / "bare.json"
    bare.write_text("{}")
    pc(bare)
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert recovery.get_first_internal_drive_number() is kestova.GetFirstInternalDriveNumberResult.NONE
        assert recovery.get_active_partition_number() == -1


def test_encrypted_volume_without_a_letter_differs_from_none(pc, tmp_path):
    described = tmp_path / "locked.json"
    described.write_text('{"encryptableVolumes": [{"deviceId": "a volume", "encryptionMethod": "aes-128"}]}')
    pc(described)
    with kestova.Kestova() as recovery:
        recovery.initialize()
        assert recovery.get_encrypt_volume() == ""
