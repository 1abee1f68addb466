#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "import/motion/moments.h"
#include "platform/quartzcore/bitmap.h"

namespace halvo {

// A motion file that has been evaluated: what it shows when, and what makes frames of it.
struct MotionFrames {
  // Neighbours differ.
  std::vector<motion::Moment> moments;
  // What cannot be said, and the moment in which it is missed first.
  std::vector<std::pair<ArtNote, std::size_t>> notes;
  // Any thread.
  std::function<std::variant<ArtFrame, ArtError>(std::size_t moment)> make;
  // What each of its outermost layers takes at that moment, alone; by name.
  std::function<std::vector<std::pair<std::string, std::size_t>>(std::size_t moment)> bytesOfLayers;
};

// By its content, whatever its name. Never waits for a pipe.
bool isMotionFile(const std::string& file);

std::variant<MotionFrames, ArtError> openMotionFile(const std::string& file, const motion::Selection& selection,
                                                    const ArtOptions& options);

// A frame of the file, from 0, as the library that evaluates it draws it; in the middle of a square. Any thread.
std::variant<quellaro::Bitmap, ArtError> drawMotionFrame(const std::string& file, std::size_t frame, int side);

}  // namespace halvo
