"""Opening, reading, changing and saving packages."""
import io
import pathlib
import re
import threading
import warnings

import pytest

import opcmodel as opc
from packages import DOCUMENT, HYPERLINK, OFFICE_DOCUMENT, make_archive, make_document

ODD = make_document(items={".DS_Store": "x"})  # no content type covers it


class Pipe(io.RawIOBase):
    """A stream that can't seek."""

    def __init__(self, content=b""):
        super().__init__()
        self.content = io.BytesIO(content)
        self.written = b""

    def readable(self):
        return True

    def writable(self):
        return True

    def read(self, size=-1):
        return self.content.read(size)

    def write(self, block):
        self.written += bytes(block)
        return len(block)


class Counting(io.BytesIO):
    """Counts the bytes that are read."""

    count = 0

    def read(self, size=-1):
        block = super().read(size)
        self.count += len(block)
        return block


def names(package):
    return [(part.name, part.content_type, part.size) for part in package.parts]


def test_every_source_gives_the_same_package(tmp_path):
    content = make_document()
    path = tmp_path / "a.docx"
    path.write_bytes(content)
    sources = [path, str(path), content, bytearray(content), memoryview(content), io.BytesIO(content), Pipe(content),
               path.open("rb")]
    listings = []
    for source in sources:
        with opc.open(source) as package:
            listings.append((names(package), package.rels.all()[0].id, package["/notes.xml"].read()))
    assert listings == [([("/notes.xml", "application/xml", 8), ("/word/document.xml", DOCUMENT, 84)], "rId1",
                         b"<notes/>")] * len(sources)
    sources[-1].close()


def test_a_file_object_is_read_where_it_is_needed():
    source = Counting(make_archive({"[Content_Types].xml": '<Types xmlns="http://schemas.openxmlformats.org/package/2006/'
                                    'content-types"><Default Extension="bin" ContentType="a/b"/></Types>',
                                    "big.bin": bytes(5_000_000), "small.bin": b"small"}, compression=0))
    with opc.open(source) as package:
        assert [part.size for part in package.parts] == [5_000_000, 5]
        assert package["/small.bin"].read() == b"small"
        assert source.count < 200_000


def test_parts_are_a_mapping():
    with opc.open(make_document()) as package:
        assert list(package) == ["/notes.xml", "/word/document.xml"]
        assert len(package) == 2
        assert "/WORD/Document.xml" in package
        for name in ("/none", "no name", "/_rels/.rels", "/", "", "/a\ud800", "/ä", 5, None):
            assert name not in package
            assert package.get(name) is None
            with pytest.raises(opc.PartNotFound):
                package[name]


def test_relationships_are_a_mapping():
    with opc.open(make_document()) as package:
        rels = package["/word/document.xml"].rels
        assert {id: (one.type, one.target, one.external, one.resolved) for id, one in rels.items()} == {
            "rId1": (HYPERLINK, "https://example.com/", True, None),
            "rId2": ("urn:example:note", "../notes.xml#second", False, "/notes.xml#second")}
        assert rels["rId2"].part.read() == b"<notes/>"
        assert [rels[id].exists for id in rels] == [False, True]
        assert package.rels.by_type(OFFICE_DOCUMENT)[0].part.name == "/word/document.xml"
        assert package.rels.by_type("none") == []
        assert "rId3" not in rels and rels.get("rId3") is None and len(rels) == 2
        with pytest.raises(opc.PartNotFound):
            rels["rId1"].part


def test_streams_of_one_part_are_independent():
    content = bytes(range(256)) * 1000
    with opc.open(make_document(items={"notes.xml": content})) as package:
        part = package["/notes.xml"]
        with part.open() as one, io.BufferedReader(part.open()) as other:
            assert one.read(300) == content[:300]
            assert other.read(10) == content[:10]
            assert one.read(20) == content[300:320]
            assert part.read() == content
            for place, whence, at in ((5, 0, 5), (1, 1, 6), (-4, 2, len(content) - 4), (len(content) + 9, 0, len(content) + 9)):
                assert one.seek(place, whence) == at
                assert one.read() == content[at:]
                one.seek(at)
            with pytest.raises(ValueError):
                one.seek(-1)
        with pytest.raises(ValueError):
            one.read()


