"""The database of an audit."""
from __future__ import annotations

import errno
import os
import sqlite3
import time
from importlib import resources
from types import TracebackType
from typing import Iterable, NamedTuple

from .rows import FILE_COLUMNS, TABLES, FileRows

SCHEMA_VERSION = 1
_APPLICATION_ID = 0x4F504341
_COMMIT_EVERY = 1.0  # seconds: a run that is killed loses the work since then

#: What may be gone at the next run although the file hasn't changed.
_PASSING = (errno.EACCES, errno.EPERM, errno.EIO, errno.EMFILE, errno.ENFILE, errno.ENOMEM, errno.ESTALE, errno.ETIMEDOUT)


class FoundFile(NamedTuple):
    path: str
    size: int | None
    mtime_ns: int | None


def _now() -> str:
    return time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())


def _key(path: str) -> str | bytes:
    """A path as the database holds it: SQLite takes no name that isn't UTF-8 for a text."""
    try:
        path.encode()
    except UnicodeEncodeError:
        return os.fsencode(path)
    return path


_UNDER = "(path = ? OR path >= ? AND path < ?)"


def _range(path: str) -> tuple[str | bytes, ...]:
    """A path, and between what all paths under it lie: for `_UNDER`."""
    folder = path.rstrip("/")
    return _key(path), _key(folder + "/"), _key(folder + chr(ord("/") + 1))


class Database:
    """Is written by one process at a time. What is written about a file is there as a whole or not at all, also when the
    process or the machine dies."""

    def __init__(self, path: str | os.PathLike[str]) -> None:
        self.connection = sqlite3.connect(path, timeout=30, isolation_level=None)
        try:
            self._open()
        except BaseException:
            self.connection.close()
            raise
        self._last_commit = time.monotonic()

    def _open(self) -> None:
        self.connection.execute("PRAGMA journal_mode = WAL")
        self.connection.execute("PRAGMA synchronous = NORMAL")
        (version,), = self.connection.execute("PRAGMA user_version")
        (application,), = self.connection.execute("PRAGMA application_id")
        (tables,), = self.connection.execute("SELECT count(*) FROM sqlite_schema")
        if tables == 0:
            script = (resources.files(__package__) / "schema.sql").read_text("utf-8")
            self.connection.executescript(f"BEGIN; {script} PRAGMA application_id = {_APPLICATION_ID};"
                                          f" PRAGMA user_version = {SCHEMA_VERSION}; COMMIT;")
        elif application != _APPLICATION_ID:
            raise ValueError("the file is a database of another kind")
        elif version != SCHEMA_VERSION:
            raise ValueError(f"the database has version {version} of the schema; this program writes {SCHEMA_VERSION}")
        self.connection.execute("CREATE TEMP TABLE seen (path PRIMARY KEY) WITHOUT ROWID")

    def must_scan(self, file: FoundFile, aspects: int) -> bool:
        """Whether the file is new or has changed, or was asked for less. Notes that it is there."""
        self._begin()
        key = _key(file.path)
        self.connection.execute("INSERT OR IGNORE INTO seen VALUES (?)", (key,))
        known = self.connection.execute(
            "SELECT size, mtime_ns, aspects, vanished_at, error_code FROM files WHERE path = ?", (key,)).fetchone()
        if known is None:
            return True
        size, mtime_ns, asked, vanished_at, error_code = known
        return ((size, mtime_ns) != (file.size, file.mtime_ns) or mtime_ns is None or aspects & ~asked != 0
                or vanished_at is not None or error_code in _PASSING)

    def write(self, file: FoundFile, aspects: int, rows: FileRows) -> None:
        """Replaces what is known about the file."""
        self._begin()
        key = _key(file.path)
        known = self.connection.execute("SELECT id FROM files WHERE path = ?", (key,)).fetchone()
        values = (file.size, file.mtime_ns, aspects, _now(), None, *rows.file)
        columns = ("size", "mtime_ns", "aspects", "scanned_at", "vanished_at", *FILE_COLUMNS)
        if known is None:
            marks = ", ".join("?" * (len(columns) + 1))
            file_id = self.connection.execute(f"INSERT INTO files (path, {', '.join(columns)}) VALUES ({marks})",
                                              (key, *values)).lastrowid
        else:
            file_id, = known
            self.connection.execute(f"UPDATE files SET {', '.join(f'{column} = ?' for column in columns)} WHERE id = ?",
                                    (*values, file_id))
            for table in TABLES:
                self.connection.execute(f"DELETE FROM {table} WHERE file_id = ?", (file_id,))
        for table, of_table in rows.tables.items():
            if of_table:
                marks = ", ".join("?" * (len(TABLES[table]) + 1))
                self.connection.executemany(
                    f"INSERT INTO {table} (file_id, {', '.join(TABLES[table])}) VALUES ({marks})",
                    [(file_id, *row) for row in of_table])
        if time.monotonic() - self._last_commit > _COMMIT_EVERY:
            self.commit()

    def note_unread(self, path: str) -> None:
        """What is known under a folder that can't be listed may still be there."""
        self._begin()
        self.connection.execute(f"INSERT OR IGNORE INTO seen SELECT path FROM files WHERE {_UNDER}", _range(path))

    def mark_vanished(self, roots: Iterable[str]) -> int:
        """Marks the files of these names, and in these folders, that weren't seen since the database was opened. Gives how
        many it has marked."""
        self._begin()
        marked = 0
        for root in roots:
            marked += self.connection.execute(
                f"UPDATE files SET vanished_at = ? WHERE vanished_at IS NULL AND {_UNDER}"
                " AND path NOT IN (SELECT path FROM seen)", (_now(), *_range(root))).rowcount
        self.commit()
        return marked

    def _begin(self) -> None:
        if not self.connection.in_transaction:
            self.connection.execute("BEGIN IMMEDIATE")

    def commit(self) -> None:
        if self.connection.in_transaction:
            self.connection.execute("COMMIT")
        self._last_commit = time.monotonic()

    def close(self) -> None:
        """Keeps what was written."""
        self.commit()
        self.connection.close()

    def __enter__(self) -> Database:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()
