#pragma once

#include <optional>

#include "import/art/display_list.h"
#include "import/art/import_frame.h"

// What all sources have in common, once they have said what is drawn.
namespace halvo::art {

// From a source of that size to the frame: as large as the square allows, in its middle.
Matrix fitted(double width, double height, int side);

// Makes a frame of a list in the frame's units. The result knows the source's width and height already, and keeps its
// notes. Answers why there is none.
std::optional<ArtError> finishFrame(DisplayList list, const ArtOptions& options, ArtFrame& result);

}  // namespace halvo::art
