#include "sheet/sheet_source.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "assets/sdk_config.h"
#include "input.h"
#include "media/haptic_pattern_file.h"
#include "picture/frame_source.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// Far longer than a cue; what is left out would make the rest unreadably narrow.
constexpr double kLongestSound = 600;

// Configurations may say anything; the axis stays where numbers can be told apart.
constexpr double kLongestAxis = 1e9;
constexpr double kShortestAxis = 1e-3;

constexpr double kMillisecondsPerSecond = 1000;

void readTimes(SheetSource& source, const std::string& path) {
  auto text = FileManager::readAtPath(path);
  if (!text) return source.notes.push_back(path + ": " + text.error().localizedDescription);
  const auto config = decodeSDKConfig(std::move(*text));
  if (!config) return source.notes.push_back(path + ": " + config.error().localizedDescription);
  source.expectsHaptics = (*config)->isHapticsSupported;
  source.times = timesOf(**config, source.frames.size());
  source.soundStart = (*config)->soundDelayInMillis / kMillisecondsPerSecond;
}

void readSound(SheetSource& source, const std::string& path) {
  auto waveform = readWaveform(path, kLongestSound);
  if (!waveform) return source.notes.push_back(path + ": " + waveform.error().localizedDescription);
  if (waveform->isCut)
    source.notes.push_back(path + ": only the first " + std::to_string(static_cast<int>(kLongestSound)) +
                           " seconds are shown");
  source.sound = std::move(*waveform);
}

void readHaptics(SheetSource& source, const std::string& path) {
  const auto pattern = loadHapticPattern(path);
  if (!pattern) return source.notes.push_back(path + ": " + pattern.error().localizedDescription);
  source.haptics = (*pattern)->curve();
}

}  // namespace

double SheetSource::duration() const {
  const double soundEnd = sound ? soundStart + sound->duration() : 0;
  const double needed = std::max({times ? times->end : 0.0, soundEnd, haptics ? haptics->duration() : 0.0});
  return needed < kShortestAxis ? 0 : std::min(needed, kLongestAxis);
}

Result<SheetSource> readSheetSource(const std::string& path) {
  const bool isDirectory = FileManager::directoryExistsAtPath(path);
  const std::filesystem::path file =
      isDirectory ? std::filesystem::path(path) / "animation.json" : std::filesystem::path(path);
  const auto read = isDirectory ? readCueFrames(file.string()) : readFrames(path);
  if (!read) return NSError{"halvo", 0, file.string() + ": " + read.error().localizedDescription};
  const FrameTexts& frames = read->frames;
  if (frames.texts.empty()) return NSError{"halvo", 0, file.string() + ": there are no frames"};

  SheetSource source;
  const std::filesystem::path named = std::filesystem::path(path).lexically_normal();
  source.name = isDirectory && !named.has_filename() ? named.parent_path().filename() : named.filename();
  source.frames.assign(frames.texts.begin(), frames.texts.end());
  if (read->isDocument || isStream(path)) return source;
  // Beside an animation.json that was named by itself there need be nothing; in a cue directory, what is missing is
  // news.
  const auto beside = [&](const char* name, void (*readInto)(SheetSource&, const std::string&)) {
    const std::string sibling = file.parent_path() / name;
    if (isDirectory || FileManager::fileExistsAtPath(sibling)) readInto(source, sibling);
  };
  beside("play_config.json", readTimes);
  beside("audio.mp3", readSound);
  if (source.expectsHaptics) beside("signature_forte.ahap", readHaptics);
  return source;
}

}  // namespace halvo
