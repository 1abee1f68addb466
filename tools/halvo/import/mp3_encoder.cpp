#include "import/mp3_encoder.h"

#include <lame/lame.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <memory>
#include <vector>

#include "platform/foundation/memory/limits.h"

namespace halvo {

namespace {

using namespace quellaro;

// Of the encoder's ten, from the best down: nobody tells this one from the original.
constexpr float kQuality = 2;
constexpr std::size_t kChunkFrames = 4096;
// As the encoder's manual has it for the worst case.
constexpr std::size_t kChunkBytes = kChunkFrames * 5 / 4 + 7200;

struct CloseEncoder {
  void operator()(lame_t encoder) const { lame_close(encoder); }
};
using Encoder = std::unique_ptr<lame_global_flags, CloseEncoder>;

void saysNothing(const char*, std::va_list) {}

// The one of MPEG audio's rates that loses nothing, or the highest of its family.
int rateFor(unsigned rate) {
  constexpr std::array<unsigned, 9> kRates = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
  for (const unsigned known : kRates)
    if (rate <= known) return static_cast<int>(known);
  return rate % 44100 == 0 ? 44100 : 48000;
}

Encoder makeEncoder(const SoundFormat& format) {
  Encoder encoder(lame_init());
  if (!encoder) return nullptr;
  lame_set_errorf(encoder.get(), saysNothing);
  lame_set_msgf(encoder.get(), saysNothing);
  lame_set_debugf(encoder.get(), saysNothing);
  lame_set_in_samplerate(encoder.get(), static_cast<int>(format.rate));
  lame_set_out_samplerate(encoder.get(), rateFor(format.rate));
  lame_set_num_channels(encoder.get(), static_cast<int>(format.channels));
  lame_set_mode(encoder.get(), format.channels == 1 ? MONO : JOINT_STEREO);
  lame_set_VBR(encoder.get(), vbr_mtrh);
  lame_set_VBR_quality(encoder.get(), kQuality);
  lame_set_bWriteVbrTag(encoder.get(), 1);
  return lame_init_params(encoder.get()) < 0 ? nullptr : std::move(encoder);
}

}  // namespace

Result<std::string> encodeMp3(SoundSource& sound) {
  const SoundFormat format = sound.format();
  const auto refuse = [](const char* why) { return NSError{"LAME", 0, why}; };
  const Encoder encoder = makeEncoder(format);
  if (!encoder) return refuse("the encoder cannot be set up for it");
  std::string file;
  std::vector<float> samples(kChunkFrames * format.channels);
  std::array<unsigned char, kChunkBytes> bytes;
  const auto keep = [&](int count) {
    if (count > 0) file.append(bytes.begin(), bytes.begin() + count);
    return count >= 0;
  };
  while (true) {
    const Result<std::size_t> count = sound.read(samples);
    if (!count) return count.error();
    if (*count == 0) break;
    const int frames = static_cast<int>(*count / format.channels);
    // The call for interleaved samples takes every second one, even of a single channel.
    const int made = format.channels == 1 ? lame_encode_buffer_ieee_float(encoder.get(), samples.data(), samples.data(),
                                                                          frames, bytes.data(), bytes.size())
                                          : lame_encode_buffer_interleaved_ieee_float(
                                                encoder.get(), samples.data(), frames, bytes.data(), bytes.size());
    if (!keep(made)) return refuse("it cannot be encoded");
    if (file.size() > limits::kSoundFileBytes)
      return refuse("as MP3 it is larger than the 16 MB that the player reads");
  }
  if (!keep(lame_encode_flush(encoder.get(), bytes.data(), bytes.size()))) return refuse("it cannot be encoded");
  // The encoder left a frame for it at the beginning.
  const std::size_t tag = lame_get_lametag_frame(encoder.get(), bytes.data(), bytes.size());
  if (tag > bytes.size() || tag > file.size()) return refuse("it cannot be encoded");
  std::copy_n(bytes.begin(), tag, file.begin());
  return file;
}

}  // namespace halvo
