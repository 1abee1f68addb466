"""A cue of five pictures in a tenth of a second and a sound of a quarter; importing this chooses it for the whole process."""
import atexit
import json
import pathlib
import shutil
import tempfile

import quellaro_halvo as halvo

SIDE = 32
_directory = tempfile.TemporaryDirectory()
atexit.register(_directory.cleanup)
_bundle = pathlib.Path(_directory.name, "bundle")
_bundle.mkdir()
_files = {
    "Info.json": {"CFBundleShortVersionString": "1.0.0"},
    "version_config.json": [{"sdk_versions": ["1.0.0"], "cues": {"test": {"version": "1", "filepath": "test/1"}},
                             "analytics": {"enable": False, "frequency": "M", "url": ""}}],
    "play_config.json": {"totalFrames": 5, "svgPreFix": None, "soundFileName": "audio.mp3", "soundDelayInMillis": 0,
                         "animationDelayInMillis": 0, "frameTime": {f"Frame_{i}": 20 for i in range(1, 6)},
                         "viewBox": "0 0 32 32", "isHapticsSupported": False},
    "animation.json": [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32"><rect x="0" y="0" width="{6 * i}" height="32" fill="#0000ff"/></svg>' for i in range(1, 6)],
}
for _name, _content in _files.items():
    (_bundle / _name).write_text(json.dumps(_content))
shutil.copy(pathlib.Path(__file__).resolve().parents[2] / "tests/avfoundation/sounds/mono_22050.mp3", _bundle / "audio.mp3")
halvo.set_bundle_directory(_bundle)
halvo.set_library_directory(pathlib.Path(_directory.name, "library"))
halvo.use_simulated_devices()
halvo.set_console_sink(lambda _: None)


def prepared(type=halvo.Type.ANIMATION_ONLY):
    controller = halvo.Controller()
    assert prepare(controller, type).wait(5) == halvo.Status.SUCCESS
    return controller


def prepare(controller, type=halvo.Type.ANIMATION_ONLY):
    return controller.prepare("test", halvo.Merchant("Corner Shop", "US", ["5411"]), type=type)
