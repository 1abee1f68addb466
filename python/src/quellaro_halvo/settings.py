"""What is chosen before the first controller, and what the library tells about itself."""
import atexit
import os
from collections.abc import Callable
from types import TracebackType
from typing import Self

from . import _callbacks
from ._library import HalvoError, check, functions, path, string, text
from ._signatures import Status


def set_bundle_directory(directory: str | os.PathLike[str]) -> None:
    """Where Info.json and the built-in cue are; without it, in share beside the directory of the library."""
    check(functions().set_bundle_directory(path(directory)))


def set_library_directory(directory: str | os.PathLike[str] | None) -> None:
    """Below which alone the library writes; None: the application identifier below $XDG_DATA_HOME."""
    check(functions().set_library_directory(path(directory)))


def set_application_identifier(identifier: str | None) -> None:
    """The host's own ("com.example.shop")."""
    check(functions().set_application_identifier(text(identifier)))


def use_real_devices() -> None:
    """The sound server and the kernel's force-feedback devices: what is used when nothing is chosen."""
    check(functions().use_real_devices())


def use_simulated_devices(volume: float = 1.0, has_actuator: bool = True) -> None:
    """Nothing of the machine: a sound takes its real duration and nobody hears it."""
    check(functions().use_simulated_devices(volume, has_actuator))


_sink_number = 0


def set_console_sink(sink: Callable[[str], object] | None) -> None:
    """Receives what the library prints on standard output otherwise, with its line breaks, on whatever thread prints. It
    must not call the library. None restores standard output."""
    global _sink_number
    if sink is None:
        check(functions().set_console_sink(_callbacks.NO_CONSOLE_SINK, None))
        number = 0
    else:
        receive = sink
        number = _callbacks.keep(lambda printed: receive(printed.decode(errors="replace")))
        check(functions().set_console_sink(_callbacks.console_sink, number))
        # Threads of the library print after Python has ended, too.
        if not _sink_number:
            atexit.register(set_console_sink, None)
    # The old one is not called any more.
    _callbacks.forget(_sink_number)
    _sink_number = number
    if not number:
        atexit.unregister(set_console_sink)


class Observation:
    """Lasts until it is stopped; also a context manager."""

    def __init__(self, token: int, number: int):
        self._token, self._number = token, number

    def stop(self) -> None:
        functions().stop_observing_audio_session_deactivated(self._token)
        _callbacks.forget(self._number)

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.stop()


def observe_audio_session_deactivated(handler: Callable[[str], object]) -> Observation:
    """Calls the handler with the notification's name each time a sound has finished playing."""
    number = _callbacks.keep(lambda name: handler(name.decode()))
    token = functions().observe_audio_session_deactivated(_callbacks.notification_handler, number)
    if not token:
        _callbacks.forget(number)
        raise HalvoError("no observation can be made: memory is short, or this process was forked")
    return Observation(token, number)


def status_name(status: int) -> str:
    """As in the tables of the documentation: "successWithFallback"."""
    return string(functions().status_name(status))


def status_description(status: Status | int) -> str:
    return string(functions().status_description(status))


def library_version() -> str:
    return string(functions().version())


def build_report() -> str:
    """What to put into a bug report. Asks the sound server, so it may take some seconds."""
    return string(functions().build_report())
