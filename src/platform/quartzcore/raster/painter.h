#pragma once

#include <vector>

#include "platform/coregraphics/path.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/raster/rasterizer.h"

namespace quellaro {

// Draws outlines into a surface, in bands of rows: what a picture's shapes draw over one another, and what they need
// for it, stays in the processor's cache from one shape to the next. Keeps its buffers between pictures.
class Painter {
 public:
  explicit Painter(const SpanFunctions& spans = fastestSpans()) : spans_(&spans) {}

  void begin(const Surface& surface) { surface_ = surface; }
  // The paths stay as they are until finish() has returned.
  void fill(const CGPath& path, const Affine& transform, const CGColor& color);
  // Nothing for a line width that is not positive.
  void stroke(const CGPath& path, const Affine& transform, double lineWidth, const CGColor& color);
  void finish();

 private:
  struct Shape {
    const CGPath* path;
    Affine transform;
    double lineWidth;  // 0: filled
    Outline kind;
    Paint paint;
    PixelRect pixels;  // where it may show
  };

  void add(Shape shape, const Box& box, const CGColor& color);
  void draw(const Shape& shape, const PixelRect& area);

  const SpanFunctions* spans_;
  Surface surface_{nullptr, 0, 0, 0};
  std::vector<Shape> shapes_;
  std::size_t points_ = 0;  // of all of them
  Rasterizer rasterizer_;
  std::vector<CGPoint> buffer_;
};

}  // namespace quellaro
