"""Packages that break the standard as real programs break it, each in one way."""
import struct
import zlib

HEAD = '<?xml version="1.0" encoding="UTF-8"?>\r\n'
NAMESPACE = 'http://schemas.openxmlformats.org/package/2006/'
BETA = 'http://schemas.microsoft.com/package/2005/06/'
COMPATIBILITY = 'http://schemas.openxmlformats.org/markup-compatibility/2006'
RELS = 'application/vnd.openxmlformats-package.relationships+xml'
CORE = 'application/vnd.openxmlformats-package.core-properties+xml'
CORE_TYPE = NAMESPACE + 'relationships/metadata/core-properties'

DEFAULT_ENTRIES = (f'<Default Extension="rels" ContentType="{RELS}"/>\n  <Default Extension="xml" ContentType="application/xml"/>'
                   '<Default ContentType="image/png" Extension="png" />')
OVERRIDES = (f'<Override PartName="/docProps/core.xml" ContentType="{CORE}"/>'
             '<!-- the document --><Override PartName="/doc/main.xml" ContentType="application/x-main+xml"></Override>')
ROOT_ENTRIES = ('<Relationship Id="rId1" Type="urn:example:main" Target="doc/main.xml"/>\n'
                f"<Relationship Target='docProps/core.xml' Type='{CORE_TYPE}' Id='rId2'/>")
MAIN_ENTRIES = ('<Relationship Id="rId1" Type="urn:example:image" Target="a.png"/>\r\n\t'
                '<Relationship Id="rId7" Type="urn:example:link" Target="http://example.org/?a&amp;b" TargetMode="External" />'
                '<Relationship Id="x" Type="urn:example:part" Target="../other.xml"></Relationship>')
CORE_PROPERTIES = (f'{HEAD}<cp:coreProperties xmlns:cp="{NAMESPACE}metadata/core-properties" '
                   'xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:creator>A</dc:creator></cp:coreProperties>')


def types(entries=DEFAULT_ENTRIES + OVERRIDES, attributes='', head=HEAD):
    return f'{head}<Types xmlns="{NAMESPACE}content-types"{attributes}>{entries}</Types>'


def relationships(entries, attributes='', head=HEAD):
    return f'{head}<Relationships xmlns="{NAMESPACE}relationships"{attributes}>{entries}</Relationships>'


def prefixed(document, prefix='p'):
    for name in ('Types', 'Default', 'Override', 'Relationships', 'Relationship'):
        for end in (' ', '>'):
            document = document.replace(f'<{name}{end}', f'<{prefix}:{name}{end}').replace(f'</{name}{end}', f'</{prefix}:{name}{end}')
    return document.replace('xmlns=', f'xmlns:{prefix}=')


def deflate(content, is_finished=True):
    stream = zlib.compressobj(9, zlib.DEFLATED, -15)
    return stream.compress(content) + stream.flush(zlib.Z_FINISH if is_finished else zlib.Z_SYNC_FLUSH)


def archive(items, compress=lambda name, content: deflate(content)):
    """The bytes of an archive. The items of the names and contents are compressed by the function."""
    data, directory = b'', b''
    for name, content in items.items():
        content = content if isinstance(content, bytes) else content.encode()
        compressed = compress(name, content)
        encoded = name.encode()
        fields = struct.pack('<HHHHHLLLHH', 20, 0x800, 8, 0, 0x21, zlib.crc32(content), len(compressed), len(content), len(encoded), 0)
        directory += b'PK\1\2' + struct.pack('<H', 20) + fields + struct.pack('<HHHLL', 0, 0, 0, 0, len(data)) + encoded
        data += b'PK\3\4' + fields + encoded + compressed
    end = struct.pack('<HHHHLLH', 0, 0, len(items), len(items), len(directory), len(data), 0)
    return data + directory + b'PK\5\6' + end


def items(content_types=types(), root=relationships(ROOT_ENTRIES), main=relationships(MAIN_ENTRIES), **more):
    names = {'[Content_Types].xml': content_types, '_rels/.rels': root, 'doc/main.xml': '<main/>', 'doc/_rels/main.xml.rels': main,
             'doc/a.png': b'\x89PNG' * 40, 'other.xml': '<other/>' * 20, 'docProps/core.xml': CORE_PROPERTIES}
    return {**{name: content for name, content in names.items() if content is not None}, **more}


class Package:
    """One package, whether it opens, and which changes are refused."""

    def __init__(self, content, opens=True, refuses=lambda change: False):
        self.content = content if isinstance(content, bytes) else archive(content)
        self.opens, self.refuses = opens, refuses


def with_entry(entry):
    """A relationship that is left out stands between the others."""
    return Package(items(main=relationships(f'{MAIN_ENTRIES}\n<!-- odd: -->{entry}<!-- was odd -->')))


def with_type(entry, **more):
    return Package(items(types(DEFAULT_ENTRIES + entry + OVERRIDES), **more))


def of_main(change):
    return change.source == '/doc/main.xml'


def is_signing(change):
    return change.kind == 'sign'


LINK = 'Id="rId20" Type="urn:example:link"'

