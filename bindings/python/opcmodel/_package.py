"""Packages, their parts and their relationships."""

from __future__ import annotations

import json
import os
import warnings
from collections.abc import Iterator, Mapping
from dataclasses import dataclass, field
from types import TracebackType
from typing import Any, BinaryIO, Optional, Type, Union

from . import _opcmodel
from ._errors import LenientWarning, PackageNotFound, PartNotFound, RelationshipNotFound, StateError
from ._properties import CoreProperties, OfficeProperties
from ._store import Store
from ._streams import PartStream, is_binary_file
from ._values import Change, ChangeState, IgnoredItem, Limits, Oddity

Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, BinaryIO]
"""A path, the bytes of an archive, or a binary file object."""
Target = Union[str, "os.PathLike[str]", BinaryIO]
Content = Union[bytes, bytearray, memoryview, "os.PathLike[str]", BinaryIO]

MODES = ("r", "r+", "w", "x")


@dataclass(frozen=True, slots=True)
class Relationship:
    """One relationship, as it was when it was asked for."""

    source: str
    """The name of the source part; "/" for the package."""
    id: str
    type: str
    target: str
    """The target as it stands in the package, mostly relative to the source."""
    external: bool
    resolved: Optional[str]
    """Where an internal target leads: the name of a part, and maybe a fragment."""
    part_name: Optional[str]
    """The name of the part that it leads to, which need not be there; `None` if it leads out of the package."""
    _package: "Package" = field(repr=False, compare=False)

    @property
    def exists(self) -> bool:
        """Whether the part is there that it leads to."""
        name = self.part_name
        return name is not None and name in self._package

    @property
    def part(self) -> "Part":
        """The part that it leads to.

        :raises PartNotFound: there is none, or it leads out of the package
        """
        name = self.part_name
        if name is None:
            raise PartNotFound(f"{self.source}#{self.id} leads out of the package: {self.target}")
        return self._package[name]


def _can_be_name(name: object) -> bool:
    """Whether a part could have this name: names are in ASCII."""
    return isinstance(name, str) and name.isascii()


class Relationships(Mapping[str, Relationship]):
    """The relationships of a package or a part, by their IDs."""

    __slots__ = ("_package", "_source")

    def __init__(self, package: "Package", source: _opcmodel.RelationshipSource) -> None:
        self._package = package
        self._source = source

    def __getitem__(self, id: str) -> Relationship:
        if not isinstance(id, str):
            raise RelationshipNotFound(repr(id))
        return Relationship(*self._source.get(id), self._package)

    def __contains__(self, id: object) -> bool:
        return isinstance(id, str) and self._source.has(id)

    def __iter__(self) -> Iterator[str]:
        return iter([row[1] for row in self._source.all()])

    def __len__(self) -> int:
        return self._source.count()

    def __repr__(self) -> str:
        try:
            return f"<{len(self)} relationships>"
        except StateError:
            return "<relationships of a closed package>"

    def all(self) -> list[Relationship]:
        """All of them, sorted by ID."""
        return [Relationship(*row, self._package) for row in self._source.all()]

    def by_type(self, type: str) -> list[Relationship]:
        """Those of one type, sorted by ID."""
        return [Relationship(*row, self._package) for row in self._source.by_type(type)]

    def add(
        self, type: str, target: Union[str, "Part"], *, external: bool = False, id: Optional[str] = None
    ) -> str:
        """Adds a relationship.

        :param target: a part, its name, or a reference relative to the source; if it is external, a URI
        :returns: its ID, which is made if none is given
        """
        if id == "":
            raise ValueError("the ID is empty")
        name = target.name if isinstance(target, Part) else target
        return self._source.add(type, name, external, id or "")

    def remove(self, id: str) -> None:
        self._source.remove(id)

    def __delitem__(self, id: str) -> None:
        self.remove(id)

    def retarget(self, id: str, target: Union[str, "Part"], *, external: bool = False) -> Relationship:
        """Gives a relationship another target; ID and type stay."""
        self._source.retarget(id, target.name if isinstance(target, Part) else target, external)
        return self[id]


class Part:
    """A part of a package. It keeps the package alive; it isn't valid any more when it is removed or the package closed."""

    __slots__ = ("_package", "_handle", "__weakref__")

    def __init__(self, package: "Package", handle: _opcmodel.PartHandle) -> None:
        self._package = package
        self._handle = handle

    @property
    def name(self) -> str:
        return self._handle.name

    @property
    def content_type(self) -> str:
        return self._handle.content_type

    @content_type.setter
    def content_type(self, value: str) -> None:
        self._package.retype(self.name, value)

    @property
    def size(self) -> Optional[int]:
        """In bytes; `None` if the store doesn't know."""
        return self._handle.size

    @property
    def rels(self) -> Relationships:
        return Relationships(self._package, _opcmodel.RelationshipSource(self._handle))

    def read(self) -> bytes:
        """The whole content."""
        return self._handle.read()

    def open(self) -> PartStream:
        """The content as a stream, which reads what it is asked for."""
        return PartStream(self._handle.reader(), self._package)

    def write(self, content: Content) -> None:
        """Replaces the content, by bytes, the bytes of a file (a path object) or those of a binary file object."""
        self._handle.write(content)

    def __repr__(self) -> str:
        return f"<Part {self.name}>"


