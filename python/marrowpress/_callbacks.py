"""The options of a call, as the library takes them."""

from __future__ import annotations

import ctypes
import json
import math
import os
import sys
from threading import Lock
from typing import Any, Callable, Optional

from . import _library
from ._types import Finding, Invalid, Options, PathLike

_MOST = 2**64 - 1


def text_of(path: PathLike) -> str:
    """A path as text.

    Raises Invalid for what is none.
    """
    text = os.fspath(path)
    if not isinstance(text, str):
        raise Invalid(f"{text!r} is not a str")
    return text


def encoded(path: PathLike) -> bytes:
    """A path, or another text, as UTF-8."""
    text = text_of(path)
    if "\0" in text:
        raise Invalid(f"{text!r} has a NUL character")
    try:
        return text.encode("utf-8")
    except UnicodeEncodeError as failure:
        raise Invalid(f"{text!r} is not UTF-8") from failure


def _milliseconds(seconds: float) -> int:
    """None for no limit; of a part of one, the whole."""
    if not 0 <= seconds < math.inf:
        raise Invalid(f"time_limit is {seconds}; it is a number of seconds, or 0 for no limit")
    return min(math.ceil(seconds * 1000), _MOST)


def _look_at(options: Options) -> None:
    if options.language not in _library.LANGUAGES:
        raise Invalid(f"language is {options.language!r}; it is one of 'en', 'de' and None")
    if isinstance(options.catalogs, (str, bytes)):
        raise Invalid("catalogs is one text; it is a sequence of them")
    if not 0 <= options.memory_limit <= _MOST:
        raise Invalid(f"memory_limit is {options.memory_limit}; it is a number of bytes, or 0 for no limit")
    for document in options.open_documents:
        if not isinstance(document.id, int) or not isinstance(document.flag, int):
            raise Invalid(f"the id and the flag of {document!r} are to be numbers")


class _LostExceptions:
    """What is raised where a callback begins or ends, as by a signal's handler, and nobody catches.

    The interpreter would print it and go on. While calls are under way its hook for that gives them
    theirs, and whatever else to the hook that was there.
    """

    def __init__(self) -> None:
        self._lock = Lock()
        self._calls: list[Call] = []
        self._earlier: Callable[[sys.UnraisableHookArgs], Any] = sys.unraisablehook

    def give_to(self, call: Call) -> None:
        """Until `forget`."""
        with self._lock:
            if sys.unraisablehook != self._hook:
                self._earlier = sys.unraisablehook
                sys.unraisablehook = self._hook
            self._calls.append(call)

    def forget(self, call: Call) -> None:
        """A hook that somebody has set meanwhile stays."""
        with self._lock:
            self._calls.remove(call)
            if not self._calls and sys.unraisablehook == self._hook:
                sys.unraisablehook = self._earlier

    def _hook(self, lost: sys.UnraisableHookArgs) -> None:
        for call in self._calls:
            if lost.exc_value is not None and call.has(lost):
                call.take(lost.exc_value)
                return
        self._earlier(lost)


_LOST = _LostExceptions()


class Call:
    """Keeps alive what the library points to, and what a callback has raised."""

    def __init__(self, options: Options, flags: int) -> None:
        _look_at(options)
        self._options = options
        self._raised: Optional[BaseException] = None
        self._is_calling_back = any((options.on_finding, options.on_progress,
                                     options.resolve_entity, options.open_documents))
        self._cancel = ctypes.c_int32(0)
        self._paths = [encoded(document.path) for document in options.open_documents]
        made = _library.Options()
        made.size = ctypes.sizeof(made)
        made.flags = flags | (_library.WAIT if options.wait else 0)
        made.language = _library.LANGUAGES[options.language]
        names = [encoded(catalog) for catalog in options.catalogs]
        self._catalogs = (ctypes.c_char_p * len(names))(*names)
        made.catalogs = ctypes.cast(self._catalogs, ctypes.POINTER(ctypes.c_char_p))
        made.catalog_count = len(names)
        made.cancel = ctypes.pointer(self._cancel)
        made.memory_limit = options.memory_limit
        made.time_limit = _milliseconds(options.time_limit)
        if options.on_finding:
            made.on_finding = _library.FINDING_FUNCTION(self._tell_finding)
        if options.on_progress:
            made.on_progress = _library.PROGRESS_FUNCTION(self._tell_progress)
        if options.resolve_entity:
            made.resolve_entity = _library.ENTITY_FUNCTION(self._resolve)
        if options.open_documents:
            made.open_document = _library.DOCUMENT_FUNCTION(self._open_document)
        self.options = made

    def __enter__(self) -> Call:
        if self._options.cancel:
            self._options.cancel.add(self._cancel)
        if self._is_calling_back:
            _LOST.give_to(self)
        return self

    def __exit__(self, *_: object) -> None:
        if self._is_calling_back:
            _LOST.forget(self)
        if self._options.cancel:
            self._options.cancel.remove(self._cancel)

    def reraise(self) -> None:
        """Raises what a callback has raised."""
        if self._raised is not None:
            raise self._raised

    def _guarded(self, work: Callable[[], int]) -> int:
        if self._raised is not None:
            return 0
        try:
            return work()
        except BaseException as raised:  # pylint: disable=broad-exception-caught
            self.take(raised)
            return 0

    def has(self, lost: sys.UnraisableHookArgs) -> bool:
        """Whether it is one of these callbacks that has lost an exception."""
        if lost.object is None:
            # Python 3.13 names it in its message alone.
            return repr(self) in (lost.err_msg or "")
        return getattr(lost.object, "__self__", None) is self

    def take(self, raised: BaseException) -> None:
        """The first counts, and the run is to end."""
        if self._raised is None:
            self._raised = raised
        self._cancel.value = 1

    def _tell_finding(self, _user: Any, finding: Any) -> None:
        def work() -> int:
            assert self._options.on_finding
            self._options.on_finding(Finding.of(json.loads(finding.contents.json)))
            return 0
        self._guarded(work)

    def _tell_progress(self, _user: Any, line: bytes) -> None:
        def work() -> int:
            assert self._options.on_progress
            self._options.on_progress(line.decode("utf-8", "replace"))
            return 0
        self._guarded(work)

    def _resolve(self, _user: Any, public_id: bytes, path: int, size: int) -> int:
        def work() -> int:
            assert self._options.resolve_entity
            found = self._options.resolve_entity(public_id.decode("utf-8", "replace"))
            if found is None or len(encoded(found)) >= size:
                return 0
            ctypes.memmove(path, encoded(found) + b"\0", len(encoded(found)) + 1)
            return 1
        return self._guarded(work)

    def _open_document(self, _user: Any, index: int, document: Any) -> int:
        if index >= len(self._paths):
            return 0
        given = self._options.open_documents[index]
        document.contents.id = given.id
        document.contents.flag = given.flag
        document.contents.path = self._paths[index]
        return 1
