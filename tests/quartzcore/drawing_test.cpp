// What a layer tree shows, in pixels that can be told exactly.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"

namespace quellaro {
namespace {

constexpr CGColor kRed{1, 0, 0, 1};
constexpr CGColor kBlue{0, 0, 1, 1};
constexpr std::uint32_t kRedPixel = 0xffff0000;
constexpr std::uint32_t kBluePixel = 0xff0000ff;

std::shared_ptr<CGPath> rectangle(double x, double y, double width, double height) {
  auto path = std::make_shared<CGPath>();
  path->moveTo({x, y});
  path->lineTo({x + width, y});
  path->lineTo({x + width, y + height});
  path->lineTo({x, y + height});
  path->close();
  return path;
}

std::shared_ptr<CAShapeLayer> filled(std::shared_ptr<const CGPath> path, CGColor color) {
  auto layer = std::make_shared<CAShapeLayer>();
  layer->setPath(std::move(path));
  layer->setFillColor(color);
  return layer;
}

// The pixels that are not transparent, as a picture of letters: R, B, or ? for anything else.
std::string letters(const CALayer& root, int width, int height) {
  Bitmap bitmap(width, height);
  Compositor().draw(root, bitmap);
  std::string text;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t pixel = bitmap.row(y)[x];
      text += pixel == 0 ? '.' : pixel == kRedPixel ? 'R' : pixel == kBluePixel ? 'B' : '?';
    }
    text += '\n';
  }
  return text;
}

std::uint32_t onePixel(const CALayer& root, std::uint32_t below = 0) {
  Bitmap bitmap(1, 1);
  bitmap.pixels[0] = below;
  Compositor().draw(root, bitmap);
  return bitmap.pixels[0];
}

TEST(Drawing, BackgroundCoversTheBoundsAroundThePosition) {
  CALayer layer;
  layer.setBounds({{0, 0}, {2, 1}});
  layer.setPosition({2, 1.5});
  layer.setBackgroundColor(kRed);
  EXPECT_EQ(letters(layer, 4, 3), "....\n.RR.\n....\n");
  // The origin of the bounds moves what is inside, not the layer.
  layer.setBounds({{10, 20}, {2, 1}});
  layer.addSublayer(filled(rectangle(11, 20, 1, 2), kBlue));
  EXPECT_EQ(letters(layer, 4, 3), "....\n.RB.\n..B.\n");
}

TEST(Drawing, TransformsActAboutTheCentreOfTheBounds) {
  CALayer layer;
  layer.setBounds({{0, 0}, {2, 2}});
  layer.setPosition({3, 2});
  layer.setBackgroundColor(kRed);
  layer.setTransform(CATransform3DScale(CATransform3DIdentity, 2, 1, 1));
  EXPECT_EQ(letters(layer, 6, 4), "......\n.RRRR.\n.RRRR.\n......\n");
  layer.setTransform(CATransform3DScale(CATransform3DIdentity, -1, 1, 7));
  layer.addSublayer(filled(rectangle(0, 0, 1, 3), kBlue));
  EXPECT_EQ(letters(layer, 6, 4), "......\n..RB..\n..RB..\n...B..\n");
}

TEST(Drawing, ShapesWithEmptyBoundsDrawInTheirParentsCoordinates) {
  CALayer root;
  root.setBounds({{0, 0}, {2, 2}});
  root.setPosition({2, 2});
  root.setTransform(CATransform3DScale(CATransform3DIdentity, 2, 2, 1));
  auto group = std::make_shared<CAShapeLayer>();
  group->setTransform(CATransform3DTranslate(CATransform3DIdentity, 1, 0, 0));
  group->addSublayer(filled(rectangle(0, 0, 0.5, 1), kRed));
  // Beyond the root's bounds, and drawn all the same.
  group->addSublayer(filled(rectangle(1, 1, 0.5, 1), kBlue));
  root.addSublayer(group);
  EXPECT_EQ(letters(root, 6, 4), "..R...\n..R...\n....B.\n....B.\n");
}

