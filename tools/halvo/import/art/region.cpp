#include "import/art/region.h"

#include <clipper.hpp>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "import/art/half_plane.h"

namespace halvo::art {

namespace {

using ClipperLib::IntPoint;

struct PointHash {
  std::size_t operator()(const IntPoint& p) const {
    return static_cast<std::size_t>(p.X) * 0x9E3779B97F4A7C15U ^ static_cast<std::size_t>(p.Y) * 0xC2B2AE3D27D4EB4FU;
  }
};

// A chord's end within a curve.
struct Origin {
  std::size_t curve = 0;
  double t = 0;
};

struct FlatCurve {
  Cubic curve;
  double steps = 1;
};

// Cuts polygons whose corners are whole numbers, and knows of each corner which curve it came from.
class Clipping {
 public:
  explicit Clipping(const Frame& frame) : frame_(frame), scale_(std::ldexp(1, 28) / frame.side) {
    clipper_.PreserveCollinear(true);
  }

  void add(const Outline& outline, ClipperLib::PolyType type) {
    const Box around{-frame_.side, -frame_.side, 2 * frame_.side, 2 * frame_.side};
    for (const Contour& contour : cut(outline, around)) clipper_.AddPath(polygon(contour), type, true);
  }

  ClipperLib::Paths execute(ClipperLib::ClipType how, Rule subject, Rule other) {
    ClipperLib::Paths paths;
    if (frame_.work->left < 0) return paths;
    const auto rule = [](Rule r) { return r == Rule::EvenOdd ? ClipperLib::pftEvenOdd : ClipperLib::pftNonZero; };
    clipper_.Execute(how, paths, rule(subject), rule(other));
    return paths;
  }

  Outline outlineOf(const ClipperLib::Paths& paths) const {
    Outline outline;
    const double least = frame_.tolerance * frame_.tolerance * scale_ * scale_;
    for (const ClipperLib::Path& path : paths)
      if (path.size() > 2 && std::fabs(ClipperLib::Area(path)) > least) outline.push_back(contourOf(path));
    return outline;
  }

 private:
  IntPoint rounded(Point p) const { return {std::llround(p.x * scale_), std::llround(p.y * scale_)}; }
  Point exact(const IntPoint& p) const {
    return {static_cast<double>(p.X) / scale_, static_cast<double>(p.Y) / scale_};
  }

  ClipperLib::Path polygon(const Contour& contour) {
    ClipperLib::Path path{rounded(contour.start)};
    Point at = contour.start;
    for (const Segment& segment : contour.segments) {
      if (!segment.isLine) addCurve(curveOf(at, segment), path);
      path.push_back(rounded(segment.end));
      at = segment.end;
    }
    frame_.work->left -= static_cast<double>(path.size());
    return path;
  }

  void addCurve(const Cubic& curve, ClipperLib::Path& path) {
    const double steps = std::min(curve.steps(frame_.tolerance), 1000.0);
    for (double i = 1; i < steps; ++i) {
      const IntPoint p = rounded(pointAt(curve, i / steps));
      path.push_back(p);
      origins_.emplace(p, Origin{curves_.size(), i / steps});
    }
    curves_.push_back({curve, steps});
  }

  const Origin* originOf(const IntPoint& p) const {
    const auto found = origins_.find(p);
    return found == origins_.end() ? nullptr : &found->second;
  }

  // Where a corner lies on the curve that its neighbour at `near` came from.
  std::optional<double> parameterOf(const IntPoint& p, const Origin& near) const {
    const FlatCurve& flat = curves_[near.curve];
    if (const Origin* own = originOf(p)) {
      if (own->curve != near.curve) return std::nullopt;
      return own->t;
    }
    const double step = 1 / flat.steps;
    if (near.t - step < 1e-9 && p == rounded(flat.curve.p0)) return 0;
    if (near.t + step > 1 - 1e-9 && p == rounded(flat.curve.p3)) return 1;
    // On one of the two chords that meet there: where something else crossed it.
    for (const double direction : {step, -step}) {
      const Point from = pointAt(flat.curve, near.t);
      const Point chord = pointAt(flat.curve, std::clamp(near.t + direction, 0.0, 1.0)) - from;
      const Point way = exact(p) - from;
      const double along = dot(way, chord) / dot(chord, chord);
      if (along > 0 && along < 1 && std::fabs(cross(way, chord)) * scale_ < 3 * length(chord))
        return near.t + along * direction;
    }
    return std::nullopt;
  }

