"""Values on their way between Python and the library."""

from __future__ import annotations

import ctypes
import enum
import itertools
import operator
import typing

NO_LETTER = ord("0")

Named = typing.TypeVar("Named", bound=enum.IntEnum)


class DriveInfo(typing.NamedTuple):
    """The place of a volume to which the installed Windows assigns a letter."""

    disk: int
    """In the running system; 255 if it could not be read."""
    partition: int
    """0 if it could not be read."""
    letter: str
    """The installed Windows' letter."""


class DriveInfoRecord(ctypes.Structure):
    """A DriveInfo as the library fills it in."""

    _fields_ = [("disk", ctypes.c_int), ("partition", ctypes.c_int), ("letter", ctypes.c_ushort)]


def named(names: type[Named], value: int) -> Named:
    """The value by its name; the plain number if it has none."""
    try:
        return names(value)
    except ValueError:
        return typing.cast(Named, value)


def number(value: int) -> int:
    """An integer that fits into the library's. Raises OverflowError if it does not, TypeError for anything else."""
    given = operator.index(value)
    if not -(2**31) <= given < 2**31:
        raise OverflowError(f"{given} does not fit into 32 bits")
    return given


def letter_unit(letter: str) -> int:
    """Raises ValueError if it is not one character."""
    if not isinstance(letter, str) or len(letter) != 1 or ord(letter) > 0xFFFF:
        raise ValueError(f"a drive letter is one character, not {letter!r}")
    return ord(letter)


def letter_text(unit: int) -> str | None:
    """'C'; None for no letter; '' for a 0."""
    return None if unit == NO_LETTER else chr(unit) if unit else ""


def result_value(result: int | str | None) -> int:
    """The number of a result as methods return it: the reverse of letter_text, and numbers as they are."""
    if result is None:
        return NO_LETTER
    return number(result) if not isinstance(result, str) else letter_unit(result) if result else 0


def text_of(units: typing.Any) -> str:
    """The text in an array of UTF-16 units, or behind a pointer to them, up to its 0."""
    values = itertools.takewhile(bool, map(units.__getitem__, itertools.count()))
    return b"".join(unit.to_bytes(2, "little") for unit in values).decode("utf-16-le", "surrogatepass")


def drive_infos(records: typing.Sequence[DriveInfoRecord]) -> list[DriveInfo]:
    """Those that were filled in."""
    filled = itertools.takewhile(lambda record: record.letter, records)
    return [DriveInfo(record.disk, record.partition, chr(record.letter)) for record in filled]
