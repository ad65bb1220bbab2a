"""Runs of a publication and of its floor, and what each costs as a process."""

import json
import os
import re
import shutil
import subprocess
from dataclasses import dataclass
from pathlib import Path

from cases import FLAT_BOOK, Costs

APPENDING = "Wird angehängt: "
START = re.compile(r'EntityResolver start -basefile "(.*)"', re.DOTALL)
RESOLVE = re.compile(r'EntityResolver resolveentity .*-publicid "(.*)"', re.DOTALL)
DOCTYPE = re.compile(r"<!DOCTYPE dita [^>]*>")
COUNTED = re.compile(r"I\s+refs:\s+([\d,]+)")
PROGRESS = "> "


class Failure(Exception):
    """Something that was to be measured did not come to its end."""


class Publication:
    """A map, what is made of it, and a folder for all that comes of it."""

    def __init__(self, folder, map_path, output, dita_val=None, catalogs=(), open_documents=None):
        self.folder = folder
        self.map_path = map_path
        self.output = output
        self.dita_val = dita_val
        self.catalogs = catalogs
        self.open_documents = open_documents
        self.out = folder / "out"
        self.request = folder / "request.json"
        self.trace = folder / "trace"
        self.list = folder / "list"
        self.shell = folder / "shell.dita"
        shutil.rmtree(folder, ignore_errors=True)
        self.out.mkdir(parents=True)
        self._write_request()

    def _write_request(self):
        params = {"ditamap": str(self.map_path), "ditaVal": str(self.dita_val or ""),
                  "keyspaceDocDtd": "map.dtd", "compositeDocDtd": "ditabase.dtd", "usePrint": False}
        if self.output == FLAT_BOOK:
            request = {"type": "PublishFlatBook",
                       "params": {**params, "outputDir": str(self.out),
                                  "generateQSComponentsAtOneLoc": True}}
        else:
            request = {"type": "PublishComp",
                       "params": {**params, "output": str(self.out / "book.dita")}}
        self.request.write_text(json.dumps(request), encoding="utf-8")

    def renew_out(self):
        shutil.rmtree(self.out)
        self.out.mkdir()

    def command(self, binary, *options):
        command = [str(binary), "host", *options]
        for catalog in self.catalogs:
            command += ["--catalog", str(catalog)]
        if self.open_documents:
            command += ["--open-documents", str(self.open_documents)]
        return [*command, str(self.request)]

    def floor_command(self, binary):
        return [str(binary), str(self.list), str(self.folder / "floor.dita")]

    def write_list(self, binary):
        """Traces a run, and writes what the floor has to do; gives the run's report lines."""
        self.renew_out()
        lines = run(self.command(binary, "--trace", str(self.trace)), self.folder)
        self.shell.write_text(f"{self._doctype()}<dita><topic id=\"shell\"><title/></topic></dita>\n",
                              encoding="utf-8")
        traced = Traced(self.trace, self.out)
        self.list.write_text(traced.list_with(self.shell), encoding="utf-8")
        self.trace.unlink()
        return lines

    def _doctype(self):
        """The doctype that the run gives to what it writes."""
        for path in sorted(self.out.iterdir()):
            with path.open(encoding="utf-8") as written:
                found = DOCTYPE.search(written.read(4096))
            if found:
                return found.group()
        raise Failure(f"no output with a doctype in {self.out}")

    def source_bytes(self):
        """Of all that the floor parses, but for the shell."""
        fields = (line.split("\t") for line in self.list.read_text(encoding="utf-8").splitlines())
        return sum(Path(path[0]).stat().st_size for kind, *path in fields
                   if kind != "public" and path[0] != str(self.shell))


