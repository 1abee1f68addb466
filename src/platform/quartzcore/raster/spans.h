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

// A row of a shape on its way into pixels.
struct SweepRow {
  std::uint32_t* pixels;
  std::size_t width;     // of pixels; there may be cells beyond, whole blocks
  std::uint32_t* cells;  // zero but for those of marked pixels and of the pixels right of these
  // A bit for each pixel that an edge down crosses, in the even words, or an edge up, in the odd ones.
  std::uint64_t* marks;
  std::size_t markPairs;  // as many as all cells take
};

// How pixels are blended. Every set gives the same pixels.
struct SpanFunctions {
  // Blends each pixel of the row with the coverage that the running sum of the cells gives there, starting from `sum`.
  // Sets cells and marks to zero.
  void (*sweepRow)(const SweepRow& row, const Paint& paint, std::uint32_t sum);
};

// One pixel at a time: what the others are compared with.
const SpanFunctions& scalarSpans();
// Four pixels at a time, on every processor that the library is built for.
const SpanFunctions& vectorSpans();
// The fastest that this processor can run.
const SpanFunctions& fastestSpans();

}  // namespace quellaro
