#include "platform/quartzcore/raster/rasterizer.h"

#include <bit>
#include <cstdlib>
#include <utility>

namespace quellaro {

namespace {

constexpr std::size_t kBlockBits = std::countr_zero(kBlockPixels);
constexpr int kFraction = kSubpixels - 1;

// Chains of a shape are fewer than the numbers that are left.
constexpr std::uint32_t kLastFirstChain = std::uint32_t{1} << 31;

void mark(std::uint64_t* touched, std::size_t block) {
  touched[block / kWordBits] |= std::uint64_t{1} << block % kWordBits;
}

// Twice the area that an edge covers within its pixel, and what is left of the full width, as unsigned numbers: sums
// may wrap around on their way.
void addCell(std::uint32_t* cell, int cover, int doubleX) {
  const int right = cover * doubleX;
  cell[0] += static_cast<std::uint32_t>(cover * 2 * kSubpixels - right);
  cell[1] += static_cast<std::uint32_t>(right);
}

}  // namespace

void Rasterizer::begin(const PixelRect& area, bool simple) {
  watched_ = !simple;
  area_ = area;
  right_ = static_cast<double>(area.width()) * kSubpixels;
  bottom_ = static_cast<double>(area.height()) * kSubpixels;
  // An edge at the area's right end still has a cell, and every cell has one right of it.
  blocks_ = (static_cast<std::size_t>(area.width()) + 2 + kBlockPixels - 1) / kBlockPixels;
  const auto rows = static_cast<std::size_t>(area.height());
  stride_ = blocks_ * kBlockPixels;
  wordsPerRow_ = (blocks_ + kWordBits - 1) / kWordBits;
  if (cells_.size() < stride_ * rows) cells_.resize(stride_ * rows);
  if (touched_.size() < wordsPerRow_ * rows) touched_.resize(wordsPerRow_ * rows);
  if (leftCover_.size() < rows + 1) leftCover_.resize(rows + 1);
  if (watched_ && owners_.size() < stride_ * rows) owners_.resize(stride_ * rows);
  if (seen_.size() < rows) seen_.resize(rows);
  edges_.clear();
  firstChain_ = (lastChain_ | (kNextChain - 1)) + 1;
  if (firstChain_ > kLastFirstChain) {
    std::fill(owners_.begin(), owners_.end(), 0);
    firstChain_ = kNextChain;
  }
  lastChain_ = firstChain_;
}

void Rasterizer::clippedEdge(Run& run, CGPoint from, CGPoint to) {
  if (from.y == to.y || (from.x > right_ && to.x > right_)) return;
  if ((from.y <= 0 && to.y <= 0) || (from.y >= bottom_ && to.y >= bottom_)) return;
  if (from.x <= 0 && to.x <= 0) return addLeftOfArea(run, fixedY(from.y), fixedY(to.y));
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
        addLeftOfArea(run, fixedY(p.y), fixedY(y));
      else
        addLeftOfArea(run, fixedY(y), fixedY(p.y));
      p = {0, y};
    } else if (p.x > right_) {
      p = {right_, rowAt(right_)};
    }
  };
  if (from.x > right_ && to.x > right_) return;
  if (from.x <= 0 && to.x <= 0) return addLeftOfArea(run, fixedY(from.y), fixedY(to.y));
  cutAtColumn(from, true);
  cutAtColumn(to, false);
  add(run, {fixedX(from.x), fixedY(from.y), fixedX(to.x), fixedY(to.y)});
}

// The same as an edge at x = 0, in constant time however many rows it crosses.
void Rasterizer::addLeftOfArea(Run& run, int y0, int y1) {
  if (y0 == y1) return;
  if (watched_) beginChain(run, {0, y0, 0, y1});
  const int sign = y0 < y1 ? 1 : -1;
  if (sign < 0) std::swap(y0, y1);
  const auto firstRow = static_cast<std::size_t>(y0 >> kSubpixelBits);
  const auto endRow = static_cast<std::size_t>(y1 >> kSubpixelBits);
  const auto addTo = [&](std::size_t row, int cover) {
    if (watched_)
      addWithinRow<true>(watch(run), rowAt(row), 0, 0, cover, 0);
    else
      addWithinRow<false>(watch(run), rowAt(row), 0, 0, cover, 0);
  };
  if (firstRow == endRow) return addTo(firstRow, sign * (y1 - y0));
  addTo(firstRow, sign * (kSubpixels - (y0 & kFraction)));
  if ((y1 & kFraction) != 0) addTo(endRow, sign * (y1 & kFraction));
  leftCover_[firstRow + 1] += sign;
  leftCover_[endRow] -= sign;
}

