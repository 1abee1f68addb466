#include "import/art/writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <utility>

#include "import/art/path_text.h"
#include "import/art/players_stroke.h"

namespace halvo::art {

namespace {

// Corners more pointed than this are cut off elsewhere, unless the document says otherwise.
constexpr double kUsualMiterLimit = 4;

std::string hexadecimal(const Colour& colour) {
  const double components[] = {colour.red, colour.green, colour.blue, colour.alpha};
  std::string digits;
  for (const double component : components) {
    char pair[3];
    const int step = static_cast<int>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
    std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned>(step));
    digits += pair;
  }
  if (digits.ends_with("ff")) digits.resize(6);
  for (std::size_t i = 0; i < digits.size(); i += 2)
    if (digits[i] != digits[i + 1]) return '#' + digits;
  std::string single = "#";
  for (std::size_t i = 0; i < digits.size(); i += 2) single += digits[i];
  return single;
}

Point unit(Point way) { return length(way) > 0 ? way * (1 / length(way)) : Point{}; }

// Whether some corner is more pointed than what other renderers draw to its point.
bool hasPointedCorner(const Contour& contour) {
  std::vector<Point> ways;
  Point at = contour.start;
  for (const Segment& segment : contour.segments) {
    const Cubic curve = curveOf(at, segment);
    ways.push_back(unit(wayAt(curve, 1e-4)));
    ways.push_back(unit(wayAt(curve, 1 - 1e-4)));
    at = segment.end;
  }
  if (contour.isClosed && !(at == contour.start)) ways.insert(ways.end(), 2, unit(contour.start - at));
  if (contour.isClosed && !ways.empty()) ways.push_back(ways.front());
  for (std::size_t i = 1; i + 1 < ways.size(); i += 2)
    if (2 > kUsualMiterLimit * kUsualMiterLimit * (1 + dot(ways[i], ways[i + 1]))) return true;
  return false;
}

struct Element {
  std::string paint;
  std::string tag;
  std::string rest;
};

// One shape, in one of the ways to say it.
struct Said {
  std::vector<Element> elements;
  std::size_t points = 0;

  std::size_t size() const {
    std::size_t sum = 0;
    for (const Element& element : elements) sum += element.tag.size() + element.rest.size() + sizeof "<></g>";
    return elements.empty() ? 0 : sum + elements.front().paint.size() + elements.back().paint.size();
  }
};

Said sayFill(const Outline& outline, const std::string& colour, int decimals) {
  PathText path(decimals);
  for (const Contour& contour : outline) path.add(contour, false);
  if (path.text().empty()) return {};
  return {{{"fill=\"" + colour + '"', "path", "d=\"" + path.text() + "\"/>"}}, path.points()};
}

// Each is an element, of which a cue may have only so many.
constexpr std::size_t kMostDots = 1000;
// Of an ellipse in curves.
constexpr std::size_t kPointsOfDot = 13;

Said sayStroke(const FlatShape& shape, const std::string& colour, int decimals) {
  Said said;
  const double width = *shape.strokeWidth;
  PathText path(decimals);
  for (const Contour& contour : shape.outline) path.add(contour, true);
  if (!path.text().empty()) {
    std::string rest = "stroke-width=\"" + shortNumber(width, decimals) + '"';
    if (std::any_of(shape.outline.begin(), shape.outline.end(), hasPointedCorner)) rest += " stroke-miterlimit=\"10\"";
    rest += " d=\"" + path.text() + "\"/>";
    said.elements.push_back({"fill=\"none\" stroke=\"" + colour + '"', "path", std::move(rest)});
  }
  const auto number = [&](double value) { return shortNumber(value, decimals); };
  const std::vector<Point> dots = dotsThatShow(shape.outline, shape.dots, width);
  for (const Point at : dots)
    said.elements.push_back(
        {"fill=\"" + colour + '"', "circle",
         "cx=\"" + number(at.x) + "\" cy=\"" + number(at.y) + "\" r=\"" + number(width / 2) + "\"/>"});
  said.points = path.points() + dots.size() * kPointsOfDot;
  return said;
}

Said say(const FlatShape& shape, int decimals) {
  const std::string colour = hexadecimal(shape.colour);
  if (!shape.strokeWidth) return sayFill(shape.outline, colour, decimals);
  if (shape.asFill.empty()) return sayStroke(shape, colour, decimals);
  Said fill = sayFill(shape.asFill, colour, decimals);
  if (shape.dots.size() > kMostDots) return fill;
  Said stroke = sayStroke(shape, colour, decimals);
  return fill.size() < stroke.size() ? fill : stroke;
}

}  // namespace

void writeFrame(const std::vector<FlatShape>& shapes, int side, int decimals, ArtFrame& frame) {
  std::vector<Element> elements;
  for (const FlatShape& shape : shapes) {
    Said said = say(shape, decimals);
    frame.points += said.points;
    frame.elements += said.elements.size();
    std::move(said.elements.begin(), said.elements.end(), std::back_inserter(elements));
  }
  const std::string length = std::to_string(side);
  std::string& text = frame.document;
  text = R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" + length + R"(" height=")" + length + R"(">)";
  for (std::size_t i = 0; i < elements.size();) {
    std::size_t end = i + 1;
    while (end < elements.size() && elements[end].paint == elements[i].paint) ++end;
    // Said once for a run of the same paint.
    const bool isRun = end - i > 1;
    if (isRun) {
      ++frame.elements;
      text += "<g " + elements[i].paint + '>';
    }
    for (; i < end; ++i)
      text += '<' + elements[i].tag + ' ' + (isRun ? "" : elements[i].paint + ' ') + elements[i].rest;
    if (isRun) text += "</g>";
  }
  text += "</svg>";
}

}  // namespace halvo::art
