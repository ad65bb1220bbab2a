#!/usr/bin/env python3
"""Checks what bash offers with the script of `completion bash`: check_completion.py COMMAND MAP

A bash without a user's settings reads the script, and is asked to complete command lines in a folder
made for that. Ends with 1 where it offers something else than it should, or takes too long.
"""

import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ASK = r"""
source <(marrowpress completion bash) || exit 1
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_marrowpress marrowpress "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\n' "${COMPREPLY[@]}"
"""


def bash(folder, command, *arguments):
    environment = {"PATH": f"{command.parent}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8",
                   "HOME": str(folder)}
    done = subprocess.run(["bash", "--norc", "-c", command_text(arguments), "bash", *arguments],
                          cwd=folder, env=environment, stdout=subprocess.PIPE, check=True)
    return [line for line in done.stdout.decode("utf-8").splitlines() if line]


def command_text(arguments):
    return ASK if arguments else "source <(marrowpress completion bash); complete -p marrowpress"


def main(command, guide):
    faults = []

    def expect(offered, expected, what):
        if sorted(offered) != sorted(expected):
            faults.append(f"{what}: {offered} in place of {expected}")

    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for file in ("a.ditamap", "a map.ditamap", "b.dita", "p.ditaval", "c.xml"):
            (folder / file).write_text("<map><keydef keys='ground ghost'/></map>", encoding="utf-8")
        (folder / "maps").mkdir()

        expect(bash(folder, command), ["complete -F _marrowpress marrowpress"], "complete -p")
        for line, expected in {
            "marrowpress pu": ["publish"],
            "marrowpress publish --one": ["--one-location"],
            "marrowpress publish --format ": ["composite", "flatbook"],
            "marrowpress publish --format = fl": ["flatbook"],
            "marrowpress check ": ["a.ditamap", "a map.ditamap", "maps"],
            "marrowpress check a.ditamap --filter ": ["p.ditaval", "maps"],
            "marrowpress check a.ditamap --catalog ": ["c.xml", "maps"],
            "marrowpress keys a.ditamap --explain gh": ["ghost"],
            "marrowpress keys none.ditamap --explain gh": [],
            "marrowpress keys --explain gh": [],
            "marrowpress explain MP10": ["MP105", "MP106", "MP107", "MP108", "MP109"],
            "marrowpress batch me": ["merge"],
            "marrowpress batch run --sh": ["--shard"],
            "marrowpress batch emit n": ["ninja"],
            "marrowpress watch --po": ["--poll"],
            "marrowpress nonsense ": [],
        }.items():
            expect(bash(folder, command, *line.split(" ")), expected, line)
        expect(bash(folder, command, "marrowpress", "keys", r"a\ map.ditamap", "--explain", ""),
               ["ground", "ghost"], "a map with a blank")
        guide_keys = bash(folder, command, "marrowpress", "keys", guide, "--explain", "pro")
        expect(guide_keys, ["product"], "the guide's keys")

        # Under a sanitizer a process takes its time to start.
        fastest = min(seconds_for(command, guide) for _ in range(5))
        if fastest > 0.5:
            faults.append(f"the guide's keys took {fastest:.3f} s")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


def seconds_for(command, guide):
    begin = time.monotonic()
    subprocess.run([command, "completion", "bash", "--keys-of", guide], check=True,
                   stdout=subprocess.DEVNULL)
    return time.monotonic() - begin


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), str(Path(sys.argv[2]).resolve())))
