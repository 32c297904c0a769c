#!/usr/bin/env python3
"""Runs the examples of a document, and says which prints something else than the document says.

  examples.py OPCTOOL DOCUMENT FIXTURES

An example is a block of the kind `sh`. A line that begins with "$ " is a command; the lines up to the next one are what it
prints, errors included. In these lines "…" stands for anything, and a line with nothing else for any number of lines. All
run one after the other, in a folder that has the office files of the tests in `folder/` and a copy of letter.docx as
report.docx. A block of the kind `json` is the file job.json from there on.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile


def examples_of(text):
    """Gives line number, command and expected output."""
    for block in re.finditer(r'^```(?:sh|json)\n(.*?)^```', text, re.S | re.M):
        number = text.count('\n', 0, block.start(1)) + 1
        if block[0].startswith('```json'):
            yield number, 'cat >job.json <<"END"\n' + block[1] + 'END', ''
            continue
        for example in re.finditer(r'^\$ (.*)\n((?:(?!\$ ).*\n)*)', block[1], re.M):
            yield number + block[1].count('\n', 0, example.start()), example[1], example[2]


def pattern_of(expected):
    lines = ['(?:.*\n)*' if line == '…' else re.escape(line).replace('…', '.*') + '\n' for line in expected.splitlines()]
    return re.compile(''.join(lines))


def main():
    tool, document, fixtures = map(pathlib.Path, sys.argv[1:])
    faults = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        os.makedirs(folder / 'work/folder')
        for file in fixtures.glob('*.???x'):
            shutil.copy(file, folder / 'work/folder')
        shutil.copyfile(fixtures / 'letter.docx', folder / 'work/report.docx')
        os.mkdir(folder / 'bin')
        os.symlink(tool.resolve(), folder / 'bin/opctool')
        person = {f'GIT_{role}_{what}': text for role in ('AUTHOR', 'COMMITTER')
                  for what, text in (('NAME', 'Ada Binder'), ('EMAIL', 'ada@example.com'))}
        environment = {**os.environ, **person, 'PATH': f'{folder}/bin:{os.environ["PATH"]}', 'LC_ALL': 'C.UTF-8'}
        for line, command, expected in examples_of(document.read_text(encoding='utf-8')):
            done = subprocess.run(['bash', '-c', command], cwd=folder / 'work', env=environment, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding='utf-8', errors='replace')
            if not pattern_of(expected).fullmatch(done.stdout):
                faults += 1
                print(f'{document}:{line}: {command}\nexpected:\n{expected}printed:\n{done.stdout}')
    sys.exit(1 if faults else 0)


main()