class Package(Mapping[str, Part]):
    """An open package: its parts, by their names. `open` makes it.

    Use it in one thread at a time: a call while another one runs raises `PackageInUse`.
    """

    _session: Optional[_opcmodel.Session] = None

    def __init__(self, session: _opcmodel.Session, mode: str, source: object) -> None:
        self._session = session
        self._mode = mode
        self._source = source

    @property
    def _open(self) -> _opcmodel.Session:
        assert self._session is not None
        return self._session

    def __getitem__(self, name: str) -> Part:
        if not _can_be_name(name):
            raise PartNotFound(f"No part found with the name:{name!r}")
        return Part(self, _opcmodel.get_part(self._open, name))

    def __contains__(self, name: object) -> bool:
        return _can_be_name(name) and _opcmodel.has_part(self._open, str(name))

    def __iter__(self) -> Iterator[str]:
        return iter([handle.name for handle in _opcmodel.list_parts(self._open)])

    def __len__(self) -> int:
        return len(_opcmodel.list_parts(self._open))

    def __repr__(self) -> str:
        return f"<Package {self._source!r}, mode {self._mode}>"

    def __eq__(self, other: object) -> bool:
        return self is other

    def __hash__(self) -> int:
        return id(self)

    @property
    def parts(self) -> list[Part]:
        """All parts, sorted by name."""
        return [Part(self, handle) for handle in _opcmodel.list_parts(self._open)]

    @property
    def rels(self) -> Relationships:
        """The relationships of the package itself."""
        return Relationships(self, _opcmodel.RelationshipSource(self._open))

    @property
    def hidden(self) -> list[Oddity]:
        """What breaks the standard, and was passed over or read in another way; empty if the package was opened strictly."""
        return [Oddity(*row) for row in _opcmodel.list_oddities(self._open)]

    @property
    def ignored(self) -> list[IgnoredItem]:
        """What the package has beside its parts and another program could take for content."""
        return [IgnoredItem(*row) for row in _opcmodel.list_ignored(self._open)]

    def add(self, name: str, content_type: str, content: Content = b"") -> Part:
        """Adds a part.

        :param content: bytes, a path object or a binary file object
        """
        return Part(self, _opcmodel.add_part(self._open, name, content_type, content))

    def remove(self, name: str, *, incoming: bool = False, cascade: bool = False) -> None:
        """Removes a part and its relationships.

        :param incoming: also the relationships that lead to it
        :param cascade: also the parts that only it leads to
        """
        _opcmodel.remove_part(self._open, name, incoming, cascade)

    def __delitem__(self, name: str) -> None:
        if not _can_be_name(name):
            raise PartNotFound(f"No part found with the name:{name!r}")
        self.remove(name)

    def move(self, name: str, new: str) -> Part:
        """Gives a part another name; every relationship that leads to it leads to the new name."""
        _opcmodel.move_part(self._open, name, new)
        return self[new]

    def gc(self) -> int:
        """Removes the parts to which no path of relationships leads, but for what is signed.

        :returns: how many were removed
        """
        return _opcmodel.collect_unreachable(self._open)

    def clean(
        self, *, core: bool = True, extended: bool = True, custom: bool = True, thumbnails: bool = True
    ) -> None:
        """Takes metadata out: properties and thumbnails. What stands inside parts stays; `check` by the profile security
        tells."""
        _opcmodel.clean(self._open, core, extended, custom, thumbnails)

    def apply(
        self,
        job: Union[str, Mapping[str, Any]],
        *,
        folder: Union[str, "os.PathLike[str]"] = ".",
        outside: bool = False,
        check: bool = True,
    ) -> None:
        """Makes the changes of a job, as `opctool apply` takes it: JSON, or what JSON says. After a failure, close the package.

        What the job asks of the result is checked when the package is saved.

        :param folder: where files lie that the job names
        :param outside: whether it may name files outside
        :param check: whether saving is refused if the package has errors then that it hasn't had
        """
        text = job if isinstance(job, str) else json.dumps(job)
        _opcmodel.apply_job(self._open, text, os.fspath(folder), outside, check)

    @property
    def changes(self) -> list[Change]:
        """What was changed since the package was opened or saved."""
        return [
            Change(kind, place, name, ChangeState(*before), ChangeState(*after), told)
            for kind, place, name, before, after, told in _opcmodel.list_changes(self._open)
        ]

    @property
    def broken_signatures(self) -> list[str]:
        """The parts of the signatures that the changes break."""
        return _opcmodel.list_broken_signatures(self._open)

    @property
    def properties(self) -> CoreProperties:
        """Title, creator, dates and so on."""
        return CoreProperties(self._open)

    @properties.setter
    def properties(self, values: Mapping[str, Any]) -> None:
        CoreProperties(self._open).update_all(dict(values), clear=True)

    @property
    def custom_properties(self) -> OfficeProperties:
        """What a person or a system has added."""
        return OfficeProperties(self._open, True)

    @property
    def extended_properties(self) -> OfficeProperties:
        """What the program tells of itself and the document."""
        return OfficeProperties(self._open, False)

    @property
    def format(self) -> str:
        """The usual extension of the format, by the content: `docx`. `detect` tells more."""
        return self._detect()[0]

    @property
    def main_part(self) -> Optional[Part]:
        """The part that the format begins with."""
        name = self._detect()[8]
        return None if name is None else self[name]

    def _detect(self) -> tuple[str, Optional[str], str, Optional[str], bool, bool, bool, bool, Optional[str]]:
        source = _opcmodel.ArchiveSource.of_session(self._open, _opcmodel.OpenOptions(False, False, None, {}))
        return _opcmodel.detect_format(source)

    def retype(self, name: str, content_type: str) -> None:
        """Gives a part another content type."""
        _opcmodel.retype_part(self._open, name, content_type)

    def save(self, target: Optional[Target] = None) -> None:
        """Writes the package, and goes on with it. Its parts stay valid.

        :param target: a path or a binary file object: the package is written there and goes on there, and what it was opened
            from stays as it was. Without it the package is written to where it came from; one of bytes stays in memory, for
            `to_bytes`
        """
        if target is None:
            self._open.save()
        elif hasattr(target, "write"):
            self._open.save_to_object(target)
        else:
            self._open.save_to_path(os.fsdecode(target))

    def to_bytes(self) -> bytes:
        """The bytes of the archive as it was opened or saved last."""
        return self._open.bytes()

    @property
    def closed(self) -> bool:
        return not self._open.is_open

    def close(self) -> None:
        """Closes the package and drops what isn't saved. Closing it again does nothing."""
        self._open.close()

    def __enter__(self) -> "Package":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        raised: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        if raised is not None:
            self.close()
            return
        try:
            self._open.finish()
        finally:
            self.close()

    def __del__(self) -> None:
        session = self._session
        if session is not None and self._mode != "r" and session.is_changed:
            warnings.warn(f"unsaved changes in {self!r}", ResourceWarning, source=self, stacklevel=2)


