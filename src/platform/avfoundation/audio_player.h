#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/error.h"

namespace quellaro {

class AVAudioPlayer;

// Told on the main queue how each play ended, by exactly one of the two; a host that never runs the main queue is told
// nothing.
class AVAudioPlayerDelegate {
 public:
  virtual ~AVAudioPlayerDelegate() = default;
  // Heard to its end, or (`successfully` false) broken off by the output.
  virtual void audioPlayerDidFinishPlaying(AVAudioPlayer& player, bool successfully) = 0;
  virtual void audioPlayerDecodeErrorDidOccur(AVAudioPlayer& player, const std::optional<NSError>& error) = 0;
};

// Plays one sound file on the audio session's output. Main thread. Destroying the player silences it without a report.
class AVAudioPlayer {
 public:
  // Opens an MPEG audio file; the error says what is wrong with it. The path is that of a file URL.
  static Result<std::unique_ptr<AVAudioPlayer>> initWithContentsOfURL(const std::string& path);
  ~AVAudioPlayer();
  AVAudioPlayer(const AVAudioPlayer&) = delete;
  AVAudioPlayer& operator=(const AVAudioPlayer&) = delete;

  // Brings up the output, so that play() starts without delay. Does not wait for it.
  bool prepareToPlay();
  // From the beginning, whatever was played before. While playing it changes nothing: there is one outcome. Gives
  // whether the sound has started; when it could not, the delegate is told of an unsuccessful end.
  bool play();
  // Silences the sound; its end is not reported.
  void stop();
  bool isPlaying() const;

  // Held weakly.
  void setDelegate(std::weak_ptr<AVAudioPlayerDelegate> delegate);
  // Seconds, as the file announces them.
  double duration() const;

 private:
  struct State;
  explicit AVAudioPlayer(std::shared_ptr<State> state);
  // Shared with the reports that are on their way, which hold it weakly.
  std::shared_ptr<State> state_;
};

}  // namespace quellaro
