"""opctool external: what packages load from outside, and where their links lead."""
import unittest
import zipfile

from opctool_case import OpctoolCase

TYPES = 'http://schemas.openxmlformats.org/officeDocument/2006/relationships/'


class External(OpctoolCase):
    """p.zip loads an image from the web and a template from a share, and has a link; q.zip has nothing outside."""

    def setUp(self):
        super().setUp()
        self.write('note', 'x')
        self.do('new p.zip', 'add p.zip /a.txt note --type text/plain', 'new q.zip',
                f'relate p.zip /a.txt {TYPES}image http://host/i.png --external --id image',
                rf"relate p.zip / {TYPES}attachedTemplate '\\host\t.dotm' --external --id template",
                f'relate p.zip / {TYPES}hyperlink mailto:a@host --external --id link',
                f'relate p.zip / {TYPES}image /a.txt --id inside')

    def test_rows_tell_effect_place_and_where_they_stand(self):
        self.assertEqual(self.do('external p.zip').splitlines(), [
            'EFFECT  PLACE  SOURCE  ID        TYPE              TARGET',
            r'loads   share  /       template  attachedTemplate  \\host\t.dotm',
            'click   mail   /       link      hyperlink         mailto:a@host',
            'loads   web    /a.txt  image     image             http://host/i.png'])
        self.assertEqual(self.do('external p.zip q.zip --place web'),
                         'p.zip: loads  web  /a.txt  image  image  http://host/i.png\n')
        status, (loading, empty) = self.envelopes('external p.zip q.zip --effect loads --place share')
        self.assertEqual((status, empty['result']), (0, []))
        self.assertEqual(loading['result'], [{'effect': 'loads', 'place': 'share', 'source': '/', 'id': 'template',
                                              'type': TYPES + 'attachedTemplate', 'target': r'\\host\t.dotm'}])

    def test_status_says_what_is_listed(self):
        for options, status in (
                ('', 0), ('--fail-on loads', 1), ('--fail-on any', 1), ('--fail-on never', 0),
                ('--fail-on loads --effect click', 0), ('--fail-on any --effect click', 1),
                (r"--fail-on loads --allow 'HTTP://host/*'", 1),
                (r"--fail-on any --allow '*/?.PN[!h-z]' --allow '[]\\]*t.do[t-v]m*' --allow '*@*@*' --allow '*@hos*t*'", 0),
                (r"--fail-on any --allow '*/?.pn[!e-g]' --allow '\\host\*' --allow 'mailto:*'", 1),
                (r"--fail-on any --allow '*i?.png' --allow '\\host\*' --allow 'mailto:*'", 1),
                (r"--fail-on any --allow '*.png' --allow '[\\]*' --allow 'mailto:a@hos'", 1),
                (r"--fail-on loads --allow 'http://host/*' --allow '\\host\*'", 0)):
            with self.subTest(options):
                self.assertEqual(self.run_tool('external p.zip ' + options).status, status)

    def test_what_cannot_be_read_is_told(self):
        self.assert_failure('external note', 'Exception: The file is no package: plain text', 'note')
        with zipfile.ZipFile(self.folder / 'p.zip') as package:
            items = {name: package.read(name) for name in package.namelist()}
        with zipfile.ZipFile(self.folder / 'cut.zip', 'w') as package:
            for name, content in items.items():
                package.writestr(name, content.replace(b'</Relationships>', b'') if name == '_rels/.rels' else content)
        self.assertEqual(self.run_tool('external cut.zip --fail-on loads').status, 1)
        outcome = self.run_tool('external cut.zip --effect loads')
        self.assertEqual((outcome.status, len(outcome.output.splitlines())), (0, 3))
        self.assertIn("/_rels/.rels: its further relationships aren't listed: ", outcome.errors)
        self.assertEqual([item['place'] for item in self.envelopes('external cut.zip')[1][0]['hidden']], ['/_rels/.rels'])


if __name__ == '__main__':
    unittest.main()
