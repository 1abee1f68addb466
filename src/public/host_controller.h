#pragma once

#include <QuellaroHalvo/host_merchant.h>
#include <QuellaroHalvo/host_types.h>
#include <QuellaroHalvo/host_view.h>
#include <QuellaroHalvo/quellaro_halvo.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace quellaro {

// Receives the answer of a prepare or a play; may be empty.
using HalvoCompletion = std::function<void(QLHalvoStatus)>;

// The one object a host drives: prepare a cue once, then play it as often as it is to be shown. Of prepares that
// overlap the last one counts; one that overtakes a play takes away what it plays. It may be dropped at any time, from
// inside a completion too: what is under way goes on and answers.
class QLHalvoController {
  struct Release {
    void operator()(quellaro_halvo_controller* controller) const { quellaro_halvo_controller_release(controller); }
  };

 public:
  // From now on directories, identifier and devices stay as they are. Null when memory is short.
  static std::shared_ptr<QLHalvoController> make() {
    quellaro_halvo_controller* const handle = quellaro_halvo_controller_create();
    if (handle == nullptr) return nullptr;
    return std::shared_ptr<QLHalvoController>(new QLHalvoController(handle));
  }
  QLHalvoController(const QLHalvoController&) = delete;
  QLHalvoController& operator=(const QLHalvoController&) = delete;

  // prepareWith:halvoCue:halvoEnvironment:merchant:isHapticsEnabled:completion:
  // Loads the cue's configuration and assets, then answers 800, 901, 902, 903 or 909, once, on the main queue; a cue
  // that is prepared already is answered with 800 inside this call, whatever the type and whether haptics are wanted.
  // Cue names that differ only in "_", "-", blanks and letter case name one cue. Afterwards looks for a newer version
  // of the cue, which a later play picks up. A name that is known nowhere answers 800 too: the built-in cue is played.
  quellaro_halvo_result prepare(QLHalvoType type, const std::string& halvoCue, QLHalvoEnvironment environment,
                                const std::shared_ptr<const QLHalvoMerchant>& merchant, bool isHapticsEnabled,
                                HalvoCompletion completion) {
    return accepted(std::move(completion), [&](quellaro_halvo_completion answer, void* context) {
      return quellaro_halvo_controller_prepare(handle_.get(), rawValueOf(type), halvoCue.c_str(),
                                               rawValueOf(environment), merchant ? merchant->handle() : nullptr,
                                               isHapticsEnabled, answer, context);
    });
  }

  // playWith:completion:
  // Plays the prepared cue, its animation in the view. Answers 904 or 908 inside this call; everything else, once, on
  // the main queue when the last part has ended. The next play may start when the completion has returned. Without a
  // view a cue that has an animation answers 907 or 905.
  quellaro_halvo_result play(const std::shared_ptr<QLHalvoView>& view, HalvoCompletion completion) {
    return accepted(std::move(completion), [&](quellaro_halvo_completion answer, void* context) {
      return quellaro_halvo_controller_play(handle_.get(), view ? view->handle() : nullptr, answer, context);
    });
  }

  // preparedHalvoCue, setPreparedHalvoCue: normalised name of the cue of the last successful prepare.
  std::optional<std::string> preparedHalvoCue() const {
    const char* const cue = quellaro_halvo_controller_prepared_halvo_cue(handle_.get());
    return cue != nullptr ? std::optional<std::string>(cue) : std::nullopt;
  }
  quellaro_halvo_result setPreparedHalvoCue(const std::optional<std::string>& cue) {
    return quellaro_halvo_controller_set_prepared_halvo_cue(handle_.get(), cue ? cue->c_str() : nullptr);
  }

  // What was wrong with the last prepare or play, with the file and the frame or the key in it; nothing when nothing
  // was. After a prepare that answered 800: with the downloaded assets, which have been discarded, or with the haptics.
  std::optional<std::string> failureReason() const {
    const char* const reason = quellaro_halvo_controller_failure_reason(handle_.get());
    return reason != nullptr ? std::optional<std::string>(reason) : std::nullopt;
  }
  // What became of the last sound that has ended; in the completion of a play, of that play's.
  QLHalvoSound lastSound() const {
    return static_cast<QLHalvoSound>(quellaro_halvo_controller_last_sound(handle_.get()));
  }
  // Seconds from a play of the prepared cue to its answer; infinite when the cue gives no time for its last frame, and
  // nothing when no cue is prepared.
  std::optional<double> duration() const {
    const double seconds = quellaro_halvo_controller_duration(handle_.get());
    return seconds < 0 ? std::nullopt : std::optional<double>(seconds);
  }
  // isPlaying, setIsPlaying: from the start of a play until its completion has returned.
  bool isPlaying() const { return quellaro_halvo_controller_is_playing(handle_.get()); }
  quellaro_halvo_result setIsPlaying(bool isPlaying) {
    return quellaro_halvo_controller_set_is_playing(handle_.get(), isPlaying);
  }

 private:
  explicit QLHalvoController(quellaro_halvo_controller* handle) : handle_(handle) {}

  static void deliver(quellaro_halvo_status status, void* context) {
    const std::unique_ptr<HalvoCompletion> completion(static_cast<HalvoCompletion*>(context));
    if (*completion) (*completion)(static_cast<QLHalvoStatus>(status));
  }
  // The completion belongs to the answer once the call is accepted, and to nobody when it is refused.
  template <class Call>
  static quellaro_halvo_result accepted(HalvoCompletion completion, const Call& call) {
    auto owned = std::make_unique<HalvoCompletion>(std::move(completion));
    HalvoCompletion* const context = owned.release();
    const quellaro_halvo_result result = call(&QLHalvoController::deliver, context);
    if (result != quellaro_halvo_result_ok) owned.reset(context);
    return result;
  }

  std::unique_ptr<quellaro_halvo_controller, Release> handle_;
};

}  // namespace quellaro
