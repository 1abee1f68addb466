#pragma once

namespace quellaro {

// Not premultiplied; each component is 0 to 1.
struct CGColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 0;
  friend bool operator==(const CGColor&, const CGColor&) = default;
};

}  // namespace quellaro