// A second turn within one row: edges that show nowhere near one another may add to the same pixels.
void Rasterizer::turnsAt(int y) {
  if ((y & kFraction) == 0) return;
  std::uint8_t& seen = seen_[static_cast<std::size_t>(y >> kSubpixelBits)];
  seen |= static_cast<std::uint8_t>((seen & kTurns) != 0 ? kOverlaps : kTurns);
  anythingSeen_ = true;
}

inline void Rasterizer::beginChain(Run& run, const FixedEdge& edge) {
  if (edges_.size() < kMostEdges) edges_.push_back(edge);
  const std::uint32_t direction = edge.y0 < edge.y1 ? 0 : kUpwards;
  if (run.chain != 0 && (run.chain & kUpwards) == direction) return;
  lastChain_ += kNextChain;
  if (run.chain != 0) turnsAt(edge.y0);
  run.chain = lastChain_ | direction;
  if (run.firstChain == 0) {
    run.firstChain = run.chain;
    run.start = edge.y0;
  }
}

void Rasterizer::finish(Run& run, bool isClosed) {
  if (((run.chain ^ run.firstChain) & kUpwards) != 0) turnsAt(run.start);
  if (run.returning != 0 && (!isClosed || run.returning != run.chain)) {
    seen_[static_cast<std::size_t>(run.start >> kSubpixelBits)] |= kOverlaps;
    anythingSeen_ = true;
  }
  run = {};
}

inline void Rasterizer::own(Watch watch, const Row& row, std::size_t column) {
  std::uint32_t& owner = row.owners[column];
  const std::uint32_t before = owner;
  if (before < watch.firstChain)
    owner = watch.chain;
  else if ((before & ~kShared) != watch.chain) [[unlikely]]
    meet(*watch.run, row, owner);
}

// An edge up and one down may enclose what lies between them, a thin line or a tip. Two edges up, and whatever comes
// third, do not add up.
void Rasterizer::meet(Run& run, const Row& row, std::uint32_t& owner) {
  const std::uint32_t before = owner & ~kShared;
  // The last chain of a contour that begins in the middle of a chain goes on where the first one begins.
  const bool mayReturn = before == run.firstChain && ((before ^ run.chain) & kUpwards) == 0 &&
                         row.seen == seen_.data() + (run.start >> kSubpixelBits);
  if (mayReturn && (run.returning == 0 || run.returning == run.chain)) {
    run.returning = run.chain;
    return;
  }
  const bool honest = (owner & kShared) == 0 && ((owner ^ run.chain) & kUpwards) != 0;
  *row.seen |= static_cast<std::uint8_t>(honest ? kMeets : kOverlaps);
  anythingSeen_ = true;
  owner = run.chain | kShared;
}

void Rasterizer::add(Run& run, const FixedEdge& edge) {
  if (edge.y0 == edge.y1) return;
  if (!watched_) return addRows<false>(watch(run), edge);
  beginChain(run, edge);
  addRows<true>(watch(run), edge);
}

