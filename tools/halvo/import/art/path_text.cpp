#include "import/art/path_text.h"

#include <cctype>
#include <cmath>
#include <vector>

namespace halvo::art {

namespace {

constexpr bool kX = true;
constexpr bool kY = false;

bool needsSpace(std::string_view before, char next) {
  if (before.empty() || next == '-') return false;
  const std::size_t begin = before.find_last_not_of("0123456789.") + 1;
  if (begin == before.size()) return false;
  return next != '.' || before.find('.', begin) == std::string_view::npos;
}

}  // namespace

std::string shortNumber(std::int64_t value, int decimals) {
  std::string digits = std::to_string(value < 0 ? -value : value);
  const auto places = static_cast<std::size_t>(decimals);
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  std::string text = digits.substr(0, digits.size() - places);
  std::string fraction = digits.substr(digits.size() - places);
  while (fraction.ends_with('0')) fraction.pop_back();
  if (text == "0" && !fraction.empty()) text.clear();
  if (!fraction.empty()) text += '.' + fraction;
  return value < 0 ? '-' + text : text;
}

std::string shortNumber(double value, int decimals) {
  return shortNumber(static_cast<std::int64_t>(std::llround(value * std::pow(10, decimals))), decimals);
}

PathText::PathText(int decimals) : decimals_(decimals), scale_(std::pow(10, decimals)) {}

PathText::Place PathText::rounded(Point point) const {
  return {std::llround(point.x * scale_), std::llround(point.y * scale_)};
}

void PathText::add(const Contour& contour, bool isStroke) {
  const Place start = rounded(contour.start);
  // Whatever comes to nothing when rounded is left out, and so is the way back to the start, which closing draws.
  std::vector<const Segment*> segments;
  Place at = start;
  for (const Segment& segment : contour.segments) {
    const Place end = rounded(segment.end);
    if (end == at && (segment.isLine || (rounded(segment.control1) == at && rounded(segment.control2) == at))) continue;
    segments.push_back(&segment);
    at = end;
  }
  const bool isClosed = !isStroke || contour.isClosed;
  if (isClosed && !segments.empty() && segments.back()->isLine && at == start) segments.pop_back();
  if (segments.empty() || (!isStroke && segments.size() < 2 && segments.front()->isLine)) return;
  move(start);
  const bool landsOnStart = isStroke && contour.isClosed && at == start;
  for (const Segment* segment : segments) {
    // Relative numbers add up to nearly the start: to a side of no length, which turns anywhere and shows its corner.
    isAbsolute_ = landsOnStart && segment == segments.back();
    if (segment->isLine)
      line(rounded(segment->end));
    else
      curve(rounded(segment->control1), rounded(segment->control2), rounded(segment->end));
  }
  isAbsolute_ = false;
  if (!isStroke || !contour.isClosed) return;
  text_ += last_ = 'z';
  isSmooth_ = false;
}

void PathText::go(Place to) {
  at_ = to;
  ++points_;
}

void PathText::move(Place to) {
  // Where the outline goes on from after it has been closed is not the same everywhere.
  const std::int64_t numbers[] = {to.x, to.y};
  constexpr bool kAcross[] = {kX, kY};
  if (last_ == 'z' || text_.empty()) {
    text_ += form('M', numbers);
    last_ = 'M';
  } else {
    last_ = 0;
    command('M', numbers, kAcross);
  }
  isSmooth_ = false;
  go(to);
}

void PathText::line(Place to) {
  const std::int64_t numbers[] = {to.x, to.y};
  constexpr bool kAcross[] = {kX, kY};
  if (to.y == at_.y)
    command('H', {numbers, 1}, {kAcross, 1});
  else if (to.x == at_.x)
    command('V', {numbers + 1, 1}, {kAcross + 1, 1});
  else
    command('L', numbers, kAcross);
  isSmooth_ = false;
  go(to);
}

void PathText::curve(Place control1, Place control2, Place to) {
  const std::int64_t numbers[] = {control1.x, control1.y, control2.x, control2.y, to.x, to.y};
  constexpr bool kAcross[] = {kX, kY, kX, kY, kX, kY};
  // The player takes a control point at the corner of the frame for none.
  const bool goesOn =
      isSmooth_ && !(control_ == Place{}) && control1 == Place{2 * at_.x - control_.x, 2 * at_.y - control_.y};
  if (goesOn)
    command('S', {numbers + 2, 4}, kAcross);
  else
    command('C', numbers, kAcross);
  control_ = control2;
  isSmooth_ = true;
  points_ += 2;
  go(to);
}

std::string PathText::form(char letter, std::span<const std::int64_t> numbers) const {
  std::string text;
  if (letter != last_ || letter == 'M' || letter == 'm') text += letter;
  for (const std::int64_t number : numbers) {
    const std::string digits = shortNumber(number, decimals_);
    if (needsSpace(text.empty() ? std::string_view(text_) : std::string_view(text), digits.front())) text += ' ';
    text += digits;
  }
  return text;
}

void PathText::command(char letter, std::span<const std::int64_t> absolute, std::span<const bool> across) {
  std::array<std::int64_t, 6> relative{};
  for (std::size_t i = 0; i < absolute.size(); ++i) relative[i] = absolute[i] - (across[i] == kX ? at_.x : at_.y);
  const char small = static_cast<char>(std::tolower(letter));
  const std::string far = form(letter, absolute);
  const std::string near = form(small, {relative.data(), absolute.size()});
  const bool isNear = !isAbsolute_ && near.size() <= far.size();
  text_ += isNear ? near : far;
  last_ = isNear ? small : letter;
}

}  // namespace halvo::art
