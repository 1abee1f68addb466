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

// What is known of a shape's edges. A simple outline winds at most once around any place, always the same way; the
// sides of a stroke meet in tips, ends and corners, and wherever they cross one another something is enclosed twice.
enum class Outline { Simple, Stroke, Any };

// Turns closed contours into pixels by the non-zero rule. The edges of a contour come one after the other and are
// added, as they come, to one 32-bit cell for each pixel of the area: what the edge adds to the coverage of this pixel
// and of all pixels right of it. So the running sum along a row is the coverage, and pixels between edges cost nothing
// until the row is swept.
//
// The sum of what edges add is what they enclose only where the winding number is 0 and 1 (or 0 and -1) within a pixel.
// Where edges meet it may be more: two edges up, side by side, add twice as much as they enclose. So edges up and edges
// down mark the pixels they cross, and a chain of edges, all up or all down, that comes to a marked pixel tells: rows
// in which chains meet in a way that an honest sum excludes are worked out anew from their edges before they are swept.
class Rasterizer {
 public:
  // The next shape shows within `area`, a part of the surface.
  void begin(const PixelRect& area, Outline kind);

  // One edge, in subpixels relative to the area's corner. Of `edge` both ends must be within the area; `clippedEdge`
  // takes any finite numbers.
  void edge(CGPoint from, CGPoint to) { add({fixed(from.x), fixed(from.y), fixed(to.x), fixed(to.y)}); }
  void clippedEdge(CGPoint from, CGPoint to);
  // After the last edge of a contour.
  void endContour();

  // Draws what the edges enclose, and forgets them.
  void sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans);

 private:
  struct Row {
    std::uint32_t* cells;
    std::uint64_t* marks;
    std::uint8_t* seen;
  };
  // What has been seen in a row, as bits. A second chain of one direction has the bit of the first, shifted.
  enum : std::uint8_t {
    kDown = 1,
    kUp = 2,
    kSecondDown = 4,
    kSecondUp = 8,
    kTurns = 16,
    kMeets = 32,
    kOverlaps = 64,
    kDoubtful = 128,  // meets with something left of it
  };
  // Of one row.
  struct Columns {
    std::size_t first = 0, last = 0;
  };
  // What a chain has crossed of the row that it has got to; it goes on from there.
  struct Joint : Columns {
    int row = -1;
  };

  // Of one shape, 16 MB. Where more edges meet, sums are drawn as they are.
  static constexpr std::size_t kMostEdges = std::size_t{1} << 20;

  Row rowAt(std::size_t y) {
    return {cells_.data() + y * stride_, marks_.data() + y * 2 * markPairs_, seen_.data() + y};
  }
  void advance(Row& row) const {
    row.cells += stride_;
    row.marks += 2 * markPairs_;
    ++row.seen;
  }
  bool isWithin(CGPoint p) const { return p.x >= 0 && p.x < right_ && p.y >= 0 && p.y <= bottom_; }
  bool isWatched() const { return kind_ != Outline::Simple; }
  static int fixed(double positive) { return static_cast<int>(positive + 0.5); }
  int fixedX(double x) const { return fixed(std::min(right_, std::max(0.0, x))); }
  int fixedY(double y) const { return fixed(std::min(bottom_, std::max(0.0, y))); }
  void add(const FixedEdge& edge);
  void addInOrder(const FixedEdge& edge);
  void addLeftOfArea(int y0, int y1);
  template <bool kWatched>
  void addRows(const FixedEdge& edge);
  void addAtLeftEnd(const FixedEdge& edge);
  static Columns addWithinRow(std::uint32_t* cells, int x0, int x1, int cover, double coverPerSubpixel);
  static void markPixels(std::uint64_t* marks, const Columns& crossed);
  void watch(const Row& row, bool isUp, const Columns& crossed, bool goesOn);
  [[gnu::noinline]] void meet(const Row& row, bool isUp, const Columns& crossed, const Joint& own);
  void turnsAt(int y);

  void replaceRow(std::size_t y, std::span<const RowWinding::Side> sides);

  // meeting_edges.cpp
  struct Sums {
    bool positive = false, negative = false, moreThanOnce = false;  // beyond what rounding does
  };
  void resolveMeetings();
  bool findOverlaps();
  void examine(std::size_t y, std::int32_t left, Sums& sums);
  bool collectEdgesOfRows();

  PixelRect area_;
  double right_ = 0;  // the area's size in subpixels
  double bottom_ = 0;
  std::size_t stride_ = 0;     // cells of a row, whole blocks
  std::size_t markPairs_ = 0;  // of a row
  // All zero between shapes: a sweep clears what it reads.
  std::vector<std::uint32_t> cells_;
  std::vector<std::uint64_t> marks_;     // see SweepRow
  std::vector<std::int32_t> leftCover_;  // for each row: what edges left of the area add to the rows from there on
  std::vector<std::uint8_t> seen_;       // for each row

  Outline kind_ = Outline::Any;
  bool anythingSeen_ = false;
  std::vector<FixedEdge> edges_;  // of a watched shape
  // Of the contour. Where it begins in the middle of a chain, the first edges are added after the last ones.
  std::size_t firstEdge_ = 0;
  std::size_t heldBack_ = 0;
  bool holdsBack_ = false;
  Joint joint_;

  struct EdgeOfRow {
    std::uint32_t edge, next;
  };
  std::vector<EdgeOfRow> edgesOfRows_;
  std::vector<std::uint32_t> firstOfRow_, nextRow_;
  std::vector<FixedEdge> rowEdges_;
  RowWinding winding_;
};

}  // namespace quellaro
