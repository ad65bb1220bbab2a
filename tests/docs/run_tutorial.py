#!/usr/bin/env python3
"""Does what docs/tutorial.md says, and checks that the commands print what stands there.

    run_tutorial.py [--update] [--nothing-to-mend] COMMAND TUTORIAL EXAMPLE

The blocks fenced as `console` are run in their order, in one shell, in a copy of the folder EXAMPLE.
A line of three dots stands for any lines; seconds, and whether the machine has a catalog of its own,
make no difference. Then each of the mends is left out in turn: the last command of the tutorial must
not end with 0 then. A document that only asks has no mends, and --nothing-to-mend says so. Ends with 1
where anything is otherwise.

--update writes what the commands print into TUTORIAL, but where three dots stand. Ends with 77 where
root cannot do without its right to write everywhere, and so no folder is read-only for it.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

PROMPT = "$ "
ANY_LINES = "..."
MENDS = ("sed -i ", "chmod u+w ", "unset ")
MARK = "--- end of a command: "
SECONDS = re.compile(r"\b\d+\.\d s$", re.MULTILINE)
NO_SYSTEM_CATALOG = "/etc/xml/catalog (which is not there)"
NOT_ROOT = ["setpriv", "--bounding-set=-dac_override", "--inh-caps=-all"]
UNWANTED = {"COLUMNS", "GITHUB_ACTIONS", "LANGUAGE", "XML_CATALOG_FILES"}
READERS_FOLDER = "/tmp/kettle"  # as the tutorial calls it
TIMEOUT = 120


class Step:
    """A command of the tutorial, and what it is to print."""

    def __init__(self, command):
        self.command = command
        self.expected = []

    def is_mend(self):
        return self.command.startswith(MENDS)

    def is_run(self):
        return self.command.startswith("marrowpress ")

    def matches(self, printed):
        parts = [[]]
        for line in self.expected:
            if line == ANY_LINES:
                parts.append([])
            else:
                parts[-1].append(line)
        pattern = "(?:.*\n)*".join(
            "".join(re.escape(neutral(line)) + "\n" for line in part) for part in parts)
        return re.fullmatch(pattern, neutral(printed)) is not None


def neutral(text):
    return SECONDS.sub("0.0 s", text).replace(NO_SYSTEM_CATALOG, NO_SYSTEM_CATALOG.split()[0])


def read_parts(text):
    """The tutorial as a list of lines and of steps."""
    parts = []
    is_console = False
    for line in text.splitlines():
        if line.startswith("```"):
            is_console = line == "```console"
            parts.append(line)
        elif is_console and line.startswith(PROMPT):
            parts.append(Step(line.removeprefix(PROMPT)))
        elif is_console:
            parts[-1].expected.append(line)
        else:
            parts.append(line)
    return parts


def written(parts):
    lines = []
    for part in parts:
        if isinstance(part, Step):
            lines += [PROMPT + part.command, *part.expected]
        else:
            lines.append(part)
    return "\n".join(lines) + "\n"


class Reader:
    """Whoever follows the tutorial, each time in a fresh copy of the example."""

    def __init__(self, command, example):
        self.command = command
        self.example = example
        self.shell = ["bash", "--noprofile", "--norc"]
        if os.geteuid() == 0:
            self.shell = NOT_ROOT + self.shell

    def run(self, commands):
        """What each of the commands prints, and the exit code of the last."""
        script = "".join(f'{{ {command}\n}} 2>&1\nstatus=$?; echo "{MARK}$status"; (exit $status)\n'
                         for command in commands)
        with tempfile.TemporaryDirectory() as folder:
            guide = Path(folder).resolve() / "kettle"
            shutil.copytree(self.example, guide)
            done = subprocess.run([*self.shell, "-c", script], cwd=guide, env=self.environment(),
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, encoding="utf-8", timeout=TIMEOUT,
                                  check=False)
            if guide.joinpath("out").exists():
                guide.joinpath("out").chmod(0o755)
        printed = done.stdout.replace(str(guide), READERS_FOLDER)
        pieces = re.split(re.escape(MARK) + r"(\d+)\n", printed)
        if len(pieces) != 2 * len(commands) + 1:
            raise RuntimeError("the shell stopped early:\n" + printed)
        return pieces[0:-1:2], int(pieces[-2])

    def environment(self):
        environment = {name: value for name, value in os.environ.items() if name not in UNWANTED}
        environment["PATH"] = str(self.command.parent) + os.pathsep + os.environ["PATH"]
        environment["LC_ALL"] = "C.UTF-8"
        return environment

    def has_rights_of_all(self):
        """Whether no folder is read-only for the shell."""
        try:
            with tempfile.TemporaryDirectory() as folder:
                os.chmod(folder, 0o555)
                test = [*self.shell, "-c", f": > {folder}/file"]
                done = subprocess.run(test, stderr=subprocess.PIPE, encoding="utf-8",
                                      env=self.environment(), check=False)
                return "Permission denied" not in done.stderr
        except FileNotFoundError:
            return True


def check_transcript(steps, reader, is_update):
    printed, _ = reader.run([step.command for step in steps])
    faults = []
    for step, text in zip(steps, printed):
        if step.matches(text):
            continue
        if is_update and ANY_LINES not in step.expected:
            step.expected = text.splitlines()
        else:
            faults.append(f"$ {step.command}\nprints:\n{text}and not:\n" +
                          "\n".join(step.expected))
    return faults


def check_each_mend(steps, reader):
    """Without any of the mends, the last run is no good one; with all of them it is."""
    last = [step for step in steps if step.is_run()][-1]
    others = [step for step in steps if not step.is_run()]
    mends = [step for step in others if step.is_mend()]
    faults = []
    for left_out in [None, *mends]:
        commands = [step.command for step in others if step is not left_out]
        _, code = reader.run([*commands, last.command])
        if left_out is None and code != 0:
            faults.append(f"with all mends the exit code is {code}")
        if left_out is not None and code == 0:
            faults.append(f"the exit code is 0 without: {left_out.command}")
    return faults, len(mends)


def main():
    parser = argparse.ArgumentParser(description="Does what the tutorial says.")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--nothing-to-mend", action="store_true")
    parser.add_argument("command", type=lambda path: Path(path).resolve())
    parser.add_argument("tutorial", type=Path)
    parser.add_argument("example", type=Path)
    arguments = parser.parse_args()

    reader = Reader(arguments.command, arguments.example)
    if reader.has_rights_of_all():
        print("no folder is read-only for this user")
        return 77
    parts = read_parts(arguments.tutorial.read_text(encoding="utf-8"))
    steps = [part for part in parts if isinstance(part, Step)]
    faults = check_transcript(steps, reader, arguments.update)
    if arguments.update:
        arguments.tutorial.write_text(written(parts), encoding="utf-8")
    mends = 0
    if not arguments.nothing_to_mend:
        more, mends = check_each_mend(steps, reader)
        faults += more
        faults += [] if mends else ["nothing is mended"]
    for fault in faults:
        print(fault)
    print(f"{len(steps)} commands, {mends} mends, {len(faults)} faults")
    return 1 if faults or not steps else 0


if __name__ == "__main__":
    sys.exit(main())
