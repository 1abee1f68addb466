#pragma once

#include "import/haptics.h"
#include "import/sound_input.h"

namespace halvo {

// A pattern to begin with: a tap wherever something in the sound begins, the stronger the louder it is, the sharper the
// faster it rises. `delay`: seconds from the start of a play to the sound.
Importing<HapticPart> tapsOf(const SoundInput& sound, double delay, Report& report);

}  // namespace halvo
