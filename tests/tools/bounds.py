#!/usr/bin/env python3
"""Watches the memory and the time that opctool takes for archives that are built to exhaust it.

  bounds.py OPCTOOL

Each kind of archive comes in sizes that double. What the tool takes may grow with them and no faster; it takes no more
than 256 MiB for an archive below 1 MiB, and 1 GiB for any other; and it does what it is asked to, or fails with one line.
"""
import os
import resource
import sys
import tempfile
import zipfile

TOOL = sys.argv[1]
MIB = 1 << 20
TIMEOUT = 40  # seconds of the processor

HEAD = '<?xml version="1.0" encoding="UTF-8"?>'
NAMESPACE = "http://schemas.openxmlformats.org/package/2006/"
TYPES = (f'<Types xmlns="{NAMESPACE}content-types"><Default Extension="xml" ContentType="a/b"/><Default '
         f'Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>')
PROPERTIES = (f'<cp:coreProperties xmlns:cp="{NAMESPACE}metadata/core-properties" '
              'xmlns:dc="http://purl.org/dc/elements/1.1/">')
ORIGIN = '/package/services/digital-signature/origin.psdor'


def types(elements=''):
    return HEAD + TYPES + elements + '</Types>'


def relationships(elements):
    return f'{HEAD}<Relationships xmlns="{NAMESPACE}relationships">{elements}</Relationships>'


def not_plain(document):
    return document.replace(HEAD, HEAD + '<!--x-->')


def relate(count, target='a', kind='t'):
    return ''.join(f'<Relationship Id="r{i}" Type="{kind}" Target="{target}" TargetMode="External"/>'
                   for i in range(count))


def archive(items, content_types=types(), method=zipfile.ZIP_DEFLATED):
    def save(path):
        with zipfile.ZipFile(path, 'w', method) as package:
            package.writestr('[Content_Types].xml', content_types)
            for name, content in items:
                package.writestr(name, content)
    return save


def of_package(document):
    return archive([('_rels/.rels', document)])


def core_properties(elements):
    return archive([('_rels/.rels', relationships(
        f'<Relationship Id="r" Type="{NAMESPACE}relationships/metadata/core-properties" Target="c.xml"/>')),
                    ('c.xml', HEAD + PROPERTIES + elements + '</cp:coreProperties>')],
                   types('<Override PartName="/c.xml" ContentType='
                         '"application/vnd.openxmlformats-package.core-properties+xml"/>'))


def distinct_namespaces(parts):
    """Small parts that each declare many namespaces of their own."""
    for i in range(parts):
        names = ''.join(f' xmlns:p{j}="u{i}:{j}"' for j in range(300))
        yield f'a{i}.xml', ''
        yield f'_rels/a{i}.xml.rels', relationships('').replace('<Relationships', '<Relationships' + names)


def behind_a_large_one(parts):
    """A large part with relationships, and many small ones."""
    yield '_rels/.rels', not_plain(relationships(relate(parts * 4)))
    for i in range(parts):
        yield f'a{i}.xml', ''
        yield f'_rels/a{i}.xml.rels', not_plain(relationships(relate(1)))


