"""Commands that mend packages, and that take metadata out of them."""
import os
import subprocess
import unittest

from opctool_case import OpctoolCase

TYPES = 'http://schemas.openxmlformats.org/officeDocument/2006/relationships/'


class Mending(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.write('a', 'x')
        self.do('new p.zip', 'add p.zip /a.bin a --type a/b', 'relate p.zip / urn:t /a.bin --id a',
                'relate p.zip / urn:t /gone.bin --id gone')

    def test_says_what_it_does_and_what_it_leaves(self):
        line = 'SEC-17 /_rels/.rels#gone: The relationship is taken out\n'
        before = self.read('p.zip')
        self.assertEqual(self.run_tool('fix p.zip -n'), (0, line, ''))
        self.assertEqual(self.run_tool('fix p.zip -o q.zip'), (0, line, ''))
        self.assertEqual(self.run_tool('fix - -n <p.zip'), (0, line, ''))
        self.assertEqual(self.read('p.zip'), before)
        self.assertEqual(self.shell('$OPCTOOL fix - <p.zip >r.zip'), (0, '', 'opctool: -: ' + line))
        self.assertEqual(self.read('r.zip'), self.read('q.zip'))
        self.assertEqual([one['id'] for one in self.list('rels q.zip')], ['a'])
        self.write('j.zip', b'junk' + self.read('q.zip'))
        self.write('job.json', '{"opctool": {"job": 1}, "steps": [{"do": "fix"}]}')
        self.assertEqual(self.do('apply j.zip job.json -n'), 'SEC-46 The archive is written anew without that\n')
        [(status, [envelope])] = [self.envelopes('fix p.zip -n --no-rule SEC-17 --profile security', '--json=2')]
        self.assertEqual(status, 0)
        self.assertEqual(envelope['result']['changes'], [])
        self.assertEqual(self.run_tool('fix p.zip'), (0, line, ''))
        self.assertEqual(self.run_tool('fix p.zip'), (0, '', ''))
        self.assertEqual(self.read('p.zip'), self.read('q.zip'))
        self.write('p.zip', 'no package')
        self.assertEqual(self.run_tool('fix p.zip').output[:27], 'left: SEC-57 The file is no')
        self.assertEqual(self.run_tool('fix p.zip').status, 1)
        self.assertEqual(self.read('p.zip'), b'no package')
        name = 'EncryptedPackage'.encode('utf-16-le')
        header = b'\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1'.ljust(30, b'\0') + b'\x09'  # OLE2, in sectors of 512 bytes
        self.write('p.zip', header.ljust(48, b'\0') + b'\x01'.ljust(976, b'\0') + name.ljust(64, b'\0') +
                   bytes([len(name) + 2]).ljust(448, b'\0'))
        self.assertEqual(self.run_tool('fix p.zip'), (1, 'left: SEC-45 The document is encrypted: nothing in it can be checked\n', ''))

    def test_what_breaks_a_signature_is_refused_and_told_in_a_dry_run(self):
        self.do('keygen k')
        name = self.do('sign p.zip --key k.key --all').strip()
        line = (f'BreaksSignatures: This would break the signature /_xmlsignatures/{name}.xml; '
                '--break-signatures makes the change all the same')
        self.assert_failure('fix p.zip', line, 'p.zip')
        dry = self.run_tool('fix p.zip -n')
        self.assertEqual((dry.status, dry.output[:6], dry.errors), (3, 'SEC-17', f'opctool: p.zip: {line}\n'))
        self.assertEqual(self.run_tool('fix p.zip --break-signatures').output[:6], 'SEC-17')

    def test_a_file_that_others_save_meanwhile_is_left_to_them(self):
        """The content is only opened once the package is open. With -o, a name of the package itself is no other file."""
        os.symlink('p.zip', self.folder / 'link.zip')
        os.mkfifo(self.folder / 'pipe')
        for arguments in 'p.zip /a.bin pipe', 'p.zip /a.bin pipe -o ./link.zip', 'link.zip /a.bin pipe -o p.zip':
            with subprocess.Popen([self.tool, 'put', *arguments.split()], cwd=self.folder, stderr=subprocess.PIPE) as process:
                with open(self.folder / 'pipe', 'wb'):
                    self.do('relate p.zip / urn:t https://example.com/ --external')
                    others = self.read('p.zip')
                self.assertIn(b'PackageCloseFailed: has been changed by another program', process.communicate()[1], arguments)
                self.assertEqual((process.returncode, self.read('p.zip')), (3, others), arguments)

    def test_clean_lists_what_goes_and_what_remains(self):
        self.do('props p.zip --set creator=me', 'props p.zip --custom --set a=b', 'props p.zip --extended --set Company=c')
        [status, [envelope]] = self.envelopes('clean p.zip --dry-run', '--json=2')
        self.assertEqual([one['place'] for one in envelope['result']['changes'] if one['kind'] == 'part-removed'],
                         ['/metadata/coreProperties.xml', '/docProps/custom.xml', '/docProps/app.xml'])
        self.assertEqual([one['rule'] for one in envelope['result']['remaining']], ['SEC-58'])
        result = self.shell('$OPCTOOL clean - --custom <p.zip >q.zip')
        self.assertIn('remove /docProps/custom.xml', result.errors)
        self.assertEqual(self.list('props q.zip'), {'creator': 'me'})
        self.do('clean p.zip')
        self.assertEqual([one['name'] for one in self.list('ls p.zip')], ['/a.bin'])

    def test_custom_and_extended_properties_are_changed_and_printed(self):
        self.do('props p.zip --custom --set Yes=true --type bool', "props p.zip --custom --set Yes=0 --set 'A b=c=d'",
                'props p.zip --extended --set Pages=3')
        self.assertEqual(self.list('props p.zip --custom'), [{'name': 'Yes', 'type': 'bool', 'value': '0'},
                                                             {'name': 'A b', 'type': 'lpwstr', 'value': 'c=d'}])
        self.envelopes('props p.zip --custom')
        self.assertEqual(self.do('props p.zip --extended'), 'PROPERTY  TYPE  VALUE\nPages     i4    3\n')
        before = self.read('p.zip')
        for arguments, error in (('--custom --set a=x --type i4', "--set: a=x isn't a whole number"),
                                 ('--custom --set a=x --type vector', "--set: a=x has a type that can't be set"),
                                 ('--custom --set Yes=maybe', "--set: Yes=maybe isn't true or false"),
                                 ('--custom --set a', "--set: a isn't NAME=VALUE"),
                                 ('--extended --set Pagse=1', "--set: Pagse isn't an extended property"),
                                 ('--extended --set Pages=1 --type i4', '--type: it is for custom properties'),
                                 ('--labels --clear', '--labels: labels can only be read'),
                                 ('--custom --keyword a', '--keyword: it is for core properties'),
                                 ('--custom --extended', '--custom excludes --extended')):
            outcome = self.run_tool('props p.zip ' + arguments)
            self.assertEqual(outcome.status, 2, outcome.errors)
            self.assertIn(error, outcome.errors)
        self.assertEqual(self.read('p.zip'), before)
        self.do('props p.zip --custom --clear --set MSIP_Label_1_Name=Secret')
        self.assertEqual(self.list('props p.zip --labels'), [{'label': '1', 'settings': {'Name': 'Secret'}}])


if __name__ == '__main__':
    unittest.main()
