#include <gtest/gtest.h>

#include <random>

#include "platform/quartzcore/raster/painter.h"

namespace quellaro {
namespace {

struct NamedSpans {
  const char* name;
  const SpanFunctions& spans;
};

const NamedSpans kFastSpans[] = {{"vector", vectorSpans()}, {"fastest", fastestSpans()}};

struct RowBuffers {
  std::vector<std::uint32_t> pixels, cells;
  std::vector<std::uint64_t> touched;
  bool operator==(const RowBuffers&) const = default;

  SweepRow row(std::size_t width) {
    return {pixels.data(), width, cells.data(), cells.size() / kBlockPixels, touched.data()};
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
    start.touched.resize((blocks + kWordBits - 1) / kWordBits);
    // One pixel beyond the row shows whether it is left alone.
    for (std::size_t i = 0; i <= width; ++i)
      start.pixels.push_back(below(2) == 0 ? 0 : static_cast<std::uint32_t>(random()));
    for (std::size_t block = 0; block < blocks; ++block) {
      if (below(3) != 0) continue;
      start.touched[block / kWordBits] |= std::uint64_t{1} << block % kWordBits;
      for (std::size_t i = 0; i < kBlockPixels; ++i)
        start.cells[block * kBlockPixels + i] = (below(5) - 2) * (below(2) == 0 ? kFullCover : below(kFullCover));
    }
    const std::uint32_t alpha = below(3) == 0 ? 255 : below(256);
    const Paint paint{alpha << 24 | below(alpha + 1) << 16 | below(alpha + 1) << 8 | below(alpha + 1)};
    const std::uint32_t sum = (below(5) - 2) * kFullCover;
    RowBuffers expected = start;
    scalarSpans().sweepRow(expected.row(width), paint, sum);
    for (const NamedSpans& fast : kFastSpans) {
      RowBuffers actual = start;
      fast.spans.sweepRow(actual.row(width), paint, sum);
      ASSERT_EQ(actual, expected) << fast.name << ", round " << round;
    }
    EXPECT_EQ(expected.cells, std::vector<std::uint32_t>(expected.cells.size()));
    EXPECT_EQ(expected.touched, std::vector<std::uint64_t>(expected.touched.size()));
  }
}

TEST(Spans, EverySetPaintsTheSamePictures) {
  CGPath path;
  path.moveTo({-20, 10});
  path.cubicTo({300, -200}, {-90, 400}, {130, 40});
  path.quadTo({60, 90}, {5.5, 3.25});
  for (const int width : {1, 7, 100, 131}) {
    Bitmap expected(width, 90);
    const auto drawTwice = [&path](Bitmap& bitmap, const SpanFunctions& spans) {
      Painter painter(spans);
      painter.fill(bitmap, path, Affine{}, {0.2, 0.5, 0.9, 0.7});
      painter.stroke(bitmap, path, Affine{1, 0.2, -0.3, 1, 5, 5}, 6, {0.9, 0.1, 0, 1});
    };
    drawTwice(expected, scalarSpans());
    for (const NamedSpans& fast : kFastSpans) {
      Bitmap actual(width, 90);
      drawTwice(actual, fast.spans);
      EXPECT_EQ(actual, expected) << fast.name << ", width " << width;
    }
  }
}

}  // namespace
}  // namespace quellaro
