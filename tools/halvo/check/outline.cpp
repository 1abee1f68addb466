#include "check/outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace halvo {

namespace {

using namespace quellaro;

// The engine's own.
constexpr double kMiterLimit = 10;

CGPoint operator+(CGPoint a, CGPoint b) { return {a.x + b.x, a.y + b.y}; }
CGPoint operator-(CGPoint a, CGPoint b) { return {a.x - b.x, a.y - b.y}; }
CGPoint operator*(CGPoint a, double factor) { return {a.x * factor, a.y * factor}; }
double cross(CGPoint a, CGPoint b) { return a.x * b.y - a.y * b.x; }
double dot(CGPoint a, CGPoint b) { return a.x * b.x + a.y * b.y; }
bool isZero(CGPoint a) { return a.x == 0 && a.y == 0; }

// Follows an outline's corners: the directions in which each comes in and goes out.
class CornerSearch {
 public:
  explicit CornerSearch(double miterLimit) : miterLimit_(miterLimit) {}

  void move(CGPoint to) {
    start_ = current_ = to;
    first_.reset();
    last_.reset();
  }
  // The points of one segment behind the current one.
  void segment(const CGPoint* points, int count) {
    const CGPoint end = points[count - 1];
    CGPoint leaving{};
    for (int i = 0; i < count && isZero(leaving); ++i) leaving = points[i] - current_;
    CGPoint arriving{};
    for (int i = count - 2; i >= -1 && isZero(arriving); --i) arriving = end - (i < 0 ? current_ : points[i]);
    current_ = end;
    if (isZero(leaving)) return;
    if (last_) corner(*last_, leaving);
    if (!first_) first_ = leaving;
    last_ = arriving;
  }
  void close() {
    segment(&start_, 1);
    if (first_ && last_) corner(*last_, *first_);
    move(start_);
  }
  bool hasFound() const { return found_; }

 private:
  // The miter's length over the line's width is sqrt(2 / (1 + cosine)).
  void corner(CGPoint in, CGPoint out) {
    const double cosine = dot(in, out) / std::sqrt(dot(in, in) * dot(out, out));
    const double ratio = std::sqrt(2 / std::fmax(1 + cosine, 1e-12));
    if ((ratio <= kMiterLimit) != (ratio <= miterLimit_)) found_ = true;
  }

  double miterLimit_;
  CGPoint start_;
  CGPoint current_;
  std::optional<CGPoint> first_;
  std::optional<CGPoint> last_;
  bool found_ = false;
};

// The outline's points, curves as sixteen chords each.
std::vector<CGPoint> chordsOf(const CGPath& outline) {
  constexpr int kChords = 16;
  const std::vector<CGPoint> points = outline.points().values();
  const CGPoint* point = points.data();
  std::vector<CGPoint> chords;
  for (const PathVerb verb : outline.verbs()) {
    const int count = pointCount(verb);
    if (count == 1) chords.push_back(*point);
    for (int i = 1; count > 1 && i <= kChords; ++i) {
      // De Casteljau's construction, between the last point and the verb's own.
      std::array<CGPoint, 4> between{point[-1], point[0], point[1], point[count - 1]};
      const double t = static_cast<double>(i) / kChords;
      for (int left = count; left > 0; --left)
        for (std::size_t k = 0; k < static_cast<std::size_t>(left); ++k)
          between[k] = between[k] + (between[k + 1] - between[k]) * t;
      chords.push_back(between[0]);
    }
    point += count;
  }
  return chords;
}

}  // namespace

bool hasArea(const CGPath& outline) {
  const std::vector<CGPoint> points = outline.points().values();
  const CGPoint* point = points.data();
  CGPoint start{};
  CGPoint direction{};
  for (const PathVerb verb : outline.verbs()) {
    const int count = pointCount(verb);
    if (verb == PathVerb::Move) {
      start = *point;
      direction = {};
    } else {
      for (int i = 0; i < count; ++i) {
        const CGPoint way = point[i] - start;
        if (isZero(direction)) direction = way;
        if (std::fabs(cross(direction, way)) > 1e-9 * (dot(direction, direction) + dot(way, way))) return true;
      }
    }
    point += count;
  }
  return false;
}

bool hasEnds(const CGPath& outline) {
  bool isOpen = false;
  for (const PathVerb verb : outline.verbs()) {
    if (verb == PathVerb::Move && isOpen) return true;
    isOpen = verb != PathVerb::Close && (isOpen || verb != PathVerb::Move);
  }
  return isOpen;
}

bool isSimple(const CGPath& outline) {
  constexpr std::size_t kMost = 1000;
  const auto verbs = outline.verbs();
  if (verbs.size() > kMost || verbs.empty() || verbs.front() != PathVerb::Move ||
      std::count(verbs.begin(), verbs.end(), PathVerb::Move) != 1)
    return false;
  std::vector<CGPoint> points = chordsOf(outline);
  if (points.size() > kMost) return false;
  while (points.size() > 1 && isZero(points.back() - points.front())) points.pop_back();
  const auto side = [](CGPoint a, CGPoint b, CGPoint c) { return cross(b - a, c - a); };
  const std::size_t count = points.size();
  for (std::size_t i = 0; i + 1 < count; ++i)
    for (std::size_t k = i + 2; k < count; ++k) {
      if (i == 0 && k + 1 == count) continue;
      const CGPoint a = points[i], b = points[i + 1], c = points[k], d = points[(k + 1) % count];
      if (side(a, b, c) * side(a, b, d) <= 0 && side(c, d, a) * side(c, d, b) <= 0) return false;
    }
  return true;
}

bool hasCornerBetween(const CGPath& outline, double miterLimit) {
  CornerSearch search(miterLimit);
  const std::vector<CGPoint> points = outline.points().values();
  const CGPoint* point = points.data();
  for (const PathVerb verb : outline.verbs()) {
    const int count = pointCount(verb);
    if (verb == PathVerb::Move)
      search.move(*point);
    else if (verb == PathVerb::Close)
      search.close();
    else
      search.segment(point, count);
    point += count;
    if (search.hasFound()) return true;
  }
  return false;
}

}  // namespace halvo
