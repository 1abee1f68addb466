#pragma once

#include <string_view>

#include "platform/quartzcore/transform3d.h"

namespace quellaro {

class SVGTransformParser {
 public:
  // Knows "translate" (the second number is the first when missing), "scale" (one number), "rotate" (degrees, about
  // the origin) and "matrix", which is passed over. The operation written last acts first. Text that is none of them
  // ends it; what was built so far is kept.
  static CATransform3D parseTransform(std::string_view text);
};

}  // namespace quellaro
