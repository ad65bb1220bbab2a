#!/usr/bin/env python3
"""Checks the JSON format of findings against its schema, by python3-jsonschema.

    check_schema.py SCHEMA FINDINGS

Every line of FINDINGS has to be valid, and what is broken in a way that matters must not be. Ends
with 1 where that isn't so, and with 77 where the package is missing.
"""

import copy
import json
import sys

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)


def broken(finding, summary):
    """Lines that are wrong, with what is wrong about each."""
    for name in finding:
        line = copy.deepcopy(finding)
        del line[name]
        yield f"without {name}", line
    for name in summary["summary"]:
        line = copy.deepcopy(summary)
        del line["summary"][name]
        yield f"a summary without {name}", line
    for name, value in {
        "id": "105", "severity": "fatal", "text": None, "file": "", "line": 0, "column": "3",
        "element": "", "via": None, "places": {}, "profile": [None], "artefact": None,
        "hostText": 1,
    }.items():
        yield f"{name} is {value!r}", {**finding, name: value}
    yield "a line without a file", {**finding, "file": None}
    yield "a column without a line", {**finding, "line": None}
    yield "a step without its reference", {**finding, "via": [finding["places"][0]]}
    yield "a place without a column", {**finding, "places": [{"file": "/a", "line": 1}]}
    yield "neither finding nor summary", {}
    yield "no object", []


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    with open(sys.argv[2], encoding="utf-8", newline="\n") as file:
        lines = [json.loads(line) for line in file]
    validator_class = jsonschema.validators.validator_for(schema)
    validator_class.check_schema(schema)
    validator = validator_class(schema)
    faults = []
    for number, line in enumerate(lines, 1):
        faults += [f"line {number}: {error.message}" for error in validator.iter_errors(line)]
    finding, summary = lines[0], lines[-1]
    if not finding.get("via") or not finding.get("places") or "summary" not in summary:
        faults.append("the first line has to show a finding with all members, the last a summary")
    else:
        faults += [f"valid, though it is wrong: {what}"
                   for what, line in broken(finding, summary) if validator.is_valid(line)]
    for fault in faults:
        print(fault)
    print(f"{len(lines)} lines, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
