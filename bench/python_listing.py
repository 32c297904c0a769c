#!/usr/bin/env python3
"""Lists packages with zipfile and ElementTree, in turn with `real_bench --paced`, and compares their files a second.

    bench/python_listing.py REAL_BENCH [FOLDER [ROUNDS]]
    bench/python_listing.py INSPECTION_BENCH [FOLDER [ROUNDS]]

Beside `inspection_bench` it reads all other items too, which checks their sizes and checksums, and parses core properties.

Each side is one process, lists all files once in each round, and counts its working time. The best round counts.
"""
import subprocess
import sys
import time
import zipfile
from xml.etree import ElementTree


def list_package(path, reads_all):
    """The content type of each item, and the relationships of each relationships part."""
    with zipfile.ZipFile(path) as archive:
        defaults, overrides, relationships = {}, {}, {}
        names = archive.namelist()
        for name in names:
            if name == "[Content_Types].xml":
                for entry in ElementTree.fromstring(archive.read(name)):
                    if "Extension" in entry.attrib:
                        defaults[entry.get("Extension").lower()] = entry.get("ContentType")
                    else:
                        overrides[entry.get("PartName").lower()] = entry.get("ContentType")
            elif name.endswith(".rels"):
                relationships[name] = [
                    (entry.get("Id"), entry.get("Type"), entry.get("Target"), entry.get("TargetMode"))
                    for entry in ElementTree.fromstring(archive.read(name))
                ]
            elif reads_all:
                content = archive.read(name)
                if name.endswith("core.xml"):
                    ElementTree.fromstring(content)
        types = {
            name: overrides.get("/" + name.lower()) or defaults.get(name.rpartition(".")[2].lower())
            for name in names
        }
        return types, relationships


def time_here(files, reads_all):
    start = time.process_time()
    for path in files:
        list_package(path, reads_all)
    return time.process_time() - start


def main(program, folder=None, rounds="10"):
    command = [program, "--paced"] + ([folder] if folder else [])
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as other:
        files = list(iter(lambda: other.stdout.readline().rstrip("\n"), ""))
        ours, pythons = [], []
        for _ in range(int(rounds)):
            other.stdin.write("\n")
            other.stdin.flush()
            ours.append(float(other.stdout.readline()))
            pythons.append(time_here(files, program.endswith("inspection_bench")))
    best, python = len(files) / min(ours), len(files) / min(pythons)
    print(f"{len(files)} files: {best:.0f} a second, by Python {python:.0f}: {best / python:.2f} times as many")


if __name__ == "__main__":
    main(*sys.argv[1:])
