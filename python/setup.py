"""Builds the module by CMake, with the library inside it."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext
from setuptools.command.sdist import sdist

HERE = pathlib.Path(__file__).resolve().parent
# Beside this folder, or brought along by a source distribution.
ROOT = HERE / "project" if (HERE / "project").exists() else HERE.parent
SOURCES = ["CMakeLists.txt", "cmake", "platform", "poly", "python", "tools"]


class BuildModule(build_ext):
    def build_extension(self, extension):
        target = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve()
        tree = pathlib.Path(self.build_temp).resolve()
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "BUILD_SHARED_LIBS": "OFF",
            "QZ_POLY_BUILD_PYTHON": "ON",
            "QZ_POLY_BUILD_TOOLS": "OFF",
            "QZ_POLY_BUILD_TESTS": "OFF",
            "QZ_POLY_INSTALL": "OFF",
            "Python_EXECUTABLE": sys.executable,
        }
        subprocess.check_call(["cmake", "-G", "Ninja", "-S", ROOT, "-B", tree,
                               *(f"-D{name}={value}" for name, value in options.items())])
        subprocess.check_call(["cmake", "--build", tree, "--target", "qz_poly_python",
                               "--parallel", str(os.cpu_count())])
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(next((tree / "python/qz_poly").glob("_native*.so")), target)
        subprocess.check_call(["strip", target])


class BringSources(sdist):
    def make_release_tree(self, base_dir, files):
        super().make_release_tree(base_dir, files)
        for name in SOURCES:
            source, target = ROOT / name, pathlib.Path(base_dir, "project", name)
            if source.is_dir():
                shutil.copytree(source, target, ignore=shutil.ignore_patterns(
                    "build", "dist", "qz?poly-*", "*.egg-info", "__pycache__"))
            else:
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)


setup(
    version=re.search(r"qz_poly VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1],
    ext_modules=[Extension("qz_poly._native", [])],
    cmdclass={"build_ext": BuildModule, "sdist": BringSources},
)
