#!/usr/bin/env python3
"""Checks the signatures of a ZIP package with nothing but this language's library and OpenSSL's command.

    independent_check.py PACKAGE PUBLIC_KEY.der

Prints what was checked, or says what differs and fails.
"""

import base64
import hashlib
import posixpath
import re
import subprocess
import sys
import tempfile
import zipfile
from xml.etree import ElementTree

OPC = "http://schemas.openxmlformats.org/package/2006/"
DSIG = "{http://www.w3.org/2000/09/xmldsig#}"
PDS = "{" + OPC + "digital-signature}"
RELATIONSHIP = "{" + OPC + "relationships}Relationship"
DIGESTS = {
    "http://www.w3.org/2001/04/xmldsig-more#md5": "md5",
    "http://www.w3.org/2000/09/xmldsig#sha1": "sha1",
    "http://www.w3.org/2001/04/xmldsig-more#sha224": "sha224",
    "http://www.w3.org/2001/04/xmlenc#sha256": "sha256",
    "http://www.w3.org/2001/04/xmldsig-more#sha384": "sha384",
    "http://www.w3.org/2001/04/xmlenc#sha512": "sha512",
}


def require(condition, message):
    if not condition:
        sys.exit(message)


def base64_digest(reference, content):
    algorithm = DIGESTS[reference.find(DSIG + "DigestMethod").get("Algorithm")]
    return base64.b64encode(hashlib.new(algorithm, content).digest()).decode()


def require_digest(reference, content):
    require(base64_digest(reference, content) == reference.find(DSIG + "DigestValue").text,
            "digest differs: " + reference.get("URI"))


def relationships_part(source):
    folder, name = posixpath.split(source)
    return posixpath.join(folder, "_rels", name + ".rels")


class Package:
    def __init__(self, path):
        self.archive = zipfile.ZipFile(path)

    def part(self, name):
        return self.archive.read(name.lstrip("/"))

    def relationships(self, source):
        return [element.attrib for element in
                ElementTree.fromstring(self.part(relationships_part(source))).iter(RELATIONSHIP)]

    def targets(self, source, kind):
        return [posixpath.join(posixpath.dirname(source), one["Target"])
                for one in self.relationships(source)
                if one["Type"] == OPC + "relationships/digitalsignature/" + kind]

    def signed_bytes(self, name):
        """A part's bytes; of the core properties, without the first keywords element."""
        content = self.part(name)
        if name == "/metadata/coreProperties.xml":
            content = re.sub(b"<cp:keywords>.*?</cp:keywords>", b"", content, count=1, flags=re.S)
        return content


def source_of(relationships_name):
    folder, name = posixpath.split(relationships_name)
    return posixpath.join(posixpath.dirname(folder), name[:-len(".rels")])


def selected(package, reference, transform):
    source = source_of(reference.get("URI").split("?")[0])
    ids = [one.get("SourceId") for one in transform.iter(PDS + "RelationshipReference")]
    types = [one.get("SourceType") for one in transform.iter(PDS + "RelationshipGroupReference")]
    found = [one for one in package.relationships(source) if one["Id"] != "DSRelcountersig"]
    return ([one for wanted in ids for one in found if one["Id"] == wanted] +
            [one for wanted in types for one in found if one["Type"] == wanted])


def escaped(value):
    return value.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")


def relationships_text(relationships):
    """All relationships of a signature in one document, whatever their sources."""
    text = '<?xml version="1.0" encoding="UTF-8" standalone="no" ?><Relationships>'
    for one in sorted(relationships, key=lambda entry: (entry["Id"], entry["Target"])):
        text += "<Relationship"
        for name in ("Id", "Target", "TargetMode", "Type"):
            if name in one and one[name] != "Internal":
                text += ' %s="%s"' % (name, escaped(one[name]))
        text += "/>"
    return (text + "</Relationships>").encode()


def raw_element(document, name):
    """An element's characters just as they stand in the part."""
    return re.search("<%s[ >].*</%s>" % (name, name), document, re.S).group(0)


def check_value(document, root, key):
    method = root.find(DSIG + "SignedInfo/" + DSIG + "SignatureMethod").get("Algorithm")
    digest = method.rsplit("rsa-", 1)[1]
    with tempfile.TemporaryDirectory() as folder:
        for name, content in (("text", raw_element(document, "SignedInfo").encode("utf-16-le")),
                              ("value", base64.b64decode(root.find(DSIG + "SignatureValue").text))):
            with open(folder + "/" + name, "wb") as file:
                file.write(content)
        run = subprocess.run(["openssl", "dgst", "-" + digest, "-keyform", "DER", "-verify", key,
                              "-signature", folder + "/value", folder + "/text"],
                             capture_output=True, text=True)
        require(run.returncode == 0, "signature value differs: " + run.stdout + run.stderr)


def check_signature(package, name, key):
    document = package.part(name).decode()
    root = ElementTree.fromstring(document)
    check_value(document, root, key)
    to_object = root.find(DSIG + "SignedInfo/" + DSIG + "Reference")
    require_digest(to_object, raw_element(document, "Object").encode("utf-16-le"))

    parts, of_relationships, relationships = 0, [], []
    for reference in next(root.iter(DSIG + "Manifest")):
        transform = reference.find(DSIG + "Transforms/" + DSIG + "Transform")
        if transform is not None:
            of_relationships.append(reference)
            relationships += selected(package, reference, transform)
            continue
        require_digest(reference, package.signed_bytes(reference.get("URI").split("?")[0]))
        parts += 1
    for reference in of_relationships:
        require_digest(reference, relationships_text(relationships))
    print("%s: %d parts, %d relationships" % (name, parts, len(relationships)))


def main():
    package = Package(sys.argv[1])
    for origin in package.targets("/", "origin"):
        for name in package.targets(origin, "signature"):
            check_signature(package, name, sys.argv[2])


main()
