#include "import/art/import_frame.h"

#include <utility>

#include "import/art/finish_frame.h"
#include "import/art/script_reader.h"
#include "import/art/source_text.h"
#include "import/art/svg_source.h"

namespace halvo {

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

  auto read = art::readScript(script.text,
                              quellaro::concat(script.toDocument, art::fitted(size.width, size.height, options.side)),
                              result.notes);
  if (auto* error = std::get_if<ArtError>(&read)) return std::move(*error);
  if (auto error = art::finishFrame(std::get<art::DisplayList>(std::move(read)), options, result))
    return std::move(*error);
  return result;
}

}  // namespace halvo
