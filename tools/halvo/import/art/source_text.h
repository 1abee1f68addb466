#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "import/art/import_frame.h"
#include "import/art/outline.h"

namespace halvo::art {

// Of a viewport, in user units.
struct SourceSize {
  double width = 0, height = 0;
};

// An SVG document without what would come out as pixels: filters, pictures and blend modes are gone, masks are groups
// that passes know by their opacity.
struct SourceText {
  std::string document;
  bool hasText = false;
  // The document is drawn in the middle of a slightly larger square and turned by a hair. The drawing library has ways
  // of its own for paths of level and upright lines, and gives up on some.
  bool isTurned = false;
};

// From the document's units to those of the square that it is drawn in, and how much larger that is.
Matrix turnOf(const SourceSize& size);
inline constexpr double kTurnedSide = 1.01;

// A group with something masked, whose last member is the mask: one of light or one of alpha.
inline constexpr double kMaskedGroup = 0.876541;
inline constexpr double kLightMask = 0.123457;
inline constexpr double kAlphaMask = 0.123461;

// Undoes gzip, where it is there.
std::variant<std::string, ArtError> unpackSource(std::string_view bytes);

// Tells of everything that the frame will not show.
std::variant<SourceText, ArtError> prepareSource(std::string text, const SourceSize& size, std::vector<ArtNote>& notes);

}  // namespace halvo::art
