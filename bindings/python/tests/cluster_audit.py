"""Audits a folder on a Dask cluster of one scheduler and two workers, of which one is killed on the way, and compares the
tables with those that one machine makes.

    cluster_audit.py [COPIES]
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

from test_audit import LOADING, audit, dump, query


def start(*command):
    return subprocess.Popen(command, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL, start_new_session=True)


def fill(archive, copies):
    archive.mkdir()
    for number in range(copies):
        (archive / f"{number:05}.docx").write_bytes(LOADING if number % 7 else b"no package")


def wait_for(condition, process, what):
    for _ in range(1200):
        if condition():
            return
        assert process.poll() is None, f"{what}: the other process has ended"
        time.sleep(0.1)
    sys.exit(f"{what}: nothing came of it in two minutes")


def files_in(folder):
    try:
        return query(folder, "SELECT count(*) FROM files")[0][0]
    except Exception:  # there is no table yet
        return 0


def main(copies="3000"):
    copies = int(copies)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        fill(folder / "archive", copies)
        alone, together = folder / "alone", folder / "together"
        alone.mkdir(), together.mkdir()
        assert audit(alone, folder / "archive", "-q")[0] == 0
        address_file = folder / "scheduler.json"
        scheduler = start("dask-scheduler", "--scheduler-file", str(address_file), "--port", "0", "--no-dashboard")
        workers = []
        try:
            wait_for(address_file.exists, scheduler, "the scheduler")
            workers += [start("dask-worker", "--scheduler-file", str(address_file), "--nthreads", "1", "--no-nanny",
                              "--no-dashboard", "--local-directory", str(folder / f"worker{i}")) for i in range(2)]

            address = json.loads(address_file.read_text())["address"]
            run = audit(together, "file://" + str(folder / "archive"), "-q", "--dask", address, wait=False,
                        setup="database._COMMIT_EVERY = 0")
            wait_for(lambda: files_in(together) > copies // 10, run, "the first files")
            os.killpg(workers[0].pid, signal.SIGKILL)
            done = files_in(together)
            assert done < copies, "the worker was killed too late"
            errors = run.communicate()[1]
            assert run.returncode == 0, errors
            assert dump(together) == dump(alone)
            print(f"{copies} files, one of two workers killed after {done}: the same tables")
        finally:
            for process in [*workers, scheduler]:
                if process.poll() is None:
                    os.killpg(process.pid, signal.SIGKILL)
                process.wait()


if __name__ == "__main__":
    main(*sys.argv[1:])
