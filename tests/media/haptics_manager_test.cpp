#include "media/haptics_manager.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "media/haptics_feedback_error.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "platform/foundation/console.h"
#include "support/failing_actuator.h"
#include "support/library_fixture.h"

namespace quellaro {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kClick =
    R"({"Version": 1.0, "Pattern": [{"Event": {"Time": 0, "EventType": "HapticTransient"}}]})";
const NSError kUnplugged{"test", 19, "unplugged"};

std::string textOf(const ComponentStatus& status) {
  if (status.is(ComponentStatus::Ready)) return "ready";
  if (status.is(ComponentStatus::Played)) return "played";
  return status.error() ? "error " + status.error()->localizedDescription : "another";
}

std::string textOf(HapticsFeedbackError error) { return "error " + errorOf(error).localizedDescription; }

class HapticsManagerTest : public LibraryFixture {
 protected:
  HapticsManagerTest() { makeWith(simulated_); }
  ~HapticsManagerTest() override { CHHapticEngine::setActuator(nullptr); }

  void makeWith(const std::shared_ptr<HapticActuator>& actuator) {
    CHHapticEngine::setActuator(actuator);
    manager_ = *HapticsManager::make();
  }

  // A step on a group that it is to leave once. What it does is written down in order: the status it sets, and what it
  // prints.
  template <class Step>
  void run(const Step& step) {
    setConsoleSink([this](std::string_view text) { events_.emplace_back("print " + std::string(text)); });
    group_ = std::make_shared<DispatchGroup>();
    group_->enter();
    group_->enter();
    group_->notify(MainQueue::shared(), [this] { events_.emplace_back("left"); });
    step([this](const ComponentStatus& status) { events_.push_back(textOf(status)); }, group_);
  }
  // What the step did so far; "left" when it has left the group, which it must not have done twice.
  Lines takeEvents() {
    driver_.settle();
    EXPECT_TRUE(events_.empty() || events_.back() != "left") << "left twice";
    group_->leave();
    driver_.settle();
    return std::exchange(events_, {});
  }
  Lines prepare() {
    run([this](const auto& setStatus, const auto& group) { manager_->prepare("quellaro", setStatus, group); });
    return takeEvents();
  }
  void startPlay() {
    run([this](const auto& setStatus, const auto& group) { manager_->play(setStatus, group); });
  }
  Lines play() {
    startPlay();
    driver_.advance(1);
    return takeEvents();
  }

  std::shared_ptr<SimulatedActuator> simulated_ = std::make_shared<SimulatedActuator>();
  std::shared_ptr<HapticsManagerProtocol> manager_;
  std::shared_ptr<DispatchGroup> group_;
  Lines events_;
};

TEST_F(HapticsManagerTest, EveryOutcomeOfConstruction) {
  EXPECT_EQ(takePrinted(), Lines{}) << "a manager was made";
  CHHapticEngine::setActuator(std::make_shared<SimulatedActuator>(false));
  const auto absent = HapticsManager::make();
  ASSERT_FALSE(absent);
  EXPECT_TRUE(isHapticsFeedbackError(absent.error(), HapticsFeedbackError::deviceDoesNotSupportHaptics));
  EXPECT_EQ(takePrinted(), Lines{"[QuellaroHalvoSDK] ERROR: Device does not support haptics feedback\n"});

  // Unplugged between the two questions.
  const auto vanishing = std::make_shared<FailingActuator>();
  vanishing->timesPresent = 1;
  CHHapticEngine::setActuator(vanishing);
  const auto gone = HapticsManager::make();
  ASSERT_FALSE(gone);
  EXPECT_FALSE(isHapticsFeedbackError(gone.error(), HapticsFeedbackError::deviceDoesNotSupportHaptics));
  EXPECT_EQ(takePrinted(), Lines{"[QuellaroHalvoSDK] ERROR: " + gone.error().localizedDescription + "\n"});
}

TEST_F(HapticsManagerTest, EveryOutcomeOfAPrepare) {
  const Lines invalid = {"print [QuellaroHalvoSDK] ERROR: Corrupted/Invalid AHAP file\n",
                         textOf(HapticsFeedbackError::invalidAHAPFile), "left"};
  EXPECT_EQ(prepare(), invalid) << "no file";
  const std::vector<std::pair<std::string, Lines>> rows = {
      {kClick, {"ready", "left"}},
      {"{", invalid},
      {"[]", invalid},
      {"{}", {"print At Pattern: the key is missing\n", textOf(HapticsFeedbackError::unknown), "left"}},
  };
  for (const auto& [content, events] : rows) {
    writeBundleFile("signature_forte.ahap", content);
    EXPECT_EQ(prepare(), events) << content;
  }
}

TEST_F(HapticsManagerTest, TwoPlaysAfterOnePrepareFeelTheSame) {
  writeBundleFile("signature_forte.ahap", kClick);
  prepare();
  // Plays come from memory.
  writeBundleFile("signature_forte.ahap", "{}");
  for (int plays = 0; plays < 2; ++plays) {
    startPlay();
    driver_.advance(0.029);
    EXPECT_EQ(events_, Lines{});
    driver_.advance(0.002);
    EXPECT_EQ(takeEvents(), (Lines{"played", "left"}));
    EXPECT_EQ(simulated_->felt().size(), 2U);
    EXPECT_EQ(simulated_->felt().back().sample, HapticSample{});
  }
}

TEST_F(HapticsManagerTest, EveryFailureOfAPlay) {
  writeBundleFile("signature_forte.ahap", kClick);
  const Lines unprepared = play();
  EXPECT_EQ(unprepared.size(), 3U) << "a status, a line, one leave";
  EXPECT_EQ(unprepared.back(), "left");

  const auto actuator = std::make_shared<FailingActuator>();
  makeWith(actuator);
  prepare();
  const Lines failedAtOnce = {"error unplugged", "print [QuellaroHalvoSDK] ERROR: unplugged\n", "left"};
  actuator->openError = kUnplugged;
  EXPECT_EQ(play(), failedAtOnce) << "the engine does not start";
  actuator->openError = std::nullopt;
  actuator->feelError = kUnplugged;
  EXPECT_EQ(play(), failedAtOnce) << "the player does not start";
  actuator->feelError = std::nullopt;
  startPlay();
  actuator->feelError = kUnplugged;
  driver_.advance(1);
  EXPECT_EQ(takeEvents(), (Lines{"error unplugged", "left"})) << "unplugged in the middle, says nothing";
  actuator->feelError = std::nullopt;
  EXPECT_EQ(play(), (Lines{"played", "left"})) << "plugged in again";
}

TEST_F(HapticsManagerTest, AManagerThatGoesInTheMiddleStillLeavesOnce) {
  writeBundleFile("signature_forte.ahap", kClick);
  prepare();
  startPlay();
  driver_.advance(0.01);
  manager_.reset();
  EXPECT_EQ(simulated_->felt().back().sample, HapticSample{});
  driver_.advance(1);
  EXPECT_EQ(takeEvents(), (Lines{textOf(HapticsFeedbackError::unknown), "left"}));
}

}  // namespace
}  // namespace quellaro
