#!/usr/bin/env python3
"""Compares the files a second of `opcmodel.scan` with those of Python's zipfile and ElementTree.

    PYTHONPATH=build/bench/bindings/python bench/python_scan.py [FOLDER [ROUNDS [JOBS]]]

Both list all parts with their content types, read all relationships, and read the core properties, as objects of Python. They
take turns over the same files, in one process; the best round of each counts, by the clock. Without a folder it is 300
copies of a small document of an office program. Files that zipfile can't read are left out.
"""
import os
import shutil
import sys
import tempfile
import time
import zipfile
from xml.etree import ElementTree

import opcmodel

LETTER = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "tests/data/office/letter.docx")
CORE = "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties"


def read_with_zipfile(path):
    """The parts and their content types, all relationships, the core properties."""
    with zipfile.ZipFile(path) as archive:
        defaults, overrides = {}, {}
        for entry in ElementTree.fromstring(archive.read("[Content_Types].xml")):
            if "Extension" in entry.attrib:
                defaults[entry.get("Extension").lower()] = entry.get("ContentType")
            else:
                overrides[entry.get("PartName").lower()] = entry.get("ContentType")
        parts, relationships, core = [], [], None
        for item in archive.infolist():
            name = "/" + item.filename
            if name.endswith(".rels"):
                for entry in ElementTree.fromstring(archive.read(item)):
                    relationships.append((name, entry.get("Id"), entry.get("Type"), entry.get("Target"),
                                          entry.get("TargetMode")))
                    if entry.get("Type") == CORE:
                        core = entry.get("Target").lstrip("/")
            else:
                content_type = overrides.get(name.lower()) or defaults.get(name.rpartition(".")[2].lower())
                parts.append((name, content_type, item.file_size))
        properties = {}
        if core:
            properties = {entry.tag.rpartition("}")[2]: entry.text for entry in ElementTree.fromstring(archive.read(core))}
        return parts, relationships, properties


def scan_with_zipfile(files):
    return sum(len(part) for path in files for part in read_with_zipfile(path))


def scan_with_opcmodel(files, jobs):
    count = 0
    for result in opcmodel.scan(files, jobs=jobs, what={"parts", "relationships", "properties"}):
        if result.error is None:
            count += len(result.parts) + len(result.relationships) + len(result.properties or ())
    return count


def readable(files):
    for path in files:
        try:
            read_with_zipfile(path)
            yield path
        except Exception:  # whatever it raises for a file that isn't for it
            pass


def measure(scan, *arguments):
    start, worked = time.perf_counter(), time.process_time()
    scan(*arguments)
    return time.perf_counter() - start, time.process_time() - worked


def main(folder=None, rounds="7", jobs=None):
    with tempfile.TemporaryDirectory() as made:
        if folder is None:
            folder = made
            for copy in range(300):
                shutil.copyfile(LETTER, os.path.join(made, f"{copy}.docx"))
        found = sorted(os.path.join(root, name) for root, _, names in os.walk(folder) for name in names)
        files = list(readable(found))
        ours, pythons = [], []
        for _ in range(int(rounds)):
            ours.append(measure(scan_with_opcmodel, files, jobs and int(jobs)))
            pythons.append(measure(scan_with_zipfile, files))
    (our, our_work), (python, python_work) = map(min, (ours, pythons))
    print(f"{len(files)} files: {len(files) / our:.0f} a second, by zipfile and ElementTree {len(files) / python:.0f}: "
          f"{python / our:.2f} times as many; {python_work / our_work:.2f} times as many for the same CPU time")


if __name__ == "__main__":
    main(*sys.argv[1:])
