#!/usr/bin/env python3
"""Lets each allocation of a request fail, one at a time, and looks at what is left.

    tests/harness/allocation_sweep.py [OPTIONS]

Allocations are counted from the beginning of a request to its answer, those of all libraries, but
not those that the host makes in its operations. Each fails once in a process of its own, alone and
with all that follow it. After each point
  - the process has neither crashed nor hung,
  - sources, and what belongs to nobody, are unchanged,
  - an output is whole, unless the answer or a line 107 says otherwise, or a line 106 names a
    source,
  - a request without an answer has done nothing,
  - nothing is left over,
  - the next request of the process, for which there is memory, gives the undisturbed result.

A point is called KIND:single:N, or KIND:lasting:N where all later allocations fail, too. Where the
allocation isn't reached, that is an error and no pass.
"""

import json
import subprocess

from harness import (CANNOT_READ, CANNOT_WRITE, KINDS, TIMEOUT, Harness, Place, Point, Runner,
                     Undisturbed, Unusable, differences, faults_of_the_others, tree)

MODES = ("single", "lasting")
PROGRAM = "marrowpress_fail_allocations"
NO_ANSWER = "none"


class Sender:
    """A process that sends requests in processes of its own."""

    def __init__(self, program, place, kind, shows_errors):
        errors = None if shows_errors else subprocess.DEVNULL
        self.process = subprocess.Popen(
            [program, place.request("first", kind), place.request("second", kind),
             place.sources / "dtd"],
            cwd=place.folder.parent, env=Runner.environment(), stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=errors, encoding="utf-8")

    def send(self, number, mode):
        """What the request and the next one came to, as far as they got, and how that ended."""
        print(number, mode, file=self.process.stdin, flush=True)
        reports = []
        for line in self.process.stdout:
            if not line.startswith("{"):
                return reports, line.strip()
            reports.append(Report(json.loads(line)))
        raise Unusable(f"{PROGRAM} has ended with {self.process.wait(TIMEOUT)}")

    def close(self):
        self.process.stdin.close()
        self.process.wait(TIMEOUT)
        self.process.stdout.close()


class Report:
    """What a request came to."""

    def __init__(self, report):
        self.allocations = report["allocations"]
        self.operations = report["operations"]
        self.answer = report["answer"]
        self.lines = report["lines"]

    @property
    def status(self):
        return self.answer[0]["value"] if self.answer else None

    def has_line(self, beginning):
        return any(line.startswith(beginning) for line in self.lines)


class AllocationSweep:
    """Tries points."""

    def __init__(self, harness, scratch):
        self.harness = harness
        command = harness.options.command
        self.program = command.parent / PROGRAM
        if not self.program.is_file():
            raise Unusable(f"{self.program} is not there; build it first")
        # Places have names of one length: how long paths are decides what is allocated.
        self.places = [Place(scratch / f"{number:03}" / "place")
                       for number in range(harness.options.jobs)]
        runner = Runner(command)
        self.undisturbed = {(place, kind): Undisturbed(runner, place, kind, True)
                            for place in self.places for kind in KINDS}
        self.senders = {(place, kind): Sender(self.program, place, kind, harness.options.only)
                        for place in self.places for kind in KINDS}
        self.reports = {key: self._undisturbed_reports(*key) for key in self.senders}

    def _undisturbed_reports(self, place, kind):
        place.renew()
        place.add_old_outputs()
        reports, end = self.senders[place, kind].send(0, MODES[0])
        undisturbed = self.undisturbed[place, kind]
        is_whole = (end == "code 0" and [report.status for report in reports] == [0, 0]
                    and not any(report.lines for report in reports)
                    and tree(place.out) == undisturbed.out
                    and tree(place.again) == undisturbed.again)
        if not is_whole:
            raise Unusable(f"the undisturbed {kind} is none: {end}")
        return reports

    def close(self):
        for sender in self.senders.values():
            sender.close()

    def points(self):
        stride = self.harness.options.stride
        first, last = self.harness.options.points
        for kind in KINDS:
            counts = {self.reports[place, kind][0].allocations for place in self.places}
            if len(counts) != 1:
                raise Unusable(f"a {kind} makes {sorted(counts)} allocations")
            count = min(counts.pop(), last)
            print(f"{kind}: allocations {first} to {count}", flush=True)
            for mode in MODES:
                for number in range(first, count + 1, stride):
                    yield Point(f"{kind}:{mode}:{number}",
                                lambda place, kind=kind, mode=mode, number=number:
                                self.attempt(place, kind, mode, number))

    def attempt(self, place, kind, mode, number):
        place.renew_outputs()
        place.add_old_outputs()
        old = tree(place.out)
        reports, end = self.senders[place, kind].send(number, mode)
        if self.harness.options.only:
            for report in reports:
                self.harness.show(json.dumps(vars(report), ensure_ascii=False))
        faults = faults_of_the_others(place)
        if end != "code 0" or len(reports) != 2:
            faults.append(f"ends with {end} in request {len(reports) + 1}")
        if reports:
            if reports[0].allocations < number:
                raise Unusable("the allocation is not reached")
            faults += self._faults_of_first(place, kind, reports[0], old)
        if len(reports) == 2:
            faults += self._faults_of_next(place, kind, reports[1])
        if faults:
            self.harness.count(f"of {kind}:{mode} lost")
            place.renew()
        return faults

    def _faults_of_first(self, place, kind, report, old):
        found = tree(place.out)
        expected = self.undisturbed[place, kind].out
        faults = [f"{path} is left over" for path in sorted(found.keys() - expected.keys())]
        if report.answer is None:
            if report.operations:
                faults.append("answers nothing, though it had begun")
            faults += [f"answers nothing, and {word}" for word in differences(old, found)]
            self.harness.count("without an answer")
        elif report.status == 0:
            faults += self._faults_of_success(kind, place, report, differences(expected, found))
        else:
            self.harness.count("failed")
        return faults

    def _faults_of_success(self, kind, place, report, words):
        if report.has_line(CANNOT_WRITE):
            self.harness.count("with a line 107")
            return []
        if report.has_line(CANNOT_READ + str(place.sources)):
            self.harness.count("with a line 106")
            return []
        self.harness.count("whole")
        if report.answer != self.reports[place, kind][0].answer:
            words.append(f"the answer {report.answer}")
        return [f"status 0 and no line 107, and {word}" for word in words]

    def _faults_of_next(self, place, kind, report):
        undisturbed = self.reports[place, kind][1]
        faults = ["after the next request " + word for word in
                  differences(self.undisturbed[place, kind].again, tree(place.again))]
        if (report.answer, report.lines) != (undisturbed.answer, undisturbed.lines):
            faults.append(f"the next request is answered with {report.answer}, {report.lines}")
        return faults


def range_of(text):
    """The numbers `A` and `B` of "A-B"."""
    first, _, last = text.partition("-")
    return int(first), int(last)


def sweep(harness, scratch):
    allocations = AllocationSweep(harness, scratch)
    try:
        points = harness.sample(list(allocations.points()), 400)
        return harness.try_all(points, allocations.places)
    finally:
        allocations.close()


if __name__ == "__main__":
    HARNESS = Harness(__doc__)
    HARNESS.parser.add_argument("--points", type=range_of, metavar="A-B", default="1-1000000000",
                                help="allocations A to B alone")
    HARNESS.parser.add_argument("--stride", type=int, default=1, help="each N-th of them alone")
    HARNESS.main(sweep)
