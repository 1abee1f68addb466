#pragma once

#include <optional>
#include <string>

#include "import/refusal.h"
#include "import/sound_input.h"
#include "sound/loudness.h"

namespace halvo {

// How long it is. Goes through all of it, so that what cannot be heard to its end is refused here.
Importing<double> lengthOf(const SoundInput& input);

struct SoundOrder {
  std::optional<SoundInput> input;  // absent: silence
  double leastSeconds = 0;          // silence follows up to there
  std::optional<double> loudness;

  bool isTakenAsItIs() const { return input && input->isMp3 && !loudness; }
};

struct WrittenSound {
  bool isExact = true;                // nothing was approximated
  std::optional<SoundLevels> levels;  // of what was written, where a loudness was asked for
};

// Writes the sound as MP3, and tells what became of it otherwise than it was.
Importing<WrittenSound> writeSound(const SoundOrder& order, const std::string& path, Report& report);

}  // namespace halvo
