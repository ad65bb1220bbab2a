#!/usr/bin/env python3
"""What `batch emit github` writes, taken as a runner takes it:

    tests/engines/github_test.py [--command COMMAND]

The workflow is parsed, and its step run for each part of the matrix.
"""

import unittest

from engines import COUNT, IndexTest, main

try:
    import yaml
except ImportError:
    yaml = None

PART = "${{ matrix.part }}"


@unittest.skipUnless(yaml, "python3-yaml is not installed")
class GithubTest(IndexTest):
    def setUp(self):
        super().setUp()
        script = self.night.emit("github", self.night.plan)
        self.workflow = yaml.safe_load(script.read_text(encoding="utf-8"))
        self.job = self.workflow["jobs"]["publish"]

    def step_of(self, index):
        run = self.job["steps"][0]["run"].replace(PART, str(self.job["strategy"]["matrix"]["part"][index]))
        return ["bash", "-e", "-c", run], self.job["defaults"]["run"]["working-directory"], {}

    def test_the_matrix_has_a_part_for_each_job_and_goes_on_when_one_fails(self):
        self.assertEqual(self.job["strategy"]["matrix"], {"part": list(range(1, COUNT + 1))})
        self.assertIs(self.job["strategy"]["fail-fast"], False)
        self.assertEqual(self.job["steps"][0]["run"].count("${{"), 1)

    def test_each_part_is_a_job(self):
        self.check_night(self.step_of)

    def test_an_engine_that_counts_from_one_gives_the_same_jobs(self):
        def node(index):
            return [self.night.command, "batch", "run", self.night.plan, "--results",
                    self.night.results, "--index", "env"], "/", {"CI_NODE_INDEX": str(index + 1)}
        self.check_night(node)

    def test_two_engines_at_once_are_a_usage_error(self):
        arguments = [self.night.command, "batch", "run", self.night.plan, "--index", "env"]
        self.expect(2, self.night.call(arguments))
        self.expect(2, self.night.call(arguments, CI_NODE_INDEX="1", PARALLEL_SEQ="1"))


if __name__ == "__main__":
    main()
