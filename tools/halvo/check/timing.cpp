#include "check/timing.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::array<std::string_view, 8> kKeys = {
    "totalFrames", "svgPreFix", "soundFileName",     "soundDelayInMillis", "animationDelayInMillis",
    "frameTime",   "viewBox",   "isHapticsSupported"};
constexpr std::string_view kFramePrefix = "Frame_";

std::string frameKey(std::size_t number) { return std::string(kFramePrefix) + std::to_string(number); }

// `key` tells findings of one kind apart, where frames do not.
void tell(Report& report, FindingId id, std::string what, std::optional<std::size_t> frame = std::nullopt,
          std::string key = "") {
  report.add({id, std::move(what), kPlayConfigFile, frame, "", "", std::move(key), std::nullopt});
}

void checkKeys(const std::string& json, const QLHalvoSDKConfig& config, Report& report) {
  const auto document = JSONDocument::parse(json);
  if (!document) return;
  for (const auto& [key, value] : document->root().members())
    if (std::find(kKeys.begin(), kKeys.end(), key) == kKeys.end())
      tell(report, FindingId::ConfigKey, "the key \"" + printable(key) + "\" is not known", std::nullopt,
           printable(key));
  if (config.soundFileName != kSoundFile)
    tell(report, FindingId::ConfigKey,
         "soundFileName is \"" + printable(config.soundFileName) + "\", but the sound is always audio.mp3",
         std::nullopt, "soundFileName");
}

// Whether the key is that of one of so many frames.
bool isFrame(std::string_view key, std::size_t frames) {
  if (!key.starts_with(kFramePrefix)) return false;
  const std::string_view digits = key.substr(kFramePrefix.size());
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc{} && number >= 1 && number <= frames && key == frameKey(number);
}

}  // namespace

std::shared_ptr<const QLHalvoSDKConfig> readConfig(const std::string& path, Report& report) {
  auto json = FileManager::readAtPath(path);
  if (!json) {
    tell(report, FindingId::Unreadable, json.error().localizedDescription);
    return nullptr;
  }
  auto config = decodeSDKConfig(*json);
  if (!config) {
    tell(report, FindingId::Config, config.error().localizedDescription);
    return nullptr;
  }
  checkKeys(*json, **config, report);
  return *config;
}

double checkTiming(const QLHalvoSDKConfig& config, std::size_t frames, Report& report) {
  if (config.totalFrames < 0 || static_cast<std::size_t>(config.totalFrames) != frames)
    tell(report, FindingId::TotalFrames,
         "totalFrames is " + std::to_string(config.totalFrames) + ", but there are " + std::to_string(frames));
  double milliseconds = 0;
  for (std::size_t number = 1; number <= frames; ++number) {
    const auto time = config.frameTime.find(frameKey(number));
    if (time == config.frameTime.end()) {
      tell(report, FindingId::FrameTimeMissing, "frameTime has no " + frameKey(number), number);
      continue;
    }
    milliseconds += time->second;
    if (time->second <= 0)
      tell(report, time->second < 0 ? FindingId::FrameTimeNegative : FindingId::FrameTimeZero,
           frameKey(number) + " is " + decimalDescription(time->second), number);
  }
  for (const auto& [key, time] : config.frameTime)
    if (!isFrame(key, frames))
      tell(report, FindingId::FrameTimeSurplus, "frameTime has \"" + printable(key) + "\", which is no frame's name");
  for (const auto& [name, delay] : {std::pair("animationDelayInMillis", config.animationDelayInMillis),
                                    std::pair("soundDelayInMillis", config.soundDelayInMillis)})
    if (delay < 0)
      tell(report, FindingId::DelayNegative, std::string(name) + " is " + decimalDescription(delay), std::nullopt,
           name);
  return (std::max(0.0, config.animationDelayInMillis) + milliseconds) / 1000;
}

}  // namespace halvo
