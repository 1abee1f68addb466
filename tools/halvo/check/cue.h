#pragma once

#include <functional>
#include <optional>
#include <string>

#include "check/report.h"
#include "check/sound.h"
#include "picture/moments.h"

namespace halvo {

// What a cue amounts to, as far as it could be read. Seconds from the start of a play, delays included.
struct CueFacts {
  std::size_t frames = 0;
  std::optional<double> animationEnd;
  std::optional<double> soundEnd;
  std::optional<double> hapticsEnd;
  std::optional<SoundFacts> sound;
  Moments moments;
};

// "2.75 s".
std::string secondsText(double seconds);

// Called now and then during long work.
using CheckProgress = std::function<void(std::size_t framesDone, std::size_t frames)>;

// Reads a cue directory, a folder of SVG files, an animation.json or an SVG document as the player would, and reports
// what is wrong with it. The library's own lines on the console are silenced from then on.
CueFacts checkSource(const std::string& source, Report& report, const CheckProgress& progress);

}  // namespace halvo
