#include "check/drawing_cost.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/quartzcore/raster/affine.h"
#include "platform/quartzcore/raster/outline.h"
#include "platform/quartzcore/shape_layer.h"

namespace halvo {

namespace {

using namespace quellaro;

// What an outline encloses and how long it is, in the frame's units.
class Extent {
 public:
  void move(CGPoint to) {
    endContour();
    start_ = at_ = to;
    reach(to);
  }
  void line(CGPoint to) {
    contour_ += turn(at_, to);
    length_ += std::hypot(to.x - at_.x, to.y - at_.y);
    at_ = to;
    reach(to);
  }
  void cubic(CGPoint control1, CGPoint control2, CGPoint to) {
    line(control1);
    line(control2);
    line(to);
  }
  void close() {
    line(start_);
    endContour();
  }
  // A fill closes every contour.
  void endContour() {
    area_ += std::fabs(contour_ + turn(at_, start_));
    contour_ = 0;
  }

  double area() const { return area_; }
  double length() const { return length_; }
  const Box& box() const { return box_; }

 private:
  // What the triangle with the origin adds to the area.
  static double turn(CGPoint from, CGPoint to) { return (from.x * to.y - to.x * from.y) / 2; }
  void reach(CGPoint p) {
    box_ = {std::min(box_.minX, p.x), std::min(box_.minY, p.y), std::max(box_.maxX, p.x), std::max(box_.maxY, p.y)};
  }

  CGPoint start_;
  CGPoint at_;
  double contour_ = 0;
  double area_ = 0;
  double length_ = 0;
  Box box_{kFarAway, kFarAway, -kFarAway, -kFarAway};
};

double areaWithin(const Box& box, CGSize size) {
  const double width = std::min(box.maxX, size.width) - std::max(box.minX, 0.0);
  const double height = std::min(box.maxY, size.height) - std::max(box.minY, 0.0);
  return width > 0 && height > 0 ? width * height : 0;
}

double paintedArea(const CAShapeLayer& shape, const Affine& transform, CGSize size) {
  Extent extent;
  walkOutline(*shape.path(), transform, extent);
  extent.endContour();
  double area = 0;
  if (shape.fillColor()) area += std::min(extent.area(), areaWithin(extent.box(), size));
  if (shape.strokeColor()) {
    const double width = std::fabs(shape.lineWidth()) * transform.stretch();
    area += std::min(extent.length() * width, areaWithin(extent.box().grown(width / 2), size));
  }
  return area;
}

struct Placed {
  const CALayer* layer;
  Affine transform;
};

}  // namespace

double paintedFrames(const CALayer& frame, CGSize size) {
  double area = 0;
  // The layers of a document have no bounds and draw where their parents do. They may be nested deeply.
  std::vector<Placed> open{{&frame, {}}};
  while (!open.empty()) {
    const auto [layer, parent] = open.back();
    open.pop_back();
    Affine transform = parent;
    if (const auto& t = layer->transform())
      transform = concat({t->m11, t->m12, t->m21, t->m22, t->m41, t->m42}, parent);
    if (const CAShapeLayer* shape = layer->asShapeLayer(); shape != nullptr && shape->path() != nullptr)
      area += paintedArea(*shape, transform, size);
    for (const auto& sublayer : layer->sublayers()) open.push_back({sublayer.get(), transform});
  }
  const double whole = size.width * size.height;
  return whole > 0 && std::isfinite(area) ? area / whole : 0;
}

}  // namespace halvo
