"""What opctool loads: the XML parser for documents that aren't in the usual form, OpenSSL for signatures and keys."""
import unittest

from opctool_case import OpctoolCase


def on_packages(*commands):
    return [f'{command} {package}' for package in ('p.zip', 'letter.docx') for command in commands]


USUAL_COMMANDS = ['--version', '--help', 'check letter.docx',
                  *on_packages('info', 'ls', 'rels --all', 'props', 'coverage')]
CHANGING_COMMANDS = ['new n.zip', 'add n.zip /a.txt note.txt --type text/plain', 'relate n.zip / urn:a /a.txt',
                     'put n.zip /a.txt note.txt', 'add letter.docx /a.text note.txt --type text/plain', 'relate letter.docx / urn:a /a.text',
                     'rm letter.docx /a.text', 'rm n.zip /a.txt']
CRYPTO_COMMANDS = ['keygen b', 'verify --public a.pub p.zip', 'check p.zip', 'sign letter.docx --key a.key -o new.docx',
                   'verify --public a.pub signed.docx']


class StartUp(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'letter.docx')
        self.write('note.txt', 'note')
        self.do('keygen a', 'new p.zip', 'add p.zip /note.txt note.txt --type text/plain', 'props p.zip --set title=T',
                'sign p.zip --profile opcmodel --key a.key --public a.pub', 'sign letter.docx --key a.key -o signed.docx',
                'new odd.zip', 'relate odd.zip / urn:example:a "http://user@[::1]/" --external')

    def test_a_library_is_loaded_by_what_needs_it(self):
        for commands, present, absent in ((USUAL_COMMANDS + CHANGING_COMMANDS, 'libz.so', ('libxerces', 'libcrypto')),
                                          (CRYPTO_COMMANDS, 'libcrypto.so', ('libxerces',))):
            for command in commands:
                loaded = self.shell(f"LD_DEBUG=files '{self.tool}' {command}").errors
                self.assertIn(present, loaded, command)
                self.assertEqual([name for name in absent if name in loaded], [], command)

    def test_a_missing_library_is_told(self):
        version = self.do('--version').split()[-1]
        without = 'LD_LIBRARY_PATH=.:$LD_LIBRARY_PATH '
        for library, needing, message in (
                ('xerces', ['ls odd.zip'], "The XML parser can't be loaded: "),
                ('openssl', ['keygen c', 'sign letter.docx --profile opcmodel --key a.key', 'sign letter.docx --key a.key', 'verify p.zip --public a.pub',
                             'verify p.zip --trust a.pub', 'check p.zip'], "OpenSSL can't be loaded: ")):
            module = f'libopcmodel_{library}.so.{version}'
            self.write(module, '')
            self.assertEqual(self.shell(f"{without} '{self.tool}' ls letter.docx").status, 0, library)
            for command in needing:
                outcome = self.shell(f"{without} '{self.tool}' {command}")
                self.assertEqual(outcome.status, 3, command)
                self.assertIn(message, outcome.errors, command)
            (self.folder / module).unlink()


if __name__ == '__main__':
    unittest.main()
