#pragma once

#include <vector>

#include "platform/coregraphics/path.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/raster/rasterizer.h"

namespace quellaro {

// Draws outlines into a surface. Keeps its buffers between calls.
class Painter {
 public:
  explicit Painter(const SpanFunctions& spans = fastestSpans()) : spans_(&spans) {}

  void fill(const Surface& surface, const CGPath& path, const Affine& transform, const CGColor& color);
  // Nothing for a line width that is not positive.
  void stroke(const Surface& surface, const CGPath& path, const Affine& transform, double lineWidth,
              const CGColor& color);

 private:
  template <class AddEdges>
  void paint(const Surface& surface, const Box& box, bool simple, const CGColor& color, const AddEdges& addEdges);

  const SpanFunctions* spans_;
  Rasterizer rasterizer_;
  std::vector<CGPoint> buffer_;
};

}  // namespace quellaro
