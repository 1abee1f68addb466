#include "platform/corehaptics/evdev_actuator.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace quellaro {
namespace {

// Bit 80 is rumble; a word holds 32 or 64 bits.
const std::string kRumble = sizeof(long) == 8 ? "10000 0" : "10000 0 0";

// A machine with input devices, which writes down what is done to them.
class FakeInputDevices final : public InputDevices {
 public:
  std::map<std::string, std::string> forceFeedbackOf;
  std::map<std::string, int> openErrors;
  std::vector<std::string> calls;
  // Answers of every call on an open device from now on: 0, or a negative errno value.
  int answer = 0;

  std::vector<std::string> names() override {
    std::vector<std::string> names;
    for (const auto& [name, bits] : forceFeedbackOf) names.push_back(name);
    return names;
  }
  std::string forceFeedback(const std::string& name) override { return forceFeedbackOf.at(name); }
  int open(const std::string& path) override {
    calls.push_back("open " + path);
    const auto error = openErrors.find(path);
    return error == openErrors.end() ? 5 : -error->second;
  }
  int upload(int device, ff_effect& effect) override {
    if (answer == 0 && effect.id == -1) effect.id = 3;
    calls.push_back("upload " + std::to_string(device) + " id " + std::to_string(effect.id) + " type " +
                    std::to_string(effect.type) + " strong " + std::to_string(effect.u.rumble.strong_magnitude) +
                    " weak " + std::to_string(effect.u.rumble.weak_magnitude) + " ms " +
                    std::to_string(effect.replay.length));
    return answer;
  }
  int erase(int device, int effectId) override {
    calls.push_back("erase " + std::to_string(device) + " id " + std::to_string(effectId));
    return answer;
  }
  int write(int device, const input_event& event) override {
    EXPECT_EQ(event.type, EV_FF);
    calls.push_back("write " + std::to_string(device) + " id " + std::to_string(event.code) + " value " +
                    std::to_string(event.value));
    return answer;
  }
  void close(int device) override { calls.push_back("close " + std::to_string(device)); }
};

using Calls = std::vector<std::string>;

class EvdevActuatorTest : public testing::Test {
 protected:
  std::shared_ptr<FakeInputDevices> devices_ = std::make_shared<FakeInputDevices>();
  EvdevActuator actuator_{devices_};
};

TEST_F(EvdevActuatorTest, OnlyRumbleCounts) {
  const std::vector<std::pair<std::string, bool>> rows = {
      {"", false}, {"10000", false}, {"fffe0000 0", false}, {"no words", false}, {"7 " + kRumble, true}};
  for (const auto& [bits, isPresent] : rows) {
    devices_->forceFeedbackOf = {{"event0", "0"}, {"event1", bits}};
    EXPECT_EQ(actuator_.isPresent(), isPresent) << bits;
  }
  EXPECT_EQ(devices_->calls, Calls{}) << "looking must open nothing";
}

TEST_F(EvdevActuatorTest, EffectsFollowTheCurve) {
  devices_->forceFeedbackOf = {{"event0", "0"}, {"event1", kRumble}, {"event2", kRumble}};
  {
    auto session = actuator_.open();
    ASSERT_TRUE(session);
    const std::vector<std::pair<HapticSample, double>> felt = {
        {{0, 0}, 0.5}, {{1, 0}, 0.01}, {{0.5, 0.25}, 100}, {{0, 0}, 0.2}};
    for (const auto& [sample, seconds] : felt) EXPECT_FALSE((*session)->feel(sample, seconds));
  }
  EXPECT_EQ(devices_->calls, (Calls{
                                 "open /dev/input/event1",
                                 "upload 5 id 3 type 80 strong 65535 weak 0 ms 110",
                                 "write 5 id 3 value 1",
                                 "upload 5 id 3 type 80 strong 24576 weak 8192 ms 32767",
                                 "write 5 id 3 value 1",
                                 "write 5 id 3 value 0",
                                 "write 5 id 3 value 0",
                                 "erase 5 id 3",
                                 "close 5",
                             }));
}

TEST_F(EvdevActuatorTest, WhyADeviceCannotBeUsed) {
  EXPECT_EQ(actuator_.open().error().localizedDescription, "There is no haptic device");

  devices_->forceFeedbackOf = {{"event1", kRumble}, {"event2", kRumble}};
  devices_->openErrors = {{"/dev/input/event1", EACCES}, {"/dev/input/event2", EBUSY}};
  EXPECT_TRUE(actuator_.isPresent());
  EXPECT_EQ(
      actuator_.open().error(),
      (NSError{"NSPOSIXErrorDomain", EACCES, "The haptic device /dev/input/event1 cannot be used: Permission denied"}));

  devices_->openErrors.erase("/dev/input/event2");
  devices_->calls.clear();
  auto session = actuator_.open();
  ASSERT_TRUE(session) << "the second one may be used";
  EXPECT_FALSE((*session)->feel({1, 0}, 0.1));
  devices_->answer = -ENODEV;
  for (const HapticSample sample : {HapticSample{1, 1}, HapticSample{0, 0}})
    EXPECT_EQ((*session)->feel(sample, 0.1)->localizedDescription,
              "The haptic device /dev/input/event2 cannot be used: No such device");
  session = posixError(0);
  EXPECT_EQ(devices_->calls.back(), "close 5");
}

}  // namespace
}  // namespace quellaro
