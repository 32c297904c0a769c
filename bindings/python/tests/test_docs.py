"""The examples of docs/python.md run, in their order, in a folder with the files that they name."""
import pathlib
import re
import shlex
import sqlite3
import subprocess
import sys
import warnings

import opcmodel as opc
from packages import HYPERLINK, OFFICE_DOCUMENT, RELS, make_document, relationship

DOCS = pathlib.Path(__file__).resolve().parents[3] / "docs"
PAGE = DOCS / "python.md"


def test_examples(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    pathlib.Path("report.docx").write_bytes(make_document())
    pathlib.Path("odd.docx").write_bytes(make_document(items={".DS_Store": "x"}))
    pathlib.Path("broken.docx").write_bytes(make_document(items={"_rels/.rels": RELS.format(
        relationship("rId1", OFFICE_DOCUMENT, "word/document.xml") + relationship("rId1", HYPERLINK, "notes.xml"))}))
    subprocess.run(["openssl", "req", "-x509", "-nodes", "-newkey", "rsa:2048", "-subj", "/CN=a", "-keyout", "signer.key",
                    "-addext", "keyUsage=critical,digitalSignature", "-out", "signer.pem"], check=True, capture_output=True)
    names = {"opc": opc}
    blocks = re.findall(r"^```python\n(.*?)^```", PAGE.read_text(encoding="utf-8"), re.M | re.S)
    assert len(blocks) > 8
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        for block in blocks:
            exec(compile(block, str(PAGE), "exec"), names)
    assert opc.check(names["mended"].getvalue()).ok and names["answer"].yes
    assert names["caught"] and pathlib.Path("copy.xml").read_bytes().startswith(b"<w:document")


def test_commands_of_the_audit(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "documents").mkdir()
    (tmp_path / "documents/report.docx").write_bytes(make_document(items={"word/_rels/document.xml.rels": RELS.format(
        relationship("rId1", HYPERLINK.replace("hyperlink", "attachedTemplate"), "https://example.com/a.dotx", "External"))}))
    audit, query, _ = re.findall(r"^```sh\n(.*?)^```", (DOCS / "audit.md").read_text(encoding="utf-8"), re.M | re.S)
    program, *arguments = shlex.split(audit.replace("/srv/documents", "documents"))
    assert program == "python3"
    subprocess.run([sys.executable, *arguments], check=True, capture_output=True)
    program, database, question = shlex.split(query)
    assert program == "sqlite3" and sqlite3.connect(database).execute(question).fetchall() == [("example.com", 1)]
    assert "example.com" in pathlib.Path("audit.html").read_text(encoding="utf-8")


def test_every_public_name_has_a_help_text():
    assert [name for name in vars(opc) if not name.startswith("_") and not isinstance(getattr(opc, name), type(opc))
            and not getattr(opc, name).__doc__] == []
