"""Commands that edit packages: what they change, print, and leave as it was."""
import json
import unittest
import zipfile

import jsonschema

from opctool_case import OpctoolCase

DOCUMENT = '/word/document.xml'


class Editing(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('report.docx', 'p.docx')
        self.write('x', 'content')

    def names(self, package='p.docx'):
        return [part['name'] for part in self.list('ls ' + package)]

    def compressed(self):
        """The bytes of each item as they lie."""
        raw = self.read('p.docx')
        items = {}
        with zipfile.ZipFile(self.folder / 'p.docx') as archive:
            for info in archive.infolist():
                start = info.header_offset + 30 + len(info.filename) + int.from_bytes(
                    raw[info.header_offset + 28:info.header_offset + 30], 'little')
                items[info.filename] = raw[start:start + info.compress_size]
        return items

    def test_mv_takes_everything_along(self):
        before = {(row['source'], row['id']): row for row in self.list('rels p.docx --all')}
        self.assertEqual(self.do(f'mv p.docx {DOCUMENT} /main/Doc.xml'),
                         f'rename {DOCUMENT} to /main/Doc.xml\n'
                         'change relationship /#rId1 from word/document.xml to main/Doc.xml\n')
        after = {(row['source'], row['id']): row for row in self.list('rels p.docx --all')}
        self.assertTrue(all(row['exists'] for row in self.envelopes('rels p.docx --all')[1][0]['result']))
        for (source, identifier), row in before.items():
            moved = after['/main/Doc.xml' if source == DOCUMENT else source, identifier]
            self.assertEqual(moved['resolved'], row['resolved'].replace(DOCUMENT, '/main/Doc.xml'))
        self.do('mv p.docx /main/Doc.xml /MAIN/doc.XML', 'mv p.docx /MAIN/doc.XML ' + DOCUMENT)
        self.assertEqual({(row['source'], row['id']): row for row in self.list('rels p.docx --all')}, before)
        self.assertEqual(self.do('check p.docx --fail-on warning').count('\n'), 1)

    def test_only_what_changes_is_written_anew(self):
        for command, changed in (
                ('retype p.docx /docProps/thumbnail.jpeg image/x', {'[Content_Types].xml'}),
                ('retarget p.docx /word/document.xml rId8 /word/theme/t.xml', {'word/_rels/document.xml.rels'}),
                ('rm p.docx /docProps/thumbnail.jpeg --incoming', {'[Content_Types].xml', '_rels/.rels', 'docProps/thumbnail.jpeg'}),
                ('gc p.docx', {'word/theme/theme1.xml', '[Content_Types].xml'})):
            before = self.compressed()
            self.do(command)
            after = self.compressed()
            self.assertEqual({name for name in {*before, *after} if before.get(name) != after.get(name)}, changed, command)
        self.assertEqual(self.do('gc p.docx'), '')

    def test_retarget_keeps_the_place_of_a_relationship(self):
        def document():
            with zipfile.ZipFile(self.folder / 'p.docx') as archive:
                return archive.read('word/_rels/document.xml.rels').decode()
        before = document()
        self.do('retarget p.docx /word/document.xml rId3 "http://h/?a&b" --external')
        at = before.index('Id="rId3"')
        begin, end = before.rindex('<', 0, at), before.index('/>', at)
        after = document()
        self.assertEqual((after[:begin], after[-len(before) + end:]), (before[:begin], before[end:]))
        self.assertIn('Target="http://h/?a&amp;b"', after)
        self.assertIn('TargetMode="External"', after)

    def test_standard_input_is_one_of_the_files_at_most(self):
        self.assertEqual(self.shell("echo new | $OPCTOOL put p.docx /word/settings.xml -").status, 0)
        self.assertEqual(self.do('cat p.docx /word/settings.xml'), 'new\n')
        self.assertEqual(self.shell("$OPCTOOL add p.docx /y - --type a/b <x").status, 0)
        self.assertEqual(self.do('cat p.docx /y'), self.read('x').decode())
        self.assertEqual(self.shell("$OPCTOOL put p.docx /y - <.").errors,
                         "opctool: p.docx: Exception: Standard input can't be read\n")
        for command in 'info - -', 'ls - --files-from -', 'diff - -', 'apply - -', 'put - /x -', 'add - /x - --type a/b':
            self.assertIn('standard input', self.assert_wrong_usage(command), command)

    def test_a_dry_run_says_all_and_writes_nothing(self):
        before = self.read('p.docx')
        for command in ('add p.docx /x.txt x --type text/plain', 'put p.docx /word/settings.xml x', "rm p.docx '/word/**' --cascade",
                        'relate p.docx / urn:t /x', 'unrelate p.docx / rId1', 'props p.docx --set title=new', 'props p.docx --custom --set a=b', 'gc p.docx',
                        f'mv p.docx {DOCUMENT} /d.xml', 'retype p.docx /docProps/app.xml a/b', 'retarget p.docx / rId1 x.xml'):
            said = self.do(command + ' -n')
            self.assertEqual(self.read('p.docx'), before, command)
            self.write('q.docx', before)
            status, (document,) = self.envelopes(command.replace('p.docx', 'q.docx'))
            self.assertEqual(status, 0, command)
            self.assertEqual([change['text'] for change in document['result']['changes']], said.splitlines())
            self.assertEqual(document['result']['dryRun'], False)
        self.assertEqual(self.do('props p.docx --set title=new -n'),
                         'change property title in /docProps/core.xml from "Report on the bindery" to "new"\n')
        self.do('new q.zip -n')
        self.assertFalse((self.folder / 'q.zip').exists())

    def test_signatures_are_respected(self):
        self.do('keygen k')
        for profile in '--profile opcmodel', '--all':
            self.copy_fixture('letter.docx', 'p.docx')
            self.do('sign p.docx --key k.key ' + profile)
            with self.subTest(profile):
                self.assert_respected()

    def assert_respected(self):
        before = self.read('p.docx')
        for command in ('put p.docx /word/settings.xml x', 'rm p.docx /word/settings.xml', 'unrelate p.docx / rId1',
                        f'mv p.docx {DOCUMENT} /d.xml', 'retype p.docx /docProps/app.xml a/b', 'retarget p.docx / rId1 x.xml',
                        'props p.docx --set title=new', 'rm p.docx /_xmlsignatures/sig1.xml', 'clean p.docx'):
            self.assert_failure(command, 'BreaksSignatures: This would break the signature /_xmlsignatures/sig1.xml; '
                                '--break-signatures makes the change all the same', 'p.docx')
            dry = self.run_tool(command + ' -n')
            self.assertEqual((dry.status, bool(dry.output)), (3, True), 'it tells all the same')
            self.do(command + ' --break-signatures -n')
            self.assertEqual(self.read('p.docx'), before)
        self.do('add p.docx /x.txt x --type text/plain', 'relate p.docx / urn:new /x.txt', 'mv p.docx /x.txt /y.txt',
                'gc p.docx', 'rm p.docx /y.txt --incoming')
        self.assertEqual(self.run_tool('mv p.docx /_xmlsignatures/sig1.xml /s.xml --break-signatures').errors,
                         'opctool: p.docx: Exception: /_xmlsignatures/sig1.xml belongs to signatures, which are found by its name\n')
        status, (document,) = self.envelopes('retype p.docx /docProps/app.xml a/b -n --break-signatures')
        self.assertEqual((status, document['result']['brokenSignatures']), (0, ['/_xmlsignatures/sig1.xml']))

    def job(self, *steps):
        self.write('job.json', json.dumps({'opctool': {'job': 1}, 'steps': steps}))

    def test_apply_makes_all_changes_or_none(self):
        self.job({'do': 'mv', 'part': DOCUMENT, 'name': '/main.xml'}, {'do': 'put', 'part': '/word/settings.xml', 'from': 'x'},
                 {'do': 'add', 'part': '/n.txt', 'type': 'text/plain', 'text': 'note'},
                 {'do': 'relate', 'source': '/main.xml', 'type': 'urn:n', 'target': '/n.txt', 'id': 'rId90'},
                 {'do': 'check', 'failOn': 'warning'})
        jsonschema.Draft202012Validator(json.loads(self.do('schema --job'))).validate(json.loads(self.read('job.json')))
        before = self.read('p.docx')
        said = self.do('apply p.docx job.json -o q.docx')
        self.assertEqual(said.splitlines()[0], f'rename {DOCUMENT} to /main.xml')
        self.assertEqual(self.read('p.docx'), before)
        piped = self.shell(f"'{self.tool}' apply p.docx - <job.json")
        self.assertEqual((piped.status, piped.output), (0, said))
        self.assertEqual(self.do('ls p.docx'), self.do('ls q.docx'))
        self.write('p.docx', before)
        for steps, line in (
                (({'do': 'gc'}, {'do': 'mv', 'part': '/no', 'name': '/n'}),
                 'PartNotFound: No part found with the name:/no; step 2 (mv)'),
                (({'do': 'put', 'part': DOCUMENT, 'from': '/etc/hostname'},),
                 'Exception: /etc/hostname is outside the folder of the job; step 1 (put)'),
                (({'do': 'put', 'part': DOCUMENT, 'form': 'x'},), 'InvalidJob: step 1 (put): has not one content: text, base64 or from'),
                (({'do': 'put', 'part': '/docProps/core.xml', 'text': '<x/>'},), None),
                (({'do': 'rm', 'part': DOCUMENT}, {'do': 'check', 'failOn': 'warning'}), None)):
            self.job(*steps)
            if line is None:
                outcome = self.run_tool('apply p.docx job.json')
                self.assertEqual(outcome.status, 3)
                self.assertRegex(outcome.errors, 'InvalidResult: (The changed package would have an error that it hasn.t had|step 2)')
                self.assertEqual(self.read('p.docx'), before)
                self.assertEqual(self.run_tool('apply p.docx job.json -o q.docx').status, 3)
                self.assertEqual(self.shell(f"'{self.tool}' apply - job.json <p.docx").output, '')
            else:
                self.assert_failure('apply p.docx job.json', line, 'p.docx')
        self.job({'do': 'put', 'part': '/docProps/core.xml', 'text': '<x/>'})
        self.do('apply p.docx job.json --no-check')
        self.job({'do': 'mv', 'part': '/docProps/core.xml', 'name': '/core.xml'})
        self.do('apply p.docx job.json')  # the old error moves, and isn't new
        self.assert_wrong_usage('apply - -')

    def test_apply_mends_first(self):
        self.do('rm p.docx /docProps/app.xml -o broken.docx')
        before = b'not of the archive' + self.read('broken.docx')
        self.write('broken.docx', before)
        self.assertEqual(self.run_tool('info broken.docx').status, 3, 'only the mended package opens')
        self.job({'do': 'fix', 'rules': ['SEC-17', 'SEC-46']}, {'do': 'mv', 'part': DOCUMENT, 'name': '/main.xml'})
        jsonschema.Draft202012Validator(json.loads(self.do('schema --job'))).validate(json.loads(self.read('job.json')))
        said = self.do('apply broken.docx job.json -n')
        self.assertEqual(self.read('broken.docx'), before)
        self.assertRegex(said, r'^(.*\n)*remove relationship /#rId\d to docProps/app.xml.*\n(.*\n)*rename /word/document.xml to /main.xml\n')
        piped = self.shell(f"'{self.tool}' apply - job.json <broken.docx >piped.docx")
        self.assertEqual((piped.status, piped.errors.replace('opctool: -: ', '')), (0, said))
        self.assertEqual(self.do('apply broken.docx job.json'), said)
        self.assertEqual(self.do('hash broken.docx')[:64], self.do('hash piped.docx')[:64])
        self.assertNotIn('/docProps/app.xml', self.do('rels broken.docx'))
        self.assertIn('/main.xml', self.names('broken.docx'))
        self.job({'do': 'fix'}, {'do': 'mv', 'part': '/none', 'name': '/n'})
        self.assert_failure('apply p.docx job.json', 'PartNotFound: No part found with the name:/none; step 2 (mv)', 'p.docx')

    def test_failures_leave_the_file_as_it_was(self):
        for command, line in (
                ("rm p.docx '/no*'", 'PartNotFound: No part found with the name:/no*'),
                (f'mv p.docx {DOCUMENT} /word/styles.xml',
                 'PartAlreadyExists: Cannot use a part name that already exists: /word/styles.xml'),
                (f'mv p.docx {DOCUMENT} /a/', 'InvalidPartName: A part name shall not have a forward slash as the last '
                                              'character [M1.5]; /a/'),
                ('retype p.docx /no.xml a/b', 'PartNotFound: No part found with the name:/no.xml'),
                ('retarget p.docx / rId99 x', 'RelationshipNotFound: Relationship ID does not exist')):
            self.assert_failure(command, line, 'p.docx')


if __name__ == '__main__':
    unittest.main()
