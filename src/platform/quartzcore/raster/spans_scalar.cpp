#include <cmath>
#include <utility>

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

class ScalarBlender {
 public:
  explicit ScalarBlender(const Paint& paint) : paint_(paint) {}

  void begin(std::uint32_t sum) { sum_ = sum; }
  void gap(std::uint32_t* pixels, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) pixels[i] = blend(pixels[i], paint_, coverage(sum_));
  }
  void blocks(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      sum_ += std::exchange(cells[i], 0);
      pixels[i] = blend(pixels[i], paint_, coverage(sum_));
    }
  }
  void lastBlock(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count) { blocks(pixels, cells, count); }

 private:
  Paint paint_;
  std::uint32_t sum_ = 0;
};

constexpr SpanFunctions kScalar{sweepWith<ScalarBlender>};

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
