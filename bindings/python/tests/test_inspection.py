"""Checking, comparing, mending and editing packages."""
import io
import json
import os
import pathlib
import subprocess

import pytest

import opcmodel as opc
from packages import HYPERLINK, OFFICE_DOCUMENT, RELS, make_document, relationship, without_last_block

DANGLING = make_document(items={
    "word/_rels/document.xml.rels": RELS.format(relationship("rId5", "urn:example:x", "NULL"))})
OPCTOOL = os.environ.get("OPCTOOL")


@pytest.mark.parametrize("content", [DANGLING, without_last_block(make_document(), "notes.xml")])
def test_the_report_is_that_of_the_tool(tmp_path, content):
    path = tmp_path / "a.docx"
    path.write_bytes(content)
    report = opc.check(path, profile="all")
    told = json.loads(subprocess.run([OPCTOOL, "check", "--json=2", "--profile", "all", path], capture_output=True, text=True,
                                     check=False).stdout)["result"]
    assert json.loads(report.to_json()) == told
    assert [(one.rule, one.severity, one.relationship) for one in report.findings] == [
        (one["rule"], one["severity"], one["relationship"]) for one in told["findings"]]
    assert report.format == "docx" and report.ok is not any(one["severity"] == "error" for one in told["findings"])
    assert '"uri": "a.docx"' in json.dumps(json.loads(report.to_sarif(tmp_path)))
    assert "<html" in report.to_html() and report.findings[0].rule in report.to_text()


def test_every_source_can_be_inspected(tmp_path):
    content = make_document()
    path = tmp_path / "a.docx"
    path.write_bytes(content)
    with opc.open(path) as package, opc.open(io.BytesIO(content)) as other, opc.open(content, "r+") as changed:
        sources = [path, str(path), content, io.BytesIO(content), package, other, changed]
        assert len({opc.content_hash(source).sha256 for source in sources}) == 1
        assert {opc.detect(source).name for source in sources} == {"docx"}
        assert {len(opc.check(source, rules=["M1.2"]).findings) for source in sources} == {0}
        assert package.format == "docx" and other.main_part.name == "/word/document.xml"
        changed["/notes.xml"].write(b"<more/>")
        assert not opc.diff(changed, content)
        changed.save()
        assert [one.name for one in opc.diff(content, changed).parts.changed] == ["/notes.xml"]
        assert not opc.diff(changed, changed) and opc.diff_part(changed, changed, "/notes.xml") == []
    assert opc.detect(b"%PDF-1.7").is_package is False


def test_differences():
    before = make_document(items={"image.xml": "<same/>", "gone.xml": "<gone/>"})
    now = make_document(items={"moved.xml": "<same/>", "new.xml": "<new/>", "notes.xml": "<notes><b/></notes>",
                               "word/_rels/document.xml.rels": RELS.format(relationship("rId2", "urn:example:note", "../new.xml"))})
    found = opc.diff(before, now)
    assert [[one.name for one in kind] for kind in (found.parts.added, found.parts.removed, found.parts.moved,
                                                    found.parts.changed)] == [
        ["/new.xml"], ["/gone.xml"], ["/moved.xml"], ["/notes.xml"]]
    assert found.parts.moved[0].before.name == "/image.xml"
    assert [(one.before and one.before.target, one.now and one.now.target) for one in found.relationships] == [
        ("https://example.com/", None), ("../notes.xml#second", "../new.xml")]
    assert {line[0] for hunk in opc.diff_part(before, now, "/notes.xml") for line in hunk.lines} >= {"-", "+"}
    assert opc.diff_part(before, before, "/notes.xml") == []
    assert opc.diff(before, before) == opc.diff(now, now) and not opc.diff(before, before)


def test_mending(tmp_path):
    broken = make_document(items={"_rels/.rels": RELS.format(
        relationship("rId1", OFFICE_DOCUMENT, "word/document.xml") + relationship("rId1", "urn:example:twin", "notes.xml"))})
    assert not opc.check(broken).ok
    mended = opc.repaired(broken)
    assert opc.check(mended).ok
    with opc.open(io.BytesIO(mended), strict=True) as package:
        assert package.main_part.name == "/word/document.xml"
    path, target = tmp_path / "a.docx", io.BytesIO()
    path.write_bytes(broken)
    told = opc.repair(path, target)
    assert told.mended and path.read_bytes() == broken and target.getvalue() == mended
    assert opc.repair(path) == told and path.read_bytes() == mended
    with pytest.raises(TypeError):
        opc.repair(broken)


def test_edits():
    with opc.open(make_document(items={"orphan.xml": "<orphan/>"}), "r+") as package:
        assert package.move("/notes.xml", "/word/notes.xml").read() == b"<notes/>"
        rels = package["/word/document.xml"].rels
        assert rels["rId2"].resolved == "/word/notes.xml#second"
        assert package.gc() == 1 and "/orphan.xml" not in package
        package["/word/notes.xml"].content_type = "text/xml"
        assert rels.retarget("rId1", "https://example.org/", external=True).target == "https://example.org/"
        package.apply({"opctool": {"job": 1}, "steps": [{"do": "rm", "part": "/word/notes.xml", "incoming": True}]})
        assert {change.kind for change in package.changes[-2:]} == {"relationship-removed", "part-removed"}
        assert list(rels) == ["rId1"] and package.broken_signatures == []
        with pytest.raises(opc.InvalidJob):
            package.apply("{}")
        del rels["rId1"]
        package.save()
        assert package.changes == []
        assert not package["/word/document.xml"].rels


def test_the_result_of_a_job_is_checked(tmp_path):
    """A job may make no new error, and its own checks count; the file stays as it was."""
    path = tmp_path / "a.docx"
    dangling = {"opctool": {"job": 1}, "steps": [{"do": "rm", "part": "/notes.xml"}]}
    asked = {"opctool": {"job": 1}, "steps": [{"do": "rm", "part": "/notes.xml"}, {"do": "check", "failOn": "info"}]}
    for source, job, options, refused in (
        (path, asked, {}, True), (io.BytesIO(), asked, {}, True), (path, dangling, {"check": False}, False)):
        content = make_document()
        path.write_bytes(content) if source is path else source.write(content)
        package = opc.open(source, "r+")
        package.apply(job, **options)
        for save in (package.save, lambda: package.save(tmp_path / "b.docx")):
            if not refused:
                save()
                continue
            with pytest.raises(opc.InvalidResult):
                save()
            package.close()
            assert (path.read_bytes() if source is path else source.getvalue()) == content
            package = opc.open(source, "r+")
            package.apply(job, **options)
        package.close()


def test_rules():
    assert {"M1.2", "SEC-46"} <= {rule.id for rule in opc.rules()}
    for wrong in ({"profile": "none"}, {"rules": ["X-1"]}, {"without": ["X-1"]}):
        with pytest.raises(ValueError):
            opc.check(make_document(), **wrong)
