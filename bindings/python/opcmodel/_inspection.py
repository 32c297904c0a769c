"""Checking, comparing and mending packages, also those that can't be opened."""

from __future__ import annotations

import functools
import os
from collections.abc import Iterable
from typing import Any, Optional, Union

from . import _opcmodel
from ._package import Package, Source, Target
from ._streams import is_binary_file
from ._values import (
    Comparison,
    ContentDifference,
    ContentDifferences,
    ContentHash,
    ContentVersion,
    Finding,
    Format,
    Hunk,
    Limits,
    Mended,
    Mending,
    PropertyDifference,
    RelationshipDifference,
    RelationshipVersion,
    Rule,
)

Inspected = Union[Source, Package]


def _archive(source: Any, limits: Limits = Limits(), *, strict: bool = False) -> _opcmodel.ArchiveSource:
    options = _opcmodel.OpenOptions(strict, False, None, limits.to_dict())
    if isinstance(source, Package):
        return _opcmodel.ArchiveSource.of_session(source._open, options)
    if isinstance(source, (bytes, bytearray, memoryview)):
        return _opcmodel.ArchiveSource.of_bytes(bytes(source), options)
    if is_binary_file(source):
        if hasattr(source, "seekable") and source.seekable():
            return _opcmodel.ArchiveSource.of_object(source, options)
        return _opcmodel.ArchiveSource.of_bytes(source.read(), options)
    return _opcmodel.ArchiveSource.of_path(os.fsdecode(source), options)


def _name(source: Any) -> str:
    return os.fsdecode(source) if isinstance(source, (str, os.PathLike)) else ""


class Report:
    """What `check` has found in a package."""

    def __init__(self, report: _opcmodel.Report) -> None:
        self._report = report

    @property
    def format(self) -> str:
        """The format of the package, as `Format.name`."""
        return self._report.format

    @functools.cached_property
    def findings(self) -> tuple[Finding, ...]:
        return tuple(Finding(*row) for row in self._report.findings)

    @property
    def unlisted(self) -> dict[str, int]:
        """By rule: how many findings there are beyond those that are listed."""
        return self._report.unlisted

    @property
    def errors(self) -> tuple[Finding, ...]:
        return tuple(finding for finding in self.findings if finding.severity == "error")

    @property
    def ok(self) -> bool:
        """Whether there is no error."""
        return not self.errors

    def to_json(self) -> str:
        return self._report.to_json()

    def to_text(self) -> str:
        return self._report.to_text()

    def to_html(self) -> str:
        """One page for people, without script."""
        return self._report.to_html()

    def to_sarif(self, root: Union[str, "os.PathLike[str]"] = "") -> str:
        """SARIF 2.1.0, as code hosts show it; file names are told relative to `root`."""
        return self._report.to_sarif(os.fspath(root))

    def __repr__(self) -> str:
        return f"<Report: {self.format}, {len(self.errors)} errors, {len(self.findings)} findings>"


def _as_list(names: Union[str, Iterable[str]]) -> list[str]:
    return [names] if isinstance(names, str) else list(names)


def check(
    source: Inspected,
    *,
    profile: Union[str, Iterable[str]] = "opc",
    rules: Iterable[str] = (),
    without: Iterable[str] = (),
    limits: Limits = Limits(),
) -> Report:
    """Finds everything in a package that breaks a rule. It goes on after each fault, and fetches nothing.

    :param source: a path, bytes, a binary file object, or an open package, as it was opened or saved last
    :param profile: opc (the standard), security, office, or all
    :param rules: the IDs of the only rules that count
    :param without: the IDs of rules that don't count
    """
    archive = _archive(source, limits, strict=True)  # what lenience passes over is a finding
    return Report(_opcmodel.inspect(archive, _name(source), _as_list(profile), list(rules), list(without)))


@functools.lru_cache(maxsize=None)
def rules() -> tuple[Rule, ...]:
    """All rules that `check` knows."""
    return tuple(Rule(*row) for row in _opcmodel.list_rules())


def detect(source: Inspected) -> Format:
    """Tells what a file is, by its content alone."""
    return Format(*_opcmodel.detect_format(_archive(source)))


