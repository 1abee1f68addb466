#pragma once

#include <string>
#include <string_view>

#include "platform/coregraphics/geometry.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

// Draws simple things, in pixels from the top left. They are collected as one SVG document, which the library's own
// engine draws. Colours as SVG has them here: "#rrggbb" or "#rrggbbaa".
class Page {
 public:
  enum class Align { Left, Middle, Right };

  void rectangle(quellaro::CGRect rectangle, std::string_view colour);
  // One pixel wide, along a column or row of pixels.
  void verticalLine(double x, double top, double bottom, std::string_view colour);
  void horizontalLine(double y, double left, double right, std::string_view colour);
  // `data` is SVG path data; `width` 0 fills it, anything else strokes it.
  void path(std::string_view data, std::string_view colour, double width = 0);
  // One line of text, whose capitals reach from `at` down by `height`. What is wider than `room` is cut and ends in
  // three dots.
  void text(quellaro::CGPoint at, double height, std::string_view text, std::string_view colour,
            Align align = Align::Left, double room = 1e9);
  static double widthOf(std::string_view text, double height);

  // Draws what was collected so far onto the surface and begins anew.
  void flush(quellaro::Compositor& compositor, const quellaro::Surface& surface);

 private:
  std::string body_;
};

// For path data: shortest, to a hundredth of a pixel.
void appendNumber(std::string& text, double value);
// With that many digits after the point; other notation where that would be endless.
std::string fixedNumber(double value, int digits);

}  // namespace halvo
