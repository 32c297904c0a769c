#!/usr/bin/env python3
"""Watches the memory and the time that opctool takes for archives that are built to exhaust it.

  bounds.py OPCTOOL

Each kind of archive comes in sizes that double. What the tool takes may grow with them and no faster; it takes no more
than 256 MiB for an archive below 1 MiB, and 1 GiB for any other; it prints no more than 512 MiB; and it does what it is
asked to, or fails with one line.
"""
import os
import resource
import subprocess
import sys
import tempfile
import zipfile

TOOL = sys.argv[1]
MIB = 1 << 20
TIMEOUT = 40  # seconds of the processor
LONGEST = 512 * MIB  # of files and of what is printed
FACTORS = 1, 2, 4
AGAIN = 3  # times that a doubtful time is taken again: other work only ever adds to it

HEAD = '<?xml version="1.0" encoding="UTF-8"?>'
NAMESPACE = "http://schemas.openxmlformats.org/package/2006/"
TYPES = (f'<Types xmlns="{NAMESPACE}content-types"><Default Extension="xml" ContentType="a/b"/><Default '
         f'Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>')
PROPERTIES = (f'<cp:coreProperties xmlns:cp="{NAMESPACE}metadata/core-properties" '
              'xmlns:dc="http://purl.org/dc/elements/1.1/">')
SIGNATURE_NAMESPACE = 'http://www.w3.org/2000/09/xmldsig#'
SIGNATURE_TYPE = 'application/vnd.openxmlformats-package.digital-signaturexmlsignature+xml'
FOLDER = tempfile.TemporaryDirectory()
KEY, PUBLIC_KEY, ARCHIVE, OUTPUT, OTHER = (os.path.join(FOLDER.name, name) for name in (
    'key', 'public', 'archive.zip', 'output', 'other.zip'))
ARGUMENTS = {'add': ['/new.xml', '/dev/null', '--type', 'a/b'], 'verify': ['--public', PUBLIC_KEY], 'diff': [OTHER]}


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


def reference(uri='/a.xml?ContentType=a/b', transforms='', value='AAAA'):
    return (f'<Reference URI="{uri}">{transforms}<DigestMethod Algorithm="{SIGNATURE_NAMESPACE}sha1"/>'
            f'<DigestValue>{value}</DigestValue></Reference>')


def signature(references, number=1, key='', objects=''):
    """In the form in which the library writes it, but for what stands in `objects`."""
    return (f'<?xml version="1.0" encoding="UTF-8" standalone="yes" ?><Signature Id="Signature{number}" '
            f'xmlns="{SIGNATURE_NAMESPACE}"><SignedInfo xmlns="{SIGNATURE_NAMESPACE}"><CanonicalizationMethod Algorithm='
            '"http://www.w3.org/TR/2001/REC-xml-c14n-20010315"/><SignatureMethod '
            'Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/><Reference '
            f'Type="{SIGNATURE_NAMESPACE}Object" URI="#idPackageObject"><DigestMethod '
            f'Algorithm="{SIGNATURE_NAMESPACE}sha1"/><DigestValue>AAAA</DigestValue></Reference></SignedInfo>'
            f'<SignatureValue>AAAA</SignatureValue>{key}<Object Id="idPackageObject" xmlns:pds='
            f'"{NAMESPACE}digital-signature"><Manifest>{references}</Manifest><SignatureProperties><SignatureProperty '
            f'Id="idSignatureTime" Target="#Signature{number}"><pds:SignatureTime><pds:Format>YYYY-MM-DDThh:mmTZD'
            '</pds:Format><pds:Value>2026-01-01T00:00:00Z</pds:Value></pds:SignatureTime></SignatureProperty>'
            f'</SignatureProperties></Object>{objects}</Signature>')


def other_form(document):
    return document.replace('standalone="yes" ?>', 'standalone="yes" ?><!--x-->')


