#include <QuellaroHalvo/QuellaroHalvo.h>
#include <gtest/gtest.h>

namespace quellaro {
namespace {

// A host's own view: derived, and its children told apart, on this side of the shared object.
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
  screen->addSubview(view);
  view->setFrame({{2, 3}, {8, 6}});
  Compositor compositor;
  Bitmap bitmap(12, 10);
  screen->display(compositor, bitmap);
  EXPECT_EQ(screen->layouts, 1);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 12; ++x)
      EXPECT_EQ(bitmap.row(y)[x] != 0, x >= 2 && x < 10 && y >= 3 && y < 9) << x << ", " << y;
  EXPECT_EQ(std::dynamic_pointer_cast<QLHalvoView>(screen->subviews().front()), view);
}

}  // namespace
}  // namespace quellaro
