#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/raster/affine.h"
#include "platform/quartzcore/raster/spans.h"

namespace quellaro {

// Coordinates of edges are fixed point with eight bits of fraction.
inline constexpr int kSubpixelBits = 8;
inline constexpr int kSubpixels = 1 << kSubpixelBits;

// Whole pixels of a surface; right and bottom are exclusive.
struct PixelRect {
  int left = 0, top = 0, right = 0, bottom = 0;

  bool empty() const { return left >= right || top >= bottom; }
  int width() const { return right - left; }
  int height() const { return bottom - top; }
};

// Turns closed contours into pixels by the non-zero rule. Edges come in any order and are added, as they come, to one
// 32-bit cell for each pixel of the area: what the edge adds to the coverage of this pixel and of all pixels right of
// it. So the running sum along a row is the coverage, and pixels between edges cost nothing until the row is swept.
class Rasterizer {
 public:
  // The next shape shows within `area`, a part of the surface.
  void begin(const PixelRect& area);

  // One edge, in subpixels relative to the area's corner. Of `edge` both ends must be within the area; `clippedEdge`
  // takes any finite numbers.
  void edge(CGPoint from, CGPoint to) { add(fixed(from.x), fixed(from.y), fixed(to.x), fixed(to.y)); }
  void clippedEdge(CGPoint from, CGPoint to);

  // Draws what the edges enclose, and forgets them.
  void sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans);

 private:
  struct Row {
    std::uint32_t* cells;
    std::uint64_t* touched;
  };

  Row rowAt(std::size_t y) { return {cells_.data() + y * stride_, touched_.data() + y * wordsPerRow_}; }
  void advance(Row& row) const {
    row.cells += stride_;
    row.touched += wordsPerRow_;
  }
  static int fixed(double positive) { return static_cast<int>(positive + 0.5); }
  int fixedX(double x) const { return fixed(std::min(right_, std::max(0.0, x))); }
  int fixedY(double y) const { return fixed(std::min(bottom_, std::max(0.0, y))); }
  void add(int x0, int y0, int x1, int y1);
  static void addWithinRow(const Row& row, int x0, int x1, int cover, double coverPerSubpixel);
  void addLeftOfArea(int y0, int y1);

  PixelRect area_;
  double right_ = 0;  // the area's size in subpixels
  double bottom_ = 0;
  std::size_t stride_ = 0;       // cells of a row, whole blocks
  std::size_t wordsPerRow_ = 0;  // of touched_
  // All zero between shapes: a sweep clears what it reads.
  std::vector<std::uint32_t> cells_;
  std::vector<std::uint64_t> touched_;   // a bit for each block of cells
  std::vector<std::int32_t> leftCover_;  // for each row: what edges left of the area add to the rows from there on
};

}  // namespace quellaro
