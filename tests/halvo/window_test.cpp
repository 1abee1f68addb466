// The window of 'halvo play', used as a person at the desktop would.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

#include "halvo/display.h"

namespace quellaro {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kBlack = 0xFF000000;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

// A mark that fills the middle half of the animation's square, red and blue in turn, for longer than any test takes.
void writeCue(const std::filesystem::path& bundle) {
  std::string frames;
  std::string times;
  for (int i = 1; i <= 2000; ++i) {
    frames += std::string(i == 1 ? "[" : ",") +
              "\"<svg width='8' height='8'><rect x='2' y='2' width='4' height='4' fill='" +
              (i % 2 == 0 ? "#00f" : "#f00") + "'/></svg>\"";
    times += (i == 1 ? "\"Frame_" : ",\"Frame_") + std::to_string(i) + "\": 100";
  }
  std::filesystem::copy(QUELLARO_BUNDLE, bundle);
  writeFile(bundle / "animation.json", frames + "]");
  writeFile(bundle / "play_config.json",
            R"({"soundFileName": "audio.mp3", "soundDelayInMillis": 0, "animationDelayInMillis": 0,
                "viewBox": "0 0 8 8", "totalFrames": 2000, "frameTime": {)" +
                times + "}}");
}

class WindowOfTheTool : public testing::Test {
 protected:
  WindowOfTheTool() {
    writeCue(directory_ / "bundle");
    setenv("SDL_VIDEODRIVER", "x11", 1);
    setenv("SDL_RENDER_DRIVER", "software", 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the display's libraries keep memory until the end
  }

  void play(const std::string& background) {
    tool_ = ChildProcess(
        {QUELLARO_HALVO_TOOL, "play", "quellaro", "--type", "animationOnly", "--bundle", directory_ / "bundle",
         "--library", directory_ / "library", "--size", "200x160", "--background", background},
        directory_ / "said");
    window_ = display_.windowTitled("halvo: quellaro, play");
  }

  // Waits until the whole window has been seen with the mark in either colour, centred and as large as fits, and
  // nothing else in it.
  void expectToSee(int width, int height, std::uint32_t ground) const {
    const int side = std::min(width, height) / 2;
    std::set<std::uint32_t> seen;
    waitUntil("the mark is not seen at " + std::to_string(width) + "x" + std::to_string(height), [&] {
      for (const std::uint32_t mark : {kRed, kBlue}) {
        Bitmap expected(width, height);
        std::fill(expected.pixels.begin(), expected.pixels.end(), ground);
        for (int y = 0; y < side; ++y)
          std::fill_n(expected.row((height - side) / 2 + y) + (width - side) / 2, side, mark);
        if (display_.picture(window_) == expected) seen.insert(mark);
      }
      return seen.size() == 2;
    });
  }

  void expectItEndsUnanswered() {
    EXPECT_EQ(tool_.exitStatus(), 1);
    EXPECT_EQ(readFile(directory_ / "said").find("play:"), std::string::npos);
    EXPECT_EQ(readFile(directory_ / "said.log"), "halvo: the window was closed before there was an answer\n");
  }

  TemporaryDirectory directory_;
  Display display_;
  ChildProcess tool_;
  ::Window window_ = None;
};

TEST_F(WindowOfTheTool, ResizedWhileItPlaysTheMarkFillsItAndAKeyOrItsButtonClosesIt) {
  play("black");
  expectToSee(200, 160, kBlack);
  display_.pressEscape(window_);
  expectItEndsUnanswered();
  // On white a border of another colour would be seen.
  play("white");
  expectToSee(200, 160, kWhite);
  display_.resize(window_, 520, 400);
  expectToSee(520, 400, kWhite);
  display_.resize(window_, 120, 320);
  expectToSee(120, 320, kWhite);
  display_.askToClose(window_);
  expectItEndsUnanswered();
}

}  // namespace
}  // namespace quellaro
