#include "import/art/svg_source.h"

#include <cairo-script.h>
#include <librsvg/rsvg.h>

#include <cmath>
#include <memory>

namespace halvo::art {

namespace {

template <auto kRelease>
struct Release {
  template <class Object>
  void operator()(Object* object) const {
    kRelease(object);
  }
};
using Handle = std::unique_ptr<RsvgHandle, Release<g_object_unref>>;
using Device = std::unique_ptr<cairo_device_t, Release<cairo_device_destroy>>;
using Surface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Release<cairo_destroy>>;
using Error = std::unique_ptr<GError, Release<g_error_free>>;

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

// "... on line 3 column 5 of data: Opening and ending tag mismatch: ...\n"
ArtError readingError(const GError& error) {
  const std::string_view message = error.message;
  ArtError result{std::nullopt, std::string(message)};
  constexpr std::string_view kLine = " on line ";
  constexpr std::string_view kData = " of data: ";
  const std::size_t line = message.find(kLine);
  const std::size_t data = message.find(kData);
  if (line == std::string_view::npos || data == std::string_view::npos) return result;
  std::size_t number = 0;
  for (std::size_t i = line + kLine.size(); i < data && message[i] >= '0' && message[i] <= '9'; ++i)
    number = number * 10 + static_cast<std::size_t>(message[i] - '0');
  result.line = number;
  const std::string_view reason = message.substr(data + kData.size());
  result.reason = std::string(reason.substr(0, reason.find('\n')));
  return result;
}

double inPixels(const RsvgLength& length) {
  switch (length.unit) {
    case RSVG_UNIT_PX:
      return length.length;
    case RSVG_UNIT_IN:
      return length.length * 96;
    case RSVG_UNIT_CM:
      return length.length * 96 / 2.54;
    case RSVG_UNIT_MM:
      return length.length * 96 / 25.4;
    case RSVG_UNIT_PT:
      return length.length * 96 / 72;
    case RSVG_UNIT_PC:
      return length.length * 16;
    default:
      return -1;
  }
}

// Of the viewport: its width and height, completed by the view box. Not positive where there is none.
SourceSize sizeOf(RsvgHandle& handle) {
  SourceSize size;
  if (rsvg_handle_get_intrinsic_size_in_pixels(&handle, &size.width, &size.height)) return size;
  gboolean hasWidth = FALSE, hasHeight = FALSE, hasBox = FALSE;
  RsvgLength width{}, height{};
  RsvgRectangle box{};
  rsvg_handle_get_intrinsic_dimensions(&handle, &hasWidth, &width, &hasHeight, &height, &hasBox, &box);
  if (!hasBox || !(box.width > 0 && box.height > 0)) return {};
  if (hasWidth && inPixels(width) > 0) return {inPixels(width), inPixels(width) / box.width * box.height};
  if (hasHeight && inPixels(height) > 0) return {inPixels(height) / box.height * box.width, inPixels(height)};
  return {box.width, box.height};
}

std::variant<Handle, ArtError> read(std::string_view document) {
  GError* raw = nullptr;
  Handle handle(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(document.data()), document.size(), &raw));
  const Error error(raw);
  if (!handle) return error ? readingError(*error) : ArtError{std::nullopt, "the document cannot be read"};
  rsvg_handle_set_dpi(handle.get(), 96);
  return handle;
}

}  // namespace

std::variant<SourceSize, ArtError> sizeOfSvg(std::string_view document) {
  auto reading = read(document);
  if (auto* error = std::get_if<ArtError>(&reading)) return std::move(*error);
  const SourceSize size = sizeOf(*std::get<Handle>(reading));
  if (!(size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height)))
    return ArtError{std::nullopt, "the document has no size: its width, height or viewBox are missing or 0"};
  return size;
}

std::variant<DrawingScript, ArtError> drawSvg(const SourceText& source, const SourceSize& size) {
  auto reading = read(source.document);
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
  const Surface surface(cairo_script_surface_create(device.get(), CAIRO_CONTENT_COLOR_ALPHA, side, side));
  GError* raw = nullptr;
  {
    const Context context(cairo_create(surface.get()));
    rsvg_handle_render_document(std::get<Handle>(reading).get(), context.get(), &viewport, &raw);
  }
  const Error error(raw);
  cairo_surface_finish(surface.get());
  cairo_device_finish(device.get());
  if (script.text.size() + 65536 > kMostScript) return ArtError{std::nullopt, "the document draws too much"};
  if (error) return ArtError{std::nullopt, error->message};
  return script;
}

}  // namespace halvo::art
