#include "platform/corehaptics/haptic_engine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/corehaptics/haptic_pattern_player.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "support/failing_actuator.h"
#include "support/main_queue_driver.h"

namespace quellaro {
namespace {

std::shared_ptr<const CHHapticPattern> patternOf(std::vector<HapticSample> samples) {
  return std::make_shared<const CHHapticPattern>(HapticCurve{std::move(samples)});
}

class HapticEngine : public testing::Test {
 protected:
  HapticEngine() { use(simulated_); }
  ~HapticEngine() override { CHHapticEngine::setActuator(nullptr); }

  void use(const std::shared_ptr<HapticActuator>& actuator) {
    CHHapticEngine::setActuator(actuator);
    engine_ = *CHHapticEngine::initAndReturnError();
  }
  std::shared_ptr<CHHapticPatternPlayer> playerOf(std::shared_ptr<const CHHapticPattern> pattern) {
    return *engine_->createPlayerWithPattern(std::move(pattern));
  }
  void notify(CHHapticEngineFinishedAction action = CHHapticEngineFinishedAction::StopEngine) {
    engine_->notifyWhenPlayersFinished([this, action](const std::optional<NSError>& error) {
      ends_.push_back(std::to_string(driver_.now()) + (error ? " " + error->localizedDescription : ""));
      return action;
    });
  }

  MainQueueDriver driver_;
  std::shared_ptr<SimulatedActuator> simulated_ = std::make_shared<SimulatedActuator>();
  std::shared_ptr<CHHapticEngine> engine_;
  std::vector<std::string> ends_;
};

using Felt = std::vector<SimulatedActuator::Felt>;
using Ends = std::vector<std::string>;

TEST_F(HapticEngine, FeelsEachChangeAtItsTimeAndStopsAtTheEnd) {
  const auto player = playerOf(patternOf({{0.5, 0.1}, {0.5, 0.1}, {1, 1}, {0, 0}, {0, 0}, {0.2, 0}}));
  EXPECT_EQ(player->startAtTime(0)->localizedDescription, "The haptic engine is not running");
  EXPECT_FALSE(engine_->startAndReturnError());
  EXPECT_EQ(player->startAtTime(0.5)->localizedDescription, "A haptic pattern can only be started at once");
  notify();
  EXPECT_FALSE(player->startAtTime(0));
  driver_.advance(0.0599);
  EXPECT_EQ(ends_, Ends{});
  driver_.advance(10);
  EXPECT_EQ(ends_, Ends{"0.060000"});
  EXPECT_FALSE(engine_->isRunning());

  const Felt expected = {{0, {0.5, 0.1}}, {0.02, {1, 1}}, {0.03, {0, 0}}, {0.05, {0.2, 0}}, {0.06, {0, 0}}};
  ASSERT_EQ(simulated_->felt().size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(simulated_->felt()[i].time, expected[i].time, 1e-9) << i;
    EXPECT_EQ(simulated_->felt()[i].sample, expected[i].sample) << i;
  }
}

TEST_F(HapticEngine, TheHandlerHearsOfOneEndAndDecidesWhetherTheEngineRunsOn) {
  engine_->startAndReturnError();
  notify(CHHapticEngineFinishedAction::LeaveEngineRunning);
  const auto player = playerOf(patternOf({{1, 0}}));
  for (int plays = 0; plays < 2; ++plays) {
    EXPECT_FALSE(player->startAtTime(0));
    driver_.advance(1);
    EXPECT_TRUE(engine_->isRunning());
    EXPECT_EQ(simulated_->felt().back().sample, HapticSample{}) << "silent all the same";
    EXPECT_EQ(ends_, Ends{"0.010000"});
  }
  notify();
  EXPECT_FALSE(playerOf(patternOf({}))->startAtTime(0));
  EXPECT_EQ(ends_.size(), 1U) << "never inside the start, even when there is nothing to feel";
  driver_.settle();
  EXPECT_EQ(ends_.size(), 2U);
}

TEST_F(HapticEngine, ALateMainQueueLeavesOutWhatHasPassed) {
  engine_->startAndReturnError();
  EXPECT_FALSE(playerOf(patternOf({{0.1, 0}, {0.2, 0}, {0.3, 0}, {0.4, 0}, {0.5, 0}}))->startAtTime(0));
  driver_.jump(0.035);
  EXPECT_EQ(simulated_->felt(), (Felt{{0, {0.1, 0}}, {0.035, {0.4, 0}}}));
  EXPECT_NEAR(*MainQueue::shared().nextDeadline(), 0.04, 1e-9) << "back in step";
  engine_.reset();
  driver_.jump(1);
}

TEST_F(HapticEngine, AStartTakesThePlaceOfWhatIsPlaying) {
  engine_->startAndReturnError();
  notify();
  const auto player = playerOf(patternOf(std::vector<HapticSample>(10, {1, 0})));
  EXPECT_FALSE(player->startAtTime(0));
  driver_.advance(0.05);
  EXPECT_FALSE(player->startAtTime(0));
  driver_.advance(1);
  EXPECT_EQ(ends_, Ends{"0.150000"});
}

TEST_F(HapticEngine, ADeviceThatBreaksDownEndsThePatternOnce) {
  const NSError unplugged{"test", 19, "unplugged"};
  const auto actuator = std::make_shared<FailingActuator>();
  use(actuator);
  const auto player = playerOf(patternOf({{1, 0}, {0.5, 0}}));
  EXPECT_FALSE(engine_->startAndReturnError());
  notify(CHHapticEngineFinishedAction::LeaveEngineRunning);
  EXPECT_FALSE(player->startAtTime(0));
  actuator->feelError = unplugged;
  driver_.advance(1);
  EXPECT_EQ(ends_, Ends{"0.010000 unplugged"});
  EXPECT_FALSE(engine_->isRunning());

  EXPECT_FALSE(engine_->startAndReturnError());
  notify();
  EXPECT_EQ(player->startAtTime(0), unplugged);
  driver_.advance(1);
  EXPECT_EQ(ends_.size(), 1U) << "a start that fails has its error and no end";
  EXPECT_FALSE(engine_->isRunning());

  actuator->openError = unplugged;
  EXPECT_EQ(engine_->startAndReturnError(), unplugged);
}

TEST_F(HapticEngine, GoneInTheMiddleItFallsSilentAndCallsNobody) {
  engine_->startAndReturnError();
  notify();
  const auto player = playerOf(patternOf({{1, 0}, {0.5, 0}, {1, 0}}));
  EXPECT_FALSE(player->startAtTime(0));
  driver_.advance(0.015);
  engine_.reset();
  EXPECT_EQ(simulated_->felt().back(), (SimulatedActuator::Felt{0.015, {0, 0}}));
  driver_.advance(1);
  EXPECT_EQ(ends_, Ends{});
  EXPECT_EQ(player->startAtTime(0)->localizedDescription, "The haptic engine is gone");
}

}  // namespace
}  // namespace quellaro
