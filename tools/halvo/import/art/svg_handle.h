#pragma once

#include <cairo.h>
#include <librsvg/rsvg.h>

#include <memory>
#include <string_view>
#include <variant>

#include "import/art/import_frame.h"
#include "import/art/source_text.h"

namespace halvo::art {

template <auto kRelease>
struct Release {
  template <class Object>
  void operator()(Object* object) const {
    kRelease(object);
  }
};
using SvgHandle = std::unique_ptr<RsvgHandle, Release<g_object_unref>>;
using SvgError = std::unique_ptr<GError, Release<g_error_free>>;
using CairoSurface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_destroy>>;
using CairoContext = std::unique_ptr<cairo_t, Release<cairo_destroy>>;

// A document as the drawing library has read it. It knows of no file or address that a reference could start from.
std::variant<SvgHandle, ArtError> readSvg(std::string_view document);

// Of the viewport: its width and height, completed by the view box. Not positive where there is none.
SourceSize viewportOf(RsvgHandle& handle);
bool hasExtent(const SourceSize& size);
ArtError noExtent();

}  // namespace halvo::art
