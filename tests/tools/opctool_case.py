"""Runs opctool in a folder of its own, as a person at a shell does. OPCTOOL in the environment says which."""
import collections
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

import jsonschema

sys.dont_write_bytecode = True  # the folder of the sources stays as it is

OFFICE_FILES = 'letter.docx', 'budget.xlsx', 'talk.pptx', 'report.docx', 'table.xlsx'

Outcome = collections.namedtuple('Outcome', 'status output errors')


def closed(schema):
    """The same schema, but objects have no members that it doesn't know."""
    if isinstance(schema, list):
        return [closed(item) for item in schema]
    if not isinstance(schema, dict):
        return schema
    same = {key: closed(value) for key, value in schema.items()}
    if schema.get('type') == 'object' and 'properties' in schema:
        same['additionalProperties'] = False
    return same


class OpctoolCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix='opcmodel-test-')
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        self.tool = os.environ['OPCTOOL']

    def shell(self, command):
        """Runs a command of the shell in the folder. The status is negative if a signal ended it."""
        done = subprocess.run(os.fsencode(command), shell=True, cwd=self.folder, stdin=subprocess.DEVNULL,
                              capture_output=True)
        return Outcome(done.returncode, os.fsdecode(done.stdout), os.fsdecode(done.stderr))

    def run_tool(self, arguments):
        return self.shell(f"'{self.tool}' {arguments}")

    def do(self, *commands):
        """Runs commands that succeed. Gives what the last one prints."""
        for arguments in commands:
            outcome = self.run_tool(arguments)
            self.assertEqual(outcome.status, 0, arguments + ': ' + outcome.errors)
        return outcome.output

    def list(self, arguments):
        return json.loads(self.do(arguments + ' --json'))

    def envelopes(self, arguments, option='--jsonl'):
        """The status of a command and what it prints for each package in shape 2, which holds to the command's schema."""
        outcome = self.run_tool(f'{arguments} {option}')
        if option == '--jsonl':
            documents = [json.loads(line) for line in outcome.output.splitlines()]
        else:
            documents = json.loads(outcome.output)
            documents = documents if isinstance(documents, list) else [documents]
        schemas = {}
        for document in documents:
            command = document['opctool']['command']
            if command not in schemas:
                schemas[command] = jsonschema.Draft202012Validator(closed(json.loads(self.do('schema ' + command))))
            schemas[command].validate(document)
        return outcome.status, documents

    def run_json(self, arguments):
        """The status of a command, whichever it is, and its document."""
        outcome = self.run_tool(arguments + ' --json')
        return outcome.status, json.loads(outcome.output)

    def read(self, name):
        return (self.folder / name).read_bytes()

    def write(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())

    def copy_fixture(self, fixture, name):
        data = pathlib.Path(__file__).resolve().parent.parent / 'data'
        shutil.copyfile(data / 'office' / fixture, self.folder / name)

    def add_item(self, archive, name, content='x'):
        """Puts an item that has no content type, or is none of the package's, into the container."""
        with zipfile.ZipFile(self.folder / archive, 'a') as opened:
            opened.writestr(name, content)

    def assert_failure(self, arguments, line, file):
        """The command fails with this one line about the package, and leaves its file as it is."""
        before = self.read(file)
        self.assertEqual(self.run_tool(arguments), (3, '', f'opctool: {file}: {line}\n'), arguments)
        self.assertEqual(self.read(file), before, arguments)

    def assert_wrong_usage(self, arguments):
        outcome = self.run_tool(arguments)
        self.assertEqual(outcome.status, 2, arguments)
        self.assertNotEqual(outcome.errors, '', arguments)
        return outcome.errors

    def assert_helps(self, *commands):
        for command in commands:
            self.assertNotEqual(self.do(command + ' --help'), '', command)
