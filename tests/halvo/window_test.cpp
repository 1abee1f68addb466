// The window of 'halvo play', used as a person at the desktop would.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

#include "display.h"

namespace quellaro {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kBlack = 0xFF000000;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

// A mark that fills the middle half of the animation's square, red and blue in turn, for longer than any test takes.
void writeCue(const std::filesystem::path& bundle) {
  constexpr int kFrames = 2000;
  std::string frames;
  std::string times;
  for (int i = 1; i <= kFrames; ++i) {
    frames += std::string(frames.empty() ? "" : ", ") + "\"<svg width='8' height='8'><rect x='2' y='2' width='4' " +
              "height='4' fill='" + (i % 2 == 0 ? "#00f" : "#f00") + "'/></svg>\"";
    times += std::string(times.empty() ? "" : ", ") + "\"Frame_" + std::to_string(i) + "\": 100";
  }
  std::filesystem::copy(QUELLARO_BUNDLE, bundle);
  writeFile(bundle / "animation.json", "[" + frames + "]");
  writeFile(
      bundle / "play_config.json",
      R"({"soundFileName": "audio.mp3", "soundDelayInMillis": 0, "animationDelayInMillis": 0, "viewBox": "0 0 8 8",
                "totalFrames": )" +
          std::to_string(kFrames) + R"(, "frameTime": {)" + times + "}}");
}

// A view of that size that shows the mark: centred, and as large as fits.
Bitmap expected(int width, int height, std::uint32_t ground, std::uint32_t mark) {
  Bitmap picture(width, height);
  std::fill(picture.pixels.begin(), picture.pixels.end(), ground);
  const int side = std::min(width, height) / 2;
  for (int y = 0; y < side; ++y) std::fill_n(picture.row((height - side) / 2 + y) + (width - side) / 2, side, mark);
  return picture;
}

class WindowOfTheTool : public testing::Test {
 protected:
  void play(const std::string& background) {
    writeCue(directory_ / "bundle");
    setenv("SDL_VIDEODRIVER", "x11", 1);
    setenv("SDL_RENDER_DRIVER", "software", 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the display's libraries keep memory until the end
    tool_ = ChildProcess(
        {QUELLARO_HALVO_TOOL, "play", "quellaro", "--type", "animationOnly", "--bundle", directory_ / "bundle",
         "--library", directory_ / "library", "--size", "200x160", "--background", background},
        directory_ / "said");
    window_ = display_.windowTitled("halvo: quellaro, play");
  }

  // Waits until the whole window has been seen with the mark in either colour, and nothing else in it.
  void expectToSee(int width, int height, std::uint32_t ground) {
    const Bitmap red = expected(width, height, ground, kRed);
    const Bitmap blue = expected(width, height, ground, kBlue);
    std::set<std::uint32_t> seen;
    Bitmap last;
    try {
      waitUntil("it is never seen", [&] {
        last = display_.picture(window_);
        for (const Bitmap* picture : {&red, &blue})
          if (last.width == width && last.height == height && last.pixels == picture->pixels)
            seen.insert(picture->row(height / 2)[width / 2]);
        return seen.size() == 2;
      });
    } catch (const std::runtime_error&) {
      long wrong = 0;
      for (std::size_t i = 0; i < std::min(last.pixels.size(), red.pixels.size()); ++i)
        wrong += last.pixels[i] != red.pixels[i] && last.pixels[i] != blue.pixels[i] ? 1 : 0;
      ADD_FAILURE() << width << "x" << height << ": at last " << last.width << "x" << last.height << " with " << wrong
                    << " wrong pixels; seen in " << seen.size() << " of 2 colours";
    }
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

TEST_F(WindowOfTheTool, ResizedWhileItPlaysTheMarkFillsItAndEscapeClosesIt) {
  play("black");
  expectToSee(200, 160, kBlack);
  display_.resize(window_, 520, 400);
  expectToSee(520, 400, kBlack);
  display_.resize(window_, 120, 320);
  expectToSee(120, 320, kBlack);
  EXPECT_EQ(display_.title(window_), "halvo: quellaro, play");
  display_.pressEscape(window_);
  expectItEndsUnanswered();
}

TEST_F(WindowOfTheTool, OnWhiteItHasNoBorderOfAnotherColourAndItsButtonClosesIt) {
  play("white");
  expectToSee(200, 160, kWhite);
  display_.resize(window_, 400, 480);
  expectToSee(400, 480, kWhite);
  display_.askToClose(window_);
  expectItEndsUnanswered();
}

}  // namespace
}  // namespace quellaro
