"""Reading many files at the same time."""
from __future__ import annotations

import json
import os
from collections.abc import Iterable, Iterator, Mapping
from datetime import datetime
from types import MappingProxyType, TracebackType
from typing import Any, NamedTuple, Union

from . import _opcmodel
from ._values import Finding, Format, Limits, Oddity

Source = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]", "tuple[str, bytes]"]
PropertyValue = Union[str, datetime, "tuple[tuple[str, str], ...]"]

#: What can be asked about each file, and the bits that the library knows it by.
ASPECTS: Mapping[str, int] = MappingProxyType({
    "format": 1, "parts": 2, "relationships": 4, "properties": 8, "externals": 16, "signatures": 32, "findings": 64})
PROFILES: Mapping[str, int] = MappingProxyType({"opc": 1, "security": 2, "office": 4})
DEFAULT_ASPECTS = frozenset({"format", "parts", "relationships", "properties"})


class ScannedPart(NamedTuple):
    """A part of a scanned package."""

    name: str
    content_type: str
    size: int  #: in bytes, uncompressed
    relationships: int  #: how many it has


class ScannedRelationship(NamedTuple):
    """A relationship of a scanned package."""

    source: str  #: a part name, or "/" for the package
    id: str
    type: str
    target: str  #: as it stands in the package
    is_external: bool
    exists: bool | None  #: whether there is such a part; None for an external target

    @property
    def resolved(self) -> str | None:
        """The part name that it leads to; None for an external target."""
        return None if self.is_external else _opcmodel.resolve_target(self.source, self.target)


class ScannedExternal(NamedTuple):
    """A relationship that leads out of the package, by what it does."""

    effect: str  #: "loads", "click" or "other"
    place: str  #: "web", "share", "file", "mail" or "other"
    source: str
    id: str
    type: str
    target: str


class ScannedSignature(NamedTuple):
    """A signature, and the answers about it."""

    profile: str  #: "standard" or "opcmodel"
    name: str
    part: str | None
    signer: str | None  #: the subject of the certificate, or "key"
    fingerprint: str | None  #: of the certificate
    time: str | None  #: as the signer claims
    holds: bool  #: it is a yes; in the profile "opcmodel" nothing that it signs has changed, and the signer is accepted
    cryptography: str  #: "valid", "weak" or "broken"
    coverage: str | None  #: "complete" or "partial"
    trust: str | None  #: "not checked", "unknown", "trusted" or "not trusted"
    reason: str  #: why it isn't a yes


def _signature(row: dict[str, Any]) -> ScannedSignature:
    if row["profile"] == "standard":
        cryptography, coverage, trust = (row[name]["answer"] for name in ("cryptography", "coverage", "trust"))
    else:
        cryptography, coverage, trust = "broken" if not row["holds"] else "weak" if row["weak"] else "valid", None, None
    return ScannedSignature(row["profile"], row["name"], row.get("part"), row["signer"], row["fingerprint"],
                            row["time"], row["holds"], cryptography, coverage, trust, row["reason"])


