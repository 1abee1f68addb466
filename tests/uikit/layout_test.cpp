#include <gtest/gtest.h>

#include <limits>
#include <memory>
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

using Attribute = NSLayoutAttribute;
using Relation = NSLayoutRelation;

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
    for (const int child : {1, 2, 4}) views[0]->addSubview(views[static_cast<std::size_t>(child)]);
    views[1]->addSubview(views[3]);
  }
};

struct Rule {
  int item;
  Attribute attribute;
  Relation relation;
  int toItem;  // -1: none
  Attribute toAttribute;
  double multiplier = 1, constant = 0;
  float priority = UILayoutPriorityRequired;

  std::shared_ptr<NSLayoutConstraint> in(const Tree& tree) const {
    const auto& views = tree.views;
    auto made = NSLayoutConstraint::constraintWithItem(views[static_cast<std::size_t>(item)], attribute, relation,
                                                       toItem < 0 ? nullptr : views[static_cast<std::size_t>(toItem)],
                                                       toAttribute, multiplier, constant);
    made->setPriority(priority);
    return made;
  }
};

constexpr auto kEqual = Relation::Equal;
constexpr auto kAtLeast = Relation::GreaterThanOrEqual;
constexpr auto kAtMost = Relation::LessThanOrEqual;
constexpr auto kNone = Attribute::NotAnAttribute;

Rule is(int item, Attribute attribute, double constant, float priority = UILayoutPriorityRequired) {
  return {item, attribute, kEqual, -1, kNone, 1, constant, priority};
}

