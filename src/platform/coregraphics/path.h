#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>

#include "platform/coregraphics/geometry.h"
#include "platform/coregraphics/growing_array.h"
#include "platform/coregraphics/path_points.h"

namespace quellaro {

enum class PathVerb : std::uint8_t { Move, Line, Quad, Cubic, Close };

// How many points a verb owns in CGPath::points.
constexpr int pointCount(PathVerb verb) {
  switch (verb) {
    case PathVerb::Move:
    case PathVerb::Line:
      return 1;
    case PathVerb::Quad:
      return 2;
    case PathVerb::Cubic:
      return 3;
    case PathVerb::Close:
      break;
  }
  return 0;
}

// An outline: one byte for each segment, and the segments' points one after the other (control points before the end
// point). A segment other than a move is only ever stored after a move, so whoever walks a path may rely on a current
// point.
class CGPath {
 public:
  void moveTo(CGPoint to) {
    *verbs_.append(1) = PathVerb::Move;
    *points_.append(1) = to;
  }
  // These add nothing while the path has no current point.
  void lineTo(CGPoint to) { add(PathVerb::Line, to); }
  void quadTo(CGPoint control, CGPoint to) { add(PathVerb::Quad, control, to); }
  void cubicTo(CGPoint control1, CGPoint control2, CGPoint to) { add(PathVerb::Cubic, control1, control2, to); }
  // After a close the current point is the start of the sub-path that was closed.
  void close() {
    if (!empty()) *verbs_.append(1) = PathVerb::Close;
  }

  bool empty() const { return verbs().empty(); }
  std::span<const PathVerb> verbs() const { return keptVerbs_.empty() ? verbs_.values() : keptVerbs_; }
  PathPoints points() const { return keptVerbs_.empty() ? PathPoints(points_.values()) : keptPoints_; }
  std::size_t pointCount() const { return points().size(); }
  // Room for that many points and segments.
  void reserve(std::size_t points);
  // For a path that is finished and kept: takes exactly what it needs from `memory`, which must outlive it and its
  // copies, and gives back the rest.
  void moveInto(std::pmr::memory_resource& memory);

 private:
  template <class... Points>
  void add(PathVerb verb, Points... points) {
    if (verbs_.values().empty()) return;
    *verbs_.append(1) = verb;
    CGPoint* next = points_.append(sizeof...(points));
    ((*next++ = points), ...);
  }

  GrowingArray<PathVerb> verbs_;
  GrowingArray<CGPoint> points_;
  std::span<const PathVerb> keptVerbs_;
  PathPoints keptPoints_;
};

}  // namespace quellaro
