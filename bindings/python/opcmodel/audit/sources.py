"""Finding the files of an audit."""
from __future__ import annotations

import errno
import os
from typing import Callable, Collection, Iterator

from .database import FoundFile

Report = Callable[[str, str], None]


def _is_wanted(name: str, extensions: Collection[str] | None) -> bool:
    return extensions is None or name.rpartition(".")[2].lower() in extensions and "." in name


def find_files(path: str, extensions: Collection[str] | None, report: Report) -> Iterator[FoundFile]:
    """The file, or those in the folder and in the folders in it, sorted by name. Links to folders aren't followed.

    extensions  of the files in folders that are wanted, in lower case; None: all
    report      is called with a path that isn't there or can't be looked at, and the reason
    """
    path = os.path.abspath(path)
    if not os.path.isdir(path):
        if os.path.lexists(path):
            yield _measure(path)
        else:
            report(path, os.strerror(errno.ENOENT))
        return
    folders = [path]
    while folders:
        try:
            with os.scandir(folders[-1]) as scan:
                entries = sorted(scan, key=lambda entry: entry.name, reverse=True)
        except OSError as failure:
            report(folders[-1], failure.strerror or str(failure))
            entries = []
        folders.pop()
        for entry in reversed(entries):
            try:
                if entry.is_file() and _is_wanted(entry.name, extensions):
                    yield _measure(entry.path)
            except OSError as failure:
                report(entry.path, failure.strerror or str(failure))
        folders.extend(entry.path for entry in entries if entry.is_dir(follow_symlinks=False))


def _measure(path: str) -> FoundFile:
    try:
        status = os.stat(path)
    except OSError:
        return FoundFile(path, None, None)  # reading it tells why
    return FoundFile(path, status.st_size, status.st_mtime_ns)
