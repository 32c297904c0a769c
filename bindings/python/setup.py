"""Builds the package with CMake: pip install --no-build-isolation bindings/python"""
import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]


class CMakeBuild(build_ext):
    """One build of the libraries, of which the folder of the package gets what it needs."""

    def build_extension(self, extension):
        package = pathlib.Path(self.get_ext_fullpath(extension.name)).resolve().parent
        build = pathlib.Path(self.build_temp).resolve() / "cmake"
        build.mkdir(parents=True, exist_ok=True)
        options = [
            "-DCMAKE_BUILD_TYPE=Release", "-DOPCMODEL_PYTHON=ON", "-DOPCMODEL_TOOLS=OFF", "-DOPCMODEL_EXAMPLES=OFF",
            "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=16",  # in half the time
            f"-DPython3_EXECUTABLE={sys.executable}", f"-DOPCMODEL_PYTHON_DIR={package.parent}",
        ]
        jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count() or 1))
        for command in (
            ["cmake", "-S", ROOT, "-B", build, *options],
            ["cmake", "--build", build, "--target", "_opcmodel", "--parallel", jobs],
            ["cmake", "--install", build, "--component", "python"],
        ):
            subprocess.run(command, check=True)


setup(
    version=re.search(r"VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text()).group(1),
    packages=["opcmodel"],
    package_data={"opcmodel": ["*.pyi", "py.typed"]},
    ext_modules=[Extension("opcmodel._opcmodel", [])],
    cmdclass={"build_ext": CMakeBuild},
    zip_safe=False,
)
