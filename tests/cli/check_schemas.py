#!/usr/bin/env python3
"""Checks what the command gives and takes as JSON against the schemas, by python3-jsonschema.

    check_schemas.py COMMAND SCHEMAS MAP CASES

COMMAND is run on MAP. Each line of `keys`, `deps` and `check` has to be valid, and what is broken in a
way that matters must not be. Requests for MAP that are valid have to be served, and those that are not
refused; of the golden publications in the folder CASES, those that were served have to have valid
requests. Ends with 1 where that isn't so, and with 77 where the package is missing.
"""

import copy
import json
import subprocess
import sys
import tempfile
from pathlib import Path

try:
    import jsonschema
except ImportError:
    print("python3-jsonschema is not installed")
    sys.exit(77)


REFUSED = -43


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


def findings_of(command, ditamap):
    done = subprocess.run([command, "check", ditamap, "--diagnostics", "json", "--all"],
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=True)
    return [json.loads(line) for line in done.stderr.decode("utf-8").splitlines()]


def broken_findings(lines):
    finding, summary = lines[0], lines[-1]
    yield "neither finding nor summary", {}
    yield "a finding without a line", {name: value for name, value in finding.items() if name != "line"}
    yield "a summary that is one number", {**summary, "summary": 1}


def requests_for(ditamap, folder):
    """A good request of each kind."""
    params = {"ditamap": str(ditamap), "ditaVal": "", "keyspaceDocDtd": "map.dtd",
              "compositeDocDtd": "ditabase.dtd", "usePrint": False}
    yield {"type": "PublishComp", "params": {**params, "output": f"{folder}/guide.dita"}}
    yield {"type": "PublishFlatBook",
           "params": {**params, "outputDir": str(folder), "generateQSComponentsAtOneLoc": True}}


def broken_requests(request):
    params = request["params"]
    for name, value in {"type": "Publish", "params": []}.items():
        yield f"{name} is {value!r}", {**request, name: value}
        yield f"without {name}", {key: kept for key, kept in request.items() if key != name}
    yield "another type", {**request, "type": "RePublishComp"}
    for name, value in params.items():
        wrong = 1 if isinstance(value, bool) else True
        yield f"{name} is {wrong!r}", {**request, "params": {**params, name: wrong}}
        if isinstance(value, str):
            yield f"{name} with a NUL", {**request, "params": {**params, name: value + "\0"}}
        yield (f"without {name}",
               {**request, "params": {key: kept for key, kept in params.items() if key != name}})


def statuses_of(command, requests, folder):
    """What each of the requests is answered with."""
    files = []
    for request in requests:
        files.append(folder / f"{len(files)}.json")
        files[-1].write_text(json.dumps(request), encoding="utf-8")
    done = subprocess.run([command, "host", *files], check=False, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL)
    return [json.loads(line)["values"][0]["value"] for line in done.stdout.decode("utf-8").splitlines()]


def faults_of_requests(schema_file, command, ditamap):
    """The schema and the module are of one opinion."""
    validator = validator_of(schema_file)
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary)
        tried = []
        for request in requests_for(ditamap.resolve(), folder / "out"):
            tried.append(("a good " + request["type"], request, True))
            tried.append(("more members", {**request, "comment": 1}, True))
            tried.append(("a longer type", {**request, "type": request["type"] + "anion"}, True))
            tried += [(what, broken, False) for what, broken in broken_requests(request)]
        (folder / "out").mkdir()
        statuses = statuses_of(command, [request for _, request, _ in tried], folder)
        if len(statuses) != len(tried):
            yield f"{len(tried)} requests got {len(statuses)} answers"
        for (what, request, is_good), status in zip(tried, statuses):
            if validator.is_valid(request) != is_good:
                yield f"{schema_file.name}: {what}: valid is {not is_good}"
            if status != (0 if is_good else REFUSED):
                yield f"{schema_file.name}: {what}: the module answers {status}"


def faults_of_cases(schema_file, cases):
    validator = validator_of(schema_file)
    served = 0
    for case in sorted(path.parent for path in cases.glob("*/request.json")):
        answer = (case / "expected" / "answer.txt").read_text(encoding="utf-8").splitlines()
        if answer and json.loads(answer[0])["value"] == 0:
            served += 1
            request = json.loads((case / "request.json").read_text(encoding="utf-8"))
            for error in validator.iter_errors(request):
                yield f"{schema_file.name}: {case.name}: {error.message}"
    if served == 0:
        yield f"no publication in {cases} was served"


def validator_of(schema_file):
    schema = json.loads(schema_file.read_text(encoding="utf-8"))
    validator_class = jsonschema.validators.validator_for(schema)
    validator_class.check_schema(schema)
    return validator_class(schema)


def faults_of(schema_file, lines, broken):
    validator = validator_of(schema_file)
    for number, line in enumerate(lines, 1):
        for error in validator.iter_errors(line):
            yield f"{schema_file.name}: line {number}: {error.message}"
    for what, line in broken(lines):
        if validator.is_valid(line):
            yield f"{schema_file.name}: valid, though it is wrong: {what}"


def main():
    command, schemas, ditamap, cases = sys.argv[1], *map(Path, sys.argv[2:])
    lines = findings_of(command, ditamap)
    faults = [*faults_of(schemas / "findings.schema.json", lines, broken_findings),
              *faults_of_requests(schemas / "request.schema.json", command, ditamap),
              *faults_of_cases(schemas / "request.schema.json", cases)]
    count = len(lines)
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
