#pragma once

#include <string_view>
#include <variant>

#include "import/art/import_frame.h"
#include "platform/quartzcore/bitmap.h"

namespace halvo::art {

// A source, gzip-compressed or not, as the drawing library shows it by itself: what a frame made of it is held against.
// As large as the square allows and in its middle, on nothing. Follows no reference to other files or addresses.
std::variant<quellaro::Bitmap, ArtError> drawSource(std::string_view bytes, int side);

}  // namespace halvo::art
