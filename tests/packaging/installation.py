"""What the tests of this folder share: what an installation holds, and how commands are run."""

import difflib
import os
import re
import subprocess
from pathlib import Path

CONTENTS = Path(__file__).resolve().parent / "contents.txt"
SKIPPED = 77
TIMEOUT = 300
# Who installs the program has none of them.
UNWANTED = {"COLUMNS", "GITHUB_ACTIONS", "LANGUAGE", "XML_CATALOG_FILES", "DESTDIR"}


class Fault(Exception):
    """Something that isn't as it has to be."""


def run(*command, wants=0, **options):
    """What a command prints, on both streams; its exit code has to be what is wanted."""
    environment = {name: value for name, value in os.environ.items() if name not in UNWANTED}
    environment["LC_ALL"] = "C.UTF-8"
    done = subprocess.run([str(part) for part in command], env=environment, encoding="utf-8",
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=TIMEOUT, check=False, **options)
    if done.returncode != wants:
        raise Fault(f"{' '.join(map(str, command))}: exit code {done.returncode}\n{done.stdout}")
    return done.stdout


def require(is_so, what):
    if not is_so:
        raise Fault(what)


def neutral(path):
    """A path of an installation, without what depends on the machine and on the kind of build."""
    path = re.sub(r"^lib/[a-z0-9_]+-linux-gnu\w*/", "lib/", path)
    return re.sub(r"MarrowpressConfig-\w+\.cmake$", "MarrowpressConfig-TYPE.cmake", path)


def require_contents(paths):
    """The files below the prefix have to be those of the list."""
    expected = CONTENTS.read_text(encoding="utf-8").splitlines()
    found = sorted(neutral(path) for path in paths)
    difference = list(difflib.unified_diff(expected, found, "contents.txt", "found", lineterm="", n=0))
    require(not difference, "\n".join(difference))
