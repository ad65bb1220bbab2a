#!/usr/bin/env python3
"""Publishes to disks that are too small, from 0 to 256 KB in steps of 1 KB.

    tests/harness/disk_sweep.py [OPTIONS]

The folder of the outputs is a file system of its own, in a mount name space of this process,
which needs no rights where user name spaces are allowed. It is full after so many pages of 4 KB;
within a page, the publication is longer by a KB a step, so that the room ends at another place
of its files. After each point
  - each output is whole, or a line 107 tells of it,
  - nothing is left over beside the outputs,
  - sources, and what belongs to nobody, are unchanged,
  - the next run, with room enough, gives the undisturbed result.

Where name spaces are not allowed, and with --limit-files, no file may grow over the size
instead. That proves less: each file has the room for itself, and creating, renaming and closing
never fail.

A point is called KIND:SIZE, the room in KB.
"""

import os
import subprocess
import sys

from harness import (KINDS, PADDING, Harness, Place, Point, Runner, Undisturbed, Unusable,
                     differences, faults_of_the_end, faults_of_the_next, faults_of_the_others, tree)

SIZES = range(0, 257)
PAGE = 4  # KB
FILLER = "filler"  # takes the one page that a file system has at least
INSIDE = "MARROWPRESS_MOUNT_NAME_SPACE"
UNSHARE = ["unshare", "--map-root-user", "--mount"]


class SmallDisk:
    """A file system of `size` KB at `folder`, while the scope lasts."""

    def __init__(self, folder, size):
        self.folder = folder
        self.pages = -(-size // PAGE) + 1

    def __enter__(self):
        self._mount(f"size={self.pages * PAGE}k", "-t", "tmpfs", "tmpfs")
        return self

    def __exit__(self, *_):
        subprocess.run(["umount", self.folder], check=True)

    def enlarge(self):
        self._mount("remount,size=4m")

    def _mount(self, options, *what):
        subprocess.run(["mount", "-o", options, *what, self.folder], check=True)


class DiskSweep:
    """Publishes with little room."""

    def __init__(self, harness, scratch):
        self.harness = harness
        self.runner = Runner(harness.options.command)
        self.places = [Place(scratch / str(number) / "place")
                       for number in range(harness.options.jobs)]
        self.undisturbed = {}
        for place in self.places:
            for step in range(PAGE):
                place.padding = PADDING + step * 1024
                for kind in KINDS:
                    self.undisturbed[place, kind, step] = Undisturbed(self.runner, place, kind)

    def points(self):
        attempt = self.attempt_limited if self.harness.options.limit_files else self.attempt
        for kind in KINDS:
            for size in SIZES:
                yield Point(f"{kind}:{size}",
                            lambda place, kind=kind, size=size: attempt(place, kind, size))

    def _prepare(self, place, size):
        step = -size % PAGE
        place.padding = PADDING + step * 1024
        place.renew()
        return step

    def attempt(self, place, kind, size):
        undisturbed = self.undisturbed[place, kind, self._prepare(place, size)]
        with SmallDisk(place.out, size) as disk:
            place.add_canaries(place.out)
            filler = place.out / FILLER
            filler.write_bytes(b"." * PAGE * 1024)
            room = os.statvfs(place.out)
            if room.f_bavail * room.f_frsize != (disk.pages - 1) * PAGE * 1024:
                raise Unusable(f"there is room for {room.f_bavail} blocks of {room.f_frsize} bytes")
            run = self.runner.run(place, [place.request("first", kind)])
            if filler.read_bytes() != b"." * PAGE * 1024:
                return [f"{FILLER} differs"]
            filler.unlink()
            faults = self._judge(place, run, undisturbed)
            disk.enlarge()
            return faults + faults_of_the_next(self.runner, place, kind, undisturbed)

    def attempt_limited(self, place, kind, size):
        undisturbed = self.undisturbed[place, kind, self._prepare(place, size)]
        run = self.runner.run(place, [place.request("first", kind)],
                              ["prlimit", f"--fsize={size * 1024}"])
        faults = self._judge(place, run, undisturbed)
        return faults + faults_of_the_next(self.runner, place, kind, undisturbed)

    def _judge(self, place, run, undisturbed):
        self.harness.show(run)
        faults = faults_of_the_end(run) + faults_of_the_others(place)
        found = tree(place.out)
        faults += [f"{path} is left over" for path in sorted(found.keys() - undisturbed.out.keys())]
        lacking = differences(undisturbed.out, found)
        if lacking and not run.unwritten():
            faults += [f"status {run.status} and no line 107, and {word}" for word in lacking]
        if not lacking and (run.answers != [0] or run.lines):
            faults.append(f"all is whole, and the answer is {run.answers}, {run.lines}")
        self.harness.count("whole" if not lacking else "told")
        return faults


def enter_name_space(harness):
    """Starts this process again in a name space of its own; only returns when it is in one, or when
    that is not allowed."""
    if os.environ.pop(INSIDE, None):
        return
    if harness.options.limit_files:
        return
    mounts = [*UNSHARE, "mount", "-t", "tmpfs", "tmpfs", "/mnt"]
    try:
        done = subprocess.run(mounts, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                              encoding="utf-8", check=False)
        reason = done.stderr.strip() if done.returncode != 0 else None
    except FileNotFoundError as fault:
        reason = str(fault)
    if reason is None:
        os.environ[INSIDE] = "1"
        os.execvp(UNSHARE[0], [*UNSHARE, sys.executable, *sys.argv])
    print(f"file systems may not be mounted here ({reason}): files are limited instead, "
          "which proves less")
    harness.options.limit_files = True


def sweep(harness, scratch):
    disks = DiskSweep(harness, scratch)
    points = harness.sample(list(disks.points()), 80)
    code = harness.try_all(points, disks.places)
    if not harness.options.only and len(harness.counts) != 2:
        raise Unusable(f"all points are {' '.join(harness.counts)}: the sizes are the wrong ones")
    return code


if __name__ == "__main__":
    HARNESS = Harness(__doc__)
    HARNESS.parser.add_argument("--limit-files", action="store_true",
                                help="limit the size of files, and mount no file systems")
    HARNESS.main(sweep, enter_name_space)
