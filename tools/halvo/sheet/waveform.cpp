#include "sheet/waveform.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/avfoundation/mp3_decoder.h"
#include "sound/onsets.h"

namespace halvo {

namespace {

using namespace quellaro;

// Gathers samples until a step is full.
class StepWriter {
 public:
  StepWriter(Waveform& waveform, SoundFormat format) : waveform_(waveform), format_(format) {}

  void add(std::span<const float> samples) {
    for (std::size_t i = 0; i + format_.channels <= samples.size(); i += format_.channels) {
      for (unsigned channel = 0; channel < format_.channels; ++channel) gather(samples[i + channel]);
      if (++frames_ >= static_cast<double>(waveform_.steps.size() + 1) * Waveform::kStep * format_.rate) finishStep();
    }
  }

  void finishStep() {
    if (count_ == 0) return;
    step_.loudness = static_cast<float>(std::sqrt(squares_ / count_));
    waveform_.steps.push_back(step_);
    step_ = {};
    squares_ = 0;
    count_ = 0;
  }

 private:
  void gather(float sample) {
    step_.low = std::min(step_.low, sample);
    step_.high = std::max(step_.high, sample);
    squares_ += static_cast<double>(sample) * sample;
    ++count_;
  }

  Waveform& waveform_;
  SoundFormat format_;
  Waveform::Step step_;
  double squares_ = 0;
  std::uint32_t count_ = 0;
  double frames_ = 0;  // since the beginning of the sound
};

}  // namespace

Waveform::Step Waveform::between(double start, double end) const {
  const auto index = [this](double seconds) {
    return static_cast<std::size_t>(std::clamp(seconds / kStep, 0.0, static_cast<double>(steps.size())));
  };
  Step together;
  if (steps.empty() || end <= 0 || start >= duration()) return together;
  const std::size_t first = std::min(index(start), steps.size() - 1);
  const std::size_t last = std::max(first + 1, index(end));
  double squares = 0;
  for (std::size_t i = first; i < last; ++i) {
    together.low = std::min(together.low, steps[i].low);
    together.high = std::max(together.high, steps[i].high);
    squares += static_cast<double>(steps[i].loudness) * steps[i].loudness;
  }
  together.loudness = static_cast<float>(std::sqrt(squares / static_cast<double>(last - first)));
  return together;
}

Result<Waveform> readWaveform(const std::string& path, double seconds) {
  auto decoder = Mp3Decoder::open(path);
  if (!decoder) return decoder.error();
  const SoundFormat format = (*decoder)->format();
  std::vector<float> samples(std::size_t{4096} * format.channels);
  Waveform waveform;
  StepWriter writer(waveform, format);
  OnsetListener listener(format);
  while (!waveform.isCut) {
    const auto read = (*decoder)->read(samples);
    if (!read && waveform.steps.empty()) return read.error();
    if (!read || *read == 0) break;
    writer.add(std::span(samples).first(*read));
    listener.add(std::span(samples).first(*read));
    waveform.isCut = waveform.duration() >= seconds;
  }
  writer.finishStep();
  waveform.onsets = listener.onsets();
  return waveform;
}

}  // namespace halvo
