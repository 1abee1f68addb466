// What a rasteriser does about rows in which edges meet, between the last edge and the sweep.
#include <algorithm>
#include <bit>
#include <cstdlib>

#include "platform/quartzcore/raster/rasterizer.h"
#include "platform/quartzcore/raster/sweep_row.h"

namespace quellaro {

namespace {

constexpr auto kFull = static_cast<std::int32_t>(kFullCover);

// Sums below this may come from coordinates that were rounded apart.
constexpr std::int32_t kRoundedSum = kFull / 32;

std::int32_t magnitude(std::uint32_t sum) { return std::abs(static_cast<std::int32_t>(sum)); }

// Whether winding numbers differ within the pixel's height.
bool isPart(std::int32_t sum) { return sum % kFull > kRoundedSum && sum % kFull < kFull - kRoundedSum; }

// Of one shape, in rows that are worked out anew; far beyond any honest shape, and a second's work.
constexpr std::size_t kMostEdgesOfRows = std::size_t{1} << 20;

}  // namespace

void Rasterizer::resolveMeetings() {
  if (!findOverlaps()) return;
  const auto rows = static_cast<std::size_t>(area_.height());
  if (!collectEdgesOfRows()) {
    for (std::size_t y = 0; y < rows; ++y) seen_[y] = 0;
    return;
  }
  for (std::size_t y = 0; y < rows; ++y) {
    if ((seen_[y] & kOverlaps) == 0) continue;
    rowEdges_.clear();
    for (std::uint32_t next = firstOfRow_[y]; next != 0; next = edgesOfRows_[next - 1].next)
      rowEdges_.push_back(edges_[edgesOfRows_[next - 1].edge]);
    replaceRow(y, winding_.sidesOf(rowEdges_, static_cast<int>(y) << kSubpixelBits));
  }
}

// Where an edge up and one down share a pixel, they enclose a thin line or a tip: unless something is enclosed left of
// them already, or they have changed places, which shows in the sign of the sums around. With something left of them
// they may be the sides of a gap; a stroke's always are, unless sums show that something is enclosed twice.
bool Rasterizer::findOverlaps() {
  const auto rows = static_cast<std::size_t>(area_.height());
  const auto meets = [&](std::size_t y) { return y < rows && (seen_[y] & kMeets) != 0; };
  Sums sums;
  std::int32_t left = 0;
  for (std::size_t y = 0; y < rows; ++y) {
    left += leftCover_[y];
    if ((seen_[y] & (kMeets | kTurns | kOverlaps)) != 0 || meets(y + 1) || (y > 0 && meets(y - 1)))
      examine(y, left, sums);
  }
  const bool bothSigns = sums.positive && sums.negative;
  const bool doubts = kind_ != Outline::Stroke || bothSigns || sums.moreThanOnce;
  const int dishonest = kOverlaps | (bothSigns ? kMeets : 0) | (doubts ? kDoubtful : 0);
  bool any = false;
  for (std::size_t y = 0; y < rows; ++y) {
    const bool overlaps = (seen_[y] & dishonest) != 0;
    seen_[y] = overlaps ? kOverlaps : 0;
    any = any || overlaps;
  }
  return any;
}

void Rasterizer::examine(std::size_t y, std::int32_t left, Sums& sums) {
  const Row row = rowAt(y);
  const bool turns = (*row.seen & kTurns) != 0;
  // One chain down and one up have nothing left of them.
  const bool isPair = (*row.seen & (kSecondDown | kSecondUp)) == 0 && left == 0;
  std::uint32_t sum = static_cast<std::uint32_t>(left) * kFullCover;
  // Of pixels in which edges follow on one another without a gap: the sum left of them, the directions, and whether
  // both share a pixel where something is enclosed.
  std::uint32_t before = 0;
  std::uint64_t directions = 0;
  std::uint64_t lastDirections = 0;
  bool shares = false;
  MarkedCells marked;
  for (std::size_t word = 0; word < markPairs_; ++word) {
    const std::uint64_t down = row.marks[2 * word];
    const std::uint64_t up = row.marks[2 * word + 1];
    for (std::uint64_t cells = marked.next(down, up); cells != 0; cells &= cells - 1) {
      const int bit = std::countr_zero(cells);
      const std::uint64_t crossing = (down >> bit & 1) | (up >> bit & 1) << 1;
      if (crossing != 0) {
        if (directions == 0) before = sum;
        const bool shared = crossing == 3 || (turns && directions != 0 && crossing != lastDirections);
        shares = shares || (shared && !isPair && magnitude(sum) > kRoundedSum);
      }
      sum += row.cells[word * kWordBits + static_cast<std::size_t>(bit)];
      if (crossing == 0 && directions != 0) {
        const std::int32_t step = magnitude(sum - before);
        const bool wasPart = isPart(magnitude(before));
        // Different at different heights on both sides of an edge, or between edges of one direction.
        const bool isPartOnBothSides = wasPart && isPart(magnitude(sum));
        const bool isPartBetween = turns && directions != 3 && step > kFull + kRoundedSum && isPart(step);
        const bool isPartWithin = turns && shares && (wasPart || step > kRoundedSum);
        if (isPartOnBothSides || isPartBetween || isPartWithin) *row.seen |= kOverlaps;
        if (shares) *row.seen |= kDoubtful;
        directions = 0;
        shares = false;
      }
      directions |= crossing;
      lastDirections = crossing;
      sums.positive = sums.positive || static_cast<std::int32_t>(sum) > kRoundedSum;
      sums.negative = sums.negative || static_cast<std::int32_t>(sum) < -kRoundedSum;
      sums.moreThanOnce = sums.moreThanOnce || magnitude(sum) > kFull + kRoundedSum;
    }
  }
}

// Gives whether all edges are there and few enough.
bool Rasterizer::collectEdgesOfRows() {
  if (edges_.size() == kMostEdges) return false;
  edgesOfRows_.clear();
  const auto rows = static_cast<std::size_t>(area_.height());
  firstOfRow_.assign(rows, 0);
  // For each row the next one that is wanted, itself perhaps: most edges cross none.
  nextRow_.resize(rows + 1);
  nextRow_[rows] = static_cast<std::uint32_t>(rows);
  for (std::size_t y = rows; y-- > 0;)
    nextRow_[y] = (seen_[y] & kOverlaps) != 0 ? static_cast<std::uint32_t>(y) : nextRow_[y + 1];
  for (std::size_t i = 0; i < edges_.size(); ++i) {
    const auto [upper, lower] = std::minmax(edges_[i].y0, edges_[i].y1);
    const auto end = static_cast<std::size_t>((lower - 1) >> kSubpixelBits) + 1;
    for (std::size_t row = nextRow_[static_cast<std::size_t>(upper >> kSubpixelBits)]; row < end;
         row = nextRow_[row + 1]) {
      if (edgesOfRows_.size() == kMostEdgesOfRows) return false;
      edgesOfRows_.push_back({static_cast<std::uint32_t>(i), firstOfRow_[row]});
      firstOfRow_[row] = static_cast<std::uint32_t>(edgesOfRows_.size());
    }
  }
  return true;
}

}  // namespace quellaro
