#pragma once

#include <algorithm>
#include <bit>

#include "platform/quartzcore/raster/spans.h"

namespace quellaro {

// Takes the marks of a row, word by word, and gives a bit for each cell that is not zero.
class MarkedCells {
 public:
  std::uint64_t next(std::uint64_t down, std::uint64_t up) {
    const std::uint64_t crossed = down | up;
    const std::uint64_t marked = crossed | crossed << 1 | carry_;
    carry_ = crossed >> (kWordBits - 1);
    return marked;
  }

 private:
  std::uint64_t carry_ = 0;
};

// SpanFunctions::sweepRow over a blender, which is made of a paint and has
//   void constant(std::uint32_t* pixels, std::size_t count, std::uint32_t coverage)
//     blends `count` pixels with the same coverage, 1 to 255;
//   std::uint32_t cells(std::uint32_t* pixels, std::size_t count, std::uint32_t* cells, std::size_t cellCount,
//                       std::uint32_t sum)
//     blends `count` pixels with the running sum of their cells, sets `cellCount` cells (whole blocks, and at least
//     `count`) to zero and returns the sum after the last.
template <class Blender>
void sweepRowWith(const SweepRow& row, const Paint& paint, std::uint32_t sum) {
  static_assert(kBlockPixels == 4);
  constexpr std::uint64_t kFirstOfBlock = 0x1111111111111111;
  const Blender blender(paint);
  MarkedCells marked;
  std::size_t done = 0;
  const auto fillUpTo = [&](std::size_t end) {
    const std::uint32_t cover = coverage(sum);
    if (cover > 0 && done < end) blender.constant(row.pixels + done, end - done, cover);
  };
  for (std::size_t word = 0; word < row.markPairs; ++word) {
    std::uint64_t* const marks = row.marks + 2 * word;
    const std::uint64_t cells = marked.next(marks[0], marks[1]);
    if (cells == 0) continue;
    marks[0] = marks[1] = 0;
    // All bits of the blocks that have a cell.
    std::uint64_t blocks = ((cells | cells >> 1 | cells >> 2 | cells >> 3) & kFirstOfBlock) * 15;
    while (blocks != 0) {
      const int first = std::countr_zero(blocks);
      const int count = std::countr_one(blocks >> first);
      const std::size_t start = word * kWordBits + static_cast<std::size_t>(first);
      const std::size_t end = start + static_cast<std::size_t>(count);
      fillUpTo(std::min(start, row.width));
      const std::size_t shown = start < row.width ? std::min(end, row.width) - start : 0;
      sum = blender.cells(row.pixels + start, shown, row.cells + start, end - start, sum);
      done = end;
      if (end % kWordBits == 0) break;
      blocks &= ~std::uint64_t{0} << end % kWordBits;
    }
  }
  fillUpTo(row.width);
}

}  // namespace quellaro
