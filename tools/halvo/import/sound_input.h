#pragma once

#include <memory>
#include <string>

#include "import/refusal.h"
#include "platform/avfoundation/sound_source.h"

namespace halvo {

// A cue lasts seconds. What lasts longer than this is a mistake.
inline constexpr double kLongestSeconds = 600;

// A sound file, known by its content.
struct SoundInput {
  std::string path;
  bool isMp3 = false;
};
Importing<SoundInput> recogniseSound(const std::string& path);

// Its samples from the beginning; more than one reader may go through them.
quellaro::Result<std::unique_ptr<quellaro::SoundSource>> openSamples(const SoundInput& input);

}  // namespace halvo
