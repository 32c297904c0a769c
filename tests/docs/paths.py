"""Checks that each file that a document names exists: paths.py ROOT."""
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
tracked = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard'], cwd=root, check=True, capture_output=True,
                         text=True).stdout.split()
missing = []
for document in [*root.glob('*.md'), *root.glob('docs/*.md')]:
    text = re.sub(r'^```.*?^```', '', document.read_text(encoding='utf-8'), flags=re.M | re.S)
    for name in re.findall(r'`(?:\./)?([\w./-]+\.(?:cpp|hpp|xsd|py|md|txt))`', text):
        if not any(('/' + path).endswith('/' + name) for path in tracked):
            missing.append(f'{document.relative_to(root)}: there is no {name}')
print('\n'.join(missing))
sys.exit(1 if missing else 0)
