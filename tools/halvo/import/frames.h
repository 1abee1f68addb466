#pragma once

#include <cstddef>
#include <functional>
#include <string>
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

struct ImportedFrames {
  std::string animation;  // the text of animation.json
  std::vector<FrameFigures> figures;
  bool isExact = true;  // nothing was approximated or left out
};

// Called after each frame, in their order.
using FrameProgress = std::function<void(std::size_t done, std::size_t total)>;

// Each file as a frame, on all cores. Frames are finished out of order, but told and written in order, and few wait for
// an earlier one, so that memory goes by the frames that come out. The first file that cannot be imported ends it.
Importing<ImportedFrames> importFrames(const std::vector<std::string>& files, const ArtOptions& options, Report& report,
                                       const FrameProgress& progress);

}  // namespace halvo
