"""The functions of marrowpress.h."""

from __future__ import annotations

import ctypes
import os
from ctypes import POINTER, c_char_p, c_int, c_int32, c_size_t, c_uint32, c_uint64, c_void_p
from functools import lru_cache
from pathlib import Path
from typing import Any, Iterator

NAME = "libmarrowpress.so.0"

WAIT = 1
CHECK = 2
SURVEY = 4
DEPENDENCIES = 8
KEYS = 16
OK = 0
NO_STATUS = -(2**31)
LANGUAGES = {None: 0, "en": 1, "de": 2}


class Finding(ctypes.Structure):
    _fields_ = [("id", c_char_p), ("severity", c_char_p), ("text", c_char_p), ("hint", c_char_p),
                ("file", c_char_p), ("line", c_uint32), ("column", c_uint32), ("json", c_char_p)]


class Dependency(ctypes.Structure):
    _fields_ = [("file", c_char_p), ("kind", c_char_p), ("state", c_char_p), ("from_", c_char_p),
                ("line", c_uint32), ("column", c_uint32), ("json", c_char_p)]


class Value(ctypes.Structure):
    _fields_ = [("type", c_uint32), ("integer", c_int32), ("text", c_char_p), ("count", c_size_t),
                ("texts", POINTER(c_char_p)), ("integers", POINTER(c_int32))]


class Document(ctypes.Structure):
    _fields_ = [("id", c_uint32), ("flag", c_int32), ("path", c_char_p)]


FINDING_FUNCTION = ctypes.CFUNCTYPE(None, c_void_p, POINTER(Finding))
PROGRESS_FUNCTION = ctypes.CFUNCTYPE(None, c_void_p, c_char_p)
ENTITY_FUNCTION = ctypes.CFUNCTYPE(c_int, c_void_p, c_char_p, c_void_p, c_size_t)
DOCUMENT_FUNCTION = ctypes.CFUNCTYPE(c_int, c_void_p, c_size_t, POINTER(Document))


class Options(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("flags", c_uint32), ("language", c_int32),
                ("catalogs", POINTER(c_char_p)), ("catalog_count", c_size_t),
                ("on_finding", FINDING_FUNCTION), ("finding_user", c_void_p),
                ("on_progress", PROGRESS_FUNCTION), ("progress_user", c_void_p),
                ("resolve_entity", ENTITY_FUNCTION), ("entity_user", c_void_p),
                ("open_document", DOCUMENT_FUNCTION), ("document_user", c_void_p),
                ("cancel", POINTER(c_int32)), ("memory_limit", c_uint64), ("time_limit", c_uint64)]


def _places() -> Iterator[str]:
    """Where the library may be: as the environment says, in the prefix of this package, or where
    the system has it."""
    named = os.environ.get("MARROWPRESS_LIBRARY")
    if named:
        yield named
        return
    # PREFIX/lib/python3/dist-packages/marrowpress/_library.py
    for folder in Path(__file__).resolve().parents[3:5]:
        for found in [folder / NAME, *sorted(folder.glob("*-linux-gnu*/" + NAME))]:
            if found.exists():
                yield str(found)
    yield NAME


@lru_cache(maxsize=None)
def load() -> ctypes.CDLL:
    """The library, at the first call: to import the package costs nothing."""
    library = ctypes.CDLL(next(_places()))
    call = [c_char_p, POINTER(Options), POINTER(c_void_p)]
    signatures: dict[str, tuple[Any, list[Any]]] = {
        "mp_run": (c_int, call),
        "mp_spawn": (c_int, call),
        "mp_result_free": (None, [c_void_p]),
        "mp_result_error": (c_char_p, [c_void_p]),
        "mp_result_status": (c_int32, [c_void_p]),
        "mp_result_signal": (c_int, [c_void_p]),
        "mp_result_value": (POINTER(Value), [c_void_p, c_size_t]),
        "mp_result_finding": (POINTER(Finding), [c_void_p, c_size_t]),
        "mp_result_dependency": (POINTER(Dependency), [c_void_p, c_size_t]),
        "mp_result_key": (c_char_p, [c_void_p, c_size_t]),
        "mp_result_output": (c_char_p, [c_void_p, c_size_t]),
        "mp_version": (c_char_p, []),
    }
    for what in ("value", "finding", "dependency", "key", "output"):
        signatures[f"mp_result_{what}_count"] = (c_size_t, [c_void_p])
    for name, (result, arguments) in signatures.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library
