"""Stores that are written in Python."""
import io
import zipfile

import pytest

import opcmodel as opc
from packages import DOCUMENT, make_document


class ZipStore(opc.Store):
    """The items of an archive, by zipfile."""

    def __init__(self, content):
        self.archive = zipfile.ZipFile(io.BytesIO(content))
        self.opened = []
        self.is_closed = False

    def names(self):
        return ["/" + name for name in self.archive.namelist() if name != "[Content_Types].xml"]

    def content_types(self):
        return self.archive.read("[Content_Types].xml")

    def open(self, name):
        self.opened.append(name)
        return self.archive.open(name[1:])

    def close(self):
        self.is_closed = True


class TypedStore(opc.Store):
    """A part with its own type, whose size is known."""

    def names(self):
        return iter(["/a.txt"])

    def content_type(self, name):
        return "text/plain"

    def size(self, name):
        return 4

    def open(self, name):
        return io.BytesIO(b"text")


def test_a_store_is_a_package():
    store = ZipStore(make_document())
    with opc.open(store) as package:
        assert [(part.name, part.content_type, part.size) for part in package.parts] == [
            ("/notes.xml", "application/xml", None), ("/word/document.xml", DOCUMENT, None)]
        assert package.rels["rId1"].part.rels["rId2"].exists
        assert "/notes.xml" not in store.opened
        assert package["/notes.xml"].read() == package["/notes.xml"].open().read() == b"<notes/>"
        assert package["/notes.xml"].open().seek(-3, 2) == 5
        for refused in (lambda: package.add("/a.xml", "a/b"), lambda: package.save(io.BytesIO()), package.to_bytes,
                        lambda: package.format):
            with pytest.raises((opc.StateError, opc.StoreError)):
                refused()
    assert store.is_closed
    with opc.open(TypedStore()) as package:
        assert [(part.content_type, part.size, part.read()) for part in package.parts] == [("text/plain", 4, b"text")]
    with pytest.raises(ValueError):
        opc.open(TypedStore(), "r+")


def test_an_exception_of_a_store_comes_out():
    """Whichever function fails, at whatever point, strictly or leniently."""
    class Failure(Exception):
        pass

    failure = Failure()

    def fail(*_):
        raise failure

    for strict in (False, True):
        for name in ("names", "content_types", "open", "size", "close"):
            store = ZipStore(make_document())
            setattr(store, name, fail)
            with pytest.raises(Failure) as caught:
                with opc.open(store, strict=strict):
                    pass
            assert caught.value is failure and caught.traceback[-1].name == "fail"
    for wrong in ({"names": lambda: 5}, {"names": lambda: [5]}, {"open": lambda name: None}, {"size": lambda name: "x"},
                  {"content_types": lambda: "text"}):
        store = ZipStore(make_document())
        vars(store).update(wrong)
        with pytest.raises((TypeError, AttributeError)):
            opc.open(store)
    with pytest.raises(NotImplementedError):
        class Half(opc.Store):
            def names(self):
                return ["/a.txt"]

            def open(self, name):
                raise OSError

        opc.open(Half())
