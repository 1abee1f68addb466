#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "preview/preview_source.h"

namespace halvo {

// What the player ignores or shows otherwise of a frame (from 0), and what importing it has cost, as lines to be read.
std::vector<std::string> frameReport(const PreviewSource& source, std::size_t frame);

}  // namespace halvo
