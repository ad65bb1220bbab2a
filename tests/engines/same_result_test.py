#!/usr/bin/env python3
"""One plan has one result, whoever runs it: tests/engines/same_result_test.py [--command COMMAND]

What `batch merge --summary` writes is the same, byte by byte, as after a local batch, but for the members
`run` of the results. Of the twenty jobs one fails, and four have findings.
"""

import json
import shutil
import unittest

import kubernetes_test
from engines import COUNT, EngineTest, main
from slurm_node import SlurmNode

EXPECTED = {**dict.fromkeys(range(COUNT), "clean"), 3: "failed",
            **dict.fromkeys((4, 9, 14, 19), "findings")}


class SameResultTest(EngineTest):
    def setUp(self):
        super().setUp()
        self.night.break_map(3)
        (self.night.sources / self.night.shared(4)).unlink()
        self.night.make_plan()
        self.expect(1, self.local("--jobs", "2"))
        self.assertEqual(self.night.states(), EXPECTED)
        self.local_merge = self.merged()
        shutil.rmtree(self.night.results)
        shutil.rmtree(self.night.out)
        # Where engines are called makes no difference.
        self.elsewhere = self.night.folder / "elsewhere"
        self.elsewhere.mkdir()

    def local(self, *more):
        return self.night.batch("run", self.night.plan, "--results", self.night.results, *more)

    def merged(self):
        ended, summary = self.night.merge()
        self.expect(1, ended)
        return summary

    def need(self, *programs):
        for program in programs:
            if not shutil.which(program):
                self.skipTest(f"{program} is not installed")

    def expect_the_same(self):
        self.assertEqual(self.night.states(), EXPECTED)
        merged = self.merged()
        if merged != self.local_merge:
            self.assertEqual(self.local_merge.splitlines(), merged.splitlines())

    def test_in_parts(self):
        for part in "3/3", "1/3", "2/3":
            self.assertIn(self.local("--shard", part).code, (1, 3))
        self.expect_the_same()

    def test_ninja(self):
        self.need("ninja")
        script = self.night.emit("ninja", self.night.plan)
        self.expect(1, self.night.call(["ninja", "-k", "0", "-f", script], self.elsewhere))
        self.expect_the_same()

    def test_make(self):
        self.need("make")
        script = self.night.emit("make", self.night.plan)
        self.expect(2, self.night.call(["make", "--keep-going", "--jobs=2", "-f", script], self.elsewhere))
        self.expect_the_same()

    def test_parallel(self):
        self.need("parallel")
        script = self.night.emit("parallel", self.night.plan)
        self.expect(5, self.night.call(["sh", script, "--jobs", "2"], self.elsewhere,
                                       HOME=str(self.night.folder)))
        self.expect_the_same()

    @unittest.skipUnless(kubernetes_test.yaml, "python3-yaml is not installed")
    def test_kubernetes(self):
        script = self.night.emit("kubernetes", self.night.plan)
        manifest = kubernetes_test.yaml.safe_load(script.read_text(encoding="utf-8"))
        for index in reversed(range(COUNT)):
            command, folder, environment = kubernetes_test.command_of(manifest, index, self.night)
            self.night.call(command, folder, **environment)
        self.expect_the_same()

    def test_slurm(self):
        self.need(*SlurmNode.PROGRAMS)
        node = SlurmNode(self)
        array = node.submit(self.night.emit("slurm", self.night.plan))
        node.wait_for(array, {index: "COMPLETED" if state == "clean" else "FAILED"
                              for index, state in EXPECTED.items()})
        self.expect_the_same()


class ConflictTest(EngineTest):
    """Nobody but a batch that runs all jobs sees that one reads what another one writes."""

    def setUp(self):
        super().setUp()
        output = self.night.output(11).relative_to(self.night.folder)
        self.night.write_map(12, [self.night.topic(12), f"../{output}"])
        self.night.make_plan()

    def run_plan(self, *more):
        return self.night.batch("run", self.night.plan, "--results", self.night.results, *more)

    def test_the_jobs_have_failed_whoever_ran_them(self):
        self.expect(1, self.run_plan("--jobs", "2"))
        self.expect_conflict()
        shutil.rmtree(self.night.results)
        shutil.rmtree(self.night.out)
        for part in "1/2", "2/2":
            self.run_plan("--shard", part)
        before = self.night.marks()
        self.expect_conflict()
        self.expect_conflict()
        self.assertEqual(self.night.marks(), before)

    def test_the_jobs_may_have_run_one_after_the_other(self):
        self.expect(0, self.night.batch(self.night.jobs, "--results", self.night.results, "--jobs", "2",
                                        "--serialize", *self.night.options()))
        self.expect(0, self.night.batch("merge", self.night.results, "--plan", self.night.plan,
                                        "--serialize"))

    def expect_conflict(self):
        ended, _ = self.night.merge()
        self.expect(1, ended)
        summary = (self.night.folder / "summary.json").read_text(encoding="utf-8")
        failed = [job["id"] for job in json.loads(summary)["jobs"] if job["state"] == "failed"]
        self.assertEqual(failed, [self.night.name(11), self.night.name(12)])
        self.assertEqual(summary.count('"id":"MP302"'), 2)


if __name__ == "__main__":
    main()
