#include "import/motion/wire_shapes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace halvo::motion {

using namespace art;

namespace {

// Further away than anything that is meant to be seen.
constexpr double kFarthest = 1e7;
// In the file's units.
constexpr double kSame = 1e-3;
constexpr std::size_t kMostStops = 4096;

double readNumber(WireReader& wire) {
  const double number = wire.real();
  if (std::isfinite(number) && std::fabs(number) <= kFarthest) return number;
  return std::isnan(number) ? 0 : std::copysign(kFarthest, number);
}

Point readPoint(WireReader& wire) {
  const double x = readNumber(wire);
  return {x, readNumber(wire)};
}

Colour readColour(WireReader& wire) {
  double parts[4];
  for (double& part : parts) part = wire.byte() / 255.0;
  return {parts[0], parts[1], parts[2], parts[3]};
}

class OutlineReader {
 public:
  explicit OutlineReader(WireReader& wire) : wire_(wire) {}

  void add(PathElement element) {
    if (element == PathElement::Move) return begin(readPoint(wire_));
    if (outline_.empty() || outline_.back().isClosed) begin(outline_.empty() ? Point{} : outline_.back().start);
    Contour& contour = outline_.back();
    if (element == PathElement::Close) {
      contour.isClosed = true;
      // The library's numbers are short: a side that only they make would be drawn with corners.
      if (!contour.segments.empty() && length(contour.end() - contour.start) < kSame)
        contour.segments.back().end = contour.start;
    } else if (element == PathElement::Line) {
      contour.segments.push_back(lineTo(readPoint(wire_)));
    } else {
      const Point control1 = readPoint(wire_);
      const Point control2 = readPoint(wire_);
      const Point end = readPoint(wire_);
      // The library makes curves of straight sides too.
      const bool isStraight = control1 == contour.end() && control2 == end;
      contour.segments.push_back(isStraight ? lineTo(end) : curveTo(control1, control2, end));
    }
  }
  Outline take() {
    std::erase_if(outline_, [](const Contour& contour) { return contour.segments.empty(); });
    return std::move(outline_);
  }

 private:
  void begin(Point start) { outline_.push_back({start, {}, false}); }

  WireReader& wire_;
  Outline outline_;
};

std::optional<StrokeStyle> readStroke(WireReader& wire) {
  if (wire.byte() == 0) return std::nullopt;
  StrokeStyle style;
  style.width = readNumber(wire);
  constexpr LineCap kCaps[] = {LineCap::Butt, LineCap::Square, LineCap::Round};
  constexpr LineJoin kJoins[] = {LineJoin::Miter, LineJoin::Bevel, LineJoin::Round};
  style.cap = kCaps[std::min(wire.byte(), 2U)];
  style.join = kJoins[std::min(wire.byte(), 2U)];
  style.miterLimit = std::clamp(readNumber(wire), 1.0, 1000.0);
  return style;
}

Gradient readGradient(WireReader& wire) {
  Gradient gradient;
  gradient.isRadial = wire.byte() != 0;
  gradient.from = readPoint(wire);
  gradient.to = readPoint(wire);
  gradient.fromRadius = std::max(0.0, readNumber(wire));
  gradient.toRadius = std::max(0.0, readNumber(wire));
  const std::size_t stops = wire.count(8);
  if (stops > kMostStops) wire.fail();
  for (std::size_t i = 0; i < stops && wire.isWell(); ++i) {
    const double offset = std::clamp(readNumber(wire), 0.0, 1.0);
    gradient.stops.push_back({offset, readColour(wire)});
  }
  std::ranges::stable_sort(gradient.stops, {}, &GradientStop::offset);
  return gradient;
}

bool isSeen(const Paint& paint) {
  if (const auto* colour = std::get_if<Colour>(&paint)) return colour->alpha > 0;
  const auto& stops = std::get<Gradient>(paint).stops;
  return std::ranges::any_of(stops, [](const GradientStop& stop) { return stop.colour.alpha > 0; });
}

// Straight on a point, a gradient has the colour of its end.
Paint paintOf(Gradient gradient) {
  const bool hasNoExtent = gradient.isRadial ? gradient.toRadius <= 0 : length(gradient.to - gradient.from) <= 0;
  if (hasNoExtent && !gradient.stops.empty()) return gradient.stops.back().colour;
  return gradient;
}

}  // namespace

Outline readOutline(WireReader& wire) {
  const std::string_view elements = wire.bytes(wire.count(1));
  if (elements.empty()) return {};
  if (elements.find_first_not_of(std::string_view("\0\1\2\3", 4)) != std::string_view::npos) wire.fail();
  const std::size_t numbers = wire.count(sizeof(float));
  if (!wire.isWell() || numbers != numbersOf(elements)) {
    wire.fail();
    return {};
  }
  WireReader own(wire.bytes(numbers * sizeof(float)));
  OutlineReader reader(own);
  for (const char element : elements) reader.add(static_cast<PathElement>(element));
  return reader.take();
}

std::optional<Shape> readShape(WireReader& wire) {
  Shape shape;
  shape.outline = readOutline(wire);
  shape.rule = wire.byte() != 0 ? Rule::EvenOdd : Rule::NonZero;
  shape.stroke = readStroke(wire);
  if (wire.byte() != 0)
    shape.paint = paintOf(readGradient(wire));
  else
    shape.paint = readColour(wire);
  if (shape.outline.empty() || !isSeen(shape.paint) || (shape.stroke && shape.stroke->width <= 0)) return std::nullopt;
  return shape;
}

}  // namespace halvo::motion
