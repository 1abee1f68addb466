#include "import/sound.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "check/sound.h"
#include "import/cue_directory.h"
#include "import/fitted_sound.h"
#include "import/mp3_encoder.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// In dB.
constexpr double kHighestTruePeak = -1;
// What MP3 adds to peaks is not known beforehand: so much is left for it at first, and more when it was not enough.
constexpr double kFirstMargin = 0.1;
constexpr double kStep = 0.05;
constexpr int kMostAttempts = 8;
// In LU: what nobody hears.
constexpr double kNear = 0.05;

std::string number(double value, const char* format = "%.1f") {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

// One sound on its way into a file.
class SoundWriter {
 public:
  SoundWriter(const SoundOrder& order, std::string path, Report& report)
      : order_(order), path_(std::move(path)), report_(report) {}

  Importing<WrittenSound> write() {
    if (order_.isTakenAsItIs())
      copy();
    else if (order_.loudness)
      writeAtLoudness();
    else
      writeUnclipped();
    if (refusal_) return std::move(*refusal_);
    return written_;
  }

 private:
  std::string name() const { return order_.input ? order_.input->path : std::string(kSoundFile); }
  bool refuse(const std::string& why) {
    refusal_ = refusal(name(), why);
    return false;
  }
  void tell(FindingId id, std::string what, std::string howFar) {
    if (id == FindingId::Approximated) written_.isExact = false;
    report_.add(importFinding(id, name(), std::move(what), std::move(howFar)));
  }

  bool keep(const Result<std::string>& bytes) {
    if (!bytes) return refuse(bytes.error().localizedDescription);
    const auto problem = writeWhole(*bytes, path_);
    return problem ? refuse(problem->localizedDescription) : true;
  }

  void copy() { keep(FileManager::readAtPath(order_.input->path, limits::kSoundFileBytes)); }

  // The sound at its own level and more decibels.
  bool encode(double decibels) {
    std::unique_ptr<SoundSource> samples = makeSilence();
    if (order_.input) {
      auto opened = openSamples(*order_.input);
      if (!opened) return refuse(opened.error().localizedDescription);
      samples = std::move(*opened);
    }
    FittedSound fitted(std::move(samples), {decibels, order_.leastSeconds});
    return keep(encodeMp3(fitted));
  }

  std::optional<SoundLevels> measure(Result<std::unique_ptr<SoundSource>> sound) {
    const Result<SoundLevels> levels = sound ? measureSound(**sound) : Result<SoundLevels>(sound.error());
    if (levels) return *levels;
    refuse(levels.error().localizedDescription);
    return std::nullopt;
  }
  std::optional<SoundLevels> measureWritten() { return measure(openSamples({path_, true})); }

  bool clips() const {
    Report heard;
    checkSound(path_, heard);
    const auto groups = heard.groups();
    return std::any_of(groups.begin(), groups.end(),
                       [](const FindingGroup* group) { return group->first.id == FindingId::SoundClips; });
  }

  // MP3 makes peaks higher than they were. A player cuts off what is beyond full scale.
  void writeUnclipped() {
    double decibels = 0;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
      if (!encode(decibels)) return;
      if (!clips()) break;
      const auto levels = measureWritten();
      if (!levels) return;
      decibels -= std::max(levels->samplePeak, kStep) + kStep;
    }
    if (decibels < 0)
      tell(FindingId::Fitted, "quieter, so that no peaks are cut off in the MP3", number(-decibels, "%.2f") + " dB");
  }

  void writeAtLoudness() {
    const auto source = measure(openSamples(*order_.input));
    if (!source) return;
    if (!source->loudness) {
      refuse("nothing in it can be heard, which no loudness can be reached with");
      return;
    }
    const double limit = kHighestTruePeak - source->truePeak;
    const double wanted = *order_.loudness - *source->loudness;
    double decibels = std::min(wanted, limit - kFirstMargin);
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
      if (!encode(decibels)) return;
      written_.levels = measureWritten();
      if (!written_.levels) return;
      const double excess = written_.levels->truePeak - kHighestTruePeak;
      const double missing = *order_.loudness - written_.levels->loudness.value_or(*order_.loudness);
      if (excess >= 0)
        decibels -= excess + kStep;
      else if (std::fabs(missing) > kNear && (missing < 0 || excess < -2 * kFirstMargin))
        decibels += std::min(missing, -excess - kFirstMargin);
      else
        break;
    }
    tellLoudness();
  }

  void tellLoudness() {
    const SoundLevels& levels = *written_.levels;
    const double missing = *order_.loudness - levels.loudness.value_or(*order_.loudness);
    if (std::fabs(missing) > kNear)
      tell(FindingId::Approximated,
           "the loudness is " + number(*levels.loudness) + " LUFS: louder, its true peaks would be above " +
               number(kHighestTruePeak) + " dB",
           number(missing) + " LU below what was asked for");
    if (order_.input->isMp3)
      tell(FindingId::Approximated, "an MP3, decoded and encoded once more for its loudness", "");
  }

  const SoundOrder& order_;
  std::string path_;
  Report& report_;
  WrittenSound written_;
  std::optional<Refusal> refusal_;
};

}  // namespace

Importing<double> lengthOf(const SoundInput& input) {
  auto samples = openSamples(input);
  if (!samples) return refusal(input.path, samples.error().localizedDescription);
  FittedSound sound(std::move(*samples), {});
  const SoundFormat format = sound.format();
  std::vector<float> buffer(std::size_t{4096} * format.channels);
  std::size_t total = 0;
  while (true) {
    const Result<std::size_t> count = sound.read(buffer);
    if (!count) return refusal(input.path, count.error().localizedDescription);
    if (*count == 0) break;
    total += *count;
  }
  if (total == 0) return refusal(input.path, "there is no sound in it");
  return static_cast<double>(total) / format.channels / format.rate;
}

Importing<WrittenSound> writeSound(const SoundOrder& order, const std::string& path, Report& report) {
  return SoundWriter(order, path, report).write();
}

}  // namespace halvo
