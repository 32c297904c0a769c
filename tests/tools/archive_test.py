"""The commands that look at a file as an archive: items, type."""
import unittest
import zipfile

from opctool_case import OFFICE_FILES, OpctoolCase


class ArchiveCommands(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'a.docx')

    def hide_item(self, name):
        """Gives the bytes of a.docx with a further item that its directory doesn't list."""
        before = self.read('a.docx')
        self.add_item('a.docx', name, 'hidden')
        data = self.read('a.docx')
        start = data.rindex(b'PK\3\4')
        end = data.index(b'PK\1\2', start)
        directory = before.index(b'PK\1\2')
        tail = bytearray(before[directory:])
        at = tail.rindex(b'PK\5\6') + 16
        tail[at:at + 4] = (directory + end - start).to_bytes(4, 'little')
        return before[:directory] + data[start:end] + bytes(tail)

    def test_items_lists_what_lies_in_the_archive(self):
        self.write('odd.docx', self.hide_item('word/ghost.xml') + b'\n')
        self.assertEqual(self.run_tool('ls --strict odd.docx').status, 3)
        status, [document] = self.envelopes('items odd.docx')
        result = document['result']
        kinds = [item['kind'] for item in result['items']]
        self.assertEqual((status, kinds.count('hidden'), kinds.count('content-types')), (0, 1, 1))
        hidden = result['items'][kinds.index('hidden')]
        self.assertEqual((hidden['name'], hidden['central'], hidden['local']['size']), ('word/ghost.xml', None, 6))
        size = len(self.read('odd.docx'))
        self.assertEqual(result['gaps'], [{'offset': size - 1, 'size': 1, 'where': 'behind-end'}])
        with zipfile.ZipFile(self.folder / 'a.docx') as archive:
            for item, info in zip(result['items'][:-1], archive.infolist()):
                self.assertEqual((item['name'], item['offset'], item['central']['checksum']),
                                 (info.filename, info.header_offset, info.CRC))
        table = self.do('items odd.docx')
        self.assertRegex(table, r'\d+ +hidden +store +6 +6 +word/ghost.xml +the directory doesn\'t list it\n')
        self.assertRegex(table, rf'{size - 1} +gap +- +1 +- +- +behind-end\n')

    def test_items_reads_an_archive_that_is_cut_off(self):
        whole = self.read('a.docx')
        self.write('cut.docx', whole[:whole.index(b'PK\1\2')])
        status, documents = self.envelopes('items a.docx cut.docx')
        names = [[item['name'] for item in document['result']['items']] for document in documents]
        self.assertEqual((status, sorted(names[0])), (0, sorted(names[1])))
        self.assertIn('No directory\n', self.do('items cut.docx'))

    def test_type_goes_by_the_content(self):
        for name in OFFICE_FILES:
            self.copy_fixture(name, 'file')
            self.assertEqual(self.do('type file --json').split('"')[3], name.rpartition('.')[2])
        self.assertEqual(self.do('type a.docx'), 'docx: Word document, transitional\n')
        self.write('cut', self.read('a.docx')[:500])
        self.write('empty', '')
        self.write('pdf', '%PDF-1.7\n')
        self.write('text', 'word')
        self.write('strange', b'\x01\x02\xFF')
        for name, item, content in ('odt', 'mimetype', 'application/vnd.oasis.opendocument.text'), \
                ('epub', 'mimetype', 'application/epub+zip'), ('zip', 'b', ''), ('jar', 'META-INF/MANIFEST.MF', ''), \
                ('odf', 'META-INF/manifest.xml', '<x m:media-type="application/vnd.oasis.opendocument.formula"/>'):
            with zipfile.ZipFile(self.folder / name, 'w') as archive:
                archive.writestr('a', '')
                archive.writestr(item, content)
        names = 'a.docx', 'cut', 'empty', 'pdf', 'text', 'strange', 'odt', 'epub', 'zip', 'jar', 'odf'
        status, documents = self.envelopes('type ' + ' '.join(names))
        self.assertEqual(status, 0)
        self.assertEqual([(document['result']['format'], document['result']['package']) for document in documents],
                         [('docx', True), ('cut-off', False), ('empty', False), ('pdf', False), ('text', False),
                          ('unknown', False), ('odt', False), ('epub', False), ('zip', False), ('jar', False), ('odf', False)])
        self.assertEqual(self.run_tool('type none').status, 3)


if __name__ == '__main__':
    unittest.main()
