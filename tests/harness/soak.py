#!/usr/bin/env python3
"""Sends one process many requests, loads the module many times, and measures what stays behind.

    tests/harness/soak.py [OPTIONS]

There are two points. `requests` sends 10,000 requests to one process, composites and flat books
in turn; each answer has to be 0, and the last outputs are the undisturbed ones. `loads` loads
the module 1,000 times, sends it a request and unloads it, which has to take its code out of the
process. In both the count of descriptors stays what it is after the first tenth, and from there
on resident memory grows by no more than the limits below. What was measured is printed. While
requests are running they hold descriptors, hence the least count of each tenth is taken.
"""

import os
import re
import subprocess
import threading
from pathlib import Path

from harness import (KINDS, TIMEOUT, Harness, Place, Point, Run, Runner, Undisturbed, Unusable,
                     differences, faults_of_the_others, tree)

REQUESTS = 10_000
LOADS = 1_000
REQUESTS_OF_SHORT = 1_000
LOADS_OF_SHORT = 100
SAMPLES = 10
# Nothing stays of a request. Of a load the lists of factories and publishers stay, which live as
# long as the process, and what the dynamic linker keeps.
MOST_BYTES_A_REQUEST = 100
MOST_BYTES_A_LOAD = 1_400
# What an allocator keeps, or not, says nothing of single requests.
SLACK = 256 * 1024
RESIDENT = re.compile(r"^VmRSS:\s+(\d+) kB$", re.MULTILINE)
HANG = 30 * TIMEOUT


class Sample:
    """What a process holds after some requests or loads."""

    def __init__(self, count, kilobytes, descriptors):
        self.count = count
        self.kilobytes = kilobytes
        self.descriptors = descriptors

    @classmethod
    def of_process(cls, count, folder, descriptors):
        resident = RESIDENT.search((folder / "status").read_text(encoding="utf-8"))
        return cls(count, int(resident.group(1)), descriptors)


def faults_of_growth(samples, most_bytes):
    """Prints the samples, and says where something has grown from the first to the last."""
    for sample in samples:
        print(f"{sample.count:6} {sample.kilobytes:7} KB {sample.descriptors:3} descriptors")
    if len(samples) != SAMPLES:
        raise Unusable(f"{len(samples)} samples and not {SAMPLES}")
    first, last = samples[0], samples[-1]
    grown = (last.kilobytes - first.kilobytes) * 1024
    count = last.count - first.count
    print(f"{grown / count:.0f} bytes each, {most_bytes} at most")
    faults = []
    if grown > most_bytes * count + SLACK:
        faults.append(f"grows by {grown} bytes in {count}")
    if {sample.descriptors for sample in samples} != {first.descriptors}:
        faults.append(f"{first.descriptors} descriptors become {last.descriptors}")
    return faults


class Soak:
    """Wears a process out."""

    def __init__(self, harness, scratch):
        self.harness = harness
        self.scratch = scratch
        self.runner = Runner(harness.options.command)
        self.place = Place(scratch / "place")
        self.undisturbed = {kind: Undisturbed(self.runner, self.place, kind) for kind in KINDS}

    def points(self):
        return [Point("requests", self.send_requests), Point("loads", self.load)]

    def _count(self, long, short):
        return short if self.harness.options.short else long

    def send_requests(self, place):
        count = self._count(REQUESTS, REQUESTS_OF_SHORT)
        place.renew()
        # The outputs of the flat book are beside those of the composite.
        names = [place.request("first", "composite"), place.request("second", "flatbook")]
        requests = [os.path.relpath(name, place.folder) for name in names] * (count // 2)
        errors = self.scratch / "errors"
        with errors.open("w", encoding="utf-8") as sink:
            process = subprocess.Popen(self.runner.arguments(place, requests), cwd=place.folder,
                                       env=self.runner.environment(), stdin=subprocess.DEVNULL,
                                       stdout=subprocess.PIPE, stderr=sink, encoding="utf-8")
        watchdog = threading.Timer(HANG, process.kill)
        watchdog.start()
        samples, answers = self._read_answers(process, count)
        code = process.wait()
        watchdog.cancel()
        run = Run(code, "".join(answers), errors.read_text(encoding="utf-8"))
        faults = faults_of_growth(samples, MOST_BYTES_A_REQUEST) + faults_of_the_others(place)
        if code != 0 or run.answers != [0] * count or run.lines:
            faults.append(f"ends with {code}, {run.answers.count(0)} answers of {count} are 0, "
                          f"and says {run.lines[:3]}")
        faults += differences(self.undisturbed["composite"].out, tree(place.out))
        return faults + differences(self.undisturbed["flatbook"].again, tree(place.again))

    @staticmethod
    def _read_answers(process, count):
        samples, answers = [], []
        folder = Path("/proc") / str(process.pid)
        descriptors = []
        for line in process.stdout:
            answers.append(line)
            # One ahead, while the process is sure to be there.
            number = len(answers) + 1
            if number > count:
                continue
            descriptors.append(len(os.listdir(folder / "fd")))
            if number % (count // SAMPLES) == 0:
                samples.append(Sample.of_process(number, folder, min(descriptors)))
                descriptors = []
        return samples, answers

    def load(self, place):
        count = self._count(LOADS, LOADS_OF_SHORT)
        place.renew()
        program = self.runner.command.parent / "marrowpress_load_module"
        if not program.is_file():
            raise Unusable(f"{program} is not there; build it first")
        done = subprocess.run([program, place.request("first", "composite"), place.sources / "dtd",
                               str(count)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=HANG, check=False)
        lines = [[int(number) for number in line.split()] for line in done.stdout.splitlines()]
        samples = [Sample(*line[:3]) for line in lines if line[0] % (count // SAMPLES) == 0]
        faults = faults_of_growth(samples, MOST_BYTES_A_LOAD) + faults_of_the_others(place)
        if done.returncode != 0 or len(lines) != count:
            faults.append(f"ends with {done.returncode} after {len(lines)} loads: {done.stderr}")
        kept = sum(1 for line in lines if line[3] != 0)
        if kept:
            faults.append(f"the module stays in memory after {kept} of {count} loads")
        return faults + differences(self.undisturbed["composite"].out, tree(place.out))


def sweep(harness, scratch):
    soak = Soak(harness, scratch)
    return harness.try_all(harness.sample(soak.points(), len(soak.points())), [soak.place])


if __name__ == "__main__":
    Harness(__doc__).main(sweep)
