#!/usr/bin/env python3
"""Makes the package for Debian of what was built, and looks into it.

    check_package.py CPACK BUILD

It holds what contents.txt lists, and the two files that Debian wants of each package; it names what its
programs are linked with, and recommends DITA's DTDs; and lintian finds no error in it. Ends with 1
where anything is otherwise, and with 77 where a tool of the packages `package` is missing.
"""

import shutil
import sys
import tempfile
from pathlib import Path

from installation import SKIPPED, Fault, require, require_contents, run

TOOLS = ("dpkg-deb", "dpkg-shlibdeps", "file", "help2man", "lintian")
FOR_DEBIAN = ["share/doc/marrowpress/changelog.gz", "share/doc/marrowpress/copyright"]
NEEDED = ("libboost-json1.81.0", "libc6", "libicu72", "libutf8proc2", "libxerces-c3.2", "libxml2")


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def check_control(package):
    require(field(package, "Package") == "marrowpress", "the package has another name")
    require(field(package, "Recommends") == "dita-ot", "DITA's DTDs are not recommended")
    depends = field(package, "Depends")
    for library in NEEDED:
        require(f"{library} (" in depends or f"{library}," in depends,
                f"it does not depend on {library}: {depends}")


def check_contents(package, folder):
    run("dpkg-deb", "--extract", package, folder)
    files = [path.relative_to(folder) for path in folder.rglob("*") if path.is_file()]
    outside = [str(path) for path in files if path.parts[0] != "usr"]
    require(not outside, f"these are not below /usr: {outside}")
    inside = [path.relative_to("usr").as_posix() for path in files]
    missing = [path for path in FOR_DEBIAN if path not in inside]
    require(not missing, f"these are missing: {missing}")
    require_contents(path for path in inside if path not in FOR_DEBIAN)


def main():
    cpack, build = sys.argv[1], Path(sys.argv[2]).resolve()
    missing = [tool for tool in TOOLS if not shutil.which(tool)]
    if missing:
        print(f"these tools are missing: {', '.join(missing)}")
        return SKIPPED
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary)
        run(cpack, "--config", build / "CPackConfig.cmake", "-B", folder / "made")
        [package] = (folder / "made").glob("*.deb")
        check_control(package)
        check_contents(package, folder / "extracted")
        print(run("lintian", "--allow-root", "--fail-on", "error", package))
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Fault as fault:
        print(fault)
        sys.exit(1)
