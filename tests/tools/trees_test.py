"""The commands that take packages apart and put them together: unpack, pack, repack, cat, graph."""
import json
import os
import re
import stat
import unittest
import zipfile

from opctool_case import OpctoolCase

DOCUMENT = 'word/document.xml'


class Trees(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'a.docx')

    def unpack(self, *options):
        return self.list(f'unpack a.docx tree {" ".join(options)}')

    def make(self, *items):
        """Writes a.docx as an archive of the fixture's items and further ones."""
        with zipfile.ZipFile(self.folder / 'a.docx', 'a', zipfile.ZIP_DEFLATED) as archive:
            for name, content in items:
                archive.writestr(zipfile.ZipInfo(name), content)

    def assert_refused(self, words, options=''):
        self.write('out.docx', 'old')
        outcome = self.run_tool(f'pack tree -o out.docx {options}')
        self.assertEqual((outcome.status, self.read('out.docx')), (3, b'old'), outcome.errors)
        self.assertIn(words, outcome.errors)

    def test_a_failure_takes_no_file_away_that_was_there(self):
        (self.folder / 'tree/word/styles.xml').mkdir(parents=True)
        self.write('tree/[Content_Types].xml', 'old')
        self.assertEqual(self.run_tool('unpack a.docx tree --force').status, 3)
        self.assertTrue((self.folder / 'tree/[Content_Types].xml').exists())

    def test_names_that_file_systems_or_git_take_for_others_get_other_files(self):
        cases = {
            'word/con.xml': 'word/_con.xml', 'word/DOCUMENT.XML.': 'word/DOCUMENT.XML_', '.git/config': '_.git/config',
            '.opctool/tree.json': '_.opctool/tree.json', 'word/document.xml/a': 'word/document~2.xml/a',
            'a:b': 'a_b', 'GIT~1/x': '_GIT~1/x', 'Word/new': 'word/new', 'x' * 300: 'x' * 200, 'q?/\u017f': 'q_/\u017f',
            'Q?/S': 'q_/S~2', 'com1.txt': '_com1.txt', 'lpt\u00b9': '_lpt\u00b9', 'd/' * 70 + 'e': '_/e',
        }
        self.make(*((name, name) for name in cases))
        result = self.unpack()
        self.assertEqual({item['item']: item['file'] for item in result['renamed']}, cases)
        for name, file in cases.items():
            self.assertEqual(self.read('tree/' + file).decode(), name)
        self.do('pack tree -o b.docx')
        self.assertEqual(self.read('b.docx'), self.read('a.docx'))

    def test_names_that_lead_out_stay_in(self):
        self.write('victim', 'old')
        self.make(('../victim', 'x'), ('/victim', 'y'), ('a/../../victim', 'z'), ('..\\victim', 'w'))
        self.unpack()
        self.assertEqual(self.read('victim'), b'old')
        self.assertEqual(sorted(os.listdir(self.folder)), ['a.docx', 'tree', 'victim'])
        self.do('pack tree -o b.docx')
        self.assertEqual(self.read('b.docx'), self.read('a.docx'))
        self.write('tree/' + DOCUMENT, self.read('tree/' + DOCUMENT) + b'\n')
        self.assert_refused('folder above')

    def test_what_no_file_shows_is_told(self):
        with zipfile.ZipFile(self.folder / 'a.docx', 'a') as archive:
            archive.comment = b'hush'
        self.write('a.docx', self.read('a.docx') + b'behind')
        result = self.unpack()
        self.assertEqual([(item['item'], item['what']) for item in result['hidden']],
                         [(None, '6 bytes behind the end'), (None, 'a comment of 4 bytes')])
        self.assertEqual(self.list('pack tree -o b.docx')['hidden'], result['hidden'])
        self.assertEqual(self.read('b.docx'), self.read('a.docx'))
        self.write('tree/' + DOCUMENT, self.read('tree/' + DOCUMENT) + b'\n')
        packed = self.list('pack tree -o b.docx')
        self.assertEqual(([item['what'] for item in packed['hidden']], [item['what'] for item in packed['dropped']]),
                         (['a comment of 4 bytes'], ['6 bytes behind the end']))

    def test_standard_input_and_output_take_the_place_of_files(self):
        self.unpack()
        for arguments in 'pack tree -o -', 'repack - <a.docx', 'repack a.docx -o -':
            outcome = self.shell(f"'{self.tool}' {arguments} >b.docx")
            self.assertEqual((outcome.status, outcome.output), (0, ''), outcome.errors)
            self.do('diff a.docx b.docx')
            self.assertNotEqual(outcome.errors, '', 'what was done is told there')
        self.shell(f"'{self.tool}' unpack - other <a.docx")
        self.assertEqual(self.read('other/' + DOCUMENT), self.read('tree/' + DOCUMENT))

    def test_a_dry_run_tells_the_same_and_writes_nothing(self):
        self.make(('a:b', 'x'))
        before, names = self.read('a.docx'), os.listdir(self.folder)
        tried = self.unpack('-n')
        self.do('repack a.docx -n')
        self.assertEqual((os.listdir(self.folder), self.read('a.docx')), (names, before))
        self.assertEqual(self.unpack(), tried)
        self.write('tree/' + DOCUMENT, self.read('tree/' + DOCUMENT) + b'\n')
        tried = self.list('pack tree -o b.docx -n')
        self.assertFalse((self.folder / 'b.docx').exists())
        self.assertEqual(self.list('pack tree -o b.docx'), tried)
        outcome = self.run_tool('unpack a.docx tree -n')
        self.assertEqual((outcome.status, "isn't empty" in outcome.errors), (3, True), outcome.errors)

    def test_a_package_does_not_go_into_its_own_folder(self):
        self.unpack()
        os.symlink('tree', self.folder / 'link')
        for target in 'tree/b.docx', 'link/word/b.docx', 'tree/../link/.opctool/b.docx', 'tree':
            self.assertIn('lies in DIR', self.assert_wrong_usage(f'pack tree -o {target}'))
        self.do('pack tree -o treeb.docx')

    def test_an_item_that_cannot_be_read_comes_back(self):
        data = bytearray(self.read('a.docx'))
        with zipfile.ZipFile(self.folder / 'a.docx') as archive:
            info = archive.getinfo('docProps/app.xml')
        data[info.header_offset + 40 + len(info.filename)] ^= 0xff
        self.write('a.docx', bytes(data))
        self.assertEqual([item['item'] for item in self.unpack()['hidden']], ['docProps/app.xml'])
        self.assertFalse((self.folder / 'tree/docProps/app.xml').exists())
        self.do('pack tree -o b.docx')
        self.assertEqual(self.read('b.docx'), self.read('a.docx'))
        outcome = self.run_tool('unpack a.docx other --no-original')
        self.assertEqual((outcome.status, (self.folder / 'other').exists()), (3, False), 'nothing is left behind')

    def test_only_what_has_changed_is_compressed_again(self):
        self.unpack()
        self.write('tree/' + DOCUMENT, self.read('tree/' + DOCUMENT) + b'\n')
        os.remove(self.folder / 'tree/docProps/app.xml')
        packed = self.list('pack tree -o b.docx')
        self.assertEqual((packed['replaced'], packed['removed'], packed['added']), ([DOCUMENT], ['docProps/app.xml'], []))
        self.assertIn(b'\n', self.shell(f"'{self.tool}' cat b.docx /{DOCUMENT} | tail -c 1").output.encode())

    def test_a_new_part_needs_a_content_type(self):
        self.unpack()
        self.write('tree/word/new.qqq', 'x')
        self.assert_refused('No content type covers the new part /word/new.qqq')
        self.write('types', '# parts\n\nQQQ image/x-q\n')
        self.do('pack tree -o b.docx --types types')
        self.assertIn('image/x-q', self.do('ls b.docx'))
        self.write('tree/word/bare', 'x')
        self.assert_refused('No content type covers the new part /word/bare', '--types types')
        self.write('types', 'qqq\n')
        self.assert_wrong_usage('pack tree -o b.docx --types types')

    def test_a_new_error_refuses_an_old_one_does_not(self):
        self.unpack()
        self.write('tree/' + DOCUMENT, '<a')
        self.write('tree/_rels/.rels', '<a')
        self.assert_refused('')
        self.make(('word/new.qqq', 'x'))
        for options in '', '--no-original':
            self.shell('rm -rf tree')
            self.unpack(options)
            self.write('tree/docProps/app.xml', self.read('tree/docProps/app.xml') + b'\n')
            self.do('pack tree -o b.docx')

    def test_a_signature_is_not_broken_without_being_asked(self):
        self.do('keygen k', 'sign a.docx --key k.key', 'unpack a.docx tree')
        self.write('tree/' + DOCUMENT, self.read('tree/' + DOCUMENT) + b'\n')
        self.assert_refused('This would break the signature /_xmlsignatures/sig1.xml')
        self.do('pack tree -o b.docx --break-signatures --dry-run')
        self.assertFalse((self.folder / 'b.docx').exists())
        self.assertEqual(self.list('pack tree -o b.docx --break-signatures')['brokenSignatures'], ['/_xmlsignatures/sig1.xml'])

    def test_a_tree_of_strangers_leads_nowhere(self):
        self.write('secret', 'secret')
        self.shell('cp a.docx other.docx')
        cases = {
            'ln -s ../secret tree/word/link': 'neither a file nor a folder',
            'mkfifo tree/word/pipe': 'neither a file nor a folder',
            'ln -s ../.. tree/word/up': 'neither a file nor a folder',
            'rm tree/.opctool/original && ln -s ../../other.docx tree/.opctool/original': "can't be read",
            'mv tree/.opctool away && ln -s ../away tree/.opctool': "can't open the folder",
            'echo [] >tree/.opctool/tree.json': "doesn't describe",
            """echo '{"tree":1,"files":[{"number":99,"item":"a","file":"b"}],"left":[]}' >tree/.opctool/tree.json""": "doesn't fit",
            """echo '{"tree":2,"files":[],"left":[]}' >tree/.opctool/tree.json""": 'later version',
        }
        for command, words in cases.items():
            self.shell('rm -rf tree away')
            self.unpack()
            self.assertEqual(self.shell(command).status, 0, command)
            self.assert_refused(words)
        self.shell('rm -rf tree')
        self.unpack('--no-original')
        self.write('tree/.opctool/tree.json', json.dumps(
            {'tree': 1, 'files': [{'number': 0, 'item': 'x', 'file': '../secret'}], 'left': []}))
        self.do('pack tree -o b.docx')
        self.assertNotIn('x', zipfile.ZipFile(self.folder / 'b.docx').namelist(), 'only files in the tree count')

    def test_a_folder_that_is_not_empty_is_left_alone(self):
        os.mkdir(self.folder / 'tree')
        self.write('tree/mine', 'mine')
        self.assertEqual(self.run_tool('unpack a.docx tree').status, 3)
        self.assertEqual(os.listdir(self.folder / 'tree'), ['mine'])
        os.symlink('..', self.folder / 'tree/word')
        self.assertEqual(self.run_tool('unpack a.docx tree --force').status, 3, 'a link is on the way')
        self.assertEqual((set(os.listdir(self.folder / 'tree')), (self.folder / 'document.xml').exists()),
                         ({'mine', 'word'}, False))
        os.remove(self.folder / 'tree/word')
        os.mkdir(self.folder / 'tree/word')
        os.symlink('../../victim', self.folder / 'tree/word/document.xml')
        self.do('unpack a.docx tree --force')
        self.assertFalse((self.folder / 'victim').exists())
        self.assertTrue(stat.S_ISREG(os.lstat(self.folder / f'tree/{DOCUMENT}').st_mode))

    def test_git_keeps_its_files_beside(self):
        self.unpack('--no-original')
        self.shell('mkdir tree/.git && echo x >tree/.git/config && echo x >tree/.gitattributes')
        self.do('pack tree -o b.docx')
        names = zipfile.ZipFile(self.folder / 'b.docx').namelist()
        self.assertEqual(names[:2], ['[Content_Types].xml', '_rels/.rels'])
        self.assertEqual(sorted(names), sorted(zipfile.ZipFile(self.folder / 'a.docx').namelist()))

    def test_the_time_of_the_source_makes_output_deterministic(self):
        self.unpack('--no-original')
        times = set()
        for epoch, year in ('0', 1980), ('1700000000', 2023), ('99999999999', 2107):
            for command in 'pack tree -o b.docx', 'put a.docx /docProps/app.xml tree/docProps/app.xml -o c.docx', \
                    'repack a.docx -o d.docx', 'new e.zip --force', 'props a.docx --set title=x -o f.docx':
                self.assertEqual(self.shell(f"SOURCE_DATE_EPOCH={epoch} '{self.tool}' {command}").status, 0)
            for name in 'b.docx', 'd.docx':
                times |= {info.date_time[0] for info in zipfile.ZipFile(self.folder / name).infolist()}
                self.assertEqual(zipfile.ZipFile(self.folder / name).infolist()[2].date_time[0], year)
            for name, item in ('c.docx', 'docProps/app.xml'), ('f.docx', 'docProps/core.xml'):
                self.assertEqual(zipfile.ZipFile(self.folder / name).getinfo(item).date_time[0], year)
        self.assertEqual(times, {1980, 2023, 2107})
        outcome = self.shell(f"SOURCE_DATE_EPOCH=tomorrow '{self.tool}' repack a.docx")
        self.assertEqual(outcome.status, 2)
        self.assertIn('SOURCE_DATE_EPOCH', outcome.errors)

    def test_repack_keeps_the_contents(self):
        self.do("repack a.docx -o b.docx --store 'word/*.XML' --store '/_rels/**' --store '/*.xml' --level 9", 'repack a.docx -o c.docx --level 0')
        for name, stored in ('b.docx', lambda item: re.fullmatch(r'word/[^/]*[.]xml|_rels/[.]rels|.Content_Types.[.]xml', item) is not None), ('c.docx', lambda item: True):
            with zipfile.ZipFile(self.folder / name) as archive, zipfile.ZipFile(self.folder / 'a.docx') as old:
                self.assertEqual(sorted((i.filename, i.CRC) for i in archive.infolist()),
                                 sorted((i.filename, i.CRC) for i in old.infolist()))
                for item in archive.infolist():
                    self.assertEqual(item.compress_type == 0, stored(item.filename) or item.file_size == 0, item.filename)
        status, [document] = self.envelopes('repack a.docx -o b.docx')
        self.assertEqual((status, document['result']['before']), (0, len(self.read('a.docx'))))

    def test_cat_shows_documents_of_the_package_as_they_lie(self):
        with zipfile.ZipFile(self.folder / 'a.docx') as archive:
            for argument, item in ('"[Content_Types].xml"', '[Content_Types].xml'), ('/_rels/.rels', '_rels/.rels'), \
                    ('/word/_rels/DOCUMENT.xml.rels', 'word/_rels/document.xml.rels'):
                self.assertEqual(self.do(f'cat a.docx {argument}').encode(), archive.read(item))
        self.assertEqual(self.run_tool('cat a.docx /none/_rels/none.rels').status, 3)

    def test_graph(self):
        status, [document] = self.envelopes('graph a.docx --from /word/document.xml --depth 1')
        nodes = document['result']['nodes']
        self.assertEqual((status, nodes[0]['name'], {node['distance'] for node in nodes}), (0, '/word/document.xml', {0, 1}))
        self.assertEqual(self.run_tool('graph a.docx --from /none').status, 3)
        for form, start in ('dot', 'digraph'), ('mermaid', 'flowchart'), ('svg', '<svg'), ('json', '{'):
            self.assertTrue(self.do(f'graph a.docx --format {form}').startswith(start))

    def test_outputs_hold_to_their_schemas(self):
        for arguments in 'unpack a.docx tree', 'pack tree -o b.docx':
            self.assertEqual(self.envelopes(arguments)[0], 0)
        self.assert_helps('unpack', 'pack', 'repack', 'graph')


if __name__ == '__main__':
    unittest.main()
