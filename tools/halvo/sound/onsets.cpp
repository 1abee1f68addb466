#include "sound/onsets.h"

#include <algorithm>
#include <cmath>

namespace halvo {

namespace {

constexpr double kStep = 0.005;  // seconds
// Of the steps before, the loudest of which is what a beginning has to rise above.
constexpr std::size_t kMemory = 6;
// In dB. What is quieter is not noticed, nor is a slower rise.
constexpr float kQuietest = -50;
constexpr float kSilence = -80;
constexpr float kRise = 6;
// Steps: one beginning is told once.
constexpr std::size_t kApart = 16;

}  // namespace

// Differences between samples, not samples: a beginning is bright, what goes on from before it mostly is not.
void OnsetListener::add(std::span<const float> samples) {
  last_.resize(format_.channels);
  for (std::size_t i = 0; i + format_.channels <= samples.size(); i += format_.channels) {
    for (unsigned channel = 0; channel < format_.channels; ++channel) {
      const float difference = samples[i + channel] - last_[channel];
      last_[channel] = samples[i + channel];
      squares_ += static_cast<double>(difference) * difference;
      ++count_;
    }
    if (static_cast<double>(++frames_) >= static_cast<double>(levels_.size() + 1) * kStep * format_.rate) finishStep();
  }
}

void OnsetListener::finishStep() {
  // Differences grow with the pitch and fall with the rate: so they are as large as a sine of 1000 Hz makes them.
  const double gain = format_.rate / (2 * 3.14159265358979 * 1000);
  const double level = 10 * std::log10(2 * squares_ / static_cast<double>(count_) * gain * gain + 1e-12);
  levels_.push_back(std::max(kSilence, static_cast<float>(level)));
  squares_ = 0;
  count_ = 0;
}

std::vector<double> OnsetListener::onsets() const {
  std::vector<double> moments;
  for (const Onset& onset : beginnings()) moments.push_back(onset.seconds);
  return moments;
}

std::vector<Onset> OnsetListener::beginnings() const {
  std::vector<Onset> found;
  std::size_t last = 0;
  for (std::size_t i = 0; i < levels_.size(); ++i) {
    float before = kSilence;
    for (std::size_t back = 1; back <= std::min(i, kMemory); ++back) before = std::max(before, levels_[i - back]);
    if (levels_[i] < kQuietest || levels_[i] < before + kRise) continue;
    if (found.empty() || i - last >= kApart) {
      const auto begin = levels_.begin() + static_cast<std::ptrdiff_t>(i);
      const auto end = begin + static_cast<std::ptrdiff_t>(std::min(kMemory, levels_.size() - i));
      const double peak = static_cast<double>(*std::max_element(begin, end));
      const double base = static_cast<double>(before);
      const double attack = (static_cast<double>(levels_[i]) - base) / (peak - base);
      found.push_back({static_cast<double>(i) * kStep, peak, attack});
    }
    last = i;
  }
  return found;
}

}  // namespace halvo
