#!/usr/bin/env python3
"""Installs what was built, moves that elsewhere, and uses it there without anything else.

    try_installation.py [--update] CMAKE BUILD

The installation holds what contents.txt lists. The command finds its module and its texts; the tutorial
runs with what is installed; examples/host and the programs over the library are built by find_package
and by pkg-config, and publish; and so does the one in Python. The library has no symbols but its own.
Ends with 1 where anything is otherwise, and with 77 where BUILD has no manual pages, since help2man is
missing.

--update writes what is installed into contents.txt.
"""

import argparse
import re
import shlex
import shutil
import sys
import tempfile
from pathlib import Path

from installation import CONTENTS, SKIPPED, Fault, neutral, require, require_contents, run

TUTORIAL = Path(__file__).resolve().parent.parent / "docs" / "run_tutorial.py"
ROOT = TUTORIAL.parent.parent.parent
CATALOG = "/usr/share/dita-ot/catalog-dita.xml"
NO_CATALOG = '<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog"/>\n'
LINK = re.compile(r"\]\(([^)#:]+)[)#]")
PYTHON = "/usr/bin/python3"
# Its own exit code would be another one than the tests want.
VALGRIND = ["valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
            "--errors-for-leak-kinds=definite"]
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]


class Installation:
    """What is below a prefix."""

    def __init__(self, prefix):
        self.prefix = prefix
        self.command = prefix / "bin" / "marrowpress"
        self.documents = prefix / "share" / "doc" / "marrowpress"
        self.examples = self.documents / "examples"

    def files(self):
        return [path.relative_to(self.prefix).as_posix()
                for path in self.prefix.rglob("*") if path.is_file()]


def check_paths(installed, build):
    """What people and tools read names no folder of whoever built it."""
    for path in installed.files():
        if not path.startswith(("bin/", "lib/")) or path.endswith((".cmake", ".pc")):
            content = (installed.prefix / path).read_bytes()
            for folder in (ROOT, build):
                require(str(folder).encode() not in content, f"{path} names {folder}")


def check_links(installed):
    """What a document refers to is installed, too."""
    for document in installed.documents.glob("*.md"):
        for target in LINK.findall(document.read_text(encoding="utf-8")):
            require((document.parent / target).exists(), f"{document.name} leads to {target}")


def check_command(installed, folder):
    shutil.copytree(installed.examples / "drill-guide", folder / "guide")
    # Debian has a program of this name beside the command.
    (installed.command.parent / "locale").touch()
    require("Path is cut" in run(installed.command, "explain", "MP213", "--lang", "en"),
            "the English texts are not found")
    output = folder / "guide.dita"
    printed = run(installed.command, "publish", folder / "guide" / "drill-guide.ditamap",
                  "--format", "composite", "--output", output)
    require(printed.startswith(f"{output}\n") or f"\n{output}\n" in printed,
            f"publish doesn't name its output: {printed}")
    require("Bramble 12" in output.read_text(encoding="utf-8"), "the guide isn't in the output")


def check_completion(installed):
    """bash takes the file as it is, and completes the command by it."""
    file = installed.prefix / "share" / "bash-completion" / "completions" / "marrowpress"
    rule = run("bash", "--norc", "-c", f"source '{file}' && complete -p marrowpress")
    require(rule.rstrip().endswith(" marrowpress"), f"bash doesn't complete it: {rule}")


def check_tutorial(installed):
    run(sys.executable, TUTORIAL, installed.command, installed.documents / "tutorial.md",
        installed.examples / "broken-guide")


def check_host(installed, program, folder):
    """The example publishes, and tells where a fault is; without a catalog no DTD is found."""
    request = folder / "request.json"
    text = (installed.examples / "drill-guide" / "request.json").read_text(encoding="utf-8")
    request.write_text(text, encoding="utf-8")
    (folder / "out").mkdir(exist_ok=True)
    (folder / "examples").exists() or (folder / "examples").symlink_to(installed.examples)
    printed = run(program, CATALOG, request, cwd=folder)
    output = folder / "out" / "drill-guide.dita"
    require(f"{output}\n" in printed, f"no output is named: {printed}")
    require("topics/safety.dita:17: MP208 " in printed, f"a fault is not told: {printed}")
    require("MP201" not in printed, f"a DTD is not found: {printed}")
    require("Bramble 12" in output.read_text(encoding="utf-8"), "the guide isn't in the output")
    nothing = folder / "nothing.xml"
    nothing.write_text(NO_CATALOG, encoding="utf-8")
    require("MP201" in run(program, nothing, request, cwd=folder), "the catalog isn't asked")


def check_find_package(cmake, installed, folder):
    build = folder / "by-cmake"
    run(cmake, "-S", installed.examples / "host", "-B", build,
        f"-DCMAKE_PREFIX_PATH={installed.prefix}", "-DCMAKE_CXX_FLAGS=" + " ".join(WARNINGS))
    run(cmake, "--build", build)
    check_host(installed, build / "host", folder)