class ScanResult:
    """What was found out about one file. What wasn't asked for, or can't be read, is None."""

    __slots__ = ("_raw",)
    _raw: _opcmodel.ScannedFile

    def __init__(self, raw: _opcmodel.ScannedFile) -> None:
        object.__setattr__(self, "_raw", raw)

    def __setattr__(self, name: str, value: object) -> None:
        raise AttributeError(f"{name} can't be set: results don't change")

    def _member(self, name: str) -> Any:
        return json.loads(self._raw.to_json(ASPECTS.get(name, 0))).get(name)

    @property
    def path(self) -> str:
        """As it was given."""
        return self._raw.name

    @property
    def error(self) -> Exception | None:
        """Why something that was asked for isn't there."""
        return self._raw.error

    @property
    def hidden(self) -> tuple[Oddity, ...]:
        """What was passed over, because it breaks the standard."""
        return tuple(Oddity(row["place"], row["line"] or 0, row["reason"], row["done"] or "", row["rule"] or "")
                     for row in self._member("hidden"))

    @property
    def format(self) -> Format | None:
        row = self._member("format")
        return row and Format(row["format"], row["mediaType"], row["description"], row["conformance"], row["package"],
                              row["macros"], row["signed"], row["encrypted"], row["mainPart"])

    @property
    def parts(self) -> tuple[ScannedPart, ...] | None:
        return self._raw.parts(ScannedPart)

    @property
    def relationships(self) -> tuple[ScannedRelationship, ...] | None:
        """Those of the package, then those of each part."""
        return self._raw.relationships(ScannedRelationship)

    @property
    def properties(self) -> Mapping[str, PropertyValue] | None:
        """The core properties that are there. Times are in UTC; keywords are pairs of a text and its language."""
        values = self._raw.properties
        return None if values is None else MappingProxyType(values)

    @property
    def externals(self) -> tuple[ScannedExternal, ...] | None:
        rows = self._member("externals")
        return None if rows is None else tuple(ScannedExternal(**row) for row in rows)

    @property
    def signature_state(self) -> str | None:
        """ "unsigned", "holds", "unproven" (unchanged, but no yes), "broken" or "unreadable"."""
        found = self._member("signatures")
        return None if found is None else str(found["state"])

    @property
    def signatures(self) -> tuple[ScannedSignature, ...] | None:
        found = self._member("signatures")
        return None if found is None else tuple(map(_signature, found["signatures"]))

    @property
    def findings(self) -> tuple[Finding, ...] | None:
        """What `check` finds; at most 100 of a rule."""
        found = self._member("findings")
        if found is None:
            return None
        return tuple(Finding(row["rule"], row["severity"], row["message"], row["part"], row["item"], row["relationship"],
                             row["target"], row["line"] or 0, row["column"] or 0, row["offset"], row["hint"],
                             row["standard"]) for row in found["findings"])

    def to_dict(self) -> dict[str, Any]:
        """Everything, in the shapes of `opctool --json=2`."""
        return {"file": self.path, **json.loads(self._raw.to_json(sum(ASPECTS.values())))}

    def __repr__(self) -> str:
        return f"<ScanResult {self.path!r}{'' if self.error is None else ': ' + str(self.error)}>"


class Scan(Iterator[ScanResult]):
    """The results of `scan`. Leave the loop early, and `close` it or let it go."""

    def __init__(self, raw: _opcmodel.Scan) -> None:
        self._raw = raw

    def __next__(self) -> ScanResult:
        return ScanResult(self._raw.next())

    def close(self) -> None:
        """Waits for the files that are being read, and drops their results."""
        self._raw.close()

    def __enter__(self) -> Scan:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()


def _bits(names: Iterable[str], known: Mapping[str, int], what: str) -> int:
    bits = 0
    for name in names:
        if name not in known:
            raise ValueError(f"{name!r} is no {what}; there are: {', '.join(known)}")
        bits |= known[name]
    return bits


def _source(item: Source) -> bytes | tuple[bytes, bytes]:
    """For the extension: the bytes of a path, or of a name and a package."""
    if isinstance(item, tuple):
        if len(item) != 2:
            raise TypeError("a source is a path, or a pair of a name and the bytes of a package")
        return os.fsencode(item[0]), bytes(item[1])
    path = os.fsencode(item)
    if b"\0" in path:
        raise ValueError("embedded null byte")
    return path


def scan(paths: Iterable[Source], *, jobs: int | None = None, what: Iterable[str] = DEFAULT_ASPECTS,
         profiles: Iterable[str] = ("opc",), window: int = 256, strict: bool = False,
         limits: Limits | None = None) -> Scan:
    """Reads many files in threads of the library, and gives their results in the order of the files.

    Memory doesn't grow with their number: `paths` is consumed as results are taken, at most `window` files ahead. A file
    that can't be read is a result with an `error`.

    paths     paths, or pairs of a name and the bytes of a package
    jobs      how many threads; one for each core if it is None
    what      of "format", "parts", "relationships", "properties", "externals", "signatures", "findings"; only what is asked
              for is read
    profiles  for the findings, of "opc", "security", "office"
    strict    whether packages that break the standard are errors
    limits    for hostile files
    """
    if jobs is not None and jobs < 1:
        raise ValueError("jobs must be at least 1")
    if isinstance(paths, (str, bytes, os.PathLike)):
        raise TypeError("paths must be an iterable of paths, not one path")
    reading = _opcmodel.OpenOptions(strict, False, None, limits.to_dict() if limits else {})
    return Scan(_opcmodel.Scan(iter(paths), _bits(what, ASPECTS, "aspect"), jobs or 0, window,
                               _bits(profiles, PROFILES, "profile"), reading))
