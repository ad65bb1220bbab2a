"""What goes in, what comes out, and what is raised."""

from __future__ import annotations

import ctypes
import os
from dataclasses import dataclass, field
from typing import Any, Callable, Mapping, Optional, Sequence, Union

PathLike = Union[str, "os.PathLike[str]"]
Value = Union[int, str, "tuple[str, ...]", "tuple[int, ...]", None]


@dataclass(frozen=True)
class Place:
    """A start tag in a source file, or the file as a whole; columns count UTF-16 code units."""

    file: Optional[str]
    line: Optional[int]
    column: Optional[int]


@dataclass(frozen=True)
class Step:
    """A reference by which the content came into the output."""

    place: Place
    what: str


@dataclass(frozen=True)
class Finding:
    """Something that whoever publishes has to know; findings.schema.json says more."""

    id: str
    severity: str
    text: str
    file: Optional[str]
    line: Optional[int]
    column: Optional[int]
    element: Optional[str]
    target: Optional[str]
    hint: Optional[str]
    via: tuple[Step, ...]
    places: tuple[Place, ...]
    profile: tuple[str, ...]
    host_text: Optional[str]

    @staticmethod
    def of(data: Mapping[str, Any]) -> Finding:
        return Finding(
            data["id"], data["severity"], data["text"], data["file"], data["line"], data["column"],
            data["element"], data["target"], data["hint"],
            tuple(Step(_place(step), step["what"]) for step in data["via"]),
            tuple(_place(place) for place in data["places"]),
            tuple(data["profile"]), data["hostText"])


@dataclass(frozen=True)
class Dependency:
    """A file that a run has read, or has looked for; dependencies.schema.json says more."""

    file: str
    kind: str
    state: str
    origin: Optional[Place]

    @staticmethod
    def of(data: Mapping[str, Any]) -> Dependency:
        origin = data["from"]
        return Dependency(data["file"], data["kind"], data["state"],
                          None if origin is None else _place(origin))


def _place(data: Mapping[str, Any]) -> Place:
    return Place(data["file"], data["line"], data["column"])


@dataclass(frozen=True)
class Result:
    """What a run has told.

    ``values`` is the module's answer. ``keys`` are objects of keys.schema.json.
    """

    status: Optional[int]
    error: str
    findings: tuple[Finding, ...]
    outputs: tuple[str, ...]
    dependencies: tuple[Dependency, ...]
    keys: tuple[Mapping[str, Any], ...]
    values: tuple[Value, ...]

    @property
    def is_published(self) -> bool:
        """Whether the publication is whole."""
        return self.status == 0 and not self.error


@dataclass(frozen=True)
class OpenDocument:
    """A document that is open in the caller."""

    id: int
    path: str
    flag: int = 0


class CancelFlag:
    """Ends the runs that it was given to, each at its next document, once it is set."""

    def __init__(self) -> None:
        self._is_set = False
        # One for each call, so that a callback that raises ends its own alone.
        self._of_calls: list[ctypes.c_int32] = []

    @property
    def is_set(self) -> bool:
        """Whether somebody has set it; what a run came to does not."""
        return self._is_set

    def set(self) -> None:
        """May be called from any thread, and from a signal handler."""
        self._is_set = True
        for flag in tuple(self._of_calls):
            flag.value = 1

    def add(self, flag: ctypes.c_int32) -> None:
        """Sets ``flag`` with itself, until it is removed."""
        self._of_calls.append(flag)
        if self._is_set:
            flag.value = 1

    def remove(self, flag: ctypes.c_int32) -> None:
        """The call is over."""
        self._of_calls.remove(flag)


@dataclass(frozen=True)
class Options:
    """How a request is served.

    ``language`` is "en", "de", or None for what the environment says. What a callback raises comes
    out of the call, and ends the run. ``memory_limit`` in bytes and ``time_limit`` in seconds are for
    a child alone.
    """

    catalogs: Sequence[PathLike] = ()
    language: Optional[str] = None
    on_finding: Optional[Callable[[Finding], object]] = None
    on_progress: Optional[Callable[[str], object]] = None
    resolve_entity: Optional[Callable[[str], Optional[PathLike]]] = None
    open_documents: Sequence[OpenDocument] = field(default_factory=tuple)
    cancel: Optional[CancelFlag] = None
    wait: bool = True
    child: bool = False
    memory_limit: int = 0
    time_limit: float = 0


class Error(Exception):
    """A call that has no answer. Its text says why."""

    code = 10

    def __init__(self, text: str, signal: int = 0) -> None:
        super().__init__(text)
        self.signal = signal


class Invalid(Error):
    """An argument is wrong."""

    code = 1


class Busy(Error):
    """A request is being served in this process, and this one was not to wait, or is called by it."""

    code = 2


class Forked(Error):
    """The process was forked since it loaded the library; ``child=True`` works."""

    code = 3


class Cancelled(Error):
    """The cancel flag was set."""

    code = 4


class NoMemory(Error):
    """There is not enough memory."""

    code = 5


class Unavailable(Error):
    """A part of the installation is missing, or cannot be started."""

    code = 6


class SystemRefused(Error):
    """The system refused a folder, a descriptor or a process."""

    code = 7


class Crashed(Error):
    """The child ended without an answer."""

    code = 8


class TimedOut(Error):
    """The child took longer than it may."""

    code = 9


class PublishError(Error):
    """The publication is not there, or not whole. ``result`` has the findings."""

    code = 0

    def __init__(self, result: Result) -> None:
        super().__init__(result.error)
        self.result = result

    def __reduce__(self) -> tuple[type, tuple[Result]]:
        return type(self), (self.result,)


_BY_CODE = {kind.code: kind for kind in (Invalid, Busy, Forked, Cancelled, NoMemory, Unavailable,
                                         SystemRefused, Crashed, TimedOut)}


def error_of(code: int, text: str, signal: int) -> Error:
    """The exception for a code of the library."""
    return _BY_CODE.get(code, Error)(text, signal)
