"""The shared object, and what every face of it needs: errors, text, and things that are released once."""
import collections
import ctypes
import functools
import os
import weakref
from collections.abc import Callable
from types import TracebackType
from typing import Any, Self

from ._signatures import SIGNATURES, VERSION_MAJOR, Functions, Result

ENVIRONMENT_VARIABLE = "QUELLARO_HALVO_LIBRARY"


class HalvoError(Exception):
    """A call that was refused, and changed nothing. `result` tells why; None where the library answers with null."""

    def __init__(self, message: str, result: Result | None = None):
        super().__init__(message)
        self.result = result


class _Library(Functions):
    def __init__(self, path: str):
        self._path = path
        shared_object = ctypes.CDLL(path)
        for name, (result, *arguments) in SIGNATURES.items():
            function = getattr(shared_object, "quellaro_halvo_" + name, None)
            if function is not None:
                function.restype, function.argtypes = result, arguments
                setattr(self, name, function)

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"{self._path} has no quellaro_halvo_{name}: it is older than this package, or there is no such function")


@functools.cache
def functions() -> Functions:
    """The C interface itself, every function without its common prefix: for what has no other face here.

    Loads the library that QUELLARO_HALVO_LIBRARY names, or libQuellaroHalvo.so.1 as the system finds it. Raises OSError
    when there is none.
    """
    path = os.environ.get(ENVIRONMENT_VARIABLE) or f"libQuellaroHalvo.so.{VERSION_MAJOR}"
    try:
        library = _Library(path)
        version = (library.version() or b"").decode()
    except (OSError, AttributeError) as error:
        raise OSError(f"the library QuellaroHalvo cannot be loaded: {error}; {ENVIRONMENT_VARIABLE} may name its file") from error
    if version.partition(".")[0] != str(VERSION_MAJOR):
        raise OSError(f"{path} is version {version}; this package speaks to version {VERSION_MAJOR}")
    return library


def check(result: int) -> None:
    if result != Result.OK:
        description = (functions().result_description(result) or b"").decode()
        raise HalvoError(description, Result(result) if result in list(Result) else None)


def text(value: str | None) -> bytes | None:
    if value is None:
        return None
    # C would take it for the end.
    if "\0" in value:
        raise ValueError("a text holds a zero character")
    return value.encode()


def path(value: str | os.PathLike[str] | None) -> bytes | None:
    if value is None:
        return None
    name = os.fsencode(value)
    if b"\0" in name:
        raise ValueError("a path holds a zero character")
    return name


def string(value: bytes | None) -> str:
    return (value or b"").decode()


# What nobody has any more, to be released at the next drain or creation. Not at once: rubbish is collected on any
# thread, even inside a callback that must not call the library.
_left_behind: collections.deque[tuple[Callable[[int], None], int]] = collections.deque()


def sweep() -> None:
    while _left_behind:
        release, pointer = _left_behind.popleft()
        release(pointer)


class Handle:
    """Something of the library's: released by close(), at the end of a `with`, or when nobody has it any more."""

    def __init__(self, pointer: int | None, release: Callable[[int], None]):
        sweep()
        if not pointer:
            raise HalvoError(f"no {type(self).__name__.lower()} can be made: memory is short, or this process was forked from "
                             "one that used the library")
        self._pointer = pointer
        self._release = release
        self._finalizer = weakref.finalize(self, _left_behind.append, (release, pointer))
        self._finalizer.atexit = False

    @property
    def pointer(self) -> int:
        """What the C interface calls it."""
        if self.closed:
            raise ValueError(f"this {type(self).__name__.lower()} is closed")
        return self._pointer

    @property
    def closed(self) -> bool:
        return not self._finalizer.alive

    def close(self) -> None:
        """Allowed at any time, inside a callback too; a second time does nothing."""
        if self._finalizer.detach() is not None:
            self._release(self._pointer)

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()
