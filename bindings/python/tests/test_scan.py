"""Scanning many files."""
import itertools
import json
import os
import pathlib
import subprocess
import sys
import threading
from datetime import datetime, timezone

import pytest

import opcmodel as opc
from opcmodel._scanning import ASPECTS, PROFILES
from packages import HYPERLINK, RELS, make_archive, make_document, relationship, without_last_block

ALL = tuple(ASPECTS)
OPCTOOL = os.environ.get("OPCTOOL", "opctool")
OFFICE = pathlib.Path(__file__).parents[3] / "tests" / "data" / "office"
CORE = (
    '<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties"'
    ' xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/"'
    ' xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><dc:title>T\u00e4</dc:title>'
    '<cp:keywords xml:lang="en">k</cp:keywords>'
    '<dcterms:created xsi:type="dcterms:W3CDTF">2024-02-29T13:45:59Z</dcterms:created></cp:coreProperties>'
)


def with_properties():
    core = "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties"
    office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument"
    types = (
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Override PartName="/core.xml" ContentType="application/vnd.openxmlformats-package.core-properties+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/></Types>'
    )
    return make_archive({
        "[Content_Types].xml": types, "core.xml": CORE, "a.xml": "<a/>",
        "_rels/.rels": RELS.format(relationship("c", core, "core.xml") + relationship("d", office, "a.xml")),
    })


def test_results_have_plain_values():
    (result,) = opc.scan([("x", with_properties())])
    assert (result.path, result.error, result.hidden, result.format.name) == ("x", None, (), "opc")
    assert [tuple(part) for part in result.parts] == [
        ("/a.xml", "application/xml", 4, 0),
        ("/core.xml", "application/vnd.openxmlformats-package.core-properties+xml", len(CORE.encode()), 0)]
    assert [(one.id, one.target, one.resolved, one.exists) for one in result.relationships] == [
        ("c", "core.xml", "/core.xml", True), ("d", "a.xml", "/a.xml", True)]
    assert result.properties == {"title": "T\u00e4", "keywords": (("k", "en"),),
                                 "created": datetime(2024, 2, 29, 13, 45, 59, tzinfo=timezone.utc)}
    assert (result.externals, result.signatures, result.signature_state, result.findings) == (None,) * 4
    with pytest.raises(AttributeError):
        result.parts = ()
    with pytest.raises(TypeError):
        result.properties["title"] = ""
    (result,) = opc.scan([("x", make_document())], what={"externals", "findings", "signatures"})
    assert [(one.effect, one.place, one.type) for one in result.externals] == [("click", "web", HYPERLINK)]
    assert (result.signatures, result.signature_state, result.parts) == ((), "unsigned", None)
    assert all(finding.severity in ("error", "warning", "info") for finding in result.findings)


def test_no_part_has_a_drive_or_a_host(tmp_path):
    targets = {"C:/notes.xml": False, "//host/notes.xml": False, "/notes.xml#a": True}
    rows = "".join(relationship(f"r{i}", "urn:t", target) for i, target in enumerate(targets))
    path = tmp_path / "p.docx"
    path.write_bytes(make_document(items={"word/_rels/document.xml.rels": RELS.format(rows)}))
    source = "/word/document.xml"
    (result,) = opc.scan([path])
    assert {one.target: one.exists for one in result.relationships if one.source == source} == targets
    told = json.loads(tool(["rels", path, source, "--json=2"]).stdout)["result"]
    assert {one["target"]: one["exists"] for one in told} == targets
    with opc.open(path, "r+") as package:
        assert {one.target: one.exists for one in package[source].rels.values()} == targets
        package.remove("/notes.xml", incoming=True)
        assert [one.target for one in package[source].rels.values()] == [name for name in targets if not targets[name]]


COMMANDS = {"format": "type", "parts": "ls", "relationships": "rels --all", "properties": "props",
            "externals": "external", "signatures": "verify", "findings": "check"}


def tool(arguments, **options):
    return subprocess.run([OPCTOOL, *map(str, arguments)], capture_output=True, text=True, **options)


