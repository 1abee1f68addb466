#include "check/sound.h"

#include <array>
#include <cmath>
#include <cstdint>

#include "assets/halvo_file_manager.h"
#include "check/budget.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// 60 dB below full scale: no speaker makes this heard.
constexpr float kSilence = 0.001F;
// The share of samples beyond full scale from which on it is heard. A few overshoot in any loud MP3 file.
constexpr double kMostClipped = 1e-4;

struct Levels {
  std::uint64_t samples = 0;
  std::uint64_t clipped = 0;
  float peak = 0;

  void add(std::span<const float> more) {
    for (const float sample : more) {
      const float level = std::fabs(sample);
      peak = std::fmax(peak, level);
      clipped += level > 1 ? 1 : 0;
    }
    samples += more.size();
  }
};

void tell(Report& report, FindingId id, std::string what) {
  report.add({id, std::move(what), kSoundFile, std::nullopt, "", "", "", std::nullopt});
}

void judge(const Levels& levels, Report& report) {
  if (levels.peak < kSilence) tell(report, FindingId::SoundSilent, "nothing in it can be heard");
  const double share = static_cast<double>(levels.clipped) / static_cast<double>(levels.samples);
  if (share > kMostClipped)
    tell(report, FindingId::SoundClips,
         std::to_string(levels.clipped) + " samples are beyond full scale, the loudest by " +
             std::to_string(std::lround(20 * std::log10(levels.peak))) + " dB");
}

}  // namespace

std::optional<double> checkSound(const std::string& path, Report& report) {
  const auto refuse = [&](FindingId id, std::string what) {
    tell(report, id, std::move(what));
    return std::nullopt;
  };
  if (!FileManager::fileExistsAtPath(path)) return refuse(FindingId::Unreadable, "No such file or directory");
  const auto decoder = Mp3Decoder::open(path);
  if (!decoder) return refuse(FindingId::Sound, decoder.error().localizedDescription);
  std::array<float, 8192> samples;
  Levels levels;
  while (true) {
    const Result<std::size_t> count = (*decoder)->read(samples);
    if (!count) return refuse(FindingId::Sound, count.error().localizedDescription);
    if (*count == 0) break;
    levels.add(std::span(samples).first(*count));
  }
  if (levels.samples == 0) return refuse(FindingId::Sound, "there is no sound in it");
  judge(levels, report);
  const auto bytes = FileManager::readAtPath(path);
  if (bytes && bytes->size() > budget::kSoundBytes)
    tell(report, FindingId::BudgetBytes,
         std::to_string(bytes->size()) + " bytes, of " + std::to_string(budget::kSoundBytes));
  const SoundFormat format = (*decoder)->format();
  return static_cast<double>(levels.samples) / format.channels / format.rate;
}

}  // namespace halvo
