"""What check finds, in all its formats, and what explain says about rules."""
import html.parser
import json
import pathlib
import re
import unittest
import zipfile

import jsonschema

from opctool_case import OFFICE_FILES, OpctoolCase

SARIF_SCHEMA = pathlib.Path(__file__).resolve().parent.parent / 'data' / 'sarif' / 'sarif-2.1.0-rtm.5.json'

MISSING = ('<Relationship Id="rId9" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/image"'
           ' Target="{}"/></Relationships>')


class Balance(html.parser.HTMLParser):
    """Collects the elements of a page, and fails where an end tag isn't that of the open element."""
    EMPTY = {'meta', 'br', 'rect', 'path'}

    def __init__(self):
        super().__init__()
        self.open, self.seen, self.text = [], [], ''

    def handle_starttag(self, tag, attrs):
        self.seen.append((tag, dict(attrs)))
        if tag not in self.EMPTY:
            self.open.append(tag)

    def handle_startendtag(self, tag, attrs):
        self.seen.append((tag, dict(attrs)))

    def handle_endtag(self, tag):
        if tag not in self.EMPTY and self.open.pop() != tag:
            raise AssertionError('unbalanced ' + tag)

    def handle_data(self, data):
        self.text += data


class Check(OpctoolCase):
    """good.docx breaks no rule, bad.docx has a relationship to a part that isn't there (SEC-17), and none.docx is no file."""

    def setUp(self):
        super().setUp()
        self.copy_fixture('letter.docx', 'good.docx')
        self.damage('bad.docx', 'media/b.png')

    def damage(self, name, *targets):
        source = zipfile.ZipFile(self.folder / 'good.docx')
        with source, zipfile.ZipFile(self.folder / name, 'w') as changed:
            for item in source.infolist():
                content = source.read(item).decode('latin-1')
                if item.filename == 'word/_rels/document.xml.rels':
                    for number, target in enumerate(targets):
                        target = MISSING.format(target.replace('<', '&lt;')).replace('rId9', f'rIdX{number}')
                        content = content.replace('</Relationships>', target)
                changed.writestr(item.filename, content.encode('latin-1'))

    def sarif(self, arguments):
        outcome = self.run_tool('check --rule SEC-17 --format sarif ' + arguments)
        log = json.loads(outcome.output)
        jsonschema.Draft4Validator(json.loads(SARIF_SCHEMA.read_text())).validate(log)
        return outcome.status, log['runs'][0]

    def test_office_files_break_no_rule(self):
        for fixture in OFFICE_FILES:
            self.copy_fixture(fixture, fixture)
            outcome = self.run_tool('check --profile all --fail-on warning ' + fixture)
            self.assertEqual(outcome.status, 0, outcome.output)

    def test_status_follows_the_severity(self):
        for arguments, status in (('good.docx', 0), ('bad.docx', 0), ('--fail-on warning bad.docx', 1),
                                  ('--fail-on warning good.docx bad.docx good.docx', 1),
                                  ('--fail-on never bad.docx', 0),
                                  ('--fail-on warning --no-rule SEC-17 bad.docx', 0),
                                  ('--fail-on warning --rule sec-17 bad.docx', 1),
                                  ('--fail-on info --rule M1.26 bad.docx', 0), ('none.docx good.docx', 3),
                                  ('--rule M99 good.docx', 2), ('--format xml good.docx', 2),
                                  ('--profile x good.docx', 2), ('--baseline none good.docx', 3),
                                  ('--baseline good.docx good.docx', 3)):
            with self.subTest(arguments):
                self.assertEqual(self.run_tool('check ' + arguments).status, status)

    def test_text_has_a_line_for_each_finding(self):
        outcome = self.run_tool('check --rule SEC-17 bad.docx good.docx none.docx')
        lines = outcome.output.splitlines()
        self.assertTrue(lines[0].startswith('WARNING(SEC-17): bad.docx!/word/_rels/document.xml.rels('), lines)
        self.assertIn(')#rIdX0: ', lines[0])
        self.assertEqual(lines[-1], '3 files: 0 errors, 1 warning, 0 infos; 1 file not readable')
        self.assertEqual(outcome.errors.count('\n'), 1)
        self.assertIn('none.docx', outcome.errors)

    def test_json_is_that_of_all_commands(self):
        arguments = 'check --rule SEC-17 bad.docx good.docx none.docx'
        status, documents = self.envelopes(arguments)
        self.assertEqual((status, [document['status'] for document in documents]), (3, [0, 0, 3]))
        finding, = documents[0]['result']['findings']
        self.assertEqual((finding['rule'], finding['part'], finding['relationship'], finding['target']),
                         ('SEC-17', '/word/_rels/document.xml.rels', 'rIdX0', 'media/b.png'))
        for option, same in ('--format json', '--json=2'), ('--format jsonl', '--jsonl'):
            self.assertEqual(self.run_tool(f'{arguments} {option}'), self.run_tool(f'{arguments} {same}'))

    def test_sarif_is_valid_and_names_files_and_parts(self):
        status, run = self.sarif('-r . none.docx')
        result, = run['results']
        place, = result['locations']
        self.assertEqual(status, 3)
        self.assertEqual(place['physicalLocation']['artifactLocation']['uri'], 'bad.docx')
        self.assertEqual(place['logicalLocations'][0]['fullyQualifiedName'], '/word/_rels/document.xml.rels#rIdX0')
        self.assertEqual([rule['id'] for rule in run['tool']['driver']['rules']], ['SEC-17'])
        invocation, = run['invocations']
        self.assertFalse(invocation['executionSuccessful'])
        self.assertIn('none.docx', invocation['toolExecutionNotifications'][0]['message']['text'])
        rooted = self.sarif(f"--sarif-root .. {self.folder}/bad.docx")[1]['results'][0]
        self.assertEqual(rooted['locations'][0]['physicalLocation']['artifactLocation'],
                         {'uri': self.folder.name + '/bad.docx', 'uriBaseId': '%SRCROOT%'})
        self.assertEqual(rooted['partialFingerprints'], result['partialFingerprints'])
        self.assertEqual(self.sarif('good.docx')[1]['results'], [])

    def test_baseline_hides_what_was_known(self):
        for option, name in (('--format sarif', 'sarif'), ('--json=2', 'json'), ('--jsonl', 'jsonl')):
            self.damage('bad.docx', 'a.png')
            self.write(name, self.run_tool(f'check --rule SEC-17 {option} bad.docx good.docx').output)
            check = f'check --rule SEC-17 --fail-on warning --baseline {name} bad.docx '
            with self.subTest(name):
                self.assertEqual(self.do(check), '1 file: 0 errors, 0 warnings, 0 infos; 1 known\n')
                self.damage('bad.docx', 'b.png', 'a.png')
                self.assertEqual(self.run_tool(check).status, 1, 'the relationship has another target')
                run = self.sarif(f'--baseline {name} bad.docx')[1]
                self.assertEqual([result['baselineState'] for result in run['results']], ['new', 'new'])

    def test_html_is_one_page_without_anything_active(self):
        self.damage('bad.docx', 'media/<b>.png')
        self.write('alone.xml', '<a/>')
        self.do('keygen k', 'sign bad.docx --key k.key', 'add bad.docx /alone.xml alone.xml --type application/xml')
        page = Balance()
        page.feed(self.run_tool('check --profile all --format html bad.docx good.docx none.docx').output)
        self.assertEqual(page.open, [])
        tags = {tag for tag, _ in page.seen}
        self.assertFalse(tags & {'script', 'link', 'img', 'iframe', 'object', 'form', 'b'}, tags)
        for _, attributes in page.seen:
            for name, value in attributes.items():
                self.assertFalse(name.startswith('on') or name == 'src', name)
                if name == 'href':
                    self.assertRegex(value, '^#')
        ids = {attributes.get('id') for _, attributes in page.seen}
        self.assertLessEqual({attributes['href'][1:] for _, attributes in page.seen if 'href' in attributes}, ids)
        self.assertEqual(sum(tag == 'svg' for tag, _ in page.seen), 2)
        for text in 'media/<b>.png', 'missing', 'named by a signature', 'nothing leads there', 'outside the package':
            self.assertIn(text, page.text)
        self.assertIn("default-src 'none'", str(page.seen))

    def test_own_signatures_are_verified(self):
        self.do('keygen k', 'sign good.docx --profile opcmodel --key k.key --public k.pub')
        rules = 'M6.1 M6.3 M6.7 M6.11 M6.14 M6.16 M6.24 M6.26 M6.30 SEC-71 SEC-72 SEC-74'
        check = 'check --fail-on warning ' + ''.join(' --rule ' + rule for rule in rules.split())
        self.assertEqual(self.do(check + ' good.docx'), '1 file: 0 errors, 0 warnings, 0 infos\n')
        self.write('new', '<w:document xmlns:w="urn:w"/>')
        self.do('sign bad.docx --profile opcmodel --key k.key --public k.pub', 'put bad.docx /word/document.xml new --break-signatures',
                'sign good.docx --key k.key')
        self.assertIn('INFO(M6.30): good.docx!/_xmlsignatures/sig2.xml: ', self.do(check + ' good.docx'))
        self.assertIn('ERROR(M6.30): bad.docx!/_xmlsignatures/sig1.xml: ', self.run_tool(check + ' bad.docx').output)


