// A cue with haptics, from the controller down to what is felt; sound and animation are fakes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "media/haptics_manager.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "public/fake_collaborators.h"
#include "public/halvo_controller.h"
#include "support/failing_actuator.h"
#include "support/library_fixture.h"

namespace quellaro {
namespace {

using Codes = std::vector<int>;
using Lines = std::vector<std::string>;

class HapticsCue : public LibraryFixture {
 protected:
  HapticsCue() { writeConfigs("true"); }
  ~HapticsCue() override { CHHapticEngine::setActuator(nullptr); }

  void make(const std::shared_ptr<HapticActuator>& actuator) {
    CHHapticEngine::setActuator(actuator);
    fakes_ = {};
    HalvoCollaborators collaborators = fakes_.collaborators();
    collaborators.makeHapticsManager = HapticsManager::make;
    collaborators.supportsHaptics = HalvoCollaborators::standard().supportsHaptics;
    controller_ = QLHalvoController::make(std::move(collaborators));
  }
  void prepare() {
    controller_->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary,
                         QLHalvoMerchant::make("Shop", "US", {}, {"1"}, {}), true, collect());
    driver_.settle();
  }
  HalvoCompletion collect() {
    return [this](QLHalvoStatus code) { codes_.push_back(static_cast<int>(code)); };
  }

  Fakes fakes_;
  Codes codes_;
  std::shared_ptr<QLHalvoController> controller_;
};

const std::string kTremble =
    R"({"Pattern": [{"Event": {"Time": 0, "EventType": "HapticContinuous", "EventDuration": 0.5}}]})";
const NSError kUnplugged{"test", 19, "unplugged"};

TEST_F(HapticsCue, EveryOutcomeForTheHost) {
  struct Row {
    const char* what;
    std::shared_ptr<HapticActuator> actuator;
    std::string pattern;
    Codes codes;
    Lines printed;
  };
  const auto broken = std::make_shared<FailingActuator>();
  broken->openError = kUnplugged;
  const auto shaky = std::make_shared<FailingActuator>();
  shaky->feelError = kUnplugged;
  const std::string prefix = "[QuellaroHalvoSDK] ERROR: ";
  const auto simulated = std::make_shared<SimulatedActuator>();
  const std::vector<Row> rows = {
      {"felt twice", simulated, kTremble, {800, 800, 800}, {}},
      {"no hardware",
       std::make_shared<SimulatedActuator>(false),
       kTremble,
       {800, 910, 910},
       {prefix + "Device does not support haptics feedback\n"}},
      {"no JSON", simulated, "x", {800, 910, 910}, {prefix + "Corrupted/Invalid AHAP file\n"}},
      {"no pattern", simulated, "{}", {800, 910, 910}, {"At Pattern: the key is missing\n"}},
      // A haptics status that is Error stays so until the next prepare.
      {"the engine does not start", broken, kTremble, {800, 910, 910}, {prefix + "unplugged\n"}},
      {"the player does not start", shaky, kTremble, {800, 910, 910}, {prefix + "unplugged\n"}},
  };
  for (const Row& row : rows) {
    writeBundleFile("signature_forte.ahap", row.pattern);
    make(row.actuator);
    prepare();
    for (int plays = 0; plays < 2; ++plays) {
      controller_->play(nullptr, collect());
      driver_.advance(2);
    }
    EXPECT_EQ(std::exchange(codes_, {}), row.codes) << row.what;
    EXPECT_EQ(takePrinted(), row.printed) << row.what;
    EXPECT_EQ(fakes_.analytics->records.size(), 2U) << row.what;
  }
}

TEST_F(HapticsCue, ThePlayLastsAsLongAsThePatternAndOutlivesTheHostsReference) {
  writeBundleFile("signature_forte.ahap", kTremble);
  const auto simulated = std::make_shared<SimulatedActuator>();
  make(simulated);
  prepare();
  codes_.clear();
  controller_->play(nullptr, collect());
  EXPECT_EQ(simulated->felt().size(), 1U) << "felt at once, the sound has its delay";
  const std::weak_ptr<QLHalvoController> weak = controller_;
  controller_.reset();
  driver_.advance(0.499);
  EXPECT_EQ(codes_, Codes{}) << "the sound has ended, the pattern has not";
  driver_.advance(0.002);
  EXPECT_EQ(codes_, Codes{800});
  EXPECT_TRUE(weak.expired());
}

TEST_F(HapticsCue, AControllerThatGoesWhileItPreparesIsNotWrittenTo) {
  writeBundleFile("signature_forte.ahap", kTremble);
  make(std::make_shared<SimulatedActuator>());
  controller_->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary,
                       QLHalvoMerchant::make("Shop", "US", {}, {"1"}, {}), true, collect());
  controller_.reset();
  driver_.advance(1);
  EXPECT_EQ(codes_, Codes{});
}

}  // namespace
}  // namespace quellaro
