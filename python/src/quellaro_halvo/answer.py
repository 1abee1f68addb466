"""What a prepare or a play comes to."""
import contextlib
from collections.abc import Callable, Generator
from typing import Any

from . import loop
from ._signatures import Status


class Answer:
    """Awaitable from asyncio; `wait()` for programs without a loop; `then()` for all others.

    `status` is None until the answer has come. It comes once, on the loop's thread; never for a cue that gives no time
    for its last frame. An answer need not be kept.
    """

    def __init__(self) -> None:
        self.status: Status | None = None
        self._callbacks: list[Callable[[Status], object]] = []

    def then(self, callback: Callable[[Status], object]) -> None:
        """Calls back with the status: when it comes, or now when it has."""
        if self.status is None:
            self._callbacks.append(callback)
        else:
            callback(self.status)

    def wait(self, timeout: float | None = None) -> Status:
        """Lets the library work until the answer has come. TimeoutError after so many seconds."""
        if not loop.run_until(lambda: self.status is not None, timeout):
            raise TimeoutError(f"no answer within {timeout} s")
        assert self.status is not None
        return self.status

    def __await__(self) -> Generator[Any, None, Status]:
        return self._answered().__await__()

    async def _answered(self) -> Status:
        import asyncio

        from .attachments import attach_asyncio
        if self.status is None:
            future = asyncio.get_running_loop().create_future()
            # Whoever awaited may have been cancelled.
            self.then(lambda status: None if future.done() else future.set_result(status))
            with attach_asyncio():
                await future
        assert self.status is not None
        return self.status

    def _come(self, status: int) -> None:
        self.status = Status(status)
        # All are called, whatever one of them raises.
        with contextlib.ExitStack() as stack:
            for callback in reversed(self._callbacks):
                stack.callback(callback, self.status)
            self._callbacks.clear()
