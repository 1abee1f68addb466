"""What the library calls. C is given one function of each kind, which lives as long as the process, and a number as its
context; what the number stands for is kept here. So nothing that C may still call is ever collected.

An exception in a callback ends there: ctypes hands it to sys.unraisablehook.
"""
import itertools
from collections.abc import Callable
from typing import Any

from . import _signatures

_kept: dict[int, Callable[..., object]] = {}
_numbers = itertools.count(1)


def keep(function: Callable[..., object]) -> int:
    number = next(_numbers)
    _kept[number] = function
    return number


def forget(number: int) -> None:
    _kept.pop(number, None)


def _complete(status: int, number: int) -> None:
    # Comes once.
    function = _kept.pop(number, None)
    if function is not None:
        function(status)


def _notify(subject: Any, number: int) -> None:
    function = _kept.get(number)
    if function is not None:
        function(subject)


completion = _signatures.Completion(_complete)
needs_display_handler = _signatures.NeedsDisplayHandler(_notify)
notification_handler = _signatures.NotificationHandler(_notify)
console_sink = _signatures.ConsoleSink(_notify)
NO_NEEDS_DISPLAY_HANDLER = _signatures.NeedsDisplayHandler(0)
NO_CONSOLE_SINK = _signatures.ConsoleSink(0)
