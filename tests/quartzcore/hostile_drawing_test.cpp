// Trees that nobody honest makes: they cost time and memory in proportion to their size, and nothing breaks.
#include <gtest/gtest.h>

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
  for (const std::uint32_t p : bitmap.pixels)
    if (p != pixel) return false;
  return true;
}

CAShapeLayer& withPath(CAShapeLayer& layer, CGPath path) {
  layer.setPath(std::make_shared<CGPath>(std::move(path)));
  layer.setFillColor(kRed);
  return layer;
}

CGPath triangle(CGPoint a, CGPoint b, CGPoint c) {
  CGPath path;
  path.moveTo(a);
  path.lineTo(b);
  path.lineTo(c);
  path.close();
  return path;
}

TEST(HostileDrawing, CoordinatesFarOutsideStillEncloseThePicture) {
  for (const double far : {1e5, 1e9, 1e30, 1e300, 1e308, kInfinity}) {
    CAShapeLayer layer;
    CGPath path;
    path.moveTo({-far, -far});
    path.lineTo({far, -far});
    path.lineTo({far, far});
    path.lineTo({-far, far});
    EXPECT_TRUE(isAll(drawn(withPath(layer, std::move(path))), 0xffff0000)) << far;
    for (const double sign : {-1.0, 1.0}) {
      EXPECT_TRUE(
          isAll(drawn(withPath(layer, triangle({sign * far, -far}, {sign * far, far}, {sign * far / 2, 3}))), 0))
          << far;
      EXPECT_TRUE(
          isAll(drawn(withPath(layer, triangle({-far, sign * far}, {far, sign * far}, {3, sign * far / 2}))), 0))
          << far;
    }
  }
}

TEST(HostileDrawing, WhatIsNotANumberDrawsNothing) {
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

TEST(HostileDrawing, StrokesOfAnyWidth) {
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

// Every number that makes trouble, in every place. The sanitizers judge; the picture may be anything.
TEST(HostileDrawing, AnyMixtureOfNumbersIsDrawnInTime) {
  const double numbers[] = {0,    -0.0, 1,     -1,   0.5,    20,      1e-308,   1e-30,     255.999,   1e4,
                            -1e7, 3e9,  -9e15, 1e60, -1e150, 1.7e308, -1.7e308, kInfinity, -kInfinity};
  std::mt19937 random(3);
  const auto number = [&] { return numbers[random() % std::size(numbers)]; };
  const auto point = [&] { return CGPoint{number(), number()}; };
  for (int round = 0; round < 3000; ++round) {
    CGPath path;
    path.moveTo(point());
    for (int i = 0; i < 6; ++i) {
      switch (random() % 4) {
        case 0:
          path.lineTo(point());
          break;
        case 1:
          path.cubicTo(point(), point(), point());
          break;
        case 2:
          path.quadTo(point(), point());
          break;
        default:
          path.close();
          break;
      }
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

TEST(HostileDrawing, PathsOfMillionsOfPointsFarOutsideCostNoRows) {
  CGPath path;
  path.moveTo({-50, 0});
  for (int i = 0; i < 2000000; ++i) path.lineTo({-50.0 - i % 7, i % 2 == 0 ? 1e6 : -1e6});
  CAShapeLayer layer;
  withPath(layer, std::move(path));
  layer.setStrokeColor(kRed);
  EXPECT_TRUE(isAll(drawn(layer, 4, 4000), 0));
}

TEST(HostileDrawing, AMillionNestedLayers) {
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

TEST(HostileDrawing, EmptySurfacesAndEmptyPaths) {
  CAShapeLayer layer;
  EXPECT_TRUE(isAll(drawn(layer), 0));
  withPath(layer, {});
  layer.setStrokeColor(kRed);
  EXPECT_TRUE(isAll(drawn(layer), 0));
  withPath(layer, triangle({0, 0}, {9, 0}, {0, 9}));
  EXPECT_TRUE(drawn(layer, 0, 0).pixels.empty());
  EXPECT_TRUE(drawn(layer, 5, 0).pixels.empty());
  EXPECT_TRUE(drawn(layer, 0, 5).pixels.empty());
}

// A surface of more pixels than are swept at a time.
TEST(HostileDrawing, BandsMeetWithoutASeam) {
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