class Explain(OpctoolCase):
    def test_rules_have_the_same_texts_everywhere(self):
        rules = json.loads(self.do('explain --json'))
        self.assertGreater(len(rules), 60)
        for arguments, explained in (('explain', rules), ('explain M3.10', [rule for rule in rules if rule['rule'] == 'M3.10'])):
            for option in '--json=2', '--jsonl':
                status, (envelope, ) = self.envelopes(arguments, option)
                self.assertEqual((status, envelope['file'], envelope['result']), (0, None, explained))
        lines = self.do('explain').splitlines()
        self.assertEqual([line.split()[0] for line in lines[1:]], [rule['rule'] for rule in rules])
        for rule in rules[:3]:
            self.assertEqual(json.loads(self.do(f"explain {rule['rule'].lower()} --json")), rule)
            text = self.do('explain ' + rule['rule'])
            for member in 'statement', 'cause', 'writers', 'readers', 'remedy':
                self.assertIn(rule[member], ' '.join(text.split()))
            self.assertLessEqual(max(map(len, text.splitlines())), 80)
        for rule, line in (('P1-5', 'error; profiles: office; ECMA-376 Part 1'),
                           ('M1.30b', 'warning; profiles: opc; ECMA-376 Part 2: M1.30')):
            self.assertEqual(self.do('explain ' + rule).splitlines()[1], line)
        self.assert_wrong_usage('explain M99')


if __name__ == '__main__':
    unittest.main()
