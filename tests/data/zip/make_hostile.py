#!/usr/bin/env python3
"""Writes archives that must be refused, but for a few by `ZipOptions::lenient`, each named by what is wrong with it.

    make_hostile.py FOLDER

Each is a small sound archive with one defect. tests/physical/HostileArchivesTest.cpp has a line for each: what
is said of it.
"""

import os
import struct
import sys
import zlib

STORE, DEFLATE = 0, 8
NO_ROOM = 0xFFFFFFFF
TYPES = "[Content_Types].xml"


def deflated(data):
    packer = zlib.compressobj(9, zlib.DEFLATED, -15)
    return packer.compress(data) + packer.flush()


def unfinished(data):
    """Without the last block."""
    packer = zlib.compressobj(9, zlib.DEFLATED, -15)
    return packer.compress(data) + packer.flush(zlib.Z_SYNC_FLUSH)


class Item:
    """An item. `local` and `central` replace fields in the local header or in the directory alone; `behind` stands
    behind the content."""

    def __init__(self, name, data=b"content", method=STORE, flags=0, local=None, central=None, behind=b"", **fields):
        self.name = name if isinstance(name, bytes) else name.encode()
        self.behind = behind
        self.data = deflated(data) if method == DEFLATE else data
        self.fields = dict(name=self.name, method=method, flags=flags, crc=zlib.crc32(data), packed=len(self.data),
                           size=len(data), extra=b"", offset=None, signature=None, name_size=None)
        self.fields.update(fields)
        self.local = {**self.fields, **(local or {})}
        self.central = {**self.fields, **(central or {})}

    def local_bytes(self):
        f = self.local
        name_size = len(f["name"]) if f["name_size"] is None else f["name_size"]
        return struct.pack("<4s5H3I2H", f["signature"] or b"PK\3\4", 20, f["flags"], f["method"], 0, 0x21, f["crc"],
                           f["packed"], f["size"], name_size, len(f["extra"])) + f["name"] + f["extra"] + self.data + self.behind

    def central_bytes(self, offset):
        f = self.central
        name_size = len(f["name"]) if f["name_size"] is None else f["name_size"]
        return struct.pack("<4s6H3I5H2I", f["signature"] or b"PK\1\2", 20, 20, f["flags"], f["method"], 0, 0x21,
                           f["crc"], f["packed"], f["size"], name_size, len(f["extra"]), 0, 0, 0, 0,
                           offset if f["offset"] is None else f["offset"]) + f["name"] + f["extra"]


def end_record(count, size, offset, comment=b"", comment_size=None, disk=0):
    return struct.pack("<4s4H2IH", b"PK\5\6", disk, disk, count, count, size, offset,
                       len(comment) if comment_size is None else comment_size) + comment


def zip64_records(count, size, offset, place=None, more=b""):
    record = struct.pack("<4sQ2H2I4Q", b"PK\6\6", 44 + len(more), 45, 45, 0, 0, count, count, size, offset)
    return record + more + struct.pack("<4sIQI", b"PK\6\7", 0, offset + size if place is None else place, 1)


def parts(items, front=b""):
    """The items and their directory."""
    body, directory = front, b""
    for item in items:
        directory += item.central_bytes(len(body))
        body += item.local_bytes()
    return body, directory


def archive(*items, content_types=True, zip64=None, shift=0, front=b"", **end):
    """A sound archive but for what the arguments change."""
    items = ([Item(TYPES, b"<Types/>")] if content_types else []) + list(items)
    body, directory = parts(items, front)
    size, offset = len(directory), len(body) + shift
    count = end.pop("count", len(items))
    records = zip64_records(*zip64(count, size, offset)) if zip64 else b""
    return body + directory + records + end_record(count, size, offset, **end)


def zip64_field(*numbers):
    return struct.pack("<2H%dQ" % len(numbers), 1, 8 * len(numbers), *numbers)


def field(kind, data):
    return struct.pack("<2H", kind, len(data)) + data


def unicode_path(name, checksum_of=b""):
    return field(0x7075, b"\1" + struct.pack("<I", zlib.crc32(checksum_of)) + name.encode())


def descriptor(data, crc=None, packed=None, size=None, width="I", signature=b"PK\7\x08"):
    """What stands behind a stored item whose local header knows nothing of it."""
    return signature + struct.pack("<I2" + width, zlib.crc32(data) if crc is None else crc,
                                   len(data) if packed is None else packed, len(data) if size is None else size)


def streamed(behind, **fields):
    return Item("a", flags=8, local=dict(crc=0, packed=0, size=0), behind=behind, **fields)


