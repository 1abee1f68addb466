#include "platform/quartzcore/raster/row_winding.h"

#include <algorithm>

#include "platform/quartzcore/raster/fixed_point.h"

namespace quellaro {

namespace {

// Bands in which edges cross or end are halved down to this height; then the order at mid-height counts.
constexpr int kSmallestBand = kSubpixels / 32;

// Beyond this many ends of edges in one row it is halved wherever they lie.
constexpr std::size_t kMostBands = 12;

// Edges that run along one another may change places by rounding.
constexpr int kRounding = 2;

int xAt(const FixedEdge& edge, int y) {
  const double slope = static_cast<double>(edge.x1 - edge.x0) / (edge.y1 - edge.y0);
  return static_cast<int>(edge.x0 + 0.5 + (y - edge.y0) * slope);
}

}  // namespace

std::span<const RowWinding::Side> RowWinding::sidesOf(std::span<const FixedEdge> edges, int top) {
  edges_ = edges;
  sides_.clear();
  ends_.assign({top, top + kSubpixels});
  for (const FixedEdge& edge : edges)
    for (const int y : {edge.y0, edge.y1})
      if (y > top && y < top + kSubpixels) ends_.push_back(y);
  std::sort(ends_.begin(), ends_.end());
  ends_.erase(std::unique(ends_.begin(), ends_.end()), ends_.end());
  if (ends_.size() > kMostBands)
    resolve(top, top + kSubpixels);
  else
    for (std::size_t i = 1; i < ends_.size(); ++i) resolve(ends_[i - 1], ends_[i]);
  return sides_;
}

void RowWinding::resolve(int top, int bottom) {
  if (!isOrdered(top, bottom)) {
    const int middle = (top + bottom) / 2;
    if (bottom - top > kSmallestBand) {
      resolve(top, middle);
      return resolve(middle, bottom);
    }
    isOrdered(middle, middle);
  }
  emit(bottom - top);
}

// Collects the edges that show in the band, from left to right; gives whether each passes through it without crossing
// another.
bool RowWinding::isOrdered(int top, int bottom) {
  crossings_.clear();
  bool allPass = true;
  for (const FixedEdge& edge : edges_) {
    const int upper = std::min(edge.y0, edge.y1);
    const int lower = std::max(edge.y0, edge.y1);
    if (lower <= top || upper >= std::max(bottom, top + 1)) continue;
    allPass = allPass && upper <= top && lower >= bottom;
    crossings_.push_back(
        {xAt(edge, std::max(top, upper)), xAt(edge, std::min(bottom, lower)), edge.y0 < edge.y1 ? 1 : -1});
  }
  std::sort(crossings_.begin(), crossings_.end(),
            [](const Crossing& a, const Crossing& b) { return a.from + a.to < b.from + b.to; });
  return allPass && std::adjacent_find(crossings_.begin(), crossings_.end(), [](const Crossing& a, const Crossing& b) {
                      return a.from > b.from + kRounding || a.to > b.to + kRounding;
                    }) == crossings_.end();
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
