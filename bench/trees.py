#!/usr/bin/env python3
"""Compares taking packages apart and putting them together with `unzip` and `zip -r`, by the CPU time of the processes.

    bench/trees.py OPCTOOL [FILE [ROUNDS]]

Each round runs each command once, in turn, so that what else the machine does falls on all of them. The ratios are those of the medians.
Without FILE it is a made package of 500 parts with 20 MiB of XML.
"""
import os
import random
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import zipfile

TYPES = ('<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
         '<Default Extension="xml" ContentType="application/xml"/></Types>')


def make_package(path):
    rng = random.Random(1)
    words = [''.join(rng.choice('abcdefghij') for _ in range(rng.randint(2, 9))) for _ in range(2000)]
    with zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED) as archive:
        archive.writestr('[Content_Types].xml', TYPES)
        for part in range(500):
            text = ''.join(f'<w:t>{rng.choice(words)}</w:t>' for _ in range(2200))
            archive.writestr(f'word/part{part}.xml', f'<w:d xmlns:w="urn:w">{text}</w:d>')


def cpu_time(command, folder):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, cwd=folder)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def main(tool, file=None, rounds="5"):
    tool = os.path.abspath(tool)
    with tempfile.TemporaryDirectory() as folder:
        package = os.path.join(folder, 'package.zip')
        if file is None:
            make_package(package)
        else:
            shutil.copyfile(file, package)
        for name, options in ('kept', []), ('bare', ['--no-original']), ('changed', []):
            subprocess.run([tool, 'unpack', package, os.path.join(folder, name), *options, '-q'], check=True)
        largest = max((os.path.join(root, last) for root, _, files in os.walk(os.path.join(folder, 'changed'))
                       for last in files if '.opctool' not in root and last.endswith('.xml')), key=os.path.getsize)
        with open(largest, 'ab') as changed:
            changed.write(b'\n')
        commands = {
            'unzip': (['unzip', '-qq', package, '-d', 'new'], 'unzip'),
            'opctool unpack': ([tool, 'unpack', package, 'new', '-q'], 'unzip'),
            'opctool unpack --no-original': ([tool, 'unpack', package, 'new', '--no-original', '-q'], 'unzip'),
            'zip -r': (['sh', '-c', 'cd bare && zip -q -r ../new.zip . -x ".opctool/*"'], 'zip -r'),
            'opctool pack, nothing kept': ([tool, 'pack', 'bare', '-o', 'new.zip', '-q'], 'zip -r'),
            'opctool pack, nothing changed': ([tool, 'pack', 'kept', '-o', 'new.zip', '-q'], 'zip -r'),
            'opctool pack, one part changed': ([tool, 'pack', 'changed', '-o', 'new.zip', '-q'], 'zip -r'),
            'opctool repack': ([tool, 'repack', package, '-o', 'new.zip', '-q'], 'zip -r'),
        }
        times = {name: [] for name in commands}
        for _ in range(int(rounds)):
            for name, (command, _) in commands.items():
                times[name].append(cpu_time(command, folder))
                shutil.rmtree(os.path.join(folder, 'new'), ignore_errors=True)
                if os.path.exists(os.path.join(folder, 'new.zip')):
                    os.remove(os.path.join(folder, 'new.zip'))
        medians = {name: statistics.median(values) for name, values in times.items()}
        for name, (_, reference) in commands.items():
            print(f'{name:32} {medians[name] * 1e3:8.2f} ms of CPU   {medians[name] / medians[reference]:5.2f} x {reference}')


if __name__ == '__main__':
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