def said_to_be(size, data):
    """A deflated item that expands to `size` bytes by its own account."""
    return Item("a", data, DEFLATE, size=NO_ROOM, packed=NO_ROOM,
                extra=zip64_field(size, len(deflated(data))))


def within_another():
    inner = Item("b", b"inner")
    outer = Item("a", inner.local_bytes())
    start = len(outer.local_bytes()) - len(outer.data)
    body, directory = parts([outer])
    directory += inner.central_bytes(start)
    return body + directory + end_record(2, len(directory), len(body))


def directory_within_content():
    """A directory in the content of an item, sounder than the one at the end: some programs prefer it."""
    types = Item(TYPES, b"<Types/>")
    start = len(types.local_bytes()) + len(Item("a", b"").local_bytes())
    directory = types.central_bytes(0)
    return archive(Item("a", directory + end_record(1, len(directory), start)), Item("b", local=dict(name=b"c")))


def overlapping_bomb():
    """42 kB that expand to 5 GB: each local header is quoted in the content of the item before it."""
    kernel = deflated(bytes(21_000_000))
    items, tail, crc, size = [], kernel, zlib.crc32(bytes(21_000_000)), 21_000_000
    for number in range(250, 0, -1):
        name = b"%03d" % number
        header = struct.pack("<4s5H3I2H", b"PK\3\4", 20, 0, DEFLATE, 0, 0x21, crc, len(tail), size, len(name), 0) + name
        items.append((name, crc, len(tail), size, len(header) + len(tail)))
        # A stored block of Deflate in front passes the header on as content.
        tail = b"\0" + struct.pack("<2H", len(header), 0xFFFF ^ len(header)) + header + tail
        crc, size = 0, size + len(header)  # nobody gets as far as the checksum
    directory = b""
    for name, item_crc, packed, item_size, behind in reversed(items):
        directory += struct.pack("<4s6H3I5H2I", b"PK\1\2", 20, 20, 0, DEFLATE, 0, 0x21, item_crc, packed, item_size,
                                 len(name), 0, 0, 0, 0, 0, len(tail) - behind) + name
    return tail + directory + end_record(len(items), len(directory), len(tail))


def cut(data, start=0, end=None):
    return data[start:len(data) + end if end else None]


def second_end_record():
    sound = archive(Item("a"))
    hidden = end_record(0, 0, len(sound))
    return archive(Item("a"), comment=hidden)


A = Item("a")
SOUND = archive(A)
SECOND_END = end_record(0, 0, 0)
NOISE = bytes(range(256)) * 8

