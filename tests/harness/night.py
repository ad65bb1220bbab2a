#!/usr/bin/env python3
"""A night of many deliverables in which all goes wrong that may, and the next one.

    tests/harness/night.py [OPTIONS]

400 maps, each with three profiles, are a batch; ten of them are broken in known ways, and one more is
too large for the memory that it may have. The night is one batch that is begun five times:
  term    it gets SIGTERM when a quarter has results,
  kill    --resume; jobs are killed at random moments, and the batch itself when half have results,
  full    --resume; then the disk is full,
  retry   --retry-failed; jobs are killed at random moments,
  last    --retry-failed; nothing happens to it.
Then each output is that of its own `publish`, byte by byte, exactly the broken ones and the large one are
reported, and no private folder is left. A second night with --resume starts no process.

The disk is a file system of its own as in disk_sweep.py, and where that may not be, no file may grow
instead. What depends on chance depends on --seed, and on how quick the machine is.
"""

import contextlib
import json
import os
import random
import shutil
import signal
import subprocess
import threading
import time
from pathlib import Path

from disk_sweep import SmallDisk, enter_name_space
from harness import DTDS, LINE, MAP, TOPIC, Harness, Runner, Unusable

PROFILES = ("all", "home", "trade")
DISK = 96 * 1024  # KB
# What a process may have, and what is too much for it: about twenty bytes for each byte.
MOST_MEMORY = 400 << 20
LARGE_TOPIC = 24 << 20
# Until a batch and all of its jobs are gone: two seconds are promised, and the machine may be busy.
GRACE = 5
HANGS = 1800
CLEAN, FINDINGS, FAILED = "clean", "findings", "failed"
STATES = {0: CLEAN, 3: FINDINGS}


def cut(path):
    path.write_bytes(path.read_bytes()[:-12])


def add_reference(path, text):
    path.write_text(path.read_text(encoding="utf-8").replace("</body>", text + "</body>"),
                    encoding="utf-8")


# How a map is broken, by its files: the map, and a topic that no other map has.
BREAKS = (
    ("cut-map", FAILED, lambda ditamap, _: cut(ditamap)),
    ("no-topic", FINDINGS, lambda _, topic: topic.unlink()),
    ("no-profile", FAILED, lambda *_: None),
    ("cut-topic", FINDINGS, lambda _, topic: cut(topic)),
    ("no-map", FAILED, lambda ditamap, _: ditamap.unlink()),
    ("no-key", FINDINGS, lambda _, topic: add_reference(topic, '<p><ph keyref="nowhere"/></p>')),
    ("empty-map", FAILED, lambda ditamap, _: ditamap.write_bytes(b"")),
    ("no-target", FINDINGS,
     lambda _, topic: add_reference(topic, '<p conref="shared.dita#shared/nowhere"/>')),
    ("bytes", FINDINGS, lambda _, topic: topic.write_bytes(
        topic.read_bytes().replace(b"Loosen", b"L\xff", 1))),
    ("no-map-below", FINDINGS, lambda ditamap, _: ditamap.write_text(
        MAP.format('<mapref href="nowhere.ditamap"/>'), encoding="utf-8")),
)


class Job:
    """A deliverable, and what is to become of it."""

    def __init__(self, name, ditamap, profile, output, state):
        self.name = name
        self.ditamap = ditamap
        self.profile = profile
        self.output = output
        self.state = state

    def line(self):
        params = {"ditamap": str(self.ditamap), "output": str(self.output),
                  "ditaVal": str(self.profile), "keyspaceDocDtd": "map.dtd",
                  "compositeDocDtd": "ditabase.dtd", "usePrint": False}
        return json.dumps({"id": self.name, "request": {"type": "PublishComp", "params": params}})


