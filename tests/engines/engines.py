"""What the tests of engines share: a night's deliverables, and a test that has them.

An engine gets what `batch emit` writes, as it stands. The names of all files hold what a shell, make,
ninja or YAML would read in a way of its own.
"""

import argparse
import contextlib
import fcntl
import json
import os
import re
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
OTHERS = re.compile("SLURM_.*|SBATCH_.*|JOB_COMPLETION_INDEX|PARALLEL.*|CI_NODE_INDEX|MAKEFLAGS|MAKELEVEL|"
                    "MFLAGS|NINJA_STATUS|XML_CATALOG_FILES|LANGUAGE")
# The last member of a result.
RUN = re.compile(r'^"run":\{.*?(?=^,\{"format":|^\]\})', re.MULTILINE | re.DOTALL)


def href(name):
    """In a mere name no escape is undone."""
    return "./" + urllib.parse.quote(name)


def without_runs(text):
    """A summary without what may differ from one run to the next, and its other bytes as they are."""
    rest, count = RUN.subn("", text)
    if count != len(json.loads(text)["jobs"]):
        raise AssertionError(f"{count} results of a run in {text[:MOST_SHOWN]}")
    return rest


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
        kept = {name: value for name, value in os.environ.items() if not OTHERS.fullmatch(name)}
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

    @contextlib.contextmanager
    def held(self):
        """No job begins meanwhile: each waits for a lock of the folder of results."""
        self.results.mkdir(exist_ok=True)
        folder = os.open(self.results, os.O_RDONLY | os.O_DIRECTORY)
        try:
            fcntl.flock(folder, fcntl.LOCK_EX)
            yield
        finally:
            os.close(folder)

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


class IndexTest(EngineTest):
    """What holds for engines that start a process for each number. One job of the night fails, and
    one is killed and runs again."""

    FAILED = 3
    KILLED = 7

    def setUp(self):
        super().setUp()
        self.night.make_plan()
        self.night.break_map(self.FAILED)

    def start(self, arguments, folder, **more):
        process = subprocess.Popen(
            list(map(str, arguments)), cwd=folder, env=self.night.environment(**more),
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True)
        self.addCleanup(end_group, process)
        return process

    def expect_merge(self, words):
        """The states of the jobs that are not clean, by their number."""
        ended, _ = self.night.merge()
        self.expect(1 if words else 0, ended)
        rows = {self.night.name(index): index for index in range(COUNT)}
        told = {}
        for line in ended.text.splitlines():
            name = next((name for name in rows if line.startswith(name + "  ")), None)
            if name:
                told[rows[name]] = line.removeprefix(name).strip().split("  ")[0]
        self.assertEqual(told, {**dict.fromkeys(range(COUNT), "clean"), **words})

    def check_night(self, arguments_of):
        """Runs each number by `arguments_of`, which gives a command, its folder, and its environment."""
        codes = {}
        for index in range(COUNT):
            arguments, folder, more = arguments_of(index)
            if index == self.KILLED:
                with self.night.held():
                    process = self.start(arguments, folder, **more)
                    time.sleep(0.5)
                    self.assertIsNone(process.poll())
                    end_group(process)
                    codes[index] = process.returncode
            else:
                codes[index] = self.night.call(arguments, folder, **more).code
        self.assertEqual(codes, {**dict.fromkeys(range(COUNT), 0), self.FAILED: 1,
                                 self.KILLED: -signal.SIGKILL})
        self.expect_merge({self.FAILED: "failed", self.KILLED: "not run"})
        arguments, folder, more = arguments_of(self.KILLED)
        self.expect(0, self.night.call(arguments, folder, **more))
        self.expect_merge({self.FAILED: "failed"})


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
