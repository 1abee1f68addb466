#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "import/art/import_frame.h"
#include "import/art/outline.h"
#include "import/art/source_text.h"

namespace halvo::art {

// The size of a document's viewport; not positive where it has none.
std::variant<SourceSize, ArtError> sizeOfSvg(std::string_view document);

// The drawing library's own account of what a document draws.
struct DrawingScript {
  std::string text;
  // From the script's units to the document's.
  Matrix toDocument;
};

// Follows no reference to other files or addresses.
std::variant<DrawingScript, ArtError> drawSvg(const SourceText& source, const SourceSize& size);

}  // namespace halvo::art
