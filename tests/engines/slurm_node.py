"""Slurm for the length of a test."""

import contextlib
import ctypes
import os
import pwd
import signal
import socket
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from engines import MOST_SHOWN, end_group

PR_SET_CHILD_SUBREAPER = 36


def free_ports(count):
    with contextlib.ExitStack() as sockets:
        held = [sockets.enter_context(socket.socket()) for _ in range(count)]
        for one in held:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in held]


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
        # What daemons leave behind comes to this process, and not to one that may never ask for it.
        ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1)
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
        with contextlib.suppress(ChildProcessError):
            while os.waitpid(-1, os.WNOHANG)[0]:
                pass
