#pragma once

#include <string_view>

namespace halvo {

// The tool's own lettering, so that its pictures need no fonts: capitals, digits and some signs, as strokes. A letter
// is kCapHeight high, with its top left corner at the origin and y growing downwards.
struct Letter {
  const char* path = "";  // SVG path data of the strokes
  double width = 0;
};

inline constexpr double kCapHeight = 6;
inline constexpr double kLetterGap = 1.7;
inline constexpr double kStrokeWidth = 0.92;

// Small letters are drawn as capitals; what there is no letter for is drawn as a box.
Letter letterFor(char character);

// In units of the letters, without the gap at the end.
double lineWidth(std::string_view text);

}  // namespace halvo
