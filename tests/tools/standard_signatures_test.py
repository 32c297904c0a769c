"""Signatures in the profile of office programs: verify and coverage."""
import json
import os
import pathlib
import shutil
import subprocess
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

    def test_show_a_claimed_time_and_no_other_text(self):
        for claim, shown in ('2026-11-27T10:00:00Z', '2026-11-27T10:00:00Z'), ('2026  sig2  RSA  CN=Bo  valid', '-'), ('1' * 99, '-'):
            self.copy_fixture('letter.docx', 'p.docx')
            self.signer.claimed_time = claim
            self.signer.sign(self.folder / 'p.docx')
            self.assertRegex(self.do('verify p.docx --trust std.pem'), rf'\nsig1 +{shown} +RSA')

    def test_are_no_yes_without_trust(self):
        self.assertEqual(self.answers(self.verify('', 1)), ['valid', 'complete', 'not checked'])
        self.assertEqual(self.answers(self.verify('--trust system', 1)), ['valid', 'complete', 'not trusted'])
        self.assertFalse(self.verify('--require complete', 0)['yes'])
        for options, state in ('--require complete', 'unproven'), ('--trust std.pem', 'holds'):
            result = self.envelopes('verify p.docx ' + options)[1][0]['result']
            is_yes = state == 'holds'
            self.assertEqual((result['state'], result['yes'], result['signatures'][0]['holds']), (state, is_yes, is_yes))
        self.verify('--require complete,trusted', 1)
        self.verify('--require complete,trusted --trust std.pem', 0)
        digits = self.verify('', 1)['fingerprint']
        for form in digits.upper(), ':'.join(digits[i:i + 2] for i in range(0, len(digits), 2)):
            self.verify('--fingerprint ' + form, 0)
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
                ('_rels/.rels', b'digital-signature/origin', b'x', 1, "sig1: partial: /#rIdOrigin: the relationship isn't signed"),
                ('_xmlsignatures/_rels/origin.sigs.rels', b'digital-signature/signature', b'x', 1,
                 'No: /_xmlsignatures/sig1.xml: It has the content type of a signature, and no relationship leads to it'),
                ('_xmlsignatures/sig1.xml', b'<Signature ', b'<!DOCTYPE a><Signature ', 1,
                 'sig1: broken: the document has a document type declaration'),
                (rels, b'<Relationships ', b'<!DOCTYPE a><Relationships ', 3,
                 'sig1: broken: /word/_rels/document.xml.rels: the document has a document type')):
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
        self.replace('word/document.xml', b'</w:body>', b' </w:body>')
        self.assertRegex(self.do('coverage p.docx'), r'/word/styles.xml +none\n(.*\n)*sig1 is broken')

    def test_stand_beside_those_of_the_other_profile(self):
        self.do('keygen k')
        for command, name in ('sign', 'sig2\n'), ('countersign', 'sigcountersig\n'):
            signed = self.run_tool(command + ' p.docx --profile opcmodel --key k.key --public k.pub')
            self.assertEqual(signed[:2], (0, name))
            self.assertIn("don't cover this one: they are partial now", signed.errors)
        status, (document,) = self.envelopes('verify p.docx --public k.pub')
        profiles = {row['profile']: row for row in document['result']['signatures']}
        self.assertEqual((status, profiles['opcmodel']['holds']), (1, True))
        self.assertEqual(self.answers(profiles['standard']), ['valid', 'partial', 'not trusted'])
        result = self.list('coverage p.docx')
        self.assertEqual((result['profile'], result['standard']['profile']), ('opcmodel', 'standard'))
        self.assertEqual(self.envelopes('coverage p.docx')[0], 0)


