// halvo sheet, as somebody at a terminal uses it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "drawing_commands/read_png.h"
#include "drawing_commands/run_tool.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using testing::HasSubstr;

constexpr std::uint32_t kBlack = 0xff000000;
constexpr std::uint32_t kWhite = 0xffffffff;
constexpr std::uint32_t kRed = 0xffff0000;
constexpr std::uint32_t kGreen = 0xff00ff00;
constexpr std::uint32_t kBlue = 0xff0000ff;
constexpr int kMargin = 28;

std::int64_t countOf(const Bitmap& picture, std::uint32_t colour) {
  return std::count(picture.pixels.begin(), picture.pixels.end(), colour);
}

// How much of a row between the margins has the colour; the row counted from the bottom margin.
double shareOf(const Bitmap& picture, int row, std::uint32_t colour) {
  const std::uint32_t* const start = picture.pixels.data() + (picture.height - kMargin - row) * picture.width;
  return static_cast<double>(std::count(start, start + picture.width, colour)) / (picture.width - 2 * kMargin);
}

// The first column, from the left, that has at least `least` pixels of the colour; -1 when none has.
int firstColumn(const Bitmap& picture, std::uint32_t colour, int least) {
  for (int x = 0; x < picture.width; ++x) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y) count += picture.row(y)[x] == colour ? 1 : 0;
    if (count >= least) return x;
  }
  return -1;
}

std::string squareOf(const std::string& colour) {
  return "<svg width='10' height='10'><rect x='0' y='0' width='10' height='10' fill='" + colour + "'/></svg>";
}

std::string configWith(const std::string& frameTime, const std::string& soundDelay = "0", bool haptics = false) {
  return R"({"totalFrames":1,"soundFileName":"audio.mp3","soundDelayInMillis":)" + soundDelay +
         R"(,"animationDelayInMillis":0,"frameTime":)" + frameTime + R"(,"viewBox":"","isHapticsSupported":)" +
         (haptics ? "true}" : "false}");
}

class Sheet : public testing::Test {
 protected:
  void writeCue(const std::vector<std::string>& frames, const std::string& config = "") const {
    std::string json;
    for (const std::string& frame : frames) json += (json.empty() ? "[\"" : ",\"") + frame + "\"";
    writeFile(cue_ / "animation.json", json + "]");
    if (!config.empty()) writeFile(cue_ / "play_config.json", config);
  }
  // What it says besides is in said_.
  Bitmap sheetOf(const std::string& source, const std::string& more = "") {
    const Ran ran = halvo("sheet " + source + " -o " + output_ + " " + more);
    EXPECT_EQ(ran.status, 0) << ran.output;
    said_ = ran.output;
    return readPng(output_);
  }
  Bitmap sheetOfCue(const std::vector<std::string>& frames, const std::string& config = "") {
    writeCue(frames, config);
    return sheetOf(cue_.string());
  }

  TemporaryDirectory directory_;
  std::filesystem::path cue_ = directory_ / "cue";
  std::string output_ = directory_ / "sheet.png";
  std::string said_;
};

TEST_F(Sheet, ShowsEveryFrameInReadingOrderAndCutsOffWhatIsOutside) {
  const std::string spilling =
      "<svg width='10' height='10'><rect x='-99' y='-99' width='300' height='300' fill='#f00'/></svg>";
  const Bitmap shown = sheetOfCue({spilling, squareOf("#0f0"), squareOf("#00f")});
  EXPECT_EQ(firstColumn(shown, kRed, 50), kMargin);
  EXPECT_LT(kMargin, firstColumn(shown, kGreen, 50));
  EXPECT_LT(firstColumn(shown, kGreen, 50), firstColumn(shown, kBlue, 50));
  EXPECT_EQ(countOf(shown, kRed), countOf(shown, kGreen));
}

TEST_F(Sheet, StaysWithinReasonFromOneFrameToThousands) {
  for (const auto& [frames, drawn] : {std::pair{1U, 1}, std::pair{90U, 90}, std::pair{601U, 301}}) {
    const Bitmap shown = sheetOfCue(std::vector<std::string>(frames, squareOf("#f00")));
    EXPECT_LE(shown.width, 1600) << frames;
    EXPECT_LE(shown.height, 5000) << frames;
    EXPECT_EQ(said_.find("are many") != std::string::npos, frames > 600) << said_;
    // Thumbnails are never smaller than can be looked at.
    EXPECT_GE(countOf(shown, kRed), drawn * 84 * 84) << frames;
  }
}

TEST_F(Sheet, PutsFramesOnTheTimeAxisAsTheyAreShown) {
  constexpr int kFilm = 20;
  const std::vector<std::string> frames{squareOf("#f00"), squareOf("#0f0"), squareOf("#00f")};
  const Bitmap whole = sheetOfCue(frames, configWith(R"({"Frame_1":250,"Frame_2":500,"Frame_3":250})"));
  EXPECT_NEAR(shareOf(whole, kFilm, kRed), 0.25, 0.04);
  EXPECT_NEAR(shareOf(whole, kFilm, kGreen), 0.50, 0.04);
  EXPECT_NEAR(shareOf(whole, kFilm, kBlue), 0.25, 0.04);
  // Without its time the second frame stays, and nothing brings up the third.
  const Bitmap gap = sheetOfCue(frames, configWith(R"({"Frame_1":250,"Frame_3":250})"));
  EXPECT_NEAR(shareOf(gap, kFilm, kRed), 0.5, 0.04);
  EXPECT_NEAR(shareOf(gap, kFilm, kGreen), 0.5, 0.04);
}

