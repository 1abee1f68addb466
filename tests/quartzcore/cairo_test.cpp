// The compositor's pictures beside cairo's of the same layer trees.
#include <gtest/gtest.h>

#include <numbers>
#include <random>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"
#include "quartzcore/cairo_renderer.h"
#include "quartzcore/pictures.h"
#include "svg/path_data.h"

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

constexpr const char* kStar = "M60 10L92 105 8 45 112 45 28 105";
constexpr const char* kZigzag = "M10 20L100 30 15 45 105 60 20 62 100 64 60 110";
constexpr const char* kSwing = "M15 100C20-60 100 160 105 20";

const CATransform3D kUneven =
    CATransform3DRotateZ(CATransform3DScale(CATransform3DTranslate(CATransform3DIdentity, 5, 40, 0), 0.9, 0.3, 1), 0.4);
const CATransform3D kMirrored = CATransform3DScale(CATransform3DTranslate(CATransform3DIdentity, 120, 0, 0), -1, 1, 1);

struct SpecialShape {
  const char* name;
  const char* data;
  double lineWidth = 0;  // 0: filled
  CATransform3D transform = CATransform3DIdentity;
};

const SpecialShape kSpecialShapes[] = {
    {"ring",
     "M110 60C110 87.6 87.6 110 60 110C32.4 110 10 87.6 10 60C10 32.4 32.4 10 60 10C87.6 10 110 32.4 110 60Z"
     "M50 50L50 70 70 70 70 50"},
    {"star_winds_twice", kStar},
    {"needle", "M.3 5L119.7 5.6 .3 5.2 40 119 40.4 119"},
    {"slivers", "M60 60L0 0 1 0ZM60 60L2 0 3 0ZM60 60L4 0 5 0ZM60 60L6 0 7 0ZM60 60L8 0 9 0ZM60 60L10 0 11 0Z"},
    {"beyond_left", "M-500 10L60 60-900 110-10 60"},
    {"beyond_right", "M500 10L60 60 900 110 130 60"},
    {"beyond_top", "M10-300L60 60 110-800"},
    {"huge_curve", "M-9000 3000C9000-9000 9000 9000-9000-3000"},
    {"far_triangle", "M20 20L30000 60000 30000-3000"},
    {"quadratic", "M10 110Q60-90 110 110"},
    {"miters", kZigzag, 5},
    {"wide_zigzag", kZigzag, 30},
    {"closed_star_stroke", "M60 10L92 105 8 45 112 45 28 105Z", 8},
    {"hairline", kZigzag, 0.3},
    {"wide_curve_stroke", kSwing, 60},
    {"cusp_stroke", "M20 90C120 10 0 10 100 90", 12},
    // Curves that meet at an angle whose miter is just within the limit; their last chords meet at one beyond it.
    {"curves_to_a_point", "M57 84C85.7 111 44.83 51 29 52C126 72 86 59 46.46 57", 6},
    {"closed_curve_to_a_point", "M29 52C126 72 86 99 57 84C85.7 111 44.83 51 29 52Z", 6},
    {"back_and_forth", "M20 60L100 60 40 60", 14},
    {"degenerate", "M60 60L60 60 60 60ZM10 10C10 10 10 10 10 10", 20},
    {"repeated_points", "M20 20L20 20 90 20 90 20 90 90", 10},
    {"after_close", "M20 20L60 20 60 60ZL20 110", 6},
    {"uneven_stroke", kSwing, 20, kUneven},
    {"uneven_miters", kStar, 12, kUneven},
    {"mirrored_stroke", kZigzag, 8, kMirrored},
    {"far_stroke", "M-30000-30000L30000 30000 30000-30000", 25},
};

TEST(BesideCairo, SpecialShapes) {
  for (const SpecialShape& special : kSpecialShapes) {
    const XMLAttribute data{"d", special.data};
    CAShapeLayer layer;
    layer.setPath(std::make_shared<CGPath>(SVGPath("path", XMLAttributes({&data, 1})).path().cgPath()));
    layer.setTransform(special.transform);
    layer.setLineWidth(special.lineWidth);
    if (special.lineWidth > 0)
      layer.setStrokeColor(CGColor{0, 0, 0.5, 1});
    else
      layer.setFillColor(CGColor{0.8, 0, 0, 1});
    compareWithCairo(special.name, layer, {0.3, 64});
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
