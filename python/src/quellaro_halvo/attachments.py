"""Loops of others that the library works in: one watches its descriptor, and sets a timer to its next deadline."""
import asyncio
import sys
import weakref
from abc import ABC, abstractmethod
from types import ModuleType, TracebackType
from typing import Any, Self

from . import loop


class Attachment(ABC):
    """Lets the library work inside a loop until it is detached; also a context manager."""

    def __init__(self) -> None:
        self._attached = True
        loop.listen(self._rearm)
        self._rearm()

    def detach(self) -> None:
        if self._attached:
            self._attached = False
            loop.ignore(self._rearm)
            self._stop()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.detach()

    def _rearm(self) -> None:
        self._wake_after(loop.milliseconds_until_next_deadline())

    @abstractmethod
    def _wake_after(self, milliseconds: int) -> None:
        """Drains after so long, in place of what was asked for before; not at all when negative."""

    @abstractmethod
    def _stop(self) -> None:
        """Takes watch and timer away."""


class _Asyncio(Attachment):
    # A loop has one watch for a descriptor.
    of_loops: "weakref.WeakKeyDictionary[asyncio.AbstractEventLoop, _Asyncio]" = weakref.WeakKeyDictionary()

    def __init__(self, event_loop: asyncio.AbstractEventLoop):
        self._loop = event_loop
        self._users = 0
        self._timer: asyncio.TimerHandle | None = None
        self._descriptor = loop.descriptor()
        event_loop.add_reader(self._descriptor, loop.drain)
        super().__init__()

    def _wake_after(self, milliseconds: int) -> None:
        if self._loop.is_closed():
            return self.detach()
        if self._timer is not None:
            self._timer.cancel()
        self._timer = self._loop.call_later(milliseconds / 1000, loop.drain) if milliseconds >= 0 else None

    def _stop(self) -> None:
        self.of_loops.pop(self._loop, None)
        if self._timer is not None:
            self._timer.cancel()
        if not self._loop.is_closed():
            self._loop.remove_reader(self._descriptor)


class _AsyncioUse:
    """One of several attachments to the same loop; the last that is detached ends the watch."""

    def __init__(self, event_loop: asyncio.AbstractEventLoop):
        if event_loop not in _Asyncio.of_loops:
            _Asyncio.of_loops[event_loop] = _Asyncio(event_loop)
        self._shared: _Asyncio | None = _Asyncio.of_loops[event_loop]
        self._shared._users += 1

    def detach(self) -> None:
        shared, self._shared = self._shared, None
        if shared is not None:
            shared._users -= 1
            if shared._users == 0:
                shared.detach()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.detach()


class _GLib(Attachment):
    def __init__(self) -> None:
        from gi.repository import GLib
        self._glib = GLib
        self._timer = 0
        self._watch = GLib.io_add_watch(loop.descriptor(), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN, self._on_work)
        super().__init__()

    def _on_work(self, *_: Any) -> bool:
        loop.drain()
        return True

    def _on_deadline(self) -> bool:
        self._timer = 0
        loop.drain()
        return False

    def _wake_after(self, milliseconds: int) -> None:
        if self._timer:
            self._glib.source_remove(self._timer)
        self._timer = self._glib.timeout_add(milliseconds, self._on_deadline) if milliseconds >= 0 else 0

    def _stop(self) -> None:
        self._wake_after(-1)
        self._glib.source_remove(self._watch)


class _Qt(Attachment):
    def __init__(self, core: Any):
        self._notifier = core.QSocketNotifier(loop.descriptor(), core.QSocketNotifier.Type.Read)
        self._notifier.activated.connect(self._on_work)
        self._timer = core.QTimer()
        self._timer.setSingleShot(True)
        self._timer.setTimerType(core.Qt.TimerType.PreciseTimer)
        self._timer.timeout.connect(self._on_work)
        super().__init__()

    def _on_work(self, *_: Any) -> None:
        loop.drain()

    def _wake_after(self, milliseconds: int) -> None:
        if milliseconds < 0:
            self._timer.stop()
        else:
            self._timer.start(milliseconds)

    def _stop(self) -> None:
        self._timer.stop()
        self._notifier.setEnabled(False)


def attach_asyncio(event_loop: asyncio.AbstractEventLoop | None = None) -> _AsyncioUse:
    """The running loop, or the one that is given. An await of an answer does this by itself for as long as it lasts."""
    return _AsyncioUse(event_loop or asyncio.get_running_loop())


def attach_glib() -> Attachment:
    """GLib's default main context: GTK, GStreamer and others. Needs PyGObject."""
    return _GLib()


def attach_qt(core: ModuleType | None = None) -> Attachment:
    """Qt 6. `core` is the module QtCore of PyQt6 or PySide6; left out, the one that has been imported. There has to be a
    QCoreApplication by now."""
    core = core or sys.modules.get("PyQt6.QtCore") or sys.modules.get("PySide6.QtCore")
    if core is None:
        raise ImportError("import PyQt6.QtCore or PySide6.QtCore first")
    return _Qt(core)
