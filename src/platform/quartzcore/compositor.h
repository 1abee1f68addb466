#pragma once

#include <memory>

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/layer.h"
#include "platform/quartzcore/raster/spans.h"

namespace quellaro {

// Draws layer trees into memory, with the processor alone. Keeps its buffers from one picture to the next, so one that
// is kept is faster than a new one for every picture. One thread at a time.
class Compositor {
 public:
  Compositor(const SpanFunctions& spans = fastestSpans());
  Compositor(Compositor&&) noexcept;
  Compositor& operator=(Compositor&&) noexcept;
  ~Compositor();

  // Draws the tree over what the surface shows. The root's parent, in whose coordinates it has its position, is the
  // surface with its origin at the top left. Every layer draws its background colour over its bounds, then its outline,
  // then its sublayers; nothing is clipped to bounds. Of transforms, what they do within the plane counts. An outline
  // with a coordinate that is not a number is not drawn, nor is anything below a transform with such an entry.
  void draw(const CALayer& root, const Surface& surface);

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace quellaro