std::vector<Rule> operator+(std::vector<Rule> a, const std::vector<Rule>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST(Layout, ConstraintsPlaceViews) {
  const std::vector<Rule> at0 = {{1, Attribute::Left, kEqual, 0, Attribute::Left},
                                 {1, Attribute::Top, kEqual, 0, Attribute::Top},
                                 {1, Attribute::Height, kEqual, -1, kNone, 1, 5}};
  struct Row {
    const char* what;
    std::vector<Rule> rules;
    int view;
    CGRect frame;
  };
  const std::vector<Row> rows = {
      {"edges with insets",
       {{1, Attribute::Leading, kEqual, 0, Attribute::Leading, 1, 7},
        {1, Attribute::Trailing, kEqual, 0, Attribute::Trailing, 1, -3},
        {1, Attribute::Top, kEqual, 0, Attribute::Top, 1, 2},
        {1, Attribute::Bottom, kEqual, 0, Attribute::Bottom}},
       1,
       {{7, 2}, {90, 58}}},
      {"centre and size",
       {{1, Attribute::CenterX, kEqual, 0, Attribute::CenterX},
        {1, Attribute::CenterY, kEqual, 0, Attribute::Bottom, 0.25},
        is(1, Attribute::Width, 10),
        {1, Attribute::Height, kEqual, 1, Attribute::Width, 1.5, 1}},
       1,
       {{45, 7}, {10, 16}}},
      {"beside a view that stays",
       {{1, Attribute::Left, kEqual, 4, Attribute::Right},
        {1, Attribute::Right, kEqual, 0, Attribute::Right},
        {1, Attribute::CenterY, kEqual, 4, Attribute::CenterY},
        {1, Attribute::Height, kEqual, 4, Attribute::Height, 0.5}},
       1,
       {{40, 30}, {60, 20}}},
      {"a relation across two levels, in the superview's coordinates",
       at0 + std::vector<Rule>{{1, Attribute::Left, kEqual, 0, Attribute::Left, 1, 20, 999},
                               is(1, Attribute::Width, 50),
                               {3, Attribute::Right, kEqual, 4, Attribute::Right},
                               {3, Attribute::Top, kEqual, 4, Attribute::Top},
                               is(3, Attribute::Width, 8),
                               is(3, Attribute::Height, 9)},
       3,
       {{32, 20}, {8, 9}}},
      {"an inner view decides how large the outer one is",
       at0 + std::vector<Rule>{{3, Attribute::Left, kEqual, 1, Attribute::Left, 1, 4},
                               {1, Attribute::Right, kEqual, 3, Attribute::Right, 1, 4},
                               is(3, Attribute::Width, 22)},
       1,
       {{0, 0}, {30, 5}}},
      {"two views share what there is",
       {{1, Attribute::Left, kEqual, 0, Attribute::Left},
        {2, Attribute::Left, kEqual, 1, Attribute::Right, 1, 10},
        {2, Attribute::Right, kEqual, 0, Attribute::Right},
        {2, Attribute::Width, kEqual, 1, Attribute::Width, 2}},
       2,
       {{40, 0}, {60, 0}}},
      {"the higher priority wins",
       at0 + std::vector<Rule>{is(1, Attribute::Width, 80, 250), is(1, Attribute::Width, 30, 251)},
       1,
       {{0, 0}, {30, 5}}},
      {"many of lower priority do not outweigh one of higher",
       at0 + std::vector<Rule>{is(1, Attribute::Width, 80, 250), is(1, Attribute::Width, 80, 249),
                               is(1, Attribute::Width, 80, 248), is(1, Attribute::Width, 30, 251)},
       1,
       {{0, 0}, {30, 5}}},
      {"a wish comes as near as a bound allows",
       at0 + std::vector<Rule>{is(1, Attribute::Width, 80, 250),
                               {1, Attribute::Width, kAtMost, 0, Attribute::Width, 0.5}},
       1,
       {{0, 0}, {50, 5}}},
      {"a lower bound of lower priority yields",
       at0 +
           std::vector<Rule>{{1, Attribute::Width, kAtLeast, -1, kNone, 1, 70, 500}, is(1, Attribute::Width, 12, 750)},
       1,
       {{0, 0}, {12, 5}}},
      {"a lower bound holds",
       at0 + std::vector<Rule>{{1, Attribute::Width, kAtLeast, -1, kNone, 1, 70}},
       1,
       {{0, 0}, {70, 5}}},
      {"no extent is negative", at0 + std::vector<Rule>{is(1, Attribute::Width, -20)}, 1, {{0, 0}, {0, 5}}},
      {"contradictions leave the rest alone",
       at0 + std::vector<Rule>{is(1, Attribute::Width, 20), is(1, Attribute::Width, 20), is(1, Attribute::Width, 60)},
       1,
       {{0, 0}, {20, 5}}},
      {"a constraint that is no number does not count",
       at0 + std::vector<Rule>{is(1, Attribute::Width, std::numeric_limits<double>::quiet_NaN()),
                               is(1, Attribute::Width, 9)},
       1,
       {{0, 0}, {9, 5}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const Tree tree;
    std::vector<std::shared_ptr<NSLayoutConstraint>> constraints;
    for (const Rule& rule : row.rules) constraints.push_back(rule.in(tree));
    NSLayoutConstraint::activateConstraints(constraints);
    tree.views[0]->layoutIfNeeded();
    EXPECT_EQ(tree.views[static_cast<std::size_t>(row.view)]->frame(), row.frame);
    // Solved again from where everything is now.
    tree.views[0]->setNeedsLayout();
    tree.views[0]->layoutIfNeeded();
    EXPECT_EQ(tree.views[static_cast<std::size_t>(row.view)]->frame(), row.frame);
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

  NSLayoutConstraint::deactivateConstraints({within});
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
  width->setConstant(-20);
  EXPECT_EQ(widthNow(), 180);
  const auto wish = view->widthAnchor().constraintEqualToConstant(33);
  wish->setPriority(UILayoutPriorityDefaultLow);
  wish->setActive(true);
  EXPECT_EQ(widthNow(), 180);
  width->setPriority(100);
  EXPECT_EQ(widthNow(), 33);
  wish->setActive(false);
  EXPECT_EQ(widthNow(), 180);
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

TEST(View, DrawsBackgroundsWhereTheViewsLie) {
  const Tree tree;
  tree.views[0]->setBackgroundColor(UIColor::whiteColor());
  tree.views[4]->setBackgroundColor(UIColor::blackColor());
  Compositor compositor;
  Bitmap bitmap(100, 60);
  tree.views[0]->display(compositor, bitmap);
  EXPECT_EQ(bitmap.row(19)[10], 0xFFFFFFFFu);
  EXPECT_EQ(bitmap.row(20)[10], 0xFF000000u);
  EXPECT_EQ(bitmap.row(59)[39], 0xFF000000u);
  EXPECT_EQ(bitmap.row(59)[40], 0xFFFFFFFFu);
}

TEST(View, ComesFromAnArchiveThatHoldsAFrame) {
  NSCoder written;
  UIView::initWithFrame({{1, 2}, {3, 4}})->encodeWithCoder(written);
  const auto read = UIView::initWithCoder(written);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->frame(), (CGRect{{1, 2}, {3, 4}}));
  EXPECT_EQ(UIView::initWithCoder(NSCoder()), nullptr);
  NSCoder broken;
  broken.encodeCGRect({{0, 0}, {std::numeric_limits<double>::infinity(), 1}}, kFrameKey);
  EXPECT_EQ(UIView::initWithCoder(broken), nullptr);
}

}  // namespace

}  // namespace quellaro
