"""The summary of an audit as one HTML page, without script and without anything from elsewhere."""
from __future__ import annotations

import html
import os
import unicodedata
from typing import Any, Iterable, Iterator

from .. import _opcmodel
from .database import Database

_MOST_ROWS = 200  # of a table
_LONGEST_WORD = 30  # that isn't broken, in characters

_HEAD = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>Audit of packages</title>
<style>
:root { color-scheme: light dark; --line: #8884; --soft: #8881 }
body { font: 15px/1.45 system-ui, sans-serif; margin: 2rem auto; max-width: 75rem; padding: 0 1rem }
h1 { font-size: 1.6rem } h2 { font-size: 1.2rem; margin-top: 2.2rem }
table { border-collapse: collapse; width: 100% }
th, td { text-align: left; vertical-align: top; padding: .3rem .7rem; border-bottom: 1px solid var(--line) }
td.long { overflow-wrap: anywhere; min-width: 12rem } .table { overflow-x: auto; margin: 1rem 0 } th { background: var(--soft); white-space: nowrap }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap }
.tiles { display: flex; flex-wrap: wrap; gap: 1rem; padding: 0; list-style: none }
.tiles li { border: 1px solid var(--line); border-radius: .5rem; padding: .6rem 1rem; min-width: 8rem }
.tiles b { display: block; font-size: 1.5rem; font-variant-numeric: tabular-nums }
.error, .broken, .unreadable { color: #c62828 } .warning { color: #b26a00 } .holds { color: #2e7d32 }
.more { color: #888 } summary { cursor: pointer }
@media (prefers-color-scheme: dark) { .error, .broken, .unreadable { color: #ff8a80 } .warning { color: #ffcc80 }
  .holds { color: #a5d6a7 } }
@media print { body { font-size: 11px; margin: 0 } .table { overflow-x: visible } td.long { min-width: 0 } }
</style></head><body>
"""


def _text(value: object) -> str:
    """Escaped, and without characters that are invisible or turn the direction of text."""
    if isinstance(value, bytes):
        value = os.fsdecode(value)
    if isinstance(value, int):
        return f"{value:,}"
    text = "" if value is None else str(value)
    return html.escape("".join("\N{REPLACEMENT CHARACTER}" if unicodedata.category(c)[0] == "C" else c for c in text))


def _table(headings: tuple[str, ...], rows: Iterable[tuple[Any, ...]], classed: int | None = None) -> Iterator[str]:
    """A table, in which columns of numbers stand right. `classed` is the column whose word gives a cell its colour."""
    rows = list(rows)
    if not rows:
        yield "<p>None.</p>\n"
        return
    numbers = [all(isinstance(row[at], int) for row in rows) for at in range(len(headings))]
    yield '<div class="table"><table><tr>'
    for heading, number in zip(headings, numbers):
        yield f'<th{" class=number" if number else ""}>{_text(heading)}</th>'
    yield "</tr>\n"
    for row in rows[:_MOST_ROWS]:
        yield "<tr>"
        for at, value in enumerate(row):
            text = _text(value)
            is_long = any(len(word) > _LONGEST_WORD for word in text.split())
            name = "number" if numbers[at] else text if at == classed else "long" if is_long else ""
            yield f'<td class="{name}">{text}</td>' if name else f"<td>{text}</td>"
        yield "</tr>\n"
    yield "</table></div>\n"
    if len(rows) > _MOST_ROWS:
        yield '<p class="more">There are more; the database has all.</p>\n'


class _Page:
    def __init__(self, database: Database) -> None:
        self._query = database.connection.execute

    def _number(self, query: str) -> int:
        return int(self._query(query).fetchone()[0] or 0)

    def tiles(self) -> Iterator[str]:
        there = "FROM files WHERE vanished_at IS NULL"
        yield '<ul class="tiles">'
        for label, query in (
                ("files", f"SELECT count(*) {there}"),
                ("bytes", f"SELECT sum(size) {there}"),
                ("with an error", f"SELECT count(*) {there} AND error_class IS NOT NULL"),
                ("load from outside", "SELECT count(DISTINCT file_id) FROM current_externals WHERE effect = 'loads'"),
                ("have macros", f"SELECT count(*) {there} AND has_macros"),
                ("are signed", f"SELECT count(*) {there} AND signature_state != 'unsigned'"),
                ("have vanished", "SELECT count(*) FROM files WHERE vanished_at IS NOT NULL")):
            yield f"<li><b>{self._number(query):,}</b>{label}</li>"
        yield "</ul>\n"

    def formats(self) -> Iterator[str]:
        yield "<h2>Formats</h2>\n"
        yield from _table(("Format", "Description", "Files", "Bytes"), self._query(
            "SELECT format, min(description), count(*), coalesce(sum(size), 0) FROM files"
            " WHERE vanished_at IS NULL AND format IS NOT NULL GROUP BY format ORDER BY count(*) DESC, format"))

    def findings(self) -> Iterator[str]:
        yield "<h2>Findings by rule</h2>\n"
        titles = {rule[0]: rule[1] for rule in _opcmodel.list_rules()}
        rows = self._query(
            "SELECT rule, severity, count(*), count(DISTINCT file_id), min(path) FROM findings JOIN files ON file_id = files.id"
            " WHERE vanished_at IS NULL GROUP BY rule, severity"
            " ORDER BY severity = 'error' DESC, severity = 'warning' DESC, count(DISTINCT file_id) DESC, rule")
        yield from _table(("Severity", "Rule", "About", "Findings", "Files", "For example"),
                          ((severity, rule, titles.get(rule, ""), count, files, example)
                           for rule, severity, count, files, example in rows), classed=0)
        yield "<p><code>opctool explain RULE</code> tells more.</p>\n"

    def externals(self) -> Iterator[str]:
        for effect, title in (("loads", "Loaded from outside when a file is opened"), ("click", "Where links lead")):
            yield f"<h2>{title}</h2>\n"
            yield from _table(("From", "Place", "Targets", "Files", "For example"), self._query(
                "SELECT coalesce(host, '(no host)'), place, count(*), count(DISTINCT file_id), min(target)"
                " FROM current_externals WHERE effect = ? GROUP BY host, place"
                " ORDER BY count(DISTINCT file_id) DESC, host LIMIT ?", (effect, _MOST_ROWS + 1)))

    def signatures(self) -> Iterator[str]:
        yield "<h2>Signatures</h2>\n"
        yield from _table(("State", "Files"), self._query(
            "SELECT signature_state, count(*) FROM files WHERE vanished_at IS NULL AND signature_state IS NOT NULL"
            " GROUP BY signature_state ORDER BY count(*) DESC"), classed=0)
        yield from _table(("Signer", "Profile", "Cryptography", "Coverage", "Trust", "Signatures", "Files"), self._query(
            "SELECT coalesce(signer, '(no certificate)'), profile, cryptography, coverage, trust, count(*),"
            " count(DISTINCT file_id) FROM signatures JOIN files ON file_id = files.id WHERE vanished_at IS NULL"
            " GROUP BY signer, profile, cryptography, coverage, trust ORDER BY count(*) DESC LIMIT ?", (_MOST_ROWS + 1,)))

    def failures(self) -> Iterator[str]:
        yield "<h2>Errors</h2>\n"
        yield from _table(("Error", "Kind", "Files"), self._query(
            "SELECT error_class, error_kind, count(*) FROM files WHERE vanished_at IS NULL AND error_class IS NOT NULL"
            " GROUP BY error_class, error_kind ORDER BY count(*) DESC"))
        yield "<details><summary>Files</summary>\n"
        yield from _table(("File", "Format", "Error"), self._query(
            "SELECT path, format, error_class || ': ' || error_message FROM files"
            " WHERE vanished_at IS NULL AND error_class IS NOT NULL ORDER BY path LIMIT ?", (_MOST_ROWS + 1,)))
        yield "</details>\n"

    def write(self) -> Iterator[str]:
        self._query("CREATE TEMP VIEW IF NOT EXISTS current_externals AS SELECT externals.* FROM externals"
                    " JOIN files ON file_id = files.id WHERE vanished_at IS NULL")
        yield _HEAD
        yield "<h1>Audit of packages</h1>\n"
        first, last = self._query("SELECT min(scanned_at), max(scanned_at) FROM files").fetchone()
        yield f"<p>Scanned between {_text(first)} and {_text(last)}.</p>\n" if first else ""
        for part in self.tiles, self.formats, self.findings, self.externals, self.signatures, self.failures:
            yield from part()
        yield "</body></html>\n"


def write_report(database: Database, path: str) -> None:
    """Writes the summary to a file, which is the old or the complete new one."""
    new = os.fspath(path) + ".new"
    with open(new, "w", encoding="utf-8", errors="replace") as page:
        page.writelines(_Page(database).write())
    os.replace(new, path)
