// What 'halvo play' shows, run as a person would.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

#include "support/temporary_directory.h"

namespace quellaro {
namespace {

class ViewOfTheTool : public testing::Test {
 protected:
  ViewOfTheTool() {
    std::filesystem::copy(QUELLARO_BUNDLE, directory_ / "bundle");
    writeFile(directory_ / "bundle/play_config.json",
              R"({"totalFrames": 3, "soundFileName": "audio.mp3", "soundDelayInMillis": 0, "viewBox": "0 0 1 1",
                  "animationDelayInMillis": 0, "frameTime": {"Frame_1": 0, "Frame_2": 50, "Frame_3": 50}})");
    writeFile(directory_ / "bundle/animation.json",
              R"(["<svg><rect x='0' y='0' width='90' height='90' fill='#f00'/></svg>", "<p/>", "<svg/>"])");
  }

  // What it says on both outputs, without the times of day, and the exit status behind it. The libraries that a display
  // comes with keep memory until the end of the process, which is no leak of the tool's.
  std::string play(const std::string& options, const std::string& prefix = "") {
    const std::string command =
        "ASAN_OPTIONS=detect_leaks=0 SDL_VIDEODRIVER=x11 SDL_RENDER_DRIVER=software XDG_CACHE_HOME=" +
        (directory_ / "cache").string() + " " + prefix +
        " " QUELLARO_HALVO_TOOL " play quellaro --type animationOnly --bundle " + (directory_ / "bundle").string() +
        " --library " + (directory_ / "library").string() + " " + options +
        " 2>&1 | sed 's/ at [0-9.]*$//'; echo exit ${PIPESTATUS[0]}";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(("bash -c '" + quoted(command) + "'").c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> bytes{};
    while (const std::size_t count = fread(bytes.data(), 1, bytes.size(), pipe.get())) text.append(bytes.data(), count);
    return text;
  }
  static std::string quoted(const std::string& text) {
    std::string result;
    for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result;
  }
  std::set<std::string> recorded() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_ / "record"))
      names.insert(entry.path().filename().string());
    return names;
  }

  TemporaryDirectory directory_;
  const std::string record_ = " --record " + (directory_ / "record").string();
};

constexpr const char* kPlayed =
    "prepare: 800 success\n===> 0.0 Animation started\n===> 0.1 Animation ended\nplay: 800 success\nexit 0\n";

TEST_F(ViewOfTheTool, EveryShownFrameIsRecordedInOrder) {
  EXPECT_EQ(play("--headless --size 30x20 --background white" + record_), kPlayed);
  EXPECT_EQ(recorded(), (std::set<std::string>{"frame_0001.png", "frame_0002.png", "frame_0003.png"}));
  const std::string first = readFile(directory_ / "record/frame_0001.png");
  // Width and height stand behind the signature and the first chunk's name.
  EXPECT_EQ(first.substr(16, 8), std::string("\0\0\0\x1e\0\0\0\x14", 8));
  EXPECT_NE(first, readFile(directory_ / "record/frame_0002.png"));
  EXPECT_EQ(readFile(directory_ / "record/frame_0003.png"), readFile(directory_ / "record/frame_0002.png"));
  play("--headless --times 2" + record_);
  EXPECT_EQ(recorded().size(), 6u);
}

TEST_F(ViewOfTheTool, UnusableArguments) {
  for (const char* options : {"--background red", "--size 0x5", "--size 5", "--record /dev/null/x", "--record ''"})
    EXPECT_NE(play(std::string("--headless ") + options).find("exit 2\n"), std::string::npos) << options;
}

TEST_F(ViewOfTheTool, WithoutAViewTheAnimationFails) {
  EXPECT_EQ(play("--headless --no-view"), "prepare: 800 success\nplay: 905 playFailed\nexit 1\n");
}

TEST_F(ViewOfTheTool, WithoutADisplayItSaysSoAndLeavesAContactSheet) {
  const std::string said = play("", "DISPLAY=:4711");
  EXPECT_NE(said.find("there is no display"), std::string::npos) << said;
  EXPECT_NE(said.find("play: 800 success\n"), std::string::npos) << said;
  const auto sheet = directory_ / "cache/halvo/last_play.png";
  EXPECT_NE(said.find("what was shown: " + sheet.string()), std::string::npos) << said;
  EXPECT_EQ(readFile(sheet).substr(1, 3), "PNG");
  EXPECT_NE(said.find("exit 0\n"), std::string::npos) << said;
}

TEST_F(ViewOfTheTool, PlaysInAWindow) {
  EXPECT_EQ(play(record_, "xvfb-run -a"), kPlayed);
  EXPECT_EQ(recorded().size(), 3u);
}

}  // namespace
}  // namespace quellaro
