// Where edges of one outline meet, against brute force.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"
#include "quartzcore/brute_force.h"
#include "quartzcore/cairo_renderer.h"
#include "quartzcore/pictures.h"

namespace quellaro {
namespace {

constexpr CGColor kBlack{0, 0, 0, 1};

std::shared_ptr<CGPath> pathOf(const Contours& contours, bool closed) {
  auto path = std::make_shared<CGPath>();
  for (const auto& contour : contours) {
    path->moveTo(contour.front());
    for (std::size_t i = 1; i < contour.size(); ++i) path->lineTo(contour[i]);
    if (closed) path->close();
  }
  return path;
}

Bitmap drawn(const CALayer& layer, int side) {
  Bitmap bitmap(side, side);
  Compositor().draw(layer, bitmap);
  return bitmap;
}

class Random {
 public:
  explicit Random(unsigned seed) : random_(seed) {}
  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(random_()) / 4294967296.0);
  }
  int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  CGPoint point(double low, double high) {
    const double x = between(low, high);
    return {x, between(low, high)};
  }

 private:
  std::mt19937 random_;
};

CAShapeLayer strokeOf(const Contours& lines, double width) {
  CAShapeLayer layer;
  layer.setPath(pathOf(lines, false));
  layer.setStrokeColor(kBlack);
  layer.setLineWidth(width);
  return layer;
}

Contours scaled(Contours contours, double by) {
  for (auto& contour : contours)
    for (CGPoint& p : contour) p = {p.x * by, p.y * by};
  return contours;
}

TEST(Strokes, AreTheUnionOfTheirPieces) {
  const struct {
    const char* name;
    Contours lines;
    double width;
  } cases[] = {
      {"short_after_long", {{{15, 15}, {80, 55}, {79, 55}}}, 14},
      {"long_after_short", {{{79, 55}, {80, 55}, {15, 15}}}, 14},
      {"short_between_long", {{{10, 20}, {80, 50}, {79, 52}, {15, 80}}}, 16},
      {"folds_back", {{{20, 60}, {80, 60}, {40, 60}, {60, 30}}}, 14},
      {"tight_corners", {{{10, 50}, {50, 20}, {52, 80}, {54, 20}, {90, 70}}}, 9},
      {"stairs", {{{20, 20}, {24, 20}, {24, 24}, {28, 24}, {28, 28}, {70, 28}, {70, 80}}}, 12},
  };
  for (const auto& c : cases)
    expectSamePicture(c.name, bruteForce(strokePieces(scaled(c.lines, 2.4), c.width * 2.4), 240, 240),
                      drawn(strokeOf(scaled(c.lines, 2.4), c.width * 2.4), 240), {0.05, 130});
}

TEST(Strokes, FiveHundredRandomOnesAreTheUnionOfTheirPieces) {
  constexpr int kSide = 48;
  for (unsigned seed = 1; seed <= 500; ++seed) {
    Random random(seed);
    std::vector<CGPoint> line{random.point(8, 40)};
    for (int i = 2 + random.below(4); i > 0; --i) {
      // Some ways are short, and some lead back.
      CGPoint next = random.point(8, 40);
      if (random.below(3) == 0) next = {line.back().x + random.between(-2, 2), line.back().y + random.between(0.1, 2)};
      line.push_back(next);
    }
    const double width = random.between(0.5, 16);
    expectSamePicture("stroke_" + std::to_string(seed), bruteForce(strokePieces({line}, width), kSide, kSide),
                      drawn(strokeOf({line}, width), kSide), {0.5, 150});
  }
}

}  // namespace
}  // namespace quellaro
