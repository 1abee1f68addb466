#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace quellaro {

// In subpixels; what an edge adds to the winding number right of it depends on which of its ends is lower.
struct FixedEdge {
  int x0, y0, x1, y1;
};

// What edges that cross and run along one another enclose by the non-zero rule, within one row of pixels.
class RowWinding {
 public:
  // A piece of the boundary, between two heights within the row. To the right of it lies what is enclosed when `cover`,
  // its height, is positive.
  struct Side {
    int from, to;  // x
    int cover;
  };

  // The row reaches from `top` for one pixel; the edges are some that cross it. Valid until the next call.
  std::span<const Side> sidesOf(std::span<const FixedEdge> edges, int top);

 private:
  struct Line {
    int upper, lower;  // y
    int x0, y0;
    double slope;
    int winding;
  };
  struct Crossing {
    int from, to;  // x at the band's top and bottom
    int winding;
  };

  // Beyond this many ends of edges in one row it is halved wherever they lie.
  static constexpr std::size_t kMostBands = 12;

  std::size_t insertEnd(int y, std::size_t count);
  void resolve(int top, int bottom);
  bool collect(int top, int bottom);
  int splitOf(int top, int bottom, bool allPass) const;
  void emit(int height);
  static int xAt(const Line& line, int y);

  std::vector<Line> lines_;
  std::array<int, kMostBands + 1> ends_;  // y
  std::vector<Crossing> crossings_;
  std::vector<Side> sides_;
};

}  // namespace quellaro
