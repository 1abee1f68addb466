#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/quartzcore/compositor.h"
#include "platform/uikit/view.h"

namespace quellaro {

// Found by the test library.
inline void PrintTo(const CGRect& rect, std::ostream* out) {
  *out << rect.origin.x << "," << rect.origin.y << " " << rect.size.width << "x" << rect.size.height;
}

namespace {

using enum NSLayoutAttribute;

std::shared_ptr<UIView> freeView() {
  auto view = UIView::initWithFrame({});
  view->setTranslatesAutoresizingMaskIntoConstraints(false);
  return view;
}

// Views named by a row's constraints: 0 is the topmost (100 by 60), 1 and 2 are its free subviews, 3 is a free subview
// of 1, 4 one of 0 that stays at (10, 20, 30, 40).
struct Tree {
  std::vector<std::shared_ptr<UIView>> views{UIView::initWithFrame({{0, 0}, {100, 60}}), freeView(), freeView(),
                                             freeView(), UIView::initWithFrame({{10, 20}, {30, 40}})};
  Tree() {
    for (const std::size_t child : {1U, 2U, 4U}) views[0]->addSubview(views[child]);
    views[1]->addSubview(views[3]);
  }
};

struct Rule {
  std::size_t item;
  NSLayoutAttribute attribute;
  NSLayoutRelation relation;
  std::optional<std::size_t> toItem;
  NSLayoutAttribute toAttribute;
  double multiplier = 1, constant = 0;
  float priority = UILayoutPriorityRequired;

