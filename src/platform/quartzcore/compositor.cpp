#include "platform/quartzcore/compositor.h"

#include <cmath>
#include <cstddef>
#include <deque>
#include <vector>

#include "platform/quartzcore/raster/painter.h"
#include "platform/quartzcore/shape_layer.h"

namespace quellaro {

namespace {

// From a layer's own coordinates to its parent's.
Affine toParent(const CALayer& layer) {
  const CGRect bounds = layer.bounds();
  const double centreX = bounds.origin.x + bounds.size.width / 2;
  const double centreY = bounds.origin.y + bounds.size.height / 2;
  Affine result{1, 0, 0, 1, -centreX, -centreY};
  if (const auto& t = layer.transform()) result = concat(result, {t->m11, t->m12, t->m21, t->m22, t->m41, t->m42});
  result.tx += layer.position().x;
  result.ty += layer.position().y;
  return result;
}

bool isUsable(const Affine& t) {
  const auto usable = [](double entry) { return std::fabs(entry) <= kFarAway; };
  return usable(t.a) && usable(t.b) && usable(t.c) && usable(t.d) && usable(t.tx) && usable(t.ty);
}

struct Open {
  const CALayer* layer;
  Affine transform;
  std::size_t nextSublayer = 0;
};

}  // namespace

struct Compositor::Implementation {
  explicit Implementation(const SpanFunctions& spans) : painter(spans) {}

  Painter painter;
  std::vector<Open> open;  // the layers between the root and the one being drawn
  std::deque<CGPath> backgrounds;

  void enter(const CALayer& layer, const Affine& parent) {
    const Affine transform = concat(toParent(layer), parent);
    if (!isUsable(transform)) return;
    if (const auto& color = layer.backgroundColor()) drawBackground(layer.bounds(), transform, *color);
    if (const auto* shape = layer.asShapeLayer(); shape != nullptr && shape->path() != nullptr) {
      if (const auto& color = shape->fillColor()) painter.fill(*shape->path(), transform, *color);
      if (const auto& color = shape->strokeColor())
        painter.stroke(*shape->path(), transform, shape->lineWidth(), *color);
    }
    if (!layer.sublayers().empty()) open.push_back({&layer, transform});
  }

  void drawBackground(const CGRect& bounds, const Affine& transform, const CGColor& color) {
    const double right = bounds.origin.x + bounds.size.width;
    const double bottom = bounds.origin.y + bounds.size.height;
    CGPath& outline = backgrounds.emplace_back();
    outline.moveTo(bounds.origin);
    outline.lineTo({right, bounds.origin.y});
    outline.lineTo({right, bottom});
    outline.lineTo({bounds.origin.x, bottom});
    painter.fill(outline, transform, color);
  }
};

Compositor::Compositor(const SpanFunctions& spans) : implementation_(std::make_unique<Implementation>(spans)) {}
Compositor::Compositor(Compositor&&) noexcept = default;
Compositor& Compositor::operator=(Compositor&&) noexcept = default;
Compositor::~Compositor() = default;

void Compositor::draw(const CALayer& root, const Surface& surface) {
  std::vector<Open>& open = implementation_->open;
  open.clear();
  implementation_->backgrounds.clear();
  implementation_->painter.begin(surface);
  implementation_->enter(root, Affine{});
  while (!open.empty()) {
    Open& top = open.back();
    if (top.nextSublayer == top.layer->sublayers().size()) {
      open.pop_back();
      continue;
    }
    const CALayer& next = *top.layer->sublayers()[top.nextSublayer++];
    const Affine transform = top.transform;
    implementation_->enter(next, transform);
  }
  implementation_->painter.finish();
}

}  // namespace quellaro