def open(
    source: Union[Source, Store],
    mode: str = "r",
    *,
    strict: bool = False,
    deterministic: Union[bool, int] = False,
    break_signatures: bool = False,
    limits: Limits = Limits(),
) -> Package:
    """Opens a package. Use it in a `with` statement: at its end the package is saved, unless an exception leaves it.

    :param source: a path, the bytes of an archive, a `Store`, or a binary file object, of which only the directory, the
        relationships and what is asked for are read if it can seek
    :param mode: r to read, r+ to read and change, w for a new package that replaces an old one, x for one that doesn't exist
    :param strict: whether to refuse what breaks the standard. If not, it is passed over with a `LenientWarning`
    :param deterministic: whether the same operations write the same bytes; a number is the time of all items, in seconds
        since 1970
    :param break_signatures: whether to save also if signatures don't hold after it
    """
    if mode not in MODES:
        raise ValueError(f"mode {mode!r} is none of {', '.join(MODES)}")
    time = None if deterministic is False else int(deterministic) if deterministic is not True else 0
    options = _opcmodel.OpenOptions(strict, break_signatures, time, limits.to_dict())
    package = Package(_open_session(source, mode, options), mode, _name_of(source))
    _warn(package)
    return package


def _open_session(source: Any, mode: str, options: _opcmodel.OpenOptions) -> _opcmodel.Session:
    if isinstance(source, Store):
        if mode != "r":
            raise ValueError("a store in Python is only read")
        return _opcmodel.open_store(source, options)
    if isinstance(source, (bytes, bytearray, memoryview)):
        return _opcmodel.open_bytes(bytes(source), mode[0] if mode == "x" else mode, options)
    if is_binary_file(source):
        if mode in ("r", "r+") and not (hasattr(source, "seekable") and source.seekable()):
            return _opcmodel.open_bytes(source.read(), mode, options)
        return _opcmodel.open_object(source, mode, options)
    path = os.fsdecode(source)
    if mode == "x" and os.path.lexists(path):
        raise FileExistsError(17, os.strerror(17), path)
    return _opcmodel.open_path(path, mode, options)


def _name_of(source: Any) -> str:
    if isinstance(source, (bytes, bytearray, memoryview)):
        return f"{len(source)} bytes"
    return str(getattr(source, "name", source))


def _warn(package: Package) -> None:
    oddities = package.hidden
    if not oddities:
        return
    told = "; ".join(str(oddity) for oddity in oddities[:5])
    more = f"; and {len(oddities) - 5} more" if len(oddities) > 5 else ""
    warning = LenientWarning(f"{package._source}: {told}{more}")
    warning.oddities = oddities
    warnings.warn(warning, stacklevel=3)
