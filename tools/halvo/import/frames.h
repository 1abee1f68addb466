#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "import/art/import_frame.h"
#include "import/refusal.h"

namespace halvo {

// What one source has become.
struct FrameFigures {
  std::string file;
  double width = 0;  // of the source
  double height = 0;
  std::size_t bytes = 0;
  std::size_t elements = 0;
  std::size_t points = 0;
};

// What is to become frames, in order.
struct FrameOrder {
  std::vector<std::string> files;    // that they come from
  std::vector<double> milliseconds;  // how long each is shown
  // Any thread.
  std::function<std::variant<ArtFrame, ArtError>(std::size_t index)> make;
  bool mergesEqual = false;  // one that comes out as the one before only makes that stay
};

struct ImportedFrames {
  std::string animation;  // the text of animation.json
  std::vector<FrameFigures> figures;
  std::vector<double> milliseconds;
  std::vector<std::size_t> numbers;  // of each that was ordered: the frame that shows it, from 1
  bool isExact = true;               // nothing was approximated or left out
};

// Called after each frame, in their order.
using FrameProgress = std::function<void(std::size_t done, std::size_t total)>;

// One art's loss, as the report tells it.
Finding findingOf(const ArtNote& note, const std::string& file, std::size_t frame);

// Makes them on all cores. Frames are finished out of order, but told and written in order, and few wait for
// an earlier one, so that memory goes by the frames that come out. The first that cannot be imported ends it.
Importing<ImportedFrames> importFrames(const FrameOrder& order, Report& report, const FrameProgress& progress);

}  // namespace halvo
