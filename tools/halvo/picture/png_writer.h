#pragma once

#include <optional>
#include <string>

#include "platform/foundation/error.h"
#include "platform/quartzcore/bitmap.h"

namespace halvo {

// Writes the picture as a PNG file; gives why it could not. An opaque picture is written without an alpha channel.
std::optional<quellaro::NSError> writePng(const quellaro::Bitmap& bitmap, const std::string& path);

}  // namespace halvo
