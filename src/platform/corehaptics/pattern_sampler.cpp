#include "platform/corehaptics/pattern_sampler.h"

#include <algorithm>
#include <cmath>

#include "platform/corehaptics/control_track.h"
#include "platform/foundation/memory/limits.h"

namespace quellaro {

namespace {

// Forgives what times lose as binary fractions.
constexpr double kSampleTolerance = 1e-6;

std::size_t samplesUntil(double seconds) {
  const double samples = std::ceil(seconds * HapticCurve::kSamplesPerSecond - kSampleTolerance);
  return static_cast<std::size_t>(std::clamp(samples, 0.0, limits::kHapticSeconds * HapticCurve::kSamplesPerSecond));
}

std::size_t nearestSample(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * HapticCurve::kSamplesPerSecond));
}

double levelWithin(const HapticEnvelope& envelope, double duration, double time) {
  if (time < envelope.attack) return time / envelope.attack;
  if (envelope.isSustained) return 1;
  const double fading = envelope.decay > 0 ? envelope.decay : duration - envelope.attack;
  return fading > 0 ? std::max(0.0, 1 - (time - envelope.attack) / fading) : 1;
}

// `time` counts from the beginning of the event.
double levelAt(const HapticEnvelope& envelope, double duration, double time) {
  if (time < duration || envelope.release <= 0) return levelWithin(envelope, duration, time);
  return levelWithin(envelope, duration, duration) * std::max(0.0, 1 - (time - duration) / envelope.release);
}

// What all events together bring to one sample.
struct Sum {
  double intensity = 0;
  double weightedSharpness = 0;
};

class Sampler {
 public:
  explicit Sampler(const HapticPatternContent& content)
      : content_(content),
        attack_(content.changes, HapticControl::AttackTime, 0),
        decay_(content.changes, HapticControl::DecayTime, 0),
        release_(content.changes, HapticControl::ReleaseTime, 0) {}

  HapticCurve run() {
    for (const HapticEvent& event : content_.events) add(event);
    const ControlTrack intensity(content_.changes, HapticControl::Intensity, 1);
    const ControlTrack sharpness(content_.changes, HapticControl::Sharpness, 0);
    HapticCurve curve;
    curve.samples.resize(sums_.size());
    for (std::size_t k = 0; k < sums_.size(); ++k) {
      const double time = HapticCurve::timeOf(k);
      HapticSample& sample = curve.samples[k];
      sample.intensity = std::clamp(sums_[k].intensity * intensity.valueAt(time), 0.0, 1.0);
      if (sample.intensity > 0)
        sample.sharpness =
            std::clamp(sums_[k].weightedSharpness / sums_[k].intensity + sharpness.valueAt(time), 0.0, 1.0);
    }
    return curve;
  }

 private:
  HapticEnvelope envelopeOf(const HapticEvent& event) const {
    HapticEnvelope envelope = event.envelope;
    envelope.attack = std::max(0.0, envelope.attack + attack_.valueAt(event.time));
    envelope.decay = std::max(0.0, envelope.decay + decay_.valueAt(event.time));
    envelope.release = std::max(0.0, envelope.release + release_.valueAt(event.time));
    return envelope;
  }

  void add(const HapticEvent& event) {
    const std::size_t longest = samplesUntil(limits::kHapticSeconds);
    const std::size_t first = std::min(nearestSample(event.time), longest - 1);
    const HapticEnvelope envelope = event.isFelt ? envelopeOf(event) : HapticEnvelope{};
    const std::size_t count = std::max<std::size_t>(1, samplesUntil(event.duration + envelope.release));
    const std::size_t end = std::min(first + count, longest);
    if (sums_.size() < end) sums_.resize(end);
    if (!event.isFelt) return;
    for (std::size_t k = first; k < end; ++k) {
      const double level = event.intensity * levelAt(envelope, event.duration, HapticCurve::timeOf(k - first));
      sums_[k].intensity += level;
      sums_[k].weightedSharpness += level * event.sharpness;
    }
  }

  const HapticPatternContent& content_;
  ControlTrack attack_;
  ControlTrack decay_;
  ControlTrack release_;
  std::vector<Sum> sums_;
};

}  // namespace

HapticCurve sampleHapticPattern(const HapticPatternContent& content) { return Sampler(content).run(); }

}  // namespace quellaro
