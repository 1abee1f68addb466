#include "import/art/source_picture.h"

#include <algorithm>

#include "import/art/source_text.h"
#include "import/art/svg_handle.h"

namespace halvo::art {

std::variant<quellaro::Bitmap, ArtError> drawSource(std::string_view bytes, int side) {
  const auto text = unpackSource(bytes);
  if (const auto* error = std::get_if<ArtError>(&text)) return *error;
  const auto reading = readSvg(std::get<std::string>(text));
  if (const auto* error = std::get_if<ArtError>(&reading)) return *error;
  RsvgHandle& handle = *std::get<SvgHandle>(reading);
  const SourceSize size = viewportOf(handle);
  if (!hasExtent(size)) return noExtent();
  const double scale = side / std::max(size.width, size.height);
  const RsvgRectangle viewport{(side - size.width * scale) / 2, (side - size.height * scale) / 2, size.width * scale,
                               size.height * scale};
  quellaro::Bitmap picture(side, side);
  const CairoSurface surface(cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(picture.pixels.data()), CAIRO_FORMAT_ARGB32, side, side, side * 4));
  GError* raw = nullptr;
  {
    const CairoContext context(cairo_create(surface.get()));
    rsvg_handle_render_document(&handle, context.get(), &viewport, &raw);
  }
  const SvgError error(raw);
  cairo_surface_finish(surface.get());
  if (error) return ArtError{std::nullopt, error->message};
  return picture;
}

}  // namespace halvo::art
