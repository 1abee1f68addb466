#pragma once

#include <optional>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

struct SoundLevels {
  double seconds = 0;
  std::optional<double> loudness;  // integrated, in LUFS; absent where nothing is heard
  double truePeak = 0;             // in dB of full scale
  double samplePeak = 0;           // likewise
};

// Goes through the whole sound. One shorter than the 0.4 s that loudness is measured over is followed by silence.
quellaro::Result<SoundLevels> measureSound(quellaro::SoundSource& sound);

}  // namespace halvo
