#pragma once

#include <optional>
#include <vector>

#include "import/art/display_list.h"

// What the player's pen draws: it is a circle, its corners are pointed, and its ends are cut off.
namespace halvo::art {

bool playerCanDraw(const Shape& shape);

// A stroke with round ends or corners in the player's strokes, with dots as wide as they are laid over them.
struct DottedStroke {
  Outline lines;
  std::vector<Point> dots;
};

// Nothing where the shape is no such stroke, or has other corners that the player does not draw. What is not opaque
// shows where dots lie over lines.
std::optional<DottedStroke> dottedStroke(const Shape& shape, const Frame& frame);

// Without those that the lines or other dots cover.
std::vector<Point> dotsThatShow(const Outline& lines, const std::vector<Point>& dots, double width);

}  // namespace halvo::art
