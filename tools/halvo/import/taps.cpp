#include "import/taps.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/memory/limits.h"
#include "sound/onsets.h"

namespace halvo {

using namespace quellaro;

namespace {

constexpr double kTapSeconds = 0.03;
// A beginning that much quieter than the loudest is felt this weakly, and none more weakly.
constexpr double kQuieter = 30;  // dB
constexpr double kWeakest = 0.3;

double hundredths(double number) { return std::round(number * 100) / 100; }

void writeTap(JSONWriter& json, double seconds, double intensity, double sharpness) {
  json.beginObject().key("Event").beginObject();
  json.key("Time").number(std::round(seconds * 1000) / 1000).key("EventType").string("HapticTransient");
  json.key("EventParameters").beginArray();
  for (const auto& [name, value] : {std::pair("HapticIntensity", intensity), std::pair("HapticSharpness", sharpness)})
    json.beginObject().key("ParameterID").string(name).key("ParameterValue").number(hundredths(value)).endObject();
  json.endArray().endObject().endObject();
}

}  // namespace

Importing<HapticPart> tapsOf(const SoundInput& sound, double delay, Report& report) {
  auto samples = openSamples(sound);
  if (!samples) return refusal(sound.path, samples.error().localizedDescription);
  OnsetListener listener((*samples)->format());
  std::vector<float> block(std::size_t{4096} * (*samples)->format().channels);
  while (true) {
    const auto count = (*samples)->read(block);
    if (!count) return refusal(sound.path, count.error().localizedDescription);
    if (*count == 0) break;
    listener.add(std::span(block).first(*count));
  }
  std::vector<Onset> onsets = listener.beginnings();
  const double latest = limits::kHapticSeconds - kTapSeconds - delay;
  std::erase_if(onsets, [&](const Onset& onset) { return onset.seconds > latest; });
  onsets.resize(std::min(onsets.size(), limits::kHapticEntries));
  if (onsets.empty()) return refusal(sound.path, "nothing in it begins suddenly, so that --taps finds no tap");

  const double loudest = std::ranges::max(onsets, {}, &Onset::level).level;
  JSONWriter json;
  json.beginObject().key("Version").number(1).key("Pattern").beginArray();
  for (const Onset& onset : onsets) {
    const double share = std::clamp(1 - (loudest - onset.level) / kQuieter, 0.0, 1.0);
    writeTap(json, delay + onset.seconds, kWeakest + (1 - kWeakest) * share, 0.2 + 0.7 * onset.attack);
  }
  json.endArray().endObject();
  report.add(importFinding(FindingId::Fitted, sound.path,
                           "a first haptic pattern, of where the sound begins anew: tune it by hand",
                           std::to_string(onsets.size()) + (onsets.size() == 1 ? " tap" : " taps")));
  return HapticPart{json.take() + "\n", delay + onsets.back().seconds + kTapSeconds};
}

}  // namespace halvo
