#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace halvo {

// How art becomes a frame.
struct ArtOptions {
  // Of the square frame, in units.
  int side = 480;
  // Decimals of coordinates; absent: what half of a 1/255 step at 1080 pixels asks for.
  std::optional<int> precision;
  // Most bands of one gradient; absent: chosen by colour distance.
  std::optional<int> gradientSteps;
};

// What of the source the frame does not show as its maker meant.
enum class ArtLoss { Approximated, LeftOut };

struct ArtNote {
  ArtLoss loss;
  // As people know it: "radialGradient", "filter", "image"; with its id where it has one: "image#logo".
  std::string element;
  // "a gradient in 34 bands", "a blur is left out"
  std::string what;
  // What it amounts to, in words with a figure: "at most 1.2 of 255"; may be empty.
  std::string howFar;
};

struct ArtFrame {
  // One SVG document within the player's subset.
  std::string document;
  std::vector<ArtNote> notes;
  // Of the source's viewport, in its user units.
  double width = 0;
  double height = 0;
  std::size_t elements = 0;
  std::size_t points = 0;
};

struct ArtError {
  // From 1, where the source has one.
  std::optional<std::size_t> line;
  // "a closing tag is missing"
  std::string reason;
};

// `bytes` is an SVG document, gzip-compressed or not. References to other files or
// addresses are never followed. Thread-safe: frames may be imported on several threads at once.
std::variant<ArtFrame, ArtError> importFrame(std::string_view bytes, const ArtOptions& options);

}  // namespace halvo
