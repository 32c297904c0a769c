"""Runs a file of tests: run.py FILE REPORT. The report is in the form of JUnit."""
import os
import sys

if "OPCMODEL_PRELOAD" in os.environ and "LD_PRELOAD" not in os.environ:
    os.environ["LD_PRELOAD"] = os.environ["OPCMODEL_PRELOAD"]
    os.execv(sys.executable, [sys.executable, *sys.argv])

import pytest  # noqa: E402

if os.path.exists(sys.argv[2]):
    os.remove(sys.argv[2])
sys.exit(pytest.main(["-q", "-p", "no:cacheprovider", f"--junitxml={sys.argv[2]}", sys.argv[1]]))
