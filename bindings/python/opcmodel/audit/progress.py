"""What a run tells while it goes."""
from __future__ import annotations

import sys
import time


class Progress:
    """Counts files, and shows the counts on a terminal's standard error."""

    def __init__(self, quiet: bool) -> None:
        self.scanned = self.unchanged = self.failed = self.problems = 0
        self._is_shown = not quiet and sys.stderr.isatty()
        self._quiet = quiet
        self._start = time.monotonic()
        self._next = self._start + 0.5

    def add(self, *, failed: bool = False, unchanged: bool = False) -> None:
        self.unchanged += unchanged
        self.scanned += not unchanged
        self.failed += failed
        if self._is_shown and time.monotonic() > self._next:
            self._next = time.monotonic() + 0.2
            sys.stderr.write(f"\r\033[K{self.text()}")
            sys.stderr.flush()

    def text(self) -> str:
        rate = self.scanned / max(time.monotonic() - self._start, 0.001)
        return (f"{self.scanned:,} files scanned, {self.failed:,} of them with an error, {self.unchanged:,} unchanged"
                f" ({rate:,.0f} a second)")

    def tell(self, text: str) -> None:
        """Prints a line, also without a terminal."""
        if not self._quiet:
            self._print(text)

    def problem(self, text: str) -> None:
        """Prints a line whatever was asked for."""
        self.problems += 1
        self._print(text)

    def _print(self, text: str) -> None:
        self.erase()
        print(f"opcmodel.audit: {printable(text)}", file=sys.stderr)

    def erase(self) -> None:
        if self._is_shown:
            sys.stderr.write("\r\033[K")
            sys.stderr.flush()


def printable(text: str) -> str:
    """The text without what could change a terminal, or can't be printed."""
    return "".join(c if c.isprintable() else "\N{REPLACEMENT CHARACTER}" for c in text)
