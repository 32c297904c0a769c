#!/usr/bin/env python3
"""Compares the start of opctool with that of `unzip -l`, by the CPU time of the processes.

    bench/start_up.py OPCTOOL [FILE [ROUNDS]]

Each round runs each command once, in turn, so that what else the machine does falls on all of them. The ratios are those of the medians.
Without FILE it is a small document among the tests.
"""
import os
import resource
import statistics
import subprocess
import sys

DOCUMENT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "office", "letter.docx")


def cpu_time(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def main(tool, file=DOCUMENT, rounds="200"):
    commands = {
        "unzip -l": ["unzip", "-l", file],
        "opctool --version": [tool, "--version"],
        "opctool ls": [tool, "ls", file],
    }
    times = {name: [] for name in commands}
    for _ in range(int(rounds)):
        for name, command in commands.items():
            times[name].append(cpu_time(command))
    medians = {name: statistics.median(values) for name, values in times.items()}
    for name, median in medians.items():
        print(f"{name:18} {median * 1e3:6.2f} ms of CPU   {median / medians['unzip -l']:5.2f} x unzip -l")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
