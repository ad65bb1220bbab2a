#!/usr/bin/env python3
"""Checks what `batch` reads and writes against the schemas, by python3-jsonschema.

    check_batch_schemas.py COMMAND SCHEMAS MAP

Plans and runs jobs for MAP, one of which fails. The plan, each result and the summary have to be valid,
and what is broken in a way that matters must not be. Ends with 1 where that isn't so, and with 77 where
the package is missing.
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


class Schemas:
    """The schemas of a folder, which refer to each other by their file names."""

    def __init__(self, folder):
        self.store = {path.name: json.loads(path.read_text(encoding="utf-8"))
                      for path in folder.glob("*.schema.json")}

    def validator(self, name):
        schema = self.store[name]
        validator_class = jsonschema.validators.validator_for(schema)
        validator_class.check_schema(schema)
        resolver = jsonschema.RefResolver(name, schema, store=self.store)
        return validator_class(schema, resolver=resolver)


def job(name, ditamap, folder):
    return {"id": name, "tags": ["night"],
            "request": {"type": "PublishComp",
                        "params": {"ditamap": str(ditamap), "output": f"{folder}/{name}.dita",
                                   "ditaVal": "", "keyspaceDocDtd": "map.dtd",
                                   "compositeDocDtd": "ditabase.dtd", "usePrint": False}}}


def broken_results(result):
    for name in result:
        broken = copy.deepcopy(result)
        del broken[name]
        yield f"without {name}", broken
    for name in result["run"]:
        broken = copy.deepcopy(result)
        del broken["run"][name]
        yield f"without {name} of the run", broken
    for name, value in {"format": 2, "id": 7, "state": "good", "exit": 3, "signal": "9", "status": 1,
                        "request": {}, "options": {}, "findings": [{}], "topics": -1,
                        "dependencies": [{"file": "/a"}], "outputs": [{"path": "/a"}],
                        "versions": {}, "run": {}}.items():
        yield f"{name} is {value!r}", {**result, name: value}
    for what, dependency in {"no digest": {"sha256": "x"}, "no kind": {"kind": "file"}}.items():
        first = {**result["dependencies"][0], **dependency}
        yield f"a dependency with {what}", {**result, "dependencies": [first]}


def broken_jobs(line):
    for name in ("id", "request"):
        yield f"without {name}", {key: value for key, value in line.items() if key != name}
    for name, value in {"id": "", "request": {"type": "PublishComp"}, "tags": "night",
                        "filters": [7], "odd": 1}.items():
        yield f"{name} is {value!r}", {**line, name: value}


def broken_heads(head):
    for name in head:
        yield f"without {name}", {key: value for key, value in head.items() if key != name}
    for name, value in {"plan": 2, "command": "keys", "catalogs": "x", "findings": 1,
                        "failOn": "note", "severities": {"MP208": "bad"}, "language": "fr",
                        "jobs": "2", "digest": "abc"}.items():
        yield f"{name} is {value!r}", {**head, name: value}


def project(ditamap):
    return {"contexts": [{"id": "c", "input": str(ditamap), "profiles": {"ditavals": []}}],
            "publications": [{"id": "p", "transtype": "composite",
                              "params": [{"name": "print", "value": "yes"}]}],
            "deliverables": [{"id": "d", "context": {"idref": "c"}, "output": "out",
                              "publication": {"idref": "p"}}]}


def broken_projects(whole):
    for name in ("contexts", "publications", "deliverables", "includes"):
        yield f"{name} is no list", {**whole, name: {}}
        yield f"{name} is a list of numbers", {**whole, name: [7]}
    for name, value in {"id": 7, "context": [], "output": 7, "publication": "p"}.items():
        deliverable = {**whole["deliverables"][0], name: value}
        yield f"{name} is {value!r}", {**whole, "deliverables": [deliverable]}


def faults_of_projects(schemas, ditamap, run_on):
    """The schema and the command are of one opinion."""
    validator = schemas.validator("project.schema.json")
    good = project(ditamap)
    for what, whole, is_good in [("a good one", good, True),
                                 *((what, broken, False) for what, broken in broken_projects(good))]:
        if validator.is_valid(whole) != is_good:
            yield f"project.schema.json: {what}: valid is {not is_good}"
        code = run_on(json.dumps(whole, indent=1))
        if code != (0 if is_good else 2):
            yield f"project.schema.json: {what}: the command ends with {code}"


def faults_of(schemas, name, values, broken):
    validator = schemas.validator(name)
    for number, value in enumerate(values, 1):
        for error in validator.iter_errors(value):
            yield f"{name}: {number}: {error.message}"
    for what, value in broken(values[0]):
        if validator.is_valid(value):
            yield f"{name}: valid, though it is wrong: {what}"


def main():
    command, ditamap = (str(Path(path).resolve()) for path in (sys.argv[1], sys.argv[3]))
    schemas = Schemas(Path(sys.argv[2]))
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary)
        broken_map = folder / "broken.ditamap"
        broken_map.write_text("<map><topicref", encoding="utf-8")
        jobs = [job("good", ditamap, folder), job("failing", broken_map, folder)]
        (folder / "jobs.jsonl").write_text("".join(json.dumps(line) + "\n" for line in jobs))

        def run(*arguments):
            return subprocess.run([command, *arguments], cwd=folder, check=False,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode

        codes = [run("batch", "plan", "jobs.jsonl", "--plan", "plan.jsonl"),
                 run("batch", "run", "plan.jsonl", "--results", "results"),
                 run("batch", "merge", "results", "--plan", "plan.jsonl", "--summary", "all.json")]
        head, *lines = map(json.loads, (folder / "plan.jsonl").read_text().splitlines())
        results = [json.loads((folder / "results" / f"{name}.json").read_text())
                   for name in ("good", "failing")]
        summary = json.loads((folder / "all.json").read_text())

        def list_project(text):
            (folder / "project.json").write_text(text, encoding="utf-8")
            return run("batch", "list", "project.json")

        faults = list(faults_of_projects(schemas, ditamap, list_project))
    faults += [] if codes == [0, 1, 1] else [f"the exit codes are {codes}"]
    faults += faults_of(schemas, "job.schema.json", jobs + lines, broken_jobs)
    faults += faults_of(schemas, "plan.schema.json", [head], broken_heads)
    faults += faults_of(schemas, "result.schema.json", results, broken_results)
    faults += faults_of(schemas, "summary.schema.json", [summary],
                        lambda whole: [("no jobs", {"exit": 0}), ("no exit", {"jobs": []}),
                                       ("no result", {**whole, "jobs": [{}]})])
    for fault in faults:
        print(fault)
    print(f"{len(lines)} jobs, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