class Traced:
    """The documents that a run has read, those that it has taken in, and where DTDs are."""

    def __init__(self, trace, out):
        self.out = out
        self.documents = {}  # path: whether it is taken in, in the order of the run
        self.paths_by_name = {}
        self.public_ids = {}
        self._last = None
        with trace.open(encoding="utf-8") as lines:
            for line in lines:
                self._read(json.loads(line))

    def _read(self, operation):
        if operation["op"] == "HostCallClient":
            started = START.fullmatch(operation["command"])
            if started:
                self._start(started.group(1))
        elif operation["op"] == "HostCallClientTyped":
            asked = RESOLVE.fullmatch(operation["command"])
            if asked and operation["reply"]:
                self.public_ids[asked.group(1)] = operation["reply"][0]["value"]
        elif operation["op"] == "HostReportProgress" and operation["text"].startswith(APPENDING):
            self._append(operation["text"].removeprefix(APPENDING).rstrip("\r\n"))

    def _start(self, path):
        self._last = path
        # What the run itself writes is no source, and what isn't there can't be parsed.
        if path in self.documents or not os.path.isfile(path):
            return
        if Path(path).is_relative_to(self.out):
            return
        self.documents[path] = False
        self.paths_by_name.setdefault(os.path.basename(path), []).append(path)

    def _append(self, name):
        """The line has a name without its folder: that of the document read last, or else of one
        that was read before. Where files of one name leave that open, the floor is rather too low.
        """
        if self._last in self.documents and os.path.basename(self._last) == name:
            self.documents[self._last] = True
            return
        paths = self.paths_by_name.get(name, [])
        waiting = [path for path in paths if not self.documents[path]]
        if waiting and not any(self.documents[path] for path in paths):
            self.documents[waiting[0]] = True

    def list_with(self, shell):
        lines = [f"public\t{public_id}\t{path}" for public_id, path in self.public_ids.items()]
        lines.append(f"document\t{shell}")
        lines += [f"{'topic' if is_topic else 'document'}\t{path}"
                  for path, is_topic in self.documents.items()]
        return "\n".join(lines) + "\n"


def environment():
    """One in which every run finds the same catalogs and says the same."""
    kept = {name: value for name, value in os.environ.items()
            if name not in ("XML_CATALOG_FILES", "LANGUAGE")}
    return kept | {"LC_ALL": "C.UTF-8"}


def run(command, folder):
    """Runs a command to its end, and gives its report lines."""
    done = subprocess.run(command, cwd=folder, env=environment(), stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, encoding="utf-8",
                          errors="replace", check=False)
    lines = [line for line in done.stderr.splitlines() if not line.startswith(PROGRESS)]
    if done.returncode != 0:
        raise Failure(f"{' '.join(command)} ends with {done.returncode}: {lines[:3]}")
    return lines


def measure_process(command, folder):
    """CPU seconds, of user and system, and the most memory in bytes.

    A process begins as a copy of this one, whose memory counts for it, too. So this one stays small.
    """
    with open(os.devnull, "r+b") as nothing:
        process = subprocess.Popen(command, cwd=folder, env=environment(), stdin=nothing,
                                   stdout=nothing, stderr=nothing)
        _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Failure(f"{' '.join(command)} ends with {process.returncode}")
    return used.ru_utime + used.ru_stime, used.ru_maxrss * 1024


def count_instructions(command, folder):
    log = folder / "valgrind.log"
    run(["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
         f"--log-file={log}", *command], folder)
    counted = COUNTED.search(log.read_text(encoding="utf-8"))
    if not counted:
        raise Failure(f"valgrind has counted nothing: {log}")
    return int(counted.group(1).replace(",", ""))


@dataclass
class Side:
    """A command whose costs are gathered, and the lists that take them."""
    command: list
    cpu: list
    memory: list
    instructions: list


def measure(publication, binaries, floor, rounds, counts_instructions):
    """The costs of a publication with each binary; those of the floor stand with the first.

    All take turns in a round, and in the next one in the other order.
    """
    costs = [Costs() for _ in binaries]
    sides = [Side(publication.command(binary), cost.cpu, cost.memory, cost.instructions)
             for binary, cost in zip(binaries, costs)]
    if floor:
        sides.append(Side(publication.floor_command(floor), costs[0].floor_cpu,
                          costs[0].floor_memory, costs[0].floor_instructions))
    for number in range(rounds):
        for side in sides if number % 2 == 0 else reversed(sides):
            publication.renew_out()
            seconds, memory = measure_process(side.command, publication.folder)
            side.cpu.append(seconds)
            side.memory.append(memory)
    if counts_instructions:
        for side in sides:
            publication.renew_out()
            side.instructions.append(count_instructions(side.command, publication.folder))
    for cost in costs[1:]:
        cost.floor_cpu, cost.floor_memory = costs[0].floor_cpu, costs[0].floor_memory
        cost.floor_instructions = costs[0].floor_instructions
    if floor:
        for cost in costs:
            cost.source_bytes = publication.source_bytes()
    return costs
