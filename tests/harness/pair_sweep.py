#!/usr/bin/env python3
"""Starts runs in pairs that meet in one folder, and looks for what is neither's result.

    tests/harness/pair_sweep.py [OPTIONS]

There are five set-ups:
    same-composite   one map into one composite, twice
    two-maps         two maps into one composite
    two-composites   two composites in one folder
    same-flat-book   flat books of one map in one folder
    two-flat-books   flat books of two maps in one folder

Both processes read their request from standard input and wait for its end. The second gets that
up to one run's time behind the first. Each answer is 0 or -42, one of them 0 at least. What lies
in the folder then is what the runs with a 0 leave, one whole result over the other, in one of
both orders: nothing of a run with a -42. Sources, and what belongs to nobody, are unchanged.

A point is called SET-UP:N. A set-up in which no run was refused is an error and no pass: its
pairs have not met.
"""

import collections
import fcntl
import itertools
import subprocess
import termios
import time

from harness import (TIMEOUT, Harness, Place, Point, Runner, Unusable, faults_of_the_end,
                     faults_of_the_others, tree)

SET_UPS = {
    "same-composite": [("composite", "root.ditamap", "book.dita")] * 2,
    "two-maps": [("composite", "root.ditamap", "book.dita"),
                 ("composite", "other.ditamap", "book.dita")],
    "two-composites": [("composite", "root.ditamap", "book.dita"),
                       ("composite", "other.ditamap", "saw.dita")],
    "same-flat-book": [("flatbook", "root.ditamap", None)] * 2,
    "two-flat-books": [("flatbook", "root.ditamap", None), ("flatbook", "other.ditamap", None)],
}
PAIRS = 200
PAIRS_OF_SHORT = 16
DELAYS = 16  # from none to a run's time
REFUSED = -42


class PairSweep:
    """Starts pairs of runs."""

    def __init__(self, harness, scratch):
        self.harness = harness
        self.runner = Runner(harness.options.command)
        self.places = [Place(scratch / str(number) / "place")
                       for number in range(harness.options.jobs)]
        self.seconds = 0
        self.refused = collections.Counter()
        self.alone = {(place, run): self._result_alone(place, run)
                      for place in self.places for run in set(itertools.chain(*SET_UPS.values()))}

    def points(self):
        pairs = PAIRS_OF_SHORT if self.harness.options.short else PAIRS
        for set_up in SET_UPS:
            for number in range(pairs):
                yield Point(f"{set_up}:{number}", lambda place, set_up=set_up, number=number:
                            self.attempt(place, set_up, number))

    @staticmethod
    def _request(place, run):
        kind, source, output = run
        return place.add_request("pair", kind, place.out, source, output).read_text()

    def _start(self, place, request):
        """A process that has all of its request, and waits for the end of it."""
        process = self.runner.start(place, ["-"], stdin=subprocess.PIPE)
        process.stdin.write(request)
        process.stdin.flush()
        given_up = time.monotonic() + TIMEOUT
        while process.poll() is None and self._is_unread(process.stdin):
            if time.monotonic() > given_up:
                raise Unusable("the request is not read")
            time.sleep(0.001)
        return process

    @staticmethod
    def _is_unread(pipe):
        return any(fcntl.ioctl(pipe, termios.FIONREAD, bytes(4)))

    @staticmethod
    def _let_go(process):
        process.stdin.close()
        process.stdin = None

    def _result_alone(self, place, run):
        place.renew()
        process = self._start(place, self._request(place, run))
        started = time.monotonic()
        self._let_go(process)
        done = self.runner.finish(process)
        self.seconds = max(self.seconds, time.monotonic() - started)
        if done.answers != [0] or done.lines:
            raise Unusable(f"alone, {run} is none:\n{done}")
        return own(place)

    def attempt(self, place, set_up, number):
        place.renew()
        pair = SET_UPS[set_up]
        if number % 2:
            pair = pair[::-1]
        requests = [self._request(place, run) for run in pair]
        place.untouched = place.owned_by_others()
        processes = [self._start(place, request) for request in requests]
        delay = self.seconds * (number // 2 % DELAYS) / DELAYS
        for process in processes:
            self._let_go(process)
            if process is not processes[-1]:
                time.sleep(delay)
        runs = [self.runner.finish(process) for process in processes]
        faults = faults_of_the_others(place)
        for run in runs:
            self.harness.show(run)
            faults += faults_of_the_end(run)
        return faults + self._faults_of_results(place, set_up, pair, runs)

    def _faults_of_results(self, place, set_up, pair, runs):
        faults = []
        for run in runs:
            if run.answers not in ([0], [REFUSED]):
                faults.append(f"answers {run.answers}")
            elif run.lines:
                faults.append(f"says {run.lines}")
        whole = [wanted for wanted, run in zip(pair, runs) if run.answers == [0]]
        if not whole:
            faults.append("neither run has published")
        if len(whole) < len(pair):
            self.harness.count("with a refusal")
            self.refused[set_up] += 1
        found = own(place)
        results = [self.alone[place, wanted] for wanted in whole]
        if not any(found == {path: content for result in order for path, content in result.items()}
                   for order in itertools.permutations(results)):
            faults.append("the folder holds what is no result of these: " +
                          ", ".join(sorted(found)))
        return faults

    def require_meetings(self):
        for set_up in SET_UPS:
            if not self.refused[set_up]:
                raise Unusable(f"no pair of {set_up} has met")


def own(place):
    """What runs have left in the folder of outputs, without modes."""
    return {path: content for path, (_, content) in tree(place.out).items()
            if not path.startswith("canary")}


def sweep(harness, scratch):
    pairs = PairSweep(harness, scratch)
    points = harness.sample(list(pairs.points()), len(SET_UPS) * PAIRS_OF_SHORT)
    code = harness.try_all(points, pairs.places)
    if not harness.options.only:
        pairs.require_meetings()
    return code


if __name__ == "__main__":
    Harness(__doc__).main(sweep)
