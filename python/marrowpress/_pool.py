"""Several publications at a time."""

from __future__ import annotations

import dataclasses
from typing import TYPE_CHECKING, Optional, Type

from . import _calls
from ._types import CancelFlag, Options, PathLike, Result

if TYPE_CHECKING:
    from concurrent.futures import Future
    from types import TracebackType


class Pool:
    """Serves up to ``size`` requests at a time, each in a process of its own.

        with marrowpress.Pool(4) as pool:
            futures = [pool.publish(name + ".ditamap", name + ".dita") for name in names]
            for future in futures:
                print(future.result().outputs)

    A crash, a limit of memory or time, or what a callback raises is the exception of that one future.
    """

    def __init__(self, size: int, options: Options = Options()) -> None:
        # Only who has a pool pays for it.
        from concurrent.futures import ThreadPoolExecutor  # pylint: disable=import-outside-toplevel

        self._options = dataclasses.replace(options, child=True,
                                            cancel=options.cancel or CancelFlag())
        self._threads = ThreadPoolExecutor(size, "marrowpress")

    def publish(self, map: PathLike, output: PathLike, *, filter: Optional[PathLike] = None,
                format: str = "composite", one_location: bool = True,
                for_print: bool = False) -> Future[Result]:
        """As ``marrowpress.publish``."""
        return self._threads.submit(_calls.publish, map, output, filter=filter, format=format,
                                    one_location=one_location, for_print=for_print,
                                    options=self._options)

    def check(self, map: PathLike, *, filter: Optional[PathLike] = None, format: str = "composite",
              for_print: bool = False) -> Future[Result]:
        """As ``marrowpress.check``."""
        return self._threads.submit(_calls.check, map, filter=filter, format=format,
                                    for_print=for_print, options=self._options)

    def cancel(self) -> None:
        """Ends what runs, and what waits."""
        assert self._options.cancel
        self._options.cancel.set()

    def close(self) -> None:
        """Waits for the end of all requests."""
        self._threads.shutdown()

    def __enter__(self) -> Pool:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        if kind is not None:
            self.cancel()
        self.close()
