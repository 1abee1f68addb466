// The haptic rows of 'halvo play', run as a person would.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "support/temporary_directory.h"

namespace quellaro {
namespace {

class HapticsOfTheTool : public testing::Test {
 protected:
  HapticsOfTheTool() {
    std::filesystem::copy(QUELLARO_BUNDLE, directory_ / "bundle");
    writeFile(directory_ / "bundle/play_config.json",
              R"({"totalFrames": 1, "soundFileName": "audio.mp3", "soundDelayInMillis": 0, "viewBox": "0 0 1 1",
                  "animationDelayInMillis": 0, "frameTime": {}, "isHapticsSupported": true})");
  }

  // Standard output, and the exit status behind it.
  std::string play(const std::string& options) {
    const std::string command = QUELLARO_HALVO_TOOL " play quellaro --type soundOnly --haptics --bundle " +
                                (directory_ / "bundle").string() + " --library " + (directory_ / "library").string() +
                                " " + options + " 2>/dev/null; echo exit $?";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> bytes{};
    while (const std::size_t count = fread(bytes.data(), 1, bytes.size(), pipe.get())) text.append(bytes.data(), count);
    return text;
  }

  TemporaryDirectory directory_;
};

TEST_F(HapticsOfTheTool, SimulatedDevicesAreChosenByName) {
  EXPECT_EQ(play("--headless"), "prepare: 800 success\nplay: 800 success\nexit 0\n");
  EXPECT_EQ(play("--headless --no-actuator"),
            "[QuellaroHalvoSDK] ERROR: Device does not support haptics feedback\n"
            "prepare: 800 success\nplay: 910 hapticsPlayFailed\nexit 1\n");
  EXPECT_EQ(play("--no-actuator"), "exit 2\n");
  EXPECT_EQ(play("--headless --volume 1.5"), "exit 2\n");
}

TEST_F(HapticsOfTheTool, APatternThatCannotBeUsedIsNamed) {
  const std::pair<const char*, const char*> rows[] = {
      {"[]", "[QuellaroHalvoSDK] ERROR: Corrupted/Invalid AHAP file\n"},
      {R"({"Pattern": [{"Event": {"Time": -1, "EventType": "HapticTransient"}}]})",
       "At Pattern[0].Event.Time: a number from 0 to 60 was expected, but this is -1\n"},
  };
  for (const auto& [pattern, line] : rows) {
    writeFile(directory_ / "bundle/signature_forte.ahap", pattern);
    EXPECT_EQ(play("--headless --times 0"), line + std::string("prepare: 800 success\nexit 0\n"));
  }
}

}  // namespace
}  // namespace quellaro
