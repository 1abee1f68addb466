#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "platform/coregraphics/geometry.h"

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
    verbs_.push_back(PathVerb::Move);
    points_.push_back(to);
  }
  // These add nothing while the path has no current point.
  void lineTo(CGPoint to) {
    if (verbs_.empty()) return;
    verbs_.push_back(PathVerb::Line);
    points_.push_back(to);
  }
  void quadTo(CGPoint control, CGPoint to) {
    if (verbs_.empty()) return;
    verbs_.push_back(PathVerb::Quad);
    points_.push_back(control);
    points_.push_back(to);
  }
  void cubicTo(CGPoint control1, CGPoint control2, CGPoint to) {
    if (verbs_.empty()) return;
    verbs_.push_back(PathVerb::Cubic);
    points_.push_back(control1);
    points_.push_back(control2);
    points_.push_back(to);
  }
  // After a close the current point is the start of the sub-path that was closed.
  void close() {
    if (!verbs_.empty()) verbs_.push_back(PathVerb::Close);
  }

  bool empty() const { return verbs_.empty(); }
  std::span<const PathVerb> verbs() const { return verbs_; }
  std::span<const CGPoint> points() const { return points_; }
  // Room for that many points and segments.
  void reserve(std::size_t points);
  // For a path that is kept: takes exactly what it needs from `memory`, which must outlive it, and gives back the rest.
  void moveInto(std::pmr::memory_resource& memory);

 private:
  std::pmr::vector<PathVerb> verbs_;
  std::pmr::vector<CGPoint> points_;
};

}  // namespace quellaro