def test_dictionaries_have_the_shapes_of_the_tool(tmp_path):
    broken = make_document(items={"word/_rels/document.xml.rels": "<x", ".DS_Store": "x"})
    (tmp_path / "core.docx").write_bytes(with_properties())
    (tmp_path / "odd.docx").write_bytes(broken)
    (tmp_path / "unfinished.docx").write_bytes(without_last_block(make_document(), "notes.xml"))
    (tmp_path / "no.docx").write_bytes(b"%PDF-1.4 x")
    for name in "letter.docx", "table.xlsx":
        (tmp_path / name).write_bytes((OFFICE / name).read_bytes())
    (tmp_path / "signed.docx").write_bytes((OFFICE / "letter.docx").read_bytes())
    tool(["keygen", "k"], cwd=tmp_path, check=True)
    tool(["sign", "signed.docx", "--key", "k.key"], cwd=tmp_path, check=True)
    paths = sorted(path for path in tmp_path.iterdir() if path.suffix in (".docx", ".xlsx"))
    for path, result in zip(paths, opc.scan(paths, what=ALL)):
        found = result.to_dict()
        assert found["file"] == str(path)
        for aspect, command in COMMANDS.items():
            name, *rest = command.split()
            told = json.loads(tool([name, path, *rest, "--json=2"]).stdout)
            assert found.get(aspect) == told.get("result"), (path.name, aspect)
            if "error" in told and name in ("ls", "rels"):
                assert found["error"] == told["error"]


def test_order_window_and_errors(tmp_path):
    names = ["a.docx", "none", "b\udcff.docx", "text"]
    for name in names[::2]:
        (tmp_path / name).write_bytes(make_document())
    (tmp_path / "text").write_text("no package")
    for jobs, window in (1, 1), (4, 3), (4, 64):
        taken, given = 0, 0

        def paths():
            nonlocal taken
            for name in itertools.islice(itertools.cycle(names), 100):
                taken += 1
                assert taken - given <= window
                yield tmp_path / name

        for result in opc.scan(paths(), jobs=jobs, window=window):
            name = names[given % 4]
            given += 1
            assert result.path == str(tmp_path / name)
            assert (result.error is None) == name.endswith(".docx")
            if name == "none":
                assert isinstance(result.error, opc.PackageNotFound) and isinstance(result.error, KeyError)
        assert (taken, given) == (100, 100)


def test_what_the_paths_raise_comes_behind_their_results(tmp_path):
    (tmp_path / "a").write_bytes(make_document())

    def paths():
        yield from [tmp_path / "a"] * 5
        raise ZeroDivisionError

    results = opc.scan(paths())
    for _ in range(5):
        assert next(results).error is None
    with pytest.raises(ZeroDivisionError):
        next(results)
    with pytest.raises(StopIteration):
        next(results)
    with pytest.raises(TypeError):
        list(opc.scan([3]))


@pytest.mark.parametrize("arguments", [{"what": ["x"]}, {"profiles": ["x"]}, {"jobs": 0}])
def test_wrong_arguments(arguments):
    with pytest.raises(ValueError):
        opc.scan([], **arguments)


def test_a_scan_may_end_early_or_be_used_wrongly():
    endless = (("x", make_document()) for _ in itertools.count())
    with opc.scan(endless) as results:
        next(results)
    with pytest.raises(StopIteration):
        next(results)
    assert next(opc.scan(iter([("x", make_document())]))).error is None  # and is let go
    for wrong, error in (("a\0b", ValueError), (("a",), TypeError), (5, TypeError)):
        with pytest.raises(error):
            next(opc.scan([wrong]))

    def reentrant():
        with pytest.raises(ValueError, match="running already"):
            next(results)
        with pytest.raises(ValueError, match="running"):
            results.close()
        yield "x", make_document()

    results = opc.scan(reentrant())
    assert next(results).error is None


@pytest.mark.parametrize("program", [
    "threading.Thread(target=lambda: sum(1 for _ in opc.scan(endless)), daemon=True).start(); time.sleep(0.2)",
    "threading.Thread(target=lambda: [opc.open(FILE).close() for _ in endless], daemon=True).start(); time.sleep(0.2)",
    "results = opc.scan(endless); next(results)",
    "results = opc.scan(endless, window=4); next(results); child = os.fork(); child and os.waitpid(child, 0)",
])
def test_the_interpreter_ends_whatever_runs(program):
    start = f"import io, itertools, os, threading, time; import opcmodel as opc; FILE = {str(OFFICE / 'letter.docx')!r}"
    done = subprocess.run([sys.executable, "-c", f"{start}; endless = itertools.repeat(FILE); {program}; print('ends')"],
                          capture_output=True, text=True, timeout=120)
    assert (done.returncode, done.stderr, "ends" in done.stdout) == (0, "", True)


def test_other_threads_run_while_it_waits():
    slow = make_document(items={"word/document.xml": "<a>" + "<b/>" * 2_000_000 + "</a>"})
    count, ended = 0, threading.Event()

    def work():
        nonlocal count
        while not ended.wait(0.001):
            count += 1

    thread = threading.Thread(target=work)
    thread.start()
    results = opc.scan([("x", slow)], what={"findings"}, profiles=PROFILES)
    before = count
    next(results)
    assert count - before > 5
    ended.set()
    thread.join()
