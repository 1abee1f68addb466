#include "picture/page.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "picture/lettering.h"
#include "platform/foundation/text/numbers.h"
#include "svg/document.h"

namespace halvo {

namespace {

using namespace quellaro;

std::string cutToFit(std::string_view text, double height, double room) {
  if (Page::widthOf(text, height) <= room) return std::string(text);
  while (!text.empty() && Page::widthOf(std::string(text) + "...", height) > room) text.remove_suffix(1);
  return text.empty() ? "" : std::string(text) + "...";
}

void appendAttribute(std::string& body, std::string_view name, double value) {
  body.append(" ").append(name).append("=\"");
  appendNumber(body, value);
  body += '"';
}

}  // namespace

void Page::rectangle(CGRect rectangle, std::string_view colour) {
  body_ += "<rect";
  appendAttribute(body_, "x", rectangle.origin.x);
  appendAttribute(body_, "y", rectangle.origin.y);
  appendAttribute(body_, "width", rectangle.size.width);
  appendAttribute(body_, "height", rectangle.size.height);
  body_.append(" fill=\"").append(colour).append("\"/>");
}

void Page::verticalLine(double x, double top, double bottom, std::string_view colour) {
  rectangle({{std::floor(x), top}, {1, bottom - top}}, colour);
}

void Page::horizontalLine(double y, double left, double right, std::string_view colour) {
  rectangle({{left, std::floor(y)}, {right - left, 1}}, colour);
}

void Page::path(std::string_view data, std::string_view colour, double width) {
  body_.append("<path d=\"").append(data).append("\" ");
  body_.append(width > 0 ? "stroke=\"" : "fill=\"").append(colour).append("\"");
  if (width > 0) appendAttribute(body_, "stroke-width", width);
  body_ += "/>";
}

double Page::widthOf(std::string_view text, double height) { return lineWidth(text) * height / kCapHeight; }

void Page::text(CGPoint at, double height, std::string_view text, std::string_view colour, Align align, double room) {
  const std::string line = cutToFit(text, height, room);
  const double scale = height / kCapHeight;
  const double share = align == Align::Left ? 0 : align == Align::Middle ? 0.5 : 1;
  double x = at.x - share * widthOf(line, height);
  for (const char character : line) {
    const Letter letter = letterFor(character);
    if (*letter.path != '\0') {
      body_ += "<path transform=\"translate(";
      appendNumber(body_, x);
      body_ += ' ';
      appendNumber(body_, at.y);
      body_ += ") scale(";
      appendShortest(body_, scale);
      body_.append(")\" d=\"").append(letter.path).append("\" stroke=\"").append(colour).append("\"");
      appendAttribute(body_, "stroke-width", kStrokeWidth);
      body_ += "/>";
    }
    x += (letter.width + kLetterGap) * scale;
  }
}

void Page::flush(Compositor& compositor, const Surface& surface) {
  std::string svg = "<svg";
  appendAttribute(svg, "width", surface.width);
  appendAttribute(svg, "height", surface.height);
  const auto document = SVGDocument::parse(svg + ">" + std::exchange(body_, {}) + "</svg>");
  const auto layer = document->makeLayer();
  layer->setPosition({surface.width * 0.5, surface.height * 0.5});
  compositor.draw(*layer, surface);
}

void appendNumber(std::string& text, double value) { appendShortest(text, std::round(value * 100) / 100); }

std::string fixedNumber(double value, int digits) {
  constexpr double kEndless = 1e9;
  char buffer[40];
  const auto format = std::abs(value) < kEndless ? std::chars_format::fixed : std::chars_format::scientific;
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, format, digits);
  return error == std::errc{} ? std::string(buffer, end) : std::string("?");
}

}  // namespace halvo
