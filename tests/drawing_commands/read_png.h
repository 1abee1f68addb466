#pragma once

#include <cairo.h>

#include <string>

#include "platform/quartzcore/bitmap.h"

namespace quellaro {

inline Bitmap readPng(const std::string& path) {
  cairo_surface_t* file = cairo_image_surface_create_from_png(path.c_str());
  Bitmap bitmap(cairo_image_surface_get_width(file), cairo_image_surface_get_height(file));
  cairo_surface_t* surface =
      cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(bitmap.pixels.data()), CAIRO_FORMAT_ARGB32,
                                          bitmap.width, bitmap.height, bitmap.width * 4);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_surface(cr, file, 0, 0);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  cairo_surface_destroy(file);
  return bitmap;
}

}  // namespace quellaro
