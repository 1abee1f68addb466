// A cue with haptics, from the controller down to what is felt; sound and animation are fakes.
#include <gtest/gtest.h>

#include <vector>

#include "controller/fake_collaborators.h"
#include "controller/halvo_controller.h"
#include "media/haptics_manager.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "support/library_fixture.h"

namespace quellaro {
namespace {

class HapticsCue : public LibraryFixture {};

TEST_F(HapticsCue, ThePlayLastsAsLongAsThePatternAndOutlivesTheHostsReference) {
  writeConfigs("true");
  writeBundleFile("signature_forte.ahap",
                  R"({"Pattern": [{"Event": {"Time": 0, "EventType": "HapticContinuous", "EventDuration": 0.5}}]})");
  const auto actuator = std::make_shared<SimulatedActuator>();
  CHHapticEngine::setActuator(actuator);
  Fakes fakes;
  HalvoCollaborators collaborators = fakes.collaborators();
  collaborators.makeHapticsManager = HapticsManager::make;
  collaborators.supportsHaptics = HalvoCollaborators::standard().supportsHaptics;
  auto controller = QLHalvoController::make(std::move(collaborators));
  std::vector<QLHalvoStatus> codes;
  const auto note = [&codes](QLHalvoStatus code) { codes.push_back(code); };
  controller->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary,
                      QLHalvoMerchant::make("Shop", "US", {}, {"1"}, {}), true, note);
  driver_.settle();

  controller->play(nullptr, note);
  EXPECT_EQ(actuator->felt().size(), 1U) << "felt at once, the sound has its delay";
  const std::weak_ptr<QLHalvoController> weak = controller;
  controller.reset();
  driver_.advance(0.499);
  EXPECT_EQ(codes.size(), 1U) << "the sound has ended, the pattern has not";
  driver_.advance(0.002);
  EXPECT_EQ(codes, std::vector(2, QLHalvoStatus::success));
  EXPECT_TRUE(weak.expired());
  EXPECT_TRUE(fakes.analytics->records.at(0).haptics.isSupported);
  CHHapticEngine::setActuator(nullptr);
}

}  // namespace
}  // namespace quellaro
