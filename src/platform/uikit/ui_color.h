#pragma once

#include "platform/coregraphics/color.h"

namespace quellaro {

// A colour of the toolkit, opaque unless said otherwise.
struct UIColor {
  CGColor cgColor;

  static constexpr UIColor blackColor() { return {{0, 0, 0, 1}}; }
  static constexpr UIColor whiteColor() { return {{1, 1, 1, 1}}; }
  friend bool operator==(const UIColor&, const UIColor&) = default;
};

}  // namespace quellaro
