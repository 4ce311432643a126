"""Finds the library and declares its functions."""

from __future__ import annotations

import ctypes
import functools
import os
import pathlib
import sys
from ctypes import CFUNCTYPE, POINTER, c_char_p, c_int, c_uint, c_ushort, c_void_p

from ._problem import ProblemRecord
from .operations import PROTOTYPES

INTERFACE = 1
"""The interface of the library that this package needs at least."""

VARIABLE = "KESTOVA_LIBRARY"
NAME = "KestovaC.dll" if sys.platform == "win32" else "libkestova-c.so"
SYSTEM_NAME = "KestovaC.dll" if sys.platform == "win32" else "libkestova-c.so.1"

LogCallback = CFUNCTYPE(None, c_void_p, c_int, POINTER(c_ushort))

# As PROTOTYPES, with all parameters.
FUNCTIONS = {
    "kestova_open": (c_void_p,),
    "kestova_close": (c_int, c_void_p),
    "kestova_last_problem": (c_int, c_void_p, POINTER(ProblemRecord)),
    "kestova_describe": (c_uint, c_char_p, c_int, POINTER(c_ushort), c_uint),
    "kestova_set_wait": (c_int, c_void_p, c_uint),
    "kestova_stop_waiting": (c_int, c_void_p),
    "kestova_wait": (c_int, c_void_p, c_uint),
    "kestova_set_log": (c_int, c_void_p, LogCallback, c_void_p),
    "kestova_version": (c_char_p,),
    "kestova_interface": (c_uint,),
}
EMULATED_FUNCTIONS = {
    "kestova_open_pc": (c_void_p, c_char_p),
    "kestova_close_pc": (c_int, c_void_p),
    "kestova_fail": (c_int, c_void_p, c_char_p),
    "kestova_trace_next": (c_uint, c_void_p, c_char_p, c_uint),
    "kestova_outstanding": (c_uint, c_void_p, c_char_p, c_uint),
    "kestova_save": (c_int, c_void_p, c_char_p),
}


class LibraryNotFoundError(OSError):
    """The library is nowhere, cannot be loaded, or is too old. The message says what was tried."""


def places() -> list[str]:
    """Where the library can be: the one that the environment names, or else beside the package and in the system."""
    chosen = os.environ.get(VARIABLE)
    return [chosen] if chosen else [str(pathlib.Path(__file__).parent / NAME), SYSTEM_NAME]


def opened(place: str) -> ctypes.CDLL:
    """Raises OSError if it cannot be loaded."""
    folder, _ = os.path.split(place)
    if sys.platform != "win32" or not folder:
        return ctypes.CDLL(place)
    with os.add_dll_directory(os.path.abspath(folder)):  # of the libraries that it needs itself
        return ctypes.CDLL(os.path.abspath(place))


def declare(library: ctypes.CDLL) -> None:
    own = {name: (result, c_void_p, *parameters) for name, (result, *parameters) in PROTOTYPES.items()}
    emulated = {} if sys.platform == "win32" else EMULATED_FUNCTIONS
    for name, (result, *parameters) in {**FUNCTIONS, **emulated, **own}.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = parameters


def refuse_older(library: ctypes.CDLL) -> None:
    """Raises OSError if it lacks what this package needs."""
    interface = library.kestova_interface()
    if interface < INTERFACE:
        raise OSError(f"it has interface {interface}, and this package needs {INTERFACE}")


@functools.lru_cache(maxsize=None)
def load() -> ctypes.CDLL:
    """The library, loaded once. Raises LibraryNotFoundError."""
    reasons = []
    for place in places():
        try:
            library = opened(place)
            refuse_older(library)
            declare(library)
            return library
        except (OSError, AttributeError) as why:  # the latter for a function that is missing
            reasons.append(f"{place}: {why}")
    raise LibraryNotFoundError("the library of Kestova was not found; tried " + "; ".join(reasons))
