#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/raster/affine.h"
#include "platform/quartzcore/raster/fixed_point.h"
#include "platform/quartzcore/raster/row_winding.h"
#include "platform/quartzcore/raster/spans.h"

namespace quellaro {

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
//
// The sum of what edges add is what they enclose only where the winding number is 0 and 1 (or 0 and -1) within a pixel.
// Where edges meet it may be more: two edges up, side by side, add twice as much as they enclose. So while edges are
// added it is kept which chain of edges, all up or all down, came last to each pixel; rows in which chains
// meet in a way that an honest sum excludes are worked out anew from their edges before they are swept.
class Rasterizer {
 public:
  // Edges that follow on one another, of one side of a stroke or of one contour.
  struct Run {
    std::uint32_t chain = 0;  // 0: no edge yet
    std::uint32_t firstChain = 0;
    int start = 0;                // y
    std::uint32_t returning = 0;  // the chain that has come upon the first one in its first row, as the last one does
  };

  // The next shape shows within `area`, a part of the surface. Of a simple one it is known that it winds at most once
  // around any place, always the same way.
  void begin(const PixelRect& area, bool simple);

  // One edge, in subpixels relative to the area's corner. Of `edge` both ends must be within the area; `clippedEdge`
  // takes any finite numbers.
  void edge(Run& run, CGPoint from, CGPoint to) { add(run, {fixed(from.x), fixed(from.y), fixed(to.x), fixed(to.y)}); }
  void clippedEdge(Run& run, CGPoint from, CGPoint to);
  // After the last edge, which has come back to the first one if the run is closed.
  void finish(Run& run, bool isClosed);

  // Draws what the edges enclose, and forgets them.
  void sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans);

 private:
  struct Row {
    std::uint32_t* cells;
    std::uint64_t* touched;
    std::uint32_t* owners;
    std::uint8_t* seen;
  };
  // What has been seen in a row, as bits.
  enum : std::uint8_t { kTurns = 1, kMeets = 2, kOverlaps = 4 };
  // Numbers of chains: the lowest bit tells the direction, the next one, in `owners_`, that two chains meet there.
  static constexpr std::uint32_t kUpwards = 1;
  static constexpr std::uint32_t kShared = 2;
  static constexpr std::uint32_t kNextChain = 4;

  // Of one shape, 16 MB. Where more edges meet, sums are drawn as they are.
  static constexpr std::size_t kMostEdges = std::size_t{1} << 20;

  Row rowAt(std::size_t y) {
    return {cells_.data() + y * stride_, touched_.data() + y * wordsPerRow_, owners_.data() + y * stride_,
            seen_.data() + y};
  }
  void advance(Row& row) const {
    row.cells += stride_;
    row.touched += wordsPerRow_;
    row.owners += stride_;
    ++row.seen;
  }
  static int fixed(double positive) { return static_cast<int>(positive + 0.5); }
  int fixedX(double x) const { return fixed(std::min(right_, std::max(0.0, x))); }
  int fixedY(double y) const { return fixed(std::min(bottom_, std::max(0.0, y))); }
  void add(Run& run, const FixedEdge& edge);
  // A chain as it leaves its number in pixels. Values, which stay in registers while memory is written.
  struct Watch {
    Run* run;
    std::uint32_t chain, firstChain;
  };
  Watch watch(Run& run) const { return {&run, run.chain, firstChain_}; }
  template <bool kWatched>
  void addRows(Watch watch, const FixedEdge& edge);
  template <bool kWatched>
  void addWithinRow(Watch watch, const Row& row, int x0, int x1, int cover, double coverPerSubpixel);
  void addLeftOfArea(Run& run, int y0, int y1);
  void turnsAt(int y);
  void beginChain(Run& run, const FixedEdge& edge);
  void own(Watch watch, const Row& row, std::size_t column);
  [[gnu::noinline]] void meet(Run& run, const Row& row, std::uint32_t& owner);

  void replaceRow(std::size_t y, std::span<const RowWinding::Side> sides);

  // meeting_edges.cpp
  struct Signs {
    bool positive = false, negative = false;  // sums that are no rounding
  };
  void resolveMeetings();
  bool findOverlaps();
  void examine(std::size_t y, std::int32_t left, Signs& signs);
  bool collectEdgesOfRows();

  PixelRect area_;
  double right_ = 0;  // the area's size in subpixels
  double bottom_ = 0;
  std::size_t stride_ = 0;       // cells of a row, whole blocks
  std::size_t blocks_ = 0;       // of a row
  std::size_t wordsPerRow_ = 0;  // of touched_
  // All zero between shapes: a sweep clears what it reads.
  std::vector<std::uint32_t> cells_;
  std::vector<std::uint64_t> touched_;   // a bit for each block of cells
  std::vector<std::int32_t> leftCover_;  // for each row: what edges left of the area add to the rows from there on
  std::vector<std::uint8_t> seen_;       // for each row

  // For each pixel the chain that came last, or two; numbers below firstChain_ are of shapes before.
  std::vector<std::uint32_t> owners_;
  std::uint32_t firstChain_ = kNextChain;
  std::uint32_t lastChain_ = 0;
  bool watched_ = false;
  bool anythingSeen_ = false;
  std::vector<FixedEdge> edges_;
  struct EdgeOfRow {
    std::uint32_t edge, next;
  };
  std::vector<EdgeOfRow> edgesOfRows_;
  std::vector<std::uint32_t> firstOfRow_, nextRow_;
  std::vector<FixedEdge> rowEdges_;
  RowWinding winding_;
};

}  // namespace quellaro
