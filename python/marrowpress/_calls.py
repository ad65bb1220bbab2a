"""The calls of the package."""

from __future__ import annotations

import ctypes
import json
from typing import Any, Mapping, Optional, Union

from . import _library
from ._callbacks import Call, encoded, text_of
from ._types import (Dependency, Finding, Invalid, Options, PathLike, PublishError, Result, Value,
                     error_of)

_TYPES = {"composite": "PublishComp", "flatbook": "PublishFlatBook"}


def version() -> str:
    """The library's."""
    text: bytes = _library.load().mp_version()
    return text.decode()


def request_for(map: PathLike, output: PathLike, *, filter: Optional[PathLike] = None,
                format: str = "composite", one_location: bool = True, for_print: bool = False,
                key_space_dtd: str = "map.dtd",
                composite_dtd: str = "ditabase.dtd") -> dict[str, Any]:
    """The request for a publication: request.schema.json."""
    if format not in _TYPES:
        raise Invalid(f"format is {format!r}; it is one of {', '.join(_TYPES)}")
    params: dict[str, Any] = {"ditamap": text_of(map)}
    if format == "flatbook":
        params["outputDir"] = text_of(output)
        params["generateQSComponentsAtOneLoc"] = one_location
    else:
        params["output"] = text_of(output)
    params.update(ditaVal="" if filter is None else text_of(filter), keyspaceDocDtd=key_space_dtd,
                  compositeDocDtd=composite_dtd, usePrint=for_print)
    return {"type": _TYPES[format], "params": params}


def run(request: Union[str, Mapping[str, Any]], options: Options = Options(), *,
        flags: int = 0) -> Result:
    """Serves a request. Its result may be that of a run that failed: ``is_published``."""
    library = _library.load()
    text = request if isinstance(request, str) else json.dumps(request)
    sent = encoded(text)
    made = ctypes.c_void_p()
    function = library.mp_spawn if options.child else library.mp_run
    try:
        with Call(options, flags) as call:
            code = function(sent, ctypes.byref(call.options), ctypes.byref(made))
        call.reraise()
        if code != _library.OK:
            raise error_of(code, library.mp_result_error(made).decode(),
                           library.mp_result_signal(made))
        return _result_of(library, made)
    finally:
        library.mp_result_free(made)


def _result_of(library: Any, made: ctypes.c_void_p) -> Result:
    def all_of(what: str) -> list[Any]:
        item = getattr(library, f"mp_result_{what}")
        return [item(made, index) for index in range(getattr(library, f"mp_result_{what}_count")(made))]

    status: int = library.mp_result_status(made)
    return Result(
        None if status == _library.NO_STATUS else status,
        library.mp_result_error(made).decode(),
        tuple(Finding.of(json.loads(finding.contents.json)) for finding in all_of("finding")),
        tuple(output.decode() for output in all_of("output")),
        tuple(Dependency.of(json.loads(file.contents.json)) for file in all_of("dependency")),
        tuple(json.loads(key) for key in all_of("key")),
        tuple(_value_of(value.contents) for value in all_of("value")))


def _value_of(value: Any) -> Value:
    if value.type == 1:
        return int(value.integer)
    if value.type == 3:
        return str(value.text.decode())
    if value.type == 6:
        return tuple(value.texts[index].decode() for index in range(value.count))
    if value.type == 15:
        return tuple(int(value.integers[index]) for index in range(value.count))
    return None


def _whole(result: Result) -> Result:
    if not result.is_published:
        raise PublishError(result)
    return result


def publish(map: PathLike, output: PathLike, *, filter: Optional[PathLike] = None,
            format: str = "composite", one_location: bool = True, for_print: bool = False,
            key_space_dtd: str = "map.dtd", composite_dtd: str = "ditabase.dtd",
            options: Options = Options()) -> Result:
    """Publishes a map.

    ``filter`` is a DITAVAL file. ``format`` is "composite" or "flatbook"; the output of that is a
    folder, in which all components stand, unless ``one_location`` is false. ``for_print`` leaves out
    what the map marks print="no".

    Raises PublishError where the publication is not whole, and Error where there is no answer.
    """
    return _whole(run(request_for(map, output, filter=filter, format=format,
                                  one_location=one_location, for_print=for_print,
                                  key_space_dtd=key_space_dtd, composite_dtd=composite_dtd),
                      options))


def check(map: PathLike, *, filter: Optional[PathLike] = None, format: str = "composite",
          for_print: bool = False, options: Options = Options()) -> Result:
    """The findings of a publication, without its output. A run that fails is a result, too."""
    return _trial(_library.CHECK, map, filter, format, for_print, options)


def keys(map: PathLike, *, filter: Optional[PathLike] = None, format: str = "composite",
         for_print: bool = False, options: Options = Options()) -> tuple[Mapping[str, Any], ...]:
    """The keys of a publication, as objects of keys.schema.json."""
    flags = _library.SURVEY | _library.KEYS
    return _whole(_trial(flags, map, filter, format, for_print, options)).keys


def deps(map: PathLike, *, filter: Optional[PathLike] = None, format: str = "composite",
         for_print: bool = False, options: Options = Options()) -> tuple[Dependency, ...]:
    """The files that a publication depends on."""
    flags = _library.SURVEY | _library.DEPENDENCIES
    return _whole(_trial(flags, map, filter, format, for_print, options)).dependencies


def _trial(flags: int, map: PathLike, filter: Optional[PathLike], format: str, for_print: bool,
           options: Options) -> Result:
    request = request_for(map, "", filter=filter, format=format, for_print=for_print)
    return run(request, options, flags=flags)
