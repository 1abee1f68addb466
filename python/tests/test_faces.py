"""Views into every kind of buffer, merchants, and calls that are refused."""
import unittest

import cairo
import cue  # noqa: F401  (its devices and directories)
import numpy
import quellaro_halvo as halvo
from PyQt6.QtGui import QImage
from quellaro_halvo import library_version

SIDE = 8
WHITE, EMPTY = b"\xff" * 4, b"\0" * 4


class Drawing(unittest.TestCase):
    def setUp(self):
        self.view = halvo.View(SIDE, SIDE, background=halvo.Background.WHITE)

    def test_into_every_kind_of_buffer(self):
        white = WHITE * SIDE * SIDE
        image = QImage(SIDE, SIDE, QImage.Format.Format_ARGB32_Premultiplied)
        surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, SIDE, SIDE)
        halves = bytearray(SIDE * SIDE * 4 + 64)
        for name, target, seen in (
            ("bytearray", bytearray(len(white)), bytes),
            ("memoryview of a part", memoryview(halves)[64:], bytes),
            ("numbers", memoryview(bytearray(len(white))).cast("I", (SIDE, SIDE)), bytes),
            ("numpy, bytes", numpy.zeros((SIDE, SIDE, 4), numpy.uint8), bytes),
            ("numpy, numbers", numpy.zeros((SIDE, SIDE), numpy.uint32), bytes),
            ("cairo", surface, lambda drawn: bytes(drawn.get_data())),
            ("Qt", image, lambda drawn: bytes(drawn.constBits().asarray(drawn.sizeInBytes()))),
        ):
            with self.subTest(name):
                self.view.draw(target)
                self.assertEqual(seen(target), white)
        self.assertEqual(bytes(halves[:64]), EMPTY * 16)

    def test_into_a_part_of_a_larger_picture_and_nowhere_else(self):
        picture = numpy.zeros((16, 20, 4), numpy.uint8)
        self.view.draw(picture[4:12, 6:14])
        self.assertEqual(int(picture.sum()), SIDE * SIDE * 4 * 255)
        self.assertTrue((picture[4:12, 6:14] == 255).all())
        padded = bytearray(b"\x11" * (40 * SIDE))
        self.view.draw(padded, SIDE, SIDE, stride=40)
        self.assertEqual(bytes(padded), (WHITE * SIDE + b"\x11" * 8) * SIDE)

    def test_what_is_no_picture_is_refused(self):
        room = SIDE * SIDE * 4
        array = numpy.zeros((SIDE, SIDE, 4), numpy.uint8)
        for name, error, arguments in (
            ("one byte short", ValueError, (bytearray(room - 1),)),
            ("a row too many", ValueError, (bytearray(room), SIDE, SIDE + 1)),
            ("rows that overlap", ValueError, (bytearray(room), SIDE, SIDE, SIDE * 4 - 4)),
            ("no width", ValueError, (bytearray(room), 0, SIDE)),
            ("a huge height", ValueError, (bytearray(room), SIDE, 2**62)),
            ("bytes, which never change", BufferError, (bytes(room),)),
            ("no buffer", TypeError, (object(),)),
            ("from bottom to top", ValueError, (array[::-1],)),
            ("every other column", ValueError, (array[:, ::2],)),
            ("three channels", ValueError, (array[:, :, :3],)),
            ("off the word", halvo.HalvoError, (memoryview(bytearray(room + 4))[1:],)),
            ("16 bits of Qt", ValueError, (QImage(SIDE, SIDE, QImage.Format.Format_RGB16),)),
        ):
            with self.subTest(name):
                self.assertRaises(error, self.view.draw, *arguments)


class Faces(unittest.TestCase):
    def test_views(self):
        view = halvo.View(3, 4, background=halvo.Background.WHITE)
        view.frame = (1, 2, 5, 6)
        coder = halvo.Coder()
        view.encode(coder)
        again = halvo.View(coder=coder)
        self.assertEqual(again.frame, (1, 2, 5, 6))
        handler = print
        view.on_needs_display = handler
        self.assertIs(view.on_needs_display, handler)
        view.on_needs_display = None
        self.assertIsNone(view.on_needs_display)

    def test_merchants(self):
        merchant = halvo.Merchant("Bäckerei Süd", "DE", ["5462", "5411"], city="Köln")
        self.assertEqual((merchant.name, merchant.country_code, merchant.city, merchant.category_codes, merchant.identifier),
                         ("Bäckerei Süd", "DE", "Köln", ["5462", "5411"], "bäckereisüd"))
        self.assertEqual(merchant, halvo.Merchant("Bäckerei Süd", "DE", ["1"], city="Köln"))
        self.assertEqual(len({merchant, halvo.Merchant("Bäckerei Süd", "AT", ["1"])}), 2)
        self.assertIsNone(halvo.Merchant("a", "b", ["c"]).city)

    def test_what_is_refused_says_why(self):
        merchant, controller = halvo.Merchant("a", "b", ["c"]), halvo.Controller()
        for name, error, says, call in (
            ("no code", halvo.HalvoError, "list of category codes", lambda: halvo.Merchant("a", "b", [])),
            ("a text for a list", halvo.HalvoError, "list of category codes", lambda: halvo.Merchant("a", "b", "5411")),
            ("a zero in a text", ValueError, "zero character", lambda: controller.prepare("a\0b", merchant)),
            ("half a character", UnicodeEncodeError, "surrogates", lambda: controller.prepare("\udc80", merchant)),
            ("an unknown type", halvo.HalvoError, "outside its range", lambda: controller.prepare("a", merchant, type=7)),
            ("no size", halvo.HalvoError, "outside its range", lambda: halvo.View(-1, 0)),
            ("too late", halvo.HalvoError, "controller", lambda: halvo.set_application_identifier("a.b")),
            ("no such directory", halvo.HalvoError, "", lambda: halvo.set_bundle_directory("/nowhere")),
        ):
            with self.subTest(name):
                self.assertRaisesRegex(error, says, call)
        self.assertEqual(controller.play().status, halvo.Status.NOT_PREPARED)

    def test_what_the_library_prints_goes_where_it_is_told(self):
        printed = []
        halvo.set_console_sink(printed.append)
        self.addCleanup(halvo.set_console_sink, lambda _: None)
        cue.prepared().play(halvo.View(SIDE, SIDE)).wait(5)
        self.assertRegex("".join(printed), r"^===> 0.0 Animation started at [\d.]+\n===> [\d.]+ Animation ended at [\d.]+\n$")

    def test_what_it_tells_about_itself(self):
        self.assertEqual(library_version(), halvo.__version__)
        self.assertEqual(halvo.status_name(halvo.Status.SUCCESS_WITH_FALLBACK), "successWithFallback")
        self.assertEqual({status.name for status in halvo.Status},
                         {"".join("_" + c if c.isupper() else c.upper() for c in halvo.status_name(status)) for status in halvo.Status})


if __name__ == "__main__":
    unittest.main()
