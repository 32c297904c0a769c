"""An audit of whole archives of files: what each of them is, holds, loads from outside, who signed it, and what is wrong
with it, in one SQLite database. `python3 -m opcmodel.audit --help` tells how to run it."""
from .database import SCHEMA_VERSION, Database
from .report import write_report
from .rows import FileRows, rows_of
from .run import audit_files

__all__ = ["SCHEMA_VERSION", "Database", "FileRows", "audit_files", "rows_of", "write_report"]
