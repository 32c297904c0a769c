#!/usr/bin/env python3
"""Checks a folder with `opctool check -r`, and reads the same files with Python's zipfile and ElementTree.

    bench/check_folder.py OPCTOOL [FOLDER [COPIES [ROUNDS]]]

The folder that is checked holds COPIES (20) of each package in FOLDER that is smaller than 64 KiB; without FOLDER these are the documents among
the tests. Both sides use two cores: opctool two threads, Python two processes, which are there before the clock runs. Python reads all items, which
checks their checksums, and parses content types, relationships and core properties. The best round of each counts, by the clock. Memory is the
largest that opctool has had resident, for one copy and for all.
"""
import multiprocessing
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile

sys.dont_write_bytecode = True  # the folder of the sources stays as it is
from python_listing import list_package

OFFICE = pathlib.Path(__file__).resolve().parent.parent / "tests" / "data" / "office"
SMALL = 64 * 1024
JOBS = 2


def copies_of(folder, target, count):
    """Copies the small packages of a folder into new folders. Gives the copies' names."""
    packages = sorted(file for file in pathlib.Path(folder).iterdir() if file.is_file() and file.stat().st_size < SMALL
                      and zipfile.is_zipfile(file))
    names = []
    for i in range(count):
        copies = target / f"{i:03}"
        copies.mkdir(parents=True)
        names += [shutil.copyfile(package, copies / package.name) for package in packages]
    return names


def check(tool, folder):
    """The seconds that it takes, and the most memory in KiB."""
    command = [tool, "check", "-r", folder, "--all-files", "-j", str(JOBS), "--fail-on", "never", "-q"]
    start = time.perf_counter()
    process = subprocess.Popen(command)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} ended with {process.returncode}")
    return time.perf_counter() - start, usage.ru_maxrss


def read(path):
    try:
        list_package(path, True)
    except Exception:  # whatever it raises for a package that isn't for it
        pass


def measure_python(pool, names):
    start = time.perf_counter()
    pool.map(read, names, chunksize=max(1, len(names) // (4 * JOBS)))
    return time.perf_counter() - start


def main(tool, folder=OFFICE, copies="20", rounds="5"):
    with tempfile.TemporaryDirectory(prefix="opcmodel-bench-") as temporary, multiprocessing.Pool(JOBS) as pool:
        one, many = pathlib.Path(temporary, "one"), pathlib.Path(temporary, "many")
        copies_of(folder, one, 1)
        names = copies_of(folder, many, int(copies))
        _, memory_of_one = check(tool, one)
        checks, readings = [], []
        for _ in range(int(rounds)):
            checks.append(check(tool, many))
            readings.append(measure_python(pool, names))
    best, python = len(names) / min(seconds for seconds, _ in checks), len(names) / min(readings)
    memory = max(size for _, size in checks)
    print(f"{len(names)} small packages checked: {best:.0f} a second, read by Python {python:.0f}: {best / python:.2f} times as many; "
          f"{memory_of_one / 1024:.1f} MiB for one copy of each, {memory / 1024:.1f} MiB for {copies}")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
