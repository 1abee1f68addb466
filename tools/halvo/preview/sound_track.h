#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "platform/avfoundation/audio_output.h"
#include "preview/session.h"

namespace halvo {

// The sound of a loop: heard in time with the picture or not at all. Main thread only.
class SoundTrack {
 public:
  // Of a file that begins so many seconds into the loop and lasts so long.
  SoundTrack(std::string file, double start, double duration);

  // To be called whenever the session has gone on or been used. Whoever keeps the clock is told to let it rest while a
  // sound was got ready, so that the picture does not run ahead of it: then this gives true.
  bool follow(const Session& session);
  double start() const { return start_; }

 private:
  struct Sounding {
    std::unique_ptr<quellaro::Playback> playback;
    std::shared_ptr<std::atomic<bool>> hasEnded;
  };

  bool begin(double offset);
  void forgetEnded();

  std::string file_;
  double start_;
  double duration_;
  std::shared_ptr<void> output_;  // stays up
  // The one of this loop and, for as long as the output still plays what it was given, those of earlier ones.
  std::vector<Sounding> sounding_;
  bool hasBegun_ = false;
  std::uint64_t loops_ = 0;
  std::uint64_t jumps_ = 0;
};

}  // namespace halvo
