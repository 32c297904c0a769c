"""Core, custom and extended properties."""

from __future__ import annotations

from collections.abc import Iterator, MutableMapping
from datetime import datetime, timezone
from typing import Any, Optional, Union, cast

from . import _opcmodel
from ._errors import StateError

Keywords = list[tuple[str, str]]
CoreValue = Union[str, datetime, Keywords]
PropertyValue = Union[str, int, float, bool, datetime, None, list[Any]]

_TIMES = ("created", "lastPrinted", "modified")
_NAMES = {
    "category": "category",
    "content_status": "contentStatus",
    "created": "created",
    "creator": "creator",
    "description": "description",
    "identifier": "identifier",
    "keywords": "keywords",
    "language": "language",
    "last_modified_by": "lastModifiedBy",
    "last_printed": "lastPrinted",
    "modified": "modified",
    "revision": "revision",
    "subject": "subject",
    "title": "title",
    "version": "version",
}


def _to_time(text: str) -> datetime:
    return datetime.fromisoformat(text.removesuffix("Z")).replace(tzinfo=timezone.utc)


def _from_time(name: str, value: object) -> str:
    if not isinstance(value, datetime):
        raise TypeError(f"{name} is a datetime")
    if value.tzinfo is None:
        raise ValueError(f"{name} needs a time zone: a package has times in UTC")
    return value.astimezone(timezone.utc).isoformat()


def _from_value(name: str, value: object) -> Any:
    if value is None:
        return None
    if name in _TIMES:
        return _from_time(name, value)
    if name == "keywords":
        words = [value] if isinstance(value, str) else list(cast(Any, value))
        return [(word, "") if isinstance(word, str) else (word[0], word[1]) for word in words]
    if not isinstance(value, str):
        raise TypeError(f"{name} is a text")
    return value


class CoreProperties(MutableMapping[str, CoreValue]):
    """The core properties: those that are there, by the names of their elements, such as `title` and `lastModifiedBy`.

    Each is an attribute, too, which is `None` if it isn't there: `title`, `last_modified_by`. Times are aware, in UTC; keywords
    are pairs of a text and a language, which can be empty. A value that is set is in the package at once, and in the file when
    the package is saved.
    """

    __slots__ = ("_session",)
    _session: _opcmodel.Session

    def __init__(self, session: _opcmodel.Session) -> None:
        object.__setattr__(self, "_session", session)

    def _values(self) -> dict[str, CoreValue]:
        values = _opcmodel.list_core_properties(self._session)
        return {
            name: _to_time(value) if name in _TIMES and isinstance(value, str) else value
            for name, value in values.items()
        }

    def __getitem__(self, name: str) -> CoreValue:
        return self._values()[_NAMES.get(name, name)]

    def __setitem__(self, name: str, value: Union[CoreValue, list[str], None]) -> None:
        self.update_all({name: value})

    def __delitem__(self, name: str) -> None:
        self[name]
        self.update_all({name: None})

    def __iter__(self) -> Iterator[str]:
        return iter(self._values())

    def __len__(self) -> int:
        return len(self._values())

    def update_all(
        self, changes: dict[str, Union[CoreValue, list[str], None]], *, clear: bool = False
    ) -> None:
        """Sets several properties at once; `None` takes one out.

        :param clear: whether all others are taken out
        """
        for name in changes:
            if name not in _NAMES and name not in _NAMES.values():
                raise KeyError(f"{name} is no core property")
        named = {_NAMES.get(name, name): value for name, value in changes.items()}
        prepared = {name: _from_value(name, value) for name, value in named.items()}
        _opcmodel.set_core_properties(self._session, prepared, clear)

    def __getattr__(self, name: str) -> Any:
        if name not in _NAMES:
            raise AttributeError(name)
        return self._values().get(_NAMES[name])

    def __setattr__(self, name: str, value: Any) -> None:
        if name not in _NAMES:
            raise AttributeError(f"{name} is no core property")
        self[name] = value

    def __repr__(self) -> str:
        try:
            return f"CoreProperties({self._values()!r})"
        except StateError:
            return "<CoreProperties of a closed package>"


def _to_property(row: _opcmodel._PropertyValue) -> PropertyValue:
    type, text = row
    if isinstance(text, list):
        return [_to_property(item) for item in text]
    if type in ("i1", "i2", "i4", "i8", "int", "ui1", "ui2", "ui4", "ui8", "uint"):
        return int(text)
    if type in ("r4", "r8", "decimal"):
        return float(text)
    if type == "bool":
        return text in ("true", "1")
    if type in ("date", "filetime"):
        return _to_time(text)
    return text


def _from_property(name: str, value: object) -> tuple[str, str, str]:
    if isinstance(value, bool):
        return name, "bool", "true" if value else "false"
    if isinstance(value, int):
        return name, "i4" if -(2**31) <= value < 2**31 else "i8", str(value)
    if isinstance(value, float):
        return name, "r8", repr(value)
    if isinstance(value, datetime):
        return name, "filetime", _from_time(name, value.replace(microsecond=0)).replace("+00:00", "Z")
    if isinstance(value, str):
        return name, "lpwstr", value
    raise TypeError(f"{name} can't be a {type(value).__name__}")


class OfficeProperties(MutableMapping[str, PropertyValue]):
    """The custom or the extended properties of an office document (ECMA-376 Part 1), in their order."""

    __slots__ = ("_session", "_custom")

    def __init__(self, session: _opcmodel.Session, custom: bool) -> None:
        self._session = session
        self._custom = custom

    def _values(self) -> dict[str, PropertyValue]:
        rows = _opcmodel.list_properties(self._session, self._custom)
        return {name: _safely(value) for name, value in rows}

    def __getitem__(self, name: str) -> PropertyValue:
        return self._values()[name]

    def __setitem__(self, name: str, value: PropertyValue) -> None:
        _opcmodel.change_properties(self._session, self._custom, [], [_from_property(name, value)])

    def __delitem__(self, name: str) -> None:
        self[name]
        _opcmodel.change_properties(self._session, self._custom, [name], [])

    def __iter__(self) -> Iterator[str]:
        return iter(self._values())

    def __len__(self) -> int:
        return len(self._values())

    def __repr__(self) -> str:
        try:
            return f"OfficeProperties({self._values()!r})"
        except StateError:
            return "<OfficeProperties of a closed package>"


def _safely(row: _opcmodel._PropertyValue) -> PropertyValue:
    """The value, or its text if that isn't of its type."""
    try:
        return _to_property(row)
    except ValueError:
        return cast(Optional[str], row[1])
