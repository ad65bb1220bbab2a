"""What the harnesses of this folder share: a publication, runs of it, and what must hold after
each.

A place is a folder with the sources of a publication, folders for its outputs, and a canary tree
beside and above them. Outputs hold absolute paths, so each point is tried in a fresh place of
the same name.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import queue
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
COMMAND = ROOT / "build/release/bin/marrowpress"
DTDS = ROOT / "tests/data/dtd"
SKIPPED = 77
TIMEOUT = 60
KEY_SPACE = "KeyspaceDoc.ditamap"
CANNOT_READ = "Lesen nicht möglich: "
CANNOT_WRITE = "Speichern nicht möglich: "
KINDS = ("composite", "flatbook")
OLD_MODE = 0o640
# In bytes: an output takes several writes then, and still fits on the largest disk.
PADDING = 150 * 1024

MAP = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">
<map>{}</map>
"""
TOPIC = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE topic PUBLIC "-//OASIS//DTD DITA Topic//EN" "topic.dtd">
<topic id="{}"><title>{}</title><body>{}</body></topic>
"""
LINE = "<p>Loosen the collar, and pull the chuck off.</p>\n"

SOURCES = {
    "maps/root.ditamap": MAP.format("""<title>Drill</title>
<keydef keys="product"><topicmeta><keywords><keyword>Drill</keyword></keywords></topicmeta></keydef>
<keydef keys="shared" href="../topics/shared.dita"/>
<topicref href="../topics/first.dita"><topicref href="../topics/second.dita"/></topicref>
<mapref href="nested.ditamap"/>"""),
    "maps/nested.ditamap": MAP.format("""<title>Care</title>
<keydef keys="cleaner"><topicmeta><keywords><keyword>Soap</keyword></keywords></topicmeta></keydef>
<topicref href="../topics/third.dita"/>"""),
    "maps/other.ditamap": MAP.format("""<title>Saw</title>
<keydef keys="product"><topicmeta><keywords><keyword>Saw 7</keyword></keywords></topicmeta></keydef>
<keydef keys="shared" href="../topics/shared.dita"/>
<topicref href="../topics/second.dita"/><topicref href="../topics/first.dita"/>"""),
    "topics/first.dita": TOPIC.format("first", "The <keyword keyref=\"product\"/>", """
<p>See <xref href="third.dita"/>.</p><p><image href="../images/drill.svg"/></p>"""),
    "topics/second.dita": TOPIC.format("second", "Safety", """
<p conref="shared.dita#shared/warning"/><p conkeyref="shared/word"/>
<p audience="trade">For the trade.</p>"""),
    "topics/third.dita": TOPIC.format("third", "Care", """
<p>Use <ph keyref="cleaner"/>.</p><p audience="home">At home.</p>"""),
    "topics/shared.dita": TOPIC.format("shared", "Shared", """
