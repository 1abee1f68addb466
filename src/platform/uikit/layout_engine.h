#pragma once

#include <map>
#include <set>
#include <vector>

#include "platform/uikit/linear_solver.h"
#include "platform/uikit/view.h"

namespace quellaro {

// Turns the constraints of a tree of views into frames. The topmost view stays as it is; a view that does not
// translate its autoresizing mask is free to be placed; any other keeps its frame in its superview. Everything is
// reckoned in the topmost view's coordinates, so a constraint may span several levels.
class LayoutEngine {
 public:
  explicit LayoutEngine(UIView& top);

  // Leaves with every constrained view the frame it shall have, and marks the superviews of those that will move.
  void solve();

 private:
  struct Place {
    LinearExpression x, y, width, height;
  };

  // Gives every view below a place: its own variables, or one that hangs on its superview's.
  void collect(UIView& view, const std::set<const UIView*>& mentioned, Place place);
  void addConstraints(const UIView& view);
  void addConstraint(const NSLayoutConstraint& constraint, const Place& owner);
  static LinearExpression attributeIn(const Place& place, NSLayoutAttribute attribute);
  void leaveFrame(UIView& view) const;
  LinearExpression newVariable();
  double valueOf(const LinearExpression& expression) const;

  UIView& top_;
  std::map<const UIView*, Place> places_;
  std::vector<UIView*> constrained_;
  std::vector<LinearConstraint> constraints_;
  std::size_t variableCount_ = 0;
  std::vector<double> values_;
};

}  // namespace quellaro
