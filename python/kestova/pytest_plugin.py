"""The fixture `pc`, which pytest finds when the package is installed."""

from __future__ import annotations

import os
import typing

import pytest

from ._emulated import EmulatedPc
from ._object import open_objects

OpenPc = typing.Callable[..., EmulatedPc]


@pytest.fixture
def pc() -> typing.Iterator[OpenPc]:
    """Opens a described PC for the test: pc("factory-mbr"), pc("lab/pc.json"). It is closed after the test, and so are
    objects that the test has left open.

    With kept=KINDS the test fails if the platform has not got back something of another kind at its end; kept=() allows
    nothing. The class itself keeps some objects of the Virtual Disk Service and their texts.
    """
    opened: list[tuple[EmulatedPc, typing.Collection[str] | None]] = []

    def open_pc(
        name_or_file: str | os.PathLike[str] = "factory-mbr", kept: typing.Collection[str] | None = None
    ) -> EmulatedPc:
        opened.append((EmulatedPc(name_or_file), kept))
        return opened[-1][0]

    yield open_pc
    for left in list(open_objects):
        left.close()
    for emulated, kept in opened:
        outstanding = emulated.outstanding() if kept is not None and emulated.is_open else {}
        emulated.close()
        unexpected = {kind: count for kind, count in outstanding.items() if kind not in (kept or ())}
        assert not unexpected, f"not given back to the platform: {unexpected}"