  std::shared_ptr<NSLayoutConstraint> in(const Tree& tree) const {
    auto made = NSLayoutConstraint::constraintWithItem(tree.views[item], attribute, relation,
                                                       toItem ? tree.views[*toItem] : nullptr, toAttribute, multiplier,
                                                       constant);
    made->setPriority(priority);
    return made;
  }
};
using Rules = std::vector<Rule>;

constexpr auto kEqual = NSLayoutRelation::Equal;
constexpr auto kAtLeast = NSLayoutRelation::GreaterThanOrEqual;
constexpr auto kAtMost = NSLayoutRelation::LessThanOrEqual;

Rule is(std::size_t item, NSLayoutAttribute attribute, double constant, float priority = UILayoutPriorityRequired) {
  return {item, attribute, kEqual, std::nullopt, NotAnAttribute, 1, constant, priority};
}

// View 1 at the origin and 5 high, and what else is said.
Rules atOrigin(const Rules& rules) {
  Rules all = {{1, Left, kEqual, 0, Left}, {1, Top, kEqual, 0, Top}, is(1, Height, 5)};
  all.insert(all.end(), rules.begin(), rules.end());
  return all;
}

TEST(Layout, ConstraintsPlaceViews) {
  const struct {
    const char* what;
    Rules rules;
    std::size_t view;
    CGRect frame;
  } rows[] = {
      {"edges with insets",
       {{1, Leading, kEqual, 0, Leading, 1, 7},
        {1, Trailing, kEqual, 0, Trailing, 1, -3},
        {1, Top, kEqual, 0, Top, 1, 2},
        {1, Bottom, kEqual, 0, Bottom}},
       1,
       {{7, 2}, {90, 58}}},
      {"centre and size",
       {{1, CenterX, kEqual, 0, CenterX},
        {1, CenterY, kEqual, 0, Bottom, 0.25},
        is(1, Width, 10),
        {1, Height, kEqual, 1, Width, 1.5, 1}},
       1,
       {{45, 7}, {10, 16}}},
      {"beside a view that stays",
       {{1, Left, kEqual, 4, Right},
        {1, Right, kEqual, 0, Right},
        {1, CenterY, kEqual, 4, CenterY},
        {1, Height, kEqual, 4, Height, 0.5}},
       1,
       {{40, 30}, {60, 20}}},
      {"a relation across two levels, in the superview's coordinates",
       atOrigin({{1, Left, kEqual, 0, Left, 1, 20, 999},
                 is(1, Width, 50),
                 {3, Right, kEqual, 4, Right},
                 {3, Top, kEqual, 4, Top},
                 is(3, Width, 8),
                 is(3, Height, 9)}),
       3,
       {{32, 20}, {8, 9}}},
      {"an inner view decides how large the outer one is",
       atOrigin({{3, Left, kEqual, 1, Left, 1, 4}, {1, Right, kEqual, 3, Right, 1, 4}, is(3, Width, 22)}),
       1,
       {{0, 0}, {30, 5}}},
      {"two views share what there is",
       {{1, Left, kEqual, 0, Left},
        {2, Left, kEqual, 1, Right, 1, 10},
        {2, Right, kEqual, 0, Right},
        {2, Width, kEqual, 1, Width, 2}},
       2,
       {{40, 0}, {60, 0}}},
      {"many of lower priority do not outweigh one of higher",
       atOrigin({is(1, Width, 80, 250), is(1, Width, 80, 249), is(1, Width, 30, 251)}),
       1,
       {{0, 0}, {30, 5}}},
      {"a wish comes as near as a bound allows",
       atOrigin({is(1, Width, 80, 250), {1, Width, kAtMost, 0, Width, 0.5}}),
       1,
       {{0, 0}, {50, 5}}},
      {"a lower bound of lower priority yields",
       atOrigin({{1, Width, kAtLeast, {}, NotAnAttribute, 1, 70, 500}, is(1, Width, 12, 750)}),
       1,
       {{0, 0}, {12, 5}}},
      {"no extent is negative", atOrigin({is(1, Width, -20)}), 1, {{0, 0}, {0, 5}}},
      {"contradictions leave the rest alone",
       atOrigin({is(1, Width, 20), is(1, Width, 20), is(1, Width, 60)}),
       1,
       {{0, 0}, {20, 5}}},
      {"a constraint that is no number does not count",
       atOrigin({is(1, Width, std::numeric_limits<double>::quiet_NaN()), is(1, Width, 9)}),
       1,
       {{0, 0}, {9, 5}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const Tree tree;
    std::vector<std::shared_ptr<NSLayoutConstraint>> constraints;
    for (const Rule& rule : row.rules) constraints.push_back(rule.in(tree));
    NSLayoutConstraint::activateConstraints(constraints);
    // The second time from where everything is then.
    for (int round = 0; round < 2; ++round) {
      tree.views[0]->setNeedsLayout();
      tree.views[0]->layoutIfNeeded();
      EXPECT_EQ(tree.views[row.view]->frame(), row.frame);
    }
  }
}

TEST(Layout, ConstraintsBelongToTheNearestCommonAncestorWhileActive) {
  const Tree tree;
  const auto& [top, first, second, inner, still] =
      std::tie(tree.views[0], tree.views[1], tree.views[2], tree.views[3], tree.views[4]);
  const auto across = inner->topAnchor().constraintEqualToAnchor(second->topAnchor());
  const auto within = inner->widthAnchor().constraintEqualToAnchor(first->widthAnchor());
  const auto alone = inner->heightAnchor().constraintEqualToConstant(3);
  NSLayoutConstraint::activateConstraints({across, within, alone});
  EXPECT_EQ(top->constraints(), std::vector{across});
  EXPECT_EQ(first->constraints(), std::vector{within});
  EXPECT_EQ(inner->constraints(), std::vector{alone});

  within->setActive(false);
  EXPECT_FALSE(within->isActive());
  EXPECT_TRUE(first->constraints().empty());

  const auto stranger = UIView::initWithFrame({});
  const auto apart = stranger->topAnchor().constraintEqualToAnchor(top->topAnchor());
  apart->setActive(true);
  EXPECT_FALSE(apart->isActive());

  // What is taken out takes along what it has within itself, and nothing else.
  first->removeFromSuperview();
  EXPECT_FALSE(across->isActive());
  EXPECT_TRUE(alone->isActive());
  EXPECT_EQ(first->superview(), nullptr);
  EXPECT_EQ(top->layer()->sublayers(), (std::vector{second->layer(), still->layer()}));
}

TEST(Layout, FollowsEveryChange) {
  const Tree tree;
  const auto& top = tree.views[0];
  const auto& view = tree.views[1];
  const auto width = view->widthAnchor().constraintEqualToAnchor(top->widthAnchor(), 1, -10);
  width->setActive(true);
  const auto widthNow = [&] {
    view->layoutIfNeeded();
    return view->frame().size.width;
  };
  EXPECT_EQ(widthNow(), 90);
  top->setFrame({{5, 5}, {200, 60}});
  EXPECT_EQ(widthNow(), 190);
  const auto wish = view->widthAnchor().constraintEqualToConstant(33);
  wish->setPriority(UILayoutPriorityDefaultLow);
  wish->setActive(true);
  EXPECT_EQ(widthNow(), 190);
  width->setPriority(100);
  EXPECT_EQ(widthNow(), 33);
  wish->setActive(false);
  EXPECT_EQ(widthNow(), 190);
}

TEST(View, KnowsWhenItHasToBeDrawn) {
  const Tree tree;
  const auto& top = tree.views[0];
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
  EXPECT_TRUE(drawnAgainAfter([&] { tree.views[3]->setBackgroundColor(UIColor::whiteColor()); }));
  EXPECT_TRUE(drawnAgainAfter([&] { top->setFrame({{0, 0}, {50, 50}}); }));
  EXPECT_TRUE(drawnAgainAfter([&] { tree.views[2]->setNeedsDisplay(); }));
  EXPECT_TRUE(drawnAgainAfter([&] { tree.views[3]->widthAnchor().constraintEqualToConstant(9)->setActive(true); }));
  EXPECT_TRUE(drawnAgainAfter([&] { tree.views[3]->removeFromSuperview(); }));
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
