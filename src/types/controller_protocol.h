#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/dispatch/function.h"
#include "types/halvo_enums.h"

namespace quellaro {

struct QLHalvoSDKConfig;
class QLHalvoView;

using Callback = Function<void()>;

// What the cue's controller asks of its animation player and its sound player. Exactly one of the two callbacks of each
// call is called, on any thread, unless the implementation says otherwise.
class QLHalvoControllerProtocol {
 public:
  virtual ~QLHalvoControllerProtocol() = default;

  // Loads the asset of the cue with this normalised name.
  virtual void prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) = 0;
  // Plays what was prepared; the callback comes when playing has ended or failed. Main thread. The sound player is
  // given no view.
  virtual void play(const std::shared_ptr<QLHalvoView>& view, const std::shared_ptr<const QLHalvoSDKConfig>& config,
                    Callback onSuccess, Callback onFailure) = 0;

  // After a failed prepare or play: why, with the file and the place in it.
  virtual std::string_view failureReason() const { return {}; }
  // Seconds that a play of what was prepared takes, from its own start; infinite when it never ends.
  virtual double duration(const QLHalvoSDKConfig& /*config*/) const { return 0; }
};

// The sound player also tells how loud the last sound was.
class QLHalvoSoundProtocol : public QLHalvoControllerProtocol {
 public:
  // The output volume, 0.0 to 1.0, measured when a sound ended or could not start; 0.0 before that.
  virtual float volumeLevel() const = 0;
  // What became of the last sound that has ended.
  virtual QLHalvoSound lastSound() const { return QLHalvoSound::none; }
};

}  // namespace quellaro
