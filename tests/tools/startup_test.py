"""What opctool loads: the XML parser only for documents that aren't in the usual form."""
import unittest

from opctool_case import OpctoolCase

USUAL_COMMANDS = ('--version', '--help', 'keygen b',
                  *(f'{command} {package}' for package in ('p.zip', 'letter.docx')
                    for command in ('info', 'ls', 'rels --all', 'props', 'verify --public a.pub', 'coverage')))


class StartUp(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'letter.docx')
        self.write('note.txt', 'note')
        self.do('keygen a', 'new p.zip', 'add p.zip /note.txt note.txt --type text/plain', 'props p.zip --set title=T',
                'sign p.zip --key a.key --public a.pub',
                'new odd.zip', 'relate odd.zip / urn:example:a "http://user@[::1]/" --external')

    def test_usual_packages_load_no_parser(self):
        for command in USUAL_COMMANDS:
            loaded = self.shell(f"LD_DEBUG=files '{self.tool}' {command}")
            self.assertIn('libz.so', loaded.errors, command)
            self.assertNotIn('xerces', loaded.errors, command)

    def test_a_missing_parser_is_told(self):
        self.do('ls odd.zip')
        version = self.do('--version').split()[-1]
        self.write(f'libopcmodel_xerces.so.{version}', '')
        without = 'LD_LIBRARY_PATH=.:$LD_LIBRARY_PATH '
        self.assertEqual(self.shell(f"{without} '{self.tool}' ls letter.docx").status, 0)
        outcome = self.shell(f"{without} '{self.tool}' ls odd.zip")
        self.assertEqual(outcome.status, 3)
        self.assertIn("The XML parser can't be loaded: ", outcome.errors)


if __name__ == '__main__':
    unittest.main()
