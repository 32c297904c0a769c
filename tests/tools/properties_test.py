"""Commands that show and change core properties, and the overview of a package."""
import datetime
import unittest

from opctool_case import OFFICE_FILES, OpctoolCase

METADATA = 'http://schemas.openxmlformats.org/package/2006/relationships/metadata/'
CORE_PROPERTIES = METADATA + 'core-properties'


class Properties(OpctoolCase):
    def test_are_changed_and_printed(self):
        self.do('new p.zip')
        self.assertEqual(self.do('props p.zip'), '')
        self.assertEqual(self.list('props p.zip'), {})
        for arguments, properties in (
                ("--set title=é --set 'creator=a=b' --set subject= --set version=1",
                 {'title': 'é', 'creator': 'a=b', 'subject': '', 'version': '1'}),
                ('--unset subject --unset title --unset revision --set title=t',
                 {'title': 't', 'creator': 'a=b', 'version': '1'}),
                ('--clear --set created=2024 --set modified=2024-02-29T13:45+01:00 '
                 '--set lastPrinted=2024-02-29T13:45:59.5Z',
                 {'created': '2024-01-01T00:00:00Z', 'modified': '2024-02-29T12:45:00Z',
                  'lastPrinted': '2024-02-29T13:45:59Z'}),
                ("--clear --keyword red:en --keyword 'blau und rot:de-DE' --keyword 'a;b' --keyword 12:30 "
                 "--keyword urn:x: --keyword '[x,y]' --keyword ''",
                 {'keywords': [{'text': 'red', 'language': 'en'}, {'text': 'blau und rot', 'language': 'de-DE'},
                               {'text': 'a;b'}, {'text': '12:30'}, {'text': 'urn:x'}, {'text': '[x,y]'}, {'text': ''}]}),
                ('--set category=k --keyword one', {'category': 'k', 'keywords': [{'text': 'one'}]}),
                ('--keyword a:b1 --keyword a:en- --keyword a:en--x --keyword a:123 --keyword a:abcdefghi --keyword a:x-1',
                 {'category': 'k', 'keywords': [{'text': 'a:b1'}, {'text': 'a:en-'}, {'text': 'a:en--x'}, {'text': 'a:123'},
                                                {'text': 'a:abcdefghi'}, {'text': 'a', 'language': 'x-1'}]}),
                ('--unset keywords', {'category': 'k'}),
                ('--clear', {})):
            self.assertEqual(self.do('props p.zip ' + arguments), '')
            self.assertEqual(self.list('props p.zip'), properties, arguments)
        self.assertEqual(len(self.list('rels p.zip')), 1)
        self.assertEqual(len(self.list('ls p.zip')), 1)

    def test_have_a_row_for_each_and_for_each_keyword(self):
        self.do('new p.zip', "props p.zip --set 'description=two\nlines \u009b \x7f' --keyword a:en --keyword b")
        self.assertEqual(self.do('props p.zip'), 'PROPERTY     VALUE\n'
                                                 'description  two lines    \n'
                                                 'keywords     a [en]\n'
                                                 'keywords     b\n')

    def test_now_is_the_current_time(self):
        def now():
            return datetime.datetime.now(datetime.timezone.utc).strftime('%Y-%m-%dT%H:%M:%SZ')

        before = now()
        self.do('new p.zip', 'props p.zip --set created=now')
        created = self.list('props p.zip')['created']
        self.assertLessEqual(before, created)
        self.assertLessEqual(created, now())

        self.assertEqual(self.shell(f"SOURCE_DATE_EPOCH=86400 '{self.tool}' props p.zip --set modified=now").status, 0)
        self.assertEqual(self.list('props p.zip')['modified'], '1970-01-02T00:00:00Z')

    def test_mend_a_relationship_that_leads_to_no_part(self):
        self.do('new p.zip', f'relate p.zip / {CORE_PROPERTIES} docProps/core.xml --id core')
        line = ('opctool: p.zip: /_rels/.rels#core: the core properties relationship leads to no part: '
                'docProps/core.xml; ')
        self.assertEqual(self.run_tool('props p.zip --json'), (0, '{}\n', line + 'there are none\n'))
        for command in 'props p.zip --strict', 'props p.zip --set title=t --strict':
            self.assert_failure(command, 'PartNotFound: No part found with the name:/docProps/core.xml; the core '
                                         'properties relationship core leads to docProps/core.xml; --lenient takes the '
                                         'package as one without them', 'p.zip')
        self.assertEqual(self.run_tool('props p.zip --set title=t').errors, line + 'new ones are written\n')
        self.assertEqual(self.list('props p.zip'), {'title': 't'})
        self.assertEqual(self.list('rels p.zip')[0]['target'], 'docProps/core.xml')

    def test_leave_the_file_alone_if_not_all_that_is_told_can_be_done(self):
        self.do('new p.zip', 'props p.zip --clear')
        self.assertEqual(self.list('ls p.zip'), [], 'nothing to drop and nothing to write')
        self.do('props p.zip --set title=t')
        before = self.read('p.zip')
        for arguments, status, errors in (
                ('--set title=u --set titel=u', 2, '--set: titel isn\'t a property'),
                ('--set title', 2, "--set: title isn't NAME=VALUE"),
                ('--set Title=u', 2, '--set: Title isn\'t a property'),
                ('--set =u', 2, '--set:  isn\'t a property'),
                ('--set keywords=u', 2, '--set: set keywords with --keyword'),
                ('--set title=u --set created=2024-02-30', 2, '--set: 2024-02-30 isn\'t a time'),
                ('--set modified=1399', 2, '--set: 1399 isn\'t a time'),
                ('--set lastPrinted=', 2, '--set:  isn\'t a time'),
                ('--clear --unset none', 2, '--unset: none isn\'t a property'),
                ('--set title=u extra', 2, ''),
                ("--set 'title=\1'", 3, 'opctool: p.zip: InvalidPartContent: ')):
            outcome = self.run_tool('props p.zip ' + arguments)
            self.assertEqual(outcome.status, status, arguments)
            self.assertEqual(outcome.errors[:len(errors)], errors)
            self.assertEqual(self.read('p.zip'), before, arguments)

    def test_that_cannot_be_read_are_mended_by_clear(self):
        self.write('bad.xml', '<bad/>')
        self.do('new p.zip',
                'add p.zip /core.xml bad.xml --type application/vnd.openxmlformats-package.core-properties+xml',
                f'relate p.zip / {CORE_PROPERTIES} /core.xml')
        for command in 'props p.zip', 'props p.zip --set title=t':
            self.assertEqual(self.run_tool(command).status, 3)
        overview = self.list('info p.zip')
        self.assertIsNone(overview['coreProperties'])
        self.assertNotEqual(overview['corePropertiesFailure'], '')
        self.assertIn("\nCore properties: 0\ncan't be read: ", self.do('info p.zip'))
        self.do('props p.zip --clear --set title=t')
        self.assertEqual(self.list('props p.zip'), {'title': 't'})

    def test_are_part_of_the_overview(self):
        self.write('a', 1234567 * 'x')
        self.do('new p.zip', 'add p.zip /a.bin a --type a/b', 'add p.zip /b.bin a --type a/b',
                'add p.zip /thumb.png a --type image/png', f'relate p.zip / {METADATA}thumbnail /thumb.png',
                'relate p.zip /a.bin urn:t /b.bin', 'relate p.zip /b.bin urn:t http://h/ --external',
                'props p.zip --set title=t')
        self.add_item('p.zip', '[trash]/0000.dat')
        overview = self.list('info p.zip')
        self.assertEqual(overview['size'], len(self.read('p.zip')))
        self.assertEqual(overview['parts']['count'], 4)
        self.assertEqual(overview['parts']['byContentType'][0], {'contentType': 'a/b', 'parts': 2, 'size': 2469134})
        self.assertEqual(overview['relationships']['count'], 4)
        self.assertEqual(overview['relationships']['byType'][2], {'type': 'urn:t', 'count': 2, 'external': 1})
        self.assertEqual(overview['coreProperties'], {'title': 't'})
        self.assertEqual(overview['thumbnails'], ['/thumb.png'])
        self.assertEqual(overview['ignored'][0]['name'], '[trash]/0000.dat')
        text = self.do('info p.zip')
        for line in ('\n    2  2,469,134  a/b\n', '\nRelationships: 4, 1 of them external\n', '\n    2         1  urn:t\n',
                     '\nThumbnails: 1\n/thumb.png\n', '\nCore properties: 1\n', '\ntitle     t\n',
                     '\nIn the container beside parts: 1\n', '\n[trash]/0000.dat  '):
            self.assertIn(line, text)

    def test_give_no_command_to_the_terminal(self):
        self.write('properties', "<?xml version='1.1'?><cp:coreProperties xmlns:cp='http://schemas.openxmlformats.org/"
                                 "package/2006/metadata/core-properties'><cp:lastPrinted>&#x1b;[2J&#x9b;2J&#xa;"
                                 "</cp:lastPrinted></cp:coreProperties>")
        unseen = '\u202e\u061c\u2028\u200b\ufeff\u00ad\U000e0041'
        self.do('new p.zip', 'add p.zip /p.xml properties --type application/xml',
                f'relate p.zip / {CORE_PROPERTIES} /p.xml',
                f"relate p.zip / {METADATA}thumbnail 'a\x7f\x9b2Jb c{unseen}é' --external")
        failure = self.run_tool('props p.zip')
        self.assertEqual(failure.status, 3)
        self.assertEqual(failure.errors.count('\n'), 1, failure.errors)
        overview = self.do('info p.zip')
        self.assertIn('\na  2Jb c       é\n', overview)
        self.assertEqual(self.list('rels p.zip')[1]['target'], f'a\x7f\x9b2Jb c{unseen}é')
        usage = self.run_tool(f"cat p.zip /a '\x1b[2J\x7f\x9b{unseen}'")
        self.assertEqual(usage.status, 2)
        self.assertGreater(usage.errors.count('\n'), 1, usage.errors)
        identifier = self.do('relate p.zip / t x --external --id a\u061c\ufeff')
        self.assertEqual(identifier, 'a  \n')
        for text in failure.errors, overview, self.do('rels p.zip --json'), usage.errors, identifier:
            for command in '\x1b\x7f\x9b' + unseen:
                self.assertNotIn(command, text)

    def test_of_office_documents_are_a_fixed_point(self):
        for name in OFFICE_FILES:
            with self.subTest(name):
                self.copy_fixture(name, name)
                before = self.list('props ' + name)
                # A program that gives the relationship a type of its own: the package counts as having none.
                added = 0 if before else 1
                warning = f'opctool: {name}: warning: /docProps/core.xml has '
                self.assertEqual(self.run_tool('props ' + name).errors.startswith(warning), not before)
                relationships, parts = (len(self.list(f'{command} {name}')) for command in ('rels', 'ls'))
                self.do(f"props {name} --set title='A new title'")
                self.assertEqual(self.list('props ' + name), {**before, 'title': 'A new title'})
                self.assertEqual(len(self.list('rels ' + name)), relationships + added)
                self.assertEqual(len(self.list('ls ' + name)), parts + added)
                part = '/docProps/core.xml' if before else '/metadata/coreProperties.xml'
                document = self.do(f'cat {name} {part}')
                self.do(f"props {name} --set title='A new title'")
                self.assertEqual(self.do(f'cat {name} {part}'), document)


if __name__ == '__main__':
    unittest.main()
