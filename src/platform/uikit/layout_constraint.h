#pragma once

#include <memory>
#include <vector>

namespace quellaro {

class UIView;

enum class NSLayoutAttribute {
  NotAnAttribute,
  Left,
  Right,
  Top,
  Bottom,
  // The same as left and right: text runs from left to right here.
  Leading,
  Trailing,
  Width,
  Height,
  CenterX,
  CenterY,
};

enum class NSLayoutRelation { LessThanOrEqual, Equal, GreaterThanOrEqual };

using UILayoutPriority = float;
inline constexpr UILayoutPriority UILayoutPriorityRequired = 1000;
inline constexpr UILayoutPriority UILayoutPriorityDefaultLow = 250;

// item.attribute (relation) toItem.attribute * multiplier + constant. While active it belongs to the nearest common
// ancestor of its views. It holds its views weakly, and counts for nothing when one of them is gone. Main thread only.
class NSLayoutConstraint : public std::enable_shared_from_this<NSLayoutConstraint> {
 public:
  // Without toItem (and NotAnAttribute) the attribute is related to the constant alone. A constraint without an item
  // can never become active.
  static std::shared_ptr<NSLayoutConstraint> constraintWithItem(const std::shared_ptr<UIView>& item,
                                                                NSLayoutAttribute attribute, NSLayoutRelation relation,
                                                                const std::shared_ptr<UIView>& toItem,
                                                                NSLayoutAttribute toAttribute, double multiplier,
                                                                double constant);
  // One after the other, in their order.
  static void activateConstraints(const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints);

  std::shared_ptr<UIView> firstItem() const { return firstItem_.lock(); }
  NSLayoutAttribute firstAttribute() const { return firstAttribute_; }
  NSLayoutRelation relation() const { return relation_; }
  // Null when there is none, and when it is gone.
  std::shared_ptr<UIView> secondItem() const { return secondItem_.lock(); }
  NSLayoutAttribute secondAttribute() const { return secondAttribute_; }
  double multiplier() const { return multiplier_; }
  double constant() const { return constant_; }
  // 1 to 1000; 1000 (as it starts) is required.
  UILayoutPriority priority() const { return priority_; }
  void setPriority(UILayoutPriority priority);
  bool isActive() const { return !owner_.expired(); }
  // Activating views that have no common ancestor does nothing.
  void setActive(bool active);

 private:
  NSLayoutConstraint() = default;
  void layoutHasChanged() const;

  std::weak_ptr<UIView> firstItem_;
  NSLayoutAttribute firstAttribute_ = NSLayoutAttribute::NotAnAttribute;
  NSLayoutRelation relation_ = NSLayoutRelation::Equal;
  std::weak_ptr<UIView> secondItem_;
  NSLayoutAttribute secondAttribute_ = NSLayoutAttribute::NotAnAttribute;
  double multiplier_ = 1;
  double constant_ = 0;
  UILayoutPriority priority_ = UILayoutPriorityRequired;
  std::weak_ptr<UIView> owner_;
};

}  // namespace quellaro
