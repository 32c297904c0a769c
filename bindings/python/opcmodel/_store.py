"""Stores that an application writes itself."""

from __future__ import annotations

import abc
from collections.abc import Iterable
from typing import BinaryIO, Optional


class Store(abc.ABC):
    """Where a package is: in a database, in a folder, behind a service. `open` opens it for reading.

    A call that an exception leaves ends with this exception. The store is used in the thread of the package.
    """

    @abc.abstractmethod
    def names(self) -> Iterable[str]:
        """The names of all parts, relationships parts too: `/word/document.xml`, `/_rels/.rels`."""

    @abc.abstractmethod
    def open(self, name: str) -> BinaryIO:
        """The content of a part, from its start. It is closed after it was read."""

    def content_types(self) -> Optional[bytes]:
        """The content types stream; `None` if each part has its own type: `content_type`."""
        return None

    def content_type(self, name: str) -> str:
        """The content type of a part, if there is no content types stream."""
        raise NotImplementedError(f"{type(self).__name__} has neither content_types nor content_type")

    def size(self, name: str) -> Optional[int]:
        """The size of a part in bytes; `None` if it is unknown before the part is read."""
        return None

    def close(self) -> None:
        """The package is closed. It is called once, also if it fails."""