def signed(signatures, entries=''):
    to_origin, to_signature = (f'{NAMESPACE}relationships/digitalsignature/{end}' for end in ('origin', 'signature'))
    names = [f'_xmlsignatures/sig{i + 1}.xml' for i in range(len(signatures))]
    return archive([
        ('a.xml', ''), ('_xmlsignatures/origin.sigs', ''), ('_rels/.rels', relationships(
            entries + f'<Relationship Id="o" Type="{to_origin}" Target="/_xmlsignatures/origin.sigs"/>')),
        ('_xmlsignatures/_rels/origin.sigs.rels', relationships(''.join(
            f'<Relationship Id="DSRel{i + 1}" Type="{to_signature}" Target="/{name}"/>' for i, name in enumerate(names)))),
        *zip(names, signatures)], types(
            f'<Default Extension="sigs" ContentType="application/vnd.openxmlformats-package.digital-signature-origin"/>'
            + ''.join(f'<Override PartName="/{name}" ContentType="{SIGNATURE_TYPE}"/>' for name in names)))


def over_a_long_relationship(count):
    """Signatures that hold, all over the same relationship."""
    entries = relate(1, 'http://a/' + 'a' * 60000)
    archive([('_rels/.rels', relationships(entries)), ('a.xml', '')])(ARCHIVE)
    subprocess.run(['openssl', 'genrsa', '-out', KEY, '2048'], check=True, capture_output=True)
    subprocess.run(['openssl', 'rsa', '-in', KEY, '-pubout', '-out', PUBLIC_KEY], check=True, capture_output=True)
    subprocess.run([TOOL, 'sign', ARCHIVE, '--key', KEY, '--public', PUBLIC_KEY, '--relationship-type', '/:t',
                    '--profile', 'opcmodel'],
                   check=True, capture_output=True)
    with zipfile.ZipFile(ARCHIVE) as package:
        document = package.read('_xmlsignatures/sig1.xml').decode()
    return signed([document.replace('Id="Signature1"', f'Id="Signature{i + 1}"', 1) for i in range(count)], entries)


TRANSFORMS = '<Transforms>' + f'<Transform Algorithm="{SIGNATURE_NAMESPACE}t"/>' * 200 + '</Transforms>'
def select(selectors):
    transform = 'http://schemas.openxmlformats.org/package/2006/RelationshipTransform'
    return reference('/_rels/.rels?ContentType=application/vnd.openxmlformats-package.relationships+xml',
                     f'<Transforms><Transform Algorithm="{transform}">{selectors}</Transform></Transforms>')


SELECTION = select('<pds:RelationshipReference SourceId="o"/>' * 100)
SELECTION_BY_TYPE = select('<pds:RelationshipGroupReference SourceType="t"/>')
FOLDERS = ('a' * 190 + '/') * 20

def lines(count, step):
    """Elements of which many are alike, in an order of their own."""
    return archive([('a.xml', '<a>' + ''.join(f'<b>{i * step % 1009}</b>' for i in range(count)) + '</a>')])


