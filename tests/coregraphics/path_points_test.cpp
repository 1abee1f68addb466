#include "platform/coregraphics/path_points.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace quellaro {
namespace {

void expectKeptExactly(const std::vector<CGPoint>& points, std::size_t bytesEach) {
  std::vector<std::byte> room(points.size() * sizeof(CGPoint) * 2 + 64);
  std::pmr::monotonic_buffer_resource memory(room.data(), room.size(), std::pmr::null_memory_resource());
  const PathPoints kept = PathPoints::keep(points, memory);
  ASSERT_EQ(kept.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const CGPoint point = kept[i];
    EXPECT_EQ(std::memcmp(&point, &points[i], sizeof point), 0) << points[i].x << ' ' << points[i].y;
  }
  const auto* const next = static_cast<std::byte*>(memory.allocate(1, 1));
  EXPECT_EQ(static_cast<std::size_t>(next - room.data()), points.size() * bytesEach);
}

TEST(PathPoints, ComeBackToTheBitAndAsSmallAsTheyCanBe) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const std::vector<CGPoint>& tooFine :
       {std::vector<CGPoint>{{-0.0, 1}}, {{1.0 / 3, 0}}, {{2147483648, 0}}, {{kInfinity, -kInfinity}, {kNan, 0}}})
    expectKeptExactly(tooFine, 16);
  expectKeptExactly({}, 0);
  // The first few fit with fewer decimals than the rest.
  expectKeptExactly({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5.25, 5}}, 8);
  std::minstd_rand random(3);
  for (const double power : {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6}) {
    std::vector<CGPoint> points;
    const auto number = [&] { return (static_cast<double>(random()) - 1073741823.0) / power; };
    for (int i = 0; i < 1000; ++i) points.push_back({number(), number()});
    expectKeptExactly(points, 8);
  }
}

}  // namespace
}  // namespace quellaro