<p id="warning">Unplug it.</p><p id="word">Wear glasses.</p>"""),
    "images/drill.svg": '<svg xmlns="http://www.w3.org/2000/svg"/>\n',
    "profile.ditaval": '<val><prop att="audience" val="trade" action="exclude"/></val>\n',
}


class Unusable(Exception):
    """The harness itself cannot do what it is to do, and says so instead of passing."""


class Skipped(Exception):
    """What the harness needs is not there."""


def tree(folder, without=()):
    """What stands below a folder: for each path its mode and content, but below `without`."""
    found = {}
    pending = [folder]
    while pending:
        for entry in os.scandir(pending.pop()):
            path = Path(entry.path)
            if path in without:
                continue
            mode = stat.S_IMODE(entry.stat(follow_symlinks=False).st_mode)
            if entry.is_symlink():
                content = os.readlink(path)
            elif entry.is_dir():
                content = None
                pending.append(path)
            else:
                content = path.read_bytes()
            found[path.relative_to(folder).as_posix()] = (mode, content)
    return found


def differences(expected, found):
    """A word for each path in which two trees differ."""
    words = []
    for path in sorted(expected.keys() | found.keys()):
        if path not in found:
            words.append(f"{path} is gone")
        elif path not in expected:
            words.append(f"{path} is left over")
        elif expected[path][1] != found[path][1]:
            words.append(f"{path} differs")
        elif expected[path] != found[path]:
            words.append(f"{path} has another mode")
    return words


class Place:
    """A folder with sources and canaries, and room for outputs in `out` and `again`."""

    def __init__(self, folder, padding=0):
        self.folder = folder
        self.padding = padding
        self.out = folder / "guide/out"
        self.again = folder / "guide/again"
        self.sources = folder / "guide/sources"
        self.renew()

    def renew(self):
        """As it was at first: nothing that a run left stays."""
        if self.folder.exists():
            shutil.rmtree(self.folder)
        for folder in (self.out, self.again, self.sources, self.folder / "beside"):
            folder.mkdir(parents=True)
        for name, text in SOURCES.items():
            path = self.sources / name
            path.parent.mkdir(exist_ok=True)
            path.write_text(text, encoding="utf-8")
        if self.padding:
            self._pad("topics/third.dita")
        shutil.copytree(DTDS, self.sources / "dtd")
        for canary in ("canary.txt", "beside/canary.dita", "guide/canary.txt"):
            (self.folder / canary).write_text(f"{canary} belongs to nobody\n", encoding="utf-8")
        (self.folder / "guide/canary").symlink_to("sources/maps/root.ditamap")
        # Neither takes room on a disk that has none.
        for folder in (self.out, self.again):
            self.add_canaries(folder)
        for kind in KINDS:
            self.add_request("first", kind, self.out)
            self.add_request("second", kind, self.again)
        self.untouched = self.owned_by_others()

    def renew_outputs(self):
        """As `renew`, for runs that left everything else as it was."""
        for folder in (self.out, self.again):
            shutil.rmtree(folder)
            folder.mkdir()
            self.add_canaries(folder)

    def _pad(self, name):
        path = self.sources / name
        text = path.read_text(encoding="utf-8")
        lines = LINE * (self.padding // len(LINE))
        path.write_text(text.replace("</body>", lines + "</body>"), encoding="utf-8")

    def add_canaries(self, folder):
        (folder / "canary.dita").touch()
        (folder / "canary-link").symlink_to("../canary.txt")

    def add_old_outputs(self):
        """What an earlier run left at the places of the outputs."""
        for name in ("book.dita", "first.qs", "third.qs"):
            path = self.out / name
            path.write_text("<dita><!-- of an earlier run --></dita>\n", encoding="utf-8")
            path.chmod(OLD_MODE)

    def add_request(self, name, kind, out, source="root.ditamap", output="book.dita"):
        """Writes a request, and gives its path."""
        params = {"ditamap": str(self.sources / "maps" / source),
                  "ditaVal": str(self.sources / "profile.ditaval"),
                  "keyspaceDocDtd": "map.dtd", "compositeDocDtd": "ditabase.dtd", "usePrint": False}
        if kind == "composite":
            request = {"type": "PublishComp", "params": {**params, "output": str(out / output)}}
        else:
            request = {"type": "PublishFlatBook",
                       "params": {**params, "outputDir": str(out),
                                  "generateQSComponentsAtOneLoc": True}}
        path = self.request(name, kind)
        path.write_text(json.dumps(request, indent=2) + "\n", encoding="utf-8")
        return path

    def request(self, name, kind):
        return self.sources / f"{name}-{kind}.json"

    def owned_by_others(self):
        return tree(self.folder, without=(self.out, self.again))


class Run:
    """What a run of the command came to."""

    def __init__(self, code, output, errors):
        self.code = code
        self.output = output
        self.errors = errors
        self.answers = []
        for line in output.splitlines():
            try:
                values = json.loads(line)["values"]
            except (ValueError, KeyError, TypeError):
                values = None
            self.answers.append(values[0]["value"] if values else None)
        self.lines = [line for line in errors.splitlines() if not line.startswith("> ")]

    @property
    def status(self):
        return self.answers[0] if self.answers else None

    def unread(self):
        return [line.removeprefix(CANNOT_READ) for line in self.lines
                if line.startswith(CANNOT_READ)]

    def unwritten(self):
        return [line.removeprefix(CANNOT_WRITE) for line in self.lines
                if line.startswith(CANNOT_WRITE)]

    def __str__(self):
        return f"exit code {self.code}\n{self.output}{self.errors}".rstrip()


class Runner:
    """Starts `marrowpress host` in a place."""

    def __init__(self, command):
        self.command = command

    def arguments(self, place, requests):
        return [str(self.command), "host", "--catalog", str(place.sources / "dtd/catalog.xml"),
                *map(str, requests)]

    @staticmethod
    def environment():
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("XML_CATALOG_FILES", "LANGUAGE")}
        # Leaks cannot be looked for in a process that is traced.
        options = [environment.get("ASAN_OPTIONS"), "detect_leaks=0"]
        return environment | {"LC_ALL": "C.UTF-8", "ASAN_OPTIONS": ":".join(filter(None, options))}

    def start(self, place, requests, before=(), stdin=subprocess.DEVNULL):
        """A process that is on its way; it leads a group of its own."""
        return self.start_command(
            place.folder, [*map(str, before), *self.arguments(place, requests)], stdin)

    def start_command(self, folder, command, stdin=subprocess.DEVNULL):
        """The same of any command, with `folder` as its current one."""
        return subprocess.Popen(
            command, cwd=folder, env=self.environment(), stdin=stdin, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, encoding="utf-8", errors="replace", start_new_session=True)

    def run(self, place, requests, before=()):
        return self.finish(self.start(place, requests, before))

    @staticmethod
    def finish(process):
        try:
            output, errors = process.communicate(timeout=TIMEOUT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, errors = process.communicate()
            return Run(None, output, errors)
        return Run(process.returncode, output, errors)


class Undisturbed:
    """What a kind of output comes to in a place when nothing happens."""

    def __init__(self, runner, place, kind, has_old_outputs=False):
        place.renew()
        if has_old_outputs:
            place.add_old_outputs()
        requests = [place.request("first", kind), place.request("second", kind)]
        self.run = runner.run(place, requests)
        self.out = tree(place.out)
        self.again = tree(place.again)
        if self.run.code != 0 or self.run.answers != [0, 0] or self.run.lines:
            raise Unusable(f"the undisturbed {kind} is none:\n{self.run}")
        if differences(place.untouched, place.owned_by_others()):
            raise Unusable(f"the undisturbed {kind} changes what it does not own")


class Point:
    """One thing that a harness tries. Its name says how to try it again."""

    def __init__(self, name, attempt):
        self.name = name
        self.attempt = attempt


class Harness:
    """Tries points, two at a time unless told otherwise, each in the place of its worker."""

    def __init__(self, description, short_seconds=40):
        self.parser = argparse.ArgumentParser(
            description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
        self.parser.add_argument(
            "--command", type=lambda path: Path(path).resolve(), default=COMMAND,
            help="the command to run, unless it is that of the preset release")
        self.parser.add_argument("--short", action="store_true",
                                 help=f"a sample that takes less than {short_seconds} s")
        self.parser.add_argument("--only", metavar="POINT",
                                 help="try this point alone, and show what it comes to")
        self.parser.add_argument("--jobs", type=int, default=2, help="points at a time")
        self.options = None
        self.counts = collections.Counter()
        self._lock = threading.Lock()

    def main(self, harness, prepare=None):
        """Ends the process: 0 when no point is lost, 1 when one is, 77 when none can be tried."""
        self.options = self.parser.parse_args()
        if not self.options.command.is_file():
            self.parser.error(f"{self.options.command} is not there; build it first")
        if prepare:
            prepare(self)
        try:
            with tempfile.TemporaryDirectory(prefix="marrowpress-") as scratch:
                code = harness(self, Path(scratch).resolve())
        except Skipped as reason:
            print(f"skipped: {reason}")
            code = SKIPPED
        except Unusable as fault:
            print(f"error of the harness: {fault}")
            code = 1
        sys.exit(code)

    def sample(self, points, count):
        """All points, or an even spread of them for the short form; the one of --only alone."""
        names = [point.name for point in points]
        if len(set(names)) != len(names):
            raise Unusable("two points have one name")
        if self.options.only:
            points = [point for point in points if point.name == self.options.only]
            if not points:
                raise Unusable(f"there is no point {self.options.only}")
        elif self.options.short and len(points) > count:
            points = [points[index * len(points) // count] for index in range(count)]
        return points

    def try_all(self, points, places):
        """Prints each lost point and the count of both; gives the exit code."""
        started = time.monotonic()
        free = queue.SimpleQueue()
        for place in places:
            free.put(place)

        def attempt(point):
            place = free.get()
            try:
                return point, point.attempt(place)
            except Unusable as fault:
                return point, [f"error of the harness: {fault}"]
            finally:
                free.put(place)

        lost = 0
        with concurrent.futures.ThreadPoolExecutor(len(places)) as workers:
            for point, faults in workers.map(attempt, points):
                if faults:
                    lost += 1
                    print(f"lost: {point.name}: " + "; ".join(faults), flush=True)
        seconds = time.monotonic() - started
        counted = "".join(f", {count} {word}" for word, count in sorted(self.counts.items()))
        print(f"{len(points)} points tried, {lost} lost{counted}, {seconds:.0f} s")
        return 1 if lost or not points else 0

    def count(self, word):
        """Counts points that came to the same, for the last line."""
        with self._lock:
            self.counts[word] += 1

    def show(self, run):
        if self.options.only:
            print(run)
        return run


def faults_of_the_others(place):
    """What a run did to sources and canaries, or left of its own."""
    faults = differences(place.untouched, place.owned_by_others())
    for folder in (place.out, place.again):
        if folder.is_dir():
            for name in ("canary.dita", "canary-link"):
                if not os.path.lexists(folder / name):
                    faults.append(f"{folder.name}/{name} is gone")
            if (folder / "canary.dita").is_file() and (folder / "canary.dita").stat().st_size:
                faults.append(f"{folder.name}/canary.dita differs")
    return faults


def faults_of_the_end(run):
    """What is wrong with the way in which a process ended, whatever the run came to."""
    if run.code is None:
        return [f"hangs: not ended after {TIMEOUT} s"]
    if run.code < 0 or run.code > 2:
        return [f"ends with {run.code}"]
    return []


def faults_of_the_next(runner, place, kind, undisturbed):
    """What the next request, in a process of its own, does not mend.

    Modes are not compared: who lost an old output also lost its mode. Outputs that only the earlier
    run had stay, as those of any earlier run do.
    """
    run = runner.run(place, [place.request("first", kind)])
    if run.code != 0 or run.answers != [0] or run.lines:
        return [f"the next run ends with {run.code}, {run.answers}, {run.lines}"]
    found = {path: content for path, (_, content) in tree(place.out).items()}
    faults = [f"the next run gives another {path}"
              for path, (_, content) in sorted(undisturbed.out.items())
              if path not in found or found[path] != content]
    return faults + [f"the next run leaves {path}" for path in sorted(found)
                     if path.startswith(KEY_SPACE) or path.endswith("_tmp")]


class Strace:
    """Traces runs of the command, and puts faults and signals on their system calls."""

    TOOL = "/usr/bin/strace"

    def __init__(self, runner, scratch):
        self.runner = runner
        self.scratch = scratch
        self._require()

    def _require(self):
        if not Path(self.TOOL).is_file():
            raise Skipped(f"{self.TOOL} is not there")
        done = subprocess.run([self.TOOL, "-f", "-o", "/dev/null", "true"],
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, encoding="utf-8",
                              check=False)
        if done.returncode != 0:
            raise Skipped(f"processes may not be traced here: {done.stderr.strip()}")

    def run(self, place, requests, options):
        """A traced run, and the lines of the trace."""
        return self.run_command(place.folder, self.runner.arguments(place, requests), options)

    def run_command(self, folder, command, options):
        """The same of any command, with `folder` as its current one."""
        log = self.scratch / f"{folder.parent.name}.trace"
        before = [self.TOOL, "-f", "-q", "-o", str(log), *options]
        run = self.runner.finish(self.runner.start_command(folder, [*before, *command]))
        return run, log.read_text(encoding="utf-8", errors="replace").splitlines()


def call_of(line):
    """The name of the system call that a line of a trace begins with; None for other lines."""
    word = line.split(None, 1)[1] if " " in line else ""
    name = word.partition("(")[0]
    return name if name.isidentifier() and "(" in word else None
