// Imports SVG files and compares each frame with the drawing library's own picture of its source. One line for each
// file: mean difference, share of pixels far off (%), bytes of the source and of the frame, milliseconds, points,
// notes, name; or 'error', the reason and the name. Called by scripts/import-fidelity.
#include <librsvg/rsvg.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "import/art/import_frame.h"
#include "picture/frame_view.h"
#include "picture/png_writer.h"
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

std::unique_ptr<cairo_surface_t, Release> meantBy(const std::string& source, double width, double height) {
  const std::unique_ptr<RsvgHandle, Release> handle(
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(source.data()), source.size(), nullptr));
  std::unique_ptr<cairo_surface_t, Release> surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kSide, kSide));
  const std::unique_ptr<cairo_t, Release> context(cairo_create(surface.get()));
  cairo_set_source_rgb(context.get(), 1, 1, 1);
  cairo_paint(context.get());
  const double scale = kSide / std::max(width, height);
  const RsvgRectangle viewport{(kSide - width * scale) / 2, (kSide - height * scale) / 2, width * scale,
                               height * scale};
  rsvg_handle_set_dpi(handle.get(), 96);
  rsvg_handle_render_document(handle.get(), context.get(), &viewport, nullptr);
  cairo_surface_flush(surface.get());
  return surface;
}

void compare(const std::string& path, const char* keep) {
  std::ifstream file(path, std::ios::binary);
  const std::string source{std::istreambuf_iterator<char>(file), {}};
  const auto begin = std::chrono::steady_clock::now();
  const auto imported = halvo::importFrame(source, {});
  const double took = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  if (const auto* error = std::get_if<halvo::ArtError>(&imported)) {
    std::printf("error\t%s\t%s\n", error->reason.c_str(), path.c_str());
    return;
  }
  const auto& frame = std::get<halvo::ArtFrame>(imported);
  const quellaro::Bitmap shown = pictureOf(frame.document);
  const auto meant = meantBy(source, frame.width, frame.height);
  const unsigned char* pixels = cairo_image_surface_get_data(meant.get());
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(meant.get()));
  double sum = 0;
  int far = 0;
  for (std::size_t y = 0; y < kSide; ++y)
    for (std::size_t x = 0; x < kSide; ++x) {
      const auto wanted = *reinterpret_cast<const std::uint32_t*>(pixels + y * stride + x * 4);
      const std::uint32_t got = shown.pixels[y * kSide + x];
      int most = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const int off = std::abs(static_cast<int>(wanted >> shift & 255U) - static_cast<int>(got >> shift & 255U));
        sum += off;
        most = std::max(most, off);
      }
      far += most > kFarOff ? 1 : 0;
    }
  std::string notes;
  for (const halvo::ArtNote& note : frame.notes)
    notes +=
        (notes.empty() ? "" : "; ") + note.element + ": " + note.what + (note.howFar.empty() ? "" : ", " + note.howFar);
  std::printf("%.4f\t%.4f\t%zu\t%zu\t%.2f\t%zu\t%s\t%s\n", sum / (3.0 * kSide * kSide), 100.0 * far / (kSide * kSide),
              source.size(), frame.document.size(), took, frame.points, notes.c_str(), path.c_str());
  if (!keep) return;
  const std::string name = std::string(keep) + path.substr(path.rfind('/'));
  std::ofstream(name, std::ios::binary) << frame.document;
  halvo::writePng(shown, name + ".png");
  cairo_surface_write_to_png(meant.get(), (name + ".meant.png").c_str());
}

}  // namespace

int main(int argc, char** argv) {
  const char* const keep = argc > 1 ? argv[1] : nullptr;
  std::string path;
  while (std::getline(std::cin, path)) {
    compare(path, keep);
    std::fflush(stdout);
  }
  return 0;
}
