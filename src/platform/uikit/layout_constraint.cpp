#include "platform/uikit/layout_constraint.h"

#include "platform/uikit/view.h"

namespace quellaro {

namespace {

std::shared_ptr<UIView> nearestCommonAncestor(const std::shared_ptr<UIView>& a, const std::shared_ptr<UIView>& b) {
  for (std::shared_ptr<UIView> candidate = a; candidate; candidate = candidate->superview())
    if (b->isDescendantOfView(*candidate)) return candidate;
  return nullptr;
}

}  // namespace

std::shared_ptr<NSLayoutConstraint> NSLayoutConstraint::constraintWithItem(
    const std::shared_ptr<UIView>& item, NSLayoutAttribute attribute, NSLayoutRelation relation,
    const std::shared_ptr<UIView>& toItem, NSLayoutAttribute toAttribute, double multiplier, double constant) {
  std::shared_ptr<NSLayoutConstraint> constraint(new NSLayoutConstraint);
  constraint->firstItem_ = item;
  constraint->firstAttribute_ = attribute;
  constraint->relation_ = relation;
  constraint->secondItem_ = toItem;
  constraint->secondAttribute_ = toItem ? toAttribute : NSLayoutAttribute::NotAnAttribute;
  constraint->multiplier_ = multiplier;
  constraint->constant_ = constant;
  return constraint;
}

void NSLayoutConstraint::activateConstraints(const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints) {
  for (const auto& constraint : constraints) constraint->setActive(true);
}

void NSLayoutConstraint::setPriority(UILayoutPriority priority) {
  priority_ = priority;
  layoutHasChanged();
}

void NSLayoutConstraint::setActive(bool active) {
  if (active == isActive()) return;
  const auto self = shared_from_this();
  if (!active) {
    const std::shared_ptr<UIView> owner = owner_.lock();
    owner_.reset();
    owner->removeConstraint(self);
    return;
  }
  const std::shared_ptr<UIView> first = firstItem();
  if (!first) return;
  const std::shared_ptr<UIView> second = secondItem();
  const std::shared_ptr<UIView> owner = second ? nearestCommonAncestor(first, second) : first;
  if (!owner) return;
  owner_ = owner;
  owner->addConstraint(self);
}

void NSLayoutConstraint::layoutHasChanged() const {
  if (const std::shared_ptr<UIView> owner = owner_.lock()) owner->setNeedsLayout();
}

}  // namespace quellaro
