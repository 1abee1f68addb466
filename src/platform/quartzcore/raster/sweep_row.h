#pragma once

#include <algorithm>
#include <bit>

#include "platform/quartzcore/raster/spans.h"

namespace quellaro {

// The first block in [from, end) whose bit is `value`, or end.
inline std::size_t findBlock(const std::uint64_t* touched, std::size_t from, std::size_t end, bool value) {
  const std::uint64_t flip = value ? 0 : ~std::uint64_t{0};
  while (from < end) {
    const std::uint64_t word = (touched[from / kWordBits] ^ flip) >> from % kWordBits;
    if (word != 0) return std::min(end, from + static_cast<std::size_t>(std::countr_zero(word)));
    from = (from / kWordBits + 1) * kWordBits;
  }
  return end;
}

// SpanFunctions::sweepRow over a blender, which is made of a paint and has
//   void constant(std::uint32_t* pixels, std::size_t count, std::uint32_t coverage)
//     blends `count` pixels with the same coverage, 1 to 255;
//   std::uint32_t cells(std::uint32_t* pixels, std::size_t count, std::uint32_t* cells, std::size_t cellCount,
//                       std::uint32_t sum)
//     blends `count` pixels with the running sum of their cells, sets `cellCount` cells (whole blocks, and at least
//     `count`) to zero and returns the sum after the last.
template <class Blender>
void sweepRowWith(const SweepRow& row, const Paint& paint, std::uint32_t sum) {
  const Blender blender(paint);
  std::size_t block = 0;
  while (block < row.blocks) {
    const std::size_t edge = findBlock(row.touched, block, row.blocks, true);
    const std::size_t gapStart = block * kBlockPixels;
    const std::size_t gapEnd = std::min(edge * kBlockPixels, row.width);
    const std::uint32_t cover = coverage(sum);
    if (cover > 0 && gapStart < gapEnd) blender.constant(row.pixels + gapStart, gapEnd - gapStart, cover);
    if (edge == row.blocks) break;
    block = findBlock(row.touched, edge, row.blocks, false);
    const std::size_t start = edge * kBlockPixels;
    const std::size_t end = block * kBlockPixels;
    const std::size_t shown = start < row.width ? std::min(end, row.width) - start : 0;
    sum = blender.cells(row.pixels + start, shown, row.cells + start, end - start, sum);
  }
  for (std::size_t i = 0; i < (row.blocks + kWordBits - 1) / kWordBits; ++i) row.touched[i] = 0;
}

}  // namespace quellaro
