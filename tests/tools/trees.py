#!/usr/bin/env python3
"""Takes packages apart with opctool and puts them together again, and holds the result against what they were.

  trees.py OPCTOOL                        packages of the tests' own, with every oddity that is taken
  trees.py OPCTOOL FOLDER [COUNT [SEED]]  COUNT of the files in any folder, chosen by SEED

Each package that opens comes back byte for byte. Without the original, it comes back with the same items and contents. With
one file changed, every other item keeps its compressed bytes, or the change is refused for a new error. Repacked, it has the
same contents, and the same bytes for any order and compression that it had. Prints each violation, and counts.
"""
import collections
import os
import random
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the folder of the sources stays as it is
import archives
import odd_packages


# Contents that can't be read come back from the original, but nothing else can be done with them.
UNREADABLE = 'is damaged', 'checksum is wrong', 'is encrypted', 'compression method'


def read(path):
    with open(path, 'rb') as file:
        return file.read()


def contents_of(path):
    return sorted((name, item.size, item.crc) for name, item in archives.read_items(path).items() if not name.endswith('/'))


class Run:
    def __init__(self, tool, folder):
        self.tool = tool
        self.folder = folder
        self.counts = collections.Counter()

    def tell(self, name, text):
        self.counts['violations'] += 1
        print(f'VIOLATION {name}: {text}', flush=True)

    def run(self, *arguments):
        done = subprocess.run([self.tool, *arguments], capture_output=True, check=False)
        return done.returncode, done.stderr.decode(errors='replace').strip()

    def succeed(self, name, *arguments):
        status, errors = self.run(*arguments)
        if status != 0 and any(words in errors for words in UNREADABLE):
            self.counts['damaged'] += 1
        elif status != 0:
            self.tell(name, f'{arguments[0]}: status {status}: {errors}')
        return status == 0

    def has_same_contents(self, path, other):
        hashes = [subprocess.run([self.tool, 'hash', file], capture_output=True, check=False).stdout.split()[:1]
                  for file in (path, other)]
        return contents_of(path) == contents_of(other) and (hashes[0] == [] or hashes[0] == hashes[1])

    def check(self, path, rng):
        name = os.path.basename(path)
        if self.run('info', '-q', path)[0] != 0:
            self.counts['refused'] += 1
            return
        self.counts['packages'] += 1
        tree, packed = (os.path.join(self.folder, last) for last in ('tree', 'packed.zip'))
        for check in (self.check_same_bytes, self.check_same_contents, self.check_change):
            if self.succeed(name, 'unpack', path, tree, *(['--no-original'] if check == self.check_same_contents else [])):
                check(name, path, tree, packed, rng)
            shutil.rmtree(tree, ignore_errors=True)
        self.check_repacking(name, path, packed)

    def check_same_bytes(self, name, path, tree, packed, _):
        if self.succeed(name, 'pack', tree, '-o', packed) and read(packed) != read(path):
            self.tell(name, "doesn't come back byte for byte")

    def check_same_contents(self, name, path, tree, packed, _):
        if self.succeed(name, 'pack', tree, '-o', packed) and \
                not self.has_same_contents(path, packed):
            self.tell(name, "doesn't come back with its contents")

    def check_change(self, name, path, tree, packed, rng):
        files = sorted(os.path.relpath(os.path.join(root, file), tree) for root, folders, files in os.walk(tree)
                       for file in files if '.opctool' not in root and '_xmlsignatures' not in root)
        changed = rng.choice([file for file in files if not archives.is_document(file)] or files)
        with open(os.path.join(tree, changed), 'ab') as file:
            file.write(b'\n')
        before = read(packed) if os.path.exists(packed) else None
        status, errors = self.run('pack', tree, '-o', packed, '--break-signatures')
        if status != 0:
            self.counts['changes refused'] += 1
            if 'would have an error' not in errors:
                self.tell(name, f'change of {changed}: {errors}')
            if before is not None and read(packed) != before:
                self.tell(name, 'refused, and not left as it was')
            return
        self.counts['changes'] += 1
        old, new = archives.read_items(path), archives.read_items(packed)
        differing = [item for item in old if item not in new or new[item].compressed != old[item].compressed]
        if len(new) != len(old) or len(differing) > 1:
            self.tell(name, f'change of {changed}: {differing} differ')

    def check_repacking(self, name, path, packed):
        again = packed + '.again'
        if self.succeed(name, 'repack', path, '-o', packed, '--deterministic') and \
                self.succeed(name, 'repack', path, '-o', again, '--level', '1') and \
                self.succeed(name, 'repack', again, '--deterministic'):
            if not self.has_same_contents(path, packed):
                self.tell(name, 'repacking changes the contents')
            if read(packed) != read(again):
                self.tell(name, 'repacking depends on the compression before')


def main(tool, folder=None, count='600', seed='1'):
    with tempfile.TemporaryDirectory() as work:
        run = Run(os.path.abspath(tool), work)
        if folder is None:
            for name, package in odd_packages.PACKAGES.items():
                path = os.path.join(work, name.replace(' ', '-').replace('/', '-') + '.zip')
                with open(path, 'wb') as file:
                    file.write(package.content)
                run.check(path, random.Random(name))
        else:
            paths = sorted(os.path.join(root, file) for root, _, files in os.walk(folder) for file in files)
            for path in random.Random(seed).sample(paths, min(int(count), len(paths))):
                run.check(path, random.Random(f'{seed} {os.path.basename(path)}'))
        print(dict(run.counts))
        return run.counts['violations'] != 0 or run.counts['packages'] == 0


sys.exit(main(*sys.argv[1:]))
