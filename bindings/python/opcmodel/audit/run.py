"""Running an audit with the threads of this machine."""
from __future__ import annotations

import os
from collections import deque
from typing import Collection, Iterable, Iterator

from .._scanning import ASPECTS, scan
from .database import Database, FoundFile
from .progress import Progress
from .rows import rows_of
from .sources import find_files


def bits_of(what: Iterable[str]) -> int:
    return sum(ASPECTS[name] for name in set(what))


def files_to_scan(paths: Iterable[str], database: Database, what: Collection[str], extensions: Collection[str] | None,
                  again: bool, progress: Progress) -> Iterator[FoundFile]:
    """Those that the database doesn't know as they are."""
    def report(path: str, reason: str) -> None:
        progress.problem(f"{path}: {reason}")
        if os.path.lexists(path):
            database.note_unread(path)

    for path in paths:
        for file in find_files(path, extensions, report):
            if database.must_scan(file, bits_of(what)) or again:
                yield file
            else:
                progress.add(unchanged=True)


def audit_files(files: Iterable[FoundFile], database: Database, what: Collection[str], profiles: Collection[str],
                jobs: int | None, progress: Progress) -> None:
    """Scans the files, and writes what is found."""
    pending: deque[FoundFile] = deque()

    def paths() -> Iterator[str]:
        for file in files:
            pending.append(file)
            yield file.path

    with scan(paths(), jobs=jobs, what=what, profiles=profiles) as results:
        for result in results:
            rows = rows_of(result)
            database.write(pending.popleft(), bits_of(what), rows)
            progress.add(failed=rows.has_failed)
