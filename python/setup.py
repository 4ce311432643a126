"""Puts the built library into the package, and says for which platform the wheel is then.

KESTOVA_BUILD is the folder with the library, KESTOVA_PLATFORM the platform that it was built for. Without them it is what
./dev build linux makes. Where there is none the package is without it, and finds one when it runs.
"""

import os
import pathlib
import re
import shutil
import sysconfig

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

ROOT = pathlib.Path(__file__).resolve().parent.parent

platform = os.environ.get("KESTOVA_PLATFORM") or re.sub(r"\W", "_", sysconfig.get_platform())
names = ["KestovaC.dll", "Kestova.dll", "Logging.dll"] if platform.startswith("win") else ["libkestova-c.so"]
files = [pathlib.Path(os.environ.get("KESTOVA_BUILD") or ROOT / "build/linux/c", name) for name in names]
has_library = "KESTOVA_BUILD" in os.environ or all(file.exists() for file in files)


def version():
    project = (ROOT / "CMakeLists.txt").read_text()
    return re.search(r"^project\(Kestova VERSION (\S+)", project, re.MULTILINE).group(1)


class WithLibrary(build_py):
    def run(self):
        super().run()
        for file in files if has_library else []:
            shutil.copyfile(file, pathlib.Path(self.build_lib, "kestova", file.name))


class Package(Distribution):
    def has_ext_modules(self):
        """Of a platform's package, which so goes to the place for these."""
        return has_library


class OfPlatform(bdist_wheel):
    def get_tag(self):
        return ("py3", "none", platform if has_library else "any")


setup(version=version(), distclass=Package, cmdclass={"build_py": WithLibrary, "bdist_wheel": OfPlatform})
