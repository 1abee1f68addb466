#!/usr/bin/python3
"""A kiosk in Python: a full-screen window that plays the built-in cue when a key is pressed, again and again. Escape ends it."""
import sys

import quellaro_halvo as halvo
from quellaro_halvo.gtk4 import Gdk, Gtk, ViewWidget


class Kiosk(Gtk.Application):
    status = None

    def do_activate(self):
        self.controller = halvo.Controller()
        self.area = ViewWidget()
        self.window = Gtk.ApplicationWindow(application=self, title="Kiosk", child=self.area)
        # Many kiosks have no window manager, which full-screen is asked of.
        screen = Gdk.Display.get_default().get_monitors().get_item(0).get_geometry()
        self.window.set_default_size(screen.width, screen.height)
        self.window.fullscreen()
        keys = Gtk.EventControllerKey()
        keys.connect("key-pressed", self.press)
        self.window.add_controller(keys)
        self.window.set_cursor(Gdk.Cursor.new_from_name("none"))
        self.window.present()
        # Beforehand, so that a key is answered at once.
        self.controller.prepare("quellaro", halvo.Merchant("Corner Shop", "US", ["5411"]), completion=self.be_ready)

    def be_ready(self, status):
        print(f"prepared: {status} {halvo.status_name(status)}", flush=True)

    def press(self, _keys, key, _code, _state):
        if key == Gdk.KEY_Escape:
            self.window.close()
        else:
            # A key during a play is answered with 904, before a prepare with 908: nothing is to be done then.
            self.controller.play(self.area.view, completion=self.finish)
        return True

    def finish(self, status):
        print(f"{status} {halvo.status_name(status)}", flush=True)
        if status not in (halvo.Status.ALREADY_PLAYING, halvo.Status.NOT_PREPARED):
            self.status = status


kiosk = Kiosk()
with halvo.attach_glib():
    kiosk.run()
halvo.loop.run_until_idle()
sys.exit(0 if kiosk.status in (None, halvo.Status.SUCCESS, halvo.Status.SUCCESS_WITH_FALLBACK) else 1)
