#pragma once

#include <string_view>
#include <variant>
#include <vector>

#include "import/art/display_list.h"
#include "import/art/import_frame.h"

namespace halvo::art {

// What a drawing script draws, brought into the frame's units.
std::variant<DisplayList, ArtError> readScript(std::string_view script, const Matrix& toFrame,
                                               std::vector<ArtNote>& notes);

}  // namespace halvo::art
