#!/usr/bin/env python3
"""A recovery application on one page: it finds the recovery partition, reads a file there through a drive letter,
removes the letter, and makes the PC start from that partition next time.

    recovery.py          this PC (Windows); an emulated factory PC (elsewhere)
    recovery.py PC       elsewhere: a description, or the name of a PC that comes with the library

The exit status is the code of the switch, 9 if there is no recovery partition or its file cannot be read, or 3 if there
is no such PC.
"""

import contextlib
import sys

import kestova

NOTHING_TO_RECOVER_FROM = 9
NO_PC = 3


def letter_of_recovery_partition(recovery):
    """On a GPT disk the library finds the recovery partition by type and contents and gives it a letter. On an MBR disk
    it is partition 1, which has a letter from Windows PE."""
    letter = recovery.assign_recovery_partition().letter
    return letter or recovery.get_drive_letter(recovery.get_first_internal_drive_number(), 1)


def beginning_of(path, pc):
    """The first bytes of a file, of the emulated PC if there is one; empty if it cannot be read."""
    try:
        if pc is not None:
            return pc.read_file(path)[:512]
        with open(path, "rb") as file:
            return file.read(512)
    except OSError:
        return b""


def recover(recovery, pc):
    if recovery.initialize() != kestova.InitializeResult.READY:
        print("The Virtual Disk Service cannot be reached.")
        return NOTHING_TO_RECOVER_FROM

    letter = letter_of_recovery_partition(recovery)
    if letter is None:
        print("No recovery partition was found.")
        return NOTHING_TO_RECOVER_FROM
    print(f"The recovery partition is {letter}:")
    content = beginning_of(letter + r":\sources\Qelhdrcv.ini", pc)
    recovery.remove_recovery_partition()
    if not content:
        print("Its Qelhdrcv.ini cannot be read.")
        return NOTHING_TO_RECOVER_FROM
    print(f"Its Qelhdrcv.ini begins:\n{content.decode(errors='replace')}")

    code = recovery.set_rcvprt_active()
    if code == kestova.SwitchResult.DONE:
        print("The next start boots the recovery partition.")
    else:
        print(f"The switch failed with code {int(code)}; a GPT disk has no active partition to switch.")
    return int(code)


def main():
    with contextlib.ExitStack() as opened:
        pc = None
        if sys.platform != "win32":
            try:
                pc = opened.enter_context(kestova.EmulatedPc(sys.argv[1] if len(sys.argv) > 1 else "factory-gpt"))
            except kestova.KestovaError as why:
                print(f"recovery: {why}", file=sys.stderr)
                return NO_PC
        return recover(opened.enter_context(kestova.Kestova()), pc)


if __name__ == "__main__":
    sys.exit(main())
