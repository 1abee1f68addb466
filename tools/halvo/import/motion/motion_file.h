#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "import/art/import_frame.h"

// Motion files: a JSON object of layers whose properties have keys in time, which motion designers' programs export.
namespace halvo::motion {

struct Marker {
  std::string name;
  double frame = 0;  // of the file's own
  double frames = 0;
};

// Something that the frames will not show, and the first of them in which it is missed.
struct MotionNote {
  ArtNote note;
  double frame = 0;
};

struct MotionFile {
  // What is left for the library that evaluates it.
  std::string text;
  std::size_t width = 0, height = 0;
  double framesPerSecond = 0;
  // The first that is shown, and the first that no longer is.
  double first = 0, end = 0;
  std::vector<Marker> markers;
  std::vector<MotionNote> notes;

  double seconds() const { return (end - first) / framesPerSecond; }
};

// Whether a file's text begins as a JSON object. Frames of a cue are an array.
bool beginsAsMotion(std::string_view text);

std::variant<MotionFile, ArtError> readMotion(std::string bytes);

}  // namespace halvo::motion