class Sources:
    """Maps and topics of a night, and its jobs."""

    def __init__(self, folder, made, maps, breaks):
        self.folder = folder
        self.made = made
        for name in ("maps", "topics"):
            (folder / name).mkdir(parents=True)
        shutil.copytree(DTDS, folder / "dtd")
        self._write("topics/shared.dita", TOPIC.format("shared", "Shared", '<p id="word">Wear.</p>'))
        for profile in PROFILES:
            hidden = "trade" if profile == "home" else "home"
            rule = "" if profile == "all" else (
                f'<prop att="audience" val="{hidden}" action="exclude"/>')
            self._write(f"{profile}.ditaval", f"<val>{rule}</val>\n")
        self.jobs = []
        for number in range(maps):
            # Spread, so that broken ones are in each part of the night.
            part, rest = divmod(number, max(maps // breaks, 1))
            self._add_map(number, BREAKS[part] if rest == 1 and part < breaks else None)
        self._add_large()
        self.jobs_file = self._write("jobs.jsonl", "".join(f"{job.line()}\n" for job in self.jobs))

    def _write(self, name, text):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def _topic(self, name, body):
        return self._write(f"topics/{name}.dita", TOPIC.format(name, f"About {name}", body))

    def _add_map(self, number, broken):
        body = (f'{LINE * 20}<p audience="home">At home.</p><p audience="trade">For the trade.</p>'
                '<p conref="shared.dita#shared/word"/><p><ph keyref="word"/></p>')
        topics = [self._topic(f"m{number}t{part}", body) for part in range(3)]
        ditamap = self._write(f"maps/m{number}.ditamap", MAP.format(
            '<keydef keys="word"><topicmeta><keywords><keyword>Soap</keyword></keywords></topicmeta>'
            "</keydef>" + "".join(f'<topicref href="../topics/{path.name}"/>' for path in topics)))
        kind, state = "whole", CLEAN
        if broken:
            kind, state, damage = broken
            damage(ditamap, topics[0])
        for profile in PROFILES:
            ditaval = f"{'nowhere' if kind == 'no-profile' else profile}.ditaval"
            name = f"m{number}-{kind}-{profile}"
            self.jobs.append(Job(name, ditamap, self.folder / ditaval, self.made / f"out/{name}.dita",
                                 state))

    def _add_large(self):
        self._topic("large", LINE * (LARGE_TOPIC // len(LINE)))
        ditamap = self._write("maps/large.ditamap",
                              MAP.format('<topicref href="../topics/large.dita"/>'))
        self.jobs.insert(len(self.jobs) // 3, Job("large", ditamap, self.folder / "all.ditaval",
                                                  self.made / "out/large.dita", FAILED))


def children_of(process):
    """Processes that a process has started and that have not ended."""
    found = []
    for entry in os.scandir("/proc"):
        if not entry.name.isdecimal():
            continue
        with contextlib.suppress(OSError):
            text = Path(entry.path, "stat").read_text(encoding="utf-8", errors="replace")
            state, parent = text.rpartition(")")[2].split()[:2]
            if int(parent) == process and state != "Z":
                found.append(int(entry.name))
    return found


def is_there(process):
    with contextlib.suppress(OSError):
        text = Path(f"/proc/{process}/stat").read_text(encoding="utf-8", errors="replace")
        return text.rpartition(")")[2].split()[0] != "Z"
    return False


class Killer(threading.Thread):
    """Kills jobs of a batch at random moments, until it is told to end."""

    def __init__(self, batch, kills, chance):
        super().__init__()
        self.batch = batch
        self.kills = kills
        self.chance = chance
        self.killed = 0
        self._end = threading.Event()

    def run(self):
        while self.killed < self.kills and not self._end.wait(self.chance.uniform(0.02, 0.3)):
            jobs = children_of(self.batch)
            if jobs:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(self.chance.choice(jobs), signal.SIGKILL)
                    self.killed += 1

    def end(self):
        self._end.set()
        self.join()


class Night:
    """Runs batches over the same jobs, and gathers what is wrong."""

    def __init__(self, harness, folder):
        options = harness.options
        self.command = options.command
        self.is_short = options.short
        self.is_disk_real = not options.limit_files
        self.chance = random.Random(options.seed)
        self.made = folder / "made"
        self.out = self.made / "out"
        self.results = self.made / "results"
        self.folder = folder
        maps, breaks = (20, 3) if self.is_short else (400, len(BREAKS))
        self.kills = maps // 5
        self.sources = Sources(folder / "sources", self.made, maps, breaks)
        self.jobs = self.sources.jobs
        self.catalog = ["--catalog", str(folder / "sources/dtd/catalog.xml")]
        self.faults = []

    def arguments(self, *arguments, before=()):
        return ["prlimit", f"--as={MOST_MEMORY}", *before, "--", str(self.command), *arguments,
                *self.catalog]

    def check(self, holds, fault):
        if not holds:
            self.faults.append(fault)
            print(f"lost: {fault}", flush=True)

    def publish_singly(self):
        """What each job gives for itself, and nothing of it stays."""
        single = {}
        for job in self.jobs:
            done = subprocess.run(
                self.arguments("publish", str(job.ditamap), "-f", "composite", "-o", str(job.output),
                               "--filter", str(job.profile)),
                env=Runner.environment(), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                stderr=subprocess.PIPE, encoding="utf-8", errors="replace", check=False)
            if STATES.get(done.returncode, FAILED) != job.state:
                raise Unusable(f"{job.name} is not {job.state}, but ends with {done.returncode}: "
                               f"{done.stderr[:500]}")
            single[job.name] = job.output.read_bytes() if job.output.is_file() else None
            job.output.unlink(missing_ok=True)
        if list(self.out.iterdir()):
            raise Unusable(f"single runs leave {[path.name for path in self.out.iterdir()]}")
        return single

    def start(self, *options, before=()):
        log = self.folder / "log"
        with log.open("w", encoding="utf-8") as errors:
            process = subprocess.Popen(
                self.arguments("batch", str(self.sources.jobs_file), "-j", "2", "--results",
                               str(self.results), *options, before=before),
                cwd=self.folder, env=Runner.environment(), stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=errors, encoding="utf-8", start_new_session=True)
        return process

    def finish(self, process, name, code):
        try:
            output, _ = process.communicate(timeout=HANGS)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            raise Unusable(f"{name}: not ended after {HANGS} s") from None
        self.check(process.returncode == code,
                   f"{name}: ends with {process.returncode} and not {code}: {self.last_lines()}")
        return output

    def last_lines(self):
        return " | ".join((self.folder / "log").read_text(encoding="utf-8").splitlines()[-3:])

    def result_names(self):
        if not self.results.is_dir():
            return set()
        return {path.stem for path in self.results.glob("*.json")}

    def wait_for_results(self, process, count):
        while process.poll() is None and len(self.result_names()) < count:
            time.sleep(0.01)
        if process.poll() is not None:
            raise Unusable(f"the batch ended before it had {count} results: {self.last_lines()}")

    def private_names(self):
        return [str(path.relative_to(self.made)) for path in self.made.rglob(".marrowpress-*")]

    def read_results(self, name):
        """All results; each of them has to be whole whatever has happened."""
        found = {}
        for path in self.results.glob("*.json"):
            try:
                found[path.stem] = json.loads(path.read_text(encoding="utf-8"))
            except ValueError as fault:
                self.check(False, f"{name}: {path.name} is no result: {fault}")
        return found

    def begin_and_end_by(self, name, number, share, *options):
        """A batch that gets a signal when a share of the jobs have results."""
        process = self.start(*options)
        killer = Killer(process.pid, self.kills if options else 0, self.chance)
        killer.start()
        self.wait_for_results(process, int(len(self.jobs) * share))
        killer.end()
        jobs = children_of(process.pid)
        sent = time.monotonic()
        process.send_signal(number)
        self.finish(process, name, -number)
        while any(map(is_there, jobs)) and time.monotonic() - sent < GRACE:
            time.sleep(0.01)
        self.check(time.monotonic() - sent < GRACE and not any(map(is_there, jobs)),
                   f"{name}: it or its jobs are there after {time.monotonic() - sent:.1f} s")
        print(f"{name}: {len(self.read_results(name))} results, {killer.killed} jobs killed, "
              f"{len(self.private_names())} private names left")

    def end_by_term(self):
        self.begin_and_end_by("term", signal.SIGTERM, 0.25)
        self.check(not self.private_names(), f"term: it leaves {self.private_names()}")

    def end_by_kill(self):
        self.begin_and_end_by("kill", signal.SIGKILL, 0.5, "--resume")

    def fill_disk(self):
        wanted = int(len(self.jobs) * 0.7)
        if self.is_disk_real:
            process = self.start("--resume")
            self.wait_for_results(process, wanted)
            filler = self.made / "filler"
            with contextlib.suppress(OSError), filler.open("wb", buffering=0) as full:
                while True:
                    full.write(b"." * 65536)
            self.finish(process, "full", 1)
            filler.unlink()
        else:
            self.finish(self.start("--resume", before=["--fsize=1024"]), "full", 1)
        results = self.read_results("full")
        lost = {job.name for job in self.jobs} - results.keys()
        self.check(lost, "full: all results could be written")
        if self.is_disk_real:
            # Else the log may not grow, either.
            log = (self.folder / "log").read_text(encoding="utf-8", errors="replace")
            told = {job.name for job in self.jobs if f"`{job.name}` counts as not run" in log}
            self.check(told == lost, f"full: {sorted(told ^ lost)} have no result or say so, not both")
        print(f"full: {len(lost)} results could not be written, "
              f"{sum(result['state'] == FAILED for result in results.values())} jobs failed")

    def retry(self):
        process = self.start("--retry-failed")
        killer = Killer(process.pid, self.kills, self.chance)
        killer.start()
        self.finish(process, "retry", 1)
        killer.end()
        killed = [result for result in self.read_results("retry").values()
                  if result["signal"] == signal.SIGKILL]
        self.check(0 < len(killed) <= killer.killed,
                   f"retry: {len(killed)} jobs tell of SIGKILL, and {killer.killed} got it")
        for result in killed:
            self.check(result["state"] == FAILED and result["exit"] == 128 + signal.SIGKILL and
                       result["run"]["tries"] == 1,
                       f"retry: {result['id']} was killed, and is {result['state']} after "
                       f"{result['run']['tries']} tries")
        print(f"retry: {killer.killed} jobs killed, {len(killed)} of them before they had a result, "
              f"{len(self.private_names())} private names left")

    def last(self, single):
        output = self.finish(self.start("--retry-failed"), "last", 1)
        results = self.read_results("last")
        self.check(results.keys() == {job.name for job in self.jobs}, "last: results are missing")
        for job in self.jobs:
            state = results.get(job.name, {}).get("state")
            self.check(state == job.state, f"last: {job.name} is {state} and not {job.state}")
            made = job.output.read_bytes() if job.output.is_file() else None
            self.check(made == single[job.name], f"last: {job.output.name} is not that of publish")
        large = results.get("large", {"run": {}})["run"]
        self.check(large.get("memoryShort") and large.get("tries") == 2,
                   f"last: the large one lacks memory: {large}")
        names = {path.name for path in self.out.iterdir()}
        surplus = names - {job.output.name for job in self.jobs}
        self.check(not surplus, f"last: {sorted(surplus)} are left over")
        self.check(not self.private_names(), f"last: {self.private_names()} are left over")
        self.check(self.table_line() in output, f"last: the table says {output.splitlines()[-1:]}")

    def table_line(self):
        counts = {state: sum(job.state == state for job in self.jobs)
                  for state in (CLEAN, FINDINGS, FAILED)}
        return (f"{len(self.jobs)} jobs: {counts[CLEAN]} clean, {counts[FINDINGS]} with findings, "
                f"{counts[FAILED]} failed")

    def second_night(self):
        def files():
            return {path: (path.stat().st_ino, path.stat().st_mtime_ns)
                    for folder in (self.out, self.results) for path in folder.iterdir()}
        before = files()
        started = time.monotonic()
        output = self.finish(self.start("--resume"), "second", 1)
        seconds = time.monotonic() - started
        self.check(files() == before, "second: files are made again")
        self.check(self.table_line() in output, f"second: the table says {output.splitlines()[-1:]}")
        log = (self.folder / "log").read_text(encoding="utf-8")
        self.check(log.count(", up to date\n") == len(self.jobs),
                   f"second: {log.count(', up to date')} of {len(self.jobs)} are up to date")
        most = 2 * len(self.jobs) / 400
        self.check(self.is_short or seconds < most, f"second: {seconds:.1f} s, at most {most:.1f}")
        print(f"second: {seconds:.2f} s")

    def run(self):
        with SmallDisk(self.made, DISK) if self.is_disk_real else contextlib.nullcontext():
            self.out.mkdir()
            single = self.publish_singly()
            for step in (self.end_by_term, self.end_by_kill, self.fill_disk, self.retry):
                step()
            self.last(single)
            self.second_night()


def spend(harness, scratch):
    folder = scratch / "night"
    (folder / "made").mkdir(parents=True)
    started = time.monotonic()
    night = Night(harness, folder)
    night.run()
    print(f"{len(night.jobs)} jobs, {len(night.faults)} faults, {time.monotonic() - started:.0f} s")
    return 1 if night.faults else 0


if __name__ == "__main__":
    HARNESS = Harness(__doc__, short_seconds=60)
    HARNESS.parser.add_argument("--limit-files", action="store_true",
                                help="limit the size of files, and mount no file systems")
    HARNESS.parser.add_argument("--seed", type=int, default=1, help="of what is left to chance")
    HARNESS.main(spend, enter_name_space)
