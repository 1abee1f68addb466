#include "preview/sound_track.h"

#include <algorithm>
#include <utility>

#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/mp3_decoder.h"

namespace halvo {

using namespace quellaro;

namespace {

// Whoever goes on from within a sound waits until it is decoded up to there: not for longer than a moment.
constexpr double kLongestSkip = 60;
// Loops so short that more sounds than this overlap are no longer told apart.
constexpr std::size_t kMostSounding = 4;

bool skip(SoundSource& sound, double seconds) {
  const SoundFormat format = sound.format();
  auto left = static_cast<std::size_t>(seconds * format.rate) * format.channels;
  std::vector<float> samples(std::size_t{4096} * format.channels);
  while (left > 0) {
    const auto read = sound.read(std::span(samples).first(std::min(left, samples.size())));
    if (!read || *read == 0) return false;
    left -= *read;
  }
  return true;
}

}  // namespace

SoundTrack::SoundTrack(std::string file, double start, double duration)
    : file_(std::move(file)),
      start_(start),
      duration_(duration),
      output_(AVAudioSession::sharedInstance().output()->prepare()) {}

bool SoundTrack::follow(const Session& session) {
  forgetEnded();
  const bool hasJumped = std::exchange(jumps_, session.jumps()) != session.jumps();
  const bool isNewLoop = std::exchange(loops_, session.loops()) != session.loops();
  if (hasJumped || !session.isAudible()) sounding_.clear();
  if (hasJumped || isNewLoop || !session.isAudible()) hasBegun_ = false;
  const double offset = session.position() - start_;
  if (hasBegun_ || !session.isAudible() || offset < 0) return false;
  hasBegun_ = true;
  return offset < duration_ && offset <= kLongestSkip && begin(offset);
}

bool SoundTrack::begin(double offset) {
  auto decoder = Mp3Decoder::open(file_);
  if (!decoder || !skip(**decoder, offset)) return false;
  if (sounding_.size() == kMostSounding) sounding_.erase(sounding_.begin());
  const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
  auto playback = AVAudioSession::sharedInstance().output()->start(
      std::shared_ptr<SoundSource>(std::move(*decoder)), [hasEnded](const PlaybackEnd&) { *hasEnded = true; });
  if (playback) sounding_.push_back({std::move(*playback), hasEnded});
  return true;
}

void SoundTrack::forgetEnded() {
  std::erase_if(sounding_, [](const Sounding& sounding) { return sounding.hasEnded->load(); });
}

}  // namespace halvo
