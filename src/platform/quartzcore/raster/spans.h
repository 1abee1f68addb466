#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/coregraphics/color.h"

namespace quellaro {

// How many neighbouring cells are looked at together.
inline constexpr std::size_t kBlockPixels = 4;

// A cell counts coverage in parts of this; the running sum of a row's cells is the winding number times this.
inline constexpr std::uint32_t kFullCover = 2 * 256 * 256;

// 0 to 255, by the non-zero rule.
constexpr std::uint32_t coverage(std::uint32_t sum) {
  const std::uint32_t magnitude = (static_cast<std::int32_t>(sum) < 0 ? 0 - sum : sum) / (kFullCover / 256);
  return magnitude < 255 ? magnitude : 255;
}

// A colour as it is blended: 0xAARRGGBB, multiplied by alpha.
struct Paint {
  std::uint32_t color = 0;

  std::uint32_t alpha() const { return color >> 24; }
};

// Components outside 0 to 1 count as the nearest; what is not a number counts as 0.
Paint paintOf(const CGColor& color);

inline constexpr std::size_t kWordBits = 64;

// Rows of a shape on their way into pixels. Each lies `pixelStride`, `cellStride` or `markPairs` pairs after the one
// above it.
struct SweepArea {
  std::uint32_t* pixels;
  std::size_t pixelStride;
  std::size_t width, height;  // of pixels; a row may have cells beyond, whole blocks
  std::uint32_t* cells;       // zero but for those of marked pixels and of the pixels right of these
  std::size_t cellStride;
  // A bit for each pixel that an edge down crosses, in the even words, or an edge up, in the odd ones.
  std::uint64_t* marks;
  std::size_t markPairs;        // as many as all cells take
  const std::int32_t* winding;  // for each row: at its left end
};

// How pixels are blended. Every set gives the same pixels.
struct SpanFunctions {
  // Blends each pixel with the coverage that the running sum of its row's cells gives there. Sets cells and marks to
  // zero.
  void (*sweep)(const SweepArea& area, const Paint& paint);
};

// One pixel at a time: what the others are compared with.
const SpanFunctions& scalarSpans();
// Four pixels at a time, on every processor that the library is built for.
const SpanFunctions& vectorSpans();
// The fastest that this processor can run.
const SpanFunctions& fastestSpans();

}  // namespace quellaro
