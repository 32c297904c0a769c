#!/usr/bin/env python3
"""Lets other programs judge signatures that opctool makes, and opctool those of others. Prints a table in the form of docs/interop.md.

    interop.py OPCTOOL

Needs LibreOffice with python3-uno, and Apache POI with a JDK: see scripts/interop. The exit status is 1 if two disagree.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
OFFICE_FILES = HERE.parent / 'data' / 'office'
JARS = ('poi poi-ooxml poi-ooxml-schemas xmlbeans commons-collections4 commons-compress commons-codec commons-math3 dom4j curvesapi bcprov bcpkix bcutil xmlsec slf4j-api slf4j-nop jaxb-api'
        .split())
SLIDE = '''<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0" xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
  xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0" xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
  office:version="1.3" office:mimetype="application/vnd.oasis.opendocument.presentation"><office:body><office:presentation>
  <draw:page draw:name="1"><draw:frame svg:width="9cm" svg:height="2cm" svg:x="2cm" svg:y="2cm"><draw:text-box><text:p>One &amp; two</text:p>
  </draw:text-box></draw:frame></draw:page></office:presentation></office:body></office:document>'''
TEXTS = {'text.html': ('docx', '<html><body><h1>One &amp; two</h1><p>See <a href="http://example.com/?a=1&amp;b=2">this</a>.</body></html>'),
         'table.csv': ('xlsx', 'One,1\nTwo,2\n'), 'slide.fodp': ('pptx', SLIDE)}
PASSWORD = 'secret'


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=600, **options)
    if done.returncode:
        raise RuntimeError(f'{command[0]} ends with {done.returncode}: {done.stderr.strip()[-500:]}')
    return done.stdout


class Judges:
    """Our tool and the two others, with a folder for their work."""

    def __init__(self, tool, folder):
        self.tool, self.folder = tool, folder
        classes = folder / 'schemas.jar'
        self.classpath = ':'.join([str(classes)] + [f'/usr/share/java/{name}.jar' for name in JARS])
        run('java', '-cp', '/usr/share/java/xmlbeans.jar', 'org.apache.xmlbeans.impl.tool.SchemaCompiler', '-quiet', '-out', classes,
            *sorted((HERE / 'schemas').glob('*.xsd')), cwd=folder)
        # JDK 17 limits a signature to 30 references otherwise
        (folder / 'java.security').write_text('jdk.xml.dsig.secureValidationPolicy=\n')

    def poi(self, files, *options):
        return run('java', '-cp', self.classpath, f'-Djava.security.properties={self.folder}/java.security',
                   '--add-exports', 'java.xml.crypto/org.jcp.xml.dsig.internal.dom=ALL-UNNAMED', HERE / 'PoiJudge.java',
                   *options, *files).splitlines()

    def office(self, files, *options):
        return run('/usr/bin/python3', HERE / 'office_judge.py', self.folder, *options, *files).splitlines()

    def ours(self, file, certificate):
        done = subprocess.run([self.tool, 'verify', file, '--trust', certificate, '--json=2'], stdout=subprocess.PIPE, check=False)
        signatures = json.loads(done.stdout)['result']['signatures']
        return ' / '.join(', '.join(one[key]['answer'] for key in ('cryptography', 'coverage', 'trust')) for one in signatures) or 'none'


def make_keys(folder):
    for name, kind in (('rsa', ('rsa:2048',)), ('ecdsa', ('ec', '-pkeyopt', 'ec_paramgen_curve:P-256'))):
        run('openssl', 'req', '-x509', '-newkey', *kind, '-nodes', '-keyout', f'{name}.key', '-out', f'{name}.pem', '-days', '3650',
            '-subj', f'/CN={name}', cwd=folder)
        run('openssl', 'pkcs12', '-export', '-inkey', f'{name}.key', '-in', f'{name}.pem', '-name', name, '-out', f'{name}.p12',
            '-passout', 'pass:' + PASSWORD, cwd=folder)
    (folder / 'nss').mkdir()
    database = f'sql:{folder}/nss'
    run('certutil', '-N', '-d', database, '--empty-password')
    run('pk12util', '-i', folder / 'rsa.p12', '-d', database, '-W', PASSWORD)


def make_documents(folder):
    """Documents that LibreOffice makes of texts, and those among the tests."""
    documents = []
    for name, (kind, text) in TEXTS.items():
        (folder / name).write_text(text)
        target = folder / f'{pathlib.Path(name).stem}.{kind}'
        form = 'docx:MS Word 2007 XML' if kind == 'docx' else kind
        run('soffice', '--headless', f'-env:UserInstallation=file://{folder}/profile', '--convert-to', form, '--outdir', folder, folder / name)
        documents.append(target)
    for file in sorted(OFFICE_FILES.iterdir()):
        if file.suffix in ('.docx', '.xlsx', '.pptx'):
            documents.append(pathlib.Path(shutil.copy(file, folder)))
    return documents


def rewrite(source, target, change):
    """Copies a package. `change` makes new content of a name and a content."""
    with zipfile.ZipFile(source) as opened, zipfile.ZipFile(target, 'w', zipfile.ZIP_DEFLATED) as written:
        for item in opened.infolist():
            written.writestr(item, change(item.filename, opened.read(item)))
    return target


def altered(files):
    """Copies with a line break behind the root element of the main part."""
    mains = 'word/document.xml', 'xl/workbook.xml', 'ppt/presentation.xml'
    return [rewrite(file, file.with_name('altered-' + file.name), lambda name, content: content + b'\n' if name in mains else content)
            for file in files]


def compact(file):
    """A copy whose relationships are as office programs write them: without text between them and without an ampersand."""
    def change(name, content):
        if not name.endswith('.rels'):
            return content
        return re.sub(rb'>\s+<', b'><', content).replace(b'&amp;', b'%26')
    return rewrite(file, file.with_name('compact-' + file.name), change)


def summarize(words):
    """How often each is said."""
    short = [word if not word.startswith('failed') else 'failed' for word in words]
    return ', '.join(f'{word} {short.count(word)}' for word in sorted(set(short))) + f' of {len(words)}'


class Table:
    def __init__(self):
        self.rows, self.failures = [], []

    def tell(self, what, judge, said):
        """A row that nothing is expected of."""
        self.rows.append(f'| {what} | {judge} | {summarize(said)} |')
        for word in set(said):
            if word.startswith('failed'):
                print(f'{what}: {judge}: {word}', file=sys.stderr)

    def add(self, what, judge, said, expected):
        self.tell(what, judge, said)
        self.failures += [f'{what}: {judge} says {word}' for word in said if not word.startswith(expected)]

    def print(self):
        print('| Signed | Judge | Says |\n| --- | --- | --- |')
        print('\n'.join(self.rows))
        for failure in self.failures:
            print(failure, file=sys.stderr)


def sign_here(judges, documents, key, options):
    files = []
    for document in documents:
        files.append(document.with_name(f'{key}{"-all" if options else ""}-{document.name}'))
        shutil.copy(document, files[-1])
        run(judges.tool, 'sign', files[-1], '--profile', 'standard', '--key', judges.folder / f'{key}.key', '--cert',
            judges.folder / f'{key}.pem', *options)
    return files


def judge_ours(judges, documents, table):
    for key in ('rsa', 'ecdsa'):
        for options in ((), ('--all',)):
            files = sign_here(judges, [compact(one) for one in documents], key, options)
            what = f'by opctool, {key.upper()}{" --all" if options else ""}'
            changed = altered(files)
            table.add(what, 'LibreOffice', judges.office(files), 'valid')
            table.add(what + ', then altered', 'LibreOffice', judges.office(changed), 'broken')
            # POI can't digest core properties: it fails
            table.add(what, 'POI', judges.poi(files), ('valid', 'failed', 'broken') if options else 'valid')
            table.add(what + ', then altered', 'POI', judges.poi(changed), ('broken', 'failed') if options else 'broken')
    files = sign_here(judges, documents, 'rsa', ())
    what = 'by opctool, RSA, relationships with text between them or &'
    table.tell(what, 'LibreOffice', judges.office(files))
    table.add(what, 'POI', judges.poi(files), 'valid')


def judge_others(judges, documents, table):
    certificate = judges.folder / 'rsa.pem'
    for name, sign in (('POI', lambda files: judges.poi(files, '--sign', judges.folder / 'rsa.p12')),
                       ('LibreOffice', lambda files: judges.office(files, '--sign'))):
        files = [document.with_name(f'{name}-{document.name}') for document in documents]
        for document, file in zip(documents, files):
            shutil.copy(document, file)
        said = sign(files)
        table.tell(f'by {name}, RSA', name, said)
        files = [file for file, word in zip(files, said) if not word.startswith('failed')]
        if files:  # what is right is told in docs/interop.md: both have faults of their own
            table.tell(f'by {name}, RSA', 'opctool', [judges.ours(file, certificate) for file in files])
            table.add(f'by {name}, RSA, then altered', 'opctool', [judges.ours(file, certificate) for file in altered(files)], 'broken')


def main():
    tool = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_keys(folder)
        judges = Judges(tool, folder)
        documents = make_documents(folder)
        table = Table()
        try:
            judge_ours(judges, documents, table)
            judge_others(judges, documents, table)
        finally:
            table.print()
    return 1 if table.failures else 0


if __name__ == '__main__':
    sys.exit(main())
