"""A widget of GTK 4 that shows a view, at the pixels of the screen whatever its scale. Needs PyGObject and GTK 4."""
import gi

gi.require_version("Gtk", "4.0")
gi.require_version("Gdk", "4.0")
gi.require_version("Graphene", "1.0")
from gi.repository import Gdk, GLib, Graphene, Gtk  # noqa: E402

from .view import View  # noqa: E402


class ViewWidget(Gtk.Widget):  # type: ignore[misc]
    """Takes the room that it is given, and the view's size with it."""

    def __init__(self, view: View | None = None):
        super().__init__(hexpand=True, vexpand=True)
        self.view = view or View()
        self.view.on_needs_display = lambda _: self.queue_draw()

    def do_snapshot(self, snapshot: Gtk.Snapshot) -> None:
        # In units that the scale turns into pixels.
        width, height, scale = self.get_width(), self.get_height(), self.get_scale_factor()
        if width < 1 or height < 1 or self.view.closed:
            return
        columns, rows = width * scale, height * scale
        pixels = bytearray(columns * rows * 4)
        self.view.resize(columns, rows)
        self.view.draw(pixels, columns, rows)
        texture = Gdk.MemoryTexture.new(columns, rows, Gdk.MemoryFormat.B8G8R8A8_PREMULTIPLIED, GLib.Bytes.new(bytes(pixels)),
                                        columns * 4)
        snapshot.append_texture(texture, Graphene.Rect().init(0, 0, width, height))