  // Of which curve the way from one corner to the next is a part.
  struct Part {
    std::size_t curve = 0;
    double from = 0, to = 0;
  };
  std::optional<Part> partBetween(const IntPoint& a, const IntPoint& b) const {
    if (const Origin* origin = originOf(a))
      if (const auto t = parameterOf(b, *origin)) return Part{origin->curve, origin->t, *t};
    if (const Origin* origin = originOf(b))
      if (const auto t = parameterOf(a, *origin)) return Part{origin->curve, *t, origin->t};
    return std::nullopt;
  }

  Contour contourOf(const ClipperLib::Path& path) const {
    // Not in the middle of a curve, which would come out in two.
    std::size_t first = 0;
    while (first < path.size() && originOf(path[first])) ++first;
    Contour contour{exact(path[first % path.size()]), {}, true};
    std::optional<Part> run;
    const auto endRun = [&](const IntPoint& end) {
      if (!run) return;
      const Cubic part = partOf(curves_[run->curve].curve, run->from, run->to);
      contour.segments.push_back(curveTo(part.p1, part.p2, exact(end)));
      run.reset();
    };
    for (std::size_t i = 0; i < path.size(); ++i) {
      const IntPoint& a = path[(first + i) % path.size()];
      const IntPoint& b = path[(first + i + 1) % path.size()];
      const auto part = partBetween(a, b);
      const bool goesOn = run && part && part->curve == run->curve && part->from == run->to &&
                          (part->to > part->from) == (run->to > run->from);
      if (!goesOn) endRun(a);
      if (goesOn)
        run->to = part->to;
      else if (part)
        run = part;
      else
        contour.segments.push_back(lineTo(exact(b)));
    }
    endRun(path[first % path.size()]);
    return contour;
  }

  const Frame& frame_;
  double scale_;
  ClipperLib::Clipper clipper_;
  std::vector<FlatCurve> curves_;
  std::unordered_map<IntPoint, Origin, PointHash> origins_;
};

double areaOf(const ClipperLib::Paths& paths) {
  double area = 0;
  for (const ClipperLib::Path& path : paths) area += ClipperLib::Area(path);
  return area;
}

}  // namespace

Outline combine(Combination how, const Region& subject, const Region& other, const Frame& frame) {
  if (frame.work->left < 0) return {};
  Clipping clipping(frame);
  clipping.add(subject.outline, ClipperLib::ptSubject);
  clipping.add(other.outline, ClipperLib::ptClip);
  const auto type = how == Combination::Union          ? ClipperLib::ctUnion
                    : how == Combination::Intersection ? ClipperLib::ctIntersection
                                                       : ClipperLib::ctDifference;
  return clipping.outlineOf(clipping.execute(type, subject.rule, other.rule));
}

Outline nonZero(const Outline& outline, Rule rule, const Frame& frame) {
  if (rule == Rule::NonZero) return outline;
  Clipping clipping(frame);
  clipping.add(outline, ClipperLib::ptSubject);
  const ClipperLib::Paths meant = clipping.execute(ClipperLib::ctUnion, Rule::EvenOdd, Rule::EvenOdd);
  const double now = areaOf(clipping.execute(ClipperLib::ctUnion, Rule::NonZero, Rule::NonZero));
  // The inside by the one rule is a part of that by the other.
  const double least = std::ldexp(1, 56) * 1e-9;
  return std::fabs(now - areaOf(meant)) < least ? outline : clipping.outlineOf(meant);
}

}  // namespace halvo::art
