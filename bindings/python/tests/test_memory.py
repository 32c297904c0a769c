"""Memory stays flat over many opens. OPCMODEL_OPENS sets how many."""
import gc
import io
import os

import opcmodel as opc
from packages import make_document

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
