"""Help, man pages and completions, which all come from the same commands. OPCTOOL_DOCS says where the last two are."""
import os
import pathlib
import re
import shlex
import shutil
import unittest

from opctool_case import OpctoolCase

OPTION = re.compile(r'^  ((?:-\w, )?--?[\w-]+)', re.M)


class Help(OpctoolCase):
    def setUp(self):
        super().setUp()
        self.docs = pathlib.Path(os.environ['OPCTOOL_DOCS'])
        self.commands = re.findall(r'^  ([a-z-]+)  ', self.do('--help').partition('\nCommands:\n')[2], re.M)
        self.assertIn('schema', self.commands)

    def options(self, command):
        text = self.do(command + ' --help').partition('\nExit status:')[0]
        return [name for names in OPTION.findall(text) for name in names.split(', ')]

    def complete(self, *words):
        script = self.docs / 'bash-completion/completions/opctool'
        line = f'source {shlex.quote(str(script))}; COMP_WORDS=({shlex.join(words)}); COMP_CWORD={len(words) - 1}; '
        line += r'_opctool; printf "%s\n" "${COMPREPLY[@]}"'
        outcome = self.shell('bash -c ' + shlex.quote(line))
        self.assertEqual((outcome.status, outcome.errors), (0, ''))
        return outcome.output.split()

    def test_fits_the_screen_and_names_examples_and_exit_statuses(self):
        for command in '', *self.commands:
            text = self.do(command + ' --help')
            self.assertLess(max(map(len, text.splitlines())), 80, command)
            if command:
                self.assertRegex(text, f'(?m)^Usage: opctool {command} .*')
                self.assertIn('\nExit status: 0 ', text)
                self.assertRegex(text, rf'\nExamples:\n(  .*\bopctool {command} .*\n)+\Z')

    def test_every_option_is_in_the_man_page_and_in_the_completions(self):
        fish, zsh = ((self.docs / name).read_text() for name in (
            'fish/vendor_completions.d/opctool.fish', 'zsh/site-functions/_opctool'))
        self.assertEqual(self.complete('opctool', ''), [*self.commands, '--help', '--version'])
        overview = (self.docs / 'man/man1/opctool.1').read_text()
        for command in self.commands:
            options = self.options(command)
            self.assertIn('--help', options)
            self.assertIn(f'Xr opctool-{command} 1', overview)
            page = (self.docs / f'man/man1/opctool-{command}.1').read_text()
            in_fish = [line for line in fish.splitlines() if f"__fish_seen_subcommand_from {command}'" in line]
            in_zsh = re.search(rf'\n        {command}\)\n(.*?)\n            ;;', zsh, re.S)[1]
            self.assertCountEqual(self.complete('opctool', command, '-'), options, command)
            for option in options:
                name = option.lstrip('-')
                self.assertRegex(page, rf'(?m)^\.It .*\bFl -?{name}\b', command)
                self.assertRegex('\n'.join(in_fish), rf' -[sl] {name} ', command)
                self.assertRegex(in_zsh, rf"'\*?{option}=?\[", command)
        for shell, file in ('zsh', 'zsh/site-functions/_opctool'), ('fish', 'fish/vendor_completions.d/opctool.fish'):
            if shutil.which(shell):
                self.assertEqual(self.shell(f'{shell} -n {self.docs / file}').status, 0)
        if shutil.which('mandoc'):
            self.assertEqual(self.shell(f'mandoc -T lint -W error {self.docs}/man/man1/*.1').output, '')

    def test_values_are_completed(self):
        self.write('a file', '')
        for words, completed in (
                (('ls', '--color', 'a'), ['auto', 'always']), (('ls', '--color', '=', 'n'), ['never']),
                (('ls', '--color', '='), ['auto', 'always', 'never']), (('schema', 'ver'), ['verify']),
                (('ls', 'a'), ['a', 'file']), (('sign', 'a', '--digest', 'sha2'), ['sha224', 'sha256'])):
            self.assertEqual(self.complete('opctool', *words), completed, words)

    def test_mistyped_words_get_a_suggestion(self):
        for arguments, meant in (('sl a', 'ls'), ('verfy a', 'verify'), ('unsing a', 'unsign'), ('ls --jsnol a', '--jsonl'),
                                 ('verify a --requirefull=x', '--require-full'), ('unsign a --lal', '--all'),
                                 ('xyzxyz a', None), ('ls --xyzxyz a', None)):
            outcome = self.run_tool(arguments)
            self.assertEqual(outcome.status, 2, arguments)
            self.assertEqual(re.findall(r'(?i)did you mean (.*)\?', outcome.errors), [meant] if meant else [], arguments)
        self.assertNotIn('\x1b', self.run_tool("'\x1b[2J'").errors)

    def test_examples_work(self):
        for name in 'report.docx', 'broken.docx', 'old.docx', 'new.docx', 'folder/a.docx', 'folder/b.docx':
            (self.folder / name).parent.mkdir(exist_ok=True)
            self.copy_fixture('letter.docx', name)
        for name in 'logo.png', 'new.xml':
            self.write(name, 'content')
        self.write('job.json', '{"opctool": {"job": 1}, "steps": [{"do": "gc"}]}')
        made = self.shell('openssl req -x509 -newkey rsa:2048 -nodes -keyout signer.key -out roots.pem -subj /CN=s && '
                          'openssl pkcs12 -export -inkey signer.key -in roots.pem -passout pass: -out signer.p12 && '
                          'openssl pkey -in signer.key -pubout -out signer.pub && cp roots.pem signer.pem && '
                          'cp signer.key other.key && cp signer.pub other.pub')
        self.assertEqual(made.status, 0, made.errors)
        self.do('relate report.docx / urn:t /word/document.xml --id rId7', 'add report.docx /notes/note.txt new.xml --type a/b')
        self.write('thumbnail', 'x')
        self.write('types.txt', 'png image/png')
        self.do('add report.docx /docProps/thumbnail.jpeg thumbnail --type image/jpeg')
        shutil.copytree(self.folder, self.folder / 'start')
        os.mkdir(self.folder / 'bin')
        os.symlink(self.tool, self.folder / 'bin' / 'opctool')
        for command in self.commands:
            for line in self.do(command + ' --help').partition('\nExamples:\n')[2].splitlines():
                shutil.rmtree(self.folder / 'run', ignore_errors=True)
                shutil.copytree(self.folder / 'start', self.folder / 'run')
                if command == 'keygen':
                    for name in 'signer.key', 'signer.pub', 'signer.pem':
                        os.remove(self.folder / 'run' / name)
                if command in ('countersign', 'coverage', 'unsign', 'verify'):
                    self.do('sign run/report.docx --profile opcmodel --key signer.key --public signer.pub')
                if command == 'pack':
                    self.do('unpack run/report.docx run/report')
                outcome = self.shell(f'cd run && PATH="$PWD/../bin:$PATH" && {line}')
                self.assertIn(outcome.status, (0, 1), f'{line}: {outcome.errors}')


if __name__ == '__main__':
    unittest.main()
