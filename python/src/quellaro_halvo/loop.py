"""The library's work waits until its host lets it run. Everything here, and every call of a controller or a view, is to
be made on one thread: the one that drains.

A host with a loop of asyncio, GLib or Qt attaches it (`attach_asyncio` and so on) and is done. One with another loop
watches `descriptor()` for reading, wakes after `milliseconds_until_next_deadline()` at the latest, and calls `drain()`.
"""
import select
import time
from collections.abc import Callable

from ._library import HalvoError, check, functions, sweep

# Loops that have to know that the next deadline may be another one.
_listeners: list[Callable[[], None]] = []


def descriptor() -> int:
    """Becomes readable when there is work. The same for the life of the process; belongs to the library."""
    number = functions().loop_descriptor()
    if number < 0:
        raise HalvoError("the library has no descriptor: the process has none left, or was forked from one that used it")
    return number


def milliseconds_until_next_deadline() -> int:
    """Ready for poll() and its like: 0 when the next timer is due, negative when there is none."""
    return functions().loop_milliseconds_until_next_deadline()


def drain() -> bool:
    """Runs what is due and returns, whether anything ran. What that work queues runs in the next drain."""
    sweep()
    ran = functions().loop_drain()
    changed()
    return ran


def run_until(condition: Callable[[], bool], timeout: float | None = None) -> bool:
    """Waits and drains until the condition holds, or so many seconds have passed. Gives whether it holds."""
    poll = select.poll()
    poll.register(descriptor(), select.POLLIN)
    end = None if timeout is None else time.monotonic() + timeout
    while not condition():
        waits = [milliseconds_until_next_deadline()]
        if end is not None:
            left = end - time.monotonic()
            if left <= 0:
                return False
            waits.append(int(left * 1000) + 1)
        poll.poll(min((wait for wait in waits if wait >= 0), default=None))
        drain()
    return True


def run_until_idle(milliseconds: int = 5000) -> None:
    """To be called once by a host that exits after its cue: the exit waits for nothing, and a report of a month's plays is
    sent after the answer of a play. Returns when nothing is under way, or after so many milliseconds (negative: no limit).
    """
    sweep()
    check(functions().loop_run_until_idle(milliseconds))


def changed() -> None:
    for listener in tuple(_listeners):
        listener()


def listen(listener: Callable[[], None]) -> None:
    _listeners.append(listener)


def ignore(listener: Callable[[], None]) -> None:
    if listener in _listeners:
        _listeners.remove(listener)
