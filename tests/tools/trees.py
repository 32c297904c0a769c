#!/usr/bin/env python3
"""Takes packages apart with opctool and puts them together again, and holds the result against what they were.

  trees.py OPCTOOL                        packages of the tests' own, with every oddity that is taken
  trees.py OPCTOOL FOLDER [COUNT [SEED]]  COUNT of the files in any folder, chosen by SEED

Each package that opens comes back byte for byte. Without the original, it comes back with the same items and contents. With
one file changed, every other item keeps its compressed bytes, or the change is refused for a new error. Repacked, it has the
same contents, and the same bytes for any order and compression that it had. Prints each violation, and counts.
"""
import collections
import concurrent.futures
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


class Check:
    """Of one package, in a folder of its own."""

    def __init__(self, tool, folder, path, rng):
        self.tool = tool
        self.path = path
        self.rng = rng
        self.tree, self.packed, self.rebuilt, self.repacked, self.again = (
            os.path.join(folder, name) for name in ('tree', 'packed.zip', 'rebuilt.zip', 'repacked.zip', 'again.zip'))
        self.counts = collections.Counter()

    def tell(self, text):
        self.counts['violations'] += 1
        print(f'VIOLATION {os.path.basename(self.path)}: {text}', flush=True)

    def run(self, *arguments):
        done = subprocess.run([self.tool, *arguments], capture_output=True, check=False)
        return done.returncode, done.stderr.decode(errors='replace').strip()

    def succeed(self, *arguments):
        status, errors = self.run(*arguments)
        if status != 0 and any(words in errors for words in UNREADABLE):
            self.counts['damaged'] += 1
        elif status != 0:
            self.tell(f'{arguments[0]}: status {status}: {errors}')
        return status == 0

    def check(self):
        if self.run('info', '-q', self.path)[0] != 0:
            self.counts['refused'] += 1
            return
        self.counts['packages'] += 1
        if self.succeed('unpack', self.path, self.tree):
            if self.succeed('pack', self.tree, '-o', self.packed) and read(self.packed) != read(self.path):
                self.tell("doesn't come back byte for byte")
            self.check_change()
        shutil.rmtree(self.tree, ignore_errors=True)
        made = []
        if self.succeed('unpack', self.path, self.tree, '--no-original') and self.succeed('pack', self.tree, '-o', self.rebuilt):
            made.append(self.rebuilt)
        if self.repack():
            made.append(self.repacked)
        self.check_contents(made)

    def check_change(self):
        files = sorted(os.path.relpath(os.path.join(root, file), self.tree) for root, folders, files in os.walk(self.tree)
                       for file in files if '.opctool' not in root and '_xmlsignatures' not in root)
        changed = self.rng.choice([file for file in files if not archives.is_document(file)] or files)
        with open(os.path.join(self.tree, changed), 'ab') as file:
            file.write(b'\n')
        before = read(self.packed) if os.path.exists(self.packed) else None
        status, errors = self.run('pack', self.tree, '-o', self.packed, '--break-signatures')
        if status != 0:
            self.counts['changes refused'] += 1
            if 'would have an error' not in errors:
                self.tell(f'change of {changed}: {errors}')
            if before is not None and read(self.packed) != before:
                self.tell('refused, and not left as it was')
            return
        self.counts['changes'] += 1
        old, new = archives.read_items(self.path), archives.read_items(self.packed)
        differing = [item for item in old if item not in new or new[item].compressed != old[item].compressed]
        if len(new) != len(old) or len(differing) > 1:
            self.tell(f'change of {changed}: {differing} differ')

    def repack(self):
        if not (self.succeed('repack', self.path, '-o', self.repacked, '--deterministic') and
                self.succeed('repack', self.path, '-o', self.again, '--level', '1') and
                self.succeed('repack', self.again, '--deterministic')):
            return False
        if read(self.repacked) != read(self.again):
            self.tell('repacking depends on the compression before')
        return True

    def check_contents(self, made):
        lines = subprocess.run([self.tool, 'hash', self.path, *made], capture_output=True, check=False).stdout
        hashes = {name: digest for digest, name in (os.fsdecode(line).split('  ', 1) for line in lines.splitlines())}
        for path in made:
            if contents_of(path) != contents_of(self.path) or hashes.get(self.path, hashes.get(path)) != hashes.get(path):
                self.tell(f'{os.path.basename(path)} has other contents')


def check(tool, work, path, seed):
    with tempfile.TemporaryDirectory(dir=work) as folder:
        one = Check(tool, folder, path, random.Random(seed))
        one.check()
        return one.counts


def choose(work, folder, count, seed):
    """The paths of packages, each with the seed of its own choices."""
    if folder is not None:
        paths = sorted(os.path.join(root, file) for root, _, files in os.walk(folder) for file in files)
        for path in random.Random(seed).sample(paths, min(int(count), len(paths))):
            yield path, f'{seed} {os.path.basename(path)}'
        return
    for name, package in odd_packages.PACKAGES.items():
        path = os.path.join(work, name.replace(' ', '-').replace('/', '-') + '.zip')
        with open(path, 'wb') as file:
            file.write(package.content)
        yield path, name


def main(tool, folder=None, count='600', seed='1'):
    tool = os.path.abspath(tool)
    memory = '/dev/shm'  # each archive is written to the disk before it has its name; the disk would take most of the time
    with tempfile.TemporaryDirectory(dir=memory if os.access(memory, os.W_OK) else None) as work, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        counts = collections.Counter()
        for one in pool.map(lambda chosen: check(tool, work, *chosen), choose(work, folder, count, seed)):
            counts += one
        print(dict(counts))
        return counts['violations'] != 0 or counts['packages'] == 0


sys.exit(main(*sys.argv[1:]))
