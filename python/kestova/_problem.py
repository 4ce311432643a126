"""What went wrong, as the library says it."""

from __future__ import annotations

import ctypes
import enum
import typing

from ._values import named, text_of


class ProblemCode(enum.IntEnum):
    """The kinds of problems."""

    # the call was made, and the operation did not fail
    NONE = 0
    # the call was made, and its result is a failure
    FAILED = 1
    # the handle is closed
    HANDLE = 2
    # a size is not possible
    ARGUMENT = 3
    # a call that nobody waits for is still running, or a log function called
    BUSY = 4
    # the caller stopped waiting; the call runs on
    STOPPED = 5
    # memory ran out
    MEMORY = 6
    # the thread could not be started, or COM not be initialised
    SYSTEM = 7
    # anything else was thrown
    EXCEPTION = 8
    # an emulated PC: none is open, or its description or fault cannot be used
    PC = 9


class Problem(typing.NamedTuple):
    """The outcome of a call."""

    code: ProblemCode
    operation: str
    """As the class calls it; '' for other functions."""
    result: int | None
    """Of the operation; None if it was not made or has none."""
    words: str
    """The problem, or the meaning of the result."""
    record: str
    """The last record of an error that the operation wrote; '' without one."""


class KestovaError(Exception):
    """A call was not made, or its result is not known. An operation that fails returns its result instead."""

    def __init__(self, problem: Problem) -> None:
        super().__init__(f"{problem.operation}: {problem.words}" if problem.operation else problem.words)
        self.problem = problem


class ProblemRecord(ctypes.Structure):
    """A Problem as the library fills it in."""

    _fields_ = [
        ("size", ctypes.c_uint),
        ("code", ctypes.c_int),
        ("has_result", ctypes.c_int),
        ("result", ctypes.c_int),
        ("operation", ctypes.c_ushort * 64),
        ("words", ctypes.c_ushort * 512),
        ("record", ctypes.c_ushort * 1024),
    ]


def problem_of(library: ctypes.CDLL, handle: int | None = None) -> Problem:
    """Of the thread's last call; with an open handle, of the last operation that has ended on it."""
    record = ProblemRecord(size=ctypes.sizeof(ProblemRecord))
    library.kestova_last_problem(handle, ctypes.byref(record))
    return Problem(
        named(ProblemCode, record.code),
        text_of(record.operation),
        record.result if record.has_result else None,
        text_of(record.words),
        text_of(record.record),
    )


def refuse_misuse(library: ctypes.CDLL) -> None:
    """Raises KestovaError if the thread's last call was not made, or nobody waited for its result."""
    record = ProblemRecord(size=ProblemRecord.has_result.offset)  # the code alone
    library.kestova_last_problem(None, ctypes.byref(record))
    if record.code > ProblemCode.FAILED:
        raise KestovaError(problem_of(library))
