#include "import/art/players_stroke.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "import/art/stroke_pieces.h"

namespace halvo::art {

namespace {

constexpr double kPlayersMiterLimit = 10;
// Of dots and segments; beyond, all dots are drawn.
constexpr std::size_t kMostPairs = 2'000'000;

bool isEven(const Matrix& pen) {
  const double least = 1e-4 * pen.stretch();
  const auto same = [&](double a, double b) { return std::fabs(a - b) < least; };
  return (same(pen.a, pen.d) && same(pen.b, -pen.c)) || (same(pen.a, -pen.d) && same(pen.b, pen.c));
}

bool mayBePlayers(const StrokeStyle& style) { return style.dashes.empty() && isEven(style.pen); }

// A pointed corner's length over the line's width.
double pointOf(Point before, Point after) { return std::sqrt(2 / std::max(1 + dot(before, after), 1e-12)); }

bool isSmooth(Point before, Point after) { return dot(before, after) > 0.9999; }

// Whether the player draws a corner as this style does. Pointed corners are cut off by both beyond their limits.
bool isPlayersCorner(Point before, Point after, const StrokeStyle& style) {
  if (isSmooth(before, after)) return true;
  if (style.join == LineJoin::Round) return false;
  const double ratio = pointOf(before, after);
  const double limit = style.join == LineJoin::Miter ? style.miterLimit : 1;
  return (ratio <= limit && ratio <= kPlayersMiterLimit) || (ratio > limit && ratio > kPlayersMiterLimit);
}

// A segment with its directions at both ends.
struct Part {
  Point start;
  Segment segment;
  Point begins, ends;
};

// Takes a stroke apart where its corners are round.
class Dotter {
 public:
  Dotter(const StrokeStyle& style, const Frame& frame)
      : style_(style), half_(style.width / 2 * style.pen.stretch()), unseen_(frame.tolerance * 10) {}

  // False where the player cannot draw it.
  bool add(const Contour& contour) {
    if (contour.segments.empty() && !contour.isClosed) return true;
    if (!contour.isClosed && style_.cap == LineCap::Square) return false;
    std::vector<Part> parts;
    if (!takeApart(contour, parts)) return false;
    const Box box = boundsOf(contour);
    const double extent = std::max(box.maxX - box.minX, box.maxY - box.minY);
    if (parts.empty() || (!contour.isClosed && style_.cap == LineCap::Round && extent < half_ / 50)) {
      if (style_.cap == LineCap::Square) return false;
      if (style_.cap == LineCap::Round) result.dots.push_back((contour.start + contour.end()) * 0.5);
      return true;
    }
    return contour.isClosed ? addClosed(contour, std::move(parts)) : addOpen(parts, style_.cap == LineCap::Round);
  }

  DottedStroke result;

 private:
  enum class Corner { Player, Dot, Neither };

  bool takeApart(const Contour& contour, std::vector<Part>& parts) const {
    Contour one;
    one.start = contour.start;
    std::vector<Segment> segments = contour.segments;
    if (contour.isClosed && !(contour.end() == contour.start)) segments.push_back(lineTo(contour.start));
    for (const Segment& segment : segments) {
      one.segments = {segment};
      const std::vector<StrokePiece> pieces = piecesOf(one, half_);
      for (std::size_t i = 1; i < pieces.size(); ++i)
        if (!isSmooth(pieces[i - 1].ends, pieces[i].begins)) return false;
      if (!pieces.empty()) parts.push_back({one.start, segment, pieces.front().begins, pieces.back().ends});
      one.start = segment.end;
    }
    return true;
  }

  Corner cornerOf(const Part& before, const Part& after) const {
    if (isPlayersCorner(before.ends, after.begins, style_)) return Corner::Player;
    if (style_.join != LineJoin::Round) return Corner::Neither;
    // So blunt that nobody sees its point.
    const bool isBlunt = half_ * (pointOf(before.ends, after.begins) - 1) < unseen_;
    return isBlunt ? Corner::Player : Corner::Dot;
  }

  bool addOpen(const std::vector<Part>& parts, bool isRound) {
    Contour line{parts[0].start, {}, false};
    if (isRound) result.dots.push_back(line.start);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      line.segments.push_back(parts[i].segment);
      if (i + 1 == parts.size()) break;
      const Corner corner = cornerOf(parts[i], parts[i + 1]);
      if (corner == Corner::Neither) return false;
      if (corner == Corner::Player) continue;
      result.dots.push_back(line.end());
      const Point next = line.end();
      result.lines.push_back(std::exchange(line, Contour{next, {}, false}));
    }
    if (isRound) result.dots.push_back(line.end());
    result.lines.push_back(std::move(line));
    return true;
  }

