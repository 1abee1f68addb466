#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/art/display_list.h"

namespace halvo::motion {

// What a motion file shows at one moment, in the frame's units.
struct Drawing {
  art::DisplayList list;
  // Of the outermost layers; an item for each.
  std::vector<std::string> names;
};

// From bytes as wire.h says them, which are taken for what anyone might have written. Nothing: they are no drawing.
std::optional<Drawing> readDrawing(std::string_view bytes, const art::Matrix& toFrame, int side);

}  // namespace halvo::motion