TEST(Drawing, ChildrenLieAboveTheirParentsOutlineAndLaterSiblingsAboveEarlierOnes) {
  auto parent = filled(rectangle(0, 0, 3, 1), kRed);
  parent->addSublayer(filled(rectangle(1, 0, 1, 1), kBlue));
  parent->addSublayer(filled(rectangle(2, 0, 1, 1), kBlue));
  parent->addSublayer(filled(rectangle(2, 0, 2, 1), kRed));
  EXPECT_EQ(letters(*parent, 5, 1), "RBRR.\n");
}

TEST(Drawing, StrokesLieOnTheOutline) {
  CAShapeLayer layer;
  layer.setPath(rectangle(2, 2, 4, 2));
  layer.setStrokeColor(kRed);
  layer.setLineWidth(2);
  EXPECT_EQ(letters(layer, 8, 6), "........\n.RRRRRR.\n.RRRRRR.\n.RRRRRR.\n.RRRRRR.\n........\n");
  layer.setPath(rectangle(2, 2, 4, 3));
  EXPECT_EQ(letters(layer, 8, 6), "........\n.RRRRRR.\n.RRRRRR.\n.RR..RR.\n.RRRRRR.\n.RRRRRR.\n");
  for (const double width : {0.0, -1.0}) {
    layer.setLineWidth(width);
    EXPECT_EQ(letters(layer, 2, 1), "..\n") << width;
  }
}

TEST(Drawing, AStrokeWiderThanItsCurveHasNoHole) {
  auto drop = std::make_shared<CGPath>();
  drop->moveTo({6, 5});
  drop->cubicTo({6, 6.4}, {4, 6.4}, {4, 5});
  drop->cubicTo({4, 3.6}, {6, 3.6}, {6, 5});
  drop->close();
  CAShapeLayer layer;
  layer.setPath(drop);
  layer.setStrokeColor(kRed);
  layer.setLineWidth(8);
  const std::string picture = letters(layer, 10, 10);
  for (std::size_t row = 2; row < 8; ++row) EXPECT_EQ(picture.substr(row * 11 + 2, 6), "RRRRRR") << picture;
}

TEST(Drawing, OpenEndsAreButtAndOpenOutlinesAreFilledAsIfClosed) {
  auto corner = std::make_shared<CGPath>();
  corner->moveTo({0, 1});
  corner->lineTo({2, 1});
  CAShapeLayer line;
  line.setPath(corner);
  line.setStrokeColor(kRed);
  line.setLineWidth(2);
  EXPECT_EQ(letters(line, 3, 3), "RR.\nRR.\n...\n");
  auto open = std::make_shared<CGPath>();
  open->moveTo({0, 0});
  open->lineTo({2, 0});
  open->lineTo({2, 2});
  open->lineTo({0, 2});
  EXPECT_EQ(letters(*filled(open, kBlue), 3, 2), "BB.\nBB.\n");
}

TEST(Drawing, TheNonZeroRuleFillsWhatGoesAroundTwiceAndLeavesWhatGoesBack) {
  CGPath path = *rectangle(0, 0, 5, 1);
  for (const auto& [x, step] : {std::pair{1.0, 1.0}, std::pair{4.0, -1.0}}) {
    path.moveTo({x, 0});
    path.lineTo({x + step, 0});
    path.lineTo({x + step, 1});
    path.lineTo({x, 1});
    path.close();
  }
  EXPECT_EQ(letters(*filled(std::make_shared<CGPath>(path), kRed), 5, 1), "RRR.R\n");
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
      {1, {7, -1, NAN, 2}, 0, 0xffff0000},         {0, {1, 1, 1, 1}, 0, 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(onePixel(*filled(rectangle(0, 0, c.width, 1), c.color), c.below), c.expected) << std::hex << c.expected;
}

TEST(Drawing, TheSameCompositorDrawsPicturesOfAllSizes) {
  Compositor compositor;
  const auto shape = filled(rectangle(0, 0, 1e9, 1e9), kRed);
  for (const int side : {1, 3, 64, 5, 700, 0, 2}) {
    Bitmap bitmap(side, side + 1);
    compositor.draw(*shape, bitmap);
    for (const std::uint32_t pixel : bitmap.pixels) ASSERT_EQ(pixel, kRedPixel) << side;
  }
}

}  // namespace
}  // namespace quellaro
