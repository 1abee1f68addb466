#include "import/art/every_shape.h"
#include "import/art/passes.h"
#include "import/art/players_stroke.h"
#include "import/art/stroke_outline.h"

namespace halvo::art {

namespace {

// With dots laid over lines, only where nothing shows through.
bool isDotted(const Shape& shape, const PassContext& context) {
  const auto* colour = std::get_if<Colour>(&shape.paint);
  return colour && colour->alpha >= 1 && dottedStroke(shape, context.frame);
}

}  // namespace

DisplayList outlineStrokes(DisplayList list, const PassContext& context) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Shape& shape = std::get<Shape>(item.what);
    if (shape.stroke && (!item.clips.empty() || !(playerCanDraw(shape) || isDotted(shape, context)))) {
      shape.outline = strokeOutline(shape.outline, *shape.stroke, context.frame);
      shape.stroke.reset();
      shape.rule = Rule::NonZero;
      shape.windsOneWay = true;
    }
    result.push_back(std::move(item));
  });
}

}  // namespace halvo::art
