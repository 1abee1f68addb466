#include "import_art/fidelity.h"

#include <librsvg/rsvg.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "picture/frame_view.h"
#include "platform/quartzcore/compositor.h"

namespace {

constexpr int kSide = 256;
constexpr int kFarOff = 64;

struct Release {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};

quellaro::Bitmap pictureOf(const std::string& document) {
  const auto view = halvo::makeView({kSide, kSide}, quellaro::QLHalvoBackground::white);
  halvo::showFrame(*view, quellaro::SVGDocument::parse(document));
  quellaro::Bitmap bitmap(kSide, kSide);
  quellaro::Compositor compositor;
  view->display(compositor, bitmap);
  return bitmap;
}

quellaro::Bitmap meantBy(const std::string& source, double width, double height) {
  const std::unique_ptr<RsvgHandle, Release> handle(
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(source.data()), source.size(), nullptr));
  const std::unique_ptr<cairo_surface_t, Release> surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kSide, kSide));
  const std::unique_ptr<cairo_t, Release> context(cairo_create(surface.get()));
  cairo_set_source_rgb(context.get(), 1, 1, 1);
  cairo_paint(context.get());
  const double scale = kSide / std::max(width, height);
  const RsvgRectangle viewport{(kSide - width * scale) / 2, (kSide - height * scale) / 2, width * scale,
                               height * scale};
  cairo_rectangle(context.get(), viewport.x, viewport.y, viewport.width, viewport.height);
  cairo_clip(context.get());
  rsvg_handle_set_dpi(handle.get(), 96);
  rsvg_handle_render_document(handle.get(), context.get(), &viewport, nullptr);
  cairo_surface_flush(surface.get());
  quellaro::Bitmap bitmap(kSide, kSide);
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
  for (int y = 0; y < kSide; ++y)
    std::memcpy(bitmap.row(y), cairo_image_surface_get_data(surface.get()) + static_cast<std::size_t>(y) * stride,
                kSide * sizeof(std::uint32_t));
  for (std::uint32_t& pixel : bitmap.pixels) pixel |= 0xFF000000U;
  return bitmap;
}

}  // namespace

Fidelity fidelityOf(const std::string& source, const halvo::ArtFrame& frame) {
  return fidelityTo(meantBy(source, frame.width, frame.height), frame);
}

Fidelity fidelityTo(quellaro::Bitmap meant, const halvo::ArtFrame& frame) {
  Fidelity result;
  result.shown = pictureOf(frame.document);
  result.meant = std::move(meant);
  for (std::uint32_t& pixel : result.meant.pixels) {
    // Multiplied by alpha already, so that nothing overflows.
    const std::uint32_t white = 255U - (pixel >> 24);
    pixel = (pixel | 0xFF000000U) + (white << 16 | white << 8 | white);
  }
  double sum = 0;
  int far = 0;
  for (std::size_t i = 0; i < result.shown.pixels.size(); ++i) {
    int most = 0;
    for (int shift = 0; shift < 24; shift += 8) {
      const auto at = [shift](std::uint32_t pixel) { return static_cast<int>(pixel >> shift & 255U); };
      const int off = std::abs(at(result.meant.pixels[i]) - at(result.shown.pixels[i]));
      sum += off;
      most = std::max(most, off);
    }
    far += most > kFarOff ? 1 : 0;
  }
  result.mean = sum / (3.0 * kSide * kSide);
  result.farOff = 100.0 * far / (kSide * kSide);
  return result;
}
