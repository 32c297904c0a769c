"""The content of a part as a stream."""

from __future__ import annotations

import io
import os
from typing import TYPE_CHECKING, Any

from . import _opcmodel

if TYPE_CHECKING:
    from _typeshed import WriteableBuffer


class PartStream(io.RawIOBase):
    """Reads the content of a part. It can seek; going back reads from the start again."""

    def __init__(self, reader: _opcmodel.PartReader, package: object) -> None:
        super().__init__()
        self._reader = reader
        self._package = package  # it stays open

    def readable(self) -> bool:
        return True

    def seekable(self) -> bool:
        return True

    def readinto(self, buffer: "WriteableBuffer", /) -> int:
        self._require_open()
        return self._reader.readinto(buffer)

    def tell(self) -> int:
        self._require_open()
        return self._reader.tell()

    def seek(self, offset: int, whence: int = os.SEEK_SET, /) -> int:
        self._require_open()
        if whence == os.SEEK_CUR:
            offset += self._reader.tell()
        elif whence == os.SEEK_END:
            offset += self._size()
        elif whence != os.SEEK_SET:
            raise ValueError(f"whence {whence} is unknown")
        if offset < 0:
            raise ValueError(f"the place {offset} lies before the start")
        self._reader.seek(offset)
        return offset

    def _size(self) -> int:
        size = self._reader.size()
        if size is not None:
            return size
        place = self._reader.tell()
        block = bytearray(1 << 16)
        while self._reader.readinto(block):
            pass
        end = self._reader.tell()
        self._reader.seek(place)
        return end

    def _require_open(self) -> None:
        if self.closed:
            raise ValueError("I/O operation on closed file")


def is_binary_file(source: Any) -> bool:
    return hasattr(source, "read") and not isinstance(source, io.TextIOBase)
