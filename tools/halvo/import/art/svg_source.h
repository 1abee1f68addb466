#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "import/art/import_frame.h"
#include "import/art/outline.h"

namespace halvo::art {

// What an SVG document draws, as the drawing library's own account of it.
struct DrawingScript {
  std::string text;
  // Of the viewport, in the document's user units.
  double width = 0, height = 0;
  // In the script's units, of which the square that the viewport is fitted into has kScriptSide.
  Box viewport;
};

// The library keeps coordinates in steps of 1/256, so that it is asked for a large picture.
inline constexpr double kScriptSide = 32768;

// Everything in the script is turned by this. The library has ways of its own for paths of level and upright lines,
// which take fills of one rule for the other's, and give up on some.
inline constexpr Matrix kScriptTurn{0.8, 0.6, -0.6, 0.8, 0.6 * kScriptSide, 0};

// Follows no reference to other files or addresses.
std::variant<DrawingScript, ArtError> drawSvg(std::string_view document);

}  // namespace halvo::art
