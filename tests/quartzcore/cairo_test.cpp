// The compositor's pictures beside cairo's of the same layer trees.
#include <gtest/gtest.h>

#include <functional>
#include <numbers>
#include <random>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"
#include "quartzcore/cairo_renderer.h"
#include "quartzcore/pictures.h"

namespace quellaro {
namespace {

constexpr int kSide = 120;

void compareWithCairo(const std::string& name, const CALayer& root, Tolerance tolerance) {
  Bitmap expected(kSide, kSide);
  for (std::uint32_t& pixel : expected.pixels) pixel = 0xffffffff;
  Bitmap actual = expected;
  drawWithCairo(root, expected);
  Compositor().draw(root, actual);
  expectSamePicture(name, expected, actual, tolerance);
}

struct SpecialShape {
  const char* name;
  std::function<void(CGPath&)> draw;
  double lineWidth = 0;  // 0: filled
  CATransform3D transform = CATransform3DIdentity;
};

void polyline(CGPath& path, std::initializer_list<CGPoint> points) {
  bool first = true;
  for (const CGPoint& p : points) {
    if (first)
      path.moveTo(p);
    else
      path.lineTo(p);
    first = false;
  }
}

void circle(CGPath& path, CGPoint c, double r) {
  const double k = r * 0.5522847498;
  path.moveTo({c.x + r, c.y});
  path.cubicTo({c.x + r, c.y + k}, {c.x + k, c.y + r}, {c.x, c.y + r});
  path.cubicTo({c.x - k, c.y + r}, {c.x - r, c.y + k}, {c.x - r, c.y});
  path.cubicTo({c.x - r, c.y - k}, {c.x - k, c.y - r}, {c.x, c.y - r});
  path.cubicTo({c.x + k, c.y - r}, {c.x + r, c.y - k}, {c.x + r, c.y});
  path.close();
}

void star(CGPath& path) { polyline(path, {{60, 10}, {92, 105}, {8, 45}, {112, 45}, {28, 105}}); }
void zigzag(CGPath& path) {
  polyline(path, {{10, 20}, {100, 30}, {15, 45}, {105, 60}, {20, 62}, {100, 64}, {60, 110}});
}
void swing(CGPath& path) {
  path.moveTo({15, 100});
  path.cubicTo({20, -60}, {100, 160}, {105, 20});
}
void cusp(CGPath& path) {
  path.moveTo({20, 90});
  path.cubicTo({120, 10}, {0, 10}, {100, 90});
}

const CATransform3D kUneven = [] {
  CATransform3D t = CATransform3DTranslate(CATransform3DIdentity, 5, 40, 0);
  t = CATransform3DScale(t, 0.9, 0.3, 1);
  return CATransform3DRotateZ(t, 0.4);
}();
const CATransform3D kMirrored = CATransform3DScale(CATransform3DTranslate(CATransform3DIdentity, 120, 0, 0), -1, 1, 1);

const SpecialShape kSpecialShapes[] = {
    {"circle",
     [](CGPath& p) {
       circle(p, {60, 60}, 50);
     }},
    {"ring",
     [](CGPath& p) {
       circle(p, {60, 60}, 50), polyline(p, {{50, 50}, {50, 70}, {70, 70}, {70, 50}});
     }},
    {"star_winds_twice", star},
    {"needle",
     [](CGPath& p) {
       polyline(p, {{0.3, 5}, {119.7, 5.6}, {0.3, 5.2}, {40, 119}, {40.4, 119}});
     }},
    {"slivers",
     [](CGPath& p) {
       for (int i = 0; i < 60; ++i) polyline(p, {{60, 60}, {i * 2.0, 0}, {i * 2.0 + 1, 0}}), p.close();
     }},
    {"beyond_all_sides",
     [](CGPath& p) {
       circle(p, {60, 60}, 75);
     }},
    {"beyond_left",
     [](CGPath& p) {
       polyline(p, {{-500, 10}, {60, 60}, {-900, 110}, {-10, 60}});
     }},
    {"beyond_right",
     [](CGPath& p) {
       polyline(p, {{500, 10}, {60, 60}, {900, 110}, {130, 60}});
     }},
    {"beyond_top",
     [](CGPath& p) {
       polyline(p, {{10, -300}, {60, 60}, {110, -800}});
     }},
    {"huge_curve",
     [](CGPath& p) {
       p.moveTo({-9000, 3000}), p.cubicTo({9000, -9000}, {9000, 9000}, {-9000, -3000});
     }},
    {"far_triangle",
     [](CGPath& p) {
       polyline(p, {{20, 20}, {3e4, 6e4}, {3e4, -3e3}});
     }},
    {"quadratic",
     [](CGPath& p) {
       p.moveTo({10, 110}), p.quadTo({60, -90}, {110, 110});
     }},
    {"miters", zigzag, 5},
    {"wide_zigzag", zigzag, 30},
    {"star_stroke", star, 3},
    {"closed_star_stroke", [](CGPath& p) { star(p), p.close(); }, 8},
    {"hairline", zigzag, 0.3},
    {"curve_stroke", swing, 9},
    {"wide_curve_stroke", swing, 60},
    {"cusp_stroke", cusp, 12},
    // Curves that meet at an angle whose miter is just within the limit; their last chords meet at one beyond it.
    {"curves_to_a_point",
     [](CGPath& p) {
       p.moveTo({57, 84}), p.cubicTo({85.7, 111}, {44.83, 51}, {29, 52}), p.cubicTo({126, 72}, {86, 59}, {46.46, 57});
     },
     6},
    {"closed_curve_to_a_point",
     [](CGPath& p) {
       p.moveTo({29, 52}), p.cubicTo({126, 72}, {86, 99}, {57, 84}), p.cubicTo({85.7, 111}, {44.83, 51}, {29, 52});
       p.close();
     },
     6},
    {"back_and_forth",
     [](CGPath& p) {
       polyline(p, {{20, 60}, {100, 60}, {40, 60}});
     },
     14},
    {"after_close",
     [](CGPath& p) {
       polyline(p, {{20, 20}, {60, 20}, {60, 60}}), p.close(), p.lineTo({20, 110});
     },
     6},
    {"uneven_stroke", swing, 20, kUneven},
    {"uneven_miters", star, 12, kUneven},
    {"mirrored_stroke", zigzag, 8, kMirrored},
    {"degenerate",
     [](CGPath& p) {
       polyline(p, {{60, 60}, {60, 60}, {60, 60}}), p.close(), polyline(p, {{10, 10}});
     },
     20},
    {"repeated_points",
     [](CGPath& p) {
       polyline(p, {{20, 20}, {20, 20}, {90, 20}, {90, 20}, {90, 90}});
     },
     10},
    {"far_stroke",
     [](CGPath& p) {
       polyline(p, {{-3e4, -3e4}, {3e4, 3e4}, {3e4, -3e4}});
     },
     25},
};

// Where edges of one shape run through the same pixel beside each other, coverage adds up and cairo is more exact: that
// is what the greatest difference allows for.
TEST(BesideCairo, SpecialShapes) {
  for (const SpecialShape& special : kSpecialShapes) {
    auto path = std::make_shared<CGPath>();
    special.draw(*path);
    CAShapeLayer layer;
    layer.setPath(path);
    layer.setTransform(special.transform);
    layer.setLineWidth(special.lineWidth);
    if (special.lineWidth > 0)
      layer.setStrokeColor(CGColor{0, 0, 0.5, 1});
    else
      layer.setFillColor(CGColor{0.8, 0, 0, 1});
    compareWithCairo(special.name, layer, {0.3, 135});
  }
}

class RandomTree {
 public:
  explicit RandomTree(std::uint32_t seed) : random_(seed) {}