TEST_F(Sheet, DrawsTheSoundWhereItIsHeard) {
  constexpr std::uint32_t kWave = 0xff5a6cf0;
  const Bitmap silent = sheetOfCue({squareOf("#f00")}, configWith(R"({"Frame_1":100})"));
  EXPECT_THAT(said_, HasSubstr("audio.mp3"));
  std::filesystem::copy_file(QUELLARO_BUNDLE "/audio.mp3", cue_ / "audio.mp3");
  const Bitmap early = sheetOf(cue_.string());
  EXPECT_EQ(said_, "");
  const Bitmap late = sheetOfCue({squareOf("#f00")}, configWith(R"({"Frame_1":100})", "2750"));
  EXPECT_GT(early.height, silent.height + 100);
  EXPECT_LT(firstColumn(early, kWave, 6), kMargin + 60);
  EXPECT_NEAR(firstColumn(late, kWave, 6), late.width / 2.0, 40);
}

TEST_F(Sheet, DrawsHapticsWhenTheCueHasThem) {
  const Bitmap without = sheetOfCue({squareOf("#f00")}, configWith(R"({"Frame_1":1000})", "0", true));
  EXPECT_THAT(said_, HasSubstr("signature_forte.ahap"));
  writeFile(cue_ / "signature_forte.ahap",
            R"({"Version":1.0,"Pattern":[{"Event":{"Time":0.5,"EventType":"HapticContinuous",
    "EventDuration":0.25,"EventParameters":[{"ParameterID":"HapticIntensity","ParameterValue":1.0}]}}]})");
  const Bitmap with = sheetOf(cue_.string());
  EXPECT_GT(with.height, without.height + 50);
  EXPECT_NEAR(shareOf(with, 2, 0xffe0559d), 0.25, 0.02);
}

TEST_F(Sheet, CrossesOutWhatCannotBeShown) {
  const std::int64_t blank = countOf(sheetOfCue({squareOf("#f00"), "<svg/>"}), kBlack);
  for (const char* frame : {"<svg width='0' height='10'><rect/></svg>", "no document"}) {
    const std::int64_t crossed = countOf(sheetOfCue({squareOf("#f00"), frame}), kBlack);
    EXPECT_LT(crossed, blank) << frame;
    EXPECT_GT(crossed, blank * 9 / 10) << frame;
  }
}

TEST_F(Sheet, TakesAnyConfigurationAndAnySound) {
  for (const char* times : {"{}", R"({"Frame_1":1e308,"Frame_2":1e308})", R"({"Frame_1":-5000,"Frame_2":1})",
                            R"({"Frame_1":1e-300})", R"({"Frame_1":1e15})"})
    EXPECT_LE(sheetOfCue({squareOf("#f00"), squareOf("#0f0")}, configWith(times, "-1e308")).width, 1600) << times;
  writeFile(cue_ / "audio.mp3", "this is no sound");
  sheetOfCue({squareOf("#f00")}, "[");
  EXPECT_THAT(said_, HasSubstr("play_config.json"));
  EXPECT_THAT(said_, HasSubstr("audio.mp3"));
}

TEST_F(Sheet, StandsOnBlackOrWhite) {
  const std::string one = directory_ / "one.svg";
  writeFile(one, "<svg width='10' height='10'><rect x='0' y='0' width='5' height='10' fill='#f00'/></svg>");
  EXPECT_GT(countOf(sheetOf(one), kBlack), 40000);
  EXPECT_GT(countOf(sheetOf(one, "--background white"), kWhite), 40000);
}

TEST_F(Sheet, SaysWhatIsWrongAndWritesNothing) {
  const std::string there = directory_.path().string() + "/";
  writeFile(there + "none.json", "[]");
  writeFile(there + "half.json", "[\"<svg/>\"");
  std::filesystem::create_directory(there + "empty");
  const std::string out = " -o " + output_;
  const struct {
    std::string arguments;
    int status;
    std::string says;
  } cases[] = {
      {there + "none.json" + out, 1, "no frames"},
      {there + "half.json" + out, 1, "half.json: "},
      {there + "empty" + out, 1, "animation.json"},
      {QUELLARO_BUNDLE " -o " + there + "absent/sheet.png", 1, "sheet.png: "},
      {there + "none.json", 2, "-o SHEET.png"},
      {there + "none.json more" + out, 2, "more"},
  };
  for (const auto& test : cases) {
    const Ran refused = halvo("sheet " + test.arguments);
    EXPECT_EQ(refused.status, test.status) << test.arguments;
    EXPECT_THAT(refused.output, HasSubstr(test.says)) << test.arguments;
    EXPECT_FALSE(std::filesystem::exists(output_)) << test.arguments;
  }
}

}  // namespace
}  // namespace quellaro
