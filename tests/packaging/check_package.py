#!/usr/bin/env python3
"""Makes the packages for Debian of what was built, and looks into them.

    check_package.py CPACK BUILD

Together they hold what contents.txt lists, and each the two files that Debian wants; they name what
their programs are linked with, and what they need of each other; the command recommends DITA's DTDs;
and lintian finds no error in them. Ends with 1 where anything is otherwise, and with 77 where a tool of
the packages `package` is missing.
"""

import re
import shutil
import sys
import tempfile
from pathlib import Path

from installation import SKIPPED, Fault, neutral, require, require_contents, run

TOOLS = ("dpkg-deb", "dpkg-shlibdeps", "file", "help2man", "lintian")
FOR_DEBIAN = ["changelog.gz", "copyright"]
LIBRARIES = ("libboost-json1.81.0", "libc6", "libutf8proc2", "libxml2")
# What each depends on, and what it holds one of.
PACKAGES = {
    "marrowpress": ((*LIBRARIES, "libicu72", "libxerces-c3.2"), "bin/marrowpress"),
    "libmarrowpress0": ((*LIBRARIES, "marrowpress"), "lib/libmarrowpress.so.0"),
    "libmarrowpress-dev": (("libmarrowpress0", "marrowpress"), "lib/libmarrowpress.so"),
    "python3-marrowpress": (("libmarrowpress0", "python3:any"),
                            "lib/python3/dist-packages/marrowpress/py.typed"),
}


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def check_control(package, name):
    depends = re.split(r"[, ]+", field(package, "Depends"))
    for needed in PACKAGES[name][0]:
        require(needed in depends, f"{name} does not depend on {needed}: {depends}")
    if name == "marrowpress":
        require(field(package, "Recommends") == "dita-ot", "DITA's DTDs are not recommended")


def contents(package, name, folder):
    """What the package holds below /usr, without the files that Debian wants."""
    run("dpkg-deb", "--extract", package, folder)
    files = [path.relative_to(folder) for path in folder.rglob("*")
             if path.is_file() or path.is_symlink()]
    outside = [str(path) for path in files if path.parts[0] != "usr"]
    require(not outside, f"these are not below /usr: {outside}")
    inside = [path.relative_to("usr").as_posix() for path in files]
    wanted = [f"share/doc/{name}/{file}" for file in FOR_DEBIAN]
    missing = [path for path in wanted if path not in inside]
    require(not missing, f"these are missing: {missing}")
    wanted.append(f"share/lintian/overrides/{name}")
    require(PACKAGES[name][1] in map(neutral, inside), f"{name} lacks {PACKAGES[name][1]}")
    return [path for path in inside if path not in wanted]


def main():
    cpack, build = sys.argv[1], Path(sys.argv[2]).resolve()
    missing = [tool for tool in TOOLS if not shutil.which(tool)]
    if missing:
        print(f"these tools are missing: {', '.join(missing)}")
        return SKIPPED
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary)
        run(cpack, "--config", build / "CPackConfig.cmake", "-B", folder / "made")
        packages = {field(package, "Package"): package
                    for package in (folder / "made").glob("*.deb")}
        require(packages.keys() == PACKAGES.keys(), f"other packages: {sorted(packages)}")
        held = []
        for name, package in packages.items():
            check_control(package, name)
            held += contents(package, name, folder / name)
        require_contents(held)
        print(run("lintian", "--allow-root", "--fail-on", "error", *packages.values()))
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Fault as fault:
        print(fault)
        sys.exit(1)