LADDERS = {  # what makes an archive of a size, the smallest size, the command
    'overrides': (lambda n: archive([], types(''.join(
        f'<Override PartName="/a{i}" ContentType="a/b"/>' for i in range(n)))), 20000, 'ls'),
    'overrides, parsed': (lambda n: archive([], not_plain(types(''.join(
        f'<Override PartName="/a{i}" ContentType="a/b"/>' for i in range(n))))), 20000, 'ls'),
    'defaults of one extension, parsed': (lambda n: archive([], not_plain(types(
        '<Default Extension="a" ContentType="a/b"/>' * n))), 20000, 'ls'),
    'attributes of an entry with a long name': (lambda n: archive([], types(
        f'<Default Extension="{"a" * 10 * n}" ContentType="a/b"' + ''.join(f' a{i}=""' for i in range(n)) + '/>')), 10000, 'ls'),
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
    'references': (lambda n: signed([signature(reference() * n)]), 25000, 'coverage'),
    'references, parsed': (lambda n: signed([other_form(signature(reference() * n))]), 8000, 'coverage'),
    'references of many signatures': (lambda n: signed(
        [signature(reference() * 1000, i + 1) for i in range(n)]), 10, 'coverage'),
    'transforms': (lambda n: signed([signature(reference(transforms=TRANSFORMS) * n)]), 200, 'coverage'),
    'selectors': (lambda n: signed([signature(SELECTION * n)]), 500, 'coverage'),
    'objects': (lambda n: signed([signature(reference(), objects=''.join(
        f'<Object Id="a{i}"/>' for i in range(n)))]), 10000, 'coverage'),
    'signatures beside relationships': (lambda n: signed(
        [signature(select('<pds:RelationshipReference SourceId="o"/>'), i + 1) for i in range(n)],
        relate(100 * n)), 250, 'coverage --json'),
    'signatures over a long relationship': (over_a_long_relationship, 100, 'verify'),
    'lines of XML': (lambda n: lines(n, 13), 50000, 'diff'),
    'parts and relationships of one package': (lambda n: archive([item for i in range(n) for item in (
        (f'a{i}.xml', str(i % 50)), (f'_rels/a{i}.xml.rels', relationships(relate(3))))], method=zipfile.ZIP_STORED), 2000, 'diff'),
    'parts and relationships, as one text': (lambda n: archive([item for i in range(n) for item in (
        (f'a{i}.xml', '<a/>'), (f'_rels/a{i}.xml.rels', relationships(relate(3))))], method=zipfile.ZIP_STORED), 2000, 'flat'),
    'a deep document, as one text': (lambda n: archive([('a.xml', '<a>' * 900 + '<b/>' * n + '</a>' * 900)]), 50000, 'flat'),
    'a long text, as one text': (lambda n: archive([('a.xml', f'<a>{"a&amp;" * n}</a>')]), MIB, 'flat'),
    'parts to be hashed': (lambda n: archive([item for i in range(n) for item in (
        (f'a{i}.xml', '<a/>'), (f'_rels/a{i}.xml.rels', relationships(relate(3))))], method=zipfile.ZIP_STORED), 2000, 'hash'),
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
    'relationships, and what covers them': (lambda: of_package(relationships(relate(249990))), 'coverage'),
    'relationships of many parts': (lambda: archive([item for i in range(40) for item in (
        (f'a{i}.xml', ''), (f'_rels/a{i}.xml.rels', relationships(relate(20000, 'a' * 80))))]), 'ls'),
    'relationships of a part with a long name': (lambda: archive([(FOLDERS + 'a.xml', ''), (
        FOLDERS + '_rels/a.xml.rels', relationships(relate(80000).replace('TargetMode="External"', '')))]), 'rels --all'),
    'a long ID among many': (lambda: of_package(relationships(relate(10000) + relate(1).replace('r0', 'r' * 300000))), 'rels'),
    'signatures of many relationships': (lambda: signed(
        [signature(SELECTION_BY_TYPE, i + 1) for i in range(1000)], relate(100000)), 'coverage'),
    'references of a signature': (lambda: signed([signature(reference(value='A' * 40) * 170000)]), 'coverage'),
    'references of many signatures': (lambda: signed(
        [signature(reference() * 40000, i + 1) for i in range(20)]), 'coverage'),
    'references, parsed': (lambda: signed([other_form(signature(reference() * 100000))]), 'coverage'),
    'a text in a signature': (lambda: signed([signature(reference(), objects=f'<Object Id="a">{"a" * (30 * MIB)}</Object>')]),
                              'coverage'),
    'attributes in a signature': (lambda: signed([signature(reference(), objects='<Object Id="a">' + (
        '<a' + ''.join(f' a{i}="x"' for i in range(800)) + '/>') * 3000 + '</Object>')]), 'coverage'),
    'values in signatures': (lambda: signed(
        [signature(reference(value='A' * (30 * MIB)), i + 1) for i in range(5)]), 'coverage'),
    'elements with prefixes': (lambda: of_package(
        f'{HEAD}<r:Relationships xmlns:r="{NAMESPACE}relationships">{"<a/>" * 990000}</r:Relationships>'), 'rels --lenient'),
    'relationships with prefixes': (lambda: archive([item for i in range(7) for item in (
        (f'a{i}.xml', ''), (f'_rels/a{i}.xml.rels', HEAD + f'<r:Relationships xmlns:r="{NAMESPACE}relationships">' + relate(
            52000).replace('<R', '<r:R') + '</r:Relationships>'))]), 'ls --lenient'),
    'keywords': (lambda: core_properties('<cp:keywords>' + '<cp:value>x</cp:value>' * 4000000 + '</cp:keywords>'), 'props'),
}


