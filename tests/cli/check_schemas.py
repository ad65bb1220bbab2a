#!/usr/bin/env python3
"""Checks what `keys` and `deps` give as JSON against their schemas, by python3-jsonschema.

    check_schemas.py COMMAND SCHEMAS MAP

COMMAND is run on MAP. Each line has to be valid, and what is broken in a way that matters must not
be. Ends with 1 where that isn't so, and with 77 where the package is missing.
"""

import copy
import json
import subprocess
import sys
from pathlib import Path

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)


def lines_of(command, *arguments):
    done = subprocess.run([command, *arguments, "--format", "json", "--diagnostics", "none"],
                          check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return [json.loads(line) for line in done.stdout.decode("utf-8").splitlines()]


def without_each(line):
    for name in line:
        broken = copy.deepcopy(line)
        del broken[name]
        yield f"without {name}", broken


def with_values(line, values):
    for name, value in values.items():
        yield f"{name} is {value!r}", {**line, name: value}


def broken_keys(lines):
    used = next(line for line in lines if line["state"] == "used")
    yield from without_each(used)
    yield from with_values(used, {
        "key": None, "state": "shadowed", "file": "", "line": 0, "column": "3", "target": "",
        "text": "", "chain": [""], "uses": 3, "definitions": [],
    })
    yield "used by nobody", {**used, "uses": []}
    yield "unused, and used", {**used, "state": "unused"}
    yield "a line without a file", {**used, "file": None}
    yield "a use without a column", {**used, "uses": [{"file": "/a", "line": 1}]}
    definition = used["definitions"][0]
    for what, broken in without_each(definition):
        yield f"a definition {what}", {**used, "definitions": [broken]}
    yield "a definition that is used", {**used, "definitions": [{**definition, "state": "used"}]}


def broken_files(lines):
    topic = next(line for line in lines if line["kind"] == "topic")
    yield from without_each(topic)
    yield from with_values(topic, {
        "file": None, "kind": "map", "state": "missing", "from": "/a",
    })
    yield "a column without a line", {**topic, "from": {"file": "/a", "line": None, "column": 1}}
    yield "a place without a file", {**topic, "from": {"file": None, "line": 1, "column": 1}}


def broken_edges(lines):
    yield from without_each(lines[0])
    yield from with_values(lines[0], {"to": "", "kind": "", "from": []})


def faults_of(schema_file, lines, broken):
    schema = json.loads(schema_file.read_text(encoding="utf-8"))
    validator_class = jsonschema.validators.validator_for(schema)
    validator_class.check_schema(schema)
    validator = validator_class(schema)
    for number, line in enumerate(lines, 1):
        for error in validator.iter_errors(line):
            yield f"{schema_file.name}: line {number}: {error.message}"
    for what, line in broken(lines):
        if validator.is_valid(line):
            yield f"{schema_file.name}: valid, though it is wrong: {what}"


def main():
    command, schemas, ditamap = sys.argv[1], Path(sys.argv[2]), sys.argv[3]
    faults = []
    count = 0
    for arguments, schema, broken in (
            (["keys"], "keys.schema.json", broken_keys),
            (["deps"], "dependencies.schema.json", broken_files),
            (["deps", "--edges"], "dependencies.schema.json", broken_edges)):
        lines = lines_of(command, arguments[0], ditamap, *arguments[1:])
        count += len(lines)
        faults += faults_of(schemas / schema, lines, broken)
    for fault in faults:
        print(fault)
    print(f"{count} lines, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
