"""What the database holds about one file, as plain values that can go from one machine to another."""
from __future__ import annotations

from typing import Any, NamedTuple
from urllib.parse import urlsplit

from .._scanning import ScanResult, _signature

FILE_COLUMNS = ("format", "description", "media_type", "is_package", "conformance", "has_macros", "is_encrypted",
                "main_part", "signature_state", "properties_failure", "unlisted_findings", "error_class", "error_kind",
                "error_code", "error_message", "error_part", "error_relationship")
TABLES = {
    "parts": ("name", "content_type", "size"),
    "relationships": ("source", "id", "type", "target", "resolved", "is_external", "target_exists"),
    "properties": ("name", "value"),
    "externals": ("effect", "place", "host", "source", "id", "type", "target"),
    "signatures": ("profile", "name", "part", "signer", "fingerprint", "time", "holds", "cryptography", "coverage",
                   "trust", "reason"),
    "findings": ("rule", "severity", "part", "item", "relationship", "target", "line", "message", "fingerprint"),
}


class FileRows(NamedTuple):
    file: tuple[Any, ...]  #: by FILE_COLUMNS
    tables: dict[str, list[tuple[Any, ...]]]  #: by TABLES

    @property
    def has_failed(self) -> bool:
        return self.file[FILE_COLUMNS.index("error_class")] is not None


def host_of(place: str, target: str) -> str | None:
    """The host that a target on the web or on a share, or of mail, belongs to."""
    plain = target.strip().replace("\\", "/")
    try:
        if place == "web":
            return urlsplit(plain).hostname
        if place == "share":
            return plain.split(":", 1)[-1].lstrip("/").split("/", 1)[0].lower() or None
    except ValueError:
        return None
    return plain.split("?", 1)[0].rpartition("@")[2].lower() or None if place == "mail" else None


def _properties(values: dict[str, Any] | None) -> list[tuple[Any, ...]]:
    rows: list[tuple[Any, ...]] = []
    for name, value in (values or {}).items():
        texts = [value] if isinstance(value, str) else [keyword["text"] for keyword in value]
        rows.extend((name, text) for text in texts)
    return rows


def rows_of(result: ScanResult) -> FileRows:
    found = result.to_dict()
    kind, error = found.get("format") or {}, found["error"] or {}
    signatures, findings = found.get("signatures") or {}, found.get("findings") or {}
    file = (kind.get("format"), kind.get("description"), kind.get("mediaType"), kind.get("package"),
            kind.get("conformance"), kind.get("macros"), kind.get("encrypted"), kind.get("mainPart"),
            signatures.get("state"), found.get("propertiesFailure"),
            sum(findings["unlisted"].values()) if findings else None,
            *(error.get(name) for name in ("class", "kind", "code", "message", "part", "relationship")))
    return FileRows(file, {
        "parts": [(row["name"], row["contentType"], row["size"]) for row in found.get("parts", ())],
        "relationships": [(row["source"], row["id"], row["type"], row["target"], row["resolved"],
                           row["mode"] == "External", row["exists"]) for row in found.get("relationships", ())],
        "properties": _properties(found.get("properties")),
        "externals": [(row["effect"], row["place"], host_of(row["place"], row["target"]), row["source"], row["id"],
                       row["type"], row["target"]) for row in found.get("externals", ())],
        "signatures": [tuple(getattr(row, column) for column in TABLES["signatures"])
                       for row in map(_signature, signatures.get("signatures", ()))],
        "findings": [tuple(row[column] for column in TABLES["findings"]) for row in findings.get("findings", ())],
    })


def failed_rows(kind: str, message: str) -> FileRows:
    """Of a file that couldn't be looked at at all."""
    values = dict.fromkeys(FILE_COLUMNS)
    values.update(error_class="OpcError", error_kind=kind, error_code=0, error_message=message)
    return FileRows(tuple(values.values()), {name: [] for name in TABLES})
