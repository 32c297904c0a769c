"""The command line of an audit."""
from __future__ import annotations

import argparse
import os
import sqlite3
import sys
from typing import Callable, Iterator

from .. import _opcmodel
from .._scanning import ASPECTS, PROFILES
from .database import Database, FoundFile
from .progress import Progress
from .report import write_report
from .run import audit_files, files_to_scan


def _names(known: list[str]) -> Callable[[str], list[str]]:
    def parse(text: str) -> list[str]:
        names = text.split(",")
        unknown = [name for name in names if name not in known]
        if unknown:
            raise argparse.ArgumentTypeError(f"{unknown[0]!r} isn't one of {', '.join(known)}")
        return names

    return parse


def _positive(text: str) -> int:
    if not text.isdecimal() or int(text) < 1:
        raise argparse.ArgumentTypeError(f"{text!r} is no number from 1")
    return int(text)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python3 -m opcmodel.audit",
        description="Scans packages, and writes what they are, hold and load from outside, who signed them and what is wrong"
                    " with them into an SQLite database. A further run scans only what is new or has changed; a run that was"
                    " interrupted goes on.")
    parser.add_argument("paths", nargs="*", metavar="PATH", help="a file or a folder; with --dask, a URL that fsspec knows")
    parser.add_argument("-o", "--output", default="audit.sqlite", metavar="FILE", help="the database (%(default)s)")
    parser.add_argument("--report", metavar="FILE", help="write a summary of the database as HTML")
    parser.add_argument("--what", type=_names([*ASPECTS]), default=[*ASPECTS], metavar="LIST",
                        help=f"of {','.join(ASPECTS)}; everything without it")
    parser.add_argument("--profile", type=_names([*PROFILES]), default=["opc", "security"], metavar="LIST",
                        help="rules of the findings, of opc,security,office (opc,security)")
    parser.add_argument("-j", "--jobs", type=_positive, metavar="N", help="threads; one for each core without it")
    selection = parser.add_mutually_exclusive_group()
    selection.add_argument("--ext", type=lambda text: text.lower().replace(".", "").split(","), metavar="LIST",
                           help="scan the files with these extensions in folders, instead of those of known formats")
    selection.add_argument("--all-files", action="store_true", help="scan every file in folders")
    parser.add_argument("--again", action="store_true", help="scan what hasn't changed, too")
    parser.add_argument("--dask", metavar="ADDRESS", help="scan on the cluster of this Dask scheduler")
    parser.add_argument("-q", "--quiet", action="store_true", help="print nothing but errors")
    return parser


def _scan(arguments: argparse.Namespace, database: Database, progress: Progress) -> None:
    extensions = None if arguments.all_files else set(arguments.ext or _opcmodel.known_extensions())
    if arguments.dask:
        from .cluster import audit_on_cluster, find_urls
        roots = find_urls(arguments.paths)
        audit_on_cluster(arguments.dask, roots, database, arguments.what, arguments.profile, extensions, arguments.again,
                         progress)
    else:
        roots = [os.path.abspath(path) for path in arguments.paths]
        files: Iterator[FoundFile] = files_to_scan(arguments.paths, database, arguments.what, extensions, arguments.again,
                                                   progress)
        audit_files(files, database, arguments.what, arguments.profile, arguments.jobs, progress)
    vanished = database.mark_vanished(roots)
    progress.tell(progress.text() + (f", {vanished:,} have vanished" if vanished else ""))


def main() -> int:
    parser = _parser()
    arguments = parser.parse_args()
    if not arguments.paths and not arguments.report:
        parser.error("give a PATH, or --report for a summary of what the database has")
    if not arguments.paths and not os.path.exists(arguments.output):
        parser.error(f"there is no database {arguments.output}")
    progress = Progress(arguments.quiet)
    try:
        with Database(arguments.output) as database:
            if arguments.paths:
                _scan(arguments, database, progress)
            if arguments.report:
                write_report(database, arguments.report)
    except KeyboardInterrupt:
        progress.tell("interrupted; the same command goes on")
        return 130
    except (OSError, ValueError, sqlite3.Error) as failure:
        progress.problem(str(failure))
    return 3 if progress.problems else 0


if __name__ == "__main__":
    sys.exit(main())