class StandardSigning(OpctoolCase):
    """Commands on p.docx, with the keys rsa and ec and their certificates."""

    @classmethod
    def setUpClass(cls):
        cls.keys = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.keys.cleanup)
        for arguments in ('rsa --cert Ada', 'ec --ec P-384 --cert Bo', 'old --bits 1024 --cert Old'):
            subprocess.run([os.environ['OPCTOOL'], 'keygen', *arguments.split()], cwd=cls.keys.name, check=True, capture_output=True)

    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'p.docx')
        shutil.copytree(self.keys.name, self.folder, dirs_exist_ok=True)

    def sign(self, options, name='p.docx'):
        """What JSON says about the new signature."""
        status, (document,) = self.envelopes(f'sign {name} {options}')
        self.assertEqual(status, 0, document)
        return document['result']

    def verify(self, options):
        """The status, and the only signature or all of them."""
        status, (document,) = self.envelopes('verify p.docx ' + options)
        rows = document['result']['signatures']
        return status, rows[0] if len(rows) == 1 else rows

    def answers(self, row):
        return ' '.join(row[key]['answer'].replace(' ', '-') for key in ('cryptography', 'coverage', 'trust'))

    def test_each_kind_of_signer(self):
        made = self.shell("""
            openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 9 -subj /CN=Root -keyout root.key -out root.pem
            openssl req -x509 -newkey rsa:2048 -nodes -days 9 -subj /CN=Middle -CA root.pem -CAkey root.key -keyout ca.key -out ca.pem
            openssl req -x509 -newkey rsa:3072 -nodes -days 9 -subj /CN=Leaf -CA ca.pem -CAkey ca.key -addext basicConstraints=CA:FALSE \\
                -keyout leaf.key -out leaf.pem
            openssl pkcs12 -export -inkey leaf.key -in leaf.pem -certfile ca.pem -passout pass:sesame -out leaf.p12
            openssl pkcs12 -export -inkey ec.key -in ec.pem -passout pass:sesame -out ec.p12
            cat leaf.pem ca.pem >both.pem && echo sesame >word""")
        self.assertEqual(made.status, 0, made.errors)
        for name, signer, trust, method, expected in (
                ('letter.docx', '--key rsa.key --cert rsa.pem', '--trust rsa.pem', 'RSA with SHA-256', 'valid complete trusted'),
                ('budget.xlsx', '--key ec.key --cert ec.pem', '--trust ec.pem', 'ECDSA with SHA-256', 'valid complete trusted'),
                ('talk.pptx', '--key rsa.key --digest sha384', '--trust rsa.pem', 'RSA with SHA-384', 'valid complete unknown'),
                ('report.docx', '--key rsa.key', '--public rsa.pub', 'RSA with SHA-256', 'valid complete trusted'),
                ('table.xlsx', '--key ec.key --digest sha512', '--public ec.pub', 'ECDSA with SHA-512', 'valid complete trusted'),
                ('letter.docx', '--p12 leaf.p12 --password-file word', '--trust root.pem', 'RSA with SHA-256', 'valid complete trusted'),
                ('letter.docx', '--p12 ec.p12 --password-file word', '--trust ec.pem', 'ECDSA with SHA-256', 'valid complete trusted'),
                ('letter.docx', '--key leaf.key --cert leaf.pem --chain ca.pem', '--trust root.pem', 'RSA with SHA-256',
                 'valid complete trusted'),
                ('letter.docx', '--key leaf.key --cert both.pem', '--trust root.pem', 'RSA with SHA-256', 'valid complete trusted'),
                ('letter.docx', '--key leaf.key --cert leaf.pem', '--trust root.pem', 'RSA with SHA-256', 'valid complete not-trusted'),
                ('letter.docx', '--key rsa.key --cert rsa.pem', '', 'RSA with SHA-256', 'valid complete not-checked'),
                ('letter.docx', '--key old.key --cert old.pem --accept-weak', '--trust old.pem', 'RSA with SHA-256',
                 'weak complete not-trusted')):
            self.copy_fixture(name, 'p.docx')
            signed = self.sign(signer)
            self.assertEqual(signed, {'name': 'sig1', 'profile': 'standard', 'part': '/_xmlsignatures/sig1.xml', 'coverage': 'complete',
                                      'unreachable': [], 'dangling': []}, signer)
            status, row = self.verify(trust)
            self.assertEqual((row['digest'], self.answers(row)), (method, expected), signer)
            self.assertEqual((status, row['yes']), (0, True) if expected == 'valid complete trusted' else (1, False), signer)
        self.assertEqual(self.verify('--trust old.pem --accept-weak')[0], 0)

    def test_the_profile_is_that_of_the_signatures_which_are_there(self):
        told = 'opctool: p.docx: the profile is {}, as that of the signatures which the package has; --profile chooses another one\n'
        partial = "opctool: p.docx: warning: the signatures in the standard's profile don't cover this one: they are partial now\n"
        before = self.read('p.docx')
        for first, further, profile, errors in (
                ('', '', 'standard', told.format('standard')), ('', '--profile standard', 'standard', ''),
                ('', '--profile opcmodel', 'opcmodel', partial), ('--profile opcmodel', '', 'opcmodel', told.format('opcmodel')),
                ('--profile opcmodel', '--profile standard', 'standard', '')):
            self.write('p.docx', before)
            self.assertEqual(self.run_tool('sign p.docx --key rsa.key ' + first), (0, 'sig1\n', ''))
            outcome = self.run_tool(f'sign p.docx --key rsa.key --jsonl {further}')
            self.assertEqual(json.loads(outcome.output)['result']['profile'], profile)
            self.assertEqual(outcome.errors, errors)

    def test_options_of_the_other_profile_are_wrong_usage(self):
        before = self.read('p.docx')
        for arguments, words in (
                ('sign p.docx --key rsa.key --public rsa.pub', '--public: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --relationship-type /:urn:t', '--relationship-type: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --trust rsa.pem', '--trust: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --digest md5', '--digest md5: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --digest sha1 --profile standard', '--digest sha1: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --digest sha224', '--digest sha224: needs --profile opcmodel'),
                ('countersign p.docx --key rsa.key', 'countersign: needs --profile opcmodel'),
                ('sign p.docx --key rsa.key --all --profile opcmodel', '--all: needs --profile standard'),
                ('sign p.docx --key rsa.key --all --part /word/document.xml', '--part excludes --all'),
                ('sign p.docx --key rsa.key --comment x --profile opcmodel', '--comment: needs --profile standard'),
                ('sign p.docx --key rsa.key --profile other', '--profile'), ('keygen k --bits 2048 --ec P-256', '--bits'),
                ('keygen k --ec P-224', '--ec'), ('keygen k --days 5', '--cert'), ('keygen k --cert ""', '--cert'),
                ('verify p.docx --time soon', '--time'), ('verify p.docx --time 9999', '--time')):
            outcome = self.run_tool(arguments)
            self.assertEqual(outcome.status, 2, arguments)
            self.assertIn(words, outcome.errors)
        self.assertEqual(self.read('p.docx'), before)

    def test_what_is_signed_is_what_was_asked_for(self):
        self.assertEqual(self.sign('--key rsa.key --part /word/document.xml --relationship /:rId3 -o q.docx')['coverage'], 'partial')
        self.assertEqual(self.read('p.docx')[:2], b'PK')
        row = self.envelopes('verify q.docx')[1][0]['result']['signatures'][0]
        self.assertEqual([row['coverage'][key] for key in ('signedParts', 'signedRelationships')], [1, 1])
        self.sign('--key rsa.key --all --comment "in <order>"')
        row = self.verify('')[1]
        self.assertEqual((row['coverage']['answer'], row['coverage']['byCustom']), ('complete', []))
        self.assertIn('<SignatureComments>in &lt;order&gt;<', self.do('cat p.docx /_xmlsignatures/sig1.xml'))
        self.do('props p.docx --set title=new --break-signatures')
        self.assertEqual(self.verify('')[1]['cryptography']['answer'], 'broken')
        self.assertFalse(self.list('coverage p.docx')['content']['full'])

    def test_what_nothing_reaches_is_told(self):
        for name in range(7):
            self.write('x', 'x')
            self.do(f'add p.docx /hidden{name}.xml x --type application/xml')
        self.do('relate p.docx / urn:missing /later.xml --id gone')
        outcome = self.run_tool('sign p.docx --key rsa.key --jsonl')
        result = json.loads(outcome.output)['result']
        self.assertEqual((result['unreachable'], result['dangling']), ([f'/hidden{name}.xml' for name in range(7)], ['/#gone']))
        self.assertIn("warning: /#gone leads to a part that isn't there. ", outcome.errors)
        self.assertIn('warning: no relationship leads to /hidden0.xml; /hidden1.xml; /hidden2.xml; /hidden3.xml; /hidden4.xml; and 2 more. ',
                      outcome.errors)

    def test_what_others_take_for_something_else_is_no_yes(self):
        def write(item, before=b'', **values):
            """The package again, with other values of the header of an item and bytes in front of it all."""
            with zipfile.ZipFile(self.folder / 'p.docx') as opened:
                items = [(info, opened.read(info)) for info in opened.infolist()]
            with open(self.folder / 'q.docx', 'wb') as file:
                file.write(before)
                with zipfile.ZipFile(file, 'w') as written:
                    for info, content in items:
                        if info.filename == item:
                            for name, value in values.items():
                                setattr(info, name, value)
                        written.writestr(info, content)

        app = 'docProps/app.xml'
        for profile, signer, options in (('standard', '--cert rsa.pem', '--trust rsa.pem'),
                                         ('opcmodel', '--public rsa.pub', '--public rsa.pub --require-full')):
            self.copy_fixture('letter.docx', 'p.docx')
            for is_signed in False, True:
                for item, values, words in (
                        (app, {'extra': b'\x75\x70\x0a\0\1CRC_evil.'}, 'a Unicode Path field gives it another name'),
                        ('word/document.xml', {'create_system': 3, 'external_attr': 0o120777 << 16}, 'by its attributes it is a symbolic link'),
                        (app, {'before': b'{\\rtf1}'}, "they aren't read here")):
                    write(item, **values)
                    if is_signed:
                        outcome = self.run_tool(f'verify q.docx {options}')
                        self.assertEqual((outcome.status, words in outcome.output), (1, True), outcome.output)
                        self.assertEqual(self.run_tool('check q.docx --fail-on warning').status, 1)
                    elif profile == 'standard':
                        self.assertIn(f'for something else: {words}', self.run_tool('sign q.docx --key rsa.key').errors)
                self.do(f'sign p.docx --profile {profile} --key rsa.key {signer}')

    def test_changes_tell_what_becomes_of_signatures(self):
        self.write('x', '<x/>')
        self.do('sign p.docx --key rsa.key')
        for command, broken, narrowed in (
                ('add p.docx /x.xml x --type application/xml', False, True), ('relate p.docx /word/document.xml urn:t /x.xml', False, True),
                ('put p.docx /docProps/app.xml x', False, False), ('put p.docx /word/document.xml x --break-signatures', True, False)):
            _, (document,) = self.envelopes(command + ' -n')
            outcome = self.run_tool(command)
            for key, words, is_told in (('broken', "doesn't hold after this", broken), ('narrowed', "doesn't cover what was added", narrowed)):
                self.assertEqual(document['result'][key + 'Signatures'], ['/_xmlsignatures/sig1.xml'] if is_told else [], command)
                self.assertEqual(f'warning: the signature /_xmlsignatures/sig1.xml {words}\n' in outcome.errors, is_told, command)

    def test_doubts_about_the_certificate_are_told(self):
        self.assertEqual(self.shell('openssl req -x509 -key rsa.key -addext keyUsage=keyEncipherment -subj /CN=X -out other.pem').status, 0)
        for time, name, words in ((86400, 'rsa', 'warning: the certificate is valid only from 2'),
                                  (9000000000, 'rsa', 'warning: the certificate is valid only until 2'),
                                  ('', 'other', "warning: the certificate isn't there for signing")):
            environment = f'SOURCE_DATE_EPOCH={time}' if time else ''
            outcome = self.shell(f"{environment} '{self.tool}' sign p.docx --key rsa.key --cert {name}.pem -o q.docx")
            self.assertEqual(outcome.status, 0)
            self.assertIn(words, outcome.errors)

    def test_failures_leave_the_file_as_it_was(self):
        self.write('key.txt', 'no key')
        refused = 'SigningRefused: '
        for options, line in (
                ('--key rsa.key --part /none.xml', refused + 'There is no part /none.xml'),
                ('--key rsa.key --relationship /:none', refused + 'There is no relationship none of /'),
                ('--key rsa.key --cert ec.pem', refused + "The certificate isn't that of the private key"),
                ('--key old.key', refused + 'An RSA key of 1024 bits is too weak')):
            self.assert_failure('sign p.docx ' + options, line, 'p.docx')
        outcome = self.run_tool('sign p.docx --key key.txt')
        self.assertEqual((outcome.status, outcome.errors.startswith('opctool: p.docx: Exception: key.txt: The bytes are no private key')),
                         (3, True), outcome.errors)
        self.add_item('p.docx', 'a.unknown')
        self.assertIn(refused + 'The part /a.unknown can be understood in different ways: it has no content type', self.run_tool('sign p.docx --key rsa.key').errors)

    def test_signatures_go_as_they_came(self):
        before = self.list('ls p.docx')
        self.do('sign p.docx --key rsa.key --cert rsa.pem', 'sign p.docx --key ec.key --cert ec.pem')
        self.assertEqual([self.answers(row) for row in self.verify('--trust rsa.pem --trust ec.pem')[1]], 2 * ['valid complete trusted'])
        self.do('unsign p.docx /_xmlsignatures/sig1.xml')
        status, row = self.verify('--trust ec.pem')
        self.assertEqual((status, row['name']), (0, 'sig2'))
        self.do('sign p.docx --key rsa.key --public rsa.pub --profile opcmodel')  # which is sig1, and signs sig2
        self.assert_failure('unsign p.docx sig2', 'BreaksSignatures: This would break the signature /_xmlsignatures/sig1.xml', 'p.docx')
        self.do('unsign p.docx sig1')
        self.assertEqual(self.verify('--trust ec.pem')[0], 0)
        self.do('sign p.docx --key rsa.key --profile opcmodel', 'unsign p.docx --all')
        self.assertEqual(self.list('ls p.docx'), before)
        self.assertNotIn('digital', self.do('rels p.docx --all'))
        self.do('sign p.docx --key rsa.key --public rsa.pub --profile opcmodel', 'sign p.docx --key rsa.key --profile standard')
        self.assert_failure('unsign p.docx sig1', 'BreaksSignatures: This would break the signature /_xmlsignatures/sig2.xml', 'p.docx')
        self.do('unsign p.docx sig2', 'verify p.docx --public rsa.pub --require-full')

    def test_times_are_those_that_are_asked_for(self):
        self.do('sign p.docx --key rsa.key --cert rsa.pem')
        for time, expected in (('now', 'trusted'), ('2020-02-29', 'not trusted'), ('2020-02-29T13:45Z', 'not trusted')):
            trust = self.verify('--trust rsa.pem --time ' + time)[1]['trust']
            self.assertEqual((trust['answer'], trust['timeFrom']), (expected, 'caller'))
        self.assertEqual(trust['time'], '2020-02-29T13:45:00Z')
        self.assertEqual(self.verify('--trust rsa.pem')[1]['trust']['timeFrom'], 'now')

    def test_revoked_certificates_are_not_trusted(self):
        self.write('ca.conf', '[ca]\ndefault_ca=d\n[d]\ndatabase=index\ndefault_md=sha256\ndefault_crl_days=1\n')
        self.write('index', '')
        revoke = 'openssl ca -config ca.conf -keyfile rsa.key -cert ca.pem '
        self.assertEqual(self.shell(f'openssl req -x509 -key rsa.key -days 2 -subj /CN=Ada -out ca.pem && {revoke} -gencrl -out none.crl && '
                                    f'{revoke} -revoke ca.pem && {revoke} -gencrl -out revoked.crl').status, 0)
        self.do('sign p.docx --key rsa.key --cert ca.pem')
        for options, answer in (' --crl none.crl', 'trusted'), (' --crl revoked.crl', 'not trusted'):
            self.assertEqual(self.verify('--trust ca.pem' + options)[1]['trust']['answer'], answer)

    def test_the_same_input_gives_the_same_file(self):
        for profile in 'standard', 'opcmodel':
            for name in 'ab':
                self.assertEqual(self.shell(f"SOURCE_DATE_EPOCH=86400 '{self.tool}' sign p.docx --key rsa.key --profile {profile} -o {name}.docx").status, 0)
            self.assertEqual(self.read('a.docx'), self.read('b.docx'), profile)
            self.assertEqual(self.envelopes('verify a.docx')[1][0]['result']['signatures'][0]['time'], '1970-01-02T00:00:00Z')
        before = self.read('p.docx')
        for arguments in 'sign p.docx --key rsa.key', 'sign p.docx --key rsa.key --profile opcmodel', 'unsign p.docx --all':
            self.do(arguments + ' -n')
            self.assertEqual(self.read('p.docx'), before, arguments)

    def test_find_nothing_wrong_with_what_is_signed_here(self):
        self.do('sign p.docx --key ec.key --cert ec.pem', 'sign p.docx --key rsa.key')
        rules = {finding['rule'] for finding in self.list('check p.docx --profile all')['findings'] if finding['severity'] != 'info'}
        self.assertEqual(rules & {rule for rule in rules if rule.startswith('M6') or rule.startswith('SEC-7')}, set())


if __name__ == '__main__':
    unittest.main()
