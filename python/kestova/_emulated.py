"""Emulated PCs, for tests of applications."""

from __future__ import annotations

import ctypes
import json
import os
import pathlib
import sys
import tempfile
import typing

from ._library import load
from ._problem import refuse_misuse


def _volumes(description: dict[str, typing.Any]) -> typing.Iterator[dict[str, typing.Any]]:
    for disk in description.get("disks", []):
        yield from (partition["volume"] for partition in disk.get("partitions", []) if "volume" in partition)
    yield from description.get("volumes", [])


class EmulatedPc:
    """The PC that answers in this process; on Linux. Open it before the first Kestova, and close it after the last.

    It is a machine that comes with the library ("factory-mbr"), or a file that describes one. There is one at a time.
    """

    def __init__(self, name_or_file: str | os.PathLike[str]) -> None:
        """Raises KestovaError if there is no such PC, its description is wrong, or another one is open."""
        if sys.platform == "win32":
            raise NotImplementedError("on Windows the PC itself answers; emulated PCs are for Linux")
        self._library = load()
        self._pc: int | None = self._library.kestova_open_pc(os.fsencode(name_or_file))
        refuse_misuse(self._library)

    def __enter__(self) -> EmulatedPc:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Raises KestovaError if an object is still open. A second time nothing happens."""
        if self._pc is None:
            return
        self._call("kestova_close_pc")
        self._pc = None

    @property
    def is_open(self) -> bool:
        return self._pc is not None

    def _call(self, function: str, *arguments: typing.Any) -> int:
        result = getattr(self._library, function)(self._pc, *arguments)
        refuse_misuse(self._library)
        return typing.cast(int, result)

    def _text(self, function: str) -> str:
        """What the function writes; '' if there is nothing."""
        length = self._call(function, None, 0)
        buffer = ctypes.create_string_buffer(length + 1)
        if length > 0:
            self._call(function, buffer, len(buffer))
        return buffer.value.decode(errors="replace")

    def fail(self, fault: str | None) -> None:
        """From now on platform calls fail: "NAME[#N][+]=CODE", the Nth call of that name from now, with "+" all later
        ones too, without "#N" every call: "IVdsAdvancedDisk::ChangeAttributes#1=E_FAIL". None: none fails any more.

        Raises KestovaError for text that is no fault.
        """
        self._call("kestova_fail", None if fault is None else fault.encode())

    def trace(self) -> typing.Iterator[str]:
        """The platform calls and records since the PC was opened, a line each. What was read is taken off."""
        while line := self._text("kestova_trace_next"):
            yield line

    def outstanding(self) -> dict[str, int]:
        """What the platform has handed out and not got back: how many of each kind."""
        kinds = filter(None, self._text("kestova_outstanding").split(", "))
        return {kind: int(count) for count, kind in (words.split(" ", 1) for words in kinds)}

    def save(self, file: str | os.PathLike[str]) -> None:
        """Writes the PC as it is now to a file that describes it, replacing one. Raises KestovaError if that fails."""
        self._call("kestova_save", os.fsencode(file))

    def description(self) -> dict[str, typing.Any]:
        """The PC as it is now, as `save` writes it."""
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "pc.json")
            self.save(file)
            return typing.cast("dict[str, typing.Any]", json.loads(file.read_text(encoding="utf-8")))

    def read_file(self, path: str) -> bytes:
        """The content of a file of the PC, by its path with a drive letter: what `open` reads on Windows. Faults do not
        apply here. Raises FileNotFoundError."""
        drive, _, wanted = path.replace("\\", "/").partition(":/")
        for volume in _volumes(self.description()):
            if drive.upper() in volume.get("letters", ""):
                for name, content in volume.get("files", {}).items():
                    if name.casefold() == wanted.casefold() and content is not None:
                        return content.encode() if isinstance(content, str) else bytes.fromhex(content["hex"])
        raise FileNotFoundError(path)