  std::shared_ptr<CALayer> layer(int depth) {
    std::shared_ptr<CALayer> made = below(5) == 0 ? plain() : shape();
    if (below(2) == 0) {
      CATransform3D t = CATransform3DTranslate(CATransform3DIdentity, between(-15, 15), between(-15, 15), 0);
      t = CATransform3DRotateZ(t, between(0, 2 * std::numbers::pi));
      // Even, because cairo holds the miter limit against the bent angle.
      const double scale = between(0.2, 1.6);
      made->setTransform(CATransform3DScale(t, below(2) == 0 ? scale : -scale, scale, 1));
    }
    for (int i = below(4); i > 0 && depth > 0; --i) made->addSublayer(layer(depth - 1));
    return made;
  }

 private:
  int below(int end) { return static_cast<int>(random_() % static_cast<std::uint32_t>(end)); }
  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(random_()) / 4294967296.0);
  }
  CGPoint point() { return {between(-40, 160), between(-40, 160)}; }
  CGColor color() { return {between(0, 1), between(0, 1), between(0, 1), below(2) == 0 ? 1 : between(0, 1)}; }

  std::shared_ptr<CALayer> plain() {
    auto made = std::make_shared<CALayer>();
    made->setBounds({point(), {between(1, 90), between(1, 90)}});
    made->setPosition(point());
    made->setBackgroundColor(color());
    return made;
  }

  std::shared_ptr<CALayer> shape() {
    auto path = std::make_shared<CGPath>();
    for (int contours = 1 + below(2); contours > 0; --contours) {
      path->moveTo(point());
      for (int i = 2 + below(5); i > 0; --i) {
        const int kind = below(3);
        if (kind == 0) path->lineTo(point());
        if (kind == 1) path->quadTo(point(), point());
        if (kind == 2) path->cubicTo(point(), point(), point());
      }
      if (below(2) == 0) path->close();
    }
    auto made = std::make_shared<CAShapeLayer>();
    made->setPath(path);
    if (below(3) != 0) made->setFillColor(color());
    if (below(2) == 0) {
      made->setStrokeColor(color());
      made->setLineWidth(between(0.2, 14));
    }
    return made;
  }

  std::mt19937 random_;
};

TEST(BesideCairo, RandomTrees) {
  for (std::uint32_t seed = 1; seed <= 150; ++seed)
    compareWithCairo("tree_" + std::to_string(seed), *RandomTree(seed).layer(3), {0.8, 255});
}

}  // namespace
}  // namespace quellaro
