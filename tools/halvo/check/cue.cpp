#include "check/cue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "assets/halvo_file_manager.h"
#include "check/config.h"
#include "check/frames.h"
#include "check/haptics.h"
#include "check/sound.h"
#include "check/timing.h"
#include "check/together.h"
#include "input.h"
#include "picture/frame_source.h"
#include "picture/svg_folder.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// People notice when one part goes on for longer than this.
constexpr double kLongestTail = 0.5;
constexpr double kLongestHapticTail = 0.1;
constexpr double kEndless = 600;

Finding findingIn(const char* file, FindingId id, std::string what) {
  return {id, std::move(what), file, std::nullopt, "", "", "", std::nullopt};
}

void checkLengths(const CueFacts& facts, Report& report) {
  // What never ends has been told.
  const bool isEndless = std::max(facts.animationEnd.value_or(0), facts.soundEnd.value_or(0)) > kEndless;
  if (!isEndless && facts.animationEnd && facts.soundEnd &&
      std::fabs(*facts.animationEnd - *facts.soundEnd) > kLongestTail)
    report.add(findingIn(kPlayConfigFile, FindingId::Length,
                         "the animation ends after " + secondsText(*facts.animationEnd) + ", the sound after " +
                             secondsText(*facts.soundEnd)));
  const double end = std::max(facts.animationEnd.value_or(0), facts.soundEnd.value_or(0));
  if (facts.hapticsEnd && (facts.animationEnd || facts.soundEnd) && *facts.hapticsEnd > end + kLongestHapticTail)
    report.add(
        findingIn(kHapticsFile, FindingId::HapticsLength,
                  "the pattern ends after " + secondsText(*facts.hapticsEnd) + ", the cue after " + secondsText(end)));
}

CueFacts checkDirectory(const std::string& directory, Report& report, const CheckProgress& progress) {
  const auto pathOf = [&](const char* name) { return directory + "/" + name; };
  CueFacts facts;
  const auto config = readConfig(pathOf(kPlayConfigFile), report);
  const std::vector<double> changes =
      checkFrames(FileManager::readAtPath(pathOf(kAnimationFile)), false, kAnimationFile, report, progress);
  facts.frames = changes.size();
  if (config && facts.frames > 0) {
    facts.animationEnd = checkTiming(*config, facts.frames, report);
    facts.moments.pictures = largeChanges(changes, timesOf(*config, facts.frames));
  }
  facts.sound = checkSound(pathOf(kSoundFile), report);
  if (facts.sound)
    facts.soundEnd = facts.sound->seconds + (config ? std::max(0.0, config->soundDelayInMillis / 1000) : 0);
  if (facts.sound)
    for (const double onset : facts.sound->onsets)
      facts.moments.sounds.push_back(*facts.soundEnd - facts.sound->seconds + onset);
  if (const auto pattern = checkHaptics(pathOf(kHapticsFile), config && config->isHapticsSupported, report)) {
    facts.hapticsEnd = pattern->duration();
    facts.moments.taps = tapsOf(pattern->curve());
  }
  checkLengths(facts, report);
  checkTogether(facts.moments, report);
  return facts;
}

// Whether it holds SVG files, and no file of a cue.
bool isFolderOfFrames(const std::string& directory) {
  for (const char* name : kCueFiles)
    if (FileManager::fileExistsAtPath(directory + "/" + name)) return false;
  return !svgNamesIn(directory).empty();
}

}  // namespace

std::string secondsText(double seconds) {
  // No cue lasts a week; one that does has a digit too many somewhere.
  constexpr double kLongest = 1e6;
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), std::fabs(seconds) < kLongest ? "%.2f s" : "%.3g s", seconds);
  return text.data();
}

CueFacts checkSource(const std::string& source, Report& report, const CheckProgress& progress) {
  // What the engine says of odd path data is among the findings.
  setConsoleSink([](std::string_view) {});
  CueFacts facts;
  if (FileManager::directoryExistsAtPath(source)) {
    if (!isFolderOfFrames(source)) return checkDirectory(source, report, progress);
    facts.frames = checkFolder(source, report, progress).size();
    return facts;
  }
  Result<std::string> text = readInput(source);
  const bool isDocument = text && isSvgDocument(source, *text);
  facts.frames = checkFrames(std::move(text), isDocument, source, report, progress).size();
  return facts;
}

}  // namespace halvo
