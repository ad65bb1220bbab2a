#!/usr/bin/env python3
"""Checks that python3-junitparser reads the JUnit format of findings.

    check_junit.py REPORT FINDINGS

Each file of FINDINGS, the same run as JSON, has to be a test case of REPORT that fails when the file
has an error. Ends with 1 where that isn't so, and with 77 where the package is missing.
"""

import json
import sys

try:
    import junitparser
except ImportError:
    print("python3-junitparser is not installed")
    sys.exit(77)


def main():
    with open(sys.argv[2], encoding="utf-8", newline="\n") as file:
        findings = [json.loads(line) for line in file]
    findings = [finding for finding in findings if not finding.get("artefact", True)]
    files = {finding["file"] for finding in findings if finding["file"]}
    failing = {finding["file"] for finding in findings
               if finding["file"] and finding["severity"] == "error"}

    suites = list(junitparser.JUnitXml.fromfile(sys.argv[1]))
    faults = [] if len(suites) == 1 else [f"{len(suites)} suites"]
    suite = suites[0]
    cases = list(suite)
    failed = [case for case in cases
              if any(isinstance(result, junitparser.Failure) for result in case.result)]
    for what, is_so in {
        "the suite's name": suite.name == "marrowpress",
        "a test case for each file": len({case.name for case in cases}) == len(cases) == len(files),
        "a failure for each file with errors": len(failed) == len(failing) > 0,
        "the suite's count of tests": suite.tests == len(cases),
        "the suite's count of failures": suite.failures == len(failed),
        "the suite's time": suite.time > 0,
        "a text for each failure": all(case.result[0].message and case.result[0].text
                                       for case in failed),
        "output where there is no failure": all(case.system_out for case in cases
                                                if case not in failed),
    }.items():
        if not is_so:
            faults.append(f"not as it should be: {what}")
    for fault in faults:
        print(fault)
    print(f"{len(cases)} test cases, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
