#!/usr/bin/env python3
"""Lets each system call on each file of a run fail, one at a time, and looks at what is left.

    tests/harness/fault_sweep.py [OPTIONS]

A traced run tells which files a publication touches, and how often by which calls. Then each of
these calls fails, once and from there on, with each error that it can have. After each point
  - sources, and what belongs to nobody, are unchanged,
  - an output is whole, unless the answer or a line 107 says otherwise, or a line 106 names
    the source that was at fault, or one whose DTD was,
  - nothing is left over but what could not be removed,
  - the next request gives the undisturbed result: in the same process, where one call alone
    failed, and in a new one.

A point is called KIND:FILE:CALL:N:ERROR, with N+ where all later calls fail, too. FILE is `any`
where they fail on whatever file. Where the call isn't reached, that is an error and no pass.
"""

import collections
import re

from harness import (KINDS, PADDING, Harness, Place, Point, Runner, Strace, Undisturbed, Unusable,
                     call_of, differences, faults_of_the_end, faults_of_the_next,
                     faults_of_the_others, tree)

STATS = ("stat", "lstat", "fstat", "newfstatat", "statx", "access", "faccessat", "faccessat2")
OPENS = ("open", "openat", "creat")
REMOVALS = ("unlink", "unlinkat", "rmdir", "rename", "renameat", "renameat2")
ERRORS = {
    OPENS: ("EACCES", "EIO", "EMFILE", "ENOSPC", "EINTR"),
    ("read", "readv", "pread64"): ("EIO", "EINTR"),
    ("mmap",): ("EACCES", "ENOMEM"),
    ("write", "writev", "pwrite64", "copy_file_range", "sendfile"): ("EIO", "ENOSPC", "EINTR"),
    ("close",): ("EIO", "EINTR"),
    REMOVALS: ("EACCES", "EIO", "ENOSPC"),
    STATS: ("EACCES", "EIO"),
    ("flock",): ("EIO", "EINTR", "ENOLCK"),
    ("ftruncate", "fchmod", "chmod", "fchmodat"): ("EACCES", "EIO"),
    ("mkdir", "mkdirat", "link", "linkat", "symlink", "getdents64"): ("EACCES", "EIO"),
    ("readlink", "readlinkat"): ("EACCES", "EIO"),
}
ERRORS = {call: errors for calls, errors in ERRORS.items() for call in calls}
# They ask for nothing that a disk, a right or a limit could refuse.
HARMLESS = {"execve", "fcntl", "getcwd", "lseek", "fadvise64", "chdir", "ioctl", "dup", "dup2"}
# What any file may meet: nothing to open files with, no room, no disk.
OF_ANY_FILE = {"openat": ("EMFILE", "EIO"), "write": ("ENOSPC",), "mmap": ("ENOMEM",)}
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')
DESCRIPTOR = re.compile(r"\d<([^>]*)>")
TRACED = "trace=%file,%desc"
ANY = "any"


class Fault:
    """A call that fails."""

    def __init__(self, kind, file, call, when, error):
        self.kind = kind
        self.file = file  # from the place's folder on; ANY for all files
        self.call = call
        self.when = when
        self.error = error

    @property
    def name(self):
        return ":".join((self.kind, self.file, self.call, self.when, self.error))

    @property
    def is_lasting(self):
        return self.when.endswith("+")

    @property
    def is_mute(self):
        """Whether nothing can be said of it, since that would have to be written, too."""
        return self.file == ANY and self.call == "write"

    def is_on(self, path):
        return self.file in (ANY, path)

    def options(self, place):
        files = [] if self.file == ANY else ["-P", argument_of(self.file, place)]
        return [*files, "-e", f"trace={self.call}",
                "-e", f"inject={self.call}:error={self.error}:when={self.when}"]

    def keeps(self, path):
        """Whether what stands at `path` may be left over since its removal failed."""
        files = (path, path.removesuffix("_tmp"), path + "_tmp")
        return self.call in (*REMOVALS, *STATS) and any(self.is_on(file) for file in files)


def argument_of(file, place):
    """A file as the command names it: doctypes have bare names."""
    return str(place.folder / file) if "/" in file else file


