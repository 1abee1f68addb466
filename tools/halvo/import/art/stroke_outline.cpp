#include "import/art/stroke_outline.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "import/art/dashes.h"
#include "import/art/stroke_pieces.h"

namespace halvo::art {

namespace {

// Of a direction: to its right where the distance is positive.
Point aside(Point direction, double distance) { return Point{direction.y, -direction.x} * distance; }

// Around a centre, from one spoke to another of the same length.
void addArc(Contour& contour, Point centre, Point from, Point to, double angle) {
  const int count = std::max(1, static_cast<int>(std::ceil(std::fabs(angle) / (std::numbers::pi / 2) - 1e-9)));
  const double step = angle / count;
  const double handle = 4.0 / 3 * std::tan(step / 4);
  Point spoke = from;
  for (int i = 1; i <= count; ++i) {
    const double c = std::cos(step * i);
    const double s = std::sin(step * i);
    const Point next = i == count ? to : Point{from.x * c - from.y * s, from.x * s + from.y * c};
    const Point begin = Point{-spoke.y, spoke.x} * handle;
    const Point end = Point{-next.y, next.x} * handle;
    contour.segments.push_back(curveTo(centre + spoke + begin, centre + next - end, centre + next));
    spoke = next;
  }
}

// Both sides of a contour grow from its start to its end. Every piece with its joins lies between them the same way
// round; the inner side of a corner passes the corner itself, so that this stays so however short the pieces are.
class Outliner {
 public:
  Outliner(const StrokeStyle& style, double tolerance) : style_(style), half_(style.width / 2), tolerance_(tolerance) {}

  void add(const Contour& contour, Outline& result) {
    const std::vector<StrokePiece> pieces = piecesOf(contour, half_);
    if (pieces.empty()) return addDot(contour, result);
    sides_[0] = {pieces[0].curve.p0 + aside(pieces[0].begins, half_), {}, true};
    sides_[1] = {pieces[0].curve.p0 + aside(pieces[0].begins, -half_), {}, true};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      if (i > 0) join(pieces[i - 1], pieces[i]);
      along(pieces[i]);
    }
    if (contour.isClosed) {
      join(pieces.back(), pieces.front());
      // Which may have moved the point where the first piece begins.
      for (Contour& side : sides_) side.start = side.end();
      result.push_back(sides_[0]);
      result.push_back(reversed(sides_[1]));
      return;
    }
    Contour whole = std::move(sides_[0]);
    cap(whole, pieces.back().curve.p3, pieces.back().ends);
    const Contour back = reversed(sides_[1]);
    whole.segments.insert(whole.segments.end(), back.segments.begin(), back.segments.end());
    cap(whole, pieces.front().curve.p0, pieces.front().begins * -1);
    result.push_back(std::move(whole));
  }

 private:
  void addDot(const Contour& contour, Outline& result) const {
    // A move alone draws nothing.
    if (contour.segments.empty() && !contour.isClosed) return;
    const Point at = contour.start;
    if (style_.cap == LineCap::Round) result.push_back(ellipse(at, {half_, 0}, {0, half_}));
    if (style_.cap == LineCap::Square)
      result.push_back(rectangle({at.x - half_, at.y - half_, at.x + half_, at.y + half_})[0]);
  }

  static void lineIfAway(Contour& contour, Point to) {
    if (!(contour.end() == to)) contour.segments.push_back(lineTo(to));
  }

