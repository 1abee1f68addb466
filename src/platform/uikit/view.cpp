#include "platform/uikit/view.h"

#include <algorithm>
#include <utility>

#include "platform/dispatch/guard.h"
#include "platform/quartzcore/compositor.h"

namespace quellaro {

UIView::UIView(CGRect frame, LayerClass makeLayer) : layer_(makeLayer()) {
  layer_->setBounds({{0, 0}, frame.size});
  layer_->setPosition({frame.origin.x + frame.size.width * 0.5, frame.origin.y + frame.size.height * 0.5});
}

std::shared_ptr<CALayer> UIView::layerClass() { return std::make_shared<CALayer>(); }

std::shared_ptr<UIView> UIView::initWithFrame(CGRect frame) { return std::shared_ptr<UIView>(new UIView(frame)); }

std::shared_ptr<UIView> UIView::initWithCoder(const NSCoder& coder) {
  const auto frame = coder.decodeCGRectForKey(kFrameKey);
  return frame ? initWithFrame(*frame) : nullptr;
}

void UIView::encodeWithCoder(NSCoder& coder) const { coder.encodeCGRect(frame(), kFrameKey); }

CGRect UIView::frame() const {
  const CGSize size = bounds().size;
  const CGPoint center = layer_->position();
  return {{center.x - size.width * 0.5, center.y - size.height * 0.5}, size};
}

void UIView::setFrame(CGRect frame) {
  layer_->setPosition({frame.origin.x + frame.size.width * 0.5, frame.origin.y + frame.size.height * 0.5});
  setBounds({bounds().origin, frame.size});
}

void UIView::setBounds(CGRect bounds) {
  if (bounds != this->bounds()) {
    layer_->setBounds(bounds);
    setNeedsLayout();
  }
  setNeedsDisplay();
}

std::optional<UIColor> UIView::backgroundColor() const {
  if (!layer_->backgroundColor()) return std::nullopt;
  return UIColor{*layer_->backgroundColor()};
}

void UIView::setBackgroundColor(std::optional<UIColor> color) {
  layer_->setBackgroundColor(color ? std::optional(color->cgColor) : std::nullopt);
  setNeedsDisplay();
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) {
  if (!view || isDescendantOfView(*view)) return;
  view->removeFromSuperview();
  view->superview_ = weak_from_this();
  subviews_.push_back(view);
  layer_->addSublayer(view->layer_);
  setNeedsLayout();
  setNeedsDisplay();
}

void UIView::removeFromSuperview() {
  const std::shared_ptr<UIView> parent = superview();
  if (!parent) return;
  const auto self = shared_from_this();
  std::erase(parent->subviews_, self);
  auto sublayers = parent->layer_->sublayers();
  std::erase(sublayers, layer_);
  parent->layer_->setSublayers(std::move(sublayers));
  superview_.reset();
  parent->setNeedsLayout();
  parent->setNeedsDisplay();
}

bool UIView::isDescendantOfView(const UIView& view) const {
  if (this == &view) return true;
  for (std::shared_ptr<UIView> ancestor = superview(); ancestor; ancestor = ancestor->superview())
    if (ancestor.get() == &view) return true;
  return false;
}

UIView& UIView::topmost() {
  UIView* view = this;
  // Each superview outlives the loop: its own superview, or the caller, holds it.
  while (const std::shared_ptr<UIView> parent = view->superview()) view = parent.get();
  return *view;
}

void UIView::layoutIfNeeded() {
  UIView& top = topmost();
  if (top.subtreeNeedsLayout()) top.layoutSubtree();
}

bool UIView::subtreeNeedsLayout() const {
  return needsLayout_ || std::any_of(subviews_.begin(), subviews_.end(),
                                     [](const auto& subview) { return subview->subtreeNeedsLayout(); });
}

void UIView::layoutSubtree() {
  if (std::exchange(needsLayout_, false)) layoutSubviews();
  // A copy: layoutSubviews of a view below may rearrange views.
  const auto views = subviews_;
  for (const auto& subview : views) subview->layoutSubtree();
}

void UIView::setNeedsDisplay() {
  UIView& top = topmost();
  const bool isNews = !std::exchange(top.needsDisplay_, true);
  // What nobody could be told of is news again the next time.
  Undo notTold([&] { top.needsDisplay_ = false; });
  if (isNews && top.needsDisplayHandler_) top.needsDisplayHandler_();
  notTold.keep();
}

bool UIView::needsDisplay() const { return needsDisplay_ || subtreeNeedsLayout(); }

void UIView::display(Compositor& compositor, const Surface& surface) {
  layoutIfNeeded();
  needsDisplay_ = false;
  compositor.draw(*layer_, surface);
}

}  // namespace quellaro
