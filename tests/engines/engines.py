"""What the tests of engines share: a night's deliverables, and a test that has them.

An engine gets what `batch emit` writes, as it stands. The names of all files hold what a shell, make,
ninja or YAML would read in a way of its own.
"""

import argparse
import contextlib
import fcntl
import json
import os
import pwd
import re
import shutil
import signal
import socket
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


def free_ports(count):
    with contextlib.ExitStack() as sockets:
        held = [sockets.enter_context(socket.socket()) for _ in range(count)]
        for one in held:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in held]


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


class SlurmNode:
    """A controller and a node of Slurm for the length of a test. Nothing of them is left behind it."""

    PROGRAMS = ("slurmctld", "slurmd", "sbatch", "scontrol", "munged", "mungekey", "setpriv")
    CPUS = 2
    LONGEST_START = 20
    LONGEST_WAIT = 40

    def __init__(self, test):
        # pylint: disable-next=consider-using-with
        temporary = tempfile.TemporaryDirectory(prefix="marrowpress-slurm-")
        test.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()
        # Whoever finds the socket of munged may use it, or it does not start.
        self.folder.chmod(0o711)
        self.processes = []
        test.addCleanup(self.end)
        self.night = test.night
        self.configuration = self.folder / "slurm.conf"
        self.write_configuration()
        try:
            self.start_all()
        except TimeoutError as fault:
            if os.geteuid() == 0:
                raise
            raise unittest.SkipTest(f"without root, {fault}") from fault

    def write_configuration(self):
        host = socket.gethostname().partition(".")[0]
        user = pwd.getpwuid(os.geteuid()).pw_name
        ports = free_ports(2)
        for name in ("state", "spool"):
            (self.folder / name).mkdir()
        self.configuration.write_text(f"""ClusterName=night
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket={self.folder}/munge
StateSaveLocation={self.folder}/state
SlurmdSpoolDir={self.folder}/spool
SlurmctldPidFile={self.folder}/slurmctld.pid
SlurmdPidFile={self.folder}/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1
SlurmdParameters=config_overrides
MailProg=/bin/true
MpiDefault=none
KillWait=2
ReturnToService=2
NodeName={host} NodeAddr=127.0.0.1 CPUs={self.CPUS} State=UNKNOWN
PartitionName=night Nodes={host} Default=YES State=UP
""", encoding="utf-8")
        (self.folder / "cgroup.conf").write_text("CgroupPlugin=cgroup/v1\n", encoding="utf-8")

    def start_all(self):
        key = self.folder / "munge.key"
        self.call("mungekey", "--create", f"--keyfile={key}")
        self.start("munged", "--foreground", f"--key-file={key}", f"--socket={self.folder}/munge",
                   f"--pid-file={self.folder}/munged.pid", f"--log-file={self.folder}/munged.log",
                   f"--seed-file={self.folder}/munged.seed")
        self.wait("munged does not start", (self.folder / "munge").exists)
        self.start("slurmctld", "-D", "-f", self.configuration)
        self.start("slurmd", "-D", "-f", self.configuration)
        # A daemon that is up need not take jobs yet.
        self.wait("the node does not become idle",
                  lambda: self.call_any("sinfo", "-h", "-o", "%T").text.strip() == "idle")

    def start(self, *arguments):
        """A daemon that ends with this process at the latest."""
        with (self.folder / f"{arguments[0]}.out").open("wb") as out:
            self.processes.append(subprocess.Popen(
                ["setpriv", "--pdeathsig", "KILL", *map(str, arguments)], cwd=self.folder,
                env=self.night.environment(SLURM_CONF=str(self.configuration)),
                stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                start_new_session=True))

    def wait(self, otherwise, is_so):
        limit = time.monotonic() + self.LONGEST_START
        while not is_so():
            if time.monotonic() > limit or any(one.poll() is not None for one in self.processes):
                said = "".join(path.read_text(errors="replace")[-MOST_SHOWN:]
                               for path in sorted(self.folder.glob("*.out")))
                raise TimeoutError(f"{otherwise}: {said}")
            time.sleep(0.1)

    def call_any(self, *arguments):
        return self.night.call(arguments, self.folder, SLURM_CONF=str(self.configuration))

    def call(self, *arguments):
        called = self.call_any(*arguments)
        self.night.expect(0, called)
        return called.text

    def submit(self, script):
        """Hands the script in from a folder that is none of the night's; gives the array's number."""
        return self.call("sbatch", "--parsable", script).strip()

    def requeue(self, task):
        self.call("scontrol", "requeue", task)
        # It would wait two minutes, until the credential of its last run has expired.
        self.call("scontrol", "update", f"JobId={task}", "StartTime=now")

    def tasks(self, array):
        """What is known of each task, by its number."""
        found = {}
        for line in self.call("scontrol", "show", "job", "--oneliner", array).splitlines():
            task = dict(word.split("=", 1) for word in line.split() if "=" in word)
            # Those that wait together have no number of their own yet.
            if task.get("ArrayTaskId", "").isdigit():
                found[int(task["ArrayTaskId"])] = task
        return found

    def wait_for(self, array, states):
        """What is known of the tasks once each of `states` is so."""
        limit = time.monotonic() + self.LONGEST_WAIT
        while True:
            tasks = self.tasks(array)
            now = {index: tasks.get(index, {}).get("JobState") for index in states}
            if now == states:
                return tasks
            if time.monotonic() > limit:
                raise AssertionError(f"the tasks are {now}")
            time.sleep(0.1)

    def own_processes(self):
        """All that know this node's configuration, tasks among them."""
        mark = f"SLURM_CONF={self.configuration}".encode()
        for entry in Path("/proc").iterdir():
            if entry.name.isdigit() and int(entry.name) != os.getpid():
                try:
                    if mark in (entry / "environ").read_bytes().split(b"\0"):
                        yield int(entry.name)
                except OSError:
                    pass

    def end(self):
        for process in reversed(self.processes):
            process.terminate()
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(timeout=5)
            end_group(process)
        limit = time.monotonic() + self.LONGEST_START
        while pids := list(self.own_processes()):
            if time.monotonic() > limit:
                raise AssertionError(f"these are left: {pids}")
            for pid in pids:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(pid, signal.SIGKILL)
            time.sleep(0.05)


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
