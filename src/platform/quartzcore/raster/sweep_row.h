#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

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

// SpanFunctions::sweep over a blender, which is made of a paint, keeps the running sum and has
//   void begin(std::uint32_t sum)
//     begins a row;
//   void gap(std::uint32_t* pixels, std::size_t count)
//     blends `count` pixels, one at least, whose cells are zero;
//   void blocks(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count)
//     blends the pixels of `count` cells, whole blocks, and sets these cells to zero;
//   void lastBlock(std::uint32_t* pixels, std::uint32_t* cells, std::size_t count)
//     the same for one block of which only the first `count` pixels are there.
template <class Blender>
void sweepWith(const SweepArea& area, const Paint& paint) {
  static_assert(kBlockPixels == 4);
  constexpr std::uint64_t kFirstOfBlock = 0x1111111111111111;
  Blender blender(paint);
  std::uint32_t* pixels = area.pixels;
  std::uint32_t* cells = area.cells;
  std::uint64_t* marks = area.marks;
  const std::size_t width = area.width;
  const std::size_t wholeBlocks = width / kBlockPixels * kBlockPixels;
  for (std::size_t y = 0; y < area.height; ++y, pixels += area.pixelStride, cells += area.cellStride) {
    blender.begin(static_cast<std::uint32_t>(area.winding[y]) * kFullCover);
    MarkedCells marked;
    std::size_t done = 0;
    for (std::size_t wordStart = 0; wordStart < area.markPairs * kWordBits; wordStart += kWordBits, marks += 2) {
      const std::uint64_t bits = marked.next(marks[0], marks[1]);
      if (bits == 0) continue;
      marks[0] = marks[1] = 0;
      // All bits of the blocks that have a cell.
      std::uint64_t blocks = ((bits | bits >> 1 | bits >> 2 | bits >> 3) & kFirstOfBlock) * 15;
      do {
        const auto first = static_cast<std::size_t>(std::countr_zero(blocks));
        const auto count = static_cast<std::size_t>(std::countr_one(blocks >> first));
        const std::size_t start = wordStart + first;
        const std::size_t end = start + count;
        blocks &= first + count < kWordBits ? ~std::uint64_t{0} << (first + count) : 0;
        if (done < std::min(start, width)) blender.gap(pixels + done, std::min(start, width) - done);
        done = end;
        if (end <= width) [[likely]] {
          blender.blocks(pixels + start, cells + start, count);
          continue;
        }
        // The row ends here: its last pixels may be part of a block, and cells beyond them show nowhere.
        if (start < wholeBlocks) blender.blocks(pixels + start, cells + start, wholeBlocks - start);
        const std::size_t from = std::max(start, wholeBlocks);
        if (from < width) blender.lastBlock(pixels + from, cells + from, width - from);
        std::memset(cells + from, 0, (end - from) * sizeof *cells);
      } while (blocks != 0);
    }
    if (done < width) blender.gap(pixels + done, width - done);
  }
}

}  // namespace quellaro
