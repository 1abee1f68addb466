#pragma once

#include <optional>

#include "platform/coregraphics/path.h"
#include "platform/quartzcore/raster/affine.h"

namespace quellaro {

// The box around all points of the path, control points too; absent for an empty path, or when a coordinate is not a
// number. Coordinates are taken as far away at most.
std::optional<Box> pointBox(const CGPath& path);

// Whether the path is one contour that goes once around the middle of `box` without ever turning back, seen from there:
// then it cannot cross itself. It is enough that control points do.
bool isStar(const CGPath& path, const Box& box);

// Calls the sink for each segment, with points mapped: move(to), line(to), cubic(control1, control2, to), close(). A
// quadratic curve comes as the cubic that it is.
template <class Sink>
void walkOutline(const CGPath& path, const Affine& transform, Sink& sink) {
  const PathPoints points = path.points();
  std::size_t next = 0;
  CGPoint current;
  CGPoint start;
  const auto take = [&] { return transform.map(clampFar(points[next++])); };
  for (const PathVerb verb : path.verbs()) {
    switch (verb) {
      case PathVerb::Move:
        start = current = take();
        sink.move(current);
        break;
      case PathVerb::Line:
        current = take();
        sink.line(current);
        break;
      case PathVerb::Quad: {
        const CGPoint control = take();
        const CGPoint to = take();
        const CGPoint first{current.x + (control.x - current.x) * (2.0 / 3),
                            current.y + (control.y - current.y) * (2.0 / 3)};
        const CGPoint second{to.x + (control.x - to.x) * (2.0 / 3), to.y + (control.y - to.y) * (2.0 / 3)};
        sink.cubic(first, second, to);
        current = to;
        break;
      }
      case PathVerb::Cubic: {
        const CGPoint first = take();
        const CGPoint second = take();
        current = take();
        sink.cubic(first, second, current);
        break;
      }
      case PathVerb::Close:
        current = start;
        sink.close();
        break;
    }
  }
}

}  // namespace quellaro
