"""Plays a short brand cue: a sound, a vector animation and a haptic pattern, together and on time.

    import quellaro_halvo as halvo

    with halvo.Controller() as controller, halvo.View(480, 480) as view:
        if controller.prepare("quellaro", halvo.Merchant("Corner Shop", "US", ["5411"])).wait() == halvo.Status.SUCCESS:
            print(controller.play(view).wait().name)
    halvo.loop.run_until_idle()

A prepare and a play give an Answer: `await` it, `wait()` for it, or hand a completion in. `loop` and the attachments let
the library work in the loop of a host.
"""
from . import loop
from ._library import HalvoError, functions
from ._signatures import Background, Environment, Result, Status, Type
from .answer import Answer
from .attachments import Attachment, attach_asyncio, attach_glib, attach_qt
from .controller import Controller
from .merchant import Merchant
from .settings import (Observation, build_report, library_version, observe_audio_session_deactivated, set_application_identifier,
                       set_bundle_directory, set_console_sink, set_library_directory, status_description, status_name,
                       use_real_devices, use_simulated_devices)
from .view import Coder, Frame, View

__version__ = "1.0.0"
__all__ = [
    "Answer", "Attachment", "Background", "Coder", "Controller", "Environment", "Frame", "HalvoError", "Merchant", "Observation",
    "Result", "Status", "Type", "View", "attach_asyncio", "attach_glib", "attach_qt", "build_report", "functions", "library_version",
    "loop", "observe_audio_session_deactivated", "set_application_identifier", "set_bundle_directory", "set_console_sink",
    "set_library_directory", "status_description", "status_name", "use_real_devices", "use_simulated_devices",
]
