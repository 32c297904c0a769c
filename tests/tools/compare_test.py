"""The commands that compare packages: diff, hash, flat, git-setup."""
import hashlib
import json
import os
import unittest
import zipfile

import odd_packages
from opctool_case import OpctoolCase

OFFICE = 'http://schemas.openxmlformats.org/officeDocument/2006/relationships/'


def record(*texts):
    return b''.join(len(text.encode()).to_bytes(8, 'big') + text.encode() for text in texts)


class Compare(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'a.docx')
        self.write('new.xml', self.do('cat a.docx /word/document.xml').replace('</w:body>', '<w:p/></w:body>'))
        self.do('put a.docx /word/document.xml new.xml -o b.docx', "props b.docx --set title='x\u202ey'",
                'rm b.docx /docProps/app.xml', 'relate b.docx / urn:t http://x/ --external')

    def repack(self, name, target, method=zipfile.ZIP_STORED):
        with zipfile.ZipFile(self.folder / name) as old, zipfile.ZipFile(self.folder / target, 'w', method) as new:
            for item in reversed(old.namelist()):
                new.writestr(item, old.read(item))

    def test_diff_tells_each_difference(self):
        outcome = self.run_tool('diff a.docx b.docx')
        self.assertEqual((outcome.status, outcome.errors), (1, ''))
        self.assertNotIn('\u202e', outcome.output)
        for line in 'property title: A letter to the printer -> x y\n', \
                ' of /: urn:t -> http://x/ (external)\n', 'removed part /docProps/app.xml: application/', \
                'changed part /word/document.xml: 0 lines removed, 1 added\n--- a.docx!/word/document.xml\n' \
                '+++ b.docx!/word/document.xml\n@@ -', '\n+    <w:p/>\n':
            self.assertIn(line, outcome.output)
        self.assertIn('\033[32m+    <w:p/>\033[0m\n', self.run_tool('diff a.docx b.docx --color always').output)
        self.assertEqual(self.run_tool('diff a.docx b.docx --name-only').output,
                         '/_rels/.rels\n/docProps/app.xml\n/docProps/core.xml\n/word/document.xml\n')
        overview = self.run_tool('diff a.docx b.docx --stat').output
        self.assertNotIn('@@', overview)
        self.assertTrue(overview.endswith('3 parts, 1 relationship and 0 other items differ\n'), overview)
        only = self.run_tool('diff a.docx b.docx /word/** -U 0').output
        self.assertEqual([line[:2] for line in only.splitlines()], ['ch', '--', '++', '@@', '+ '])
        self.assertEqual(self.shell(f"'{self.tool}' diff - b.docx /word/* -q <a.docx"), (1, '', ''))
        for wrong in 'a.docx', 'a.docx b.docx --stat --name-only', 'a.docx b.docx -U x':
            self.assert_wrong_usage('diff ' + wrong)
        for failing in 'a.docx none.docx', 'a.docx new.xml', 'a.docx b.docx /none.xml':
            self.assertEqual(self.run_tool('diff ' + failing).status, 3, failing)
        self.assert_failure('diff a.docx new.xml', 'Exception: new.xml: The file is no package: XML document', 'a.docx')

    def test_diff_as_json(self):
        status, [document] = self.envelopes('diff a.docx b.docx -U 0')
        result = document['result']
        self.assertEqual((status, document['status'], document['file'], result['other'], result['equal']),
                         (1, 1, 'a.docx', 'b.docx', False))
        [removed], changed = result['parts']['removed'], result['parts']['changed']
        self.assertEqual((removed['name'], removed['sha256']),
                         ('/docProps/app.xml', hashlib.sha256(self.do('cat a.docx /docProps/app.xml').encode()).hexdigest()))
        self.assertEqual([(one['now']['name'], one['content'], one['removedLines'], one['addedLines']) for one in changed][1],
                         ('/word/document.xml', 'lines', 0, 1))
        self.assertEqual(changed[1]['hunks'][0]['lines'], ['+    <w:p/>'])
        self.assertEqual([(one['source'], one['before'] is None, one['now'] is None) for one in result['relationships']],
                         [('/', True, False)])
        self.assertEqual(result['properties'], [{'name': 'title', 'before': 'A letter to the printer', 'now': 'x\u202ey'}])

    def test_diff_makes_a_job_that_leads_there(self):
        self.write('large', bytes(range(256)) * 100)
        self.do('add b.docx /large.bin large --type a/b')
        tried = self.run_tool('diff a.docx b.docx --job job.json -n')
        self.assertEqual([path for path in os.listdir(self.folder) if 'job' in path], [])
        self.assertEqual(self.run_tool('diff a.docx b.docx --job job.json'), (1, '', ''))
        self.assertEqual(tried, (1, self.do('apply a.docx job.json -n'), ''))
        self.assertEqual(self.read('job.json.contents/1'), self.read('large'))
        self.do('apply a.docx job.json -o result.docx')
        self.assertEqual(self.run_tool('diff result.docx b.docx'), (0, '', ''))
        piped = self.shell(f"'{self.tool}' diff a.docx b.docx --job - | '{self.tool}' apply a.docx - -o piped.docx")
        self.assertEqual((piped.status, self.run_tool('diff piped.docx b.docx').status), (0, 0), piped.errors)
        self.do('mv a.docx /word/styles.xml /s.xml -o moved.docx')
        [move] = json.loads(self.run_tool('diff a.docx moved.docx --job -').output)['steps']
        self.assertEqual(move, {'do': 'mv', 'part': '/word/styles.xml', 'name': '/s.xml'})
        self.add_item('b.docx', '[trash]/1')
        self.do('keygen k', 'sign a.docx --key k.key -o signed.docx')
        self.write('core.xml', '<x/>')
        self.do('put a.docx /docProps/core.xml core.xml -o bad.docx')
        for command, line in (
                ("a.docx b.docx '[trash]/*'", 'a.docx: Exception: No job makes it hold what b.docx does: the item [trash]/1, '
                                              'which is no part'),
                ('signed.docx b.docx /word/*', 'signed.docx: BreaksSignatures: '),
                ('a.docx bad.docx', 'a.docx: InvalidResult: The changed package would have an error')):
            outcome = self.run_tool(f'diff {command} --job other.json')
            self.assertEqual((outcome.status, outcome.output), (3, ''), command)
            self.assertIn('opctool: ' + line, outcome.errors)
            self.assertFalse((self.folder / 'other.json').exists())
        self.assertEqual(self.run_tool('diff signed.docx b.docx /word/* --job one.json --break-signatures').status, 1)
        self.assertEqual(self.run_tool('diff a.docx bad.docx --job two.json --no-check').status, 1)
        before = self.read('job.json')
        for failing in 'job.json', 'none/job.json', 'new.xml':
            self.assertEqual(self.run_tool('diff a.docx b.docx --job ' + failing).status, 3, failing)
        self.assertEqual(self.read('job.json'), before)
        self.assertFalse((self.folder / 'new.xml.contents').exists())
        for wrong in '--job x --json', '--job x --stat', '--no-check', '--break-signatures':
            self.assert_wrong_usage('diff a.docx b.docx ' + wrong)

    def test_what_the_archive_is_like_does_not_count(self):
        self.repack('a.docx', 'other.docx')
        self.add_item('other.docx', 'folder/', '')
        self.assertEqual(self.run_tool('diff a.docx other.docx'), (0, '', ''))
        status, [document] = self.envelopes('diff a.docx other.docx')
        self.assertEqual((status, document['result']['equal']), (0, True))
        hashes = self.do('hash a.docx other.docx').split()
        self.assertEqual((hashes[0], hashes[1::2]), (hashes[2], ['a.docx', 'other.docx']))
        self.assertEqual(self.do('flat a.docx'), self.do('flat other.docx'))

    def test_hash_is_what_the_documents_define(self):
        def expected(ignored='', left_out=()):
            records = []
            for part in self.list('ls b.docx'):
                content = self.shell(f"'{self.tool}' cat b.docx {part['name']} | sha256sum").output[:64]
                if part['name'].lower() not in left_out:
                    records.append(record('part', part['name'].lower(), part['contentType'].lower(), content))
            for one in self.list('rels b.docx --all'):
                target = one['target'] if one['mode'] == 'External' else one['resolved'].lower()
                if target not in left_out:
                    records.append(record('relationship', one['source'].lower(), '' if 'rel-ids' in ignored else one['id'],
                                          one['type'], one['mode'], target))
            return hashlib.sha256(record('opc content hash 1', ignored) + b''.join(sorted(records))).hexdigest()
        self.assertEqual(self.do('hash b.docx'), expected() + '  b.docx\n')
        for ignored in 'rel-ids,core-properties', 'core-properties --ignore rel-ids':
            self.assertEqual(self.do('hash b.docx --ignore ' + ignored),
                             expected('core-properties,rel-ids,', ['/docprops/core.xml']) + '  b.docx\n')
        status, [document] = self.envelopes('hash b.docx')
        self.assertEqual((status, document['result']['sha256']), (0, expected()))

    def test_contents_are_read_where_packages_are(self):
        """Without its last block, Deflate is read by all commands that read contents, unless they are told to be strict."""
        package = odd_packages.PACKAGES['Deflate without final block'].content
        self.write('odd.docx', package)
        self.do('repack odd.docx -o whole.docx')
        for arguments in 'hash odd.docx', 'flat odd.docx', 'diff odd.docx whole.docx', 'clean odd.docx -n', 'graph odd.docx', 'type odd.docx':
            self.do(arguments)
        self.assertEqual(self.do('hash odd.docx').split()[0], self.do('hash whole.docx').split()[0])
        self.assertEqual(self.run_tool('hash odd.docx --strict').status, 3)
        self.assertEqual(self.run_tool('check odd.docx -q').status, 1)

    def test_hash_of_signatures_can_be_left_out(self):
        self.do('keygen k', 'sign a.docx --key k.key -o signed.docx')
        plain, signed = self.do('hash --ignore signatures a.docx signed.docx').split()[::2]
        self.assertEqual(plain, signed)
        self.assertNotEqual(*self.do('hash a.docx signed.docx').split()[::2])

    def test_hash_checks_lists(self):
        self.do('hash a.docx b.docx >list', 'hash --parts a.docx >parts')
        self.assertEqual(self.do('hash -c list'), 'a.docx: OK\nb.docx: OK\n')
        self.assertTrue(self.do('hash -c parts').startswith('a.docx!/docProps/app.xml: OK\n'))
        self.write('a.docx', self.read('b.docx'))
        self.assertEqual(self.run_tool('hash -c list')[:2], (1, 'a.docx: FAILED\nb.docx: OK\n'))
        self.assertIn('a.docx!/docProps/app.xml: FAILED\n', self.run_tool('hash -c parts').output)
        self.assertEqual(self.run_tool('hash -c list --ignore rel-ids').status, 1)
        self.write('wrong', '0' * 63 + '  a.docx\n')
        self.write('gone', '0' * 64 + '  gone.docx\n')
        for failing in 'wrong', 'none', 'gone', 'new.xml':
            self.assertEqual(self.run_tool('hash -c ' + failing).status, 3, failing)
        for wrong in '-c list a.docx', '-c list --json', '-c list --parts', 'a.docx --ignore x':
            self.assert_wrong_usage('hash ' + wrong)

    def test_hash_lists_any_name(self):
        name = 'odd\\\nname!/x.docx'
        (self.folder / 'odd\\\nname!').mkdir()
        self.write(name, self.read('b.docx'))
        self.do(f"hash '{name}' >list")
        self.assertEqual(self.do('hash -c list'), 'odd\\ name!/x.docx: OK\n')

    def test_flat_prefixes_lines_and_takes_any_file(self):
        self.assertRegex(self.do('flat a.docx --prefix'), r'\n/word/document.xml:     <w:body>\n')
        self.assertEqual(self.do('flat new.xml'), 'no package: XML document, '
                         f'{len(self.read("new.xml"))} bytes, sha256 {hashlib.sha256(self.read("new.xml")).hexdigest()}\n')

    def test_git_shows_what_changed(self):
        git = f"PATH=\"$(dirname '{self.tool}'):$PATH\" HOME=. git -c user.name=a -c user.email=a@b "
        self.do('git-setup')
        for command in 'git init -q .', f"'{self.tool}' git-setup --attributes >.gitattributes", \
                f"'{self.tool}' git-setup --config >>.git/config", 'cp b.docx ./-odd.docx', git + 'add .', \
                git + 'commit -qm one', 'cp b.docx a.docx; cp new.xml b.docx; cp a.docx ./-odd.docx; rm -- -odd.docx':
            self.assertEqual(self.shell(command).status, 0, command)
        shown = self.shell(git + 'diff')
        self.assertEqual((shown.status, shown.errors), (0, ''))
        for line in '\n+      <w:p/>\n', '\n-part /docProps/app.xml\n', '\n+no package: ', '\ndeleted file mode':
            self.assertIn(line, shown.output)


if __name__ == '__main__':
    unittest.main()