template <bool kWatched>
void Rasterizer::addRows(Watch watch, const FixedEdge& edge) {
  auto [x0, y0, x1, y1] = edge;
  int sign = 1;
  if (y0 > y1) {
    std::swap(x0, x1);
    std::swap(y0, y1);
    sign = -1;
  }
  const int lastRow = (y1 - 1) >> kSubpixelBits;
  Row row = rowAt(static_cast<std::size_t>(y0 >> kSubpixelBits));
  int nextY = (y0 | kFraction) + 1;
  if (nextY >= y1) {
    const int cover = sign * (y1 - y0);
    return addWithinRow<kWatched>(watch, row, x0, x1, cover,
                                  static_cast<double>(cover) / std::max(1, std::abs(x1 - x0)));
  }
  const double slope = static_cast<double>(x1 - x0) / (y1 - y0);
  const double coverPerSubpixel = sign * static_cast<double>(y1 - y0) / std::max(1, std::abs(x1 - x0));
  double exactX = x0 + 0.5 + (nextY - y0) * slope;
  int x = static_cast<int>(exactX);
  addWithinRow<kWatched>(watch, row, x0, x, sign * (nextY - y0), coverPerSubpixel);
  for (int rows = lastRow - (nextY >> kSubpixelBits); rows > 0; --rows) {
    advance(row);
    exactX += slope * kSubpixels;
    const int nextX = static_cast<int>(exactX);
    addWithinRow<kWatched>(watch, row, x, nextX, sign * kSubpixels, coverPerSubpixel);
    x = nextX;
  }
  advance(row);
  addWithinRow<kWatched>(watch, row, x, x1, sign * (y1 - (lastRow << kSubpixelBits)), coverPerSubpixel);
}

// `coverPerSubpixel` may be rounded a little differently than cover / |x1 - x0|; the last cell takes what is left.
template <bool kWatched>
inline void Rasterizer::addWithinRow(Watch watch, const Row& row, int x0, int x1, int cover, double coverPerSubpixel) {
  if (x0 > x1) std::swap(x0, x1);
  auto column = static_cast<std::size_t>(x0 >> kSubpixelBits);
  const auto lastColumn = static_cast<std::size_t>(x1 >> kSubpixelBits);
  mark(row.touched, column >> kBlockBits);
  mark(row.touched, (lastColumn + 1) >> kBlockBits);
  if constexpr (kWatched) own(watch, row, column);
  if (column == lastColumn) return addCell(row.cells + column, cover, (x0 & kFraction) + (x1 & kFraction));
  double reached = coverPerSubpixel * (kSubpixels - (x0 & kFraction));
  int done = static_cast<int>(reached);
  addCell(row.cells + column, done, (x0 & kFraction) + kSubpixels);
  if constexpr (kWatched) own(watch, row, lastColumn);
  if (++column < lastColumn) {
    for (std::size_t block = column >> kBlockBits; block <= lastColumn >> kBlockBits; ++block) mark(row.touched, block);
    if constexpr (kWatched)
      for (std::size_t between = column; between < lastColumn; ++between) own(watch, row, between);
    for (; column < lastColumn; ++column) {
      reached += coverPerSubpixel * kSubpixels;
      const int now = static_cast<int>(reached);
      addCell(row.cells + column, now - done, kSubpixels);
      done = now;
    }
  }
  addCell(row.cells + column, cover - done, x1 & kFraction);
}

void Rasterizer::replaceRow(std::size_t y, std::span<const RowWinding::Side> sides) {
  const Row row = rowAt(y);
  std::fill_n(row.cells, stride_, 0);
  std::fill_n(row.touched, wordsPerRow_, 0);
  for (const RowWinding::Side& side : sides)
    addWithinRow<false>({}, row, side.from, side.to, side.cover,
                        static_cast<double>(side.cover) / std::max(1, std::abs(side.to - side.from)));
}

void Rasterizer::sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans) {
  const auto width = static_cast<std::size_t>(area_.width());
  if (anythingSeen_) resolveMeetings();
  std::int32_t left = 0;
  Row row = rowAt(0);
  for (int y = 0; y < area_.height(); ++y, advance(row)) {
    left += std::exchange(leftCover_[static_cast<std::size_t>(y)], 0);
    const bool replaced = anythingSeen_ && (std::exchange(*row.seen, 0) & kOverlaps) != 0;
    spans.sweepRow({surface.row(area_.top + y) + area_.left, width, row.cells, blocks_, row.touched}, paint,
                   replaced ? 0 : static_cast<std::uint32_t>(left) * kFullCover);
  }
  anythingSeen_ = false;
  leftCover_[static_cast<std::size_t>(area_.height())] = 0;
}

}  // namespace quellaro
