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

constexpr CGColor kWhite{1, 1, 1, 1};

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
  layer.setStrokeColor(kWhite);
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
                      drawn(strokeOf(scaled(c.lines, 2.4), c.width * 2.4), 240), {0.05, 40});
}

TEST(Strokes, FiveHundredRandomOnesAreTheUnionOfTheirPieces) {
  constexpr int kStrokeSide = 48;
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
    expectSamePicture("stroke_" + std::to_string(seed),
                      bruteForce(strokePieces({line}, width), kStrokeSide, kStrokeSide),
                      drawn(strokeOf({line}, width), kStrokeSide), {0.5, 64});
  }
}

using Outline = std::vector<CGPoint>;

Outline disc(Random& random, CGPoint middle, double radius) {
  Outline outline;
  const double phase = random.between(0, 1);
  for (int i = 0; i < 24; ++i) {
    const double angle = 2 * std::numbers::pi * i / 24 + phase;
    outline.push_back({middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)});
  }
  return outline;
}

Outline eitherWay(Random& random, Outline outline) {
  if (random.below(2) == 0) std::reverse(outline.begin(), outline.end());
  return outline;
}

constexpr int kSide = 32;
CGPoint anywhere(Random& random) { return random.point(1, kSide - 1); }

Contours sharedEdges(Random& random) {
  const CGPoint a = anywhere(random);
  const CGPoint b = anywhere(random);
  return {eitherWay(random, {a, b, anywhere(random)}), eitherWay(random, {a, b, anywhere(random), anywhere(random)})};
}

Contours retracedOutlines(Random& random) {
  const Outline outline = disc(random, random.point(12, 20), random.between(1, 11));
  Contours contours{outline};
  for (int i = 1 + random.below(3); i > 0; --i) contours.push_back(eitherWay(random, outline));
  return contours;
}

Contours wedges(Random& random) {
  const CGPoint middle = random.point(14, 18);
  const Outline rim = disc(random, middle, 13);
  Contours contours;
  for (std::size_t i = 0; i < rim.size(); i += 3)
    contours.push_back(eitherWay(random, {middle, rim[i], rim[i + 1], rim[i + 2], rim[(i + 3) % rim.size()]}));
  return contours;
}

Contours stars(Random& random) {
  Outline star;
  for (int i = 5 + random.below(4); i > 0; --i) star.push_back(anywhere(random));
  return {star};
}

Contours hairlines(Random& random) {
  Contours contours;
  for (int i = 2 + random.below(4); i > 0; --i) {
    const CGPoint a = anywhere(random);
    const CGPoint b = anywhere(random);
    const CGPoint off{random.between(-0.4, 0.4), random.between(-0.4, 0.4)};
    contours.push_back(eitherWay(random, {a, b, {b.x + off.x, b.y + off.y}, {a.x + off.x, a.y + off.y}}));
    if (random.below(2) == 0) contours.push_back(eitherWay(random, contours.back()));
  }
  return contours;
}

// Nothing but what is level: edges that add to the same pixels far from one another.
Contours levelBars(Random& random) {
  Contours contours;
  for (int i = 2 + random.below(2); i > 0; --i) {
    const CGPoint a = anywhere(random);
    const CGPoint b{anywhere(random).x, 16 + random.between(-1, 1)};
    contours.push_back(eitherWay(random, {a, {b.x, a.y}, b, {a.x, b.y}}));
  }
  return contours;
}

// No worse than cairo on the average of each class, and no pixel far off.
TEST(EdgesThatMeet, EncloseWhatTheyWindAround) {
  const struct {
    const char* name;
    Contours (*make)(Random&);
  } classes[] = {{"shared_edges", sharedEdges}, {"retraced", retracedOutlines}, {"wedges", wedges}, {"stars", stars},
                 {"hairlines", hairlines},      {"level_bars", levelBars}};
  for (const auto& c : classes) {
    double ours = 0;
    double cairos = 0;
    for (unsigned seed = 1; seed <= 500; ++seed) {
      Random random(seed);
      const Contours contours = c.make(random);
      CAShapeLayer layer;
      layer.setPath(pathOf(contours, true));
      layer.setFillColor(kWhite);
      const Bitmap expected = bruteForce(contours, kSide, kSide);
      const Bitmap actual = drawn(layer, kSide);
      Bitmap cairo(kSide, kSide);
      drawWithCairo(layer, cairo);
      expectSamePicture(c.name + std::to_string(seed), expected, actual, {1, 24});
      ours += differenceOf(expected, actual).mean / 500;
      cairos += differenceOf(expected, cairo).mean / 500;
    }
    EXPECT_LE(ours, cairos) << c.name;
  }
}

}  // namespace
}  // namespace quellaro
