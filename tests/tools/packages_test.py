"""Commands that list and change packages."""
import os
import pty
import shutil
import signal
import subprocess
import termios
import unittest
import zipfile

from opctool_case import OFFICE_FILES, OpctoolCase


class Packages(OpctoolCase):
    def test_programs_recognise_a_new_package_by_its_first_items(self):
        self.write('a.xml', '<a/>')
        document = 'http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument'
        content_type = 'application/vnd.openxmlformats-officedocument.wordprocessingml.document'
        self.do('new p.docx', f"add p.docx /word/document.xml a.xml --type '{content_type}.main+xml'",
                "add p.docx /word/b.xml a.xml --type 'application/xml'", f'relate p.docx / {document} /word/document.xml')
        items = ['[Content_Types].xml', '_rels/.rels', 'word/document.xml', 'word/b.xml']
        self.assertEqual(self.names('p.docx'), items)
        self.do('relate p.docx /word/document.xml urn:t /word/b.xml', 'relate p.docx / urn:t /word/b.xml')
        self.assertEqual(self.names('p.docx'), items + ['word/_rels/document.xml.rels'])
        if shutil.which('file'):
            self.assertEqual(self.shell('file --brief --mime-type p.docx').output, content_type + '\n')

    def names(self, package):
        with zipfile.ZipFile(self.folder / package) as archive:
            return archive.namelist()

    def test_build_a_package_step_by_step(self):
        self.write('note.txt', 'hello')
        self.do('new p.zip')
        self.assertEqual(self.list('ls p.zip'), [])
        self.do("add p.zip /notes/a.txt note.txt --type 'text/plain; charset=utf-8'")
        self.assertEqual(self.do('relate p.zip / urn:t /notes/a.txt'), 'rId1\n')
        self.assertEqual(self.do(r"relate p.zip /notes/a.txt urn:t 'dir\é' --external --id link"), 'link\n')

        self.assertEqual(self.list('ls p.zip'), [{'name': '/notes/a.txt', 'contentType': 'text/plain;charset=utf-8',
                                                  'size': 5, 'relationships': 1}])
        package = {'source': '/', 'id': 'rId1', 'type': 'urn:t', 'target': 'notes/a.txt', 'mode': 'Internal',
                   'resolved': '/notes/a.txt'}
        part = {'source': '/notes/a.txt', 'id': 'link', 'type': 'urn:t', 'target': 'dir\\é', 'mode': 'External',
                'resolved': None}
        self.assertEqual(self.list('rels p.zip'), [package])
        self.assertEqual(self.list('rels p.zip /notes/a.txt'), [part])
        self.assertEqual(self.list('rels p.zip --all'), [package, part])
        self.assertEqual(self.do('cat p.zip /NOTES/a.txt'), 'hello')

        for content in '', 'a longer text':
            self.write('new.txt', content)
            self.do('put p.zip /notes/A.txt new.txt')
            self.assertEqual(self.do('cat p.zip /notes/a.txt'), content)
        self.assertEqual(self.list('rels p.zip --all'), [package, part])
        self.do('unrelate p.zip / rId1', 'rm p.zip /notes/a.txt')
        self.assertEqual(self.list('rels p.zip --all'), [])

    def test_columns_are_aligned_and_without_colour(self):
        self.write('a', 1234 * 'x')
        self.do('new p.zip', 'add p.zip /long/name.bin a --type a/b', 'add p.zip /z a --type application/x')
        self.assertEqual(self.do('ls p.zip'), 'NAME            CONTENT TYPE   SIZE  RELATIONSHIPS\n'
                                              '/long/name.bin  a/b            1234              0\n'
                                              '/z              application/x  1234              0\n')
        self.assertEqual(self.do('rels p.zip'), '')

    def test_failures_print_one_line_and_leave_the_file_as_it_was(self):
        self.write('note.txt', 'hello')
        self.write('bad.zip', 'PK\3\4 cut short')
        self.do('new p.zip', 'add p.zip /a.txt note.txt --type text/plain')
        missing = 'PartNotFound: No part found with the name:/b.txt'
        for arguments, line in (
                ('add p.zip /A.txt note.txt --type text/plain',
                 'PartAlreadyExists: Cannot use a part name that already exists: /A.txt'),
                ('add p.zip /b. note.txt --type text/plain',
                 "InvalidPartName: A segment shall not end with a dot ('.') character [M1.9]"),
                ('add p.zip /b note.txt --type text',
                 'InvalidContentType: Could not successfully parse content type string'),
                ('put p.zip /b.txt note.txt', missing), ('rm p.zip /b.txt', missing), ('cat p.zip /b.txt', missing),
                ('rels p.zip /b.txt', missing),
                ('unrelate p.zip / rId1', 'RelationshipNotFound: Relationship ID does not exist'),
                ('relate p.zip / urn:t http://h/', 'InvalidRelationshipTarget: Relationship target cannot be an '
                                                   'absolute URI for an internal relationship'),
                ('new p.zip', 'Exception: The file exists already; use --force to replace it')):
            self.assert_failure(arguments, line, 'p.zip')
        for file, failure in ('none.zip', 'PackageNotFound'), ('bad.zip', 'PackageOpenFailed'):
            self.assertRegex(self.run_tool('ls ' + file).errors, f'^opctool: {file}: {failure}: can')
        self.assertFalse((self.folder / 'none.zip').exists())

    def test_wrong_usage_has_a_status_of_its_own(self):
        self.do('new p.zip')
        for arguments in (
                '', 'nonsense', 'ls', 'cat p.zip /a extra', 'ls p.zip --nonsense', 'rels p.zip / --all',
                'add p.zip /a none.txt --type a/b', 'add p.zip /a p.zip', 'relate p.zip / urn:t',
                "relate p.zip / urn:t '' --external", "relate p.zip / ' ' /a"):
            self.assert_wrong_usage(arguments)
        self.assertNotEqual(self.do('--version'), '')
        self.assert_helps('', 'ls', 'rels', 'cat', 'new', 'add', 'put', 'rm', 'relate', 'unrelate', 'props', 'info')

    def test_arguments_are_text(self):
        self.do('new p.zip', 'props p.zip --set title=M\u00fcller')
        self.assert_wrong_usage('props p.zip --set title=M\udcfcller')
        self.assertEqual(self.list('props p.zip')['title'], 'M\u00fcller')

    def test_what_is_odd_is_taken_unless_the_tool_is_told_to_be_strict(self):
        self.write('note.txt', 'hello')
        self.do('keygen k', 'new odd.zip', 'add odd.zip /a.txt note.txt --type text/plain', 'relate odd.zip / urn:t a.txt')
        self.add_item('odd.zip', 'b.jpg')
        oddity = 'opctool: p.zip: /b.jpg: no content type covers it; hidden, and kept in the file [M2.4]\n'
        uncovered = ('opctool: p.zip: warning: no signature covers what other programs may read: '
                     '/b.jpg: no content type covers it\n')
        for command in (
                'ls p.zip', 'rels p.zip', 'info p.zip', 'props p.zip', 'cat p.zip /a.txt', 'coverage p.zip',
                'props p.zip --set title=t', 'add p.zip /c.txt note.txt --type text/plain', 'put p.zip /a.txt note.txt',
                'rm p.zip /a.txt', 'relate p.zip /a.txt urn:t http://h/ --external', 'unrelate p.zip / rId1',
                'sign p.zip --profile opcmodel --key k.key', 'unsign p.zip --all'):
            shutil.copyfile(self.folder / 'odd.zip', self.folder / 'p.zip')
            self.assert_failure(command + ' --strict', 'ContentTypeNotFound: No content type was found for part:/b.jpg; '
                                                       '--lenient opens the package all the same', 'p.zip')
            for option in '', ' --lenient':
                outcome = self.run_tool(command + option)
                self.assertEqual(outcome.status, 0, command)
                self.assertEqual(outcome.errors, oddity + (uncovered if command.startswith('sign') else ''), command)
                self.assertEqual(self.shell('unzip -p p.zip b.jpg').output, 'x', command)
                shutil.copyfile(self.folder / 'odd.zip', self.folder / 'p.zip')
        self.assert_wrong_usage('ls odd.zip --lenient --strict')

    def test_bytes_behind_the_archive_are_taken_unless_the_tool_is_told_to_be_strict(self):
        self.write('note.txt', 'hello')
        self.do('new p.zip')
        self.write('p.zip', self.read('p.zip') + b'\n')
        behind = '1 byte stands behind the end of the archive'
        self.assertIn(behind + '; --lenient opens', self.run_tool('ls p.zip --strict').errors)
        line = f'opctool: p.zip: {behind}; not read, and dropped by the next save\n'
        for command in 'ls p.zip', 'add p.zip /a.txt note.txt --type text/plain':
            self.assertEqual(self.run_tool(command).errors, line)
        self.assertEqual(self.run_tool('ls p.zip --strict').errors, '')

    def test_very_many_oddities_are_told_with_few_lines(self):
        self.do('new p.zip')
        with zipfile.ZipFile(self.folder / 'p.zip', 'a') as archive:
            for i in range(2000):
                archive.writestr(f'\x1b[2J{i}.jpg', '')
        errors = self.run_tool('ls p.zip').errors
        self.assertEqual(errors.count('\n'), 101, errors)
        self.assertIn('\nopctool: p.zip: and 1900 more\n', errors)
        self.assertNotIn('\x1b', errors)

    def test_no_more_is_read_of_a_damaged_package_than_is_needed(self):
        content = bytes(range(256))  # which doesn't compress
        self.write('content', content)
        self.do('keygen k', 'new p.zip', 'add p.zip /a content --type a/b', 'add p.zip /b content --type a/b',
                'sign p.zip --profile opcmodel --key k.key --part /a', 'sign p.zip --key k.key --part /b')
        archive = bytearray(self.read('p.zip'))
        archive[archive.rfind(content)] += 1
        self.write('p.zip', bytes(archive))
        wrong = "b: can't read: its checksum is wrong"
        self.assertEqual(self.run_tool('cat p.zip /b').errors, f'opctool: p.zip: Exception: {wrong}\n')
        self.assertEqual(os.fsencode(self.do('cat p.zip /a')), content)
        self.assertEqual(self.list('ls p.zip')[-1]['size'], len(content))
        self.do('info p.zip', 'rels p.zip', 'props p.zip')
        status, rows = self.run_json('verify p.zip --public k.pub')
        self.assertEqual(status, 3)
        self.assertTrue(rows[0]['holds'])
        self.assertEqual(rows[1]['reason'], 'p.zip: ' + wrong)

    def test_it_fails_if_its_output_cannot_be_written(self):
        self.do('new p.zip')
        self.assertEqual(self.run_tool('ls p.zip --json >/dev/full').status, 3)

    def test_what_office_programs_wrote_is_changed(self):
        self.write('note.txt', 'hello')
        for name in OFFICE_FILES:
            with self.subTest(name):
                self.copy_fixture(name, name)
                before = self.list('ls ' + name)
                self.assertGreater(len(before), 3)
                self.assertGreater(len(self.list(f'rels {name} --all')), 3)
                self.do(f'add {name} /notes/note.txt note.txt --type text/plain')
                relationship = self.do(f'relate {name} / urn:note /notes/note.txt').strip()
                self.assertEqual(len(self.list('ls ' + name)), len(before) + 1)
                self.assertEqual(self.shell('unzip -tqq ' + name).status, 0)
                self.do(f'unrelate {name} / {relationship}', f'rm {name} /notes/note.txt')
                self.assertEqual(self.list('ls ' + name), before)

    def test_a_signal_that_ends_it_while_it_saves_leaves_nothing_behind(self):
        self.do('new a.zip')
        before = self.read('a.zip')
        self.write('big', os.urandom(1 << 25))
        for number in signal.SIGHUP, signal.SIGINT, signal.SIGTERM:
            with self.subTest(number):
                tool = self.start(number, ['add', 'a.zip', '/big', 'big', '--type', 'a/b'])
                while tool.poll() is None and not list(self.folder.glob('.a.zip*')):
                    pass
                tool.send_signal(number)
                self.assertEqual(tool.wait(), -number)
                self.assertEqual(sorted(os.listdir(self.folder)), ['a.zip', 'big'])
        self.assertEqual(self.read('a.zip'), before)

    def test_a_signal_that_ends_it_while_it_asks_leaves_the_terminal_as_it_was(self):
        terminals = pty.openpty()
        for terminal in terminals:
            self.addCleanup(os.close, terminal)

        def echoes():
            return bool(termios.tcgetattr(terminals[1])[3] & termios.ECHO)

        self.do('new a.zip')
        tool = self.start(signal.SIGINT, ['sign', 'a.zip', '--p12', 'a.zip'], stdin=terminals[1])
        while tool.poll() is None and echoes():
            pass
        tool.send_signal(signal.SIGINT)
        self.assertEqual(tool.wait(), -signal.SIGINT)
        self.assertTrue(echoes())

    def start(self, number, arguments, stdin=None):
        """Starts the tool so that this signal ends it, whatever the parent has made of that."""
        return subprocess.Popen([self.tool, *arguments], cwd=self.folder, stdin=stdin, stderr=subprocess.DEVNULL,
                                preexec_fn=lambda: signal.signal(number, signal.SIG_DFL))


if __name__ == '__main__':
    unittest.main()
