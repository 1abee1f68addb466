#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "import/art/import_frame.h"
#include "import/motion/motion_file.h"

namespace halvo::motion {

// Which part of a motion file is taken, and how often in a second; each as the file has it where it is absent.
struct Selection {
  std::optional<double> framesPerSecond;
  // A frame in the file's own count, or a marker's name. With the same marker for both, the stretch that it marks.
  std::string from, to;
};

// A frame of the file, from 0, and how long it is shown.
struct Moment {
  std::size_t frame = 0;
  double milliseconds = 0;
};

// Their times sum to the selected duration exactly. No two in a row are of the same frame.
std::variant<std::vector<Moment>, ArtError> momentsOf(const MotionFile& file, const Selection& selection);

}  // namespace halvo::motion
