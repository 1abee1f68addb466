#include "import/motion/motion_file.h"

#include <cmath>
#include <utility>

#include "import/motion/cleaned.h"
#include "import/motion/json_fields.h"
#include "import/motion/structure.h"
#include "import/motion/survey.h"
#include "platform/foundation/json/json_reader.h"

namespace halvo::motion {

namespace {

using quellaro::JSONDocument;

constexpr double kLargestSide = 16384;
constexpr double kMostFramesPerSecond = 1000;
// An hour at 27 frames a second, which is more than a cue may last.
constexpr double kMostFrames = 100'000;
constexpr std::size_t kMostMarkers = 10'000;

ArtError error(std::string reason) { return {std::nullopt, std::move(reason)}; }

std::vector<Marker> markersOf(const JSONValue& root) {
  std::vector<Marker> markers;
  for (const JSONValue& marker : elementsOf(root, "markers"))
    if (markers.size() < kMostMarkers)
      markers.push_back({textOf(marker, "cm"), numberOf(marker, "tm"), numberOf(marker, "dr")});
  return markers;
}

std::optional<std::string> whyNoMeasures(const MotionFile& file, double width, double height) {
  if (!(width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide))
    return "its width and height (w, h) have to be from 1 to " + std::to_string(static_cast<int>(kLargestSide));
  if (!(file.framesPerSecond > 0.01 && file.framesPerSecond <= kMostFramesPerSecond))
    return "its frames per second (fr) have to be above 0 and at most 1000";
  if (!(file.end > file.first) || std::fabs(file.first) > 1e6)
    return "it shows no frame: its last (op) is not behind its first (ip)";
  if (file.end - file.first > kMostFrames) return "it has more than 100,000 frames";
  return std::nullopt;
}

}  // namespace

bool beginsAsMotion(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  return start != std::string_view::npos && text[start] == '{';
}

std::variant<MotionFile, ArtError> readMotion(std::string bytes) {
  auto document = JSONDocument::parse(std::move(bytes));
  if (!document) return error(document.error().localizedDescription);
  const JSONValue root = document->root();
  if (!root.member("layers") || !root.member("fr"))
    return error("this JSON object is no motion file: it has no layers, or no frames per second (fr)");
  MotionFile file;
  file.framesPerSecond = numberOf(root, "fr");
  file.first = numberOf(root, "ip");
  file.end = numberOf(root, "op");
  const double width = numberOf(root, "w");
  const double height = numberOf(root, "h");
  if (auto why = whyNoMeasures(file, width, height)) return error(std::move(*why));
  file.width = static_cast<std::size_t>(std::lround(width));
  file.height = static_cast<std::size_t>(std::lround(height));
  const Compositions compositions = compositionsOf(root);
  if (auto why = whatIsWrongWith(root, compositions)) return error(std::move(*why));
  file.markers = markersOf(root);
  file.notes = surveyOf(root, compositions);
  file.text = cleanedMotion(root);
  return file;
}

}  // namespace halvo::motion
