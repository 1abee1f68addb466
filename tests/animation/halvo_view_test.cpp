#include "animation/halvo_view.h"

#include <gtest/gtest.h>

#include "animation/halvo_animation_view.h"
#include "animation/halvo_layer.h"

namespace quellaro {

namespace {

std::shared_ptr<const SVGDocument> document(const std::string& attributes) {
  return SVGDocument::parse("<svg " + attributes + R"(><rect width="9" height="9"/></svg>)");
}

std::shared_ptr<CALayer> shownLayer(const UIView& view) {
  return view.layer()->sublayers().size() == 1 ? view.layer()->sublayers().front() : nullptr;
}

TEST(SVGView, StretchesADocumentOverItsBounds) {
  struct Row {
    const char* svg;
    CGSize view;
    bool isShown;
    double scaleX, scaleY;
  };
  const Row rows[] = {
      {R"(width="100" height="100")", {300, 150}, true, 3, 1.5},
      {R"(width="100" height="100")", {0, 0}, true, 0, 0},
      {R"(width="0" height="100")", {100, 100}, false, 0, 0},
      {R"(width="100" height="0")", {100, 100}, false, 0, 0},
      {R"(width="1e999" height="100")", {100, 100}, false, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.svg);
    const auto view = SVGView::initWithFrame({{7, 7}, row.view});
    view->showLayer(document(R"(width="1" height="1")")->makeLayer());
    view->setSvgDocument(document(row.svg));
    view->showLayer(view->svgDocument()->makeLayer());
    const auto layer = shownLayer(*view);
    ASSERT_EQ(layer != nullptr, row.isShown);
    if (!layer) continue;
    EXPECT_EQ(layer->bounds(), (CGRect{{0, 0}, *view->svgDocument()->viewbox()}));
    EXPECT_EQ(layer->position(), (CGPoint{row.view.width * 0.5, row.view.height * 0.5}));
    EXPECT_EQ(layer->transform(), CATransform3DScale(CATransform3DIdentity, row.scaleX, row.scaleY, 1));
  }
}

TEST(SVGView, ShowsALayerOfItsOwnSizeAndNothingAtAll) {
  const auto view = SVGView::initWithFrame({{0, 0}, {100, 100}});
  EXPECT_EQ(view->svgDocument(), nullptr);
  const auto layer = std::make_shared<CALayer>();
  layer->setBounds({{3, 3}, {20, 50}});
  layer->setTransform(CATransform3DRotateZ(CATransform3DIdentity, 1));
  view->showLayer(layer);
  EXPECT_EQ(shownLayer(*view), layer);
  EXPECT_EQ(layer->bounds(), (CGRect{{0, 0}, {20, 50}}));
  EXPECT_EQ(layer->transform(), CATransform3DScale(CATransform3DRotateZ(CATransform3DIdentity, 1), 5, 2, 1));
  // An empty document replaces what was shown, too.
  view->showLayer(SVGDocument::parse("<svg/>")->makeLayer());
  ASSERT_NE(shownLayer(*view), nullptr);
  EXPECT_TRUE(shownLayer(*view)->sublayers().empty());
  view->showLayer(nullptr);
  EXPECT_TRUE(view->layer()->sublayers().empty());
}

TEST(HalvoLayer, RefitsItsFrameWheneverItsSizeChanges) {
  const auto view = QLHalvoAnimationView::initWithFrame({{0, 0}, {100, 100}});
  ASSERT_NE(std::dynamic_pointer_cast<QLHalvoLayer>(view->layer()), nullptr);
  view->playFrames({document(R"(width="50" height="50")")}, {});
  const auto layer = shownLayer(*view);
  ASSERT_NE(layer, nullptr);
  EXPECT_EQ(layer->transform(), CATransform3DScale(CATransform3DIdentity, 2, 2, 1));
  view->setFrame({{0, 0}, {200, 100}});
  EXPECT_EQ(layer->transform(), CATransform3DScale(CATransform3DIdentity, 4, 2, 1));
  EXPECT_EQ(layer->position(), (CGPoint{100, 50}));
  EXPECT_EQ(layer->bounds(), (CGRect{{0, 0}, {50, 50}}));
}

TEST(HalvoLayer, ComesFromAnotherLayerOrFromAnArchive) {
  NSCoder coder;
  EXPECT_EQ(QLHalvoLayer(coder).bounds(), CGRect{});
  coder.encodeCGRect({{10, 10}, {4, 6}}, kFrameKey);
  QLHalvoLayer original(coder);
  original.addSublayer(std::make_shared<CALayer>());
  const QLHalvoLayer copy(static_cast<const CALayer&>(original));
  EXPECT_EQ(copy.bounds(), (CGRect{{0, 0}, {4, 6}}));
  EXPECT_EQ(copy.position(), (CGPoint{12, 13}));
  EXPECT_TRUE(copy.sublayers().empty());
}

TEST(HalvoView, TheAnimationIsACentredSquareAsLargeAsFits) {
  struct Row {
    CGSize view;
    CGRect animation;
  };
  const std::vector<Row> rows = {
      {{300, 200}, {{50, 0}, {200, 200}}}, {{200, 300}, {{0, 50}, {200, 200}}},  {{480, 480}, {{0, 0}, {480, 480}}},
      {{0, 50}, {{0, 25}, {0, 0}}},        {{0.1, 0.7}, {{0, 0.3}, {0.1, 0.1}}}, {{16384, 9}, {{8187.5, 0}, {9, 9}}},
  };
  const auto resized = QLHalvoView::make();
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.view.width) + " by " + std::to_string(row.view.height));
    // One that is made so, one at another place from an archive, and one that is brought to it.
    NSCoder coder;
    UIView::initWithFrame({{5, 9}, row.view})->encodeWithCoder(coder);
    resized->setFrame({{0, 0}, row.view});
    for (const auto& view :
         {QLHalvoView::initWithFrame({{0, 0}, row.view}), QLHalvoView::initWithCoder(coder), resized}) {
      view->layoutIfNeeded();
      EXPECT_EQ(view->backgroundView()->frame().size, row.view);
      const CGRect frame = view->animtionView()->frame();
      EXPECT_NEAR(frame.origin.x, row.animation.origin.x, 1e-9);
      EXPECT_NEAR(frame.origin.y, row.animation.origin.y, 1e-9);
      EXPECT_NEAR(frame.size.width, row.animation.size.width, 1e-9);
      EXPECT_NEAR(frame.size.height, row.animation.size.height, 1e-9);
    }
  }
}

TEST(HalvoView, HasTheSameViewsHoweverItIsMade) {
  NSCoder coder;
  EXPECT_EQ(QLHalvoView::initWithCoder(coder), nullptr);
  EXPECT_EQ(QLHalvoAnimationView::initWithCoder(coder), nullptr);
  coder.encodeCGRect({{1, 2}, {30, 20}}, kFrameKey);
  EXPECT_EQ(QLHalvoAnimationView::initWithCoder(coder)->sdkConfig(), nullptr);
  for (const auto& view :
       {QLHalvoView::make(), QLHalvoView::initWithFrame({{1, 2}, {30, 20}}), QLHalvoView::initWithCoder(coder)}) {
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->subviews(), (std::vector<std::shared_ptr<UIView>>{view->backgroundView(), view->animtionView()}));
    EXPECT_EQ(view->backgroundView()->backgroundColor(), UIColor::blackColor());
  }
}

}  // namespace

}  // namespace quellaro
