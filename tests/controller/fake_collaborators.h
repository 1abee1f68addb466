#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "controller/halvo_collaborators.h"
#include "media/haptics_feedback_error.h"

namespace quellaro {

// How a scripted part answers.
enum class Answer { Success, Failure, Never };

// A part that answers as it is told, and keeps count.
class FakePlayer : public QLHalvoSoundProtocol {
 public:
  Answer prepareAnswer = Answer::Success;
  Answer playAnswer = Answer::Success;
  bool firstPrepareFails = false;
  float volume = 1;
  int prepares = 0;
  std::vector<double> playTimes;
  bool playedWithView = false;
  std::string preparedName;

  void prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) override {
    preparedName = cueName;
    give(prepares++ == 0 && firstPrepareFails ? Answer::Failure : prepareAnswer, onSuccess, onFailure);
  }

  void play(const std::shared_ptr<QLHalvoView>& view, const std::shared_ptr<const QLHalvoSDKConfig>&,
            Callback onSuccess, Callback onFailure) override {
    playTimes.push_back(MainQueue::shared().clock().now());
    playedWithView = view != nullptr;
    give(playAnswer, onSuccess, onFailure);
  }

  float volumeLevel() const override { return volume; }

 private:
  // Keeps what it never answers, as a player would.
  void give(Answer answer, Callback& onSuccess, Callback& onFailure) {
    if (answer == Answer::Never)
      kept_ = {std::move(onSuccess), std::move(onFailure)};
    else
      (answer == Answer::Success ? onSuccess : onFailure)();
  }
  std::vector<Callback> kept_;
};

class FakeHaptics : public HapticsManagerProtocol {
 public:
  bool prepares = true;
  bool plays = true;

  void prepare(const std::string&, const HapticsStatusWriter& setStatus,
               const std::shared_ptr<DispatchGroup>& group) override {
    setStatus(prepares ? ComponentStatus::Ready : ComponentStatus::Error);
    group->leave();
  }
  void play(const HapticsStatusWriter& setStatus, const std::shared_ptr<DispatchGroup>& group) override {
    setStatus(plays ? ComponentStatus::Played : ComponentStatus::Error);
    group->leave();
  }
};

class FakeUpgrade : public UpgradeControlling {
 public:
  std::string cue;
  int checks = 0;
  int discards = 0;
  bool found = false;
  bool successful = false;

  void setPreparingHalvoCue(const std::string& cueName) override { cue = cueName; }
  void checkForUpgrade() override { ++checks; }
  void discardActiveCueAssets() override { ++discards; }
  bool didRemoteUpgradeFound() const override { return found; }
  bool didRemoteUpgradeSuccessful() const override { return successful; }
};

class FakeAnalytics : public AnalyticsManaging {
 public:
  struct Record {
    std::optional<std::string> cueName;
    std::optional<std::string> cueVersion;
    QLHalvoType type;
    std::int64_t animation;
    HapticsAnalytics haptics;
    std::int64_t sound;
    bool isMuted;
  };
  std::vector<Record> records;
  std::function<void()> onRecord;

  void recordPlay(const std::optional<std::string>& cueName, const std::optional<std::string>& cueVersion,
                  QLHalvoType type, std::int64_t animationOutcome, const HapticsAnalytics& haptics,
                  std::int64_t soundOutcome, bool isMuted) override {
    records.push_back({cueName, cueVersion, type, animationOutcome, haptics, soundOutcome, isMuted});
    if (onRecord) onRecord();
  }
};

// One of each, and the set that hands them to a controller.
struct Fakes {
  std::shared_ptr<FakePlayer> animation = std::make_shared<FakePlayer>();
  std::shared_ptr<FakePlayer> sound = std::make_shared<FakePlayer>();
  std::shared_ptr<FakeUpgrade> upgrade = std::make_shared<FakeUpgrade>();
  std::shared_ptr<FakeHaptics> haptics = std::make_shared<FakeHaptics>();
  std::shared_ptr<FakeAnalytics> analytics = std::make_shared<FakeAnalytics>();
  // Makes the haptics manager fail to be made.
  std::optional<NSError> hapticsError;
  bool supportsHaptics = true;

  HalvoCollaborators collaborators() {
    return {
        .makeAnimationController = [this] { return animation; },
        .makeAudioController = [this] { return sound; },
        .makeUpgradeController = [this] { return upgrade; },
        .makeHapticsManager = [this]() -> Result<std::shared_ptr<HapticsManagerProtocol>> {
          if (hapticsError) return *hapticsError;
          return std::static_pointer_cast<HapticsManagerProtocol>(haptics);
        },
        .supportsHaptics = [this] { return supportsHaptics; },
        .makeAnalyticsManager = [this] { return analytics; },
    };
  }
};

}  // namespace quellaro
