"""Signs packages in the profile of office programs, by OpenSSL's command and by texts that are in canonical form from the beginning.

It shares nothing with the library, so that each can tell where the other is wrong.
"""
import base64
import hashlib
import subprocess
import xml.etree.ElementTree as ElementTree
import zipfile
from xml.sax.saxutils import escape

DSIG = 'http://www.w3.org/2000/09/xmldsig#'
RELATIONSHIPS = 'http://schemas.openxmlformats.org/package/2006/relationships'
RELATIONSHIPS_TYPE = 'application/vnd.openxmlformats-package.relationships+xml'
C14N = 'http://www.w3.org/TR/2001/REC-xml-c14n-20010315'
SIGNATURES = 'application/vnd.openxmlformats-package.digital-signature-'
LEFT_OUT = 'origin', 'core-properties', 'extended-properties', 'custom-properties', 'thumbnail'
DIGESTS = {'sha1': DSIG + 'sha1', 'sha256': 'http://www.w3.org/2001/04/xmlenc#sha256'}
METHODS = {'sha1': DSIG + 'rsa-sha1', 'sha256': 'http://www.w3.org/2001/04/xmldsig-more#rsa-sha256'}


def attribute(value):
    return escape(value, {'"': '&quot;', '\t': '&#x9;', '\n': '&#xA;', '\r': '&#xD;'}).replace('&gt;', '>')


def transformed(document, ids):
    """The relationships with these IDs, as they are digested."""
    text = f'<Relationships xmlns="{RELATIONSHIPS}">'
    for one in sorted(ElementTree.fromstring(document), key=lambda one: one.get('Id')):
        if one.get('Id') in ids:
            values = {'TargetMode': 'Internal', **one.attrib}
            text += '<Relationship' + ''.join(f' {name}="{attribute(values[name])}"' for name in sorted(values))
            text += '></Relationship>'
    return text + '</Relationships>'


def content_type(types, name):
    """The type of a part in the content types stream."""
    root = ElementTree.fromstring(types)
    for kind, key, value in (('Override', 'PartName', name), ('Default', 'Extension', name.rpartition('.')[2])):
        for entry in root.findall('{*}' + kind):
            if entry.get(key).lower() == value.lower():
                return entry.get('ContentType')
    raise KeyError(name)


class Signer:
    def __init__(self, folder, digest='sha256'):
        """Makes a key and a certificate in a folder, if they aren't there: std.key and std.pem."""
        self.folder, self.digest, self.claimed_time = folder, digest, '-'
        if not (folder / 'std.pem').exists():
            subprocess.run('openssl req -x509 -newkey rsa:2048 -nodes -keyout std.key -out std.pem -days 36500 -subj /CN=Ada'.split(),
                       cwd=folder, check=True, capture_output=True)
        pem = (folder / 'std.pem').read_text().splitlines()
        self.certificate = ''.join(pem[1:-1])

    def value(self, octets):
        (self.folder / 'octets').write_bytes(octets)
        done = subprocess.run(['openssl', 'dgst', '-' + self.digest, '-sign', 'std.key', 'octets'], cwd=self.folder, check=True,
                              capture_output=True)
        return base64.b64encode(done.stdout).decode()

    def digest_elements(self, octets):
        value = base64.b64encode(hashlib.new(self.digest, octets).digest()).decode()
        return f'<DigestMethod Algorithm="{DIGESTS[self.digest]}"></DigestMethod><DigestValue>{value}</DigestValue>'

    def reference(self, name, kind, content):
        """A reference of the manifest to a part, or to the relationships in it that must be signed."""
        transforms = ''
        if kind == RELATIONSHIPS_TYPE:
            ids = [one.get('Id') for one in ElementTree.fromstring(content)
                   if not one.get('Type').endswith(tuple('/' + left for left in LEFT_OUT))]
            selected = ''.join(f'<mdssi:RelationshipReference xmlns:mdssi="http://schemas.openxmlformats.org/package/2006/digital-signature"'
                               f' SourceId="{one}"></mdssi:RelationshipReference>' for one in ids)
            transforms = ('<Transforms><Transform Algorithm="http://schemas.openxmlformats.org/package/2006/RelationshipTransform">'
                          f'{selected}</Transform><Transform Algorithm="{C14N}"></Transform></Transforms>')
            content = transformed(content, ids).encode()
        return f'<Reference URI="{name}?ContentType={kind}">{transforms}{self.digest_elements(content)}</Reference>'

    def document(self, parts, types):
        manifest = ''.join(self.reference(name, content_type(types, name), content) for name, content in sorted(parts.items())
                           if not name.startswith(('/docProps/', '/_xmlsignatures/')))
        time = (f'<SignatureTime xmlns="http://schemas.openxmlformats.org/package/2006/digital-signature"><Value>{self.claimed_time}</Value>'
                '</SignatureTime>')
        package = f'<Object xmlns="{DSIG}" Id="idPackageObject"><Manifest>{manifest}</Manifest>{time}</Object>'
        signed_info = (f'<SignedInfo xmlns="{DSIG}"><CanonicalizationMethod Algorithm="{C14N}"></CanonicalizationMethod>'
                       f'<SignatureMethod Algorithm="{METHODS[self.digest]}"></SignatureMethod>'
                       f'<Reference Type="{DSIG}Object" URI="#idPackageObject">{self.digest_elements(package.encode())}</Reference></SignedInfo>')
        return (f'<Signature xmlns="{DSIG}">{signed_info}<SignatureValue>{self.value(signed_info.encode())}</SignatureValue><KeyInfo><X509Data>'
                f'<X509Certificate>{self.certificate}</X509Certificate></X509Data></KeyInfo>{package}</Signature>')

    def sign(self, archive):
        """Adds the first signature to a package."""
        with zipfile.ZipFile(archive) as opened:
            items = {info.filename: opened.read(info) for info in opened.infolist() if not info.is_dir()}
        add = lambda name, what, end: items.update({name: items[name].replace(end, what.encode() + end)})
        add('[Content_Types].xml', f'<Default Extension="sigs" ContentType="{SIGNATURES}origin"/>'
            f'<Override PartName="/_xmlsignatures/sig1.xml" ContentType="{SIGNATURES}xmlsignature+xml"/>', b'</Types>')
        parts = {'/' + name: content for name, content in items.items() if name != '[Content_Types].xml'}
        items['_xmlsignatures/sig1.xml'] = self.document(parts, items['[Content_Types].xml']).encode()
        items['_xmlsignatures/origin.sigs'] = b''
        link = f'<Relationship Id="{{}}" Type="{RELATIONSHIPS}/digital-signature/{{}}" Target="{{}}"/>'
        add('_rels/.rels', link.format('rIdOrigin', 'origin', '_xmlsignatures/origin.sigs'), b'</Relationships>')
        items['_xmlsignatures/_rels/origin.sigs.rels'] = (
            f'<Relationships xmlns="{RELATIONSHIPS}">' + link.format('rId1', 'signature', 'sig1.xml') + '</Relationships>').encode()
        with zipfile.ZipFile(archive, 'w', zipfile.ZIP_DEFLATED) as written:
            for name, content in items.items():
                written.writestr(name, content)
