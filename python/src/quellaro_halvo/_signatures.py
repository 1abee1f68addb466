# Made from quellaro_halvo.h by scripts/python-signatures, and not to be edited: run that again.
"""The C interface for ctypes. Names are the header's, without their common prefix."""
from collections.abc import Callable
from ctypes import CFUNCTYPE, POINTER, Structure, c_bool, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t, c_uint32, c_uint64, c_void_p
from enum import IntEnum
from typing import Any

VERSION_MAJOR = 1
VERSION_MINOR = 0
VERSION_PATCH = 0
AUDIO_SESSION_DEACTIVATED = "QLAudioSessionDeactivated"


class Result(IntEnum):
    OK = 0
    NULL_ARGUMENT = 1
    INVALID_VALUE = 2
    INVALID_TEXT = 3
    TOO_LATE = 4
    NOT_FOUND = 5
    BUSY = 6
    OUT_OF_MEMORY = 7
    FAILED = 8
    FORKED = 9


class Type(IntEnum):
    ANIMATION_AND_SOUND = 0
    SOUND_ONLY = 1
    ANIMATION_ONLY = 2


class Environment(IntEnum):
    PRIMARY = 0
    SECONDARY = 1


class Background(IntEnum):
    BLACK = 0
    WHITE = 1


class Status(IntEnum):
    SUCCESS = 800
    SUCCESS_WITH_FALLBACK = 801
    PREPARE_FAILED = 901
    SOUND_PREPARE_FAILED = 902
    ANIMATION_PREPARE_FAILED = 903
    ALREADY_PLAYING = 904
    PLAY_FAILED = 905
    SOUND_PLAY_FAILED = 906
    ANIMATION_PLAY_FAILED = 907
    NOT_PREPARED = 908
    HAPTICS_PREPARE_FAILED = 909
    HAPTICS_PLAY_FAILED = 910


class Sound(IntEnum):
    NONE = 0
    HEARD = 1
    MUTED = 2
    NO_SERVER = 3
    BROKEN_OFF = 4
    UNDECODABLE = 5


class LogLevel(IntEnum):
    ERROR = 1
    WARNING = 2
    INFO = 3


class Rectangle(Structure):
    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("width", c_double),
        ("height", c_double),
    ]
    x: float
    y: float
    width: float
    height: float


NeedsDisplayHandler = CFUNCTYPE(None, c_void_p, c_void_p)
Completion = CFUNCTYPE(None, c_int64, c_void_p)
NotificationHandler = CFUNCTYPE(None, c_char_p, c_void_p)
ConsoleSink = CFUNCTYPE(None, c_char_p, c_void_p)
LogSink = CFUNCTYPE(None, c_int32, c_char_p, c_void_p)


class Functions:
    """What the library exports; `SIGNATURES` tells ctypes the same."""

    status_is_valid: Callable[[int], bool]
    status_name: Callable[[int], bytes | None]
    status_description: Callable[[int], bytes | None]
    status_error_domain: Callable[[], bytes | None]
    result_description: Callable[[int], bytes | None]
    set_bundle_directory: Callable[[bytes | None], int]
    set_library_directory: Callable[[bytes | None], int]
    set_application_identifier: Callable[[bytes | None], int]
    use_real_devices: Callable[[], int]
    set_sound_name: Callable[[bytes | None], int]
    use_simulated_devices: Callable[[float, bool], int]
    merchant_create: Callable[[bytes | None, bytes | None, bytes | None, Any, int, bytes | None], int | None]
    merchant_release: Callable[[Any], None]
    merchant_name: Callable[[Any], bytes | None]
    merchant_country_code: Callable[[Any], bytes | None]
    merchant_city: Callable[[Any], bytes | None]
    merchant_category_code_count: Callable[[Any], int]
    merchant_category_code: Callable[[Any, int], bytes | None]
    merchant_identifier: Callable[[Any], bytes | None]
    merchant_description: Callable[[Any], bytes | None]
    merchant_hash: Callable[[Any], int]
    merchant_is_equal: Callable[[Any, Any], bool]
    view_create: Callable[[], int | None]
    view_create_with_frame: Callable[[Rectangle], int | None]
    view_create_with_coder: Callable[[Any], int | None]
    view_release: Callable[[Any], None]
    coder_create: Callable[[], int | None]
    coder_release: Callable[[Any], None]
    view_encode: Callable[[Any, Any], int]
    view_background: Callable[[Any], int]
    view_set_background: Callable[[Any, int], int]
    view_frame: Callable[[Any], Rectangle]
    view_set_frame: Callable[[Any, Rectangle], int]
    view_set_size: Callable[[Any, float, float], int]
    view_layout_subviews: Callable[[Any], int]
    view_draw: Callable[[Any, Any, int, int, int], int]
    view_needs_display: Callable[[Any], bool]
    view_set_needs_display_handler: Callable[[Any, Any, Any], int]
    controller_create: Callable[[], int | None]
    controller_release: Callable[[Any], None]
    controller_prepare: Callable[[Any, int, bytes | None, int, Any, bool, Any, Any], int]
    controller_play: Callable[[Any, Any, Any, Any], int]
    controller_prepared_halvo_cue: Callable[[Any], bytes | None]
    controller_set_prepared_halvo_cue: Callable[[Any, bytes | None], int]
    controller_failure_reason: Callable[[Any], bytes | None]
    controller_last_sound: Callable[[Any], int]
    controller_duration: Callable[[Any], float]
    controller_is_playing: Callable[[Any], bool]
    controller_set_is_playing: Callable[[Any, bool], int]
    observe_audio_session_deactivated: Callable[[Any, Any], int]
    stop_observing_audio_session_deactivated: Callable[[int], None]
    loop_descriptor: Callable[[], int]
    loop_seconds_until_next_deadline: Callable[[], float]
    loop_milliseconds_until_next_deadline: Callable[[], int]
    loop_drain: Callable[[], bool]
    loop_run: Callable[[], int]
    loop_run_until_idle: Callable[[int], int]
    loop_stop: Callable[[], None]
    set_console_sink: Callable[[Any, Any], int]
    set_log_sink: Callable[[Any, int, Any], int]
    version: Callable[[], bytes | None]
    version_number: Callable[[], int]
    build_report: Callable[[], bytes | None]