  // Begins at a round corner where there is one.
  bool addClosed(const Contour& contour, std::vector<Part> parts) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const Corner corner = cornerOf(parts[i], parts[(i + 1) % parts.size()]);
      if (corner == Corner::Neither) return false;
      if (corner == Corner::Player) continue;
      std::rotate(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>((i + 1) % parts.size()), parts.end());
      result.dots.push_back(parts[0].start);
      return addOpen(parts, false);
    }
    result.lines.push_back(contour);
    return true;
  }

  const StrokeStyle& style_;
  double half_;
  double unseen_;
};

// Whether a dot lies within a line, whose ends are either far enough away or have dots of their own.
bool isWithinLine(Point dotted, Point from, Point to, double half, const std::vector<Point>& dots) {
  const Point way = to - from;
  const double whole = length(way);
  if (!(whole > 0)) return false;
  const double along = dot(dotted - from, way) / whole;
  const double near = half * 1e-3;
  if (along < near || along > whole - near || std::fabs(cross(dotted - from, way)) / whole > near) return false;
  const auto isFar = [&](double distance, Point end) {
    const auto isThere = [&](Point other) { return length(other - end) < near; };
    return distance >= half || std::any_of(dots.begin(), dots.end(), isThere);
  };
  return isFar(along, from) && isFar(whole - along, to);
}

}  // namespace

bool playerCanDraw(const Shape& shape) {
  const StrokeStyle& style = *shape.stroke;
  if (!std::holds_alternative<Colour>(shape.paint) || !mayBePlayers(style)) return false;
  const double half = style.width / 2 * style.pen.stretch();
  const auto fits = [&](const StrokePiece& before, const StrokePiece& after) {
    return isPlayersCorner(before.ends, after.begins, style) && (!after.goesOn || isSmooth(before.ends, after.begins));
  };
  for (const Contour& contour : shape.outline) {
    if (!contour.isClosed && style.cap != LineCap::Butt) return false;
    const std::vector<StrokePiece> pieces = piecesOf(contour, half);
    for (std::size_t i = 1; i < pieces.size(); ++i)
      if (!fits(pieces[i - 1], pieces[i])) return false;
    if (contour.isClosed && !pieces.empty() && !fits(pieces.back(), pieces.front())) return false;
    if (pieces.empty() && style.cap != LineCap::Butt) return false;
  }
  return true;
}

std::optional<DottedStroke> dottedStroke(const Shape& shape, const Frame& frame) {
  const StrokeStyle& style = *shape.stroke;
  const bool isRound = style.cap == LineCap::Round || style.join == LineJoin::Round;
  if (!isRound || !(style.width > 0) || !std::holds_alternative<Colour>(shape.paint) || !mayBePlayers(style))
    return std::nullopt;
  Dotter dotter(style, frame);
  for (const Contour& contour : shape.outline)
    if (!dotter.add(contour)) return std::nullopt;
  return std::move(dotter.result);
}

std::vector<Point> dotsThatShow(const Outline& lines, const std::vector<Point>& dots, double width) {
  const double half = width / 2;
  std::vector<Point> distinct;
  for (const Point dotted : dots)
    if (std::none_of(distinct.begin(), distinct.end(), [&](Point p) { return length(p - dotted) < half * 1e-3; }))
      distinct.push_back(dotted);
  std::size_t segments = 0;
  for (const Contour& line : lines) segments += line.segments.size();
  if (segments * distinct.size() > kMostPairs) return distinct;
  std::vector<Point> result;
  for (const Point dotted : distinct) {
    const bool isCovered = std::any_of(lines.begin(), lines.end(), [&](const Contour& line) {
      Point at = line.start;
      for (const Segment& segment : line.segments) {
        if (segment.isLine && isWithinLine(dotted, at, segment.end, half, distinct)) return true;
        at = segment.end;
      }
      return line.isClosed && isWithinLine(dotted, at, line.start, half, distinct);
    });
    if (!isCovered) result.push_back(dotted);
  }
  return result;
}

}  // namespace halvo::art
