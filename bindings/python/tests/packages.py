"""Packages that the tests make."""
import io
import zipfile

TYPES = (
    '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
    '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
    '<Default Extension="xml" ContentType="application/xml"/>{}</Types>'
)
RELS = '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">{}</Relationships>'
DOCUMENT = "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"
OFFICE_DOCUMENT = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument"
HYPERLINK = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/hyperlink"


def relationship(id, type, target, mode="Internal"):
    return f'<Relationship Id="{id}" Type="{type}" Target="{target}" TargetMode="{mode}"/>'


def make_archive(items, compression=zipfile.ZIP_DEFLATED):
    buffer = io.BytesIO()
    with zipfile.ZipFile(buffer, "w", compression) as archive:
        for name, content in items.items():
            archive.writestr(name, content)
    return buffer.getvalue()


def make_document(**changes):
    """A small document; a change replaces or adds an item, and `None` drops it."""
    items = {
        "[Content_Types].xml": TYPES.format(f'<Override PartName="/word/document.xml" ContentType="{DOCUMENT}"/>'),
        "_rels/.rels": RELS.format(relationship("rId1", OFFICE_DOCUMENT, "word/document.xml")),
        "word/document.xml": '<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main"/>',
        "word/_rels/document.xml.rels": RELS.format(
            relationship("rId1", HYPERLINK, "https://example.com/", "External")
            + relationship("rId2", "urn:example:note", "../notes.xml#second")
        ),
        "notes.xml": "<notes/>",
    }
    items.update(changes.pop("items", {}))
    return make_archive({name: content for name, content in items.items() if content is not None})


def without_last_block(content, name):
    """The archive, in which the compressed data of an item lacks its last block: what was the last is marked as one before it."""
    info = zipfile.ZipFile(io.BytesIO(content)).getinfo(name)
    changed = bytearray(content)
    changed[info.header_offset + 30 + len(name)] &= 0xFE
    return bytes(changed)