def change(package):
    package["/notes.xml"].write(b"<changed/>")
    part = package.add("/word/a.png", "image/png", io.BytesIO(b"png"))
    package["/word/document.xml"].rels.add("urn:example:image", part)
    return {"/notes.xml": b"<changed/>", "/word/a.png": b"png"}


def contents(source):
    with opc.open(source) as package:
        return {name: part.read() for name, part in package.items() if name != "/word/document.xml"}


def test_a_package_is_saved_where_it_came_from(tmp_path):
    path = tmp_path / "a.docx"
    path.write_bytes(make_document())
    with opc.open(path, "r+") as package:
        expected = change(package)
        assert package["/notes.xml"].read() == b"<changed/>"
    assert contents(path) == expected

    file = io.BytesIO(make_document())
    with opc.open(file, "r+") as package:
        change(package)
    assert contents(file) == expected

    with opc.open(make_document(), "r+") as package:
        change(package)
        package.save()
        assert contents(package.to_bytes()) == expected


def test_a_package_goes_on_where_it_is_saved(tmp_path):
    """By the source and the target of a save: the source stays, and the target gets what is changed afterwards, too."""
    original = make_document()
    for source_kind in ("path", "bytes", "object"):
        for target_kind in ("path", "object"):
            path, target = tmp_path / f"{source_kind}-{target_kind}", tmp_path / f"{source_kind}-{target_kind}-target"
            path.write_bytes(original)
            source = {"path": path, "bytes": original, "object": io.BytesIO(original)}[source_kind]
            written = target if target_kind == "path" else io.BytesIO()
            with opc.open(source, "r+") as package:
                notes = package["/notes.xml"]
                expected = change(package)
                package.save(written)
                assert contents(written) == expected
                notes.write(b"later")
            assert contents(written) == {**expected, "/notes.xml": b"later"}
            assert contents(source) == {"/notes.xml": b"<notes/>"}
    with opc.open(original) as package:
        pipe = Pipe()
        package.save(pipe)
        assert contents(pipe.written) == contents(original)


def test_an_exception_drops_the_changes(tmp_path):
    path = tmp_path / "a.docx"
    path.write_bytes(make_document())
    with pytest.raises(ZeroDivisionError):
        with opc.open(path, "r+") as package:
            change(package)
            raise ZeroDivisionError
    assert contents(path) == {"/notes.xml": b"<notes/>"}
    with opc.open(path, "r+") as package:
        change(package)
        package.close()
    assert contents(path) == {"/notes.xml": b"<notes/>"}


def test_new_packages(tmp_path):
    path = tmp_path / "new.zip"
    for mode, target in (("x", path), ("w", path), ("w", io.BytesIO())):
        with opc.open(target, mode, deterministic=True) as package:
            package.add("/a.xml", "text/xml", b"<a/>")
            package.rels.add("urn:example:a", "/a.xml")
            package.save()
            package.add("/b.xml", "text/xml", pathlib.Path(__file__))
            del package["/a.xml"]
        assert contents(target) == {"/b.xml": pathlib.Path(__file__).read_bytes()}
    with pytest.raises(FileExistsError):
        opc.open(path, "x")
    with pytest.raises(ValueError):
        opc.open(path, "a")


def test_oddities_are_told_or_refused():
    with pytest.warns(opc.LenientWarning, match=r"/\.DS_Store") as caught:
        with opc.open(ODD) as package:
            assert [oddity.place for oddity in package.hidden] == ["/.DS_Store"]
            assert "/.DS_Store" not in package
    assert caught[0].message.oddities[0].rule == "M2.4"
    assert caught[0].filename == __file__
    with pytest.raises(opc.ContentTypeNotFound):
        opc.open(ODD, strict=True)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        opc.open(make_document()).close()


