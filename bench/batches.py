"""Files of jobs, and what a process costs by itself, without those that it starts."""

import json
import os
import shutil
import subprocess
import time
from dataclasses import dataclass

from documents import ditamap, topic, write
from measuring import Failure, environment
from release import ROOT

EXAMPLE = ROOT / "examples/drill-guide/drill-guide.ditamap"
SMALL_DTDS = ROOT / "tests/data/dtd"
JOBS = "jobs.jsonl"
RESULTS = "results"
# Jobs of the example have a warning; nothing may fail.
DONE = (0, 3)
TICKS = os.sysconf("SC_CLK_TCK")
# As long as a look at a process may take from it, and short enough to see where it grows.
PAUSE = 0.01


@dataclass
class Own:
    """What a process cost by itself, and those that it started and waited for. Memory in bytes."""
    seconds: float
    cpu: float
    cpu_of_jobs: float
    memory: int


def job_line(name, map_path, output):
    params = {"ditamap": str(map_path), "output": str(output), "ditaVal": "",
              "keyspaceDocDtd": "map.dtd", "compositeDocDtd": "ditabase.dtd", "usePrint": False}
    return json.dumps({"id": name, "request": {"type": "PublishComp", "params": params}}) + "\n"


def new_folder(folder):
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "out").mkdir(parents=True)
    return folder


def write_jobs(folder, maps):
    """A file of jobs with one for each map."""
    lines = (job_line(f"job{number}", path, folder / f"out/job{number}.dita")
             for number, path in enumerate(maps))
    write(folder, JOBS, "".join(lines))


def example_jobs(folder, count):
    """Jobs over the example, with DITA's DTDs."""
    write_jobs(new_folder(folder), [EXAMPLE] * count)


def small_jobs(folder, count):
    """Jobs over a map each, of two small topics, with small DTDs: what they do themselves takes
    little, so that as many as there may be can be tried."""
    new_folder(folder)
    write(folder, "shared.dita", topic("shared", "<p>Loosen the collar.</p>"))
    for number in range(count):
        write(folder, f"topics/t{number}.dita", topic("t", "<p>Pull the chuck off.</p>"))
        write(folder, f"maps/{number}.ditamap",
              ditamap([f'<topicref href="../topics/t{number}.dita"/>',
                       '<topicref href="../shared.dita"/>']))
    write_jobs(folder, [folder / f"maps/{number}.ditamap" for number in range(count)])


def peak_of(process):
    """The most memory that it has had up to now; 0 when it has ended."""
    try:
        with open(f"/proc/{process}/status", encoding="ascii") as status:
            for line in status:
                if line.startswith("VmHWM:"):
                    return int(line.split()[1]) * 1024
    except OSError:
        pass
    return 0


def cpu_times(process):
    """CPU seconds of a process that has ended and was not waited for, and of those that it has
    waited for itself."""
    with open(f"/proc/{process}/stat", encoding="ascii", errors="replace") as statistics:
        fields = statistics.read().rpartition(")")[2].split()
    own, of_children = (sum(map(int, fields[first:first + 2])) / TICKS for first in (11, 13))
    return own, of_children


def measure_own(command, folder, codes=DONE):
    with open(os.devnull, "r+b") as nothing:
        started = time.monotonic()
        process = subprocess.Popen(command, cwd=folder, env=environment(), stdin=nothing,
                                   stdout=nothing, stderr=nothing)
        memory = 0
        while True:
            memory = max(memory, peak_of(process.pid))
            if os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT):
                break
            time.sleep(PAUSE)
        seconds = time.monotonic() - started
        own, of_jobs = cpu_times(process.pid)
    if process.wait() not in codes:
        raise Failure(f"{' '.join(map(str, command))} ends with {process.returncode}")
    return Own(seconds, own, of_jobs, memory)
