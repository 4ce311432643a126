"""The class Kestova, and functions without a handle."""

from __future__ import annotations

import ctypes
import math
import typing
import weakref

from ._library import LogCallback, load
from ._problem import Problem, problem_of, refuse_misuse
from ._values import result_value, text_of
from .operations import Operations

LogFunction = typing.Callable[[int, str], None]
"""Receives a record: its level (1: an error, 4: a trace) and its text."""

open_objects: weakref.WeakSet[Kestova] = weakref.WeakSet()

LONGEST_WAIT = 2**32 - 1  # milliseconds


class _Log:
    """The log function of an object, in the form in which the library calls it."""

    def __init__(self) -> None:
        self.function: LogFunction | None = None
        self.callback = LogCallback(self._write)

    def _write(self, _context: int | None, level: int, text: typing.Any) -> None:
        function = self.function
        if function is not None:
            function(level, text_of(text))


def _close(library: ctypes.CDLL, handle: int, _log: _Log) -> None:
    """The log stays until the call that may still be using it has ended."""
    library.kestova_close(handle)


def _milliseconds(seconds: float) -> int:
    """Rounded up. Raises ValueError for a time that cannot be waited."""
    milliseconds = math.ceil(seconds * 1000)
    if not 0 <= milliseconds <= LONGEST_WAIT:
        raise ValueError(f"cannot wait {seconds} seconds")
    return milliseconds


class Kestova(Operations):
    """An object of the class, on a thread of its own on which COM is initialised.

    Call `initialize` first, and `close` in the end, or use it in a `with` statement. A method may be called from any
    thread; calls are made one after the other. An operation that fails returns its result; KestovaError is raised only
    if a call cannot be made, or its result is not waited for.

    On Linux an emulated PC answers: that of the open EmulatedPc, or the one that the variable KESTOVA_PC of the
    environment names.
    """

    def __init__(self, log: LogFunction | None = None) -> None:
        self._library = load()
        handle = self._library.kestova_open()
        refuse_misuse(self._library)
        self._handle: int | None = handle
        self._log = _Log()
        self._closing = weakref.finalize(self, _close, self._library, handle, self._log)
        open_objects.add(self)
        if log is not None:
            self.set_log(log)

    def __enter__(self) -> Kestova:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Destroys the object, after the call that runs on it has ended. A second time nothing happens.

        Raises KestovaError within the object's own log function.
        """
        if self._handle is None:
            return
        self._library.kestova_close(self._handle)
        refuse_misuse(self._library)
        self._handle = None
        open_objects.discard(self)
        self._closing.detach()

    def _call(self, function: str, *arguments: typing.Any) -> int:
        result = getattr(self._library, function)(self._handle, *arguments)
        refuse_misuse(self._library)
        return typing.cast(int, result)

    def set_log(self, function: LogFunction | None) -> None:
        """From the next operation on the function receives the records of this object; None: nobody does.

        It is called on the object's thread, during an operation: it must return soon, and cannot call methods of any
        object. What it raises goes to sys.unraisablehook.
        """
        self._log.function = function
        self._call("kestova_set_log", self._log.callback if function else LogCallback(), None)

    def set_wait(self, seconds: float | None) -> None:
        """From now on callers wait at most so long for a call, their turn included. None, as at first: without limit.

        Who stops waiting gets KestovaError with the code STOPPED, and BUSY until the call has ended.
        """
        if seconds == 0:
            raise ValueError("cannot wait 0 seconds for a call")
        self._call("kestova_set_wait", 0 if seconds is None else _milliseconds(seconds))

    def stop_waiting(self) -> None:
        """Ends the waiting of all callers who wait now: they get KestovaError with the code STOPPED. The call itself
        runs to its end."""
        self._call("kestova_stop_waiting")

    def wait(self, seconds: float = 0) -> bool:
        """Waits so long for the end of a call that nobody waits for. Whether the object is free: last_problem then has
        the result of that call."""
        return bool(self._call("kestova_wait", _milliseconds(seconds)))

    def last_problem(self) -> Problem:
        """Of the last operation that has ended on this object, also one that nobody waited for.

        Raises KestovaError if the object is closed.
        """
        self._call("kestova_wait", 0)  # refuses a closed object
        return problem_of(self._library, self._handle)


def describe(operation: str, result: int | str | None) -> str:
    """A result in words: describe("SetRcvprtActive", 3). '' if there is no such operation, or no such result of it."""
    library = load()
    name, value = operation.encode(), result_value(result)
    length = library.kestova_describe(name, value, None, 0)
    buffer = (ctypes.c_ushort * (length + 1))()
    library.kestova_describe(name, value, buffer, length + 1)
    return text_of(buffer)


def version() -> str:
    """Of the library."""
    return load().kestova_version().decode()
