#include "import/motion/moments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <tuple>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/numbers.h"
#include "platform/foundation/text/utf8.h"

namespace halvo::motion {

namespace {

// Of a frame: what rounding may have made of a whole number of them.
constexpr double kHair = 1e-6;

std::optional<double> frameNumber(const std::string& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

const Marker* markerOf(const MotionFile& file, const std::string& name) {
  const auto found = std::ranges::find(file.markers, name, &Marker::name);
  return found == file.markers.end() ? nullptr : &*found;
}

ArtError noSuchMarker(const MotionFile& file, const std::string& name) {
  std::string names;
  for (std::size_t i = 0; i < std::min<std::size_t>(file.markers.size(), 20); ++i)
    names += (i > 0 ? ", " : "; it has ") + quellaro::printable(file.markers[i].name);
  return {std::nullopt, "there is no marker '" + quellaro::printable(name) + "' in the file" + names};
}

std::string rangeText(double from, double to) {
  std::string text = "from frame ";
  quellaro::appendShortest(text, from);
  text += " to ";
  quellaro::appendShortest(text, to);
  return text;
}

}  // namespace

std::variant<std::vector<Moment>, ArtError> momentsOf(const MotionFile& file, const Selection& selection) {
  double from = file.first;
  double to = file.end;
  for (auto [text, frame, isEnd] : {std::tuple(&selection.from, &from, false), std::tuple(&selection.to, &to, true)}) {
    if (text->empty()) continue;
    if (const auto number = frameNumber(*text)) {
      *frame = *number;
    } else if (const Marker* const marker = markerOf(file, *text)) {
      *frame = marker->frame + (isEnd && selection.from == selection.to ? marker->frames : 0);
    } else {
      return noSuchMarker(file, *text);
    }
  }
  if (from < file.first - kHair || to > file.end + kHair || to - from < kHair)
    return ArtError{std::nullopt,
                    rangeText(from, to) + " is no part of the file, which goes " + rangeText(file.first, file.end)};
  const double rate = selection.framesPerSecond.value_or(file.framesPerSecond);
  const double seconds = (to - from) / file.framesPerSecond;
  const double count = std::max(1.0, std::ceil(seconds * rate - kHair));
  if (count > static_cast<double>(quellaro::limits::kFrames))
    return ArtError{std::nullopt, "there are more frames than the " + std::to_string(quellaro::limits::kFrames) +
                                      " that the player takes"};
  std::vector<Moment> moments;
  double shown = 0;
  for (double k = 0; k < count; ++k) {
    const double last = std::ceil(file.end - file.first - kHair) - 1;
    const double frame = from - file.first + k / rate * file.framesPerSecond;
    const auto number = static_cast<std::size_t>(std::clamp(std::floor(frame + kHair), 0.0, last));
    const double until = k + 1 < count ? (k + 1) / rate * 1000 : seconds * 1000;
    if (!moments.empty() && moments.back().frame == number)
      shown -= moments.back().milliseconds;
    else
      moments.push_back({number, 0});
    // What has been shown so far and this together are, as sums of doubles, where it ends.
    moments.back().milliseconds = until - shown;
    shown += moments.back().milliseconds;
  }
  return moments;
}

}  // namespace halvo::motion
