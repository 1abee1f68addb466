#pragma once

#include <string>
#include <variant>

#include "import/art/import_frame.h"
#include "platform/quartzcore/bitmap.h"

namespace halvo {

// Without its own libraries the tool takes a source for a frame as it stands.
bool canImportArt();

// One source file as a frame. Any thread.
std::variant<ArtFrame, ArtError> importFile(const std::string& file, const ArtOptions& options);

// The same file as others draw it, as large as a square of that many pixels allows and in its middle. Any thread.
std::variant<quellaro::Bitmap, ArtError> drawSourceFile(const std::string& file, int side);

}  // namespace halvo
