#!/usr/bin/python3
"""A host in Python, with no compiler at hand: plays the built-in cue in a loop of its own and counts the pictures.

  ctypes_host.py              plays on the machine's sound server
  ctypes_host.py --simulated  plays on nothing: the sound takes its time, and nobody hears it

QUELLARO_HALVO_LIBRARY names the shared object; without it the dynamic linker looks for libQuellaroHalvo.so.1.
Exit status: 0 when the cue has played, 1 when not, 2 for unusable arguments.
"""
import ctypes
import os
import select
import sys
from ctypes import POINTER, c_bool, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t, c_void_p

SIDE = 480
SUCCESS = 800
COMPLETION = ctypes.CFUNCTYPE(None, c_int64, c_void_p)
NEEDS_DISPLAY = ctypes.CFUNCTYPE(None, c_void_p, c_void_p)

# What each function gives and takes: pointers are cut in half where ctypes is not told.
FUNCTIONS = {
    "use_simulated_devices": (c_int32, c_double, c_bool),
    "merchant_create": (c_void_p, c_char_p, c_char_p, c_char_p, POINTER(c_char_p), c_size_t, c_char_p),
    "merchant_release": (None, c_void_p),
    "view_create": (c_void_p,),
    "view_release": (None, c_void_p),
    "view_set_size": (c_int32, c_void_p, c_double, c_double),
    "view_draw": (c_int32, c_void_p, c_void_p, c_int32, c_int32, c_size_t),
    "view_set_needs_display_handler": (c_int32, c_void_p, NEEDS_DISPLAY, c_void_p),
    "controller_create": (c_void_p,),
    "controller_release": (None, c_void_p),
    "controller_prepare": (c_int32, c_void_p, c_int64, c_char_p, c_int64, c_void_p, c_bool, COMPLETION, c_void_p),
    "controller_play": (c_int32, c_void_p, c_void_p, COMPLETION, c_void_p),
    "loop_descriptor": (c_int,),
    "loop_milliseconds_until_next_deadline": (c_int,),
    "loop_drain": (c_bool,),
    "loop_run_until_idle": (c_int32, c_int),
    "status_name": (c_char_p, c_int64),
}


class Library:
    """The functions of the library without their common prefix."""

    def __init__(self, path):
        shared_object = ctypes.CDLL(path)
        for name, (result, *arguments) in FUNCTIONS.items():
            function = getattr(shared_object, "quellaro_halvo_" + name)
            function.restype, function.argtypes = result, arguments
            setattr(self, name, function)


class Host:
    def __init__(self, library):
        self.halvo = library
        self.answer = None
        self.pictures = 0
        self.pixels = bytearray(SIDE * SIDE * 4)
        self.controller = library.controller_create()
        self.view = library.view_create()
        library.view_set_size(self.view, SIDE, SIDE)
        # Kept: the library calls them later, when Python would have forgotten them.
        self.draw, self.play, self.finish = NEEDS_DISPLAY(self.draw), COMPLETION(self.play), COMPLETION(self.finish)
        library.view_set_needs_display_handler(self.view, self.draw, None)

    def draw(self, view, _context):
        pixels = (ctypes.c_char * len(self.pixels)).from_buffer(self.pixels)
        self.halvo.view_draw(view, pixels, SIDE, SIDE, SIDE * 4)
        self.pictures += 1

    def play(self, status, _context):
        if status == SUCCESS:
            self.halvo.controller_play(self.controller, self.view, self.finish, None)
        else:
            self.answer = status

    def finish(self, status, _context):
        self.answer = status

    def run(self):
        merchant = self.halvo.merchant_create(b"Corner Shop", b"US", b"San Francisco", (c_char_p * 1)(b"5411"), 1, None)
        self.halvo.controller_prepare(self.controller, 0, b"quellaro", 0, merchant, False, self.play, None)
        self.halvo.merchant_release(merchant)
        poll = select.poll()
        poll.register(self.halvo.loop_descriptor(), select.POLLIN)
        while self.answer is None:
            timeout = self.halvo.loop_milliseconds_until_next_deadline()
            poll.poll(timeout if timeout >= 0 else None)
            self.halvo.loop_drain()
        # The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
        self.halvo.loop_run_until_idle(5000)
        self.halvo.controller_release(self.controller)
        self.halvo.view_release(self.view)


def main(arguments):
    library = Library(os.environ.get("QUELLARO_HALVO_LIBRARY", "libQuellaroHalvo.so.1"))
    if arguments == ["--simulated"]:
        library.use_simulated_devices(1.0, True)
    elif arguments:
        print(f"usage: {sys.argv[0]} [--simulated]", file=sys.stderr)
        return 2
    host = Host(library)
    host.run()
    print(f"{host.answer} {library.status_name(host.answer).decode()}, {host.pictures} pictures", flush=True)
    return 0 if host.answer == SUCCESS else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