def content_hash(
    source: Inspected,
    *,
    ignore_core_properties: bool = False,
    ignore_relationship_ids: bool = False,
    ignore_signatures: bool = False,
) -> ContentHash:
    """A digest of what a package holds: names, content types and contents of parts, and relationships. It doesn't depend on the
    archive: order, compression, times."""
    return ContentHash(
        *_opcmodel.hash_content(
            _archive(source), ignore_core_properties, ignore_relationship_ids, ignore_signatures
        )
    )


def flat_text(source: Inspected) -> str:
    """The whole package as one text in a fixed order, for tools that compare lines."""
    return _opcmodel.flat_text(_archive(source))


def _contents(rows: Iterable[_opcmodel._ContentRow]) -> ContentDifferences:
    def version(row: Optional[tuple[str, str, int]]) -> Optional[ContentVersion]:
        return None if row is None else ContentVersion(*row)

    return ContentDifferences(
        tuple(ContentDifference(row[0], version(row[1]), version(row[2]), *row[3:]) for row in rows)
    )


def diff(before: Inspected, now: Inspected, *, names: Iterable[str] = (), moves: bool = True) -> Comparison:
    """What differs between two packages, by what they hold.

    :param names: only parts and sources with these names, in which * stands for characters but slashes, and ** for any
    :param moves: whether a part with another name and the same content is one that has moved
    """
    parts, items, relationships, properties = _opcmodel.compare(
        _archive(before), _archive(now), list(names), moves
    )

    def version(row: Optional[tuple[str, str, str, Optional[str], bool]]) -> Optional[RelationshipVersion]:
        return None if row is None else RelationshipVersion(*row)

    return Comparison(
        _contents(parts),
        _contents(items),
        tuple(RelationshipDifference(source, version(old), version(new)) for source, old, new in relationships),
        tuple(PropertyDifference(*row) for row in properties),
    )


def diff_part(before: Inspected, now: Inspected, name: str, *, context: int = 3) -> Optional[list[Hunk]]:
    """The lines in which a part differs, compared as XML with one element a line.

    :returns: an empty list if only its form differs; `None` if it isn't XML, or too large
    """
    rows = _opcmodel.compare_texts(_archive(before), _archive(now), name, context)
    return None if rows is None else [Hunk(*row[:4], tuple(row[4])) for row in rows]


def _mend(
    source: Inspected,
    target: Optional[object],
    profile: Union[str, Iterable[str]],
    rules: Iterable[str],
    without: Iterable[str],
    break_signatures: bool,
) -> tuple[Mending, bytes]:
    (mended, left, broken), content = _opcmodel.mend(
        _archive(source), _as_list(profile), list(rules), list(without), break_signatures, target
    )
    told = Mending(tuple(Mended(*row) for row in mended), tuple(Finding(*row) for row in left), tuple(broken))
    return told, content or b""


def repaired(
    source: Inspected,
    *,
    profile: Union[str, Iterable[str]] = "opc",
    rules: Iterable[str] = (),
    without: Iterable[str] = (),
    break_signatures: bool = False,
) -> bytes:
    """The package with everything mended that `check` finds, as far as that is certain. It need not be one that opens.

    :raises BreaksSignatures: signatures would break, and `break_signatures` isn't set
    """
    return _mend(source, None, profile, rules, without, break_signatures)[1]


def repair(
    source: Inspected,
    target: Optional[Target] = None,
    *,
    profile: Union[str, Iterable[str]] = "opc",
    rules: Iterable[str] = (),
    without: Iterable[str] = (),
    break_signatures: bool = False,
) -> Mending:
    """Mends a package as `repaired` does, and writes it.

    :param target: a path or a binary file object; without it, the source, which is a path then
    :returns: what was mended, and what is left
    """
    if target is None:
        if isinstance(source, Package) or not isinstance(source, (str, os.PathLike)):
            raise TypeError("without a target, the source is a path")
        target = source
    place = target if hasattr(target, "write") else os.fsdecode(target)
    return _mend(source, place, profile, rules, without, break_signatures)[0]
