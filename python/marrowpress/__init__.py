"""Publishing of DITA maps, over libmarrowpress.

    import marrowpress

    result = marrowpress.publish("guide.ditamap", "guide.dita", filter="home.ditaval")
    for finding in result.findings:
        print(finding.file, finding.line, finding.text)

A call serves one request in this process, and lets other threads run meanwhile; a second call waits
for its end. ``child=True`` serves it in a process of its own, and ``Pool`` several at a time.
"""

from ._calls import check, deps, keys, publish, run, version
from ._pool import Pool
from ._types import (
    Busy,
    Cancelled,
    CancelFlag,
    Crashed,
    Dependency,
    Error,
    Finding,
    Forked,
    Invalid,
    NoMemory,
    OpenDocument,
    Options,
    Place,
    PublishError,
    Result,
    Step,
    SystemRefused,
    TimedOut,
    Unavailable,
)

__all__ = [
    "Busy",
    "CancelFlag",
    "Cancelled",
    "Crashed",
    "Dependency",
    "Error",
    "Finding",
    "Forked",
    "Invalid",
    "NoMemory",
    "OpenDocument",
    "Options",
    "Place",
    "Pool",
    "PublishError",
    "Result",
    "Step",
    "SystemRefused",
    "TimedOut",
    "Unavailable",
    "check",
    "deps",
    "keys",
    "publish",
    "run",
    "version",
]