def write(path, make, *arguments):
    """In a process of its own: the memory of this one would count for the tool, which it starts."""
    child = os.fork()
    if child == 0:
        make(*arguments)(path)
        os._exit(0)
    if os.waitpid(child, 0)[1] != 0:
        sys.exit(f'{path} could not be made')


def run(command, path, errors):
    """Gives the exit status, the seconds of the processor and the peak of memory in bytes."""
    arguments = [TOOL, *command.split(), path, *ARGUMENTS.get(command, [])]
    errors.seek(0)
    errors.truncate()
    child = os.fork()
    if child == 0:
        resource.setrlimit(resource.RLIMIT_CPU, (TIMEOUT, TIMEOUT))
        resource.setrlimit(resource.RLIMIT_FSIZE, (LONGEST, LONGEST))
        os.dup2(os.open(OUTPUT, os.O_WRONLY | os.O_CREAT | os.O_TRUNC), 1)
        os.dup2(errors.fileno(), 2)
        os.execv(TOOL, arguments)
    _, status, usage = os.wait4(child, 0)
    return os.waitstatus_to_exitcode(status), usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def faults_of(path, outcome, errors):
    status, _, peak = outcome
    errors.seek(0)
    text = errors.read().decode()
    if status not in (0, 1) and not (status == 3 and text.count('\n') == 1):
        yield f'exit status {status}: {text[:300]}'
    bound = 256 * MIB if os.path.getsize(path) < MIB else 1024 * MIB
    if peak > bound:
        yield f'{peak // MIB} MiB for an archive of {os.path.getsize(path)} bytes'


def grows_faster(steps, allowance):
    """Whether what the tool takes grows faster than archives that double, by more than the allowance."""
    least, middle, most = steps
    return most - middle > 3 * (middle - least) + allowance


def climb(make, size, command, path, errors):
    """Gives the faults of three archives, each twice as large as the one before."""
    steps = []
    for factor in FACTORS:
        write(path, make, size * factor)
        outcome = run(command, path, errors)
        yield from faults_of(path, outcome, errors)
        steps.append(outcome)
    _, seconds, peaks = zip(*steps)
    for _ in range(AGAIN):
        if not grows_faster(seconds, 0.3):
            break
        again = []
        for factor in FACTORS:
            write(path, make, size * factor)
            again.append(run(command, path, errors)[1])
        seconds = [min(pair) for pair in zip(seconds, again)]
    if grows_faster(seconds, 0.3):
        yield 'seconds: ' + ', '.join(f'{second:.2f}' for second in seconds)
    if grows_faster(peaks, 16 * MIB):
        yield 'MiB: ' + ', '.join(str(peak // MIB) for peak in peaks)
    print(f'  {[f"{second:.2f} s, {peak // MIB} MiB" for second, peak in zip(seconds, peaks)]}')


def main():
    failed = False
    path = ARCHIVE
    with FOLDER, tempfile.TemporaryFile() as errors:
        write(OTHER, lines, 300000, 7)
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
