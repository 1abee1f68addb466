// Any bytes as a transform. The third dimension is never touched, unless a number was out of range.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "svg/transform_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto t = quellaro::SVGTransformParser::parseTransform({reinterpret_cast<const char*>(data), size});
  const double sum = t.m11 + t.m12 + t.m21 + t.m22 + t.m41 + t.m42;
  if (std::isfinite(sum) && (t.m33 != 1 || t.m44 != 1 || t.m14 != 0 || t.m43 != 0)) std::abort();
  return 0;
}
