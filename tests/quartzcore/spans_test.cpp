#include <gtest/gtest.h>

#include <random>

#include "platform/quartzcore/raster/painter.h"

namespace quellaro {
namespace {

struct RowBuffers {
  std::vector<std::uint32_t> pixels, cells;
  std::vector<std::uint64_t> marks;
  bool operator==(const RowBuffers&) const = default;

  void sweep(const SpanFunctions& spans, std::size_t width, const Paint& paint, std::int32_t winding) {
    spans.sweep(
        {pixels.data(), pixels.size(), width, 1, cells.data(), cells.size(), marks.data(), marks.size() / 2, &winding},
        paint);
  }
};

TEST(Spans, EverySetSweepsARowLikeTheScalarOne) {
  std::mt19937 random(1);
  const auto below = [&random](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
  for (int round = 0; round < 20000; ++round) {
    const std::size_t width = below(round % 10 == 0 ? 600 : 30);
    const std::size_t blocks = (width + 2 + kBlockPixels - 1) / kBlockPixels;
    RowBuffers start;
    start.cells.resize(blocks * kBlockPixels);
    start.marks.resize(2 * ((start.cells.size() + kWordBits - 1) / kWordBits));
    // One pixel beyond the row shows whether it is left alone.
    for (std::size_t i = 0; i <= width; ++i)
      start.pixels.push_back(below(2) == 0 ? 0 : static_cast<std::uint32_t>(random()));
    for (std::size_t x = 0; x <= width; ++x) {
      if (below(9) != 0) continue;
      start.marks[2 * (x / kWordBits) + below(2)] |= std::uint64_t{1} << x % kWordBits;
      for (const std::size_t cell : {x, x + 1})
        start.cells[cell] = (below(5) - 2) * (below(2) == 0 ? kFullCover : below(kFullCover));
    }
    const std::uint32_t alpha = below(3) == 0 ? 255 : below(256);
    const Paint paint{alpha << 24 | below(alpha + 1) << 16 | below(alpha + 1) << 8 | below(alpha + 1)};
    const auto winding = static_cast<std::int32_t>(below(5)) - 2;
    RowBuffers expected = start;
    expected.sweep(scalarSpans(), width, paint, winding);
    for (const SpanFunctions* fast : {&vectorSpans(), &fastestSpans()}) {
      RowBuffers actual = start;
      actual.sweep(*fast, width, paint, winding);
      ASSERT_EQ(actual, expected) << "round " << round;
    }
    EXPECT_EQ(expected.cells, std::vector<std::uint32_t>(expected.cells.size()));
    EXPECT_EQ(expected.marks, std::vector<std::uint64_t>(expected.marks.size()));
  }
}

}  // namespace
}  // namespace quellaro
