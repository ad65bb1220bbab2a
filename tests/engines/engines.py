"""What the tests of engines share: a night's deliverables, and a test that has them.

An engine gets what `batch emit` writes, as it stands. The names of all files hold what a shell, make,
ninja or YAML would read in a way of its own.
"""

import argparse
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/harness"))
# pylint: disable-next=wrong-import-position
from harness import DTDS, MAP, SKIPPED, TOPIC  # noqa: E402

COUNT = 20
# Each is in the map of every fifth deliverable.
SHARED = 5
TIMEOUT = 40
MOST_SHOWN = 2000
# What is referred to cannot have a "#" in its path, and a backslash is a separator in all that the
# module reads and writes.
PLAIN = "$x: ü"
ODD = "#1 " + PLAIN
ODDEST = ODD + " \\"
# By which engines, and make within make, would tell a process of an earlier one.
OTHERS = ("SLURM_ARRAY_TASK_ID", "JOB_COMPLETION_INDEX", "PARALLEL_SEQ", "CI_NODE_INDEX", "MAKEFLAGS",
          "MAKELEVEL", "MFLAGS", "NINJA_STATUS", "PARALLEL", "XML_CATALOG_FILES", "LANGUAGE")


def href(name):
    """In a mere name no escape is undone."""
    return "./" + urllib.parse.quote(name)


def without_runs(text):
    """A summary without what may differ from one run to the next."""
    whole = json.loads(text)
    for job in whole["jobs"]:
        del job["run"]
    return json.dumps(whole, ensure_ascii=False, indent=1)


def wait_a_tick():
    """What is written next is newer than all that is there."""
    time.sleep(0.02)


