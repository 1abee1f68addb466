#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "animation/halvo_view.h"
#include "c_interface/c_interface.h"
#include "controller/fake_collaborators.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/simulated_output.h"
#include "platform/corehaptics/haptic_engine.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "support/hardship/failing_memory.h"
#include "support/library_fixture.h"

namespace quellaro {
namespace {

using Answers = std::vector<int>;

// A host in C of real players, with a real view, on a clock of the test's own. Every allocation of what it does fails
// once, in a host that is new each time; then nothing fails any more, and it has to work again.
class Shortage : public LibraryFixture {
 protected:
  Shortage() {
    writeConfigs("true");
    writeBundleFile("animation.json", R"(["<svg width='8' height='8'><path d='M0 0L8 8' fill='#00ff00'/></svg>",
      "<svg width='8' height='8'><rect x='0' y='0' width='8' height='8' fill='#0000ff'/></svg>"])");
    writeBundleFile("audio.mp3", readFile(QUELLARO_TEST_DATA "/../avfoundation/sounds/mono_22050.mp3"));
    writeBundleFile("signature_forte.ahap",
                    R"({"Version": 1.0, "Pattern": [{"Event": {"Time": 0, "EventType": "HapticTransient"}}]})");
    AVAudioSession::sharedInstance().setOutput(std::make_shared<SimulatedOutput>(1.0F));
    CHHapticEngine::setActuator(std::make_shared<SimulatedActuator>());
    answers_.reserve(8);
    MainQueue::shared().setClock(&clock_);
  }
  ~Shortage() override {
    MainQueue::shared().setClock(nullptr);
    AVAudioSession::sharedInstance().setOutput(nullptr);
    CHHapticEngine::setActuator(nullptr);
  }

  void makeHost() {
    fakes_ = {};
    HalvoCollaborators parts = HalvoCollaborators::standard();
    parts.makeUpgradeController = [this] { return fakes_.upgrade; };
    parts.makeAnalyticsManager = [this] { return fakes_.analytics; };
    controller_ = std::make_unique<quellaro_halvo_controller>(
        quellaro_halvo_controller{QLHalvoController::make(std::move(parts)), {}});
    view_ = quellaro_halvo_view_create_with_frame({0, 0, 8, 8});
    const char* codes[] = {"1"};
    merchant_ = quellaro_halvo_merchant_create("Shop", "US", nullptr, codes, 1, nullptr);
  }
  void dropHost() {
    const std::weak_ptr<QLHalvoController> weak = controller_->controller;
    controller_.reset();
    quellaro_halvo_view_release(view_);
    quellaro_halvo_merchant_release(merchant_);
    pump();
    EXPECT_TRUE(weak.expired());
  }

  static void note(quellaro_halvo_status status, void* answers) {
    static_cast<Answers*>(answers)->push_back(static_cast<int>(status));
  }
  quellaro_halvo_result prepare(const char* cue = "quellaro") {
    return quellaro_halvo_controller_prepare(controller_.get(), quellaro_halvo_type_animation_and_sound, cue,
                                             quellaro_halvo_environment_primary, merchant_, true, note, &answers_);
  }
  quellaro_halvo_result play() { return quellaro_halvo_controller_play(controller_.get(), view_, note, &answers_); }
  // Everything that is due within the next seconds, as a host in C drains it.
  void pump() {
    for (int quiet = 0; quiet < 2;) {
      quiet = quellaro_halvo_loop_drain() ? 0 : quiet + 1;
      if (const auto deadline = MainQueue::shared().nextDeadline()) {
        clock_.set(std::max(*deadline, clock_.now()));
        quiet = 0;
      }
    }
  }

  // At least so many allocations there must have been to fail.
  void sweep(
      long least, const std::function<void()>& before, const std::function<quellaro_halvo_result()>& call,
      const std::function<void()>& after = [] {}) {
    for (long number = 0;; ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number));
      makeHost();
      before();
      pump();
      answers_.clear();
      FailingAllocation failing(number, FailingOn::everyThread);
      const quellaro_halvo_result result = call();
      pump();
      const bool hasFailed = failing.end();
      pump();
      EXPECT_EQ(answers_.size(), result == quellaro_halvo_result_ok ? 1U : 0U);
      EXPECT_FALSE(quellaro_halvo_controller_is_playing(controller_.get()));
      EXPECT_LE(fakes_.analytics->records.size(), 1U);
      EXPECT_TRUE(result == quellaro_halvo_result_ok || result == quellaro_halvo_result_out_of_memory);

      after();
      fakes_.upgrade->found = false;
      // Haptics that have failed in a play stay so until another cue is prepared.
      for (const char* cue : {"quellaro", "another"}) {
        answers_.clear();
        EXPECT_EQ(prepare(cue), quellaro_halvo_result_ok);
        pump();
        EXPECT_EQ(play(), quellaro_halvo_result_ok);
        pump();
        ASSERT_EQ(answers_.size(), 2U);
        if (answers_[1] != 910) break;
      }
      EXPECT_EQ(answers_[0], 800);
      EXPECT_TRUE(answers_[1] == 800 || answers_[1] == 801) << answers_[1];
      dropHost();
      if (HasFailure()) return;
      if (hasFailed) continue;
      EXPECT_GT(number, least);
      return;
    }
  }

  ManualClock clock_;
  Fakes fakes_;
  Answers answers_;
  std::unique_ptr<quellaro_halvo_controller> controller_;
  quellaro_halvo_view* view_ = nullptr;
  quellaro_halvo_merchant* merchant_ = nullptr;
};

TEST_F(Shortage, NoAllocationOfAPrepareIsOneTooMany) {
  sweep(
      100, [] {}, [this] { return prepare(); });
}

TEST_F(Shortage, NoAllocationOfAPlayIsOneTooMany) {
  sweep(
      30, [this] { prepare(); }, [this] { return play(); });
}

TEST_F(Shortage, NoAllocationOfAPlayThatPreparesAgainIsOneTooMany) {
  const auto upgraded = [this] {
    prepare();
    fakes_.upgrade->found = fakes_.upgrade->successful = true;
  };
  sweep(130, upgraded, [this] { return play(); });
}

TEST_F(Shortage, NoAllocationOfAPrepareThatFailsTwiceIsOneTooMany) {
  const std::string config = readFile(bundle() / "play_config.json");
  sweep(
      130, [this] { writeBundleFile("play_config.json", "{}"); }, [this] { return prepare(); },
      [&] { writeBundleFile("play_config.json", config); });
}

}  // namespace
}  // namespace quellaro
