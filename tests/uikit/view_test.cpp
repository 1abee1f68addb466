#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "platform/quartzcore/compositor.h"
#include "platform/uikit/view.h"

namespace quellaro {

// Found by the test library.
inline void PrintTo(const CGRect& rect, std::ostream* out) {
  *out << rect.origin.x << "," << rect.origin.y << " " << rect.size.width << "x" << rect.size.height;
}

namespace {

TEST(View, KnowsWhenItHasToBeDrawn) {
  const auto top = UIView::initWithFrame({{0, 0}, {100, 60}});
  const auto child = UIView::initWithFrame({{10, 20}, {30, 40}});
  const auto grandchild = UIView::initWithFrame({{1, 2}, {3, 4}});
  top->addSubview(child);
  child->addSubview(grandchild);
  Compositor compositor;
  Bitmap bitmap(4, 4);
  const auto drawnAgainAfter = [&](auto change) {
    top->display(compositor, bitmap);
    EXPECT_FALSE(top->needsDisplay());
    change();
    return top->needsDisplay();
  };
  EXPECT_TRUE(top->needsDisplay());
  EXPECT_FALSE(drawnAgainAfter([] {}));
  EXPECT_TRUE(drawnAgainAfter([&] { grandchild->setBackgroundColor(UIColor::whiteColor()); }));
  EXPECT_TRUE(drawnAgainAfter([&] { top->setFrame({{0, 0}, {50, 50}}); }));
  EXPECT_TRUE(drawnAgainAfter([&] { child->setNeedsDisplay(); }));
  EXPECT_TRUE(drawnAgainAfter([&] { grandchild->setNeedsLayout(); }));
  EXPECT_TRUE(drawnAgainAfter([&] { grandchild->removeFromSuperview(); }));
}

TEST(View, TakesAlongWhatItHoldsAndNothingElse) {
  const auto top = UIView::initWithFrame({});
  const auto first = UIView::initWithFrame({});
  const auto second = UIView::initWithFrame({});
  const auto inner = UIView::initWithFrame({});
  for (const auto& view : {first, second}) top->addSubview(view);
  first->addSubview(inner);
  inner->addSubview(top);  // would be a circle
  EXPECT_EQ(top->superview(), nullptr);
  first->removeFromSuperview();
  EXPECT_EQ(first->superview(), nullptr);
  EXPECT_TRUE(inner->isDescendantOfView(*first) && !inner->isDescendantOfView(*top));
  EXPECT_EQ(top->layer()->sublayers(), std::vector{second->layer()});
}

TEST(View, ComesFromAnArchiveThatHoldsAFrame) {
  NSCoder coder;
  EXPECT_EQ(UIView::initWithCoder(coder), nullptr);
  UIView::initWithFrame({{1, 2}, {3, 4}})->encodeWithCoder(coder);
  EXPECT_EQ(UIView::initWithCoder(coder)->frame(), (CGRect{{1, 2}, {3, 4}}));
  coder.encodeCGRect({{0, 0}, {std::numeric_limits<double>::infinity(), 1}}, kFrameKey);
  EXPECT_EQ(UIView::initWithCoder(coder), nullptr);
}

}  // namespace

}  // namespace quellaro
