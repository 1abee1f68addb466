#pragma once

#include <memory>
#include <string>

#include "platform/avfoundation/sound_source.h"

namespace quellaro {

// Decodes an MPEG audio file while it is being played, so that memory stays the same whatever the file's length. What
// an encoder added at the beginning and end of a sound is left out again; tags are skipped; a damaged stretch of up to
// limits::kSoundResyncBytes is passed over; a file that breaks off plays up to there. The file stays open: replacing it
// under the same name changes nothing for the decoder.
class Mp3Decoder final : public SoundSource {
 public:
  // Only a regular file that begins with MPEG audio; the error names the path and what is wrong with it.
  static Result<std::unique_ptr<Mp3Decoder>> open(const std::string& path);
  ~Mp3Decoder() override;

  SoundFormat format() const override;
  Result<std::size_t> read(std::span<float> samples) override;
  // Back to the first sample; an error that ended the sound is forgotten.
  void rewind();
  // Seconds, as the file announces them; an estimate where it announces nothing.
  double duration() const;

 private:
  struct Private;
  explicit Mp3Decoder(std::unique_ptr<Private> content);
  std::unique_ptr<Private> private_;
};

}  // namespace quellaro
