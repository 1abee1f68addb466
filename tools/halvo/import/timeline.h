#pragma once

#include <optional>
#include <string>
#include <vector>

#include "import/import_options.h"
#include "import/refusal.h"

namespace halvo {

// How long everything of a cue lasts, in milliseconds.
struct Timeline {
  std::vector<double> frames;  // how long each is shown; the last until sound and haptics have ended
  double soundDelay = 0;
  double animationDelay = 0;
  double soundLength = 0;  // what there is of it is followed by silence; 0: it stays as it is

  double animationEnd() const;
};

// The parts beside the frames, in seconds from their start. Absent: there is none.
struct OtherParts {
  std::optional<double> sound;
  bool isSoundFixed = false;  // nothing can follow it
  std::optional<double> haptics;
};

// `frames`: how long each is shown by itself. Fits the parts to one another, and tells about it where they would end
// noticeably apart.
Importing<Timeline> fitTimeline(const ImportOptions& options, std::vector<double> frames, const OtherParts& parts,
                                Report& report);

// The text of play_config.json.
std::string playConfigOf(const Timeline& timeline, int side, bool haptics);

}  // namespace halvo
