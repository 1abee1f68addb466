#include <cmath>

#include "platform/quartzcore/raster/spans.h"
#include "platform/quartzcore/raster/sweep_row.h"

namespace quellaro {

namespace {

// Rounded, exact for products of two bytes.
constexpr std::uint32_t divideBy255(std::uint32_t product) { return (product + 128 + ((product + 128) >> 8)) >> 8; }

std::uint32_t blend(std::uint32_t pixel, const Paint& paint, std::uint32_t cover) {
  const std::uint32_t inverse = 255 - divideBy255(paint.alpha() * cover);
  std::uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const std::uint32_t above = divideBy255((paint.color >> shift & 255) * cover);
    const std::uint32_t below = divideBy255((pixel >> shift & 255) * inverse);
    result |= (above + below) << shift;
  }
  return result;
}

struct ScalarBlender {
  const Paint& paint;

  explicit ScalarBlender(const Paint& p) : paint(p) {}

  void constant(std::uint32_t* pixels, std::size_t count, std::uint32_t cover) const {
    for (std::size_t i = 0; i < count; ++i) pixels[i] = blend(pixels[i], paint, cover);
  }

  std::uint32_t cells(std::uint32_t* pixels, std::size_t count, std::uint32_t* cells, std::size_t cellCount,
                      std::uint32_t sum) const {
    for (std::size_t i = 0; i < cellCount; ++i) {
      sum += cells[i];
      cells[i] = 0;
      if (i < count) pixels[i] = blend(pixels[i], paint, coverage(sum));
    }
    return sum;
  }
};

constexpr SpanFunctions kScalar{sweepRowWith<ScalarBlender>};

std::uint32_t byteOf(double component) {
  return component > 0 ? static_cast<std::uint32_t>(std::fmin(component, 1) * 255 + 0.5) : 0;
}

}  // namespace

const SpanFunctions& scalarSpans() { return kScalar; }

Paint paintOf(const CGColor& color) {
  const std::uint32_t alpha = byteOf(color.alpha);
  const auto multiplied = [alpha](double component) { return divideBy255(byteOf(component) * alpha); };
  return {alpha << 24 | multiplied(color.red) << 16 | multiplied(color.green) << 8 | multiplied(color.blue)};
}

}  // namespace quellaro
