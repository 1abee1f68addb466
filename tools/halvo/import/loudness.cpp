#include "import/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <memory>
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

Result<SoundLevels> measureSound(SoundSource& sound) {
  const SoundFormat format = sound.format();
  const Meter meter(ebur128_init(format.channels, format.rate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK));
  if (!meter) return NSError{"libebur128", 0, "its loudness cannot be measured"};
  std::vector<float> samples(kChunkFrames * format.channels);
  std::size_t frames = 0;
  while (true) {
    const Result<std::size_t> count = sound.read(samples);
    if (!count) return count.error();
    if (*count == 0) break;
    ebur128_add_frames_float(meter.get(), samples.data(), *count / format.channels);
    frames += *count / format.channels;
  }
  SoundLevels levels;
  levels.seconds = static_cast<double>(frames) / format.rate;
  std::fill(samples.begin(), samples.end(), 0.0F);
  const auto block = static_cast<std::size_t>(std::ceil(kBlockSeconds * format.rate)) + 1;
  for (std::size_t length = frames; length < block; length += kChunkFrames)
    ebur128_add_frames_float(meter.get(), samples.data(), std::min(kChunkFrames, block - length));
  double loudness = 0;
  if (ebur128_loudness_global(meter.get(), &loudness) == EBUR128_SUCCESS && std::isfinite(loudness))
    levels.loudness = loudness;
  levels.truePeak = decibelsOf(*meter, ebur128_true_peak);
  levels.samplePeak = decibelsOf(*meter, ebur128_sample_peak);
  return levels;
}

}  // namespace halvo
