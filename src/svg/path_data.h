#pragma once

#include <span>
#include <string_view>

#include "svg/element.h"

namespace quellaro {

class SVGPathObserver;

// Path data: the commands of SVG, absolute and relative, except that arcs draw nothing, every pair after a move is a
// move, and a close does not go back to the start. Reading stops quietly at text it cannot read. Segments before any
// move are not drawn but move `end` along.
class SVGPath : public SVGElement {
 public:
  SVGPath(std::string_view name, XMLAttributes attributes);
  // The same, telling how the data is read.
  SVGPath(std::string_view name, XMLAttributes attributes, SVGPathObserver& observer);

  // Second control point of the last cubic segment, control point of the last quadratic one. The origin means none.
  CGPoint c_pre() const { return c_pre_; }
  CGPoint q_pre() const { return q_pre_; }
  // The current point.
  CGPoint end() const { return end_; }

  // One command letter and its numbers, in as many groups as there are; what is left over is ignored. Any other text
  // is reported on the console and draws nothing.
  void applyCommand(std::string_view command, std::span<const double> numbers);

 protected:
  void buildPath(XMLAttributes attributes) override;

 private:
  // The listener hands on the numbers of each command and is told of the command and of the end.
  template <class AnyListener>
  void readData(XMLAttributes attributes, AnyListener listener);
  // Numbers come in groups from the text or a list: `bool fill(std::span<double>)`.
  template <class Numbers>
  void apply(std::string_view command, Numbers numbers);
  // Calls `draw` with each full group.
  template <std::size_t size, class Numbers, class Draw>
  void eachGroup(Numbers& numbers, Draw draw);

  void move(CGPoint to);
  void line(CGPoint to);
  void cubic(CGPoint control1, CGPoint control2, CGPoint to);
  void quadratic(CGPoint control, CGPoint to);
  void close();

  CGPoint c_pre_;
  CGPoint q_pre_;
  CGPoint end_;
};

}  // namespace quellaro
