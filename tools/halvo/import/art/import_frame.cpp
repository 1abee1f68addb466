#include "import/art/import_frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "import/art/passes.h"
#include "import/art/script_reader.h"
#include "import/art/svg_source.h"
#include "import/art/writer.h"

namespace halvo {

namespace {

// Half of the last decimal moves an edge by half of what 1/255 of a pixel's coverage is, 1080 pixels wide.
int decimalsFor(int side) {
  const double most = 0.5 / 255 * side / 1080;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(2 * most))), 0, 6);
}

}  // namespace

std::variant<ArtFrame, ArtError> importFrame(std::string_view bytes, const ArtOptions& options) {
  auto drawn = art::drawSvg(bytes);
  if (auto* error = std::get_if<ArtError>(&drawn)) return std::move(*error);
  const auto& script = std::get<art::DrawingScript>(drawn);

  ArtFrame result;
  result.width = script.width;
  result.height = script.height;
  const double scale = options.side / art::kScriptSide;
  const art::Matrix toFrame =
      quellaro::concat(art::inverse(art::kScriptTurn), art::Matrix{scale, 0, 0, scale, 0, 0});
  auto read = art::readScript(script.text, toFrame, result.notes);
  if (auto* error = std::get_if<ArtError>(&read)) return std::move(*error);

  art::PassContext context;
  context.frame.side = options.side;
  const art::Box& viewport = script.viewport;
  context.frame.viewport = {viewport.minX * scale, viewport.minY * scale, viewport.maxX * scale, viewport.maxY * scale};
  context.frame.tolerance = options.side * 1e-5;
  context.gradientSteps = options.gradientSteps;
  context.notes = &result.notes;
  const std::vector<art::FlatShape> shapes = art::flatten(std::get<art::DisplayList>(std::move(read)), context);
  art::writeFrame(shapes, options.side, options.precision.value_or(decimalsFor(options.side)), result);
  return result;
}

}  // namespace halvo
