#include "svg/shapes.h"

#include <array>
#include <span>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/numbers.h"
#include "platform/foundation/text/scanner.h"

namespace quellaro {

namespace {

// The geometry attributes' values, or nothing when one is missing.
template <std::size_t count>
std::optional<std::array<double, count>> geometry(XMLAttributes attributes,
                                                  const std::array<std::string_view, count>& names) {
  std::array<double, count> values{};
  for (std::size_t i = 0; i < count; ++i) {
    const std::optional<std::string_view> text = attributes.find(names[i]);
    if (!text) return std::nullopt;
    values[i] = doubleValue(*text);
  }
  return values;
}

void addPoints(UIBezierPath& path, std::string_view text) {
  const std::vector<double> numbers = parseNumberList(text);
  if (numbers.size() < 2) return;
  path.reserve(numbers.size() / 2);
  path.moveToPoint({numbers[0], numbers[1]});
  for (std::size_t i = 3; i < numbers.size(); i += 2) path.addLineToPoint({numbers[i - 1], numbers[i]});
}

bool isBackground(const SVGElement& element) { return element.id() == "background"; }

}  // namespace

std::vector<double> parseNumberList(std::string_view text, std::string_view* rest) {
  static constexpr NSCharacterSet kSeparators{" ,\n"};
  std::vector<double> numbers;
  NSScanner scanner(text, kSeparators);
  constexpr std::size_t kAtOnce = 64;
  static_assert(2 * limits::kPathPoints % kAtOnce == 0);
  std::size_t count = 0;
  for (std::size_t read = kAtOnce; read == kAtOnce && count < 2 * limits::kPathPoints; count += read) {
    numbers.resize(count + kAtOnce);
    read = scanner.scanDoubles(std::span(numbers).subspan(count));
  }
  numbers.resize(count);
  if (rest != nullptr) *rest = scanner.rest();
  return numbers;
}

SVGLine::SVGLine(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGLine::buildPath(attr());
}

void SVGLine::buildPath(XMLAttributes attributes) {
  const auto line = geometry<4>(attributes, {"x1", "y1", "x2", "y2"});
  if (!line) return;
  const auto [x1, y1, x2, y2] = *line;
  path_.moveToPoint({x1, y1});
  path_.addLineToPoint({x2, y2});
}

SVGRect::SVGRect(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGRect::buildPath(attr());
}

void SVGRect::buildPath(XMLAttributes attributes) {
  const auto rect = geometry<4>(attributes, {"x", "y", "width", "height"});
  if (!rect) return;
  const auto [x, y, width, height] = *rect;
  path_ = UIBezierPath::bezierPathWithRect({{x, y}, {width, height}});
  clickable_ = !isBackground(*this);
}

SVGCircle::SVGCircle(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGCircle::buildPath(attr());
}

void SVGCircle::buildPath(XMLAttributes attributes) {
  const auto circle = geometry<3>(attributes, {"cx", "cy", "r"});
  if (!circle) return;
  const auto [cx, cy, r] = *circle;
  path_.addCircleWithCenter({cx, cy}, r);
  clickable_ = true;
}

SVGEllipse::SVGEllipse(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGEllipse::buildPath(attr());
}

void SVGEllipse::buildPath(XMLAttributes attributes) {
  const auto ellipse = geometry<4>(attributes, {"cx", "cy", "rx", "ry"});
  if (!ellipse) return;
  const auto [cx, cy, rx, ry] = *ellipse;
  path_ = UIBezierPath::bezierPathWithOvalInRect({{cx - rx, cy - ry}, {2 * rx, 2 * ry}});
  clickable_ = true;
}

SVGPolyline::SVGPolyline(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGPolyline::buildPath(attr());
}

void SVGPolyline::buildPath(XMLAttributes attributes) {
  if (const auto points = attributes.find("points")) addPoints(path_, *points);
}

SVGPolygon::SVGPolygon(std::string_view name, XMLAttributes attributes) : SVGElement(name, attributes) {
  SVGPolygon::buildPath(attr());
}

void SVGPolygon::buildPath(XMLAttributes attributes) {
  const auto points = attributes.find("points");
  if (!points) return;
  addPoints(path_, *points);
  path_.closePath();
  clickable_ = !isBackground(*this);
}

}  // namespace quellaro
