#include "import/art/every_shape.h"
#include "import/art/half_plane.h"
#include "import/art/passes.h"
#include "import/art/region.h"

namespace halvo::art {

namespace {

// Without polygons where the clip has no dents.
void apply(const Clip& clip, Shape& shape, const Frame& frame) {
  if (const auto planes = halfPlanesOf(clip.outline)) {
    if (containsBox(*planes, boundsOf(shape.outline))) return;
    for (const HalfPlane& plane : *planes) shape.outline = cut(shape.outline, plane);
    return;
  }
  shape.outline = combine(Combination::Intersection, {shape.outline, shape.rule}, {clip.outline, clip.rule}, frame);
  shape.rule = Rule::NonZero;
  shape.windsOneWay = true;
}

}  // namespace

DisplayList applyClips(DisplayList list, const PassContext& context) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Shape& shape = std::get<Shape>(item.what);
    if (shape.stroke) return result.push_back(std::move(item));
    // Rectangles first: they leave less to the others.
    for (const auto& clip : item.clips)
      if (Box box; isRectangle(clip->outline, box)) shape.outline = cut(std::move(shape.outline), box);
    for (const auto& clip : item.clips) apply(*clip, shape, context.frame);
    if (shape.rule == Rule::EvenOdd) shape.outline = nonZero(shape.outline, shape.rule, context.frame);
    shape.rule = Rule::NonZero;
    item.clips.clear();
    if (!shape.outline.empty()) result.push_back(std::move(item));
  });
}

}  // namespace halvo::art
