#include "platform/quartzcore/raster/row_winding.h"

#include <algorithm>

#include "platform/quartzcore/raster/fixed_point.h"

namespace quellaro {

namespace {

// Bands in which edges cross or end are split down to this height; then the order at mid-height counts.
constexpr int kSmallestBand = kSubpixels / 32;

// Edges that run along one another may change places by rounding.
constexpr int kRounding = 2;

}  // namespace

int RowWinding::xAt(const Line& line, int y) { return static_cast<int>(line.x0 + 0.5 + (y - line.y0) * line.slope); }

std::span<const RowWinding::Side> RowWinding::sidesOf(std::span<const FixedEdge> edges, int top) {
  const int bottom = top + kSubpixels;
  lines_.clear();
  sides_.clear();
  ends_[0] = top;
  ends_[1] = bottom;
  std::size_t ends = 2;
  for (const FixedEdge& edge : edges) {
    const double slope = static_cast<double>(edge.x1 - edge.x0) / (edge.y1 - edge.y0);
    lines_.push_back(
        {std::min(edge.y0, edge.y1), std::max(edge.y0, edge.y1), edge.x0, edge.y0, slope, edge.y0 < edge.y1 ? 1 : -1});
    for (const int y : {edge.y0, edge.y1})
      if (y > top && y < bottom && ends <= kMostBands) ends += insertEnd(y, ends);
  }
  if (ends > kMostBands)
    resolve(top, bottom);
  else
    for (std::size_t i = 1; i < ends; ++i) resolve(ends_[i - 1], ends_[i]);
  return sides_;
}

// Among the first `count`, which are in order; gives how many there are more.
std::size_t RowWinding::insertEnd(int y, std::size_t count) {
  std::size_t at = count;
  while (ends_[at - 1] > y) --at;
  if (ends_[at - 1] == y) return 0;
  for (std::size_t i = count; i > at; --i) ends_[i] = ends_[i - 1];
  ends_[at] = y;
  return 1;
}

void RowWinding::resolve(int top, int bottom) {
  const bool allPass = collect(top, bottom);
  if (const int split = splitOf(top, bottom, allPass); split < bottom) {
    if (bottom - top > kSmallestBand) {
      resolve(top, split);
      return resolve(split, bottom);
    }
    collect(split, split);
  }
  emit(bottom - top);
}

// Collects the edges that show in the band, from left to right; gives whether each passes through it.
bool RowWinding::collect(int top, int bottom) {
  crossings_.clear();
  bool allPass = true;
  for (const Line& line : lines_) {
    if (line.lower <= top || line.upper >= std::max(bottom, top + 1)) continue;
    allPass = allPass && line.upper <= top && line.lower >= bottom;
    crossings_.push_back({xAt(line, std::max(top, line.upper)), xAt(line, std::min(bottom, line.lower)), line.winding});
  }
  std::sort(crossings_.begin(), crossings_.end(),
            [](const Crossing& a, const Crossing& b) { return a.from + a.to < b.from + b.to; });
  return allPass;
}

// Where a band in which edges end or cross is split: at mid-height, or where two of them cross; its bottom if it stays
// whole. An icon with crossing lines takes an eighth fewer instructions than with halving alone.
int RowWinding::splitOf(int top, int bottom, bool allPass) const {
  const int middle = (top + bottom) / 2;
  if (!allPass) return middle;
  const auto at = std::adjacent_find(crossings_.begin(), crossings_.end(), [](const Crossing& a, const Crossing& b) {
    return a.from > b.from + kRounding || a.to > b.to + kRounding;
  });
  if (at == crossings_.end()) return bottom;
  if (bottom - top < 2 * kSmallestBand) return middle;
  const double before = at[1].from - at[0].from;
  const double after = at[1].to - at[0].to;
  const double height = before == after ? 0.5 : before / (before - after);
  return std::clamp(top + static_cast<int>(height * (bottom - top) + 0.5), top + kSmallestBand, bottom - kSmallestBand);
}

void RowWinding::emit(int height) {
  int winding = 0;
  for (const Crossing& crossing : crossings_) {
    const int before = winding;
    winding += crossing.winding;
    if ((before == 0) != (winding == 0)) sides_.push_back({crossing.from, crossing.to, before == 0 ? height : -height});
  }
}

}  // namespace quellaro
