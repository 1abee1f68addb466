#include "import/art/finish_frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "import/art/passes.h"
#include "import/art/writer.h"

namespace halvo::art {

namespace {

// Half of the last decimal moves an edge by half of what 1/255 of a pixel's coverage is, 1080 pixels wide.
int decimalsFor(int side) {
  const double most = 0.5 / 255 * side / 1080;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(2 * most))), 0, 6);
}

}  // namespace

Matrix fitted(double width, double height, int side) {
  const double scale = side / std::max(width, height);
  return {scale, 0, 0, scale, (side - width * scale) / 2, (side - height * scale) / 2};
}

std::optional<ArtError> finishFrame(DisplayList list, const ArtOptions& options, ArtFrame& result) {
  PassContext context;
  context.frame.side = options.side;
  context.frame.viewport =
      quellaro::map(fitted(result.width, result.height, options.side), {0, 0, result.width, result.height});
  context.frame.tolerance = options.side * 1e-5;
  context.gradientSteps = options.gradientSteps;
  context.notes = &result.notes;
  const std::vector<FlatShape> shapes = flatten(std::move(list), context);
  if (context.frame.work->left < 0)
    return ArtError{std::nullopt, "the drawing is too intricate: its clips, masks and groups would take too long"};
  writeFrame(shapes, options.side, options.precision.value_or(decimalsFor(options.side)), result);
  return std::nullopt;
}

}  // namespace halvo::art
