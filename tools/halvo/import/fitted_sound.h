#pragma once

#include <cstddef>
#include <memory>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

struct SoundFit {
  double decibels = 0;      // how much louder
  double leastSeconds = 0;  // silence follows up to there
};

// A sound as it is to be encoded: louder or quieter, and continued with silence. Refuses what is no number, and what is
// too long for a cue.
class FittedSound final : public quellaro::SoundSource {
 public:
  FittedSound(std::unique_ptr<quellaro::SoundSource> sound, const SoundFit& fit);

  quellaro::SoundFormat format() const override { return format_; }
  quellaro::Result<std::size_t> read(std::span<float> samples) override;

 private:
  std::unique_ptr<quellaro::SoundSource> sound_;
  quellaro::SoundFormat format_;
  float factor_;
  std::size_t least_;
  std::size_t given_ = 0;
};

// No sound, to be continued.
std::unique_ptr<quellaro::SoundSource> makeSilence();

}  // namespace halvo
