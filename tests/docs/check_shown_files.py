#!/usr/bin/env python3
"""Checks that a document shows files as they are.

    check_shown_files.py [--update] ROOT DOCUMENT FILE...

Each FILE, as seen from the folder ROOT, stands whole in DOCUMENT, in a fenced block behind a line that
has its name and nothing else: `FILE`:. Ends with 1 where one is missing or another than the file.

--update writes the files into their blocks.
"""

import argparse
import re
import sys
from pathlib import Path


def block_of(name):
    return re.compile(rf"(?P<head>^`{re.escape(name)}`:\n\n```\w+\n)(?P<text>.*?)(?P<foot>^```$)",
                      re.MULTILINE | re.DOTALL)


def main():
    parser = argparse.ArgumentParser(description="Checks that a document shows files as they are.")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("root", type=Path)
    parser.add_argument("document", type=Path)
    parser.add_argument("files", nargs="+")
    arguments = parser.parse_args()

    document = arguments.document.read_text(encoding="utf-8")
    faults = 0
    for name in arguments.files:
        text = (arguments.root / name).read_text(encoding="utf-8")
        shown = block_of(name).findall(document)
        if len(shown) != 1:
            print(f"{arguments.document}: {name} is shown {len(shown)} times")
            faults += 1
        elif arguments.update:
            document = block_of(name).sub(lambda found: found["head"] + text + found["foot"], document)
        elif shown[0][1] != text:
            print(f"{arguments.document}: {name} is shown otherwise than it is")
            faults += 1
    if arguments.update:
        arguments.document.write_text(document, encoding="utf-8")
    print(f"{len(arguments.files)} files, {faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