def test_after_the_package_is_closed():
    """Nothing that stands on a closed package, or on a part that is gone, works any more; and nothing crashes."""
    package = opc.open(make_document(), "r+")
    part = package["/word/document.xml"]
    calls = {
        "list": lambda: list(package), "len": lambda: len(package), "contains": lambda: "/a" in package,
        "get": lambda: package["/notes.xml"], "add": lambda: package.add("/a.xml", "a/b"),
        "remove": lambda: package.remove("/notes.xml"), "save": package.save, "rels": lambda: len(package.rels),
        "read": part.read, "write": lambda: part.write(b""), "open": part.open, "size": lambda: part.size,
        "part rels": lambda: list(part.rels), "add rel": lambda: part.rels.add("urn:a", "/notes.xml"),
        "stream": part.open().read, "save to": lambda: package.save(io.BytesIO()), "retype": lambda: package.retype("/notes.xml", "a/b"),
        "hidden": lambda: package.hidden,
    }
    shown = package.rels, package.properties, package.custom_properties, part
    gone = package.add("/gone.xml", "text/xml")
    del package["/gone.xml"]
    for call in (gone.read, lambda: gone.write(b""), gone.open, lambda: gone.size, lambda: list(gone.rels)):
        with pytest.raises(opc.InvalidObject):
            call()
    package.close()
    package.close()
    assert package.closed and part.name == "/word/document.xml" and "closed" not in repr(part)
    for name, call in calls.items():
        with pytest.raises(opc.StateError):
            print(name, call())
    assert all(repr(one).startswith("<") for one in shown)


def test_a_part_keeps_its_package():
    part = opc.open(make_document())["/notes.xml"]
    assert part.read() == b"<notes/>"
    stream = opc.open(make_document())["/notes.xml"].open()
    assert stream.read() == b"<notes/>"


def test_what_cannot_be_is_refused(tmp_path):
    path = tmp_path / "a.docx"
    path.write_bytes(make_document())
    package = opc.open(path)
    changed = opc.open(make_document(), "r+")
    table = [
        (lambda: opc.open(tmp_path / "none"), opc.PackageNotFound, FileNotFoundError),
        (lambda: opc.open(b"no archive"), opc.PackageOpenFailed, OSError),
        (lambda: opc.open(make_document(items={"[Content_Types].xml": None})), opc.StoreError, OSError),
        (lambda: opc.open(path, limits=opc.Limits(items=1)), opc.PackageOpenFailed, OSError),
        (lambda: package.add("/a.xml", "a/b"), opc.PackageReadOnly, opc.StateError),
        (lambda: package.save(), opc.PackageReadOnly, opc.StateError),
        (lambda: package.rels["rId7"], opc.RelationshipNotFound, KeyError),
        (lambda: changed.add("/notes.xml", "a/b"), opc.PartAlreadyExists, opc.StateError),
        (lambda: changed.add("a.xml", "a/b"), opc.InvalidPartName, ValueError),
        (lambda: changed.add("/notes.xml/a", "a/b"), opc.PartIsDerivedFromExistingPartName, ValueError),
        (lambda: changed.add("/b.xml", "text"), opc.InvalidContentType, ValueError),
        (lambda: changed.add("/b.xml", "a/b", "text"), TypeError, TypeError),
        (lambda: changed.add("/b.xml", "a/b", io.StringIO("text")), TypeError, TypeError),
        (lambda: changed.add("/b.xml", "a/b", tmp_path / "none"), opc.StoreError, OSError),
        (lambda: changed.remove("/none.xml"), opc.PartNotFound, KeyError),
        (lambda: changed.remove("/*.xml"), opc.PartNotFound, KeyError),
        (lambda: changed.rels.add("", "/notes.xml"), opc.InvalidRelationshipType, ValueError),
        (lambda: changed.rels.add("urn:a", "/notes.xml", id="rId1"), opc.RelationshipAlreadyExists, opc.StateError),
        (lambda: changed.rels.add("urn:a", "/notes.xml", id="1"), opc.InvalidRelationshipID, opc.FormatError),
        (lambda: changed.rels.remove("rId9"), opc.RelationshipNotFound, opc.NotFound),
        (lambda: opc.open(5), TypeError, TypeError),
        (lambda: opc.open(path, limits=opc.Limits(items=-1)), TypeError, TypeError),
    ]
    for number, (call, kind, family) in enumerate(table):
        with pytest.raises(family) as caught:
            call()
        assert type(caught.value) is kind, number
    with pytest.raises(opc.StoreError) as caught:
        opc.open(path, limits=opc.Limits(items=1))
    assert caught.value.limit
    with pytest.raises(opc.PartNotFound) as caught:
        package["/none.xml"]
    assert (caught.value.part, str(caught.value)) == ("/none.xml", "No part found with the name:/none.xml")
    changed.close()


