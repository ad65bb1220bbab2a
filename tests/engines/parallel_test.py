#!/usr/bin/env python3
"""What `batch emit parallel` writes, run by GNU parallel: tests/engines/parallel_test.py [--command COMMAND]
"""

import csv
import subprocess
import time

from engines import COUNT, EngineTest, end_group, main

FAILING = {3: 1, 11: 1, 4: 3, 9: 3, 14: 3, 19: 3}


class ParallelTest(EngineTest):
    programs = ("parallel",)

    def setUp(self):
        super().setUp()
        self.night.make_plan()
        self.script = self.night.emit("parallel", self.night.plan)

    def parallel(self, *more):
        # It keeps settings in the user's folder.
        return self.night.call(["sh", self.script, *more], HOME=str(self.night.folder))

    def logged(self):
        """The exit code of each job by the number that its command has, in the order of the log."""
        with (self.night.results / "parallel.log").open(encoding="utf-8", newline="") as log:
            rows = list(csv.DictReader(log, delimiter="\t", quoting=csv.QUOTE_NONE))
        return [(int(row["Command"].rpartition(" ")[2]), int(row["Exitval"])) for row in rows]

    def test_all_jobs_run_and_the_log_has_each(self):
        self.expect(0, self.parallel("--jobs", "2"))
        self.assertEqual(sorted(self.logged()), [(index, 0) for index in range(COUNT)])
        ended, _ = self.night.merge()
        self.expect(0, ended)

    def test_the_exit_status_counts_the_failed_and_a_retry_runs_only_those(self):
        for index in (3, 11):
            self.night.break_map(index)
        missing = self.night.shared(4)
        (self.night.sources / missing).unlink()
        self.expect(len(FAILING), self.parallel("--jobs", "2"))
        codes = dict(self.logged())
        self.assertEqual(codes, {index: FAILING.get(index, 0) for index in range(COUNT)})
        ended, _ = self.night.merge()
        self.expect(1, ended)

        self.night.write_map(3)
        self.night.write_topic(missing)
        before = self.night.marks()
        self.expect(1, self.parallel("--retry-failed"))
        after = self.night.marks()
        self.assertEqual([index for index in range(COUNT) if before[index] != after[index]],
                         sorted(FAILING))
        again = self.logged()[COUNT:]
        self.assertEqual(dict(again), {index: int(index == 11) for index in FAILING})

        self.night.write_map(11)
        self.expect(0, self.parallel("--retry-failed"))
        self.assertEqual(self.logged()[COUNT + len(FAILING):], [(11, 0)])
        ended, _ = self.night.merge()
        self.expect(0, ended)

    def test_no_job_starts_without_the_memory_that_is_asked_for(self):
        self.assertIn(" --memfree 256M ", self.script.read_text(encoding="utf-8"))
        process = subprocess.Popen(
            ["sh", self.script, "--memfree", "1000T"], cwd=self.night.folder,
            env=self.night.environment(HOME=str(self.night.folder)), stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        try:
            time.sleep(3)
            self.assertIsNone(process.poll())
        finally:
            end_group(process)
        self.assertEqual(self.night.states(), {})


if __name__ == "__main__":
    main()
