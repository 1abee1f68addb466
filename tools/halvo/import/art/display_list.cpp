#include "import/art/display_list.h"

#include <utility>

namespace halvo::art {

namespace {

void moveAlong(Paint& paint, const Matrix& back) {
  if (auto* gradient = std::get_if<Gradient>(&paint))
    gradient->toGradient = quellaro::concat(back, gradient->toGradient);
  if (auto* pattern = std::get_if<Pattern>(&paint)) pattern->toPattern = quellaro::concat(back, pattern->toPattern);
}

void include(Box& all, const Box& box) {
  all = {std::min(all.minX, box.minX), std::min(all.minY, box.minY), std::max(all.maxX, box.maxX),
         std::max(all.maxY, box.maxY)};
}

}  // namespace

Item mapped(Item item, const Matrix& matrix) {
  for (std::shared_ptr<const Clip>& clip : item.clips)
    clip = std::make_shared<const Clip>(Clip{mapped(clip->outline, matrix), clip->rule});
  if (auto* shape = std::get_if<Shape>(&item.what)) {
    shape->outline = mapped(std::move(shape->outline), matrix);
    moveAlong(shape->paint, inverse(matrix));
    if (shape->stroke) {
      Matrix& pen = shape->stroke->pen;
      pen = quellaro::concat(pen, matrix);
      pen.tx = pen.ty = 0;
    }
    return item;
  }
  auto group = std::make_shared<Group>(*std::get<std::shared_ptr<Group>>(item.what));
  for (Item& member : group->members.items) member = mapped(std::move(member), matrix);
  item.what = std::move(group);
  return item;
}

Box boundsOf(const Shape& shape) {
  const Box box = boundsOf(shape.outline);
  if (!shape.stroke) return box;
  const StrokeStyle& style = *shape.stroke;
  const double reach = style.join == LineJoin::Miter ? std::max(1.5, style.miterLimit) : 1.5;
  return box.grown(style.width / 2 * reach * style.pen.stretch());
}

Box boundsOf(const Item& item) {
  if (const auto* shape = std::get_if<Shape>(&item.what)) return boundsOf(*shape);
  Box all = boundsOf(Outline{});
  for (const Item& member : std::get<std::shared_ptr<Group>>(item.what)->members.items) include(all, boundsOf(member));
  return all;
}

}  // namespace halvo::art
