"""What LibreOffice says of signed packages, a line for each: valid, broken, or none. The system's Python runs it, which has
uno.

    office_judge.py FOLDER [--sign] FILE...

With --sign it signs them first, by the certificate in the NSS database in FOLDER/nss. It has a profile of its own in FOLDER.
"""
import os
import pathlib
import subprocess
import sys
import time

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException

READ, READ_WRITE = 1, 7  # com.sun.star.embed.ElementModes


class Office:
    """A process of LibreOffice, which ends with the block."""

    def __init__(self, folder):
        self.folder = folder

    def __enter__(self):
        environment = {**os.environ, 'HOME': str(self.folder), 'MOZILLA_CERTIFICATE_FOLDER': f'sql:{self.folder}/nss'}
        pipe = f'opcmodel{os.getpid()}'
        self.process = subprocess.Popen(
            ['soffice', '--headless', '--norestore', '--nologo', f'-env:UserInstallation=file://{self.folder}/profile',
             f'--accept=pipe,name={pipe};urp'], env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        context = uno.getComponentContext()
        resolver = context.ServiceManager.createInstanceWithContext('com.sun.star.bridge.UnoUrlResolver', context)
        for _ in range(600):
            try:
                self.context = resolver.resolve(f'uno:pipe,name={pipe};urp;StarOffice.ComponentContext')
                return self
            except NoConnectException:
                time.sleep(0.5)
        self.process.kill()
        raise RuntimeError('LibreOffice does not answer')

    def __exit__(self, *_):
        try:
            self.make('com.sun.star.frame.Desktop').terminate()
            self.process.wait(30)
        except Exception:  # pylint: disable=broad-except # it may have died of a file
            self.process.kill()

    def make(self, service):
        return self.context.ServiceManager.createInstanceWithContext(service, self.context)

    def stream(self, path, mode):
        access = self.make('com.sun.star.ucb.SimpleFileAccess')
        url = pathlib.Path(path).absolute().as_uri()
        return access.openFileRead(url) if mode == READ else access.openFileReadWrite(url)

    def storage(self, path, mode):
        properties = uno.Any('[]com.sun.star.beans.PropertyValue', (PropertyValue('StorageFormat', 0, 'ZipFormat', 0),))
        return uno.invoke(self.make('com.sun.star.embed.StorageFactory'), 'createInstanceWithArguments',
                          ((self.stream(path, mode), mode, properties),))

    def verify(self, path):
        signatures = self.make('com.sun.star.security.DocumentDigitalSignatures')
        found = signatures.verifyDocumentContentSignatures(self.storage(path, READ), None)
        if not found:
            return 'none'
        return 'valid' if all(one.SignatureIsValid for one in found) else 'broken'

    def sign(self, path):
        environment = self.make('com.sun.star.xml.crypto.SEInitializer').createSecurityContext('').getSecurityEnvironment()
        certificate = environment.getPersonalCertificates()[0]
        signatures = self.make('com.sun.star.security.DocumentDigitalSignatures')
        storage = self.storage(path, READ_WRITE)
        if not signatures.signDocumentWithCertificate(certificate, storage, None):
            raise RuntimeError('it does not sign')
        storage.commit()


def judge(office, path, signs):
    if signs:
        office.sign(path)
    return office.verify(path)


def main():
    folder, *files = sys.argv[1:]
    signs = '--sign' in files
    with Office(pathlib.Path(folder).absolute()) as office:
        for path in files:
            if path == '--sign':
                continue
            try:
                print(judge(office, path, signs), flush=True)
            except Exception as failure:  # pylint: disable=broad-except
                print('failed:', ' '.join(str(failure).split())[:200], flush=True)


if __name__ == '__main__':
    main()
