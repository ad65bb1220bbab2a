"""What is measured, built, and a folder for it that one measurement has at a time."""

import fcntl
import subprocess
from pathlib import Path

from measuring import Failure

ROOT = Path(__file__).resolve().parent.parent
BINARIES = ROOT / "build/release/bin"
BENCH = ROOT / "build/bench"


def build(*targets, packages=("build",)):
    """Builds targets of the preset release, and installs what that needs."""
    for command in ([ROOT / "scripts/install-packages", *packages],
                    ["cmake", "--preset", "release", "-D", "MARROWPRESS_TESTS=OFF"],
                    ["cmake", "--build", "--preset", "release", "--target", *targets]):
        subprocess.run(command, cwd=ROOT, stdout=subprocess.DEVNULL, check=True)


def lock_bench():
    """A handle that keeps others from these folders as long as it is open."""
    BENCH.mkdir(parents=True, exist_ok=True)
    handle = (BENCH / "lock").open("w", encoding="utf-8")
    try:
        fcntl.flock(handle, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError as failure:
        raise Failure(f"another measurement works in {BENCH}") from failure
    return handle
