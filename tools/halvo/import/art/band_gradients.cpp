#include "import/art/passes.h"

namespace halvo::art {

std::vector<FlatShape> bandGradients(std::vector<Shape> shapes, const PassContext& /*context*/) {
  std::vector<FlatShape> result;
  for (Shape& shape : shapes) {
    FlatShape flat{std::move(shape.outline), {}, std::nullopt, shape.windsOneWay};
    if (const auto* colour = std::get_if<Colour>(&shape.paint)) flat.colour = *colour;
    if (shape.stroke) flat.strokeWidth = shape.stroke->width * shape.stroke->pen.stretch();
    result.push_back(std::move(flat));
  }
  return result;
}

}  // namespace halvo::art
