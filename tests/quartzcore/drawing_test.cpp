// Pixels that can be told exactly, and trees that nobody honest makes: they cost time and memory in proportion to their
// size, and nothing breaks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"

namespace quellaro {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr CGColor kRed{1, 0, 0, 1};

Bitmap drawn(const CALayer& root, int width = 40, int height = 30) {
  Bitmap bitmap(width, height);
  Compositor().draw(root, bitmap);
  return bitmap;
}

bool isAll(const Bitmap& bitmap, std::uint32_t pixel) {
  return std::all_of(bitmap.pixels.begin(), bitmap.pixels.end(), [pixel](std::uint32_t p) { return p == pixel; });
}

void withPath(CAShapeLayer& layer, CGPath path) {
  layer.setPath(std::make_shared<CGPath>(std::move(path)));
  layer.setFillColor(kRed);
}

CGPath triangle(CGPoint a, CGPoint b, CGPoint c) {
  CGPath path;
  path.moveTo(a);
  path.lineTo(b);
  path.lineTo(c);
  path.close();
  return path;
}

TEST(Drawing, AlphaAndCoverageBlend) {
  const struct {
    double width;
    CGColor color;
    std::uint32_t below;
    std::uint32_t expected;
  } cases[] = {
      {1, {1, 0, 0, 1}, 0xff00ff00, 0xffff0000},   {1, {1, 0, 0, 0.5}, 0, 0x80800000},
      {1, {1, 0, 0, 0.5}, 0xff00ff00, 0xff807f00}, {0.5, {1, 1, 1, 1}, 0xff000000, 0xff808080},
      {0.5, {0, 0, 1, 1}, 0, 0x80000080},          {1, {1, 1, 1, 0}, 0x12345678, 0x12345678},
      {1, {7, -1, NAN, 2}, 0, 0xffff0000},
  };
  for (const auto& c : cases) {
    CALayer layer;
    layer.setBounds({{0, 0}, {c.width, 1}});
    layer.setPosition({c.width / 2, 0.5});
    layer.setBackgroundColor(c.color);
    Bitmap bitmap(1, 1);
    bitmap.pixels[0] = c.below;
    Compositor().draw(layer, bitmap);
    EXPECT_EQ(bitmap.pixels[0], c.expected) << std::hex << c.expected;
  }
}

TEST(Drawing, TheSameCompositorDrawsPicturesOfAllSizes) {
  Compositor compositor;
  CAShapeLayer layer;
  withPath(layer, triangle({0, 0}, {1e9, 0}, {0, 1e9}));
  for (const int side : {1, 3, 64, 5, 700, 0, 2}) {
    Bitmap bitmap(side, side + 1);
    compositor.draw(layer, bitmap);
    EXPECT_TRUE(isAll(bitmap, 0xffff0000)) << side;
  }
}

TEST(Drawing, CoordinatesFarOutsideStillEncloseThePicture) {
  for (const double far : {1e5, 1e9, 1e30, 1e300, 1e308, kInfinity}) {
    CAShapeLayer layer;
    withPath(layer, triangle({-far, -far}, {far, -far}, {0, far}));
    EXPECT_TRUE(isAll(drawn(layer), 0xffff0000)) << far;
    for (const double side : {-far, far}) {
      withPath(layer, triangle({side, -far}, {side, far}, {side / 2, 3}));
      EXPECT_TRUE(isAll(drawn(layer), 0)) << side;
      withPath(layer, triangle({-far, side}, {far, side}, {3, side / 2}));
      EXPECT_TRUE(isAll(drawn(layer), 0)) << side;
    }
  }
}

TEST(Drawing, WhatIsNotANumberDrawsNothing) {
  for (int place = 0; place < 6; ++place) {
    double numbers[] = {1, 1, 30, 1, 1, 30};
    numbers[place] = NAN;
    CAShapeLayer layer;
    layer.setStrokeColor(kRed);
    withPath(layer, triangle({numbers[0], numbers[1]}, {numbers[2], numbers[3]}, {numbers[4], numbers[5]}));
    EXPECT_TRUE(isAll(drawn(layer), 0)) << place;
  }
  for (const double number : {static_cast<double>(NAN), kInfinity, -kInfinity}) {
    CAShapeLayer layer;
    withPath(layer, triangle({1, 1}, {30, 1}, {1, 30}));
    CATransform3D transform;
    transform.m11 = number;
    layer.setTransform(transform);
    EXPECT_TRUE(isAll(drawn(layer), 0)) << number;
    CALayer plain;
    plain.setBackgroundColor(kRed);
    plain.setBounds({{0, number}, {10, 10}});
    EXPECT_TRUE(isAll(drawn(plain), 0)) << number;
  }
}

TEST(Drawing, StrokesOfAnyWidth) {
  CAShapeLayer layer;
  CGPath path = triangle({10, 10}, {20, 10}, {10, 20});
  path.cubicTo({30, 10}, {0, 10}, {20, 20});
  withPath(layer, std::move(path));
  layer.setFillColor(std::nullopt);
  layer.setStrokeColor(kRed);
  for (const double width : {1e3, 1e9, 1e300, kInfinity}) {
    layer.setLineWidth(width);
    EXPECT_TRUE(isAll(drawn(layer), 0xffff0000)) << width;
  }
  for (const double width : {5e-324, 1e-300, 0.0, -0.0, -1e300, static_cast<double>(NAN), -kInfinity}) {
    layer.setLineWidth(width);
    EXPECT_TRUE(isAll(drawn(layer), 0)) << width;
  }
}

TEST(Drawing, AStrokeWiderThanItsCurveHasNoHole) {
  CGPath drop;
  drop.moveTo({6, 5});
  drop.cubicTo({6, 6.4}, {4, 6.4}, {4, 5});
  drop.cubicTo({4, 3.6}, {6, 3.6}, {6, 5});
  drop.close();
  CAShapeLayer layer;
  layer.setPath(std::make_shared<CGPath>(drop));
  layer.setStrokeColor(kRed);
  layer.setLineWidth(8);
  const Bitmap bitmap = drawn(layer, 10, 10);
  for (int y = 2; y < 8; ++y)
    for (int x = 2; x < 8; ++x) EXPECT_EQ(bitmap.row(y)[x], 0xffff0000) << x << ", " << y;
}

// Large pictures of wide strokes: a curve's first and last chord point elsewhere than it does.
TEST(Drawing, CurvesBeginAndEndAcrossTheirDirection) {
  constexpr double k = 0.5522847498307936;
  CGPath arch;
  arch.moveTo({200, 600});
  arch.cubicTo({200, 300}, {800, 300}, {800, 600});
  CGPath ring;  // not closed
  ring.moveTo({900, 500});
  ring.cubicTo({900, 500 + 400 * k}, {500 + 400 * k, 900}, {500, 900});
  ring.cubicTo({500 - 400 * k, 900}, {100, 500 + 400 * k}, {100, 500});
  ring.cubicTo({100, 500 - 400 * k}, {500 - 400 * k, 100}, {500, 100});
  ring.cubicTo({500 + 400 * k, 100}, {900, 500 - 400 * k}, {900, 500});
  const struct {
    CGPath path;
    int left, right, end;
    std::uint32_t beyond;
  } cases[] = {{arch, 51, 349, 600, 0}, {arch, 651, 949, 600, 0}, {ring, 751, 999, 500, 0xffff0000}};
  for (const auto& c : cases) {
    CAShapeLayer layer;
    layer.setPath(std::make_shared<CGPath>(c.path));
    layer.setStrokeColor(kRed);
    layer.setLineWidth(300);
    const Bitmap bitmap = drawn(layer, 1000, 1000);
    for (int x = c.left; x < c.right; ++x) {
      ASSERT_EQ(bitmap.row(c.end - 1)[x], 0xffff0000) << x;
      ASSERT_EQ(bitmap.row(c.end)[x], c.beyond) << x;
    }
  }
}

// A handle that rounding has left tells no direction.
TEST(Drawing, ACurveEndsAsIfItsTinyHandlesWereNone) {
  const auto stroked = [](CGPoint firstHandle, CGPoint lastHandle) {
    CGPath path;
    path.moveTo({100, 240});
    path.cubicTo(firstHandle, lastHandle, {380, 100});
    CAShapeLayer layer;
    layer.setPath(std::make_shared<CGPath>(path));
    layer.setStrokeColor(kRed);
    layer.setLineWidth(120);
    return drawn(layer, 500, 350);
  };
  const auto greatestDifference = [](const Bitmap& a, const Bitmap& b) {
    int greatest = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
      greatest =
          std::max(greatest, std::abs(static_cast<int>(a.pixels[i] >> 24) - static_cast<int>(b.pixels[i] >> 24)));
    return greatest;
  };
  const Bitmap start = stroked({100, 240}, {300, 240});
  const Bitmap end = stroked({180, 240}, {380, 100});
  for (const CGPoint off : {CGPoint{-0.001, 0}, CGPoint{0, 0.001}, CGPoint{0, -0.001}, CGPoint{0.001, 0.001}}) {
    EXPECT_LT(greatestDifference(stroked({100 + off.x, 240 + off.y}, {300, 240}), start), 8) << off.x << ", " << off.y;
    EXPECT_LT(greatestDifference(stroked({180, 240}, {380 + off.x, 100 + off.y}), end), 8) << off.x << ", " << off.y;
  }
}

// Every number that makes trouble, in every place. The sanitizers judge; the picture may be anything.
TEST(Drawing, AnyMixtureOfNumbersIsDrawnInTime) {
  const double numbers[] = {0,    -0.0, 1,     -1,   0.5,    20,      1e-308,   1e-30,     255.999,   1e4,
                            -1e7, 3e9,  -9e15, 1e60, -1e150, 1.7e308, -1.7e308, kInfinity, -kInfinity};
  std::mt19937 random(3);
  const auto number = [&] { return numbers[random() % std::size(numbers)]; };
  const auto point = [&] { return CGPoint{number(), number()}; };
  for (int round = 0; round < 3000; ++round) {
    CGPath path;
    path.moveTo(point());
    for (int i = 0; i < 6; ++i) {
      const auto kind = random() % 4;
      if (kind == 0) path.lineTo(point());
      if (kind == 1) path.cubicTo(point(), point(), point());
      if (kind == 2) path.quadTo(point(), point());
      if (kind == 3) path.close();
    }
    auto layer = std::make_shared<CAShapeLayer>();
    withPath(*layer, std::move(path));
    layer->setStrokeColor(kRed);
    layer->setLineWidth(std::fabs(number()));
    CATransform3D transform;
    if (random() % 2 == 0)
      transform = {number(), number(), 0, 0, number(), number(), 0, 0, 0, 0, 1, 0, number(), number(), 0, 1};
    layer->setTransform(transform);
    CALayer root;
    root.setBounds({point(), {number(), number()}});
    root.setPosition(point());
    root.setBackgroundColor(kRed);
    root.addSublayer(layer);
    drawn(root);
  }
}

TEST(Drawing, PathsOfMillionsOfPointsFarOutsideCostNoRows) {
  CGPath path;
  path.moveTo({-50, 0});
  for (int i = 0; i < 2000000; ++i) path.lineTo({-50.0 - i % 7, i % 2 == 0 ? 1e6 : -1e6});
  CAShapeLayer layer;
  withPath(layer, std::move(path));
  layer.setStrokeColor(kRed);
  EXPECT_TRUE(isAll(drawn(layer, 4, 4000), 0));
}

TEST(Drawing, AMillionNestedLayers) {
  auto root = std::make_shared<CALayer>();
  CALayer* innermost = root.get();
  for (int i = 0; i < 1000000; ++i) {
    auto next = std::make_shared<CAShapeLayer>();
    CALayer* const pointer = next.get();
    innermost->addSublayer(std::move(next));
    innermost = pointer;
  }
  innermost->setBounds({{0, 0}, {200, 200}});
  innermost->setBackgroundColor(kRed);
  EXPECT_TRUE(isAll(drawn(*root), 0xffff0000));
}

TEST(Drawing, EmptySurfacesAndEmptyPaths) {
  CAShapeLayer layer;
  layer.setStrokeColor(kRed);
  EXPECT_TRUE(isAll(drawn(layer), 0));
  withPath(layer, {});
  EXPECT_TRUE(isAll(drawn(layer), 0));
  withPath(layer, triangle({0, 0}, {9, 0}, {0, 9}));
  drawn(layer, 5, 0);
  drawn(layer, 0, 5);
}

// A surface of more pixels than are swept at a time.
TEST(Drawing, BandsMeetWithoutASeam) {
  CAShapeLayer layer;
  withPath(layer, triangle({0, 0}, {16384, 0}, {0, 1100}));
  layer.setFillColor(CGColor{0, 0, 0, 0.5});
  layer.setStrokeColor(kRed);
  layer.setLineWidth(3);
  const Bitmap bitmap = drawn(layer, 16384, 700);
  for (int y = 10; y < 690; ++y) ASSERT_EQ(bitmap.row(y)[20], 0x80000000u) << y;
}

}  // namespace
}  // namespace quellaro