  void along(const StrokePiece& piece) {
    const bool turnsRight = cross(piece.begins, piece.ends) < 0;
    for (int i = 0; i < 2; ++i) {
      const double distance = i == 0 ? half_ : -half_;
      const bool isInner = (i == 0) == turnsRight;
      if (piece.kind == StrokePiece::Kind::Tight && isInner) {
        // By way of the point that it turns around.
        const Point across = aside(piece.begins, 1);
        const double depth = dot(piece.curve.p3 - piece.curve.p0, piece.ends) / dot(across, piece.ends);
        if (std::fabs(depth) < half_ && std::fabs(depth) > 0)
          lineIfAway(sides_[i], piece.curve.p0 + across * depth);
        else
          lineIfAway(sides_[i], piece.curve.p3);
        lineIfAway(sides_[i], piece.curve.p3 + aside(piece.ends, distance));
        continue;
      }
      const std::vector<Segment> side = sideOf(piece, distance, tolerance_);
      // A corner may have taken the side's start away already.
      sides_[i].segments.insert(sides_[i].segments.end(), side.begin(), side.end());
    }
  }

  void join(const StrokePiece& before, const StrokePiece& after) {
    const Point at = after.curve.p0;
    const double angle = std::atan2(cross(before.ends, after.begins), dot(before.ends, after.begins));
    if (std::fabs(angle) * half_ < tolerance_ * 0.1) return;
    const int outer = angle > 0 ? 0 : 1;
    const double outwards = outer == 0 ? half_ : -half_;
    Contour& inside = sides_[1 - outer];
    const Point innerTo = at + aside(after.begins, -outwards);
    if (!meetInside(inside, before, after, -outwards)) {
      lineIfAway(inside, at);
      lineIfAway(inside, innerTo);
    }
    const Point from = aside(before.ends, outwards);
    const Point to = aside(after.begins, outwards);
    Contour& outside = sides_[outer];
    if (style_.join == LineJoin::Round || after.goesOn) return addArc(outside, at, from, to, angle);
    const double cosine = dot(before.ends, after.begins);
    if (style_.join == LineJoin::Miter && 2 <= style_.miterLimit * style_.miterLimit * (1 + cosine))
      lineIfAway(outside, at + (from + to) * (1 / (1 + cosine)));
    lineIfAway(outside, at + to);
  }

  // The inner sides of two lines end where they cross, when that is on both.
  bool meetInside(Contour& inside, const StrokePiece& before, const StrokePiece& after, double inwards) const {
    if (before.kind != StrokePiece::Kind::Line || after.kind != StrokePiece::Kind::Line || inside.segments.empty())
      return false;
    const double cosine = dot(before.ends, after.begins);
    if (cosine < -0.95) return false;
    const double needed = half_ * std::fabs(cross(before.ends, after.begins)) / (1 + cosine);
    const double room = std::min(length(before.curve.p3 - before.curve.p0), length(after.curve.p3 - after.curve.p0));
    if (needed > room / 2) return false;
    const Point meeting =
        after.curve.p0 + (aside(before.ends, inwards) + aside(after.begins, inwards)) * (1 / (1 + cosine));
    inside.segments.back() = lineTo(meeting);
    return true;
  }

  void cap(Contour& contour, Point at, Point direction) const {
    const Point from = aside(direction, half_);
    if (style_.cap == LineCap::Round) return addArc(contour, at, from, from * -1, std::numbers::pi);
    if (style_.cap == LineCap::Square) {
      lineIfAway(contour, at + from + direction * half_);
      lineIfAway(contour, at - from + direction * half_);
    }
    lineIfAway(contour, at - from);
  }

  const StrokeStyle& style_;
  double half_;
  double tolerance_;
  Contour sides_[2];
};

}  // namespace

Outline strokeOutline(const Outline& outline, const StrokeStyle& style, const Frame& frame) {
  const double area = determinant(style.pen);
  Outline result;
  if (!(style.width > 0) || !std::isfinite(area) || std::fabs(area) < 1e-18) return result;
  Outline path = mapped(outline, inverse(style.pen));
  if (!style.dashes.empty()) path = dashed(path, style.dashes, style.dashOffset);
  Outliner outliner(style, frame.tolerance / style.pen.stretch());
  for (const Contour& contour : path) outliner.add(contour, result);
  result = mapped(std::move(result), style.pen);
  if (area < 0)
    for (Contour& contour : result) contour = reversed(contour);
  return result;
}

}  // namespace halvo::art