def check_pkg_config(installed, folder):
    packages = next(installed.prefix.rglob("marrowpress.pc")).parent

    def ask(*arguments):
        answer = run("env", f"PKG_CONFIG_PATH={packages}", "pkg-config", *arguments)
        return shlex.split(answer)

    [module] = ask("--variable=module", "marrowpress")
    program = folder / "by-pkg-config"
    run("c++", "-std=c++20", *WARNINGS, *ask("--cflags", "marrowpress", "libxml-2.0"),
        f'-DMARROWPRESS_MODULE="{module}"', installed.examples / "host" / "main.cpp", "-o", program,
        *ask("--libs", "libxml-2.0"))
    check_host(installed, program, folder)


def check_embedding(installed, name, folder, *command):
    """A program over the library publishes, and tells where a fault is; and why it cannot."""
    example = installed.examples / "drill-guide" / "drill-guide.ditamap"
    output = folder / f"{name}.dita"
    printed = run(*command, example, output)
    require(f"{output}\n" in printed, f"{name}: no output is named: {printed}")
    require("topics/safety.dita:17: " in printed and "[MP208]" in printed,
            f"{name}: a fault is not told: {printed}")
    require("MP201" not in printed, f"{name}: a DTD is not found: {printed}")
    require("Bramble 12" in output.read_text(encoding="utf-8"), f"{name}: the guide isn't there")
    require("MP106" in run(*command, folder / "none.ditamap", output, wants=1),
            f"{name}: a missing map is not told")


def check_embedding_by_cmake(cmake, installed, folder):
    for name, flags in (("embed-c", "-DCMAKE_C_FLAGS="), ("embed-cpp", "-DCMAKE_CXX_FLAGS=")):
        build = folder / name
        run(cmake, "-S", installed.examples / name, "-B", build,
            f"-DCMAKE_PREFIX_PATH={installed.prefix}", flags + " ".join(WARNINGS))
        run(cmake, "--build", build)
        check_embedding(installed, name, folder, build / name)


def check_embedding_by_pkg_config(installed, folder):
    packages = next(installed.prefix.rglob("libmarrowpress.pc")).parent
    flags = shlex.split(run("env", f"PKG_CONFIG_PATH={packages}", "pkg-config", "--cflags", "--libs",
                            "libmarrowpress"))
    program = folder / "c-by-pkg-config"
    run("cc", "-std=c11", *WARNINGS, installed.examples / "embed-c" / "main.c", "-o", program, *flags)
    check_embedding(installed, "c-by-pkg-config", folder, "env",
                    f"LD_LIBRARY_PATH={packages.parent}", program)
    if shutil.which("valgrind"):
        check_embedding(installed, "c-in-valgrind", folder, "env",
                        f"LD_LIBRARY_PATH={packages.parent}", *VALGRIND, program)


def check_python(installed, folder):
    """The package finds its library by where it stands."""
    packages = next(installed.prefix.rglob("dist-packages"))
    python = ["env", f"PYTHONPATH={packages}", "PYTHONDONTWRITEBYTECODE=1", PYTHON]
    check_embedding(installed, "embed-python", folder, *python,
                    installed.examples / "embed-python" / "publish.py")


def check_symbols(installed):
    """The library has the functions of its header, the helper's, and nothing else."""
    [library] = [path for path in installed.prefix.rglob("libmarrowpress.so.*.*")]
    lines = run("nm", "--dynamic", "--defined-only", library).splitlines()
    found = {line.split()[-1].partition("@")[0] for line in lines}
    header = (installed.prefix / "include" / "marrowpress" / "marrowpress.h").read_text(
        encoding="utf-8")
    declared = set(re.findall(r"\b(mp_\w+)\((?:const |int |void|mp_)", header))
    wanted = {name for name in declared if not name.endswith("_function")} - {"mp_make_options"}
    wanted |= {"mp_serve", "MARROWPRESS_0"}
    require(found == wanted, f"other symbols: {sorted(found ^ wanted)}")
    require("libmarrowpress.so.0" in run("readelf", "--dynamic", library), "the SONAME is another")


def main():
    parser = argparse.ArgumentParser(description="Uses an installation.")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("cmake")
    parser.add_argument("build", type=Path)
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary).resolve()
        run(arguments.cmake, "--install", build, "--prefix", folder / "first")
        installed = Installation((folder / "first").rename(folder / "another place"))
        if not (installed.prefix / "share" / "man").exists():
            print("there are no manual pages: help2man is not installed")
            return SKIPPED
        if arguments.update:
            lines = sorted(neutral(path) + "\n" for path in installed.files())
            CONTENTS.write_text("".join(lines), encoding="utf-8")
        require_contents(installed.files())
        check_paths(installed, build)
        check_links(installed)
        check_command(installed, folder)
        check_completion(installed)
        check_tutorial(installed)
        check_find_package(arguments.cmake, installed, folder)
        check_pkg_config(installed, folder)
        check_symbols(installed)
        check_embedding_by_cmake(arguments.cmake, installed, folder)
        check_embedding_by_pkg_config(installed, folder)
        check_python(installed, folder)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Fault as fault:
        print(fault)
        sys.exit(1)
