#include "quartzcore/cairo_renderer.h"

#include <cairo.h>

#include "platform/quartzcore/shape_layer.h"

namespace quellaro {

namespace {

void setSource(cairo_t* cr, const CGColor& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

void addPath(cairo_t* cr, const CGPath& path) {
  const std::vector<CGPoint> points = path.points().values();
  const CGPoint* p = points.data();
  CGPoint current;
  CGPoint start;
  cairo_new_path(cr);
  for (const PathVerb verb : path.verbs()) {
    switch (verb) {
      case PathVerb::Move:
        cairo_move_to(cr, p[0].x, p[0].y);
        start = p[0];
        break;
      case PathVerb::Line:
        cairo_line_to(cr, p[0].x, p[0].y);
        break;
      case PathVerb::Quad:
        cairo_curve_to(cr, current.x + (p[0].x - current.x) * 2 / 3, current.y + (p[0].y - current.y) * 2 / 3,
                       p[1].x + (p[0].x - p[1].x) * 2 / 3, p[1].y + (p[0].y - p[1].y) * 2 / 3, p[1].x, p[1].y);
        break;
      case PathVerb::Cubic:
        cairo_curve_to(cr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
        break;
      case PathVerb::Close:
        cairo_close_path(cr);
        current = start;
        break;
    }
    if (pointCount(verb) > 0) current = p[pointCount(verb) - 1];
    p += pointCount(verb);
  }
}

void drawLayer(cairo_t* cr, const CALayer& layer) {
  cairo_save(cr);
  const CGRect bounds = layer.bounds();
  cairo_translate(cr, layer.position().x, layer.position().y);
  if (const auto& t = layer.transform()) {
    const cairo_matrix_t matrix{t->m11, t->m12, t->m21, t->m22, t->m41, t->m42};
    cairo_transform(cr, &matrix);
  }
  cairo_translate(cr, -bounds.origin.x - bounds.size.width / 2, -bounds.origin.y - bounds.size.height / 2);
  if (const auto& color = layer.backgroundColor()) {
    setSource(cr, *color);
    cairo_rectangle(cr, bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height);
    cairo_fill(cr);
  }
  if (const auto* shape = layer.asShapeLayer(); shape != nullptr && shape->path() != nullptr) {
    addPath(cr, *shape->path());
    if (const auto& color = shape->fillColor()) {
      setSource(cr, *color);
      cairo_fill_preserve(cr);
    }
    if (const auto& color = shape->strokeColor(); color && shape->lineWidth() > 0) {
      setSource(cr, *color);
      cairo_set_line_width(cr, shape->lineWidth());
      cairo_stroke_preserve(cr);
    }
    cairo_new_path(cr);
  }
  for (const auto& sublayer : layer.sublayers()) drawLayer(cr, *sublayer);
  cairo_restore(cr);
}

}  // namespace

void drawWithCairo(const CALayer& root, Bitmap& bitmap) {
  cairo_surface_t* surface =
      cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(bitmap.pixels.data()), CAIRO_FORMAT_ARGB32,
                                          bitmap.width, bitmap.height, bitmap.width * 4);
  cairo_t* cr = cairo_create(surface);
  cairo_set_miter_limit(cr, 10);
  drawLayer(cr, root);
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  cairo_surface_destroy(surface);
}

}  // namespace quellaro
