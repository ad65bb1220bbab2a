#!/usr/bin/env python3
"""Kills a run at each call that changes the file system, and runs it again.

    tests/harness/kill_sweep.py [OPTIONS]

A traced run tells the calls. Then the process gets SIGKILL as it enters each of them, in place
of the call, with outputs of an earlier run and without. Sources, and what belongs to nobody,
must be unchanged then, and a second run gives the undisturbed result and leaves nothing over.

A point is called KIND:old:CALL:N, or KIND:new:CALL:N without old outputs. Where the call isn't
reached, or is another one than the traced run made, that is an error and no pass.
"""

import collections
import re
import signal

from harness import (KINDS, PADDING, Harness, Place, Point, Runner, Strace, Undisturbed, Unusable,
                     call_of, faults_of_the_next, faults_of_the_others)

OPENS = ("open", "openat", "creat")
OTHERS = ("write", "writev", "pwrite64", "copy_file_range", "sendfile", "fallocate", "truncate",
          "ftruncate", "rename", "renameat", "renameat2", "unlink", "unlinkat", "mkdir", "mkdirat",
          "rmdir", "link", "linkat", "symlink", "symlinkat", "chmod", "fchmod", "fchmodat", "chown",
          "fchown", "lchown", "fchownat", "utimensat", "mknod", "mknodat")
TRACED = "trace=" + ",".join((*OPENS, *OTHERS))
WRITES = re.compile(r"O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|creat\(")
AGES = {"old": True, "new": False}


class Kill:
    """A call that the process does not live to make."""

    def __init__(self, kind, age, call, number, path):
        self.kind = kind
        self.age = age
        self.call = call
        self.number = number
        self.path = path  # below the place's folder

    @property
    def name(self):
        return f"{self.kind}:{self.age}:{self.call}:{self.number}"

    def options(self):
        return ["-y", "-s", "0", "-e", f"trace={self.call}",
                "-e", f"inject={self.call}:signal=SIGKILL:when={self.number}"]


class KillSweep:
    """Kills runs."""

    def __init__(self, harness, scratch):
        self.harness = harness
        self.runner = Runner(harness.options.command)
        self.strace = Strace(self.runner, scratch)
        self.places = [Place(scratch / str(number) / "place", PADDING)
                       for number in range(harness.options.jobs)]
        self.undisturbed = {
            (place, kind, age): Undisturbed(self.runner, place, kind, has_old_outputs)
            for place in self.places for kind in KINDS for age, has_old_outputs in AGES.items()}

    def points(self):
        for kind in KINDS:
            for age in AGES:
                kills = list(self._kills(kind, age))
                if not kills:
                    raise Unusable(f"the {kind} changes nothing")
                for kill in kills:
                    yield Point(kill.name, lambda place, kill=kill: self.attempt(place, kill))

    def _kills(self, kind, age):
        place = self.places[0]
        self._prepare(place, age)
        _, lines = self.strace.run(place, [place.request("first", kind)],
                                   ["-y", "-s", "0", "-e", TRACED])
        counts = collections.Counter()
        below = re.compile(re.escape(str(place.folder)) + r'/([^">]*)[">]')
        for line in lines:
            call = call_of(line)
            counts[call] += 1
            path = below.search(line)
            if path and (call in OTHERS or (call in OPENS and WRITES.search(line))):
                yield Kill(kind, age, call, counts[call], path.group(1))

    @staticmethod
    def _prepare(place, age):
        place.renew()
        if AGES[age]:
            place.add_old_outputs()

    def attempt(self, place, kill):
        self._prepare(place, kill.age)
        run, lines = self.strace.run(place, [place.request("first", kill.kind)], kill.options())
        self.harness.show(run)
        calls = [line for line in lines if call_of(line) == kill.call]
        if run.code != -signal.SIGKILL or len(calls) != kill.number:
            raise Unusable(f"not killed at call {kill.number}, but {run.code} after {len(calls)}")
        if str(place.folder / kill.path) not in calls[-1]:
            raise Unusable(f"killed at another call: {calls[-1]}")
        faults = faults_of_the_others(place)
        undisturbed = self.undisturbed[place, kill.kind, kill.age]
        return faults + faults_of_the_next(self.runner, place, kill.kind, undisturbed)


def sweep(harness, scratch):
    kills = KillSweep(harness, scratch)
    points = harness.sample(list(kills.points()), 150)
    return harness.try_all(points, kills.places)


if __name__ == "__main__":
    Harness(__doc__).main(sweep)
