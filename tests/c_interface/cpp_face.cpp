#include <QuellaroHalvo/QuellaroHalvo.h>
#include <gtest/gtest.h>

namespace quellaro {

namespace {

TEST(CppFace, AStatusIsAnErrorCodeOfItsDomain) {
  const std::error_code code = QLHalvoStatus::soundPlayFailed;
  EXPECT_STREQ(code.category().name(), "QuellaroHalvo.QLHalvoStatus");
  EXPECT_EQ(code.value(), 906);
  EXPECT_EQ(code, QLHalvoStatus::soundPlayFailed);
  EXPECT_NE(code, QLHalvoStatus::playFailed);
  EXPECT_EQ(code.message(), sentenceOf(QLHalvoStatus::soundPlayFailed));
  EXPECT_EQ(errorOf(QLHalvoStatus::soundPlayFailed).code, 906);
  EXPECT_EQ(nameOf(*halvoStatusFromRawValue(906)), "soundPlayFailed");
}

TEST(CppFace, AMerchantIsAValueToCompare) {
  const auto shop = QLHalvoMerchant::make("My_Shop - 1", "US", std::nullopt, {"1"}, std::nullopt);
  const auto same = QLHalvoMerchant::make("Other", "US", std::nullopt, {"2", "3"}, "myshop1");
  const auto elsewhere = QLHalvoMerchant::make("My_Shop - 1", "US", "", {"1"}, std::nullopt);
  EXPECT_EQ(*shop, *same);
  EXPECT_EQ(shop->hash(), same->hash());
  EXPECT_NE(*shop, *elsewhere);
  EXPECT_EQ(same->description(), R"(myshop1-Other-["2", "3"])");
}

// A host's own view, with the cue's in it, drawn into its memory.
class Screen : public UIView {
 public:
  Screen() : UIView({{0, 0}, {12, 10}}) {}
  int layouts = 0;
  void layoutSubviews() override {
    ++layouts;
    UIView::layoutSubviews();
  }
};

TEST(CppFace, AHostPlacesTheViewInOneOfItsOwnAndDrawsIt) {
  const auto screen = std::make_shared<Screen>();
  const auto view = QLHalvoView::make();
  int changes = 0;
  screen->addSubview(view);
  view->setFrame({{2, 3}, {8, 6}});
  Compositor compositor;
  Bitmap bitmap(12, 10);
  screen->display(compositor, bitmap);
  EXPECT_EQ(screen->layouts, 1);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 12; ++x)
      EXPECT_EQ(bitmap.row(y)[x] != 0, x >= 2 && x < 10 && y >= 3 && y < 9) << x << ", " << y;

  screen->setNeedsDisplayHandler([&] { ++changes; });
  view->setBackground(QLHalvoBackground::white);
  view->setFrame({{0, 0}, {12, 10}});
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(screen->needsDisplay());
  EXPECT_EQ(view->bounds(), (CGRect{{0, 0}, {12, 10}}));
  ASSERT_EQ(screen->subviews().size(), 1U);
  EXPECT_EQ(std::dynamic_pointer_cast<QLHalvoView>(screen->subviews().front()), view);
  view->removeFromSuperview();
  EXPECT_TRUE(screen->subviews().empty());
}

}  // namespace

}  // namespace quellaro
