#include "sound/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kChunkFrames = 4096;
constexpr double kBlockSeconds = 0.4;

struct CloseMeter {
  void operator()(ebur128_state* meter) const { ebur128_destroy(&meter); }
};
using Meter = std::unique_ptr<ebur128_state, CloseMeter>;

double decibelsOf(ebur128_state& meter, int (*peakOf)(ebur128_state*, unsigned, double*)) {
  double highest = 0;
  for (unsigned channel = 0; channel < meter.channels; ++channel) {
    double peak = 0;
    if (peakOf(&meter, channel, &peak) == EBUR128_SUCCESS) highest = std::max(highest, peak);
  }
  return 20 * std::log10(highest);
}

}  // namespace

struct LoudnessMeter::State {
  SoundFormat format;
  Meter meter;
  std::size_t frames = 0;
};

bool canMeasureLoudness() { return true; }

Result<LoudnessMeter> LoudnessMeter::make(const SoundFormat& format, Mono mono) {
  Meter meter(ebur128_init(format.channels, format.rate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK));
  if (!meter) return NSError{"libebur128", 0, "its loudness cannot be measured"};
  if (format.channels == 1 && mono == Mono::Twice) ebur128_set_channel(meter.get(), 0, EBUR128_DUAL_MONO);
  return LoudnessMeter(std::make_unique<State>(State{format, std::move(meter), 0}));
}

LoudnessMeter::LoudnessMeter(std::unique_ptr<State> state) : state_(std::move(state)) {}
LoudnessMeter::LoudnessMeter(LoudnessMeter&&) noexcept = default;
LoudnessMeter& LoudnessMeter::operator=(LoudnessMeter&&) noexcept = default;
LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add(std::span<const float> samples) {
  const std::size_t frames = samples.size() / state_->format.channels;
  ebur128_add_frames_float(state_->meter.get(), samples.data(), frames);
  state_->frames += frames;
}

SoundLevels LoudnessMeter::levels() {
  const SoundFormat& format = state_->format;
  ebur128_state& meter = *state_->meter;
  SoundLevels levels;
  levels.seconds = static_cast<double>(state_->frames) / format.rate;
  const std::vector<float> silence(kChunkFrames * format.channels);
  const auto block = static_cast<std::size_t>(std::ceil(kBlockSeconds * format.rate)) + 1;
  for (std::size_t length = state_->frames; length < block; length += kChunkFrames)
    ebur128_add_frames_float(&meter, silence.data(), std::min(kChunkFrames, block - length));
  double loudness = 0;
  if (ebur128_loudness_global(&meter, &loudness) == EBUR128_SUCCESS && std::isfinite(loudness))
    levels.loudness = loudness;
  levels.truePeak = decibelsOf(meter, ebur128_true_peak);
  levels.samplePeak = decibelsOf(meter, ebur128_sample_peak);
  return levels;
}

Result<SoundLevels> measureSound(SoundSource& sound) {
  const SoundFormat format = sound.format();
  Result<LoudnessMeter> meter = LoudnessMeter::make(format, LoudnessMeter::Mono::Once);
  if (!meter) return meter.error();
  std::vector<float> samples(kChunkFrames * format.channels);
  while (true) {
    const Result<std::size_t> count = sound.read(samples);
    if (!count) return count.error();
    if (*count == 0) return meter->levels();
    meter->add(std::span(samples).first(*count));
  }
}

}  // namespace halvo
