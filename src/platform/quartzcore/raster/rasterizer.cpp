#include "platform/quartzcore/raster/rasterizer.h"

#include <bit>
#include <cstdlib>
#include <utility>

namespace quellaro {

namespace {

constexpr int kFraction = kSubpixels - 1;

bool isUpwards(const FixedEdge& edge) { return edge.y0 > edge.y1; }

// The columns as bits of their word; both lie in it.
std::uint64_t bitsOf(std::size_t first, std::size_t last) {
  return ~std::uint64_t{0} << first % kWordBits & ~std::uint64_t{0} >> (kWordBits - 1 - last % kWordBits);
}

// Those of the columns that lie in the word, if any.
std::uint64_t bitsWithin(std::size_t word, std::size_t first, std::size_t last) {
  first = std::max(first, word * kWordBits);
  last = std::min(last, word * kWordBits + kWordBits - 1);
  return first <= last ? bitsOf(first, last) : 0;
}

}  // namespace

void Rasterizer::begin(const PixelRect& area, Outline kind) {
  kind_ = kind;
  area_ = area;
  right_ = static_cast<double>(area.width()) * kSubpixels;
  bottom_ = static_cast<double>(area.height()) * kSubpixels;
  // An edge at the area's right end still has a cell, and every cell has one right of it.
  stride_ = (static_cast<std::size_t>(area.width()) + 2 + kBlockPixels - 1) / kBlockPixels * kBlockPixels;
  markPairs_ = (stride_ + kWordBits - 1) / kWordBits;
  const auto rows = static_cast<std::size_t>(area.height());
  if (cells_.size() < stride_ * rows) cells_.resize(stride_ * rows);
  if (marks_.size() < 2 * markPairs_ * rows) marks_.resize(2 * markPairs_ * rows);
  if (leftCover_.size() < rows + 1) leftCover_.resize(rows + 1);
  if (seen_.size() < rows) seen_.resize(rows);
  edges_.clear();
  endContour();
}

void Rasterizer::clippedEdge(CGPoint from, CGPoint to) {
  if (isWithin(from) && isWithin(to)) return edge(from, to);
  if (from.y == to.y || (from.x >= right_ && to.x >= right_)) return;
  if ((from.y <= 0 && to.y <= 0) || (from.y >= bottom_ && to.y >= bottom_)) return;
  if (from.x <= 0 && to.x <= 0) return addLeftOfArea(fixedY(from.y), fixedY(to.y));
  const double slope = (to.x - from.x) / (to.y - from.y);
  const auto cutAtRow = [&](CGPoint& p) {
    const double y = std::min(std::max(p.y, 0.0), bottom_);
    if (y != p.y) p = {p.x + (y - p.y) * slope, y};
  };
  const CGPoint first = from;
  const auto rowAt = [&](double x) { return std::min(std::max(first.y + (x - first.x) / slope, 0.0), bottom_); };
  cutAtRow(from);
  cutAtRow(to);
  // What lies left of the area counts as if at its left end; what lies right of it does not count.
  const auto cutAtColumn = [&](CGPoint& p, bool isStart) {
    if (p.x < 0) {
      const double y = rowAt(0);
      if (isStart)
        addLeftOfArea(fixedY(p.y), fixedY(y));
      else
        addLeftOfArea(fixedY(y), fixedY(p.y));
      p = {0, y};
    } else if (p.x > right_) {
      p = {right_, rowAt(right_)};
    }
  };
  if (from.x > right_ && to.x > right_) return;
  if (from.x <= 0 && to.x <= 0) return addLeftOfArea(fixedY(from.y), fixedY(to.y));
  cutAtColumn(from, true);
  cutAtColumn(to, false);
  add({fixedX(from.x), fixedY(from.y), fixedX(to.x), fixedY(to.y)});
}

void Rasterizer::addLeftOfArea(int y0, int y1) { add({0, y0, 0, y1}); }

// A second turn within one row: edges that show nowhere near one another may add to the same pixels.
void Rasterizer::turnsAt(int y) {
  if ((y & kFraction) == 0) return;
  std::uint8_t& seen = seen_[static_cast<std::size_t>(y >> kSubpixelBits)];
  seen |= static_cast<std::uint8_t>((seen & kTurns) != 0 ? kOverlaps : kTurns);
  anythingSeen_ = true;
}

void Rasterizer::add(const FixedEdge& edge) {
  if (edge.y0 == edge.y1) return;
  if (!isWatched() || edges_.size() == kMostEdges) return addInOrder(edge);
  if (edges_.size() > firstEdge_ && isUpwards(edges_.back()) != isUpwards(edge)) {
    turnsAt(edge.y0);
    joint_ = {};
    holdsBack_ = false;
  }
  edges_.push_back(edge);
  if (holdsBack_)
    ++heldBack_;
  else
    addInOrder(edge);
}

void Rasterizer::endContour() {
  if (edges_.size() > firstEdge_) {
    const FixedEdge first = edges_[firstEdge_];
    const FixedEdge last = edges_.back();
    if (isUpwards(first) != isUpwards(last)) turnsAt(first.y0);
    if (isUpwards(first) != isUpwards(last) || first.y0 != last.y1) joint_ = {};
    for (std::size_t i = 0; i < heldBack_; ++i) addInOrder(edges_[firstEdge_ + i]);
  }
  firstEdge_ = edges_.size();
  heldBack_ = 0;
  holdsBack_ = true;
  joint_ = {};
}

void Rasterizer::addInOrder(const FixedEdge& edge) {
  if (isWatched())
    addRows<true>(edge);
  else
    addRows<false>(edge);
}

template <bool kWatched>
void Rasterizer::addRows(const FixedEdge& edge) {
  auto [x, top, lastX, end] = edge;
  const bool isUp = top > end;
  if (isUp) {
    std::swap(x, lastX);
    std::swap(top, end);
  }
  const int sign = isUp ? -1 : 1;
  int y = top >> kSubpixelBits;
  const int lastRow = (end - 1) >> kSubpixelBits;
  // Whole rows at the area's left end take constant time, however many they are.
  if (x == 0 && lastX == 0 && lastRow > y + 1) return addAtLeftEnd(edge);
  const int width = std::max(1, std::abs(lastX - x));
  const double coverPerSubpixel = sign * static_cast<double>(end - top) / width;
  double slope = 0;
  double exactX = 0;
  if (y != lastRow) {
    slope = static_cast<double>(lastX - x) / (end - top);
    exactX = x + 0.5 + (((y + 1) << kSubpixelBits) - top) * slope;
  }
  const int front = isUp ? y : lastRow;
  Columns reached;
  for (Row row = rowAt(static_cast<std::size_t>(y));; advance(row), ++y) {
    const bool isLast = y == lastRow;
    const int bottom = isLast ? end : (y + 1) << kSubpixelBits;
    const int nextX = isLast ? lastX : static_cast<int>(exactX);
    const Columns crossed = addWithinRow(row.cells, x, nextX, sign * (bottom - top), coverPerSubpixel);
    if constexpr (kWatched) {
      watch(row, isUp, crossed, y == joint_.row);
      if (y == front) reached = crossed;
    } else {
      markPixels(row.marks, crossed);
    }
    if (isLast) break;
    x = nextX;
    top = bottom;
    exactX += slope * kSubpixels;
  }
  if constexpr (kWatched) {
    if (front == joint_.row) reached = {std::min(reached.first, joint_.first), std::max(reached.last, joint_.last)};
    joint_ = {reached, front};
  }
}

void Rasterizer::addAtLeftEnd(const FixedEdge& edge) {
  const bool isUp = isUpwards(edge);
  const auto [top, end] = std::minmax(edge.y0, edge.y1);
  const int firstWhole = (top + kFraction) >> kSubpixelBits;
  const int endWhole = end >> kSubpixelBits;
  leftCover_[static_cast<std::size_t>(firstWhole)] += isUp ? -1 : 1;
  leftCover_[static_cast<std::size_t>(endWhole)] -= isUp ? -1 : 1;
  const auto addPart = [&](int from, int to) {
    if (from != to) addInOrder({0, isUp ? to : from, 0, isUp ? from : to});
  };
  if (isUp) addPart(endWhole << kSubpixelBits, end);
  addPart(top, firstWhole << kSubpixelBits);
  if (!isUp) addPart(endWhole << kSubpixelBits, end);
}

// To each cell comes twice the area that the edge covers within its pixel, and to the next one what is left of the full
// width; as unsigned numbers, because sums may wrap around on their way. `coverPerSubpixel` may be rounded a little
// differently than cover / |x1 - x0|; the last cell takes what is left.
inline Rasterizer::Columns Rasterizer::addWithinRow(std::uint32_t* cells, int x0, int x1, int cover,
                                                    double coverPerSubpixel) {
  constexpr int kWidth = 2 * kSubpixels;
  if (x0 > x1) std::swap(x0, x1);
  const auto first = static_cast<std::size_t>(x0 >> kSubpixelBits);
  const auto last = static_cast<std::size_t>(x1 >> kSubpixelBits);
  if (first == last) {
    const int next = cover * ((x0 & kFraction) + (x1 & kFraction));
    cells[first] += static_cast<std::uint32_t>(cover * kWidth - next);
    cells[first + 1] += static_cast<std::uint32_t>(next);
    return {first, last};
  }
  double reached = coverPerSubpixel * (kSubpixels - (x0 & kFraction));
  int done = static_cast<int>(reached);
  int next = done * ((x0 & kFraction) + kSubpixels);
  cells[first] += static_cast<std::uint32_t>(done * kWidth - next);
  for (std::size_t column = first + 1; column < last; ++column) {
    reached += coverPerSubpixel * kSubpixels;
    const int now = static_cast<int>(reached);
    const int half = (now - done) * kSubpixels;
    cells[column] += static_cast<std::uint32_t>(next + half);
    next = half;
    done = now;
  }
  const int rest = (cover - done) * (x1 & kFraction);
  cells[last] += static_cast<std::uint32_t>(next + (cover - done) * kWidth - rest);
  cells[last + 1] += static_cast<std::uint32_t>(rest);
  return {first, last};
}

inline void Rasterizer::markPixels(std::uint64_t* marks, const Columns& crossed) {
  std::size_t word = crossed.first / kWordBits;
  const std::size_t lastWord = crossed.last / kWordBits;
  if (word == lastWord) {
    marks[2 * word] |= bitsOf(crossed.first, crossed.last);
    return;
  }
  for (; word <= lastWord; ++word) marks[2 * word] |= bitsWithin(word, crossed.first, crossed.last);
}

// Marks what a chain has crossed. A chain that goes on in the row has been seen already but for what is new.
inline void Rasterizer::watch(const Row& row, bool isUp, const Columns& crossed, bool goesOn) {
  if (goesOn) {
    if (crossed.first < joint_.first || crossed.last > joint_.last) meet(row, isUp, crossed, joint_);
    return;
  }
  const int direction = isUp ? kUp : kDown;
  *row.seen |= static_cast<std::uint8_t>(direction | (*row.seen & direction) * (kSecondDown / kDown));
  const std::size_t word = crossed.first / kWordBits;
  const std::uint64_t bits = bitsOf(crossed.first, crossed.last);
  std::uint64_t* const marks = row.marks + 2 * word;
  if (word == crossed.last / kWordBits && ((marks[0] | marks[1]) & bits) == 0) [[likely]]
    marks[isUp] |= bits;
  else
    meet(row, isUp, crossed, {});
}

// An edge up and one down may enclose what lies between them, a thin line or a tip. Two edges up, and whatever comes
// third, do not add up.
void Rasterizer::meet(const Row& row, bool isUp, const Columns& crossed, const Joint& own) {
  for (std::size_t word = crossed.first / kWordBits; word <= crossed.last / kWordBits; ++word) {
    std::uint64_t bits = bitsWithin(word, crossed.first, crossed.last);
    if (own.row >= 0) bits &= ~bitsWithin(word, own.first, own.last);
    std::uint64_t* const marks = row.marks + 2 * word;
    const bool overlaps = (marks[isUp] & bits) != 0;
    const bool meets = (marks[!isUp] & bits) != 0;
    marks[isUp] |= bits;
    if (!overlaps && !meets) continue;
    *row.seen |= static_cast<std::uint8_t>(overlaps ? kOverlaps : kMeets);
    anythingSeen_ = true;
  }
}

void Rasterizer::replaceRow(std::size_t y, std::span<const RowWinding::Side> sides) {
  const Row row = rowAt(y);
  std::fill_n(row.cells, stride_, 0);
  std::fill_n(row.marks, 2 * markPairs_, 0);
  for (const RowWinding::Side& side : sides)
    markPixels(row.marks, addWithinRow(row.cells, side.from, side.to, side.cover,
                                       static_cast<double>(side.cover) / std::max(1, std::abs(side.to - side.from))));
}

void Rasterizer::sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans) {
  if (anythingSeen_) resolveMeetings();
  const auto rows = static_cast<std::size_t>(area_.height());
  std::int32_t left = 0;
  for (std::size_t y = 0; y < rows; ++y) {
    left += leftCover_[y];
    leftCover_[y] = (std::exchange(seen_[y], 0) & kOverlaps) != 0 ? 0 : left;
  }
  spans.sweep({surface.row(area_.top) + area_.left, surface.stride, static_cast<std::size_t>(area_.width()), rows,
               cells_.data(), stride_, marks_.data(), markPairs_, leftCover_.data()},
              paint);
  std::fill_n(leftCover_.begin(), rows + 1, 0);
  anythingSeen_ = false;
}

}  // namespace quellaro
