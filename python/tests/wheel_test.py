"""The wheels hold what runs on their platform, and nothing else."""

import os
import pathlib
import shutil
import subprocess
import sys
import zipfile

import pytest

SOURCES = pathlib.Path(__file__).parents[2]
WINDOWS = ["Kestova.dll", "KestovaC.dll", "Logging.dll"]
OWN = ["__init__.py", "_emulated.py", "_library.py", "_object.py", "_problem.py", "_values.py", "operations.py", "py.typed",
       "pytest_plugin.py"]


@pytest.fixture
def sources(tmp_path):
    """A copy, in which building leaves what it likes."""
    copy = tmp_path / "sources"
    shutil.copytree(SOURCES / "python", copy / "python", ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__"))
    shutil.copyfile(SOURCES / "CMakeLists.txt", copy / "CMakeLists.txt")
    return copy


def make(sources, **environment):
    folder = sources / "wheels"
    command = [sys.executable, "-m", "pip", "wheel", "--no-index", "--no-deps", "--no-build-isolation", "-w", folder]
    outcome = subprocess.run([*command, sources / "python"], env={"PATH": os.environ["PATH"], **environment},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return outcome.stdout, list(folder.glob("*.whl"))


def built(folder, names):
    folder.mkdir()
    for name in names:
        (folder / name).write_text("the library " + name)
    return str(folder)


def contents(wheel):
    """Of the package, and the tag in its metadata."""
    with zipfile.ZipFile(wheel) as archive:
        names = [name.split("/") for name in archive.namelist()]
        metadata = next("/".join(name) for name in names if name[-1] == "WHEEL")
        tags = [line for line in archive.read(metadata).decode().splitlines() if line.startswith("Tag: ")]
        return sorted(name for folder, *rest in names if folder == "kestova" for name in rest), tags


@pytest.mark.parametrize("platform, names", [("linux_x86_64", ["libkestova-c.so"]), ("win_amd64", WINDOWS),
                                             ("win32", WINDOWS)])
def test_wheel_of_a_platform_carries_its_libraries(tmp_path, sources, platform, names):
    folder = built(tmp_path / "built", [*names, "other.dll"])
    _, [wheel] = make(sources, KESTOVA_BUILD=folder, KESTOVA_PLATFORM=platform)
    assert wheel.name.endswith(f"-py3-none-{platform}.whl")
    assert contents(wheel) == (sorted(OWN + names), [f"Tag: py3-none-{platform}"])
    with zipfile.ZipFile(wheel) as archive:
        assert archive.read("kestova/" + names[0]) == b"the library " + names[0].encode()


def test_library_that_was_not_built_is_named(tmp_path, sources):
    folder = built(tmp_path / "built", ["KestovaC.dll", "Kestova.dll"])
    said, wheels = make(sources, KESTOVA_BUILD=folder, KESTOVA_PLATFORM="win_amd64")
    assert wheels == []
    assert f"No such file or directory: '{folder}/Logging.dll'" in said


def test_sources_without_a_library_make_a_package_for_any_platform(sources):
    _, [wheel] = make(sources)
    assert wheel.name.endswith("-py3-none-any.whl")
    assert contents(wheel) == (OWN, ["Tag: py3-none-any"])


def test_sources_beside_the_plain_build_take_its_library(sources):
    (sources / "build/linux").mkdir(parents=True)
    built(sources / "build/linux/c", ["libkestova-c.so"])
    _, [wheel] = make(sources)
    assert contents(wheel) == (sorted([*OWN, "libkestova-c.so"]), ["Tag: py3-none-linux_x86_64"])
