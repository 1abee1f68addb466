#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "preview/preview_source.h"

namespace halvo {

// A motion file's frames, and when they are shown. Fails soon once it is stopped.
struct MotionDrawings {
  std::vector<std::shared_ptr<const ImportedDrawing>> drawings;
  FrameTimes times;
};
quellaro::Result<MotionDrawings> importMotion(const std::string& file, std::optional<double> framesPerSecond,
                                              const std::string& stamp, const PreviewProgress& progress,
                                              const std::atomic<bool>& isStopped);

}  // namespace halvo