PACKAGES = {
    'plain': Package(items()),
    'single quotes, comments and white space': Package(items(main=relationships(
        MAIN_ENTRIES.replace('"', "'"), head='<!-- & < -->\n').replace('><', '>\n\n  <'))),
    'an empty root': Package(items(main=f'{HEAD}<Relationships xmlns="{NAMESPACE}relationships" />')),
    'byte order mark': Package(items(types(head='\ufeff' + HEAD), relationships(ROOT_ENTRIES, head='\ufeff'))),
    'UTF-16': Package(items(types(head='').encode('utf-16'), main=relationships(MAIN_ENTRIES, head='').encode('utf-16'))),
    'prefixed relationships': Package(items(root=prefixed(relationships(ROOT_ENTRIES)), main=prefixed(relationships(MAIN_ENTRIES)))),
    'prefixed content types': Package(items(prefixed(types()))),
    'items without content type': Package(items(**{'.DS_Store': 'x', 'doc/b.unknown': 'y', 'META-INF/signature.p7s': 'z'})),
    'a hidden source with relationships': Package(items(**{'doc/b.unknown': 'y', 'doc/_rels/b.unknown.rels': relationships('')})),
    'relationships part without source': Package(items(**{'doc/_rels/gone.xml.rels': relationships(MAIN_ENTRIES)})),
    'no content type for relationships': Package(items(types('<Default Extension="xml" ContentType="a/b"/>'
                                                             '<Default Extension="png" ContentType="image/png"/>'))),
    'empty target': with_entry(f'<Relationship {LINK} Target=""/>'),
    'target that is no URI': with_entry(f'<Relationship {LINK} Target="mailto:#@_#" TargetMode="External"/>'),
    'target beyond ASCII': with_entry(f'<Relationship {LINK} Target="http://example.org/é ü" TargetMode="External"/>'),
    'target with a blank': with_entry(f'<Relationship {LINK} Target="file:///C:\\a b\\c.xml" TargetMode="External"/>'),
    'no target': with_entry(f'<Relationship {LINK}/>'),
    'Id that is no name': with_entry('<Relationship Id="1" Type="urn:example:link" Target="a.png"/>'),
    'Id that is used': with_entry('<Relationship Id="rId1" Type="urn:example:link" Target="b.png"/>'),
    'no Id': with_entry('<Relationship Type="urn:example:link" Target="a.png"/>'),
    'undeclared attribute': with_entry(f'<Relationship {LINK} Target="a.png" Other="1"/>'),
    'element in a relationship': with_entry(f'<Relationship {LINK} Target="a.png"><a/></Relationship>'),
    'all relationships left out': Package(items(main=relationships(f'<Relationship {LINK} Target=""/>'))),
    'one good relationship beside bad ones': Package(items(main=relationships(
        f'<Relationship {LINK} Target=""/><Relationship Id="good" Type="urn:example:image" Target="a.png"/>'))),
    'relationships that are no XML': Package(items(main='<Relationships'), refuses=of_main),
    'markup compatibility': Package(items(main=relationships(
        f'<v:a v:b="1"/>{MAIN_ENTRIES}<v:Relationship Id="rId20"/>',
        f' xmlns:mc="{COMPATIBILITY}" xmlns:v="urn:example:v" mc:Ignorable="v"'))),
    'two core properties relationships': Package(items(root=relationships(
        ROOT_ENTRIES + f'<Relationship Id="rId3" Type="{CORE_TYPE}" Target="docProps/second.xml"/>'), **{
            'docProps/second.xml': CORE_PROPERTIES})),
    'dangling core properties relationship': Package(items(
        types(DEFAULT_ENTRIES), relationships(ROOT_ENTRIES.replace('core.xml', 'gone.xml')), **{'docProps/core.xml': '<a/>'})),
    'Override without slash': with_type('<Override PartName="other.xml" ContentType="application/x-other+xml"/>'),
    'content type that is none': with_type('<Default Extension="odd" ContentType="odd"/>', **{'doc/b.odd': 'x'}),
    'Override twice': with_type('<Override PartName="/other.xml" ContentType="a/b"/><Override PartName="/Other.xml" ContentType="a/c"/>'),
    'Default twice': with_type('<Default Extension="XML" ContentType="application/xml"/>'),
    'entries without attributes': with_type('<Override PartName="/other.xml"/><Default ContentType="a/b"/>'),
    'beta namespaces': Package(items(types().replace(NAMESPACE, BETA), relationships(ROOT_ENTRIES).replace(NAMESPACE, BETA),
                                     relationships(MAIN_ENTRIES).replace(NAMESPACE, BETA))),
    'document type in relationships': Package(items(main=relationships('', head='<!DOCTYPE Relationships>')), opens=False),
    'document type in content types': Package(items(types(head='<!DOCTYPE Types>')), opens=False),
    'backslashes': Package({name.replace('/', '\\'): content for name, content in items().items()}),
    'letter case': Package({name.replace('_rels', '_Rels').replace('.rels', '.RELS').replace('Types', 'types'): content
                            for name, content in items().items()}),
    'folders and trash': Package(items(**{'doc/': '', '[trash]/0000.dat': 'x', '__MACOSX/._a': 'y'})),
    'bytes behind the end': Package(archive(items()) + b'\n' + bytes(300)),
    'Deflate without final block': Package(archive(items(), lambda name, content: deflate(content, name != 'other.xml'))),
    'damaged part': Package(archive(items(), lambda name, content: deflate(content)[:-2] + b'xx' if name == 'other.xml'
                                    else deflate(content)), refuses=is_signing),
    'older Office file': Package(b'\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1' + bytes(2000), opens=False),
}
