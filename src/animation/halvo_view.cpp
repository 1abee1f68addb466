#include "animation/halvo_view.h"

#include <algorithm>

#include "animation/halvo_animation_view.h"

namespace quellaro {

std::shared_ptr<QLHalvoView> QLHalvoView::initWithFrame(CGRect frame) {
  std::shared_ptr<QLHalvoView> view(new QLHalvoView(frame));
  view->backgroundView_ = UIView::initWithFrame({});
  view->addSubview(view->backgroundView_);
  view->setBackground(QLHalvoBackground::black);
  view->animtionView_ = QLHalvoAnimationView::initWithFrame({});
  view->addSubview(view->animtionView_);
  return view;
}

std::shared_ptr<QLHalvoView> QLHalvoView::initWithCoder(const NSCoder& coder) {
  const auto frame = coder.decodeCGRectForKey(kFrameKey);
  return frame ? initWithFrame(*frame) : nullptr;
}

QLHalvoView::~QLHalvoView() = default;

void QLHalvoView::setBackground(QLHalvoBackground background) {
  background_ = background;
  const bool isWhite = background == QLHalvoBackground::white;
  backgroundView_->setBackgroundColor(isWhite ? UIColor::whiteColor() : UIColor::blackColor());
}

// The animation is square, as large as the shorter side, in the middle.
void QLHalvoView::layoutSubviews() {
  const CGRect all = bounds();
  backgroundView_->setFrame(all);
  const double side = std::min(all.size.width, all.size.height);
  animtionView_->setFrame(
      {{all.origin.x + (all.size.width - side) * 0.5, all.origin.y + (all.size.height - side) * 0.5},
       {side * animationViewAspectRatio_, side}});
}

}  // namespace quellaro
