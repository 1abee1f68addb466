"""Plays in every loop, and what becomes of callbacks and of things that nobody has any more."""
import asyncio
import gc
import subprocess
import sys
import threading
import unittest
import weakref
from unittest import mock

import quellaro_halvo as halvo
from cue import SIDE, prepare, prepared


def in_asyncio(begin):
    async def main():
        with halvo.attach_asyncio():
            over = asyncio.get_running_loop().create_future()
            begin(lambda: over.set_result(None))
            await asyncio.wait_for(over, 5)
    asyncio.run(main())


def in_glib(begin):
    from gi.repository import GLib
    loop = GLib.MainLoop()
    GLib.timeout_add_seconds(5, loop.quit)
    with halvo.attach_glib():
        begin(loop.quit)
        loop.run()


def in_qt(begin):
    from PyQt6 import QtCore
    application = QtCore.QCoreApplication([])
    QtCore.QTimer.singleShot(5000, application.quit)
    with halvo.attach_qt():
        begin(application.quit)
        application.exec()


def waiting(begin):
    over = []
    begin(lambda: over.append(True))
    halvo.loop.run_until(lambda: over, 5)


class Plays(unittest.TestCase):
    def test_every_loop_brings_the_answers_and_the_pictures(self):
        for loop in in_asyncio, in_glib, in_qt, waiting:
            with self.subTest(loop.__name__), halvo.Controller() as controller, halvo.View(SIDE, SIDE) as view:
                told, pictures, pixels = [], set(), bytearray(SIDE * SIDE * 4)

                def draw(drawn):
                    drawn.draw(pixels)
                    pictures.add(bytes(pixels))

                def begin(end):
                    def played(status):
                        told.append((status, controller.is_playing))
                        end()
                    view.on_needs_display = draw
                    prepare(controller).then(lambda status: (told.append(status), controller.play(view, played)))

                loop(begin)
                self.assertEqual(told, [halvo.Status.SUCCESS, (halvo.Status.SUCCESS, True)])
                self.assertGreaterEqual(len(pictures), 3)
                self.assertEqual(controller.prepared_cue, "test")

    def test_an_answer_is_awaited_without_more_ado(self):
        async def main():
            halvo.attach_asyncio()  # never detached, but for the end of the loop
            controller = halvo.Controller()
            first = await prepare(controller)
            again = prepare(controller)
            inside = again.status  # prepared already: answered inside the call
            play = controller.play(halvo.View(SIDE, SIDE))
            with self.assertRaises(asyncio.TimeoutError):
                await asyncio.wait_for(play, 0.01)
            # Who was cancelled takes nothing away from who still waits.
            answers = [first, inside, await again, *await asyncio.gather(play, controller.play())]
            # Awaits that are over have not taken the loop's own attachment away.
            over = asyncio.get_running_loop().create_future()
            controller.play(halvo.View(SIDE, SIDE), over.set_result)
            return [*answers, await asyncio.wait_for(over, 5)]

        with mock.patch("sys.unraisablehook") as unraisable:
            # A loop that has gone is of no matter to the next one.
            for _ in range(2):
                self.assertEqual(asyncio.run(main()), [800, 800, 800, 800, 904, 800])
        unraisable.assert_not_called()

    def test_waiting_has_an_end(self):
        controller = prepared()
        answer = controller.play(halvo.View(SIDE, SIDE))
        self.assertRaises(TimeoutError, answer.wait, 0.02)
        self.assertEqual(answer.wait(5), 800)

    def test_exceptions_in_callbacks_end_there(self):
        controller, view, seen = prepared(), halvo.View(SIDE, SIDE), []

        def fail(_):
            raise LookupError("of the host's own")

        view.on_needs_display = fail
        with mock.patch("sys.unraisablehook", lambda unraisable: seen.append(unraisable.exc_type)):
            answer = controller.play(view, completion=fail)
            others = []
            answer.then(others.append)
            self.assertEqual(answer.wait(5), 800)
        self.assertEqual(others, [800])
        self.assertGreaterEqual(seen.count(LookupError), 2)

    def test_what_nobody_keeps_lasts_as_long_as_it_is_needed(self):
        controller, told, pictures = prepared(), [], []
        view = halvo.View(SIDE, SIDE)
        view.on_needs_display = lambda drawn: (drawn.draw(bytearray(SIDE * SIDE * 4)), pictures.append(drawn.needs_display))
        gone = weakref.ref(view)
        controller.play(view, completion=told.append)
        del view, controller
        gc.collect()
        halvo.loop.run_until(lambda: told, 5)
        self.assertEqual(told, [800])
        self.assertGreaterEqual(len(pictures), 3)
        gc.collect()
        self.assertIsNone(gone())

    def test_rubbish_is_released_on_the_loops_thread(self):
        gc.collect()
        halvo.loop.drain()
        released = []
        view = halvo.View()
        view.on_needs_display = lambda drawn: view  # a circle, which only the collector finds
        real = halvo.functions().view_release
        with mock.patch.object(halvo.functions(), "view_release",
                               lambda pointer: (released.append(threading.current_thread()), real(pointer))):
            del view
            other = threading.Thread(target=gc.collect)
            other.start()
            other.join()
            self.assertEqual(released, [])
            halvo.loop.drain()
        self.assertEqual(released, [threading.current_thread()])

    def test_a_closed_thing_says_so(self):
        with halvo.Controller() as controller, halvo.View() as view:
            pass
        controller.close()
        for what, call in ("controller", controller.play), ("view", lambda: view.background):
            with self.subTest(what), self.assertRaisesRegex(ValueError, f"this {what} is closed"):
                call()


    def test_a_sound_that_has_ended_is_told_until_nobody_asks(self):
        controller, names = prepared(halvo.Type.SOUND_ONLY), []
        with halvo.observe_audio_session_deactivated(names.append):
            for _ in range(2):
                self.assertEqual(controller.play().wait(5), 800)
                halvo.loop.run_until_idle()
                told = len(names)
        self.assertEqual(controller.play().wait(5), 800)
        halvo.loop.run_until_idle()
        self.assertEqual((names, told), (["QLAudioSessionDeactivated"] * 2, 2))


class Loading(unittest.TestCase):
    def test_a_library_that_is_not_there_is_named(self):
        run = subprocess.run([sys.executable, "-c", "import quellaro_halvo; quellaro_halvo.Controller()"], capture_output=True, text=True,
                             env={"QUELLARO_HALVO_LIBRARY": "/nowhere/lib.so", "PYTHONPATH": ":".join(sys.path)})
        self.assertIn("OSError: the library QuellaroHalvo cannot be loaded: /nowhere/lib.so", run.stderr)

    def test_a_function_that_an_older_library_lacks_is_named(self):
        with self.assertRaisesRegex(AttributeError, "no quellaro_halvo_of_tomorrow"):
            halvo.functions().of_tomorrow  # noqa: B018


if __name__ == "__main__":
    unittest.main()
