"""A backdrop in one of two colours and above it the animation, square, centred and as large as fits."""
import math
import weakref
from collections.abc import Callable
from typing import Any, NamedTuple, Self

from . import _callbacks
from ._library import Handle, check, functions
from ._pixels import pixels_of
from ._signatures import Background, Rectangle


class Frame(NamedTuple):
    """Points, which are pixels when the view is drawn; y grows downwards."""

    x: float
    y: float
    width: float
    height: float


class Coder(Handle):
    """The archive that a view is written to and made from, kept in memory."""

    def __init__(self) -> None:
        super().__init__(functions().coder_create(), functions().coder_release)


class View(Handle):
    def __init__(self, width: float = 0, height: float = 0, *, background: Background = Background.BLACK,
                 coder: Coder | None = None):
        """Empty, of a size, or as `coder` holds it."""
        self._handler: Callable[[View], object] | None = None
        if coder is not None:
            self._make(functions().view_create_with_coder(coder.pointer))
            return
        self._make(functions().view_create())
        self.resize(width, height)
        self.background = background

    def _make(self, pointer: int | None) -> None:
        # Weak, so that a handler which knows its view keeps neither alive.
        this = weakref.ref(self)
        number = _callbacks.keep(lambda _: _call_handler(this()))

        def release(pointer: int) -> None:
            _callbacks.forget(number)
            functions().view_release(pointer)

        self._number = number
        super().__init__(pointer, release)

    @property
    def frame(self) -> Frame:
        frame = functions().view_frame(self.pointer)
        return Frame(frame.x, frame.y, frame.width, frame.height)

    @frame.setter
    def frame(self, frame: tuple[float, float, float, float]) -> None:
        check(functions().view_set_frame(self.pointer, Rectangle(*frame)))

    def resize(self, width: float, height: float) -> None:
        """In device pixels; the origin stays."""
        check(functions().view_set_size(self.pointer, width, height))

    @property
    def background(self) -> Background:
        return Background(functions().view_background(self.pointer))

    @background.setter
    def background(self, background: Background) -> None:
        check(functions().view_set_background(self.pointer, background))

    @property
    def needs_display(self) -> bool:
        """Whether the picture has changed since it was drawn last."""
        return functions().view_needs_display(self.pointer)

    @property
    def on_needs_display(self) -> "Callable[[View], object] | None":
        """Called with the view, from the loop, once when it has come to need display, and not again before it is drawn. It
        may draw the view, close it or only take a note."""
        return self._handler

    @on_needs_display.setter
    def on_needs_display(self, handler: "Callable[[View], object] | None") -> None:
        function = _callbacks.needs_display_handler if handler else _callbacks.NO_NEEDS_DISPLAY_HANDLER
        check(functions().view_set_needs_display_handler(self.pointer, function, self._number))
        self._handler = handler

    def draw(self, target: Any, width: int | None = None, height: int | None = None, stride: int | None = None) -> None:
        """Draws over what the pixels show, one point to a pixel, the frame's origin counted from the top left.

        A pixel is four bytes, a number 0xAARRGGBB in the machine's byte order (blue first where that is little-endian),
        with the colours multiplied by alpha. `target` is a cairo.ImageSurface, a QImage, an array of (height, width)
        such numbers or (height, width, 4) bytes, a part of a larger one too, or any writable buffer of bytes: then width
        and height are the view's and a row has no padding, unless they are given.
        """
        frame = self.frame
        width = math.ceil(frame.width) if width is None else width
        height = math.ceil(frame.height) if height is None else height
        with pixels_of(target, width, height, stride) as pixels:
            check(functions().view_draw(self.pointer, *pixels))

    def encode(self, coder: Coder) -> None:
        """Writes what `View(coder=coder)` reads, in place of what was written before."""
        check(functions().view_encode(self.pointer, coder.pointer))

    def layout(self) -> None:
        """Puts backdrop and animation where they belong now. Drawing does so by itself."""
        check(functions().view_layout_subviews(self.pointer))

    @classmethod
    def from_coder(cls, coder: Coder) -> Self:
        return cls(coder=coder)


def _call_handler(view: View | None) -> None:
    if view is not None and view.on_needs_display is not None:
        view.on_needs_display(view)
