"""Memory stays flat over many opens. OPCMODEL_OPENS sets how many."""
import gc
import io
import os
import subprocess
import sys
import weakref

import opcmodel as opc
from packages import make_document
from test_store import ZipStore

OPENS = int(os.environ.get("OPCMODEL_OPENS", "2000"))
CONTENT = make_document()


def resident():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def use():
    with opc.open(CONTENT, "r+") as package:
        for part in package.parts:
            part.read()
            part.rels.all()
        package.rels.add("urn:example:a", "/notes.xml")
        package.properties.title = "title"
    with opc.open(io.BytesIO(CONTENT)) as package:
        stream = package["/notes.xml"].open()
        stream.read(3)
        for name in ("/none", "bad"):
            package.get(name)
    try:
        opc.open(CONTENT[:200])
    except opc.StoreError:
        pass


def test_memory_is_flat():
    for _ in range(200):
        use()
    gc.collect()
    before = resident()
    for _ in range(OPENS):
        use()
    gc.collect()
    if "LD_PRELOAD" not in os.environ:  # a sanitizer keeps what is freed
        assert resident() - before < 4 << 20


class File(io.BytesIO):
    """A file object that can have attributes."""


class Kept(ZipStore):
    """A store that keeps what `keep` makes of its package."""

    closed = []

    def __init__(self, keep):
        super().__init__(CONTENT)
        self.kept = keep(opc.open(self))

    def close(self):
        self.closed.append(self.kept is not None)


KEEPING = (lambda package: package, lambda package: package["/notes.xml"], lambda package: package["/notes.xml"].rels,
           lambda package: package["/notes.xml"].open(), lambda package: package.properties)


class Scanning:
    """Gives the sources of its own scan."""

    def __init__(self):
        self.scan = opc.scan(self.sources(), window=2, jobs=2)
        next(self.scan)

    def sources(self):
        while True:
            yield "a", CONTENT


def kept_file():
    file = File(CONTENT)
    file.package = opc.open(file)
    return file


class Failing(ZipStore):
    """A store that keeps its package, and fails when it is closed."""

    def __init__(self):
        super().__init__(CONTENT)
        self.package = opc.open(self)

    def close(self):
        raise OSError


def is_freed(make):
    made = weakref.ref(make())
    gc.collect()
    return made() is None


def test_what_keeps_its_own_package_is_freed():
    for keep in KEEPING:
        Kept.closed.clear()
        assert is_freed(lambda: Kept(keep)) and Kept.closed == [True]
    assert is_freed(kept_file) and is_freed(Scanning) and is_freed(Failing)


def test_the_interpreter_ends_after_a_failure_that_nobody_gets():
    """The package is destroyed outside of any call, and its store fails."""
    ended = subprocess.run([sys.executable, "-c", "import test_memory as test\nfailing = test.Failing()\n"
                            "package = failing.package\ndel failing.package\ndel failing, package\nprint('done')"],
                           cwd=os.path.dirname(__file__), timeout=60, capture_output=True, text=True, check=True)
    assert ended.stdout == "done\n" and "OSError" in ended.stderr


def test_what_is_used_is_kept():
    """A part or a stream keeps all that it needs."""
    for keep in (lambda package: package["/notes.xml"], lambda package: package["/notes.xml"].open()):
        for used in (keep(Kept(lambda package: package).kept), keep(kept_file().package)):
            gc.collect()
            assert used.read() == b"<notes/>"
