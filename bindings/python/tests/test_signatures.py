"""Signatures in both profiles."""
import io
import subprocess
from datetime import datetime, timezone

import pytest

import opcmodel as opc
from packages import make_document

TIME = datetime(2024, 2, 29, 12, tzinfo=timezone.utc)


@pytest.fixture(scope="module")
def keys(tmp_path_factory):
    """Keys with certificates, made by openssl: of RSA and EC."""
    folder = tmp_path_factory.mktemp("keys")
    for name, options in (("rsa", ["rsa:2048"]), ("ec", ["ec", "-pkeyopt", "ec_paramgen_curve:P-256"])):
        subprocess.run(["openssl", "req", "-x509", "-nodes", "-days", "3650", "-subj", f"/CN={name}", "-addext",
                        "keyUsage=critical,digitalSignature", "-addext", "basicConstraints=critical,CA:FALSE",
                        "-keyout", folder / f"{name}.key", "-out", folder / f"{name}.pem", "-newkey", *options],
                       check=True, capture_output=True)
    subprocess.run(["openssl", "pkcs12", "-export", "-inkey", folder / "rsa.key", "-in", folder / "rsa.pem", "-out",
                    folder / "rsa.p12", "-passout", "pass:secret"], check=True, capture_output=True)
    subprocess.run(["openssl", "pkey", "-in", folder / "rsa.key", "-pubout", "-outform", "DER", "-out", folder / "rsa.pub"],
                   check=True, capture_output=True)
    return folder


def test_a_signature_in_the_profile_of_the_standard(keys):
    signers = [{"key": keys / "rsa.key", "certificate": keys / "rsa.pem"}, {"p12": keys / "rsa.p12", "password": "secret"},
               {"key": (keys / "ec.key").read_bytes(), "certificate": (keys / "ec.pem").read_bytes(), "digest": "sha384"}]
    for signer in signers:
        with opc.open(make_document(items={"orphan.xml": "<a/>"}), "r+") as package:
            made = opc.sign(package, time=TIME, comments="why", **signer)
            assert (made.name, made.unreachable) == ("sig1", ("/orphan.xml",))
            package.save()
            found = opc.verify(package, trust=[keys / "rsa.pem", keys / "ec.pem"])
            assert found.yes, found
            one, = found.signatures
            assert (one.cryptography.answer, one.coverage.answer, one.trust.answer, one.claimed_time) == (
                "valid", "complete", "trusted", TIME)
            assert one.trust.signer == ("CN=ec" if "digest" in signer else "CN=rsa")
            assert not opc.verify(package).yes  # nobody is trusted who isn't named
            assert not opc.verify(package, trust=keys / ("rsa.pem" if "digest" in signer else "ec.pem")).yes
            assert opc.verify(package, fingerprints=[one.trust.fingerprint.upper()]).yes
            assert opc.coverage(package).uncovered_parts == ()
            signature, = opc.signatures(package)
            assert signature.verify(trust=[keys / "rsa.pem", keys / "ec.pem"]).yes

            package.add("/later.xml", "text/xml", b"<later/>")
            package.rels.add("urn:example:later", "/later.xml")
            package.save()
            assert opc.verify(package).signatures[0].coverage.answer == "partial"
            assert opc.coverage(package).uncovered_parts == ("/later.xml",)
            signature.remove()
            package.save()
            assert opc.signatures(package) == [] and not opc.verify(package).yes


def test_what_is_verified_need_not_be_open(keys, tmp_path):
    path = tmp_path / "signed.docx"
    path.write_bytes(make_document())
    with opc.open(path, "r+") as package:
        opc.sign(package, key=keys / "rsa.key", certificate=keys / "rsa.pem")
    for source in (path, str(path), path.read_bytes(), io.BytesIO(path.read_bytes())):
        assert opc.verify(source, trust=keys / "rsa.pem").yes
        assert opc.coverage(source).uncovered_parts == ()
    for needs_an_open_one in (lambda: opc.sign(str(path), key=keys / "rsa.key"), lambda: opc.signatures(str(path))):
        with pytest.raises(TypeError, match="needs an open package, not str"):
            needs_an_open_one()
    with pytest.raises(opc.PackageNotFound):
        opc.verify("none.docx")


def test_a_signature_in_the_profile_of_the_library(keys):
    with opc.open(make_document(), "r+") as package:
        assert opc.sign(package, key=keys / "rsa.key", profile="opcmodel").name == "sig1"
        package.save()
        assert opc.verify(package, public_key=keys / "rsa.pub").yes
        one, = opc.verify(package, trust=keys / "ec.pem").signatures
        assert (one.profile, one.yes) == ("opcmodel", False) and one.reason
        opc.signatures(package)[0].remove()
        assert opc.signatures(package) == []


def test_changes_to_what_is_signed_are_refused(keys):
    with opc.open(make_document(), "r+") as package:
        opc.sign(package, key=keys / "rsa.key")
        package.save()
        signed = package.to_bytes()
    changes = [
        lambda package: package.retype("/notes.xml", "text/xml"),
        lambda package: package.rels.add("urn:example:more", "/notes.xml"),
        lambda package: package.rels.remove(next(iter(package.rels))),
        lambda package: package.remove("/notes.xml"),
        lambda package: setattr(package.properties, "title", "Another"),
    ]
    for change in changes:  # no answer is about a package that isn't in the file
        with opc.open(signed, "r+", break_signatures=True) as package:
            change(package)
            signature, = opc.signatures(package)
            for question in (lambda: opc.verify(package), lambda: opc.coverage(package), signature.verify):
                with pytest.raises(opc.UnsavedChanges):
                    question()
    for options, refused in (({}, True), ({"break_signatures": True}, False)):
        with opc.open(signed, "r+", **options) as package:
            package["/notes.xml"].write(b"forged")
            assert package.broken_signatures == [opc.signatures(package)[0].part]
            if refused:
                with pytest.raises(opc.BreaksSignatures):
                    package.save()
                package.close()
            else:
                package.save()
                assert opc.verify(package).signatures[0].cryptography.answer == "broken"
                assert opc.coverage(package).uncovered_parts


def test_what_signing_refuses(keys, tmp_path):
    (tmp_path / "weak.pem").write_bytes(subprocess.run(["openssl", "genrsa", "1024"], check=True, capture_output=True).stdout)
    with opc.open(make_document(), "r+") as package:
        for options, kind in (
            ({}, TypeError), ({"key": b"none"}, opc.InvalidKey), ({"key": tmp_path / "none"}, FileNotFoundError),
            ({"key": tmp_path / "weak.pem"}, opc.SigningRefused),
            ({"key": keys / "rsa.key", "certificate": keys / "ec.pem"}, opc.SigningRefused),
            ({"key": keys / "rsa.key", "parts": ["/none.xml"]}, opc.SigningRefused),
            ({"key": keys / "rsa.key", "digest": "md5"}, ValueError), ({"key": keys / "rsa.key", "profile": "x"}, ValueError),
            ({"key": keys / "rsa.key", "time": TIME.replace(tzinfo=None)}, ValueError),
            ({"p12": keys / "rsa.p12", "password": "wrong"}, opc.CertificateException),
            ({"key": keys / "rsa.key", "certificate": b"none"}, opc.X509CertificateException),
            ({"key": keys / "ec.key", "profile": "opcmodel"}, opc.OpcError),
        ):
            with pytest.raises(kind):
                opc.sign(package, **options)
        package["/notes.xml"].write(b"<unsaved/>")
        with pytest.raises(opc.UnsavedChanges):
            opc.sign(package, key=keys / "rsa.key")
