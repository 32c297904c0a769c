#!/usr/bin/env python3
"""Changes packages with opctool, and holds what has become of them against what they were.

  changes.py OPCTOOL                        packages of the tests' own, with every oddity that is taken
  changes.py OPCTOOL FOLDER [COUNT [SEED]]  COUNT of the files in any folder, chosen by SEED

A copy of each is changed in each way: a part is added, given other content, removed; a relationship is added, removed; a
property is set; it is signed. Afterwards every item that the change isn't about has the bytes that it had, compressed as
they were; the documents that list relationships and content types have all their bytes but for the entries of the change;
`unzip -t` accepts the archive if it did before; and what is listed is what was listed, but for the change. A change that
is refused leaves the file as it was. Prints each violation, and counts the changes.
"""
import collections
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the folder of the sources stays as it is
import archives
import odd_packages

MIB = 1 << 20
PROPERTIES = 'http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties'

Outcome = collections.namedtuple('Outcome', 'status output errors seconds peak')
Change = collections.namedtuple('Change', 'kind arguments subject source id', defaults=(None, None))


class Tool:
    def __init__(self, path, folder):
        self.path = path
        self.folder = folder
        self.output, self.errors = (open(os.path.join(folder, name), 'w+b') for name in ('output', 'errors'))

    def run(self, command, package, *arguments):
        for stream in (self.output, self.errors):
            stream.seek(0)
            stream.truncate()
        child = os.posix_spawn(self.path, [self.path, command, package, *arguments], os.environ, file_actions=[
            (os.POSIX_SPAWN_DUP2, self.output.fileno(), 1), (os.POSIX_SPAWN_DUP2, self.errors.fileno(), 2)])
        _, status, usage = os.wait4(child, 0)
        texts = []
        for stream in (self.output, self.errors):
            stream.seek(0)
            texts.append(stream.read().decode())
        return Outcome(os.waitstatus_to_exitcode(status), *texts, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


class Listing:
    """What the tool tells of a package."""

    def __init__(self, tool, package):
        outcomes = [tool.run(*command) for command in (('ls', package, '--json'), ('rels', package, '--all', '--json'),
                                                       ('props', package, '--json'))]
        parts, relationships, properties = (json.loads(outcome.output) if outcome.status == 0 else None
                                            for outcome in outcomes)
        self.failures = [outcome.errors for outcome in outcomes[:2] if outcome.status != 0]
        self.parts = {part['name']: (part['contentType'], part['size']) for part in parts or []}
        self.counts = {part['name']: part['relationships'] for part in parts or []}
        self.relationships = {(each['source'], each['id']): each for each in relationships or []}
        self.properties = properties


def some(items, rng, count):
    return rng.sample(items, min(count, len(items)))


def changes_of(listing, rng, count, files):
    """The changes of a package, at most `count` of each kind."""
    content, key, public = files
    core = {each['resolved'] for each in listing.relationships.values() if each['type'] == PROPERTIES}
    parts = sorted(set(listing.parts) - core)
    bearing = [part for part in parts if listing.counts[part]]
    removable = sorted(key for key, each in listing.relationships.items() if each['type'] != PROPERTIES)
    yield Change('add', ['/added/part.txt', content, '--type', 'text/x-example'], '/added/part.txt')
    yield Change('add', ['/added/item.xml', content, '--type', 'application/xml'], '/added/item.xml')
    for part in some(parts, rng, count):
        yield Change('put', [part, content], part)
        yield Change('rm', [part], part)
    for source in dict.fromkeys(['/'] + some(bearing, rng, count) + some(parts, rng, count)):
        yield Change('relate', [source, 'urn:example:type', 'http://example.org/', '--external'], source, source)
    for source, id in some(removable, rng, 2 * count):
        yield Change('unrelate', [source, id], source, source, id)
    yield Change('props', ['--set', 'title=A title of the test'], None)
    yield Change('sign', ['--key', key, '--public', public, '--profile', 'opcmodel'], None)
    yield Change('sign', ['--key', key, '--profile', 'standard'], None, id='standard')


class Check:
    """One change of one package: gives what is wrong with its outcome."""

    def __init__(self, tool, before, after, change, public):
        self.tool, self.before, self.after, self.change, self.public = tool, before, after, change, public

    def faults(self, listing, outcome):
        old, new = archives.read_items(self.before), archives.read_items(self.after)
        yield from self.item_faults(old, new, outcome)
        if test(self.after) > test(self.before):
            yield 'unzip -t no longer accepts it'
        info = self.tool.run('info', self.after)
        if info.status != 0:
            yield f'no longer opens: {info.errors.strip()}'
            return
        yield from self.listing_faults(listing, Listing(self.tool, self.after))
        if self.change.kind == 'sign':
            verified = self.tool.run('verify', self.after, '--public', self.public, '--json', '--signature',
                                     outcome.output.strip())
            row = json.loads(verified.output)[0] if verified.status in (0, 1) else None
            answer = row and row.get('cryptography')
            if not row or (answer['answer'] == 'broken' if answer else not row['holds']):
                yield f'its signature does not hold: {verified.output} {verified.errors.strip()}'

    def item_faults(self, old, new, outcome):
        kind, subject = self.change.kind, self.change.subject and archives.part_name(self.change.subject)
        new_parts = {archives.part_name(name) for name in set(new) - set(old)}
        for name, item in old.items():
            part = archives.part_name(name)
            if name not in new:
                is_meant = kind == 'rm' and part in (subject, archives.relationships_name(subject))
                if not (is_meant or (kind == 'unrelate' and self.was_last(part, item))):
                    yield f'{name} has gone'
            elif new[name][:4] != item[:4] and not (kind == 'put' and part == subject):
                yield from self.rewriting_faults(name, item.expand(), new[name].expand(), new_parts, outcome)
        for name in set(new) - set(old):
            part = archives.part_name(name)
            if not (kind in ('sign', 'props') or part == subject or
                    (kind == 'relate' and part == archives.relationships_name(self.change.source))):
                yield f'{name} has come'

    def was_last(self, part, item):
        return (part == archives.relationships_name(self.change.source)
                and len(archives.find_entries(archives.decode(item.expand()))) == 1)

    def rewriting_faults(self, name, before, after, new_parts, outcome):
        kind, part = self.change.kind, archives.part_name(name)
        if not archives.is_document(name):
            if before == after or kind != 'props':
                yield f'{name} was written anew'
            return
        gone, come, is_rest_kept = archives.compare(before, after)
        if not is_rest_kept:
            yield f'{name} has changed beside its entries:\n    {archives.decode(before)[:700]!r}\n    {archives.decode(after)[:700]!r}'
        if part == '/' + archives.CONTENT_TYPES:
            come = [each for each in come if archives.attribute(each, 'Extension') != 'rels']  # comes when it lacked
            gone = [each for each in gone if archives.part_name(archives.attribute(each, 'PartName') or '') not in new_parts]
            is_right = not gone if kind != 'rm' else not come
            is_right = is_right and len(come) <= (1 if kind in ('add', 'relate') else 3) and kind not in ('put', 'unrelate')
        elif kind == 'relate':
            is_right = not gone and len(come) == 1 and archives.attribute(come[0], 'Id') == outcome.output.strip()
            if archives.attribute(come[0] if come else '', 'Id') in self.ids(before):
                yield f'{name}: an Id that stands there already: {come}'
        elif kind == 'unrelate':
            is_right = not come and [archives.attribute(each, 'Id') for each in gone] == [self.change.id]
        else:
            is_right = kind in ('props', 'sign') and part == '/_rels/.rels' and not gone and len(come) == 1
        if not is_right:
            yield f'{name}: entries that have gone: {gone}, come: {come}'

    @staticmethod
    def ids(document):
        text = archives.decode(document)
        return [archives.attribute(text[begin:end], 'Id') for begin, end in archives.find_entries(text)]

    def listing_faults(self, before, after):
        kind, subject = self.change.kind, self.change.subject
        parts, relationships, properties = dict(before.parts), dict(before.relationships), before.properties
        new = {key: each for key, each in after.relationships.items() if relationships.get(key) != each}
        come = set(after.parts) - set(parts)
        if kind in ('add', 'put'):
            parts[subject] = after.parts.get(subject)
        elif kind == 'rm':
            del parts[subject]
            relationships = {key: each for key, each in relationships.items() if key[0] != subject}
        elif kind == 'relate' and len(new) == 1:
            relationships.update(new)
        elif kind == 'unrelate':
            del relationships[self.change.source, self.change.id]
            of_the_same_id = (self.change.source, self.change.id)  # one that had been left out counts now
            relationships.update({key: each for key, each in new.items() if key == of_the_same_id})
        elif kind == 'props':
            core = {each['resolved'] for each in after.relationships.values() if each['type'] == PROPERTIES}
            parts.update({name: after.parts[name] for name in core if name in after.parts})
            relationships.update({key: each for key, each in new.items() if each['type'] == PROPERTIES})
            if after.properties is None or after.properties.get('title') != 'A title of the test':
                yield f'the title is not there: {after.properties}'
            if properties is not None and after.properties is not None:
                properties = {**properties, 'title': after.properties['title']}
            else:
                properties = after.properties
        elif kind == 'sign':
            parts.update({name: after.parts[name] for name in come if name.startswith('/_xmlsignatures/')})
            relationships.update({key: each for key, each in new.items()
                                  if each['source'] == '/' or each['source'] in come or '/_xmlsignatures/' in each['source']})
        for what, expected, actual in (('parts', parts, after.parts), ('relationships', relationships, after.relationships),
                                       ('properties', properties, after.properties)):
            if expected != actual:
                yield f'{what}: {differences(expected, actual)}'


def differences(expected, actual):
    if expected is None or actual is None:
        return f'{expected} and {actual}'
    keys = [key for key in {**expected, **actual} if expected.get(key) != actual.get(key)]
    return [(key, expected.get(key), actual.get(key)) for key in keys[:3]]


def test(path):
    """How bad `unzip` finds an archive: 0 good, 1 with a warning, more."""
    return subprocess.run(['unzip', '-tqq', path], capture_output=True, check=False).returncode


class Run:
    def __init__(self, tool_path, folder):
        self.folder = folder
        self.tool = Tool(tool_path, folder)
        self.content, self.key, self.public = (os.path.join(folder, name) for name in ('content', 'key', 'public'))
        with open(self.content, 'w', encoding='utf-8') as file:
            file.write('<content/>')
        subprocess.run(['openssl', 'genrsa', '-out', self.key, '2048'], check=True, capture_output=True)
        subprocess.run(['openssl', 'rsa', '-in', self.key, '-pubout', '-out', self.public], check=True, capture_output=True)
        self.counts = collections.Counter()
        self.refusals = collections.Counter()
        self.violations = 0

    def tell(self, name, text):
        self.violations += 1
        print(f'VIOLATION {name}: {text}', flush=True)

    def check(self, path, rng, count, refuses=None):
        """Changes copies of a package in each way. Gives whether it opens."""
        name = os.path.basename(path)
        self.counts['files'] += 1
        info = self.tool.run('info', path)
        if info.seconds > 1 or info.peak > 64 * MIB:
            self.tell(name, f'info took {info.seconds:.2f} s, {info.peak // MIB} MiB')
        if info.status != 0:
            self.refusals['opening: ' + info.errors.replace(path, 'PACKAGE').strip()] += 1
            if info.status != 3 or path not in info.errors:
                self.tell(name, f'info: status {info.status}: {info.errors.strip()}')
            return False
        listing = Listing(self.tool, path)
        for failure in listing.failures:
            self.tell(name, failure.strip())
        for change in changes_of(listing, rng, count, (self.content, self.key, self.public)):
            is_refused = refuses and refuses(change) if change.id != 'standard' else None  # it may refuse what is ambiguous
            self.apply(path, name, change, listing, is_refused)
        return True

    def apply(self, path, name, change, listing, is_refused):
        after = os.path.join(self.folder, 'changed')
        shutil.copyfile(path, after)
        outcome = self.tool.run(change.kind, after, *change.arguments)
        self.counts[change.kind] += 1
        place = f'{name}: {change.kind} {change.subject or ""} {change.id or ""}'
        if (outcome.status != 0) != is_refused and is_refused is not None:
            self.tell(place, f'status {outcome.status}: {outcome.errors.strip()}')
        if outcome.status == 0:
            for fault in Check(self.tool, path, after, change, self.public).faults(listing, outcome):
                self.tell(place, fault)
            return
        self.counts['refused changes'] += 1
        self.refusals[f'{change.kind}: ' + outcome.errors.replace(after, 'PACKAGE').strip()] += 1
        with open(path, 'rb') as old, open(after, 'rb') as new:
            if outcome.status != 3 or old.read() != new.read():
                self.tell(place, f'refused with status {outcome.status}, and not left as it was')

    def summarize(self):
        for message, count in self.refusals.most_common():
            print(f'{count} refused, {message}')
        print(dict(self.counts), f'violations: {self.violations}')
        return self.violations != 0


def check_own(run):
    for name, package in odd_packages.PACKAGES.items():
        path = os.path.join(run.folder, name.replace(' ', '-').replace('/', '-') + '.zip')
        with open(path, 'wb') as file:
            file.write(package.content)
        if run.check(path, random.Random(name), 3, package.refuses) != package.opens:
            run.tell(name, 'opens' if not package.opens else run.tool.run('info', path).errors.strip())


def check_folder(run, folder, count, seed):
    paths = sorted(os.path.join(root, file) for root, _, files in os.walk(folder) for file in files)
    for path in random.Random(seed).sample(paths, min(count, len(paths))):
        run.check(path, random.Random(f'{seed} {os.path.basename(path)}'), 1)


def main(tool, folder=None, count='600', seed='1'):
    with tempfile.TemporaryDirectory() as work:
        run = Run(os.path.abspath(tool), work)
        if folder is None:
            check_own(run)
        else:
            check_folder(run, folder, int(count), seed)
        return run.summarize()


sys.exit(main(*sys.argv[1:]))
