#include <cmath>

#include "import/art/every_shape.h"
#include "import/art/passes.h"
#include "import/art/stroke_outline.h"
#include "import/art/stroke_pieces.h"

namespace halvo::art {

namespace {

constexpr double kPlayersMiterLimit = 10;

bool isEven(const Matrix& pen) {
  const double least = 1e-4 * pen.stretch();
  const auto same = [&](double a, double b) { return std::fabs(a - b) < least; };
  return (same(pen.a, pen.d) && same(pen.b, -pen.c)) || (same(pen.a, -pen.d) && same(pen.b, pen.c));
}

// Whether the player draws a corner as this style does. Pointed corners are cut off by both beyond their limits.
bool isPlayersCorner(const StrokePiece& before, const StrokePiece& after, const StrokeStyle& style) {
  const double cosine = dot(before.ends, after.begins);
  if (cosine > 0.9999) return true;
  if (after.goesOn) return false;
  const double ratio = std::sqrt(2 / std::max(1 + cosine, 1e-12));
  if (style.join == LineJoin::Round) return false;
  const double limit = style.join == LineJoin::Miter ? style.miterLimit : 1;
  return (ratio <= limit && ratio <= kPlayersMiterLimit) || (ratio > limit && ratio > kPlayersMiterLimit);
}

bool playerCanDraw(const Shape& shape) {
  const StrokeStyle& style = *shape.stroke;
  if (!std::holds_alternative<Colour>(shape.paint) || !style.dashes.empty() || !isEven(style.pen)) return false;
  const double half = style.width / 2 * style.pen.stretch();
  for (const Contour& contour : shape.outline) {
    if (!contour.isClosed && style.cap != LineCap::Butt) return false;
    const std::vector<StrokePiece> pieces = piecesOf(contour, half);
    for (std::size_t i = 1; i < pieces.size(); ++i)
      if (!isPlayersCorner(pieces[i - 1], pieces[i], style)) return false;
    if (contour.isClosed && !pieces.empty() && !isPlayersCorner(pieces.back(), pieces.front(), style)) return false;
    if (pieces.empty() && style.cap != LineCap::Butt) return false;
  }
  return true;
}

}  // namespace

DisplayList outlineStrokes(DisplayList list, const PassContext& context) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Shape& shape = std::get<Shape>(item.what);
    if (shape.stroke && (!item.clips.empty() || !playerCanDraw(shape))) {
      shape.outline = strokeOutline(shape.outline, *shape.stroke, context.frame);
      shape.stroke.reset();
      shape.rule = Rule::NonZero;
      shape.windsOneWay = true;
    }
    result.push_back(std::move(item));
  });
}

}  // namespace halvo::art
