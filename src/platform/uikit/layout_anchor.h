#pragma once

#include <memory>

#include "platform/uikit/layout_constraint.h"

namespace quellaro {

// One edge, centre line or extent of a view, and the shorthand for constraints between two of them. The axis is part
// of the type, so that only what can be compared is. The constraints are not active yet.
template <class Axis>
class NSLayoutAnchor {
 public:
  NSLayoutAnchor(std::shared_ptr<UIView> item, NSLayoutAttribute attribute)
      : item_(std::move(item)), attribute_(attribute) {}

  std::shared_ptr<NSLayoutConstraint> constraintEqualToAnchor(const NSLayoutAnchor& other, double multiplier = 1,
                                                              double constant = 0) const {
    return related(NSLayoutRelation::Equal, other, multiplier, constant);
  }
  std::shared_ptr<NSLayoutConstraint> constraintGreaterThanOrEqualToAnchor(const NSLayoutAnchor& other,
                                                                           double multiplier = 1,
                                                                           double constant = 0) const {
    return related(NSLayoutRelation::GreaterThanOrEqual, other, multiplier, constant);
  }
  std::shared_ptr<NSLayoutConstraint> constraintLessThanOrEqualToAnchor(const NSLayoutAnchor& other,
                                                                        double multiplier = 1,
                                                                        double constant = 0) const {
    return related(NSLayoutRelation::LessThanOrEqual, other, multiplier, constant);
  }
  // For extents.
  std::shared_ptr<NSLayoutConstraint> constraintEqualToConstant(double constant) const {
    return NSLayoutConstraint::constraintWithItem(item_, attribute_, NSLayoutRelation::Equal, nullptr,
                                                  NSLayoutAttribute::NotAnAttribute, 1, constant);
  }

 private:
  std::shared_ptr<NSLayoutConstraint> related(NSLayoutRelation relation, const NSLayoutAnchor& other, double multiplier,
                                              double constant) const {
    return NSLayoutConstraint::constraintWithItem(item_, attribute_, relation, other.item_, other.attribute_,
                                                  multiplier, constant);
  }

  std::shared_ptr<UIView> item_;
  NSLayoutAttribute attribute_;
};

using NSLayoutXAxisAnchor = NSLayoutAnchor<struct XAxis>;
using NSLayoutYAxisAnchor = NSLayoutAnchor<struct YAxis>;
using NSLayoutDimension = NSLayoutAnchor<struct Extent>;

}  // namespace quellaro