ARCHIVES = {
    "nothing": b"",
    "no-archive": b"This is no archive. " * 100,
    "end-record-cut-off": cut(SOUND, end=-5),
    "directory-cut-off": cut(SOUND, end=-30) + SOUND[-22:],
    "beginning-cut-off": cut(SOUND, start=20),
    "bytes-in-front": b"#!/bin/sh\n" + SOUND,
    "bytes-behind": SOUND + b"\0",
    "bytes-behind-beyond-reach": SOUND + bytes(70_000),
    "end-record-behind-cut-off": SOUND + b"\0" + SECOND_END[:8],
    "zip64-records-behind": SOUND + zip64_records(0, 0, 0),
    "item-behind": SOUND + A.local_bytes(),
    "archive-behind": SOUND + b"\0" + archive(A, shift=len(SOUND) + 1),
    "directory-within-content-with-bytes-behind": directory_within_content() + b"\0",
    "archive-within-bytes-around": archive(Item("a", archive(Item("b"))), front=b"#!/bin/sh\n") + b"\n",
    "zip64-archive-within-bytes-behind": archive(Item("a", archive(Item("b"))), zip64=lambda c, s, o: (c, s, o)) + b"\n",
    "comment-longer-than-archive": archive(A, comment=b"abc", comment_size=40),
    "directory-within-content": directory_within_content(),
    "second-end-record-in-comment": second_end_record(),
    "end-record-in-comment-with-bytes-behind": archive(A, comment=end_record(0, 0, 7) + b"x"),
    "several-disks": archive(A, disk=1),
    "more-items-than-directory": archive(A, count=5),
    "fewer-items-than-directory": archive(A, count=1),
    "directory-beyond-archive": archive(A, shift=1000),
    "directory-entry-overwritten": archive(Item("a", central=dict(signature=b"PK\1\3"))),
    "name-beyond-directory": archive(Item("a", central=dict(name_size=60000))),
    "zip64-locator-leads-nowhere": archive(A, zip64=lambda c, s, o: (c, s, o, 7)),
    "zip64-locator-beyond-archive": archive(A, zip64=lambda c, s, o: (c, s, o, 1 << 60)),
    "zip64-record-differs": archive(A, zip64=lambda c, s, o: (c, s, o - 1, o + s)),
    "zip64-record-within-another": archive(A, zip64=lambda c, s, o: (c, s, o, None, zip64_records(0, 0, 0)[:56])),
    "zip64-million-millions-of-items": archive(A, count=0xFFFF, zip64=lambda c, s, o: (1 << 40, s, o)),
    "zip64-field-missing": archive(Item("a", size=NO_ROOM, packed=NO_ROOM)),
    "zip64-field-short": archive(Item("a", size=NO_ROOM, packed=NO_ROOM, extra=zip64_field(7))),

    "one-local-header-for-two": archive(A, Item("b", central=dict(offset=len(Item(TYPES, b"<Types/>").local_bytes())))),
    "item-within-another": within_another(),
    "bomb-of-42-kB": overlapping_bomb(),
    "item-beyond-archive": archive(Item("a", central=dict(offset=1 << 30))),
    "content-reaches-into-directory": archive(Item("a", size=5000, packed=5000)),
    "local-header-overwritten": archive(Item("a", local=dict(signature=b"PK\3\5"))),
    "local-header-other-name": archive(Item("a", local=dict(name=b"b"))),
    "local-header-other-case": archive(Item("a", local=dict(name=b"A"))),
    "local-header-other-method": archive(Item("a", local=dict(method=DEFLATE))),
    "local-header-other-size": archive(Item("a", NOISE, DEFLATE, local=dict(size=7))),
    "local-header-other-packed-size": archive(Item("a", local=dict(packed=3))),
    "local-header-other-checksum": archive(Item("a", local=dict(crc=1))),
    "local-header-encrypted": archive(Item("a", local=dict(flags=1))),
    "local-header-sizes-behind-descriptor-flag": archive(Item("a", flags=8, local=dict(size=3, packed=3))),
    "local-extra-field-too-long": archive(Item("a", local=dict(extra=b"xx\x20\0" + bytes(32))),
                                          Item("b", central=dict(offset=len(Item(TYPES, b"<Types/>").local_bytes()) + 40))),

    "ignored-item-with-other-local-name": archive(Item("[trash]/0", local=dict(name=b"[trash]/1"))),
    "ignored-item-with-other-local-size": archive(Item("folder/", local=dict(size=3))),
    "local-header-encrypted-strongly": archive(Item("a", local=dict(flags=0x2000))),
    "local-header-in-other-encoding": archive(Item("\u00e9", local=dict(flags=0x800))),
    "item-between-items": archive(Item("b", behind=A.local_bytes()), Item("c")),
    "item-in-front": archive(A, front=b"#!" + Item("b").local_bytes()),
    "item-in-front-of-directory": archive(Item("b", behind=bytes(9) + A.local_bytes())),
    "descriptor-missing": archive(streamed(b""), Item("b")),
    "descriptor-with-other-checksum": archive(streamed(descriptor(b"content", crc=1))),
    "descriptor-with-other-size": archive(streamed(descriptor(b"content", size=8, signature=b""))),
    "descriptor-with-other-packed-size": archive(streamed(descriptor(b"content", packed=8, width="Q"))),
    "descriptor-differs-behind-complete-header": archive(Item("a", flags=8, behind=descriptor(b"content", crc=1))),
    "unused-17-MB": archive(Item("a", behind=bytes(17_000_000))),

    "shadow-by-dot-segment": archive(A, Item("./a")),
    "shadow-by-folders-of-nothing": archive(Item("f/a"), Item("f//.//a")),
    "shadow-by-backslashes": archive(A, Item(".\\\\a")),
    "shadow-by-encoding": archive(A, Item("%61")),
    "shadow-by-encoded-dot-segments": archive(Item("f/a"), Item("b/%2E%2e/F/%2e/A")),
    "shadow-by-dots-behind": archive(Item("f/a"), Item("f./a...")),
    "shadow-by-blank-behind": archive(A, Item("a ")),
    "shadow-by-control-character": archive(A, Item("a\1")),
    "shadow-by-version": archive(A, Item("a;12")),
    "shadow-by-stream": archive(A, Item("a::$DATA")),
    "shadow-by-stream-of-folder": archive(Item("f/a"), Item("F:$I30:$Index_Allocation/a")),
    "shadow-by-drive": archive(A, Item("c:a")),
    "shadow-by-folder": archive(A, Item("a/")),
    "shadow-by-piece-without-others": archive(A, Item("a/[1].piece")),
    "shadow-of-piece": archive(Item("a/[0].last.piece"), Item("a//[0].last.piece")),
    "shadow-of-content-types": archive(Item("./[content_types].xml")),
    "shadow-of-content-types-by-encoding": archive(Item("%5BContent_Types%5d.xml")),
    "shadow-of-odd-item": archive(Item("a "), Item("a.")),
    "shadow-by-code-page": archive(Item("\u251c\u2310", flags=0x800), Item("\u00e9")),
    "shadow-by-latin-1": archive(Item("\u00e9", flags=0x800), Item(b"\xE9")),
    "shadow-by-unicode-path": archive(A, Item("b", extra=unicode_path("a", b"b"))),
    "unicode-path-twice": archive(Item("b", extra=2 * unicode_path("b"))),
    "shadow-by-unicode-path-of-ignored": archive(A, Item("[trash]/0", extra=unicode_path(".//%61"))),
    "shadow-by-unicode-path-in-directory": archive(A, Item("b", central=dict(extra=unicode_path("A")))),
    "shadow-by-unicode-path-in-local-header": archive(A, Item("b", local=dict(extra=b"xx\0\0" + unicode_path("a\0b")))),
    "shadow-of-content-types-by-unicode-path": archive(Item("b", extra=unicode_path(TYPES))),
    "folder-above-by-unicode-path": archive(Item("b", extra=unicode_path("../a"))),

    "two-content-types-streams": archive(Item(TYPES, b"<Types/>")),
    "two-content-types-streams-in-other-case": archive(Item("[content_types].XML", b"<Types/>")),
    "content-types-stream-and-pieces-of-one": archive(Item(TYPES + "/[0].last.piece", b"<Types/>")),
    "name-twice": archive(A, A),
    "name-twice-in-other-case": archive(A, Item("A")),
    "name-twice-encoded": archive(Item("a b"), Item("a%20b")),
    "relationships-twice": archive(Item("_rels/.rels"), Item("_Rels/.RELS")),
    "piece-twice": archive(Item("a/[0].piece"), Item("a/[0].last.piece")),
    "folder-above": archive(Item("../a")),
    "folder-above-in-the-middle": archive(Item("a/b/../../../c")),
    "folder-above-with-backslash": archive(Item("a\\..\\..\\b")),
    "absolute-path": archive(Item("/etc/passwd")),
    "absolute-path-of-network": archive(Item("\\\\host\\share\\a")),
    "drive-path": archive(Item("C:/a")),
    "drive-path-with-backslash": archive(Item("c:\\a")),
    "zero-byte-in-name": archive(Item("a.xml\0.exe")),
    "name-is-no-utf8": archive(Item(b"\xC3\x28", flags=0x800)),
    "name-of-65535-characters": archive(Item("n" * 65535)),
    "thousand-nested-folders": archive(Item("f/" * 1000 + "a")),

    "stored-sizes-differ": archive(Item("a", size=6)),
    "size-too-small": archive(Item("a", NOISE, DEFLATE, size=100)),
    "size-too-large": archive(Item("a", NOISE, DEFLATE, size=100000)),
    "size-zero": archive(Item("a", NOISE, DEFLATE, size=0)),
    "packed-size-too-small": archive(Item("a", NOISE, DEFLATE, packed=10)),
    "deflate-without-data": archive(Item("a", b"", DEFLATE, size=9, packed=0)),
    "bytes-behind-empty-deflate": archive(Item("a", deflated(b"") + b"hidden", local=dict(method=DEFLATE),
                                               central=dict(method=DEFLATE), size=0, crc=0)),
    "checksum-wrong": archive(Item("a", crc=0)),
    "deflate-unfinished": archive(Item("a", unfinished(b"content"), size=7, crc=zlib.crc32(b"content"),
                                       local=dict(method=DEFLATE), central=dict(method=DEFLATE))),
    "deflate-damaged": archive(Item("a", b"\x07 is no block type", method=STORE, local=dict(method=DEFLATE),
                                    central=dict(method=DEFLATE))),
    "encrypted": archive(Item("a", flags=1)),
    "encrypted-strongly": archive(Item("a", flags=0x40)),
    "encrypted-with-header": archive(Item("a", flags=0x2000)),
    "encrypted-by-field": archive(Item("a", central=dict(extra=field(0x17, bytes(8))))),
    "encrypted-by-local-field": archive(Item("a", local=dict(extra=field(0x17, bytes(8))))),
    "encrypted-ignored": archive(Item("[trash]/0", flags=1)),
    "method-lzma": archive(Item("a", method=14)),
    "method-lzma-of-folder": archive(Item("f/", method=14)),
    "bomb-by-its-own-account": archive(said_to_be(10 << 30, bytes(43_000_000))),
    "part-of-17-GiB": archive(said_to_be(17 << 30, b"x")),
}


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    for name, data in ARCHIVES.items():
        with open(os.path.join(folder, name + ".zip"), "wb") as file:
            file.write(data)


if __name__ == "__main__":
    main()
