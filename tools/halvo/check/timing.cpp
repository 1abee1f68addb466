#include "check/timing.h"

#include <algorithm>
#include <charconv>

#include "assets/halvo_file_manager.h"
#include "check/cue.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

// In milliseconds.
constexpr double kLong = 60'000;
constexpr double kEndless = 600'000;

constexpr std::string_view kFramePrefix = "Frame_";

std::string frameKey(std::size_t number) { return std::string(kFramePrefix) + std::to_string(number); }

// `key` tells findings of one kind apart, where frames do not.
void tell(Report& report, FindingId id, std::string what, std::optional<std::size_t> frame = std::nullopt,
          std::string key = "") {
  report.add({id, std::move(what), kPlayConfigFile, frame, "", "", std::move(key), std::nullopt});
}

// Whether the key is that of one of so many frames.
bool isFrame(std::string_view key, std::size_t frames) {
  if (!key.starts_with(kFramePrefix)) return false;
  const std::string_view digits = key.substr(kFramePrefix.size());
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc{} && number >= 1 && number <= frames && key == frameKey(number);
}

// A cue lasts seconds; what is beyond these is a digit too many, or a unit mistaken.
bool isToldAsLong(double milliseconds, const std::string& name, const std::string& key,
                  std::optional<std::size_t> frame, Report& report) {
  if (!(milliseconds > kLong)) return false;
  const bool isEndless = milliseconds > kEndless;
  tell(report, isEndless ? FindingId::TimeEndless : FindingId::TimeLong,
       name + " is " + secondsText(milliseconds / 1000) + ", which is more than " +
           (isEndless ? "ten minutes" : "a minute"),
       frame, key);
  return true;
}

}  // namespace

double checkTiming(const QLHalvoSDKConfig& config, std::size_t frames, Report& report) {
  if (config.totalFrames < 0 || static_cast<std::size_t>(config.totalFrames) != frames)
    tell(report, FindingId::TotalFrames,
         "totalFrames is " + std::to_string(config.totalFrames) + ", but there are " + std::to_string(frames));
  double milliseconds = 0;
  bool isLong = false;
  for (std::size_t number = 1; number <= frames; ++number) {
    const auto time = config.frameTime.find(frameKey(number));
    if (time == config.frameTime.end()) {
      tell(report, FindingId::FrameTimeMissing, "frameTime has no " + frameKey(number), number);
      continue;
    }
    milliseconds += time->second;
    isLong = isToldAsLong(time->second, frameKey(number), "frameTime", number, report) || isLong;
    if (time->second <= 0)
      tell(report, time->second < 0 ? FindingId::FrameTimeNegative : FindingId::FrameTimeZero,
           frameKey(number) + " is " + decimalDescription(time->second), number);
  }
  for (const auto& [key, time] : config.frameTime)
    if (!isFrame(key, frames))
      tell(report, FindingId::FrameTimeSurplus, "frameTime has \"" + printable(key) + "\", which is no frame's name");
  for (const auto& [name, delay] : {std::pair("animationDelayInMillis", config.animationDelayInMillis),
                                    std::pair("soundDelayInMillis", config.soundDelayInMillis)}) {
    isLong = isToldAsLong(delay, name, name, std::nullopt, report) || isLong;
    if (delay < 0)
      tell(report, FindingId::DelayNegative, std::string(name) + " is " + decimalDescription(delay), std::nullopt,
           name);
  }
  // Many short times may add up to a long one.
  if (!isLong) isToldAsLong(milliseconds, "the animation", "", std::nullopt, report);
  return (std::max(0.0, config.animationDelayInMillis) + milliseconds) / 1000;
}

}  // namespace halvo
