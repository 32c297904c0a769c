"""Auditing folders of files."""
import os
import signal
import sqlite3
import subprocess
import sys
import time

import pytest

from opcmodel.audit import Database
from packages import RELS, make_document, relationship

LOADS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/image"
LOADING = make_document(items={"word/_rels/document.xml.rels": RELS.format(
    relationship("r1", LOADS, "https://Images.example/a.png", "External")
    + relationship("r2", LOADS, "\\\\server\\share\\b.png", "External")
    + relationship("r3", "urn:x", "gone.xml"))})


def audit(folder, *arguments, setup="pass", wait=True):
    script = f"import sys; from opcmodel.audit import database, __main__ as main; {setup}; sys.exit(main.main())"
    process = subprocess.Popen([sys.executable, "-c", script, "-o", str(folder / "audit.sqlite"), *map(str, arguments)],
                               stderr=subprocess.PIPE, text=True)
    if not wait:
        return process
    errors = process.communicate()[1]
    return process.returncode, errors


def query(folder, text):
    with sqlite3.connect(folder / "audit.sqlite") as connection:
        return connection.execute(text).fetchall()


def dump(folder):
    """All tables, without what differs from run to run."""
    files = "SELECT path, size, mtime_ns, aspects, vanished_at, format, error_class, signature_state FROM files ORDER BY path"
    rows = [query(folder, files)]
    for table in "parts", "relationships", "properties", "externals", "signatures", "findings":
        columns = [name for _, name, *_ in query(folder, f"PRAGMA table_info({table})")]
        chosen = ", ".join(f"{table}.{name}" for name in columns if name != "file_id")
        rows.append(query(folder, f"SELECT path, {chosen} FROM {table} JOIN files ON file_id = files.id"
                                  f" ORDER BY path, {table}.rowid"))
    return rows


@pytest.fixture
def archive(tmp_path):
    folder = tmp_path / "archive"
    (folder / "deep").mkdir(parents=True)
    (folder / "a.docx").write_bytes(make_document())
    (folder / "deep" / "loads.DOCX").write_bytes(LOADING)
    (folder / "none.xlsx").write_bytes(b"%PDF-1.4 x")
    (folder / "notes.txt").write_text("not looked at")
    return folder


def test_tables(tmp_path, archive):
    assert audit(tmp_path, archive)[0] == 0
    assert query(tmp_path, "SELECT path, format, error_class, signature_state FROM files ORDER BY path") == [
        (str(archive / "a.docx"), "docx", None, "unsigned"),
        (str(archive / "deep" / "loads.DOCX"), "docx", None, "unsigned"),
        (str(archive / "none.xlsx"), "pdf", "PackageOpenFailed", None)]
    assert query(tmp_path, "SELECT effect, place, host, target FROM externals ORDER BY effect, host") == [
        ("click", "web", "example.com", "https://example.com/"),
        ("loads", "web", "images.example", "https://Images.example/a.png"),
        ("loads", "share", "server", "\\\\server\\share\\b.png")]
    assert query(tmp_path, "SELECT id, resolved, target_exists FROM relationships WHERE target_exists = 0") == [
        ("r3", "/word/gone.xml", 0)]
    assert query(tmp_path, "SELECT count(*) FROM parts JOIN files ON file_id = files.id WHERE path LIKE '%a.docx'") == [(2,)]
    assert query(tmp_path, "SELECT count(*) > 0 FROM findings WHERE severity = 'error'") == [(1,)]


def scanned(outcome):
    status, errors = outcome
    assert status == 0, errors
    return int(errors.split(": ", 1)[1].split(" ")[0].replace(",", ""))


