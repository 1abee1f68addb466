#include "import/art/svg_source.h"

#include <cairo-script.h>

#include <algorithm>
#include <memory>

#include "import/art/svg_handle.h"

namespace halvo::art {

namespace {

using Device = std::unique_ptr<cairo_device_t, Release<cairo_device_destroy>>;

// The library keeps coordinates in steps of 1/256, so that it is asked for a large picture.
constexpr double kScriptSide = 32768;
constexpr double kScriptSideOfText = 4096;

// A small file can ask for any number of copies of a part of itself.
constexpr std::size_t kMostScript = std::size_t{256} << 20;

cairo_status_t append(void* closure, const unsigned char* bytes, unsigned int count) {
  auto& text = *static_cast<std::string*>(closure);
  if (text.size() + count > kMostScript) return CAIRO_STATUS_WRITE_ERROR;
  text.append(reinterpret_cast<const char*>(bytes), count);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::variant<SourceSize, ArtError> sizeOfSvg(std::string_view document) {
  auto reading = readSvg(document);
  if (auto* error = std::get_if<ArtError>(&reading)) return std::move(*error);
  const SourceSize size = viewportOf(*std::get<SvgHandle>(reading));
  if (!hasExtent(size)) return noExtent();
  return size;
}

std::variant<DrawingScript, ArtError> drawSvg(const SourceText& source, const SourceSize& size) {
  auto reading = readSvg(source.document);
  if (auto* error = std::get_if<ArtError>(&reading)) return std::move(*error);
  const double side = source.hasText ? kScriptSideOfText : kScriptSide;
  const double scale = side / std::max(size.width, size.height) / (source.isTurned ? kTurnedSide : 1);
  DrawingScript script{{}, Matrix{1 / scale, 0, 0, 1 / scale, 0, 0}};
  RsvgRectangle viewport{0, 0, size.width * scale, size.height * scale};
  if (source.isTurned) {
    viewport = {0, 0, side, side};
    script.toDocument = quellaro::concat(script.toDocument, inverse(turnOf(size)));
  }
  const Device device(cairo_script_create_for_stream(append, &script.text));
  const CairoSurface surface(cairo_script_surface_create(device.get(), CAIRO_CONTENT_COLOR_ALPHA, side, side));
  GError* raw = nullptr;
  {
    const CairoContext context(cairo_create(surface.get()));
    rsvg_handle_render_document(std::get<SvgHandle>(reading).get(), context.get(), &viewport, &raw);
  }
  const SvgError error(raw);
  cairo_surface_finish(surface.get());
  cairo_device_finish(device.get());
  if (script.text.size() + 65536 > kMostScript) return ArtError{std::nullopt, "the document draws too much"};
  if (error) return ArtError{std::nullopt, error->message};
  return script;
}

}  // namespace halvo::art