LADDERS = {  # what makes an archive of a size, the smallest size, the command
    'overrides': (lambda n: archive([], types(''.join(
        f'<Override PartName="/a{i}" ContentType="a/b"/>' for i in range(n)))), 20000, 'ls'),
    'overrides, parsed': (lambda n: archive([], not_plain(types(''.join(
        f'<Override PartName="/a{i}" ContentType="a/b"/>' for i in range(n))))), 20000, 'ls'),
    'defaults of one extension, parsed': (lambda n: archive([], not_plain(types(
        '<Default Extension="a" ContentType="a/b"/>' * n))), 20000, 'ls'),
    'relationships': (lambda n: of_package(relationships(relate(n))), 10000, 'rels'),
    'relationships, parsed': (lambda n: of_package(relationships(relate(n, 'http://a/?b=c&amp;d'))), 10000, 'rels'),
    'relationship types': (lambda n: of_package(relationships(''.join(
        f'<Relationship Id="r{i}" Type="t{i}" Target="a"/>' for i in range(n)))), 10000, 'rels'),
    'a long target': (lambda n: of_package(not_plain(relationships(relate(1, 'a' * n)))), MIB // 2, 'rels'),
    'parts with many namespaces': (lambda n: archive(list(distinct_namespaces(n))), 200, 'ls'),
    'a large relationships part in front': (lambda n: archive(list(behind_a_large_one(n))), 2000, 'ls'),
    'keywords': (lambda n: core_properties(
        '<cp:keywords><!--x-->' + '<cp:value>x</cp:value>' * n + '</cp:keywords>'), 2000, 'props'),
    'a long title': (lambda n: core_properties(f'<dc:title><!--x-->{"a" * n}</dc:title>'), 100000, 'props'),
    'parts': (lambda n: archive([(f'a{i}.xml', '') for i in range(n)], method=zipfile.ZIP_STORED), 5000, 'ls'),
    'deep names': (lambda n: archive([(f'{"a/" * 200}{i}.xml', '') for i in range(n)],
                                     method=zipfile.ZIP_STORED), 1000, 'add'),
}

BOMBS = {  # documents beyond the limits, and their commands
    'content types': (lambda: archive([], not_plain(types('<Default Extension="a" ContentType="a/b"/>' * 2000000))), 'ls'),
    'content types, scanned': (lambda: archive([], types('<Default Extension="a" ContentType="a/b"/>' * 350000)), 'ls'),
    'white space': (lambda: archive([], types(' ' * (60 * MIB))), 'ls'),
    'a comment': (lambda: archive([], types('<!--' + ' ' * (60 * MIB) + '-->')), 'ls'),
    'a target': (lambda: of_package(relationships(relate(1, 'a' * (99 * MIB)))), 'rels'),
    'relationships': (lambda: of_package(not_plain(relationships(relate(249990)))), 'rels'),
    'relationships of many parts': (lambda: archive([item for i in range(40) for item in (
        (f'a{i}.xml', ''), (f'_rels/a{i}.xml.rels', relationships(relate(20000, 'a' * 80))))]), 'ls'),
    'keywords': (lambda: core_properties('<cp:keywords>' + '<cp:value>x</cp:value>' * 4000000 + '</cp:keywords>'), 'props'),
}


def write(path, make, *arguments):
    """In a process of its own: the memory of this one would count for the tool, which it starts."""
    child = os.fork()
    if child == 0:
        make(*arguments)(path)
        os._exit(0)
    os.waitpid(child, 0)


def run(command, path, errors):
    """Gives the exit status, the seconds of the processor and the peak of memory in bytes."""
    arguments = [TOOL, command, path] + (['/new.xml', '/dev/null', '--type', 'a/b'] if command == 'add' else [])
    errors.seek(0)
    errors.truncate()
    child = os.fork()
    if child == 0:
        resource.setrlimit(resource.RLIMIT_CPU, (TIMEOUT, TIMEOUT))
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        os.dup2(errors.fileno(), 2)
        os.execv(TOOL, arguments)
    _, status, usage = os.wait4(child, 0)
    return os.waitstatus_to_exitcode(status), usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def faults_of(path, outcome, errors):
    status, _, peak = outcome
    errors.seek(0)
    text = errors.read().decode()
    if status != 0 and not (status == 3 and text.count('\n') == 1):
        yield f'exit status {status}: {text[:300]}'
    bound = 256 * MIB if os.path.getsize(path) < MIB else 1024 * MIB
    if peak > bound:
        yield f'{peak // MIB} MiB for an archive of {os.path.getsize(path)} bytes'


def climb(make, size, command, path, errors):
    """Gives the faults of three archives, each twice as large as the one before."""
    steps = []
    for factor in (1, 2, 4):
        write(path, make, size * factor)
        outcome = run(command, path, errors)
        yield from faults_of(path, outcome, errors)
        steps.append(outcome)
    (_, least, base), (_, first, small), (_, second, large) = steps
    if second - first > 3 * (first - least) + 0.3:
        yield f'seconds: {least:.2f}, {first:.2f}, {second:.2f}'
    if large - small > 3 * (small - base) + 16 * MIB:
        yield f'MiB: {base // MIB}, {small // MIB}, {large // MIB}'
    print(f'  {[f"{seconds:.2f} s, {peak // MIB} MiB" for _, seconds, peak in steps]}')


def main():
    failed = False
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryFile() as errors:
        path = os.path.join(folder, 'archive.zip')
        for name, (make, size, command) in LADDERS.items():
            print(name)
            for fault in climb(make, size, command, path, errors):
                failed = True
                print('  FAULT', fault)
        for name, (make, command) in BOMBS.items():
            write(path, make)
            outcome = run(command, path, errors)
            print(f'beyond the limits: {name}\n  status {outcome[0]}, {outcome[1]:.2f} s, {outcome[2] // MIB} MiB')
            for fault in faults_of(path, outcome, errors):
                failed = True
                print('  FAULT', fault)
    return failed


sys.exit(main())
