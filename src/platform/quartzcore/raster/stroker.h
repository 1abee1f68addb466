#pragma once

#include <optional>
#include <vector>

#include "platform/quartzcore/raster/curve.h"
#include "platform/quartzcore/raster/rasterizer.h"

namespace quellaro {

// The edges of an outline's stroke: butt caps, miter joins to limit 10, bevels beyond. Takes a path that walkOutline()
// walks in user space; offsets are made there and mapped afterwards, so that an uneven transform bends the pen too.
//
// The stroke is the union of one rectangle for each segment and one wedge for each join, all turning the same way, so
// that no overlap can open a hole. Edges that two of them share are left out.
class StrokeSink {
 public:
  // `toArea` maps user space to subpixels relative to the area's corner; `visible` is what may show, in user space.
  // `buffer` is room to work in.
  StrokeSink(Rasterizer& rasterizer, const Affine& toArea, double lineWidth, const Box& visible,
             std::vector<CGPoint>& buffer);

  void move(CGPoint to);
  void line(CGPoint to);
  void cubic(CGPoint control1, CGPoint control2, CGPoint to);
  void close();
  // After the last segment.
  void finish() { endOpen(); }

  // How far a stroke's edges can be from its outline.
  static double reach(double lineWidth) { return lineWidth / 2 * kMiterLimit; }

 private:
  static constexpr double kMiterLimit = 10;
  // Points, 1 MB. What is longer has its right side added in parts.
  static constexpr std::size_t kMostPoints = 65536;

  enum class Corner { Join, WithinCurve };
  struct Segment {
    CGPoint direction;  // of length 1
    CGPoint normal;     // to the left, half a line width long
    double length = 0;  // 0: the direction of a curve at its end
  };
  // A side of the stroke in the area's subpixels.
  struct Side {
    CGPoint start;
    CGPoint reached;
    bool isRight = false;
  };

  Segment segmentAlong(CGPoint direction, double length) const;
  void beginWith(const Segment& segment);
  void segmentTo(CGPoint to, Corner corner);
  // Draws the join when the outline has a corner here; the next segment then goes on along `way`, for `length`.
  bool joinTowards(CGPoint way, double length);
  // A curve's last chord points elsewhere than the curve does at its end.
  void turnIntoEnd();
  void turn(CGPoint at, const Segment& from, const Segment& to, Corner corner);
  void turnInside(Side& side, CGPoint at, CGPoint from, CGPoint to, CGPoint meeting, bool meets);
  void turnOutside(Side& side, CGPoint at, const Segment& from, const Segment& to, CGPoint meeting, Corner corner);
  void extend(Side& side, CGPoint to);
  void endOpen();
  void endClosed();
  void addRightSide();

  Rasterizer& rasterizer_;
  Affine toArea_;
  Box visible_;
  double halfWidth_;
  double tolerance_;    // in user space
  double largestStep_;  // of an arc, in radians
  double cosineOfStep_;
  CGPoint start_;  // of the sub-path
  CGPoint current_;
  std::optional<Segment> first_;
  Segment last_;
  // Of the outline where it has got to, of length 1; a curve's last chord points elsewhere.
  CGPoint endTangent_;
  Side left_;
  Side right_;
  std::vector<CGPoint>& rightSide_;
};

}  // namespace quellaro
