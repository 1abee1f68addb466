#include "platform/quartzcore/raster/rasterizer.h"

#include <bit>
#include <cstdlib>
#include <utility>

namespace quellaro {

namespace {

constexpr std::size_t kBlockBits = std::countr_zero(kBlockPixels);
constexpr int kFraction = kSubpixels - 1;

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

void Rasterizer::begin(const PixelRect& area) {
  area_ = area;
  right_ = static_cast<double>(area.width()) * kSubpixels;
  bottom_ = static_cast<double>(area.height()) * kSubpixels;
  // An edge at the area's right end still has a cell, and every cell has one right of it.
  const std::size_t blocks = (static_cast<std::size_t>(area.width()) + 2 + kBlockPixels - 1) / kBlockPixels;
  const auto rows = static_cast<std::size_t>(area.height());
  stride_ = blocks * kBlockPixels;
  wordsPerRow_ = (blocks + kWordBits - 1) / kWordBits;
  if (cells_.size() < stride_ * rows) cells_.resize(stride_ * rows);
  if (touched_.size() < wordsPerRow_ * rows) touched_.resize(wordsPerRow_ * rows);
  if (leftCover_.size() < rows + 1) leftCover_.resize(rows + 1);
}

void Rasterizer::clippedEdge(CGPoint from, CGPoint to) {
  if (from.y == to.y || (from.x > right_ && to.x > right_)) return;
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
  add(fixedX(from.x), fixedY(from.y), fixedX(to.x), fixedY(to.y));
}

// The same as an edge at x = 0, in constant time however many rows it crosses.
void Rasterizer::addLeftOfArea(int y0, int y1) {
  if (y0 == y1) return;
  const int sign = y0 < y1 ? 1 : -1;
  if (sign < 0) std::swap(y0, y1);
  const auto firstRow = static_cast<std::size_t>(y0 >> kSubpixelBits);
  const auto endRow = static_cast<std::size_t>(y1 >> kSubpixelBits);
  if (firstRow == endRow) return addWithinRow(rowAt(firstRow), 0, 0, sign * (y1 - y0), 0);
  addWithinRow(rowAt(firstRow), 0, 0, sign * (kSubpixels - (y0 & kFraction)), 0);
  if ((y1 & kFraction) != 0) addWithinRow(rowAt(endRow), 0, 0, sign * (y1 & kFraction), 0);
  leftCover_[firstRow + 1] += sign;
  leftCover_[endRow] -= sign;
}

void Rasterizer::add(int x0, int y0, int x1, int y1) {
  if (y0 == y1) return;
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
    return addWithinRow(row, x0, x1, cover, static_cast<double>(cover) / std::max(1, std::abs(x1 - x0)));
  }
  const double slope = static_cast<double>(x1 - x0) / (y1 - y0);
  const double coverPerSubpixel = sign * static_cast<double>(y1 - y0) / std::max(1, std::abs(x1 - x0));
  double exactX = x0 + 0.5 + (nextY - y0) * slope;
  int x = static_cast<int>(exactX);
  addWithinRow(row, x0, x, sign * (nextY - y0), coverPerSubpixel);
  for (int rows = lastRow - (nextY >> kSubpixelBits); rows > 0; --rows) {
    advance(row);
    exactX += slope * kSubpixels;
    const int nextX = static_cast<int>(exactX);
    addWithinRow(row, x, nextX, sign * kSubpixels, coverPerSubpixel);
    x = nextX;
  }
  advance(row);
  addWithinRow(row, x, x1, sign * (y1 - (lastRow << kSubpixelBits)), coverPerSubpixel);
}

// `coverPerSubpixel` may be rounded a little differently than cover / |x1 - x0|; the last cell takes what is left.
inline void Rasterizer::addWithinRow(const Row& row, int x0, int x1, int cover, double coverPerSubpixel) {
  if (x0 > x1) std::swap(x0, x1);
  auto column = static_cast<std::size_t>(x0 >> kSubpixelBits);
  const auto lastColumn = static_cast<std::size_t>(x1 >> kSubpixelBits);
  mark(row.touched, column >> kBlockBits);
  mark(row.touched, (lastColumn + 1) >> kBlockBits);
  if (column == lastColumn) return addCell(row.cells + column, cover, (x0 & kFraction) + (x1 & kFraction));
  double reached = coverPerSubpixel * (kSubpixels - (x0 & kFraction));
  int done = static_cast<int>(reached);
  addCell(row.cells + column, done, (x0 & kFraction) + kSubpixels);
  if (++column < lastColumn) {
    for (std::size_t block = column >> kBlockBits; block <= lastColumn >> kBlockBits; ++block) mark(row.touched, block);
    for (; column < lastColumn; ++column) {
      reached += coverPerSubpixel * kSubpixels;
      const int now = static_cast<int>(reached);
      addCell(row.cells + column, now - done, kSubpixels);
      done = now;
    }
  }
  addCell(row.cells + column, cover - done, x1 & kFraction);
}

void Rasterizer::sweep(const Surface& surface, const Paint& paint, const SpanFunctions& spans) {
  const auto width = static_cast<std::size_t>(area_.width());
  std::int32_t left = 0;
  Row row = rowAt(0);
  for (int y = 0; y < area_.height(); ++y, advance(row)) {
    left += std::exchange(leftCover_[static_cast<std::size_t>(y)], 0);
    spans.sweepRow({surface.row(area_.top + y) + area_.left, width, row.cells, stride_ / kBlockPixels, row.touched},
                   paint, static_cast<std::uint32_t>(left) * kFullCover);
  }
  leftCover_[static_cast<std::size_t>(area_.height())] = 0;
}

}  // namespace quellaro
