#pragma once

#include "platform/quartzcore/raster/curve.h"
#include "platform/quartzcore/raster/rasterizer.h"

namespace quellaro {

// How far a chord may lie from its curve, in pixels.
inline constexpr double kFlatness = 0.1;

// The edges of an outline's inside, for a path that walkOutline() walks in subpixels relative to the area's corner.
// Every contour is closed.
class FillSink {
 public:
  FillSink(Rasterizer& rasterizer, const Box& area) : rasterizer_(rasterizer), area_(area) {}

  void move(CGPoint to) {
    close();
    start_ = current_ = to;
  }
  void line(CGPoint to) {
    rasterizer_.clippedEdge(current_, to);
    current_ = to;
  }
  void cubic(CGPoint control1, CGPoint control2, CGPoint to) {
    const Cubic curve{current_, control1, control2, to};
    const Box box = curve.box();
    if (!box.overlaps(area_)) return line(to);
    if (!area_.contains(box))
      return emitVisibleChords(
          curve, kTolerance, [this](const Box& part) { return part.overlaps(area_); },
          [this](CGPoint end) { line(end); });
    emitChords(curve, static_cast<int>(curve.steps(kTolerance)), [this](CGPoint end) {
      rasterizer_.edge(current_, end);
      current_ = end;
    });
  }
  void close() {
    if (current_ != start_) line(start_);
    rasterizer_.endContour();
  }

 private:
  static constexpr double kTolerance = kFlatness * kSubpixels;

  Rasterizer& rasterizer_;
  Box area_;
  CGPoint start_;
  CGPoint current_;
};

}  // namespace quellaro
