// Draws a layer tree made of the input's bytes. Numbers are the ones that make trouble, or any 64 bits at all.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/quartzcore/compositor.h"
#include "platform/quartzcore/shape_layer.h"

namespace {

using namespace quellaro;

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool ended() const { return at_ >= size_; }
  unsigned byte() { return ended() ? 0 : data_[at_++]; }
  double number() {
    constexpr double kSpecial[] = {0,   1,    -1,   0.5,     1e-300,
                                   1e4, -1e9, 1e60, 1.7e308, std::numeric_limits<double>::infinity()};
    const unsigned kind = byte();
    if (kind < std::size(kSpecial)) return kSpecial[kind];
    if (kind < 20 && at_ + sizeof(double) <= size_) {
      double any = 0;
      std::memcpy(&any, data_ + at_, sizeof any);
      at_ += sizeof any;
      return any;
    }
    return (static_cast<double>(kind) - 128) / 2 + byte() / 256.0;
  }
  CGPoint point() {
    const double x = number();
    return {x, number()};
  }
  CGColor color() { return {byte() / 255.0, byte() / 255.0, byte() / 255.0, byte() / 255.0}; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

std::shared_ptr<CGPath> pathOf(Input& input) {
  auto path = std::make_shared<CGPath>();
  for (unsigned count = input.byte() % 32; count > 0 && !input.ended(); --count) {
    switch (input.byte() % 5) {
      case 0:
        path->moveTo(input.point());
        break;
      case 1:
        path->lineTo(input.point());
        break;
      case 2: {
        const CGPoint control = input.point();
        path->quadTo(control, input.point());
        break;
      }
      case 3: {
        const CGPoint first = input.point();
        const CGPoint second = input.point();
        path->cubicTo(first, second, input.point());
        break;
      }
      default:
        path->close();
        break;
    }
  }
  return path;
}

std::shared_ptr<CALayer> layerOf(Input& input) {
  const unsigned kind = input.byte();
  std::shared_ptr<CALayer> layer;
  if (kind % 2 == 0) {
    auto shape = std::make_shared<CAShapeLayer>();
    shape->setPath(pathOf(input));
    if (kind & 2) shape->setFillColor(input.color());
    if (kind & 4) shape->setStrokeColor(input.color());
    shape->setLineWidth(input.number());
    layer = shape;
  } else {
    layer = std::make_shared<CALayer>();
    const CGPoint origin = input.point();
    const CGPoint size = input.point();
    layer->setBounds({origin, {size.x, size.y}});
    layer->setPosition(input.point());
    layer->setBackgroundColor(input.color());
  }
  if (kind & 8) {
    CATransform3D t;
    for (double* entry : {&t.m11, &t.m12, &t.m21, &t.m22, &t.m41, &t.m42}) *entry = input.number();
    layer->setTransform(t);
  }
  return layer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const int width = static_cast<int>(input.byte() % 70);
  const int height = static_cast<int>(input.byte() % 70);
  auto root = std::make_shared<CALayer>();
  std::shared_ptr<CALayer> parent = root;
  while (!input.ended()) {
    auto layer = layerOf(input);
    parent->addSublayer(layer);
    if (input.byte() % 2 == 0) parent = layer;
  }
  static Compositor kept;
  Bitmap once(width, height);
  Bitmap again(width, height);
  kept.draw(*root, once);
  Compositor().draw(*root, again);
  // What one picture leaves behind must not show in the next.
  if (!(once == again)) std::abort();
  return 0;
}
