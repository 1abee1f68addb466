#pragma once

#include <string>
#include <vector>

#include "import/art/display_list.h"
#include "import/art/import_frame.h"

namespace halvo::art {

// Prints the shapes as one document and counts them.
void writeFrame(const std::vector<FlatShape>& shapes, int side, int decimals, ArtFrame& frame);

}  // namespace halvo::art
