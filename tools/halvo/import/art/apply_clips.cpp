#include "import/art/every_shape.h"
#include "import/art/half_plane.h"
#include "import/art/passes.h"
#include "import/art/region.h"

namespace halvo::art {

DisplayList applyClips(DisplayList list, const PassContext& context) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Shape& shape = std::get<Shape>(item.what);
    if (shape.stroke) return result.push_back(std::move(item));
    // Rectangles first: they leave less to the others, and cut without polygons.
    for (const auto& clip : item.clips)
      if (Box box; isRectangle(clip->outline, box)) shape.outline = cut(std::move(shape.outline), box);
    for (const auto& clip : item.clips) {
      if (Box box; isRectangle(clip->outline, box)) continue;
      shape.outline =
          combine(Combination::Intersection, {shape.outline, shape.rule}, {clip->outline, clip->rule}, context.frame);
      shape.rule = Rule::NonZero;
      shape.windsOneWay = true;
    }
    if (shape.rule == Rule::EvenOdd) shape.outline = nonZero(shape.outline, shape.rule, context.frame);
    shape.rule = Rule::NonZero;
    item.clips.clear();
    if (!shape.outline.empty()) result.push_back(std::move(item));
  });
}

}  // namespace halvo::art
