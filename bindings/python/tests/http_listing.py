#!/usr/bin/env python3
"""Opens and lists a package of 1 GiB over HTTP, from nginx, by urllib and by fsspec, and counts what nginx has sent: less than
1 MiB each. Needs the package in PYTHONPATH, nginx, and python3-fsspec with python3-aiohttp and python3-requests."""
import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request
import zipfile

import opcmodel as opc
from packages import OFFICE_DOCUMENT, RELS, TYPES, relationship

LIMIT = 1 << 20
SIZE = 1 << 30

CONFIGURATION = """
pid {folder}/nginx.pid;
error_log {folder}/error.log;
daemon off;
{user}
events {{}}
http {{
  log_format sent '$bytes_sent';
  access_log {folder}/sent.log sent;
  client_body_temp_path {folder}/body; proxy_temp_path {folder}/proxy; fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi; scgi_temp_path {folder}/scgi;
  server {{ listen 127.0.0.1:{port}; root {folder}; }}
}}
"""


def make_package(path):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_STORED) as archive:
        archive.writestr("[Content_Types].xml", TYPES.format('<Default Extension="bin" ContentType="application/x"/>'))
        archive.writestr("_rels/.rels", RELS.format(relationship("rId1", OFFICE_DOCUMENT, "document.xml")))
        archive.writestr("document.xml", "<document/>")
        for number in range(8):
            with archive.open(f"media/{number}.bin", "w") as item:
                for _ in range(SIZE // 8 >> 20):
                    item.write(bytes(1 << 20))
        archive.writestr("last.xml", "<last/>")


def remote_file_of_the_page():
    page = pathlib.Path(__file__).resolve().parents[3] / "docs/python.md"
    block = re.search(r"^```python\n(import io, urllib.request.*?)^```", page.read_text(encoding="utf-8"), re.M | re.S)
    names = {}
    exec(compile(block.group(1), str(page), "exec"), names)
    return names["RemoteFile"]


def list_package(file):
    with opc.open(file) as package:
        assert [part.name for part in package.parts][:2] == ["/document.xml", "/last.xml"] and len(package) == 10
        assert sum(part.size for part in package.parts) > SIZE
        assert package.rels.by_type(OFFICE_DOCUMENT)[0].part.read() == b"<document/>"
        assert package["/last.xml"].read() == b"<last/>"


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        folder.chmod(0o755)
        make_package(folder / "large.zip")
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        user = "user root;" if os.getuid() == 0 else ""
        (folder / "nginx.conf").write_text(CONFIGURATION.format(folder=folder, port=port, user=user))
        server = subprocess.Popen(["/usr/sbin/nginx", "-c", folder / "nginx.conf"])
        try:
            url = f"http://127.0.0.1:{port}/large.zip"
            for _ in range(100):
                try:
                    urllib.request.urlopen(urllib.request.Request(url, method="HEAD")).close()
                    break
                except OSError:
                    time.sleep(0.1)
            log = folder / "sent.log"
            for kind, make in (("urllib", lambda: remote_file_of_the_page()(url)), ("fsspec", lambda: open_by_fsspec(url))):
                before = len(log.read_text().split())
                list_package(make())
                time.sleep(0.2)
                sent = [int(count) for count in log.read_text().split()[before:]]
                print(f"{kind}: {len(sent)} requests, {sum(sent)} bytes of {(folder / 'large.zip').stat().st_size}")
                assert sum(sent) < LIMIT
        finally:
            server.terminate()
            server.wait()


def open_by_fsspec(url):
    import fsspec

    return fsspec.open(url, block_size=1 << 16, cache_type="readahead").open()


if __name__ == "__main__":
    sys.exit(main())
