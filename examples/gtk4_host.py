#!/usr/bin/python3
"""A host in Python with a GTK 4 window, which shows the built-in cue once and closes."""
import sys

import quellaro_halvo as halvo
from quellaro_halvo.gtk4 import Gtk, ViewWidget


class Host(Gtk.Application):
    status = None

    def do_activate(self):
        self.controller = halvo.Controller()
        self.area = ViewWidget()
        self.window = Gtk.ApplicationWindow(application=self, title="Cue", default_width=480, default_height=480, child=self.area)
        self.window.present()
        self.controller.prepare("quellaro", halvo.Merchant("Corner Shop", "US", ["5411"]), completion=self.play)

    def play(self, status):
        if status == halvo.Status.SUCCESS:
            self.controller.play(self.area.view, completion=self.finish)
        else:
            self.finish(status)

    def finish(self, status):
        self.status = status
        self.window.close()


host = Host()
with halvo.attach_glib():
    host.run()
# The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
halvo.loop.run_until_idle()
if host.status is None:  # the window was closed before
    sys.exit(1)
print(f"{host.status} {halvo.status_name(host.status)}")
sys.exit(0 if host.status == halvo.Status.SUCCESS else 1)