def test_a_further_run_does_what_is_new(tmp_path, archive):
    assert scanned(audit(tmp_path, archive, "--what", "format,parts")) == 3
    assert scanned(audit(tmp_path, archive, "--what", "parts")) == 0
    assert scanned(audit(tmp_path, archive)) == 3  # asks for more
    before = dump(tmp_path)
    assert scanned(audit(tmp_path, archive)) == 0
    assert scanned(audit(tmp_path, archive, "--again")) == 3
    assert dump(tmp_path) == before
    os.utime(archive / "a.docx", ns=(1, 1))
    (archive / "deep" / "loads.DOCX").rename(tmp_path / "elsewhere")
    (archive / "deep" / "new.docx").write_bytes(make_document(items={"notes.xml": None}))
    (archive / os.fsdecode(b"b\xff.docx")).write_bytes(make_document())
    assert scanned(audit(tmp_path, archive)) == 3
    assert query(tmp_path, "SELECT count(*) FROM files WHERE typeof(path) = 'blob'") == [(1,)]
    vanished = "SELECT path FROM files WHERE vanished_at IS NOT NULL"
    assert query(tmp_path, vanished) == [(str(archive / "deep" / "loads.DOCX"),)]
    (tmp_path / "elsewhere").rename(archive / "deep" / "loads.DOCX")
    assert scanned(audit(tmp_path, archive / "a.docx")) == 0  # says nothing about others
    assert scanned(audit(tmp_path, archive)) == 1
    assert query(tmp_path, vanished) == []
    assert audit(tmp_path, tmp_path / "nothing")[0] == 3


def test_what_cannot_be_listed_has_not_vanished(tmp_path, archive):
    audit(tmp_path, archive)
    with Database(tmp_path / "audit.sqlite") as database:
        database.note_unread(str(archive / "deep"))
        assert database.mark_vanished([str(archive)]) == 2
    assert query(tmp_path, "SELECT path FROM files WHERE vanished_at IS NULL") == [(str(archive / "deep" / "loads.DOCX"),)]


def test_a_killed_run_goes_on(tmp_path):
    archive, whole, killed = (tmp_path / name for name in ("archive", "whole", "killed"))
    for folder in archive, whole, killed:
        folder.mkdir()
    for number in range(400):
        (archive / f"{number}.docx").write_bytes(LOADING if number % 3 else b"no package")
    assert scanned(audit(whole, archive)) == 400
    known = 0
    while known < 300:
        process = audit(killed, archive, "-j", "1", setup="database._COMMIT_EVERY = 0", wait=False)
        while process.poll() is None:
            time.sleep(0.005)
            if (killed / "audit.sqlite").exists() and query(killed, "SELECT count(*) FROM sqlite_schema") != [(0,)]:
                (done,), = query(killed, "SELECT count(*) FROM files")
                if done >= known + 50:
                    process.send_signal(signal.SIGKILL)
        process.communicate()
        assert query(killed, "PRAGMA integrity_check") == [("ok",)]
        (now,), = query(killed, "SELECT count(*) FROM files")
        assert now > known
        known = now
    assert scanned(audit(killed, archive)) == 400 - known
    assert dump(killed) == dump(whole)


def test_the_report_is_safe(tmp_path, archive):
    evil = "&lt;script&gt;alert(1)&lt;/script&gt;\u202e"
    (archive / "<script>x.docx").write_bytes(make_document(items={"word/_rels/document.xml.rels": RELS.format(
        relationship("r", LOADS, f"https://evil.example/{evil}", "External"))}))
    (archive / "<b>.xlsx").write_bytes(b"no")
    page = tmp_path / "out.html"
    assert audit(tmp_path, archive, "--report", page, "-q") == (0, "")
    text = page.read_text("utf-8")
    assert "<script" not in text and "<b>." not in text and "\u202e" not in text and "http-equiv" in text
    for told in "https://evil.example/&lt;script&gt;", "&lt;b&gt;.xlsx", "images.example", "server", "PackageOpenFailed":
        assert told in text, told
    assert audit(tmp_path, "--report", page, "-q")[0] == 0  # of what there is


@pytest.mark.parametrize("arguments, status", [
    ([], 2), (["--report", "x"], 2), ([".", "--what", "x"], 2), ([".", "-j", "0"], 2), ([".", "-o", "/nowhere/x"], 3),
    ([".", "-o", "other.sqlite"], 3), ([".", "-o", "text"], 3)])
def test_wrong_usage(tmp_path, monkeypatch, arguments, status):
    monkeypatch.chdir(tmp_path)
    with sqlite3.connect("other.sqlite") as other:
        other.execute("CREATE TABLE t (x)")
    (tmp_path / "text").write_text("no database at all, however long it is" * 100)
    outcome = audit(tmp_path, *arguments)
    assert outcome[0] == status and "Traceback" not in outcome[1], outcome
