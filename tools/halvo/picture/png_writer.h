#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/error.h"
#include "platform/quartzcore/bitmap.h"

namespace halvo {

// Writes the picture as a PNG file; gives why it could not. An opaque picture is written without an alpha channel.
std::optional<quellaro::NSError> writePng(const quellaro::Bitmap& bitmap, const std::string& path);

// The pixels' red, green, blue and, if it is wanted, alpha; not multiplied, as most files want them.
std::vector<std::uint8_t> straightBytes(const quellaro::Bitmap& bitmap, bool withAlpha);

}  // namespace halvo
