"""What packages are asked for, as values that don't change."""

from __future__ import annotations

from collections.abc import Iterator, Mapping
from dataclasses import dataclass, fields
from typing import Optional


@dataclass(frozen=True, slots=True)
class Limits:
    """Limits for hostile packages. Sizes are in bytes; what is `None` has the default of the library."""

    items: Optional[int] = None
    """How many items an archive may have."""
    directory_size: Optional[int] = None
    """Of the archive's directory."""
    name_length: Optional[int] = None
    """Of an item's name."""
    depth: Optional[int] = None
    """How many folders a name may have."""
    item_size: Optional[int] = None
    """Of one item, uncompressed."""
    total_size: Optional[int] = None
    """Of all items, uncompressed."""
    ratio: Optional[int] = None
    """Size divided by compressed size, above `ratio_floor`."""
    ratio_floor: Optional[int] = None

    def to_dict(self) -> dict[str, int]:
        pairs = ((field.name, getattr(self, field.name)) for field in fields(self))
        return {name: value for name, value in pairs if value is not None}


@dataclass(frozen=True, slots=True)
class Oddity:
    """A place in a package that breaks the standard, and that was accepted."""

    place: str
    """The part or item; for a relationship its part, "#" and its ID; empty for the whole package."""
    line: int
    """In the XML document; 0 if the place isn't in one."""
    what: str
    done: str
    """What is done about it."""
    rule: str
    """The number in ECMA-376 Part 2; empty if it has none."""

    def __str__(self) -> str:
        return f"{self.place}: {self.what}" if self.place else self.what


@dataclass(frozen=True, slots=True)
class IgnoredItem:
    """Something in a package that is no part."""

    name: str
    reason: str


@dataclass(frozen=True, slots=True)
class Format:
    """What a file is, by its content alone."""

    name: str
    """The usual extension, or a word such as `zip`, `encrypted`, `unknown`."""
    media_type: Optional[str]
    description: str
    conformance: Optional[str]
    """`transitional` or `strict`, of Office Open XML documents."""
    is_package: bool
    has_macros: bool
    is_signed: bool
    """Whether there is a signature; `verify` says whether it holds."""
    is_encrypted: bool
    main_part: Optional[str]

    def __str__(self) -> str:
        return self.name


@dataclass(frozen=True, slots=True)
class Rule:
    """A rule that `check` knows."""

    id: str
    title: str
    severity: str
    standard: str
    """The numbers in ECMA-376 Part 2; empty beyond the standard."""
    statement: str
    cause: str
    writers: str
    readers: str
    remedy: str


@dataclass(frozen=True, slots=True)
class Finding:
    """One fault, or something worth knowing, in one place."""

    rule: str
    severity: str
    """`error`, `warning` or `info`."""
    message: str
    part: Optional[str]
    item: Optional[str]
    """An item of the archive that is no part."""
    relationship: Optional[str]
    target: Optional[str]
    line: int
    column: int
    offset: Optional[int]
    hint: Optional[str]
    standard: Optional[str]

    def __str__(self) -> str:
        place = self.part or self.item or ""
        if self.relationship:
            place += f"#{self.relationship}"
        return f"{self.severity}({self.rule}): " + (f"{place}: " if place else "") + self.message


@dataclass(frozen=True, slots=True)
class ContentHash:
    """A digest of what a package holds, whatever its archive is like."""

    sha256: str
    parts: Mapping[str, str]
    """The digest of each part's bytes, by its name."""

    def __str__(self) -> str:
        return self.sha256


@dataclass(frozen=True, slots=True)
class ContentVersion:
    """A content in one of two packages."""

    name: str
    content_type: str
    size: int


@dataclass(frozen=True, slots=True)
class ContentDifference:
    """A part, or an item that is no part, that is in one package only or differs."""

    kind: str
    """`added`, `removed`, `moved` or `changed`."""
    before: Optional[ContentVersion]
    now: Optional[ContentVersion]
    has_other_content: bool
    has_other_type: bool
    unreadable: Optional[str]
    """Why the contents can't be compared, which counts as a change."""

    @property
    def name(self) -> str:
        """The name that it has, or had if it is removed."""
        version = self.now or self.before
        return version.name if version else ""


@dataclass(frozen=True, slots=True)
class ContentDifferences:
    """Differences by their kind."""

    all: tuple[ContentDifference, ...]

    def _of(self, kind: str) -> tuple[ContentDifference, ...]:
        return tuple(one for one in self.all if one.kind == kind)

    @property
    def added(self) -> tuple[ContentDifference, ...]:
        return self._of("added")

    @property
    def removed(self) -> tuple[ContentDifference, ...]:
        return self._of("removed")

    @property
    def moved(self) -> tuple[ContentDifference, ...]:
        return self._of("moved")

    @property
    def changed(self) -> tuple[ContentDifference, ...]:
        return self._of("changed")

    def __len__(self) -> int:
        return len(self.all)

    def __iter__(self) -> Iterator[ContentDifference]:
        return iter(self.all)


@dataclass(frozen=True, slots=True)
class RelationshipVersion:
    """A relationship in one of two packages."""

    id: str
    type: str
    target: str
    resolved: Optional[str]
    external: bool


@dataclass(frozen=True, slots=True)
class RelationshipDifference:
    """A relationship that is in one package only, or leads elsewhere."""

    source: str
    before: Optional[RelationshipVersion]
    now: Optional[RelationshipVersion]


@dataclass(frozen=True, slots=True)
class PropertyDifference:
    """A core property that differs."""

    name: str
    before: Optional[str]
    now: Optional[str]


@dataclass(frozen=True, slots=True)
class Comparison:
    """What differs between two packages. It is true if anything does, beside the properties that stand in the parts."""

    parts: ContentDifferences
    items: ContentDifferences
    """Items of the archives that are no parts."""
    relationships: tuple[RelationshipDifference, ...]
    properties: tuple[PropertyDifference, ...]

    def __bool__(self) -> bool:
        return bool(len(self.parts) or len(self.items) or self.relationships)


@dataclass(frozen=True, slots=True)
class Hunk:
    """Lines in which two versions of a part differ, and those around them."""

    before_line: int
    before_count: int
    now_line: int
    now_count: int
    lines: tuple[str, ...]
    """Each begins with a blank (in both), "-" (before) or "+" (now)."""


@dataclass(frozen=True, slots=True)
class ChangeState:
    """What something was before a change, or is after it."""

    text: Optional[str]
    type: Optional[str]
    external: bool
    size: Optional[int]


@dataclass(frozen=True, slots=True)
class Change:
    """One change that was made to a package."""

    kind: str
    """Such as `part-added` or `relationship-removed`."""
    place: str
    name: Optional[str]
    """The ID of the relationship, or the name of the property."""
    before: ChangeState
    after: ChangeState
    description: str

    def __str__(self) -> str:
        return self.description


@dataclass(frozen=True, slots=True)
class Mended:
    """Something that was mended."""

    rule: str
    part: Optional[str]
    item: Optional[str]
    relationship: Optional[str]
    what: str

    def __str__(self) -> str:
        return f"{self.part or self.item or '/'}: {self.what}"


@dataclass(frozen=True, slots=True)
class Mending:
    """What was mended in a package, and what wasn't."""

    mended: tuple[Mended, ...]
    left: tuple[Finding, ...]
    """What `check` still finds; `hint` says why it isn't mended."""
    broken_signatures: tuple[str, ...]
    """The parts of the signatures that don't hold any more."""
