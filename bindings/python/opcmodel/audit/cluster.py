"""Running an audit on a Dask cluster. The workers need this package, and fsspec for the URLs."""
from __future__ import annotations

import os
import tempfile
from datetime import datetime
from importlib import import_module
from itertools import islice
from typing import Any, Collection, Iterable, Iterator

from .._scanning import scan
from .database import Database, FoundFile
from .progress import Progress
from .rows import FileRows, failed_rows, rows_of
from .run import bits_of

# They have no types, and aren't there on every machine.
distributed: Any = import_module("dask.distributed")
fsspec: Any = import_module("fsspec")

_CHUNK = 64  # files that a worker scans at a time
_CHUNKS_OF_A_WORKER = 3  # that are on their way to it
_RETRIES = 3


def _is_local(files: Any) -> bool:
    protocols = (files.protocol,) if isinstance(files.protocol, str) else files.protocol
    return "file" in protocols


def scan_chunk(urls: list[str], what: list[str], profiles: list[str]) -> list[FileRows]:
    """What a worker does: the rows of each file."""
    return [_scan_url(url, what, profiles) for url in urls]


def _scan_url(url: str, what: list[str], profiles: list[str]) -> FileRows:
    files, path = fsspec.core.url_to_fs(url)
    if _is_local(files):
        return _scan_path(path, what, profiles)
    with tempfile.TemporaryDirectory() as folder:
        copy = os.path.join(folder, os.path.basename(path) or "package")
        try:
            files.get_file(path, copy)
        except OSError as failure:
            return failed_rows("store", str(failure))
        return _scan_path(copy, what, profiles)


def _scan_path(path: str, what: list[str], profiles: list[str]) -> FileRows:
    with scan([path], jobs=1, what=what, profiles=profiles) as results:
        return rows_of(next(results))


def find_urls(paths: Iterable[str]) -> list[str]:
    """The paths as the database names them: absolute paths of this machine, and URLs of others."""
    return [_name(*fsspec.core.url_to_fs(path)) for path in paths]


def _name(files: Any, path: str) -> str:
    return path if _is_local(files) else str(files.unstrip_protocol(path))


def _changed(files: Any, path: str, info: dict[str, Any]) -> int | None:
    """When the file was changed, in nanoseconds, if its store tells that."""
    if _is_local(files):
        return os.stat(path).st_mtime_ns
    for name in "LastModified", "last_modified", "mtime", "updated", "created":
        value = info.get(name)
        if isinstance(value, datetime):
            return int(value.timestamp() * 1_000_000) * 1000
        if isinstance(value, (int, float)):
            return int(value * 1_000_000) * 1000
    return None


def _find(path: str, extensions: Collection[str] | None) -> Iterator[FoundFile]:
    files, root = fsspec.core.url_to_fs(path)
    for name, info in files.find(root, detail=True).items():
        if extensions is None or name == root or name.rpartition(".")[2].lower() in extensions:
            yield FoundFile(_name(files, name), info.get("size"), _changed(files, name, info))


def audit_on_cluster(address: str, paths: Iterable[str], database: Database, what: list[str], profiles: list[str],
                     extensions: Collection[str] | None, again: bool, progress: Progress) -> None:
    """Scans the files under the paths on the workers, and writes what they find. A worker that dies costs what it was at:
    others do that. A file whose scan ends one worker after the other is an error."""
    def wanted() -> Iterator[FoundFile]:
        for path in paths:
            for file in _find(path, extensions):
                if database.must_scan(file, bits_of(what)) or again:
                    yield file
                else:
                    progress.add(unchanged=True)

    with distributed.Client(address) as client:
        running: dict[Any, list[FoundFile]] = {}
        results = distributed.as_completed()

        def submit(chunk: list[FoundFile]) -> None:
            future = client.submit(scan_chunk, [file.path for file in chunk], what, profiles, retries=_RETRIES, pure=False)
            running[future] = chunk
            results.add(future)

        def submit_next() -> None:
            most = _CHUNKS_OF_A_WORKER * max(1, len(client.scheduler_info()["workers"]))
            while len(running) < most:
                chunk = list(islice(files, _CHUNK))
                if not chunk:
                    return
                submit(chunk)

        files = wanted()
        submit_next()
        for future in results:
            chunk = running.pop(future)
            failure = future.exception()
            if failure is None:
                for file, rows in zip(chunk, future.result()):
                    database.write(file, bits_of(what), rows)
                    progress.add(failed=rows.has_failed)
            elif len(chunk) > 1:  # one of them can be at fault
                for file in chunk:
                    submit([file])
            else:
                database.write(chunk[0], bits_of(what), failed_rows("store", f"its scan failed: {failure}"))
                progress.add(failed=True)
            submit_next()
