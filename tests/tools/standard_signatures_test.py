"""Signatures in the profile of office programs: verify and coverage."""
import os
import pathlib
import shutil
import tempfile
import unittest
import zipfile

from opctool_case import OFFICE_FILES, OpctoolCase
from standard_signing import Signer

KEYS = 'std.key', 'std.pem'


class StandardSignatures(OpctoolCase):
    """Commands on p.docx, which std.pem has signed."""

    @classmethod
    def setUpClass(cls):
        cls.keys = tempfile.TemporaryDirectory()
        Signer(pathlib.Path(cls.keys.name))
        cls.addClassCleanup(cls.keys.cleanup)

    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'p.docx')
        for name in KEYS:
            shutil.copy(os.path.join(self.keys.name, name), self.folder)
        self.signer = Signer(self.folder)
        self.signer.sign(self.folder / 'p.docx')

    def answers(self, row):
        return [row[key]['answer'] for key in ('cryptography', 'coverage', 'trust')]

    def verify(self, options, status, name='p.docx'):
        """The row of the only signature."""
        found, (document,) = self.envelopes(f'verify {name} {options}')
        self.assertEqual(found, status, document)
        row, = document['result']['signatures']
        return row

    def replace(self, item, old, new):
        with zipfile.ZipFile(self.folder / 'p.docx') as opened:
            items = {name: opened.read(name) for name in opened.namelist()}
        self.assertIn(old, items[item])
        items[item] = items[item].replace(old, new, 1)
        with zipfile.ZipFile(self.folder / 'p.docx', 'w') as written:
            for name, content in items.items():
                written.writestr(name, content)

    def test_get_three_answers(self):
        for name in OFFICE_FILES:
            self.copy_fixture(name, name)
            self.signer.sign(self.folder / name)
            row = self.verify('--trust std.pem', 0, name)
            self.assertEqual((self.answers(row), row['yes'], row['profile']), (['valid', 'complete', 'trusted'], True, 'standard'))
        self.assertEqual(row['signer'], 'CN=Ada')
        text = self.do('verify p.docx --trust std.pem')
        self.assertRegex(text, r"standard's profile:\n.*\nsig1 +- +RSA with SHA-256, 2048 bits +CN=Ada +valid +complete +trusted\n")

    def test_are_no_yes_without_trust(self):
        self.assertEqual(self.answers(self.verify('', 1)), ['valid', 'complete', 'not checked'])
        self.assertEqual(self.answers(self.verify('--trust system', 1)), ['valid', 'complete', 'not trusted'])
        self.assertFalse(self.verify('--require complete', 0)['yes'])
        self.verify('--require complete,trusted', 1)
        self.verify('--require complete,trusted --trust std.pem', 0)
        self.verify(f"--fingerprint {self.verify('', 1)['fingerprint'].upper()}", 0)
        self.assertEqual(self.shell('openssl x509 -in std.pem -pubkey -noout >std.pub').status, 0)
        self.verify('--public std.pub', 0)
        self.assert_wrong_usage('verify p.docx --require all')
        self.verify('--trust std.pem --signature sig1', 0)
        self.assertEqual(self.run_tool('verify p.docx --signature sig9').status, 3)

    def test_are_weak_over_sha(self):
        self.copy_fixture('letter.docx', 'p.docx')
        Signer(self.folder, 'sha1').sign(self.folder / 'p.docx')
        row = self.verify('--trust std.pem', 1)
        self.assertEqual((self.answers(row)[0], row['weak'][0]), ('weak', 'The signature is RSA with SHA-1'))
        self.assertTrue(self.verify('--trust std.pem --accept-weak', 0)['yes'])

    def test_tell_what_is_wrong(self):
        document = 'word/document.xml'
        rels = 'word/_rels/document.xml.rels'
        evil = b'<Relationship Id="evil" Type="urn:evil" Target="http://e/" TargetMode="External"/></Relationships>'
        for item, old, new, status, text in (
                (document, b'</w:body>', b' </w:body>', 1, 'sig1: broken: /word/document.xml: It has changed since it was signed'),
                (rels, b'</Relationships>', evil, 1,
                 "sig1: partial: /word/document.xml#evil: the relationship isn't signed, and leads out of the package"),
                ('[Content_Types].xml', b'document.main+xml', b'template.main+xml', 1, 'and it was signed as'),
                ('_xmlsignatures/sig1.xml', b'<Signature ', b'<!DOCTYPE a><Signature ', 1, 'sig1: broken: invalid document structure'),
                (rels, b'<Relationships ', b'<!DOCTYPE a><Relationships ', 3, 'sig1: broken: /word/_rels/document.xml.rels: invalid document')):
            self.copy_fixture('letter.docx', 'p.docx')
            self.signer.sign(self.folder / 'p.docx')
            self.replace(item, old, new)
            outcome = self.run_tool('verify p.docx --trust std.pem')
            self.assertEqual(outcome.status, status, outcome.output + outcome.errors)
            self.assertIn(text, outcome.output)

    def test_are_in_the_coverage(self):
        status, (document,) = self.envelopes('coverage p.docx')
        result = document['result']
        self.assertEqual((status, result['profile'], result['signatures'], result['content']['full']), (0, 'standard', ['sig1'], True))
        rows = {row['name']: row for row in result['parts']}
        self.assertEqual(rows['/word/document.xml']['signatures'], ['sig1'])
        self.assertTrue(rows['/docProps/core.xml']['byCustom'])
        self.assertTrue(rows['/_xmlsignatures/sig1.xml']['ofSignatures'])
        self.assertIn('/docProps/core.xml', result['uncovered']['parts'])
        self.assertEqual(result['content']['uncoveredParts'], [])
        self.assertRegex(self.do('coverage p.docx'), r'/word/document.xml +sig1\n')

    def test_stand_beside_those_of_the_other_profile(self):
        self.do('keygen k')
        self.assertEqual(self.run_tool('sign p.docx --key k.key --public k.pub').output, 'sig2\n')
        status, (document,) = self.envelopes('verify p.docx --public k.pub')
        profiles = {row['profile']: row for row in document['result']['signatures']}
        self.assertEqual((status, profiles['opcmodel']['holds']), (1, True))
        self.assertEqual(self.answers(profiles['standard']), ['valid', 'partial', 'not trusted'])
        result = self.list('coverage p.docx')
        self.assertEqual((result['profile'], result['standard']['profile']), ('opcmodel', 'standard'))
        self.assertEqual(self.envelopes('coverage p.docx')[0], 0)


if __name__ == '__main__':
    unittest.main()
