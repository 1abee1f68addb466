#include "import/fitted_sound.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "import/sound_input.h"

namespace halvo {

namespace {

using namespace quellaro;

// Nothing is heard of samples beyond; encoders have never been tried with them.
constexpr float kLoudest = 4;

class Silence final : public SoundSource {
 public:
  SoundFormat format() const override { return {22050, 1}; }
  Result<std::size_t> read(std::span<float>) override { return std::size_t{0}; }
};

std::size_t samplesOf(double seconds, const SoundFormat& format) {
  return static_cast<std::size_t>(std::ceil(seconds * format.rate)) * format.channels;
}

}  // namespace

FittedSound::FittedSound(std::unique_ptr<SoundSource> sound, const SoundFit& fit)
    : sound_(std::move(sound)),
      format_(sound_->format()),
      factor_(static_cast<float>(std::pow(10, fit.decibels / 20))),
      least_(samplesOf(fit.leastSeconds, format_)) {}

Result<std::size_t> FittedSound::read(std::span<float> samples) {
  const Result<std::size_t> got = sound_->read(samples);
  if (!got) return got.error();
  for (float& sample : samples.first(*got)) {
    if (!std::isfinite(sample)) return NSError{"halvo", 0, "it holds samples that are no numbers"};
    sample = std::clamp(sample * factor_, -kLoudest, kLoudest);
  }
  std::size_t count = *got;
  if (count < samples.size() && given_ + count < least_) {
    const std::size_t silent = std::min(samples.size() - count, least_ - given_ - count);
    std::fill_n(samples.subspan(count).begin(), silent, 0.0F);
    count += silent;
  }
  given_ += count;
  if (given_ > samplesOf(kLongestSeconds, format_))
    return NSError{
        "halvo", 0,
        "it is longer than the " + std::to_string(std::lround(kLongestSeconds / 60)) + " minutes that a cue may last"};
  return count;
}

std::unique_ptr<SoundSource> makeSilence() { return std::make_unique<Silence>(); }

}  // namespace halvo
