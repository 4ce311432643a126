"""Recovery-partition management for Windows PCs with a factory recovery area.

    with kestova.Kestova() as pc:
        if pc.initialize() and pc.set_rcvprt_active() == kestova.SwitchResult.DONE:
            ...  # the next start boots the recovery partition

On Windows it works on the PC itself, elevated. On Linux an emulated PC answers: see EmulatedPc.
"""

from ._emulated import EmulatedPc
from ._library import LibraryNotFoundError
from ._object import Kestova, LogFunction, describe, version
from ._problem import KestovaError, Problem, ProblemCode
from ._values import DriveInfo
from .operations import *  # noqa: F403
from .operations import __all__ as _operations

__all__ = [
    "DriveInfo",
    "EmulatedPc",
    "Kestova",
    "KestovaError",
    "LibraryNotFoundError",
    "LogFunction",
    "Problem",
    "ProblemCode",
    "describe",
    "version",
    *_operations,
]
