#include "platform/avfoundation/audio_player.h"

#include <cstdint>
#include <utility>

#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

struct AVAudioPlayer::State : std::enable_shared_from_this<State> {
  AVAudioPlayer* player = nullptr;
  std::shared_ptr<Mp3Decoder> decoder;
  std::weak_ptr<AVAudioPlayerDelegate> delegate;
  // What keeps the output up.
  std::shared_ptr<void> readiness;
  std::unique_ptr<Playback> playback;
  bool isPlaying = false;
  // Tells a report of the current play from a late one of a play that was stopped.
  std::uint64_t playNumber = 0;

  // Everything that the report takes is made in advance: the end comes whatever is short then.
  PlaybackEndHandler endHandler() {
    const auto reported = std::make_shared<PlaybackEnd>();
    const auto report = std::make_shared<PreparedWork>();
    report->push_back([weak = weak_from_this(), number = playNumber, reported] {
      const std::shared_ptr<State> state = weak.lock();
      if (state && state->isPlaying && state->playNumber == number) state->finish(*reported);
    });
    return [reported, report](const PlaybackEnd& end) {
      reported->outcome = end.outcome;
      attempt([&] { reported->error = end.error; });
      MainQueue::shared().async(std::move(*report));
    };
  }

  void finish(const PlaybackEnd& end) {
    isPlaying = false;
    playback.reset();
    // Held while it is told: what it does then may release it, and this player with it.
    const std::shared_ptr<AVAudioPlayerDelegate> told = delegate.lock();
    if (!told) return;
    if (end.outcome == PlaybackEnd::Outcome::Undecodable)
      told->audioPlayerDecodeErrorDidOccur(*player, end.error);
    else
      told->audioPlayerDidFinishPlaying(*player, end.outcome == PlaybackEnd::Outcome::Heard);
  }
};

AVAudioPlayer::AVAudioPlayer(std::shared_ptr<State> state) : state_(std::move(state)) { state_->player = this; }

AVAudioPlayer::~AVAudioPlayer() { stop(); }

Result<std::unique_ptr<AVAudioPlayer>> AVAudioPlayer::initWithContentsOfURL(const std::string& path) {
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(path);
  if (!decoder) return decoder.error();
  auto state = std::make_shared<State>();
  state->decoder = std::move(*decoder);
  // Private constructor: make_unique cannot reach it.
  return std::unique_ptr<AVAudioPlayer>(new AVAudioPlayer(std::move(state)));
}

bool AVAudioPlayer::prepareToPlay() {
  state_->readiness = AVAudioSession::sharedInstance().output()->prepare();
  return true;
}

bool AVAudioPlayer::play() {
  State& state = *state_;
  if (state.isPlaying) return true;
  state.isPlaying = true;
  Undo stopAgain([&] { stop(); });
  ++state.playNumber;
  state.decoder->rewind();
  const PlaybackEndHandler onEnd = state.endHandler();
  const std::shared_ptr<AudioOutput> output = AVAudioSession::sharedInstance().output();
  Result<std::unique_ptr<Playback>> playback = output->start(state.decoder, onEnd);
  if (!playback) {
    stopAgain.keep();
    onEnd({PlaybackEnd::Outcome::OutputFailed, {}});
    return false;
  }
  state.playback = std::move(*playback);
  // The output may have had to come up anew.
  state.readiness = output->prepare();
  stopAgain.keep();
  return true;
}

void AVAudioPlayer::stop() {
  state_->isPlaying = false;
  state_->playback.reset();
}

bool AVAudioPlayer::isPlaying() const { return state_->isPlaying; }

void AVAudioPlayer::setDelegate(std::weak_ptr<AVAudioPlayerDelegate> delegate) {
  state_->delegate = std::move(delegate);
}

double AVAudioPlayer::duration() const { return state_->decoder->duration(); }

}  // namespace quellaro
