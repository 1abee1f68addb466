#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

// Writes raw pictures and samples with their times as a Matroska stream, which needs no seeking: what a film program
// can be fed with through a pipe. Times in seconds; those of each track ascend.
class MatroskaWriter {
 public:
  // Takes bytes; false once nobody takes them any more, after which nothing is written.
  using Sink = std::function<bool(std::string_view)>;

  // `usualDuration`: of a picture, for those who do not listen to each one's own.
  MatroskaWriter(int width, int height, double usualDuration, const std::optional<quellaro::SoundFormat>& sound,
                 Sink sink);

  // Red, green, blue and alpha, not multiplied, in rows from the top.
  void picture(double start, double duration, std::span<const std::uint8_t> pixels);
  void samples(double start, std::span<const float> samples);
  bool isTaken() const { return isTaken_; }

 private:
  void block(unsigned track, double start, std::optional<double> duration, std::string_view bytes);

  Sink sink_;
  bool isTaken_ = true;
};

}  // namespace halvo