def test_every_class_of_the_library_has_its_own():
    root = pathlib.Path(__file__).resolve().parents[3]
    headers = [root / "include/opc/model/Errors.hpp", *root.glob("editing/include/**/*.hpp"),
               *root.glob("standard_signatures/include/**/*.hpp"), *root.glob("inspection/include/**/*.hpp"),
               *root.glob("platform/*/include/**/*.hpp")]
    declared = {name for header in headers for name in re.findall(
        r"^class [A-Z_]+_EXPORT (\w+)\s*:\s*public (?:\w+::)*(?:Exception|InvalidKey|CertificateException|runtime_error)\b",
        header.read_text(), re.M)} - {"Exception", "IRIException"}
    assert len(declared) > 40
    assert {name for name in declared if not issubclass(getattr(opc, name, int), opc.OpcError)} == set()


class Broken(io.BytesIO):
    """Fails after some reads."""

    def __init__(self, content, good, failure):
        super().__init__(content)
        self.good = good
        self.failure = failure

    def read(self, size=-1):
        self.good -= 1
        if self.good < 0:
            raise self.failure
        return super().read(size)


def test_an_exception_of_a_file_object_comes_out():
    failure = ConnectionResetError("gone")
    for good in range(10):
        with pytest.raises(ConnectionResetError) as caught:
            with opc.open(Broken(make_document(), good, failure)) as package:
                for part in package.parts:
                    part.read()
                raise failure
        assert caught.value is failure
        assert "read" in [entry.name for entry in caught.traceback] or good == 9
    for wrong in (lambda size: "text", lambda size: None, lambda size: b"x" * (size + 1)):
        file = io.BytesIO(make_document())
        broken = type("Wrong", (), {"read": lambda self, size: wrong(size), "seek": file.seek, "tell": file.tell,
                                    "seekable": lambda self: True})()
        with pytest.raises((TypeError, BlockingIOError, ValueError)):
            opc.open(broken)
    with opc.open(make_document(), "r+") as package:
        with pytest.raises(ConnectionResetError):
            package.add("/a.bin", "a/b", Broken(b"x" * 100_000, 1, failure))


def test_two_threads_do_not_race():
    """Each call is alone, or raises that the package is in use."""
    package = opc.open(make_document(items={"notes.xml": bytes(3_000_000)}), "r+")
    outcomes = []

    def work(number):
        for _ in range(20):
            try:
                package["/notes.xml"].read()
                package.rels.by_type(OFFICE_DOCUMENT)
                package["/word/document.xml"].write(b"%d" % number)
                outcomes.append(True)
            except opc.PackageInUse:
                outcomes.append(False)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(outcomes) == 80 and True in outcomes
    package.close()

    class Reentrant(io.BytesIO):
        def read(self, size=-1):
            return b"%d" % len(package)

    with opc.open(make_document(), "r+") as package, pytest.raises(opc.PackageInUse):
        package.add("/a.bin", "a/b", Reentrant())


def test_an_unsaved_package_that_is_dropped_is_told(tmp_path):
    path = tmp_path / "a.docx"
    path.write_bytes(make_document())
    with pytest.warns(ResourceWarning, match="unsaved changes"):
        package = opc.open(path, "r+")
        package.add("/a.xml", "a/b")
        del package


def test_a_file_object_is_source_and_target():
    """Also where nothing has changed, so that the archive is still read from it."""
    file = io.BytesIO(make_document())
    for change_it in (lambda package: package.move("/notes.xml", "/notes.xml"), change, lambda package: None):
        with opc.open(file, "r+") as package:
            change_it(package)
            package.save(file)
    assert len(contents(file)) == 2
