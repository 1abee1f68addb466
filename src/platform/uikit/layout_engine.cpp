#include "platform/uikit/layout_engine.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace quellaro {

namespace {

LinearExpression constant(double value) { return {{}, value}; }

LinearExpression sum(const LinearExpression& a, const LinearExpression& b, double factor = 1) {
  LinearExpression result = a;
  result.add(b, factor);
  return result;
}

// The views that an active constraint of the tree speaks of.
void collectMentioned(const UIView& view, std::set<const UIView*>& mentioned) {
  for (const auto& constraint : view.constraints()) {
    mentioned.insert(constraint->firstItem().get());
    mentioned.insert(constraint->secondItem().get());
  }
  for (const auto& subview : view.subviews()) collectMentioned(*subview, mentioned);
}

bool isFinite(CGRect rect) {
  return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.size.width) &&
         std::isfinite(rect.size.height);
}

LinearRelation linearRelation(NSLayoutRelation relation) {
  switch (relation) {
    case NSLayoutRelation::LessThanOrEqual:
      return LinearRelation::LessThanOrEqual;
    case NSLayoutRelation::GreaterThanOrEqual:
      return LinearRelation::GreaterThanOrEqual;
    case NSLayoutRelation::Equal:
      break;
  }
  return LinearRelation::Equal;
}

}  // namespace

LayoutEngine::LayoutEngine(UIView& top) : top_(top) {}

void LayoutEngine::solve() {
  std::set<const UIView*> mentioned;
  collectMentioned(top_, mentioned);
  // Nothing sensible follows from sizes that are no numbers.
  if (mentioned.empty() || !isFinite(top_.bounds())) return;
  places_.clear();
  const CGRect bounds = top_.bounds();
  collect(top_, mentioned,
          {constant(bounds.origin.x), constant(bounds.origin.y), constant(bounds.size.width),
           constant(bounds.size.height)});
  addConstraints(top_);
  values_ = solveConstraints(variableCount_, constraints_);
  for (UIView* view : constrained_) leaveFrame(*view);
}

void LayoutEngine::collect(UIView& view, const std::set<const UIView*>& mentioned, Place place) {
  for (const auto& subview : view.subviews()) {
    Place below;
    if (!subview->translatesAutoresizingMaskIntoConstraints() && mentioned.contains(subview.get())) {
      below = {newVariable(), newVariable(), newVariable(), newVariable()};
      for (const LinearExpression* extent : {&below.width, &below.height})
        constraints_.push_back({*extent, LinearRelation::GreaterThanOrEqual, UILayoutPriorityRequired});
      constrained_.push_back(subview.get());
    } else {
      const CGRect frame = subview->frame();
      if (!isFinite(frame)) continue;
      below = {sum(place.x, constant(frame.origin.x - view.bounds().origin.x)),
               sum(place.y, constant(frame.origin.y - view.bounds().origin.y)), constant(frame.size.width),
               constant(frame.size.height)};
    }
    collect(*subview, mentioned, below);
  }
  places_.emplace(&view, std::move(place));
}

void LayoutEngine::addConstraints(const UIView& view) {
  if (!places_.contains(&view)) return;
  for (const auto& constraint : view.constraints()) addConstraint(*constraint, places_.at(&view));
  for (const auto& subview : view.subviews()) addConstraints(*subview);
}

void LayoutEngine::addConstraint(const NSLayoutConstraint& constraint, const Place& owner) {
  const bool isRelative = constraint.secondAttribute() != NSLayoutAttribute::NotAnAttribute;
  const auto first = places_.find(constraint.firstItem().get());
  const auto second = places_.find(constraint.secondItem().get());
  if (first == places_.end() || (isRelative && second == places_.end())) return;
  if (!std::isfinite(constraint.multiplier()) || !std::isfinite(constraint.constant())) return;
  // A multiplier scales distances from the owner's corner.
  const auto attributeOf = [&](const Place& place, NSLayoutAttribute attribute) {
    return attributeIn({sum(place.x, owner.x, -1), sum(place.y, owner.y, -1), place.width, place.height}, attribute);
  };
  LinearExpression difference = attributeOf(first->second, constraint.firstAttribute());
  if (isRelative) difference.add(attributeOf(second->second, constraint.secondAttribute()), -constraint.multiplier());
  difference.constant -= constraint.constant();
  constraints_.push_back({std::move(difference), linearRelation(constraint.relation()), constraint.priority()});
}

LinearExpression LayoutEngine::attributeIn(const Place& place, NSLayoutAttribute attribute) {
  switch (attribute) {
    case NSLayoutAttribute::Left:
    case NSLayoutAttribute::Leading:
      return place.x;
    case NSLayoutAttribute::Right:
    case NSLayoutAttribute::Trailing:
      return sum(place.x, place.width);
    case NSLayoutAttribute::Top:
      return place.y;
    case NSLayoutAttribute::Bottom:
      return sum(place.y, place.height);
    case NSLayoutAttribute::Width:
      return place.width;
    case NSLayoutAttribute::Height:
      return place.height;
    case NSLayoutAttribute::CenterX:
      return sum(place.x, place.width, 0.5);
    case NSLayoutAttribute::CenterY:
      return sum(place.y, place.height, 0.5);
    case NSLayoutAttribute::NotAnAttribute:
      break;
  }
  return {};
}

void LayoutEngine::leaveFrame(UIView& view) const {
  const std::shared_ptr<UIView> parent = view.superview();
  const Place& place = places_.at(&view);
  const Place& around = places_.at(parent.get());
  const CGPoint origin = parent->bounds().origin;
  const CGRect frame{{valueOf(place.x) - valueOf(around.x) + origin.x, valueOf(place.y) - valueOf(around.y) + origin.y},
                     {valueOf(place.width), valueOf(place.height)}};
  view.solvedFrame_ = frame;
  if (frame != view.frame()) parent->setNeedsLayout();
}

LinearExpression LayoutEngine::newVariable() { return {{{variableCount_++, 1.0}}, 0}; }

double LayoutEngine::valueOf(const LinearExpression& expression) const {
  double value = expression.constant;
  for (const LinearExpression::Term& term : expression.terms) value += values_[term.variable] * term.coefficient;
  return value;
}

}  // namespace quellaro