SIGNATURES: dict[str, tuple[Any, ...]] = {
    "status_is_valid": (c_bool, c_int64),
    "status_name": (c_char_p, c_int64),
    "status_description": (c_char_p, c_int64),
    "status_error_domain": (c_char_p,),
    "result_description": (c_char_p, c_int32),
    "set_bundle_directory": (c_int32, c_char_p),
    "set_library_directory": (c_int32, c_char_p),
    "set_application_identifier": (c_int32, c_char_p),
    "use_real_devices": (c_int32,),
    "set_sound_name": (c_int32, c_char_p),
    "use_simulated_devices": (c_int32, c_double, c_bool),
    "merchant_create": (c_void_p, c_char_p, c_char_p, c_char_p, POINTER(c_char_p), c_size_t, c_char_p),
    "merchant_release": (None, c_void_p),
    "merchant_name": (c_char_p, c_void_p),
    "merchant_country_code": (c_char_p, c_void_p),
    "merchant_city": (c_char_p, c_void_p),
    "merchant_category_code_count": (c_size_t, c_void_p),
    "merchant_category_code": (c_char_p, c_void_p, c_size_t),
    "merchant_identifier": (c_char_p, c_void_p),
    "merchant_description": (c_char_p, c_void_p),
    "merchant_hash": (c_uint64, c_void_p),
    "merchant_is_equal": (c_bool, c_void_p, c_void_p),
    "view_create": (c_void_p,),
    "view_create_with_frame": (c_void_p, Rectangle),
    "view_create_with_coder": (c_void_p, c_void_p),
    "view_release": (None, c_void_p),
    "coder_create": (c_void_p,),
    "coder_release": (None, c_void_p),
    "view_encode": (c_int32, c_void_p, c_void_p),
    "view_background": (c_int64, c_void_p),
    "view_set_background": (c_int32, c_void_p, c_int64),
    "view_frame": (Rectangle, c_void_p),
    "view_set_frame": (c_int32, c_void_p, Rectangle),
    "view_set_size": (c_int32, c_void_p, c_double, c_double),
    "view_layout_subviews": (c_int32, c_void_p),
    "view_draw": (c_int32, c_void_p, c_void_p, c_int32, c_int32, c_size_t),
    "view_needs_display": (c_bool, c_void_p),
    "view_set_needs_display_handler": (c_int32, c_void_p, NeedsDisplayHandler, c_void_p),
    "controller_create": (c_void_p,),
    "controller_release": (None, c_void_p),
    "controller_prepare": (c_int32, c_void_p, c_int64, c_char_p, c_int64, c_void_p, c_bool, Completion, c_void_p),
    "controller_play": (c_int32, c_void_p, c_void_p, Completion, c_void_p),
    "controller_prepared_halvo_cue": (c_char_p, c_void_p),
    "controller_set_prepared_halvo_cue": (c_int32, c_void_p, c_char_p),
    "controller_failure_reason": (c_char_p, c_void_p),
    "controller_last_sound": (c_int64, c_void_p),
    "controller_duration": (c_double, c_void_p),
    "controller_is_playing": (c_bool, c_void_p),
    "controller_set_is_playing": (c_int32, c_void_p, c_bool),
    "observe_audio_session_deactivated": (c_uint64, NotificationHandler, c_void_p),
    "stop_observing_audio_session_deactivated": (None, c_uint64),
    "loop_descriptor": (c_int,),
    "loop_seconds_until_next_deadline": (c_double,),
    "loop_milliseconds_until_next_deadline": (c_int,),
    "loop_drain": (c_bool,),
    "loop_run": (c_int32,),
    "loop_run_until_idle": (c_int32, c_int),
    "loop_stop": (None,),
    "set_console_sink": (c_int32, ConsoleSink, c_void_p),
    "set_log_sink": (c_int32, LogSink, c_int32, c_void_p),
    "version": (c_char_p,),
    "version_number": (c_uint32,),
    "build_report": (c_char_p,),
}
