"""The types that the package declares are those that it has."""
import os
import pathlib
import subprocess
import sys

import pytest

PACKAGE = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0])


def run(*arguments):
    # A sanitizer that is preloaded isn't for the checker.
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    environment["MYPYPATH"] = str(PACKAGE)
    return subprocess.run([sys.executable, "-m", *arguments], cwd="/", capture_output=True, text=True, env=environment)


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    return tmp_path_factory.mktemp("cache")


def test_strict(cache):
    done = run("mypy", "--strict", f"--cache-dir={cache}", str(PACKAGE / "opcmodel"))
    assert done.returncode == 0, done.stdout


def test_stubs_are_like_the_module(tmp_path):
    if "LD_PRELOAD" in os.environ:
        pytest.skip("the module needs the sanitizer in its process, and the checker doesn't run with it")
    allowed = tmp_path / "allowed"  # classes of pybind11 have its metaclass, and a constructor even if nobody can call it
    allowed.write_text(r"opcmodel\._opcmodel\.[A-Z]\w+(\.__init__)?")
    done = run("mypy.stubtest", "opcmodel._opcmodel", "--concise", "--allowlist", str(allowed), "--ignore-unused-allowlist")
    assert done.returncode == 0, done.stdout + done.stderr


def test_examples_of_use_are_typed(tmp_path, cache):
    """What a program does with the package has the types that it expects."""
    file = tmp_path / "use.py"
    file.write_text(
        "import opcmodel as opc\n"
        "with opc.open('a.docx', 'r+') as package:\n"
        "    names: list[str] = [part.name for part in package.parts]\n"
        "    content: bytes = package['/a'].read()\n"
        "    part: opc.Part = package.rels.by_type(opc.RT.OFFICE_DOCUMENT)[0].part\n"
        "    size: int = package.get('/a', part).size or 0\n"
        "report: opc.Report = opc.check('a.docx')\n"
        "lines: list[str] = [finding.message for finding in report.findings]\n"
        "wrong: int = content\n"
    )
    done = run("mypy", "--strict", f"--cache-dir={cache}", str(file))
    assert done.stdout.splitlines()[0].split(":", 1)[1].startswith("9: error: Incompatible types"), done.stdout
    assert "Found 1 error in 1 file" in done.stdout
