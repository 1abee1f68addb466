#include "import/art/import_frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "import/art/passes.h"
#include "import/art/script_reader.h"
#include "import/art/source_text.h"
#include "import/art/svg_source.h"
#include "import/art/writer.h"

namespace halvo {

namespace {

// Half of the last decimal moves an edge by half of what 1/255 of a pixel's coverage is, 1080 pixels wide.
int decimalsFor(int side) {
  const double most = 0.5 / 255 * side / 1080;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(2 * most))), 0, 6);
}

// As large as the square allows, in its middle.
art::Matrix fitted(const art::SourceSize& size, double side) {
  const double scale = side / std::max(size.width, size.height);
  return {scale, 0, 0, scale, (side - size.width * scale) / 2, (side - size.height * scale) / 2};
}

}  // namespace

std::variant<ArtFrame, ArtError> importFrame(std::string_view bytes, const ArtOptions& options) {
  auto text = art::unpackSource(bytes);
  if (auto* error = std::get_if<ArtError>(&text)) return std::move(*error);
  auto sized = art::sizeOfSvg(std::get<std::string>(text));
  if (auto* error = std::get_if<ArtError>(&sized)) return std::move(*error);
  const auto& size = std::get<art::SourceSize>(sized);
  ArtFrame result;
  result.width = size.width;
  result.height = size.height;
  auto prepared = art::prepareSource(std::get<std::string>(std::move(text)), size, result.notes);
  if (auto* error = std::get_if<ArtError>(&prepared)) return std::move(*error);
  auto drawn = art::drawSvg(std::get<art::SourceText>(prepared), size);
  if (auto* error = std::get_if<ArtError>(&drawn)) return std::move(*error);
  const auto& script = std::get<art::DrawingScript>(drawn);

  const art::Matrix fit = fitted(size, options.side);
  auto read = art::readScript(script.text, quellaro::concat(script.toDocument, fit), result.notes);
  if (auto* error = std::get_if<ArtError>(&read)) return std::move(*error);
  art::PassContext context;
  context.frame.side = options.side;
  context.frame.viewport = quellaro::map(fit, {0, 0, size.width, size.height});
  context.frame.tolerance = options.side * 1e-5;
  context.gradientSteps = options.gradientSteps;
  context.notes = &result.notes;
  const std::vector<art::FlatShape> shapes = art::flatten(std::get<art::DisplayList>(std::move(read)), context);
  if (context.frame.work->left < 0)
    return ArtError{std::nullopt, "the drawing is too intricate: its clips, masks and groups would take too long"};
  art::writeFrame(shapes, options.side, options.precision.value_or(decimalsFor(options.side)), result);
  return result;
}

}  // namespace halvo
