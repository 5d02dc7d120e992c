"""pip install --no-build-isolation .: builds with CMake what Debian's packages make possible."""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = Path(__file__).resolve().parent
BUILD = (PROJECT / "CMakeLists.txt").read_text()
VERSION = re.search(r"^project\(.* VERSION ([0-9.]+)", BUILD, re.MULTILINE)[1]
#: what stands below the prefix beside the package
PROGRAMS = {
    "bin": ["dravo", "qn-dravo"],
    "libexec/dravo": ["dravo-xtb-worker", "dravo-png.so"],
}


class BuildWithCMake(build_ext):
    """The package and the programs, made by one build."""

    def run(self) -> None:
        build = Path(self.build_temp).resolve() / "cmake"
        options = ["-DCMAKE_BUILD_TYPE=Release", f"-DPython_EXECUTABLE={sys.executable}"]
        options += os.environ.get("DRAVO_CMAKE_OPTIONS", "").split()
        subprocess.run(["cmake", "-S", PROJECT, "-B", build, "-G", "Ninja", *options], check=True)
        subprocess.run(["cmake", "--build", build], check=True)
        package = Path("python") if self.inplace else Path(self.build_lib)
        self.copy_tree(str(build / "python" / "dravo"), str(package / "dravo"))
        self.distribution.data_files = [
            (folder, [str(build / name) for name in names if (build / name).exists()])
            for folder, names in PROGRAMS.items()
        ]


setup(
    version=VERSION,
    packages=[],
    ext_modules=[Extension("dravo._core", sources=[])],
    cmdclass={"build_ext": BuildWithCMake},
    data_files=[("bin", [])],
)