class Files:
    """The files of a run, and how often each call is made on each."""

    def __init__(self, strace, place, kind):
        self.place = place
        self.requests = [place.request("first", kind)]
        _, lines = strace.run(place, self.requests, ["-y", "-e", TRACED])
        self.calls = {}
        for file in sorted(self._named(lines)):
            place.renew()
            place.add_old_outputs()
            options = ["-P", argument_of(file, place), "-e", TRACED]
            _, traced = strace.run(place, self.requests, options)
            counted = collections.Counter(filter(None, map(call_of, traced)))
            self.calls[file] = self._known(file, counted)
        self.first_of_all, self.calls_of_all = self._of_all(lines)

    def _named(self, lines):
        """What the command names below the place's folder, and names without a folder."""
        found = set()
        start = str(self.place.folder) + "/"
        for line in lines:
            for path in (*QUOTED.findall(line), *DESCRIPTOR.findall(line)):
                if path.startswith(start):
                    found.add(path.removeprefix(start))
                elif path.endswith(".dtd") and "/" not in path:
                    found.add(path)
        return found

    @staticmethod
    def _known(file, counted):
        unknown = counted.keys() - ERRORS.keys() - HARMLESS
        if unknown:
            raise Unusable(f"no errors are known for {', '.join(sorted(unknown))} on {file}")
        return {call: count for call, count in counted.items() if call in ERRORS}

    def _of_all(self, lines):
        """For calls on whatever file: the number of the first below the place, and of the last."""
        first, count = {}, collections.Counter()
        for line in lines:
            call = call_of(line)
            count[call] += 1
            if call in OF_ANY_FILE and str(self.place.folder / "guide") in line:
                first.setdefault(call, count[call])
        return first, count

    def faults(self, kind):
        for file, calls in self.calls.items():
            for call, count in sorted(calls.items()):
                for number in range(1, count + 1):
                    for error in ERRORS[call]:
                        yield Fault(kind, file, call, str(number), error)
                        if error != "EINTR":
                            yield Fault(kind, file, call, f"{number}+", error)
        for call, first in sorted(self.first_of_all.items()):
            for number in range(first, self.calls_of_all[call] + 1):
                for error in OF_ANY_FILE[call]:
                    yield Fault(kind, ANY, call, f"{number}+", error)


class FaultSweep:
    """Tries faults."""

    def __init__(self, harness, scratch):
        self.harness = harness
        self.runner = Runner(harness.options.command)
        self.strace = Strace(self.runner, scratch)
        self.places = [Place(scratch / str(number) / "place", PADDING)
                       for number in range(harness.options.jobs)]
        self.undisturbed = {(place, kind): Undisturbed(self.runner, place, kind, True)
                            for place in self.places for kind in KINDS}

    def points(self):
        for kind in KINDS:
            self.places[0].renew()
            self.places[0].add_old_outputs()
            for fault in Files(self.strace, self.places[0], kind).faults(kind):
                yield Point(fault.name, lambda place, fault=fault: self.attempt(place, fault))

    def attempt(self, place, fault):
        place.renew()
        place.add_old_outputs()
        names = ["first"] if fault.is_lasting else ["first", "second"]
        requests = [place.request(name, fault.kind) for name in names]
        run, lines = self.strace.run(place, requests, fault.options(place))
        self.harness.show(run)
        if not any("(INJECTED)" in line for line in lines):
            raise Unusable("the call is not reached")
        undisturbed = self.undisturbed[place, fault.kind]
        faults = faults_of_the_end(run) + faults_of_the_others(place)
        faults += self._faults_of_answers(run, names, fault)
        faults += self._faults_of_outputs(place, fault, run, undisturbed)
        if not fault.is_lasting and run.status is not None:
            faults += self._faults_of_the_same_process(place, run, undisturbed)
        return faults + faults_of_the_next(self.runner, place, fault.kind, undisturbed)

    @staticmethod
    def _faults_of_answers(run, names, fault):
        whole = len(run.answers) == len(names) and None not in run.answers
        if whole and run.code == (1 if any(run.answers) else 0):
            return []
        # It says that it could not begin, or what it could not do besides.
        if run.code != 0 and (run.lines or fault.is_mute):
            return []
        return [f"answers {run.answers} with exit code {run.code}"]

    @staticmethod
    def _faults_of_outputs(place, fault, run, undisturbed):
        found = tree(place.out)
        faults = []
        for path in found.keys() - undisturbed.out.keys():
            if not fault.keeps(f"guide/out/{path}"):
                faults.append(f"{path} is left over")
        sources = str(place.sources) + "/"
        # Of a DTD that can't be opened for now, the document is told.
        excused = [path for path in run.unread() if path.startswith(sources)
                   and ("/dtd/" in fault.file
                        or fault.is_on(path.removeprefix(str(place.folder) + "/")))]
        if run.status == 0 and not run.unwritten() and not excused:
            words = differences(undisturbed.out, {path: found[path] for path in found
                                                  if path in undisturbed.out})
            # The mode of an old output that could not be asked for is not known.
            faults += [f"status 0 and no line 107, and {word}" for word in words
                       if fault.call not in STATS or not word.endswith("mode")]
        return faults

    @staticmethod
    def _faults_of_the_same_process(place, run, undisturbed):
        if run.answers[1:] != [0]:
            return [f"the next request of the process is answered with {run.answers[1:]}"]
        return ["after the next request of the process " + word
                for word in differences(undisturbed.again, tree(place.again))]


def sweep(harness, scratch):
    faults = FaultSweep(harness, scratch)
    points = harness.sample(list(faults.points()), 100)
    return harness.try_all(points, faults.places)


if __name__ == "__main__":
    Harness(__doc__).main(sweep)
