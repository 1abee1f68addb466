#include "check/sound.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "assets/halvo_file_manager.h"
#include "check/budget.h"
#include "check/mpeg_frames.h"
#include "check/sound_container.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"
#include "sound/loudness.h"
#include "sound/onsets.h"

namespace halvo {

namespace {

using namespace quellaro;

// 80 dB below full scale: the noise that encoders and converters add to silence.
constexpr float kSilence = 0.0001F;
// 60 dB below: from here on something is heard.
constexpr float kHeard = 0.001F;
// 55 dB below: whatever its pitch, a sound that stays below is quieter than kInaudible.
constexpr float kSurelyInaudible = 0.0018F;
// The share of samples beyond full scale from which on it is heard. A few overshoot in any loud MP3 file.
constexpr double kMostClipped = 1e-4;
// In LUFS.
constexpr double kInaudible = -50;
constexpr double kQuiet = -30;
constexpr double kLoud = -9;
// In dB. What converts a sound into a current overshoots between samples.
constexpr double kHighestPeak = -1;
// In seconds: what people notice to be late.
constexpr double kLongestSilence = 0.1;
constexpr unsigned kLowestRate = 22050;
// In bits a second, of one channel and of two.
constexpr std::array<std::size_t, 2> kLowestBitRates = {32'000, 48'000};

std::string decimal(double value, const char* format = "%.1f") {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

std::string loudnessText(double loudness) { return "its loudness is " + decimal(loudness) + " LUFS"; }

struct Levels {
  std::uint64_t samples = 0;
  std::uint64_t clipped = 0;
  std::optional<std::uint64_t> firstHeard;
  float peak = 0;

  void add(std::span<const float> more) {
    for (const float sample : more) {
      const float level = std::fabs(sample);
      peak = std::fmax(peak, level);
      clipped += level > 1 ? 1 : 0;
      if (!firstHeard && level >= kHeard) firstHeard = samples;
      ++samples;
    }
  }
};

class SoundCheck {
 public:
  SoundCheck(const std::string& path, Report& report) : path_(path), report_(report) {}

  std::optional<SoundFacts> run() {
    if (!FileManager::fileExistsAtPath(path_)) return refuse(FindingId::Unreadable, "No such file or directory");
    const auto decoder = Mp3Decoder::open(path_);
    const bool isMpeg = checkFile();
    if (!isMpeg) return std::nullopt;
    if (!decoder) return refuse(FindingId::Sound, decoder.error().localizedDescription);
    if (!listen(**decoder)) return std::nullopt;
    judge((*decoder)->format());
    return facts_;
  }

 private:
  void tell(FindingId id, std::string what) {
    report_.add({id, std::move(what), kSoundFile, std::nullopt, "", "", "", std::nullopt});
  }
  std::nullopt_t refuse(FindingId id, std::string what) {
    tell(id, std::move(what));
    return std::nullopt;
  }

  // What the file is, whatever its name. One that cannot be read is left to the decoder's words.
  bool checkFile() {
    const auto bytes = FileManager::readAtPath(path_, limits::kSoundFileBytes);
    if (!bytes || bytes->empty()) return true;
    const MpegFrames frames = findMpegFrames(*bytes);
    bitRate_ = frames.highestRate;
    if (bytes->size() > budget::kSoundBytes)
      tell(FindingId::BudgetBytes, std::to_string(bytes->size()) + " bytes, of " + std::to_string(budget::kSoundBytes));
    std::string_view name = containerNameOf(*bytes);
    if (name.empty()) name = containerNameOf(withoutTags(*bytes));
    // An even tone in a WAV file repeats whatever in it resembles a frame, as often as frames do.
    if (name.empty() && frames.areMostOfFile()) return true;
    if (!name.empty())
      tell(FindingId::Sound, "it is " + std::string(name) + ", and no MPEG audio");
    else if (frames.bytes == 0)
      tell(FindingId::Sound, "it is no MPEG audio");
    else
      tell(FindingId::Sound, "only " + std::to_string(frames.bytes * 100 / frames.fileBytes) +
                                 " % of it is MPEG audio; the rest is heard as noise, or breaks it off");
    return false;
  }

  bool listen(Mp3Decoder& decoder) {
    auto meter = LoudnessMeter::make(decoder.format(), LoudnessMeter::Mono::Twice);
    OnsetListener listener(decoder.format());
    std::array<float, 8192> samples;
    while (true) {
      const Result<std::size_t> count = decoder.read(samples);
      if (!count) {
        refuse(FindingId::Sound, count.error().localizedDescription);
        return false;
      }
      if (*count == 0) break;
      const auto more = std::span(samples).first(*count);
      levels_.add(more);
      listener.add(more);
      if (meter) meter->add(more);
    }
    if (levels_.samples == 0) {
      refuse(FindingId::Sound, "there is no sound in it");
      return false;
    }
    facts_.onsets = listener.onsets();
    if (!meter) return true;
    const SoundLevels measured = meter->levels();
    facts_.loudness = measured.loudness;
    if (levels_.peak > 0) facts_.truePeak = measured.truePeak;
    return true;
  }

  void judge(const SoundFormat& format) {
    const auto secondsOf = [&](std::uint64_t samples) {
      const std::uint64_t moments = samples / format.channels;
      return static_cast<double>(moments) / format.rate;
    };
    facts_.seconds = secondsOf(levels_.samples);
    facts_.rate = format.rate;
    if (levels_.firstHeard) facts_.firstHeard = secondsOf(*levels_.firstHeard);
    if (levels_.peak < kSilence) return tell(FindingId::SoundSilent, "nothing in it can be heard");
    judgeLevels();
    if (facts_.firstHeard && *facts_.firstHeard > kLongestSilence)
      tell(FindingId::SoundLate,
           "silence for " + std::to_string(std::lround(*facts_.firstHeard * 1000)) + " ms before the first sound");
    if (format.rate < kLowestRate)
      tell(FindingId::SoundRate, std::to_string(format.rate) + " samples a second");
    else if (bitRate_ > 0 && bitRate_ < kLowestBitRates[format.channels - 1])
      tell(FindingId::SoundRate, std::to_string(bitRate_ / 1000) + " kbit/s");
  }

  void judgeLevels() {
    const double loudness = facts_.loudness.value_or(levels_.peak < kSurelyInaudible ? kInaudible - 1 : kQuiet);
    if (loudness < kInaudible)
      return tell(FindingId::SoundInaudible,
                  facts_.loudness
                      ? loudnessText(loudness)
                      : "its loudest moment is " + decimal(-20 * std::log10(levels_.peak)) + " dB below full scale");
    if (loudness < kQuiet) tell(FindingId::SoundQuiet, loudnessText(loudness));
    const double share = static_cast<double>(levels_.clipped) / static_cast<double>(levels_.samples);
    // What is clipped is loud, too, for the same reason.
    if (share > kMostClipped)
      return tell(FindingId::SoundClips, std::to_string(levels_.clipped) +
                                             " samples are beyond full scale, the loudest by " +
                                             std::to_string(std::lround(20 * std::log10(levels_.peak))) + " dB");
    if (loudness > kLoud) tell(FindingId::SoundLoud, loudnessText(loudness));
    if (facts_.truePeak && *facts_.truePeak > kHighestPeak)
      tell(FindingId::SoundPeak, "true peaks of " + decimal(*facts_.truePeak, "%+.1f") + " dB");
  }

  const std::string& path_;
  Report& report_;
  SoundFacts facts_;
  Levels levels_;
  std::size_t bitRate_ = 0;
};

}  // namespace

std::optional<SoundFacts> checkSound(const std::string& path, Report& report) { return SoundCheck(path, report).run(); }

}  // namespace halvo
