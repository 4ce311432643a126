"""Where the library is looked for, and what is said if it is not there."""

import pathlib
import shutil
import subprocess
import sys
import types

import pytest

import kestova
from kestova import _library

PACKAGE = pathlib.Path(kestova.__file__).parent
LIBRARY = pathlib.Path(_library.load()._name)
PROGRAM = "import kestova; print(kestova.version())"


def run(folder, **environment):
    """The package in a copy without its library, which needs no installation."""
    shutil.copytree(PACKAGE, folder / "kestova", ignore=shutil.ignore_patterns("*.so", "__pycache__"))
    return subprocess.run([sys.executable, "-S", "-c", PROGRAM], env={"PYTHONPATH": str(folder), **environment},
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def test_variable_names_the_library(tmp_path):
    shutil.copyfile(LIBRARY, tmp_path / "mine.so")
    outcome = run(tmp_path, KESTOVA_LIBRARY=str(tmp_path / "mine.so"))
    assert outcome.stdout == kestova.version() + "\n", outcome.stderr


def test_library_of_the_system_is_found(tmp_path):
    system = tmp_path / "system"
    system.mkdir()
    shutil.copyfile(LIBRARY, system / "libkestova-c.so.1")
    outcome = run(tmp_path, LD_LIBRARY_PATH=str(system))
    assert outcome.stdout == kestova.version() + "\n", outcome.stderr


def test_library_nowhere_every_place_is_named(tmp_path):
    outcome = run(tmp_path)
    assert outcome.returncode == 1
    last = outcome.stderr.splitlines()[-1]
    assert last.startswith("kestova._library.LibraryNotFoundError: the library of Kestova was not found; tried "
                           f"{tmp_path}/kestova/libkestova-c.so: ")
    assert "; libkestova-c.so.1: " in last


def test_variable_names_nothing_no_other_place_is_tried(tmp_path):
    missing = str(tmp_path / "missing.so")
    last = run(tmp_path, KESTOVA_LIBRARY=missing).stderr.splitlines()[-1]
    assert f"tried {missing}: {missing}: cannot open shared object file" in last
    assert "libkestova-c.so.1" not in last


def test_other_library_is_refused_by_the_function_that_it_lacks(tmp_path):
    last = run(tmp_path, KESTOVA_LIBRARY="libc.so.6").stderr.splitlines()[-1]
    assert "tried libc.so.6: " in last
    assert last.endswith("undefined symbol: kestova_interface")


def test_library_of_an_older_interface_is_refused():
    older = types.SimpleNamespace(kestova_interface=lambda: 0)
    with pytest.raises(OSError, match="it has interface 0, and this package needs 1"):
        _library.refuse_older(older)
