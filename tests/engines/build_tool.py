"""What make and ninja have in common."""

import os
import time
from pathlib import Path

from engines import COUNT, wait_a_tick


class BuildToolTest:
    """What holds for make and for ninja alike. A test derives from this and from `EngineTest`."""

    LONGEST_LOOK = 0.05

    def start(self):
        """The tool, with the script that makes the plan itself; all has been built once."""
        self.script = self.night.emit(self.engine, self.night.jobs, *self.night.options())
        self.expect(0, self.build())
        self.assertEqual(self.night.states(), dict.fromkeys(range(COUNT), "clean"))
        self.expect_nothing_to_do()

    def build(self, folder=None):
        return self.night.call([*self.tool, self.script], folder)

    def rebuilt(self, code=0):
        """The numbers of the jobs that run in a call of the tool."""
        before = self.night.marks()
        self.expect(code, self.build())
        after = self.night.marks()
        return [index for index in range(COUNT) if before.get(index) != after.get(index)]

    def named_in_rules(self):
        """All files that the rules of jobs depend on."""
        names = set()
        for index in range(COUNT):
            rule = self.night.result(index).with_name(f"{self.night.name(index)}.json.d")
            _, *lines = rule.read_text(encoding="utf-8").partition("\n\n")[0].splitlines()
            names.update(line.removesuffix(" \\").strip() for line in lines)
        return {name.replace("\\", "").replace("$$", "$") for name in names}

    def test_a_second_call_does_nothing_and_takes_no_time(self):
        self.start()
        times = []
        for _ in range(5):
            begin = time.monotonic()
            self.expect_nothing_to_do()
            times.append(time.monotonic() - begin)
        self.assertLess(min(times), self.LONGEST_LOOK)
        ended, _ = self.night.merge(self.night.results / "plan.jsonl")
        self.expect(0, ended)

    def test_a_changed_topic_runs_the_deliverables_that_reach_it(self):
        self.start()
        for name, reached in ((self.night.shared(2), [2, 7, 12, 17]), (self.night.topic(5), [5])):
            wait_a_tick()
            self.night.write_topic(name, "Tighten it.")
            self.assertEqual(self.rebuilt(), reached)
            for index in reached:
                self.assertIn("Tighten it.", self.night.output(index).read_text(encoding="utf-8"))
            self.expect_nothing_to_do()

    def test_a_topic_that_is_gone_leaves_no_dead_rule(self):
        self.start()
        wait_a_tick()
        (self.night.sources / self.night.shared(3)).unlink()
        for index in (3, 8, 13, 18):
            self.night.write_map(index, [self.night.topic(index)])
        self.assertEqual(self.rebuilt(), [3, 8, 13, 18])
        self.expect_nothing_to_do()

    def test_a_job_that_missed_a_topic_fails_until_it_is_there(self):
        self.start()
        wait_a_tick()
        missing = self.night.sources / self.night.shared(4)
        missing.unlink()
        for _ in range(2):
            self.assertEqual(self.rebuilt(self.failure), [4, 9, 14, 19])
            self.assertEqual(self.night.states()[9], "findings")
        named = self.named_in_rules()
        self.assertNotIn(str(missing), named)
        self.assertEqual([name for name in named if not Path(name).is_file()], [])
        wait_a_tick()
        self.night.write_topic(missing.name)
        self.assertEqual(self.rebuilt(), [4, 9, 14, 19])
        self.expect_nothing_to_do()

    def test_a_job_that_fails_keeps_no_other_from_running(self):
        self.start()
        wait_a_tick()
        self.night.break_map(0)
        self.night.write_topic(self.night.topic(19), "Tighten it.")
        self.assertEqual(self.rebuilt(self.failure), [0, 19])
        self.assertEqual(self.night.states()[0], "failed")
        wait_a_tick()
        self.night.write_map(0)
        self.assertEqual(self.rebuilt(), [0])
        self.expect_nothing_to_do()

    def test_a_rule_is_renamed_into_place(self):
        self.start()
        rule = self.night.result(1).with_name(f"{self.night.name(1)}.json.d")
        with rule.open(encoding="utf-8") as old:
            wait_a_tick()
            self.night.write_map(1, [self.night.topic(1)])
            self.assertEqual(self.rebuilt(), [1])
            self.assertNotEqual(os.fstat(old.fileno()).st_ino, rule.stat().st_ino)
            self.assertIn("Gemeinsames", old.read())
        self.assertNotIn("Gemeinsames", rule.read_text(encoding="utf-8"))

    def test_a_plan_is_made_again_and_runs_no_job_where_it_comes_out_the_same(self):
        self.start()
        wait_a_tick()
        self.night.write_jobs()
        self.assertEqual(self.rebuilt(), [])
        self.expect_nothing_to_do()
        (self.night.results / "plan.jsonl").unlink()
        self.expect(0, self.build())
        self.expect_nothing_to_do()
        wait_a_tick()
        self.night.jobs.write_text("no jobs\n", encoding="utf-8")
        self.assertEqual(self.rebuilt(self.failure), [])

    def test_a_plan_that_comes_out_otherwise_runs_all_jobs(self):
        self.start()
        wait_a_tick()
        text = self.night.jobs.read_text(encoding="utf-8")
        self.night.jobs.write_text(text.replace('"usePrint": false', '"usePrint": true', 1))
        self.assertEqual(self.rebuilt(), list(range(COUNT)))
        self.expect_nothing_to_do()

    def test_an_id_that_no_rule_can_have_is_refused(self):
        text = self.night.jobs.read_text(encoding="utf-8")
        self.night.jobs.write_text(text.replace('"Heft 07 ', '"Heft;07|', 1))
        called = self.night.batch("emit", self.engine, self.night.jobs)
        self.expect(2, called)
        self.assertIn("Heft;07|", called.text)

    def test_it_may_be_called_from_any_folder(self):
        self.script = self.night.emit(self.engine, self.night.jobs, *self.night.options())
        self.expect(0, self.build(self.night.sources))
        self.assertEqual(self.night.states(), dict.fromkeys(range(COUNT), "clean"))

    def test_a_plan_that_is_there_will_do(self):
        self.night.make_plan()
        self.script = self.night.emit(self.engine, self.night.plan)
        self.expect(0, self.build())
        self.expect_nothing_to_do()
        ended, _ = self.night.merge()
        self.expect(0, ended)
