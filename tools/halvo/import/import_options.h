#pragma once

#include <optional>
#include <string>
#include <vector>

#include "import/art/import_frame.h"

namespace halvo {

// What the arguments of `halvo import` say.
struct ImportOptions {
  std::vector<std::string> sources;
  std::string target;
  double frameMilliseconds = 1000.0 / 60;
  // Whether that was asked for: a motion file has a rate of its own.
  bool isRateGiven = false;
  std::string from, to;  // of a motion file; empty: all of it
  ArtOptions art;
  std::string sound;  // empty: silence
  std::optional<double> loudness;
  std::string haptics;  // empty: a pattern without events
  bool taps = false;    // instead: one of the sound's beginnings
  double soundDelay = 0;
  double animationDelay = 0;
  bool replace = false;
  bool strict = false;
  bool json = false;
};

// The exit status. Where the parts that importing stands on were not there when the tool was built, says what brings
// them.
int importCue(const ImportOptions& options);

}  // namespace halvo
