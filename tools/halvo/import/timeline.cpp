#include "import/timeline.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "check/cue.h"
#include "import/sound_input.h"
#include "platform/foundation/json/json_writer.h"

namespace halvo {

using namespace quellaro;

namespace {

// In milliseconds; what the checker lets pass.
constexpr double kLongestSoundTail = 500;
constexpr double kLongestHapticTail = 100;

}  // namespace

double Timeline::animationEnd() const { return std::accumulate(frames.begin(), frames.end(), animationDelay); }

Importing<Timeline> fitTimeline(const ImportOptions& options, std::vector<double> frames, const OtherParts& parts,
                                Report& report) {
  const std::size_t count = frames.size();
  Timeline timeline{std::move(frames), options.soundDelay, options.animationDelay, 0};
  const double end = timeline.animationEnd();
  if (end > kLongestSeconds * 1000)
    return refusal(options.sources.front(), std::to_string(count) + " frames last " + secondsText(end / 1000) +
                                                ", but a cue at most " + secondsText(kLongestSeconds));
  const double sound = parts.sound ? options.soundDelay + *parts.sound * 1000 : 0;
  const double haptics = parts.haptics ? *parts.haptics * 1000 : 0;
  const double last = std::max(sound, haptics);
  const auto tell = [&](std::string what, double milliseconds) {
    report.add(importFinding(FindingId::Fitted, kPlayConfigFile, std::move(what),
                             "for " + secondsText(milliseconds / 1000) + " more"));
  };
  // The view keeps the last frame anyway; so the cue ends for its host too when all of it has.
  if (sound > end + kLongestSoundTail || haptics > std::max(end, sound) + kLongestHapticTail) {
    timeline.frames.back() += last - end;
    tell(std::string("the last frame stays until the ") + (last == sound ? "sound" : "haptic pattern") + " has ended",
         last - end);
  }
  const double full = timeline.animationEnd();
  if (!parts.sound) {
    timeline.soundLength = full;
  } else if (!parts.isSoundFixed && sound + kLongestSoundTail < full) {
    timeline.soundLength = full - options.soundDelay;
    tell("the sound goes on silently until the animation has ended", full - sound);
  }
  return timeline;
}

std::string playConfigOf(const Timeline& timeline, int side, bool haptics) {
  JSONWriter json;
  json.beginObject().key("totalFrames").integer(static_cast<std::int64_t>(timeline.frames.size()));
  json.key("soundFileName").string(kSoundFile);
  json.key("soundDelayInMillis").number(timeline.soundDelay);
  json.key("animationDelayInMillis").number(timeline.animationDelay);
  json.key("frameTime").beginObject();
  for (std::size_t number = 1; number <= timeline.frames.size(); ++number)
    json.key("Frame_" + std::to_string(number)).number(timeline.frames[number - 1]);
  json.endObject();
  const std::string length = std::to_string(side);
  json.key("viewBox").string("0 0 " + length + " " + length).key("isHapticsSupported").boolean(haptics).endObject();
  return json.take() + "\n";
}

}  // namespace halvo
