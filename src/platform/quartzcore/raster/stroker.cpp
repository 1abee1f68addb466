#include "platform/quartzcore/raster/stroker.h"

#include <cmath>
#include <initializer_list>
#include <numbers>

#include "platform/quartzcore/raster/fill.h"

namespace quellaro {

namespace {

CGPoint operator+(CGPoint a, CGPoint b) { return {a.x + b.x, a.y + b.y}; }
CGPoint operator-(CGPoint a, CGPoint b) { return {a.x - b.x, a.y - b.y}; }
CGPoint operator*(CGPoint a, double factor) { return {a.x * factor, a.y * factor}; }
double dot(CGPoint a, CGPoint b) { return a.x * b.x + a.y * b.y; }
double cross(CGPoint a, CGPoint b) { return a.x * b.y - a.y * b.x; }

// Or so short that it has no direction.
bool isZero(CGPoint way) { return dot(way, way) == 0; }
CGPoint unit(CGPoint way) { return way * (1 / std::sqrt(dot(way, way))); }

// Control points may lie on one another, or so near that rounding has made their direction.
CGPoint firstWay(std::initializer_list<CGPoint> ways, double tolerance) {
  for (const CGPoint way : ways)
    if (dot(way, way) > tolerance * tolerance) return way;
  return *(ways.end() - 1);
}

// Arcs that show no corners need no finer steps than these, however wide the line.
constexpr double kSmallestStep = std::numbers::pi / 512;
constexpr double kLargestStep = std::numbers::pi / 4;

}  // namespace

StrokeSink::StrokeSink(Rasterizer& rasterizer, const Affine& toArea, double lineWidth, const Box& visible,
                       std::vector<CGPoint>& buffer)
    : rasterizer_(rasterizer),
      toArea_(toArea),
      visible_(visible.grown(reach(lineWidth))),
      halfWidth_(lineWidth / 2),
      tolerance_(kFlatness * kSubpixels / toArea.stretch()),
      largestStep_(std::clamp(2 * std::acos(std::max(0.0, 1 - tolerance_ / halfWidth_)), kSmallestStep, kLargestStep)),
      cosineOfStep_(std::cos(largestStep_)),
      rightSide_(buffer) {
  right_.isRight = true;
}

void StrokeSink::move(CGPoint to) {
  endOpen();
  start_ = current_ = to;
}

void StrokeSink::line(CGPoint to) {
  const CGPoint way = to - current_;
  if (isZero(way)) return;
  joinTowards(way, std::sqrt(dot(way, way)));
  segmentTo(to, Corner::Join);
  endTangent_ = last_.direction;
}

void StrokeSink::cubic(CGPoint control1, CGPoint control2, CGPoint to) {
  const CGPoint begin = current_;
  // The curve begins with a join like any segment, or the outline's end; the corners between its chords are no joins.
  Corner corner = Corner::Join;
  if (const CGPoint tangent = firstWay({control1 - begin, control2 - begin, to - begin}, tolerance_);
      !isZero(tangent)) {
    if (!first_) {
      beginWith(segmentAlong(unit(tangent), 0));
      corner = Corner::WithinCurve;
    } else if (joinTowards(tangent, 0)) {
      corner = Corner::WithinCurve;
    }
  }
  const auto shows = [this](const Box& box) { return box.overlaps(visible_); };
  const auto emit = [&](CGPoint end) {
    if (end == current_) return;
    segmentTo(end, corner);
    corner = Corner::WithinCurve;
  };
  const Cubic curve{current_, control1, control2, to};
  if (shows(curve.box()))
    emitVisibleChords(curve, tolerance_, shows, emit);
  else
    emit(to);
  if (const CGPoint tangent = firstWay({to - control2, to - control1, to - begin}, tolerance_); !isZero(tangent))
    endTangent_ = unit(tangent);
}

// A corner of the outline is one between tangents. Where a curve comes to it, its chord there points elsewhere by half
// a step, which the difference between a miter and a bevel, and a miter's point, show many times as large.
bool StrokeSink::joinTowards(CGPoint way, double length) {
  if (!first_) return false;
  const CGPoint direction = unit(way);
  if (dot(endTangent_, direction) >= cosineOfStep_) return false;
  turnIntoEnd();
  const Segment segment = segmentAlong(direction, length);
  turn(current_, last_, segment, Corner::Join);
  last_ = segment;
  return true;
}

void StrokeSink::turnIntoEnd() {
  if (endTangent_.x == last_.direction.x && endTangent_.y == last_.direction.y) return;
  const Segment end = segmentAlong(endTangent_, 0);
  turn(current_, last_, end, Corner::WithinCurve);
  last_ = end;
}

void StrokeSink::close() {
  line(start_);
  if (first_) joinTowards(first_->direction, first_->length);
  endClosed();
  current_ = start_;
}

StrokeSink::Segment StrokeSink::segmentAlong(CGPoint direction, double length) const {
  return {direction, {-direction.y * halfWidth_, direction.x * halfWidth_}, length};
}

void StrokeSink::segmentTo(CGPoint to, Corner corner) {
  const CGPoint way = to - current_;
  const double length = std::sqrt(dot(way, way));
  if (length == 0) return;
  const Segment segment = segmentAlong({way.x / length, way.y / length}, length);
  if (first_)
    turn(current_, last_, segment, corner);
  else
    beginWith(segment);
  last_ = segment;
  current_ = to;
}

void StrokeSink::beginWith(const Segment& segment) {
  first_ = last_ = segment;
  left_.start = left_.reached = toArea_.map(current_ + segment.normal);
  right_.start = right_.reached = toArea_.map(current_ - segment.normal);
  rightSide_.assign(1, right_.start);
}

void StrokeSink::turn(CGPoint at, const Segment& from, const Segment& to, Corner corner) {
  const double sine = cross(from.direction, to.direction);
  const double cosine = dot(from.direction, to.direction);
  const bool turnsLeft = sine > 0;
  Side& inside = turnsLeft ? left_ : right_;
  Side& outside = turnsLeft ? right_ : left_;
  const double towardsInside = turnsLeft ? 1 : -1;
  // Where the offset lines of both segments meet, seen from the corner.
  const bool folds = cosine <= -0.999;
  const CGPoint miter = folds ? CGPoint{} : (from.normal + to.normal) * (1 / (1 + cosine));
  // The inner lines meet on the segments themselves when each has room; the other half is for its other end.
  const double needed = folds ? 0 : halfWidth_ * std::fabs(sine) / (1 + cosine);
  bool meets = !folds && needed <= std::min(from.length, to.length) / 2;
  CGPoint meeting = miter;
  // Where a curve begins or ends they meet on the line across it.
  if (corner == Corner::WithinCurve && (from.length == 0 || to.length == 0)) {
    meets = halfWidth_ * std::fabs(sine) <= std::max(from.length, to.length) && cosine > 0;
    meeting = from.length == 0 ? from.normal : to.normal;
  }
  turnInside(inside, at, at + from.normal * towardsInside, at + to.normal * towardsInside, at + meeting * towardsInside,
             meets);
  turnOutside(outside, at, from, to, miter, corner);
}

void StrokeSink::turnInside(Side& side, CGPoint at, CGPoint from, CGPoint to, CGPoint meeting, bool meets) {
  if (meets) return extend(side, meeting);
  extend(side, from);
  extend(side, at);
  extend(side, to);
}

void StrokeSink::turnOutside(Side& side, CGPoint at, const Segment& from, const Segment& to, CGPoint meeting,
                             Corner corner) {
  const double outwards = side.isRight ? -1 : 1;
  const double cosine = dot(from.direction, to.direction);
  if (corner == Corner::WithinCurve) {
    if (cosine >= cosineOfStep_) return extend(side, at + meeting * outwards);
    const double angle = std::atan2(cross(from.direction, to.direction), cosine);
    const int steps = static_cast<int>(std::ceil(std::fabs(angle) / largestStep_));
    for (int i = 0; i <= steps; ++i) {
      const double turned = angle * i / steps;
      const double c = std::cos(turned) * outwards;
      const double s = std::sin(turned) * outwards;
      extend(side, at + CGPoint{from.normal.x * c - from.normal.y * s, from.normal.x * s + from.normal.y * c});
    }
    return;
  }
  // The miter's length over the line's width is sqrt(2 / (1 + cosine)).
  if (2 <= kMiterLimit * kMiterLimit * (1 + cosine)) return extend(side, at + meeting * outwards);
  extend(side, at + from.normal * outwards);
  extend(side, at + to.normal * outwards);
}

void StrokeSink::extend(Side& side, CGPoint to) {
  const CGPoint mapped = toArea_.map(to);
  if (side.isRight) {
    if (rightSide_.size() == kMostPoints) {
      addRightSide();
      rightSide_.assign(1, right_.reached);
    }
    rightSide_.push_back(mapped);
  } else {
    rasterizer_.clippedEdge(side.reached, mapped);
  }
  side.reached = mapped;
}

// Backwards, from where it has got to.
void StrokeSink::addRightSide() {
  for (std::size_t i = rightSide_.size() - 1; i > 0; --i) rasterizer_.clippedEdge(rightSide_[i], rightSide_[i - 1]);
}

void StrokeSink::endOpen() {
  if (!first_) return;
  turnIntoEnd();
  extend(left_, current_ + last_.normal);
  extend(right_, current_ - last_.normal);
  rasterizer_.clippedEdge(left_.reached, right_.reached);
  addRightSide();
  rasterizer_.clippedEdge(right_.start, left_.start);
  rasterizer_.endContour();
  first_.reset();
}

void StrokeSink::endClosed() {
  if (!first_) return;
  turn(current_, last_, *first_, Corner::WithinCurve);
  extend(left_, start_ + first_->normal);
  extend(right_, start_ - first_->normal);
  rasterizer_.endContour();
  addRightSide();
  rasterizer_.endContour();
  first_.reset();
}

}  // namespace quellaro
