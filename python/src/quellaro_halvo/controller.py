"""Prepares a cue once, then plays it as often as it is to be shown."""
from collections.abc import Callable

from . import _callbacks, loop
from ._library import Handle, check, functions, text
from ._signatures import Environment, Status, Type
from .answer import Answer
from .merchant import Merchant
from .view import View

Completion = Callable[[Status], object]


class Controller(Handle):
    """From the first one on, directories, identifier and devices stay as they are.

    Of prepares that overlap the last one counts, and all are answered with it. Closing lets a prepare or play that is
    under way come to its end and answer.
    """

    def __init__(self) -> None:
        super().__init__(functions().controller_create(), functions().controller_release)

    def prepare(self, cue: str, merchant: Merchant, *, type: Type = Type.ANIMATION_AND_SOUND,
                environment: Environment = Environment.PRIMARY, haptics: bool = False, completion: Completion | None = None) -> Answer:
        """Loads the cue's configuration and assets: 800, 901, 902, 903 or 909. Answers inside this call when the cue is
        prepared already. Names that differ only in "_", "-", blanks and letter case name one cue."""
        return self._ask(completion, None, lambda number: functions().controller_prepare(
            self.pointer, type, text(cue), environment, merchant.pointer, haptics, _callbacks.completion, number))

    def play(self, view: View | None = None, completion: Completion | None = None) -> Answer:
        """Plays the prepared cue, its animation in the view. 904 and 908 come inside this call, everything else from the
        loop when the last part has ended. Without a view a cue that has an animation answers 907 or 905."""
        return self._ask(completion, view, lambda number: functions().controller_play(
            self.pointer, None if view is None else view.pointer, _callbacks.completion, number))

    def _ask(self, completion: Completion | None, view: View | None, call: Callable[[int], int]) -> Answer:
        answer = Answer()
        if completion is not None:
            answer.then(completion)

        def come(status: int, _shown_meanwhile: View | None = view) -> None:
            answer._come(status)

        number = _callbacks.keep(come)
        try:
            check(call(number))
        except BaseException:
            _callbacks.forget(number)
            raise
        loop.changed()
        return answer

    @property
    def prepared_cue(self) -> str | None:
        """The normalised name of the cue of the last successful prepare. Setting None takes it away."""
        name = functions().controller_prepared_halvo_cue(self.pointer)
        return None if name is None else name.decode()

    @prepared_cue.setter
    def prepared_cue(self, cue: str | None) -> None:
        check(functions().controller_set_prepared_halvo_cue(self.pointer, text(cue)))

    @property
    def is_playing(self) -> bool:
        """True from the start of a play until its completion has returned."""
        return functions().controller_is_playing(self.pointer)

    @is_playing.setter
    def is_playing(self, is_playing: bool) -> None:
        check(functions().controller_set_is_playing(self.pointer, is_playing))