def end_group(process):
    """Nothing that the process has started is left."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


class Called:
    """How a program ended, and what it said."""

    def __init__(self, code, text):
        self.code = code
        self.text = text

    def __str__(self):
        return f"exit code {self.code}\n{self.text[:MOST_SHOWN]}"


class Night:
    """Sources of twenty deliverables, a file of jobs, and places for a plan, outputs and results."""

    def __init__(self, folder, command):
        self.folder = folder
        self.command = command
        self.sources = folder / f"Quellen {PLAIN}"
        self.out = folder / f"Ausgaben {PLAIN}"
        self.jobs = folder / f"Aufträge {ODDEST}.jsonl"
        self.plan = folder / f"Plan {ODDEST}.jsonl"
        self.results = folder / f"Ergebnisse {ODDEST}"
        self.sources.mkdir()
        shutil.copytree(DTDS, folder / f"DTDs {ODD}")
        for number in range(SHARED):
            self.write_topic(self.shared(number))
        for index in range(COUNT):
            self.write_topic(self.topic(index))
            self.write_map(index)
        self.write_jobs()

    @staticmethod
    def name(index):
        return f"Heft {index:02} {ODDEST}"

    @staticmethod
    def topic(index):
        return f"Thema {index:02} {PLAIN}.dita"

    @staticmethod
    def shared(number):
        return f"Gemeinsames {number} {PLAIN}.dita"

    def map(self, index):
        return self.sources / f"Heft {index:02} {ODD}.ditamap"

    def output(self, index):
        return self.out / f"Heft {index:02} {PLAIN}.dita"

    def result(self, index):
        return self.results / f"{self.name(index)}.json"

    def write_topic(self, name, text="Loosen the collar."):
        (self.sources / name).write_text(TOPIC.format("t", name, f"<p>{text}</p>"), encoding="utf-8")

    def write_map(self, index, names=None):
        names = names or [self.topic(index), self.shared(index % SHARED)]
        references = "".join(f'<topicref href="{href(name)}"/>\n' for name in names)
        self.map(index).write_text(MAP.format(references), encoding="utf-8")

    def break_map(self, index):
        """So that its job fails."""
        self.map(index).write_text("<map><topicref", encoding="utf-8")

    def write_jobs(self):
        """All paths are relative, as seen from the night's folder."""
        lines = [{"id": self.name(index), "request": {"type": "PublishComp", "params": {
            "ditamap": str(self.map(index).relative_to(self.folder)),
            "output": str(self.output(index).relative_to(self.folder)), "ditaVal": "",
            "keyspaceDocDtd": "map.dtd", "compositeDocDtd": "ditabase.dtd", "usePrint": False}}}
            for index in range(COUNT)]
        self.jobs.write_text("".join(json.dumps(line) + "\n" for line in lines), encoding="utf-8")

    @staticmethod
    def environment(**more):
        kept = {name: value for name, value in os.environ.items() if name not in OTHERS}
        return {**kept, "LC_ALL": "C.UTF-8", **more}

    def call(self, arguments, folder=None, **more):
        """Runs a program in the night's folder. It and all that it starts are gone at the end."""
        with tempfile.TemporaryFile() as said:
            process = subprocess.Popen(
                list(map(str, arguments)), cwd=folder or self.folder, env=self.environment(**more),
                stdin=subprocess.DEVNULL, stdout=said, stderr=subprocess.STDOUT, start_new_session=True)
            try:
                code = process.wait(timeout=TIMEOUT)
            except subprocess.TimeoutExpired:
                code = None
            finally:
                end_group(process)
            said.seek(0)
            return Called(code, said.read().decode("utf-8", errors="replace"))

    def batch(self, *arguments):
        return self.call([self.command, "batch", *arguments])

    def make_plan(self):
        self.expect(0, self.batch("plan", self.jobs, "--plan", self.plan, *self.options()))

    def options(self):
        return ["--catalog", self.folder / f"DTDs {ODD}/catalog.xml", "--lang", "en"]

    def emit(self, engine, jobs, *options):
        """What it writes, in a file."""
        script = self.folder / f"{engine} {ODDEST}"
        with script.open("wb") as out:
            done = subprocess.run(
                [self.command, "batch", "emit", engine, jobs, "--results", self.results, *options],
                cwd=self.folder, env=self.environment(), check=False, stdout=out,
                stderr=subprocess.PIPE, timeout=TIMEOUT)
        self.expect(0, Called(done.returncode, done.stderr.decode("utf-8")))
        return script

    def merge(self, plan=None):
        """How it ends, and the summary without what may differ."""
        file = self.folder / "summary.json"
        ended = self.batch("merge", self.results, "--plan", plan or self.plan, "--summary", file)
        return ended, without_runs(file.read_text(encoding="utf-8"))

    def states(self):
        """The state of each job that has a result, by its number."""
        return {index: json.loads(self.result(index).read_text(encoding="utf-8"))["state"]
                for index in range(COUNT) if self.result(index).exists()}

    def marks(self):
        """What is another one when a result was made again."""
        marks = {}
        for index in range(COUNT):
            if self.result(index).exists():
                stat = self.result(index).stat()
                marks[index] = (stat.st_ino, stat.st_ctime_ns)
        return marks

    @staticmethod
    def expect(code, called):
        if called.code != code:
            raise AssertionError(f"not {code}: {called}")


class EngineTest(unittest.TestCase):
    """A night for each test, in a folder of its own."""

    command = ROOT / "build/dev/bin/marrowpress"
    # What has to be there.
    programs = ()
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        for program in cls.programs:
            if not shutil.which(program):
                raise unittest.SkipTest(f"{program} is not installed")

    def setUp(self):
        # pylint: disable-next=consider-using-with
        temporary = tempfile.TemporaryDirectory(prefix="marrowpress-engines-")
        self.addCleanup(temporary.cleanup)
        folder = Path(temporary.name).resolve() / f"Nacht {PLAIN}"
        folder.mkdir()
        self.night = Night(folder, self.command)

    def expect(self, code, called):
        self.assertEqual(called.code, code, str(called))


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


def main():
    """Ends the process: 0 when all tests passed, 1 when one did not, 77 when one was skipped."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--command", type=lambda path: Path(path).resolve(), default=EngineTest.command,
                        help="the command, unless it is that of the preset dev")
    options, rest = parser.parse_known_args()
    if not options.command.is_file():
        parser.error(f"{options.command} is not there; build it first")
    EngineTest.command = options.command
    program = unittest.main(argv=[sys.argv[0], "-v", *rest], exit=False)
    if not program.result.wasSuccessful() or not program.result.testsRun + len(program.result.skipped):
        sys.exit(1)
    sys.exit(SKIPPED if program.result.skipped else 0)
