#include "animation/halvo_view.h"

#include "animation/halvo_animation_view.h"

namespace quellaro {

std::shared_ptr<QLHalvoView> QLHalvoView::initWithFrame(CGRect frame) {
  std::shared_ptr<QLHalvoView> view(new QLHalvoView(frame));
  view->addBackdrop();
  view->addAnimationView();
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

void QLHalvoView::layoutSubviews() { UIView::layoutSubviews(); }

void QLHalvoView::addBackdrop() {
  backgroundView_ = UIView::initWithFrame({});
  setBackground(QLHalvoBackground::black);
  addSubview(backgroundView_);
  backgroundView_->setTranslatesAutoresizingMaskIntoConstraints(false);
  NSLayoutConstraint::activateConstraints({
      backgroundView_->topAnchor().constraintEqualToAnchor(topAnchor()),
      backgroundView_->leadingAnchor().constraintEqualToAnchor(leadingAnchor()),
      backgroundView_->trailingAnchor().constraintEqualToAnchor(trailingAnchor()),
      backgroundView_->bottomAnchor().constraintEqualToAnchor(bottomAnchor()),
  });
}

// As large as the shorter side: it must stay within the view, and would like to be as wide and as high.
void QLHalvoView::addAnimationView() {
  animtionView_ = QLHalvoAnimationView::initWithFrame({});
  addSubview(animtionView_);
  UIView& animation = *animtionView_;
  animation.setTranslatesAutoresizingMaskIntoConstraints(false);
  const auto sameWidth = animation.widthAnchor().constraintEqualToAnchor(widthAnchor());
  const auto sameHeight = animation.heightAnchor().constraintEqualToAnchor(heightAnchor());
  sameWidth->setPriority(UILayoutPriorityDefaultLow);
  sameHeight->setPriority(UILayoutPriorityDefaultLow);
  leadingConstraint_ = NSLayoutConstraint::constraintWithItem(animtionView_, NSLayoutAttribute::Leading,
                                                              NSLayoutRelation::GreaterThanOrEqual, shared_from_this(),
                                                              NSLayoutAttribute::Leading, 1.0, 0.0);
  NSLayoutConstraint::activateConstraints({
      animation.topAnchor().constraintGreaterThanOrEqualToAnchor(topAnchor()),
      trailingAnchor().constraintGreaterThanOrEqualToAnchor(animation.trailingAnchor()),
      bottomAnchor().constraintGreaterThanOrEqualToAnchor(animation.bottomAnchor()),
      animation.centerXAnchor().constraintEqualToAnchor(centerXAnchor()),
      animation.centerYAnchor().constraintEqualToAnchor(centerYAnchor()),
      animation.widthAnchor().constraintEqualToAnchor(animation.heightAnchor(), animationViewAspectRatio_),
      sameWidth,
      sameHeight,
      leadingConstraint_,
  });
}

}  // namespace quellaro
