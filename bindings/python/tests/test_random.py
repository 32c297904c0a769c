"""Random sequences of calls, compared with a model of dictionaries. OPCMODEL_SEQUENCES sets how many; more than the 500 of an
ordinary run are other ones each time."""
import io
import os

from hypothesis import HealthCheck, settings
from hypothesis import strategies as st
from hypothesis.stateful import RuleBasedStateMachine, initialize, invariant, precondition, rule

import opcmodel as opc

SEQUENCES = int(os.environ.get("OPCMODEL_SEQUENCES", "500"))
GOOD = ["/a.xml", "/A.XML", "/b/c.png", "/d", "/%C3%BC.bin", "/e/f/g"]
BAD = ["a", "", "/", "/a.xml/", "/_rels/.rels", "/a//b", "/.", "/ä", "/a b\x00"]
names = st.sampled_from(GOOD + ["/d/below", "/b"])
any_names = st.one_of(names, st.sampled_from(BAD))
contents = st.binary(max_size=40) | st.integers(0, 200_000).map(bytes)
ids = st.sampled_from(["", "rId1", "x", "r1"])


class PackageMachine(RuleBasedStateMachine):
    @initialize(is_new=st.booleans(), strict=st.booleans())
    def start(self, is_new, strict):
        self.strict = strict
        self.parts, self.rels = {}, {"/": {}}  # by names in lower case
        self.saved = None
        self.old_parts, self.streams = [], []
        self.file = io.BytesIO()
        self.package = opc.open(self.file, "w", strict=strict)
        self.is_created = True
        if not is_new:
            self.package.add("/a.xml", "text/xml", b"<a/>")
            self.parts["/a.xml"] = ["/a.xml", "text/xml", b"<a/>"]
            self.rels["/a.xml"] = {}
            self.save()

    def expect(self, is_good, call):
        """Calls, and wants a value or an exception of the family."""
        try:
            value = call()
        except opc.OpcError as failure:
            assert not is_good, repr(failure)
            assert str(failure)
            return None
        assert is_good, value
        return value

    def can_add(self, name):
        low = name.lower()
        return name not in BAD and not any(
            low == other or low.startswith(other + "/") or other.startswith(low + "/") for other in self.parts)

    @rule(name=any_names, type=st.sampled_from(["text/xml", "image/png"]), content=contents, as_file=st.booleans())
    def add(self, name, type, content, as_file):
        good = self.can_add(name)
        self.expect(good, lambda: self.package.add(name, type, io.BytesIO(content) if as_file else content))
        if good:
            self.parts[name.lower()] = [name, type, content]
            self.rels[name.lower()] = {}

    @rule(name=any_names)
    def remove(self, name):
        good = name.lower() in self.parts and not self.is_created
        part = self.package.get(name)
        if part is not None:
            self.old_parts.append(part)
        self.expect(good, lambda: self.package.remove(name))
        if good:
            del self.parts[name.lower()], self.rels[name.lower()]

    @rule(name=names, content=contents)
    def write(self, name, content):
        part = self.package.get(name)
        assert (part is not None) == (name.lower() in self.parts)
        if part is not None:
            part.write(content)
            self.parts[name.lower()][2] = content
            self.old_parts.append(part)

    @rule(name=names, type=st.sampled_from(["text/xml", "application/x", "wrong"]))
    def retype(self, name, type):
        good = name.lower() in self.parts and type != "wrong"
        self.expect(good, lambda: self.package.retype(name, type))
        if good:
            self.parts[name.lower()][1] = type

    @rule(name=names, new=names)
    def move(self, name, new):
        old = self.parts.get(name.lower())
        others = {other for other in self.parts if other != name.lower()}
        low = new.lower()
        good = old is not None and not self.is_created and (old[0] == new or not any(
            low == other or low.startswith(other + "/") or other.startswith(low + "/") for other in others))
        if old is not None and old[0] != name:
            return
        if not good or any(target == name.lower() for rels in self.rels.values() for _, target, _ in rels.values()):
            return  # a failed move wants the package closed; targets are the business of other tests
        self.expect(True, lambda: self.package.move(name, new))
        moved = self.parts.pop(name.lower())
        self.parts[low] = [new, *moved[1:]]
        self.rels[low] = self.rels.pop(name.lower())

    def source(self, name):
        return self.package.rels if name == "/" else self.package[name].rels

    @rule(data=st.data(), id=ids, external=st.booleans(), leads_to=names)
    def relate(self, data, id, external, leads_to):
        name = data.draw(st.sampled_from(sorted(self.rels)))
        rels = self.rels[name]
        good = id not in rels and (external or leads_to.lower() != name)
        made = self.expect(good, lambda: self.source(name).add("urn:a", leads_to, external=external, id=id or None))
        if good:
            assert made not in rels and (made == id or not id)
            rels[made] = ("urn:a", leads_to.lower(), external)

    @rule(data=st.data(), id=st.sampled_from(["rId1", "x", "rId2"]))
    def unrelate(self, data, id):
        name = data.draw(st.sampled_from(sorted(self.rels)))
        good = id in self.rels[name] and not self.is_created
        self.expect(good, lambda: self.source(name).remove(id))
        if good:
            del self.rels[name][id]

    @rule(name=names, place=st.integers(0, 300_000), size=st.integers(0, 5000))
    def read_stream(self, name, place, size):
        if name.lower() not in self.parts:
            return
        stream = self.package[name].open()
        stream.seek(place)
        assert stream.read(size) == self.parts[name.lower()][2][place:place + size]
        self.streams.append(stream)

    @rule(data=st.data())
    def use_what_is_old(self, data):
        """It gives something or raises; nothing crashes."""
        for thing in self.old_parts[-3:] + self.streams[-3:]:
            try:
                thing.read()
                len(thing.rels)
            except (opc.OpcError, AttributeError):
                pass

    @rule()
    def save(self):
        self.package.save()
        self.is_created = False
        self.saved = ({low: list(part) for low, part in self.parts.items()},
                      {name: dict(rels) for name, rels in self.rels.items()})

    @rule()
    def save_elsewhere(self):
        self.file = io.BytesIO()
        self.package.save(self.file)
        self.is_created = False
        self.saved = ({low: list(part) for low, part in self.parts.items()},
                      {name: dict(rels) for name, rels in self.rels.items()})

    @precondition(lambda self: self.saved is not None)
    @rule(abandons=st.booleans())
    def reopen(self, abandons):
        if abandons:
            self.package.close()
            self.parts = {low: list(part) for low, part in self.saved[0].items()}
            self.rels = {name: dict(rels) for name, rels in self.saved[1].items()}
        else:
            with self.package:
                pass
            self.saved = None
        for thing in self.old_parts[-2:]:
            self.expect(False, thing.read)
        self.package = opc.open(self.file, "r+", strict=self.strict)
        self.save()

    @invariant()
    def is_like_the_model(self):
        if not hasattr(self, "package"):
            return
        assert {part.name: (part.content_type, part.size, part.read()) for part in self.package.parts} == {
            name: (type, len(content), content) for name, type, content in self.parts.values()}
        assert len(self.package) == len(self.parts)
        for name, rels in self.rels.items():
            assert {one.id: (one.type, (one.target if one.external else one.part_name).lower(), one.external)
                    for one in self.source(name).all()} == rels

    def teardown(self):
        if hasattr(self, "package"):
            self.package.close()


PackageMachine.TestCase.settings = settings(
    max_examples=SEQUENCES, stateful_step_count=12, deadline=None, derandomize=SEQUENCES <= 500, database=None,
    suppress_health_check=list(HealthCheck))
TestPackages = PackageMachine.TestCase
