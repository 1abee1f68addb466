#include "import/motion_report.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "import/refusal.h"

namespace halvo {

namespace {

// Of animation.json. Larger ones load slowly where they are fetched over a telephone's network.
constexpr std::size_t kLargeBytes = std::size_t{2} << 20;
constexpr std::size_t kLayersTold = 3;

// The first moment that each of these frames shows.
std::set<std::size_t> momentsOfFrames(const ImportedFrames& frames, const std::vector<std::size_t>& numbers) {
  std::set<std::size_t> moments;
  for (const std::size_t number : numbers)
    moments.insert(static_cast<std::size_t>(std::ranges::lower_bound(frames.numbers, number) - frames.numbers.begin()));
  return moments;
}

// By what each layer takes alone, in a few frames all along.
std::string heaviestLayers(const MotionFrames& motion, const ImportedFrames& frames) {
  const std::size_t count = frames.figures.size();
  std::map<std::string, std::size_t> bytes;
  double all = 0;
  for (const std::size_t moment : momentsOfFrames(frames, {1 + count / 8, 1 + count / 2, 1 + count * 7 / 8}))
    for (const auto& [name, layer] : motion.bytesOfLayers(moment)) {
      bytes[name] += layer;
      all += static_cast<double>(layer);
    }
  std::vector<std::pair<std::size_t, std::string>> order;
  order.reserve(bytes.size());
  for (const auto& [name, layer] : bytes) order.emplace_back(layer, name);
  std::ranges::sort(order, std::greater<>());
  order.resize(std::min(order.size(), kLayersTold));
  std::string text;
  for (const auto& [layer, name] : order)
    text += (text.empty() ? "'" : ", '") + printable(name) + "' " +
            std::to_string(std::lround(100 * static_cast<double>(layer) / all)) + " %";
  return text;
}

}  // namespace

bool tellOfMotion(const MotionFrames& motion, const std::string& file, const ImportedFrames& frames, Report& report) {
  for (const auto& [note, moment] : motion.notes) report.add(findingOf(note, file, frames.numbers[moment]));
  if (frames.animation.size() > kLargeBytes)
    report.add(importFinding(FindingId::Fitted, file,
                             "a large animation; most of it are layers " + heaviestLayers(motion, frames),
                             std::to_string(frames.animation.size() >> 10) + " KB"));
  return !motion.notes.empty();
}

}  // namespace halvo
