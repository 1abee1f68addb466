"""Where a view is drawn to: any writable buffer, and the pictures of cairo and Qt."""
import ctypes
from collections.abc import Iterator
from contextlib import contextmanager
from typing import Any, NamedTuple

_WRITABLE, _STRIDES = 0x0001, 0x0010 | 0x0008


class _Buffer(ctypes.Structure):
    """Py_buffer: a memoryview tells no address."""

    _fields_ = [
        ("buf", ctypes.c_void_p), ("obj", ctypes.py_object), ("len", ctypes.c_ssize_t), ("itemsize", ctypes.c_ssize_t),
        ("readonly", ctypes.c_int), ("ndim", ctypes.c_int), ("format", ctypes.c_char_p),
        ("shape", ctypes.POINTER(ctypes.c_ssize_t)), ("strides", ctypes.POINTER(ctypes.c_ssize_t)),
        ("suboffsets", ctypes.POINTER(ctypes.c_ssize_t)), ("internal", ctypes.c_void_p),
    ]


class Pixels(NamedTuple):
    address: int
    width: int
    height: int
    stride: int


@contextmanager
def pixels_of(target: Any, width: int, height: int, stride: int | None) -> Iterator[Pixels]:
    """The pixels of what is drawn to, which stays where it is meanwhile. The sizes count for what has none of its own."""
    if hasattr(target, "get_data") and hasattr(target, "get_stride"):  # cairo.ImageSurface
        target.flush()
        with _pixels_of_buffer(target.get_data(), target.get_width(), target.get_height(), target.get_stride()) as pixels:
            yield pixels
        target.mark_dirty()
    elif hasattr(target, "bytesPerLine") and hasattr(target, "bits"):  # QImage
        if target.depth() != 32:
            raise ValueError("a QImage has to be of 32 bits: Format_ARGB32_Premultiplied")
        bits = target.bits()
        if hasattr(bits, "setsize"):
            bits.setsize(target.sizeInBytes())
        with _pixels_of_buffer(memoryview(bits), target.width(), target.height(), target.bytesPerLine()) as pixels:
            yield pixels
    else:
        with _pixels_of_buffer(target, width, height, stride) as pixels:
            yield pixels


@contextmanager
def _pixels_of_buffer(target: Any, width: int, height: int, stride: int | None) -> Iterator[Pixels]:
    buffer = _Buffer()
    ctypes.pythonapi.PyObject_GetBuffer(ctypes.py_object(target), ctypes.byref(buffer), _WRITABLE | _STRIDES)
    try:
        yield _layout(buffer, width, height, stride)
    finally:
        ctypes.pythonapi.PyBuffer_Release(ctypes.byref(buffer))


def _layout(buffer: _Buffer, width: int, height: int, stride: int | None) -> Pixels:
    shape, strides = buffer.shape[:buffer.ndim], buffer.strides[:buffer.ndim]
    if (buffer.ndim, buffer.itemsize) == (2, 4) or (buffer.ndim == 3 and shape[2] == 4 and buffer.itemsize == 1 and strides[2] == 1):
        if strides[1] != 4 or strides[0] < 0:
            raise ValueError("the pixels of a row have to lie one after the other, and the rows from top to bottom")
        return Pixels(buffer.buf, shape[1], shape[0], strides[0])
    if buffer.ndim != 1 or strides[0] != buffer.itemsize:
        raise ValueError("an array of pixels is (height, width) of 4 bytes each, or (height, width, 4) of bytes")
    stride = width * 4 if stride is None else stride
    if width < 1 or height < 1 or stride < width * 4:
        raise ValueError(f"no picture is {width} x {height} pixels in rows of {stride} bytes")
    if (height - 1) * stride + width * 4 > buffer.len:
        raise ValueError(f"{buffer.len} bytes are too few for {width} x {height} pixels in rows of {stride} bytes")
    return Pixels(buffer.buf, width, height, stride)
