#!/usr/bin/env python3
"""Compares what the package says of real packages with what opctool says: compare_tool.py OPCTOOL FILE_OR_FOLDER…

Needs the package in PYTHONPATH. Prints each difference; the exit status is 1 if there is one."""
import json
import pathlib
import subprocess
import sys
import warnings

import opcmodel as opc


def run(tool, command, path, *options):
    done = subprocess.run([tool, command, "--json=2", path, *options], capture_output=True, text=True, check=False)
    return json.loads(done.stdout) if done.stdout else {}


def told_by_tool(tool, path):
    listing = run(tool, "ls", path)
    if "error" in listing:
        error = listing["error"]
        return {"error": (error["class"], error["code"], error["part"], error["relationship"])}
    rels = run(tool, "rels", path, "--all")
    return {
        "parts": [(one["name"], one["contentType"], one["size"]) for one in listing["result"]],
        "rels": [(one["source"], one["id"], one["type"], one["target"], one["mode"] == "External", one["resolved"], one["exists"])
                 for one in rels["result"]],
        "hidden": len(listing["hidden"]),
        "format": run(tool, "type", path)["result"]["format"],
        "hash": run(tool, "hash", path).get("result", {}).get("sha256"),
        "findings": [(one["rule"], one["message"]) for one in run(tool, "check", path)["result"]["findings"]],
    }


def describe(path):
    try:
        package = opc.open(path)
    except opc.OpcError as failure:
        kind = "Exception" if type(failure) is opc.StoreError else type(failure).__name__
        return {"error": (kind, failure.code, failure.part, failure.relationship)}
    with package:
        def exists(one):
            return None if one.external else one.exists

        rels = [one for source in [package, *package.parts] for one in source.rels.all()]
        told = {
            "parts": [(part.name, part.content_type, part.size if part.size is not None else len(part.read()))
                      for part in package.parts],
            "rels": [(one.source, one.id, one.type, one.target, one.external, one.resolved, exists(one)) for one in rels],
            "hidden": len(package.hidden),
            "format": package.format,
        }
    try:
        told["hash"] = opc.content_hash(path).sha256
    except opc.OpcError:
        told["hash"] = None
    told["findings"] = [(one.rule, one.message) for one in opc.check(path).findings]
    return told


def main(tool, *places):
    warnings.simplefilter("ignore")
    files = [file for place in map(pathlib.Path, places)
             for file in (sorted(place.rglob("*")) if place.is_dir() else [place]) if file.is_file()]
    differences = 0
    for file in files:
        expected, found = told_by_tool(tool, file), describe(file)
        for key in sorted(expected.keys() | found.keys()):
            if expected.get(key) != found.get(key):
                differences += 1
                print(f"{file}: {key}\n  opctool: {str(expected.get(key))[:300]}\n  package: {str(found.get(key))[:300]}")
    print(f"{len(files)} files, {differences} differences")
    sys.exit(1 if differences else 0)


if __name__ == "__main__":
    main(*sys.argv[1:])
