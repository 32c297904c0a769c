#!/usr/bin/env python3
"""Kills `opctool apply` at random instants, and checks that the package is the whole old one or the whole new one.

usage: killed_apply.py OPCTOOL COUNT"""
import json
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time
import zipfile


def make_package(path):
    """One that takes a while to save."""
    with zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED) as archive:
        archive.writestr('[Content_Types].xml', '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                         '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                         '<Default Extension="bin" ContentType="application/octet-stream"/></Types>')
        targets = ''.join(f'<Relationship Id="r{i}" Type="urn:t" Target="p{i}.bin"/>' for i in range(200))
        archive.writestr('_rels/.rels', '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
                         f'{targets}</Relationships>')
        for i in range(200):
            archive.writestr(f'p{i}.bin', random.Random(i).randbytes(20000))


def make_job(path):
    steps = [{'do': 'mv', 'part': f'/p{i}.bin', 'name': f'/moved/p{i}.bin'} for i in range(20)]
    steps += [{'do': 'put', 'part': '/p100.bin', 'text': 'new ' * 100000}, {'do': 'rm', 'part': '/p19*', 'incoming': True}]
    path.write_text(json.dumps({'opctool': {'job': 1}, 'steps': steps}))


def main(tool, count):
    with tempfile.TemporaryDirectory(prefix='opcmodel-test-') as name:
        folder = pathlib.Path(name)
        package, job = folder / 'p.zip', folder / 'job.json'
        make_package(package)
        make_job(job)
        old = package.read_bytes()
        command = [tool, 'apply', str(package), str(job), '-q']
        begin = time.monotonic()
        subprocess.run([*command, '-o', str(folder / 'new.zip')], check=True)
        duration = time.monotonic() - begin
        expected = subprocess.run([tool, 'ls', '--json', str(folder / 'new.zip')], check=True, capture_output=True).stdout
        outcomes = {'old': 0, 'new': 0}
        for number in range(count):
            package.write_bytes(old)
            process = subprocess.Popen(command)
            time.sleep(random.uniform(0, 1.3 * duration))
            process.send_signal(random.choice((signal.SIGKILL, signal.SIGTERM)))
            process.wait()
            now = package.read_bytes()
            if now != old:
                listed = subprocess.run([tool, 'ls', '--json', str(package)], capture_output=True).stdout
                whole = zipfile.ZipFile(package).testzip() is None
                if listed != expected or not whole:
                    sys.exit(f'kill {number}: the package is neither the old nor the new one')
            outcomes['old' if now == old else 'new'] += 1
        package.write_bytes(old)
        subprocess.run(command, check=True)  # what a killed process leaves behind is in nobody's way
        left = [path.name for path in folder.iterdir() if path.name not in ('p.zip', 'job.json', 'new.zip')]
        if left:
            sys.exit(f'left behind: {left}')
        print(f'{outcomes["old"]} times the old package, {outcomes["new"]} times the new one')


if __name__ == '__main__':
    main(sys.argv[1], int(sys.argv[2]))
