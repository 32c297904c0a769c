"""Archives as they lie on the disk, item by item, and the documents of the package in them."""
import collections
import re
import struct
import urllib.parse
import zipfile

CONTENT_TYPES = '[content_types].xml'

Item = collections.namedtuple('Item', 'method crc size compressed expand')


def read_items(path):
    """Gives the items of an archive by name, each with its bytes as they are compressed."""
    items = {}
    with zipfile.ZipFile(path) as archive, open(path, 'rb') as file:
        for info in archive.infolist():
            file.seek(info.header_offset)
            header = file.read(30)
            file.seek(sum(struct.unpack('<HH', header[26:30])), 1)
            items[info.filename] = Item(info.compress_type, info.CRC, info.file_size, file.read(info.compress_size),
                                        lambda name=info.filename: expand(path, name))
    return items


def expand(path, name):
    with zipfile.ZipFile(path) as archive:
        return archive.read(name)


def part_name(item):
    """The name of the part in an item, in one spelling for all that mean the same."""
    return '/' + urllib.parse.unquote(item.replace('\\', '/')).casefold().lstrip('/')


def relationships_name(source):
    """The name of the relationships part of a source."""
    folder, _, last = source.rpartition('/')
    return part_name(f'{folder}/_rels/{last}.rels')


def is_document(item):
    """Whether it is a document that lists relationships or content types."""
    name = part_name(item)
    return name == '/' + CONTENT_TYPES or (name.endswith('.rels') and '/_rels/' in name)


def decode(document):
    if document[:2] in (b'\xff\xfe', b'\xfe\xff'):
        return document.decode('utf-16')
    try:
        return document.decode('utf-8')
    except UnicodeDecodeError:
        return document.decode('latin-1')


MARKUP = re.compile(r'<!--.*?-->|<\?.*?\?>|<!\[CDATA\[.*?\]\]>|'
                    r'<(?P<end>/?)(?P<name>[^\s/>!?]+)(?P<attributes>(?:[^>"\']|"[^"]*"|\'[^\']*\')*?)(?P<empty>/?)>', re.S)
ENTRIES = ('Relationship', 'Default', 'Override')


def find_entries(text):
    """Gives where the entries of a document stand, as (begin, end)."""
    entries, open_at = [], []
    for tag in MARKUP.finditer(text):
        if tag['name'] is None or tag['name'].rpartition(':')[2] not in ENTRIES:
            continue
        if tag['empty']:
            if not open_at:
                entries.append(tag.span())
        elif not tag['end']:
            open_at.append(tag.start())
        elif open_at:
            begin = open_at.pop()
            if not open_at:
                entries.append((begin, tag.end()))
    return entries


def attribute(entry, name):
    found = re.search(rf'\s{name}\s*=\s*(?:"([^"]*)"|\'([^\']*)\')', entry)
    return found and (found[1] or found[2] or '')


def open_root(text):
    """The same document, its root written with an end tag."""
    return re.sub(r'<((?:[^\s/>!?]+:)?(?:Relationships|Types))\b((?:[^>"\']|"[^"]*"|\'[^\']*\')*?)/>', r'<\1\2></\1>', text)


def without(text, unwanted):
    """The text without some of its entries, and what it has of them."""
    rest, kept, found = 0, [], []
    for begin, end in find_entries(text):
        if unwanted[text[begin:end]] > 0:
            unwanted[text[begin:end]] -= 1
            found.append(text[begin:end])
            kept.append(text[rest:begin])
            rest = end
    return ''.join(kept) + text[rest:], found


def compare(before, after):
    """Gives the entries that have gone, those that have come, and whether all the rest is the same."""
    before, after = decode(before), decode(after)
    old, new = (collections.Counter(text[begin:end] for begin, end in find_entries(text)) for text in (before, after))
    before, gone = without(before, old - new)
    after, come = without(after, new - old)
    return gone, come, before == after or open_root(before) == after
