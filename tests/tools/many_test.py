"""Commands over many packages, and the JSON that is the same for all commands."""
import os
import re
import shutil
import unittest
import zipfile

from opctool_case import OpctoolCase


class Many(OpctoolCase):
    """a.docx and b.docx are packages, bad.xlsx is none; dir/ has one more of each in a folder of its own."""

    def setUp(self):
        super().setUp()
        for name in 'a.docx', 'b.docx', 'dir/sub/c.DOCX':
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            self.copy_fixture('letter.docx', name)
        for name in 'bad.xlsx', 'dir/sub/bad.pptx', 'dir/notes.txt':
            self.write(name, 'no package')

    def names(self, arguments):
        status, documents = self.envelopes(arguments)
        return status, [document['file'] for document in documents]

    def test_packages_are_found_in_the_order_in_which_they_are_given(self):
        os.symlink('sub/c.DOCX', self.folder / 'dir' / 'link.docx')
        in_folder = ['dir/link.docx', 'dir/sub/bad.pptx', 'dir/sub/c.DOCX']
        self.write('list', 'b.docx\r\n\n-\n./a.docx\n')
        shutil.copyfile(self.folder / 'a.docx', self.folder / '-')
        self.write('list0', 'b.docx\0a.docx\0')
        for arguments, status, names in (
                ('b.docx a.docx', 0, ['b.docx', 'a.docx']),
                ('a.docx -r dir b.docx', 3, ['a.docx', 'b.docx', *in_folder]),
                ('-r dir/sub -r a.docx', 3, ['dir/sub/bad.pptx', 'dir/sub/c.DOCX', 'a.docx']),
                ('-r dir --ext docx,.txt', 3, ['dir/link.docx', 'dir/notes.txt', 'dir/sub/c.DOCX']),
                ('-r dir --all-files', 3, ['dir/link.docx', 'dir/notes.txt', *in_folder[1:]]),
                ('-r none --files-from none', 3, ['none', 'none']),
                ('-r dir/sub/nothing a.docx', 3, ['a.docx', 'dir/sub/nothing']),
                ('--files-from list', 0, ['b.docx', './-', './a.docx']),
                ('--files-from - <list', 0, ['b.docx', './-', './a.docx']),
                ('--files-from list0 -0', 0, ['b.docx', 'a.docx']),
                ('- <a.docx', 0, ['-']),
                ('-r dir --ext odt', 0, [])):
            for jobs in 1, 4:
                with self.subTest(arguments, jobs=jobs):
                    self.assertEqual(self.names(f'ls -j {jobs} {arguments}'), (status, names))
        self.assertEqual(self.names('rels / -r dir/sub')[1], in_folder[1:])
        for command, status in ('ls', 0), ('verify', 1):
            done = self.run_tool(command + ' -r dir --ext odt')
            self.assertEqual((done.status, done.errors), (status, 'opctool: no packages found\n'))
        self.assertIn('dir: Exception: is a folder; -r reads the packages in it\n', self.run_tool('ls dir a.docx').errors)

    def test_links_to_folders_on_the_way_lead_nowhere(self):
        os.symlink('.', self.folder / 'dir' / 'loop')
        os.symlink('../sub', self.folder / 'dir' / 'sub' / 'loop')
        self.assertEqual(self.names('ls -r dir'), (3, ['dir/sub/bad.pptx', 'dir/sub/c.DOCX']))

    def test_names_of_files_are_any_bytes(self):
        shutil.copyfile(self.folder / 'a.docx', self.folder / 'new\nline.docx')
        self.write('list0', 'b.docx\0new\nline.docx\0')
        self.assertEqual(self.names('ls --files-from list0 -0'), (0, ['b.docx', 'new\nline.docx']))
        strange = os.fsdecode(b'\xff.zip')
        self.assertEqual(self.names(f'ls {strange}'), (3, [{'bytes': '/y56aXA='}]))

    def test_output_has_the_order_of_the_files_however_long_each_takes(self):
        self.write('part', os.urandom(1 << 16))
        shutil.copyfile(self.folder / 'a.docx', self.folder / 'large.docx')
        for part in range(8):
            self.do(f'add large.docx /{part}{"x" * 200} part --type a/b')
        self.write('list', 'large.docx\na.docx\nbad.xlsx\n' * 300)
        alone = self.run_tool('ls --files-from list -j 1')
        self.assertEqual(alone.status, 3)
        together = self.run_tool('ls --files-from list -j 7')
        self.assertEqual(together, alone)
        self.assertEqual(together.errors.count('\n'), 300)
        self.assertEqual(re.sub('(?m)^([^:]*): .*\n', r'\1 ', together.output),
                         ('large.docx ' * 15 + 'a.docx ' * 7) * 300)
        self.assertEqual(self.names('ls --files-from list -j 7')[1], ['large.docx', 'a.docx', 'bad.xlsx'] * 300)

    def test_each_line_names_its_file_and_the_worst_status_wins(self):
        self.assertEqual(self.do('props a.docx b.docx').splitlines()[0], 'a.docx: creator         ')
        for command in 'info', 'ls', 'rels', 'props', 'verify', 'coverage':
            outcome = self.run_tool(f'{command} -r . --ext docx,xlsx')
            self.assertEqual(outcome.status, 3, command)
            self.assertRegex(outcome.errors, r'\Aopctool: \./bad\.xlsx: PackageOpenFailed: [^\n]*\n\Z')
            for line in outcome.output.splitlines():
                self.assertRegex(line, r'^\./(a|b|dir/sub/c)\.(docx|DOCX): .')
        self.assertEqual(self.run_tool('verify a.docx b.docx').status, 1)
        self.assertEqual(self.run_tool('verify bad.xlsx a.docx').status, 3)
        self.assertEqual(self.run_tool('verify -q a.docx bad.xlsx').output, '')
        self.assertIn('\nopctool: 1 packages done, 0 answered no, 1 failed\n', self.run_tool('ls -v bad.xlsx a.docx').errors)

    def test_wrong_usage(self):
        for arguments in ('ls a.docx b.docx --json', 'ls -r . --json', 'ls', 'ls --ext docx a.docx', 'ls -0 a.docx',
                          'ls - --files-from -', 'ls a.docx -j 0', 'ls a.docx --json=3', 'ls a.docx --color=red',
                          'props a.docx b.docx --set title=t', 'props -r . --clear', 'props a.docx -o b',
                          'rels -r . / /word/document.xml', 'ls -r --all-files .', 'ls a.docx --max-size=many', 'schema cat', 'schema none'):
            self.assert_wrong_usage(arguments)

    def test_envelopes_hold_to_their_schemas(self):
        self.do('new p.zip', "relate p.zip / urn:t no.xml --id gone", 'relate p.zip / urn:t http://h/ --external --id out')
        self.add_item('p.zip', 'odd.jpg')
        for command in 'info', 'ls', 'rels', 'props', 'verify', 'coverage':
            status, (whole, ) = self.envelopes(f'{command} p.zip', '--json=2')
            self.assertEqual((whole['opctool']['command'], whole['status'], whole['file']), (command, status, 'p.zip'))
            self.assertIn({'place': '/odd.jpg', 'line': None, 'reason': 'no content type covers it',
                           'done': 'hidden, and kept in the file', 'rule': 'M2.4'}, whole['hidden'])
            self.assertEqual(self.envelopes(f'{command} p.zip'), (status, [whole]))
            if command != 'verify':
                before = self.list(f'{command} p.zip')
                if command == 'rels':
                    before[0]['exists'], before[1]['exists'] = False, None
                self.assertEqual(whole['result'], before)
        failures = self.envelopes('ls none.zip bad.xlsx', '--json=2')[1]
        self.assertEqual([failure['error']['kind'] for failure in failures], ['not-found', 'store'])
        self.assertEqual(failures[0]['error']['class'], 'PackageNotFound')

    def test_failures_say_where_they_are(self):
        self.do('new p.zip')
        name = 'word/_rels/document.xml.rels'
        with zipfile.ZipFile(self.folder / 'a.docx') as old, zipfile.ZipFile(self.folder / 'p.zip', 'w') as new:
            for item in old.namelist():
                content = old.read(item)
                new.writestr(item, content.replace(b'Target="styles.xml"', b'Target="a.b:c"') if item == name else content)
        error = self.envelopes('ls p.zip --strict')[1][0]['error']
        self.assertEqual((error['class'], error['kind']), ('InvalidRelationshipContent', 'format'))
        self.assertEqual((error['part'], error['relationship']), ('/' + name, 'rId1'))
        self.write('x', 'x')
        for command, part, relationship in (('unrelate a.docx / none', None, 'none'),
                                            ('relate a.docx / urn:a /x --id rId1 -o y', None, 'rId1'),
                                            ('add a.docx /word/document.xml x --type a/b', '/word/document.xml', None),
                                            ('ls x/y', None, None)):
            error = self.envelopes(command)[1][0]['error']
            self.assertEqual((error['part'], error['relationship']), (part, relationship), command)

    def test_states_of_signatures(self):
        self.do('keygen k', 'sign a.docx --profile opcmodel --key k.key', 'sign b.docx --profile opcmodel --key k.key')
        self.write('x', 'x')
        self.do('put b.docx /word/document.xml x --break-signatures')
        shutil.copyfile(self.folder / 'a.docx', self.folder / 'broken.docx')
        self.do('put broken.docx /_xmlsignatures/sig1.xml x --break-signatures')
        shutil.copyfile(self.folder / 'dir/sub/c.DOCX', self.folder / 'c.docx')
        status, documents = self.envelopes('verify a.docx b.docx c.docx broken.docx bad.xlsx --public k.pub')
        self.assertEqual(status, 3)
        self.assertEqual([(document['status'], document.get('result', {}).get('state')) for document in documents],
                         [(0, 'holds'), (1, 'broken'), (1, 'unsigned'), (3, 'unreadable'), (3, None)])
        self.assertEqual(self.envelopes('verify a.docx --public k.pub --require-full')[1][0]['result']['state'], 'holds')

    def test_limits_are_set(self):
        self.write('part', 'a' * 5000)
        self.do('new p.zip', 'add p.zip /folder/part part --type a/b')
        for option, code in ('--max-items=1', 27), ('--max-size=4k', 27), ('--max-total=5000', 27), ('--max-name=5', 27), (
                '--max-depth=0', 27), ('--max-size=5K', None), ('--max-items=2', None):
            error = self.envelopes(f'ls p.zip {option}')[1][0].get('error')
            self.assertEqual(error and (error['code'], error['kind']), code and (code, 'limit'), option)

    def test_changes_go_where_they_are_told(self):
        self.write('part', 'part')
        before = self.read('a.docx')
        add = 'add {} /x part --type a/b'
        self.do(add.format('a.docx') + ' -o out.docx')
        self.assertEqual(self.read('a.docx'), before)
        self.assertEqual(self.do('cat out.docx /x'), 'part')
        self.do('new made.zip', 'new - >piped.zip', 'props a.docx --clear -o - >clear.docx',
                'props made.zip --clear -o same.zip', add.format('-') + ' <a.docx >piped.docx',
                'sign a.docx --key k.key -o signed.docx' if self.do('keygen k') == '' else '')
        self.assertEqual(self.list('ls piped.zip'), [])
        self.assertEqual(self.list('props clear.docx'), {})
        self.assertEqual(self.read('same.zip'), self.read('made.zip'))
        self.assertEqual(self.list('ls piped.docx'), self.list('ls out.docx'))
        self.assertEqual(self.run_tool('verify signed.docx --public k.pub').status, 0)
        related = self.run_tool('relate a.docx / urn:t /word/document.xml --id new -o - >related.docx')
        self.assertEqual((related.output, related.errors), ('', 'opctool: a.docx: new\n'))
        self.assertIn('new', [row['id'] for row in self.list('rels related.docx')])
        self.assertEqual(self.read('a.docx'), before)
        for command, name in ((add.format('a.docx'), None), ('relate a.docx / urn:t /word/document.xml --id new', 'new'),
                              ('sign a.docx --key k.key', 'sig1')):
            status, (made, ) = self.envelopes(f'{command} -o made.docx')
            self.assertEqual((status, made['result']['name']), (0, name))
            self.assertEqual(self.list(f'{command} -o made.docx')['name'], name)
        self.assertEqual(self.envelopes('rm a.docx /none')[1][0]['error']['part'], '/none')
        for command in 'rm a.docx /word/styles.xml --json=2 -o -', 'rm - /word/styles.xml --jsonl <a.docx':
            self.assert_wrong_usage(command)
        os.mkdir(self.folder / 'folder')
        for arguments, status in ((add.format('a.docx') + ' -o folder', 3), (add.format('a.docx') + ' -o none/x', 3),
                                  (add.format('none') + ' -o new.docx', 3), (add.format('a.docx') + ' -o - >/dev/full', 3)):
            self.assertEqual(self.run_tool(arguments).status, status, arguments)
        self.assertFalse((self.folder / 'new.docx').exists())
        self.assertFalse([name for name in os.listdir(self.folder) if 'opcmodel-new' in name])

    def test_memory_stays_flat(self):
        def peak(count):
            self.write('list', 'a.docx\nbad.xlsx\n' * count)
            child = os.fork()
            if child == 0:
                os.chdir(self.folder)
                os.execl('/bin/sh', 'sh', '-c', f"exec '{self.tool}' ls --files-from list -j 2 >/dev/null 2>&1")
            return os.wait4(child, 0)[2].ru_maxrss

        few, many = peak(200), peak(4000)
        self.assertLess(many, few + 2048, (few, many))


if __name__ == '__main__':
    unittest.main()
