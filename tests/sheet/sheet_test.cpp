#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temporary_directory.h"

namespace quellaro {
namespace {

constexpr std::uint32_t kRed = 0xff0000;
constexpr std::uint32_t kGreen = 0x00ff00;
constexpr std::uint32_t kBlue = 0x0000ff;
constexpr int kMargin = 28;

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;

  std::uint32_t at(int x, int y) const {
    const std::size_t offset =
        3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
    return std::uint32_t{bytes[offset]} << 16 | std::uint32_t{bytes[offset + 1]} << 8 | bytes[offset + 2];
  }
  int countInRow(int y, std::uint32_t colour) const {
    int count = 0;
    for (int x = 0; x < width; ++x) count += at(x, y) == colour ? 1 : 0;
    return count;
  }
  int count(std::uint32_t colour) const {
    int count = 0;
    for (int y = 0; y < height; ++y) count += countInRow(y, colour);
    return count;
  }
  // The first column, from the left, that has at least `least` pixels of the colour; -1 when none has.
  int firstColumn(std::uint32_t colour, int least) const {
    for (int x = 0; x < width; ++x) {
      int count = 0;
      for (int y = 0; y < height; ++y) count += at(x, y) == colour ? 1 : 0;
      if (count >= least) return x;
    }
    return -1;
  }
};

Picture readPicture(const std::filesystem::path& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  Picture picture;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return picture;
  image.format = PNG_FORMAT_RGB;
  picture.bytes.resize(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr) == 0) return {};
  picture.width = static_cast<int>(image.width);
  picture.height = static_cast<int>(image.height);
  return picture;
}

std::string squareOf(const std::string& colour) {
  return "<svg width='10' height='10'><rect x='0' y='0' width='10' height='10' fill='" + colour + "'/></svg>";
}

std::string jsonArray(const std::vector<std::string>& frames) {
  std::string json = "[";
  for (const std::string& frame : frames) json += (json.size() > 1 ? ",\"" : "\"") + frame + "\"";
  return json + "]";
}

std::string configWith(const std::string& frameTime, const std::string& soundDelay = "0", bool haptics = false) {
  return R"({"totalFrames":1,"soundFileName":"audio.mp3","soundDelayInMillis":)" + soundDelay +
         R"(,"animationDelayInMillis":0,"frameTime":)" + frameTime + R"(,"viewBox":"","isHapticsSupported":)" +
         (haptics ? "true}" : "false}");
}

class Sheet : public testing::Test {
 protected:
  struct Run {
    int status = -1;
    std::string errors;
    Picture picture;
  };

  Run run(const std::string& arguments) {
    std::filesystem::remove(output_);
    const std::string errors = directory_ / "errors";
    const int result = std::system(
        (std::string(QUELLARO_HALVO_TOOL) + " sheet " + arguments + " 2> '" + errors + "' > /dev/null").c_str());
    Run run;
    run.status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    run.errors = readFile(errors);
    if (std::filesystem::exists(output_)) run.picture = readPicture(output_);
    return run;
  }
  Run sheetOf(const std::filesystem::path& source, const std::string& more = "") {
    return run("'" + source.string() + "' -o '" + output_.string() + "' " + more);
  }
  std::filesystem::path cue(const std::vector<std::string>& frames, const std::string& config = "") {
    writeFile(directory_ / "cue/animation.json", jsonArray(frames));
    if (!config.empty()) writeFile(directory_ / "cue/play_config.json", config);
    return directory_ / "cue";
  }
  void addSound() {
    std::filesystem::copy_file(std::string(QUELLARO_BUNDLE) + "/audio.mp3", directory_ / "cue/audio.mp3");
  }

  TemporaryDirectory directory_;
  std::filesystem::path output_ = directory_ / "sheet.png";
};

// The row of the strip that shows what is seen when, on a sheet that has no lane below it.
int filmRow(const Picture& picture) { return picture.height - kMargin - 20; }

TEST_F(Sheet, showsEveryFrameInReadingOrderAndCutsOffWhatIsOutside) {
  const std::string spilling =
      "<svg width='10' height='10'><rect x='-99' y='-99' width='300' height='300' fill='#f00'/></svg>";
  const Run shown = sheetOf(cue({spilling, squareOf("#0f0"), squareOf("#00f")}));
  ASSERT_EQ(shown.status, 0) << shown.errors;
  const int red = shown.picture.firstColumn(kRed, 50);
  const int green = shown.picture.firstColumn(kGreen, 50);
  const int blue = shown.picture.firstColumn(kBlue, 50);
  EXPECT_EQ(red, kMargin);
  EXPECT_LT(red, green);
  EXPECT_LT(green, blue);
  EXPECT_EQ(shown.picture.count(kRed), shown.picture.count(kGreen));
  EXPECT_EQ(shown.picture.count(kRed), shown.picture.count(kBlue));
}

TEST_F(Sheet, staysWithinReasonFromOneFrameToThousands) {
  for (const int frames : {1, 2, 10, 90, 300, 601, 5000}) {
    const Run shown = sheetOf(cue(std::vector<std::string>(static_cast<std::size_t>(frames), squareOf("#f00"))));
    ASSERT_EQ(shown.status, 0) << frames;
    EXPECT_LE(shown.picture.width, 1600) << frames;
    EXPECT_LE(shown.picture.height, 5000) << frames;
    EXPECT_EQ(shown.errors.find("are many") != std::string::npos, frames > 600) << shown.errors;
    // Thumbnails are never smaller than can be looked at.
    const int drawn = frames <= 600 ? frames : (frames + (frames + 599) / 600 - 1) / ((frames + 599) / 600);
    EXPECT_GE(shown.picture.count(kRed), drawn * 84 * 84) << frames;
  }
}

TEST_F(Sheet, putsFramesOnTheTimeAxisAsTheyAreShown) {
  const std::vector<std::string> frames{squareOf("#f00"), squareOf("#0f0"), squareOf("#00f")};
  const Run whole = sheetOf(cue(frames, configWith(R"({"Frame_1":250,"Frame_2":500,"Frame_3":250})")));
  const auto share = [](const Picture& picture, std::uint32_t colour) {
    return picture.countInRow(filmRow(picture), colour) / (picture.width - 2.0 * kMargin);
  };
  EXPECT_NEAR(share(whole.picture, kRed), 0.25, 0.04);
  EXPECT_NEAR(share(whole.picture, kGreen), 0.50, 0.04);
  EXPECT_NEAR(share(whole.picture, kBlue), 0.25, 0.04);
  // Without its time the second frame stays, and nothing brings up the third.
  const Run gap = sheetOf(cue(frames, configWith(R"({"Frame_1":250,"Frame_3":250})")));
  EXPECT_NEAR(share(gap.picture, kRed), 0.5, 0.04);
  EXPECT_NEAR(share(gap.picture, kGreen), 0.5, 0.04);
  EXPECT_EQ(share(gap.picture, kBlue), 0);
}

TEST_F(Sheet, drawsTheSoundWhereItIsHeard) {
  constexpr std::uint32_t kWave = 0x5a6cf0;
  const std::string times = R"({"Frame_1":100})";
  const std::filesystem::path source = cue({squareOf("#f00")}, configWith(times));
  const Run silent = sheetOf(source);
  addSound();
  const Run early = sheetOf(source);
  const Run late = sheetOf(cue({squareOf("#f00")}, configWith(times, "2750")));
  EXPECT_GT(early.picture.height, silent.picture.height + 100);
  EXPECT_LT(early.picture.firstColumn(kWave, 6), kMargin + 60);
  EXPECT_NEAR(late.picture.firstColumn(kWave, 6), late.picture.width / 2.0, 40);
  EXPECT_EQ(early.errors, "");
  EXPECT_NE(silent.errors.find("audio.mp3"), std::string::npos) << silent.errors;
}

TEST_F(Sheet, drawsHapticsWhenTheCueHasThem) {
  const std::filesystem::path source = cue({squareOf("#f00")}, configWith(R"({"Frame_1":1000})", "0", true));
  const Run without = sheetOf(source);
  EXPECT_NE(without.errors.find("signature_forte.ahap"), std::string::npos) << without.errors;
  writeFile(source / "signature_forte.ahap",
            R"({"Version":1.0,"Pattern":[{"Event":{"Time":0.5,"EventType":"HapticContinuous",
    "EventDuration":0.25,"EventParameters":[{"ParameterID":"HapticIntensity","ParameterValue":1.0}]}}]})");
  const Run with = sheetOf(source);
  EXPECT_GT(with.picture.height, without.picture.height + 50);
  EXPECT_NEAR(
      with.picture.countInRow(with.picture.height - kMargin - 2, 0xe0559d) / (with.picture.width - 2.0 * kMargin), 0.25,
      0.02);
}

TEST_F(Sheet, crossesOutWhatCannotBeShown) {
  for (const char* frame : {"<svg width='0' height='10'><rect/></svg>", "no document", ""}) {
    const Run shown = sheetOf(cue({squareOf("#f00"), frame}));
    ASSERT_EQ(shown.status, 0) << frame;
    const int blank = sheetOf(cue({squareOf("#f00"), "<svg/>"})).picture.count(0);
    EXPECT_LT(shown.picture.count(0), blank) << frame;
    EXPECT_GT(shown.picture.count(0), blank * 9 / 10) << frame;
  }
}

TEST_F(Sheet, takesAnyConfigurationAndAnySound) {
  for (const char* times : {"{}", R"({"Frame_1":1e308,"Frame_2":1e308})", R"({"Frame_1":-5000,"Frame_2":1})",
                            R"({"Frame_1":1e-300})", R"({"Frame_1":1e15})"}) {
    const Run shown = sheetOf(cue({squareOf("#f00"), squareOf("#0f0")}, configWith(times, "-1e308")));
    EXPECT_EQ(shown.status, 0) << times;
    EXPECT_LE(shown.picture.width, 1600) << times;
  }
  const std::filesystem::path source = cue({squareOf("#f00")}, "[");
  writeFile(source / "audio.mp3", "this is no sound");
  const Run broken = sheetOf(source);
  EXPECT_EQ(broken.status, 0);
  EXPECT_NE(broken.errors.find("play_config.json"), std::string::npos) << broken.errors;
  EXPECT_NE(broken.errors.find("audio.mp3"), std::string::npos) << broken.errors;
}

TEST_F(Sheet, standsOnBlackOrWhite) {
  writeFile(directory_ / "one.svg",
            "<svg width='10' height='10'><rect x='0' y='0' width='5' height='10' fill='#f00'/></svg>");
  const Run black = sheetOf(directory_ / "one.svg");
  const Run white = sheetOf(directory_ / "one.svg", "--background white");
  EXPECT_GT(black.picture.count(0x000000), 40000);
  EXPECT_GT(white.picture.count(0xffffff), 40000);
  EXPECT_EQ(black.picture.count(kRed), white.picture.count(kRed));
}

TEST_F(Sheet, saysWhatIsWrongAndWritesNothing) {
  writeFile(directory_ / "none.json", "[]");
  writeFile(directory_ / "object.json", "{}");
  writeFile(directory_ / "half.json", "[\"<svg/>\"");
  std::filesystem::create_directory(directory_ / "empty");
  const std::string there = directory_.path().string() + "/";
  const std::string out = " -o '" + output_.string() + "'";
  const struct {
    std::string arguments;
    int status;
    std::string says;
  } cases[] = {
      {there + "none.json" + out, 1, "no frames"},
      {there + "object.json" + out, 1, "no frames"},
      {there + "half.json" + out, 1, "half.json: "},
      {there + "empty" + out, 1, "animation.json"},
      {there + "absent.svg" + out, 1, "absent.svg: "},
      {std::string(QUELLARO_BUNDLE) + " -o " + there + "absent/sheet.png", 1, "sheet.png: "},
      {there + "none.json", 2, "-o SHEET.png"},
      {out, 2, "SOURCE"},
      {there + "none.json" + out + " --background grey", 2, "black or white"},
      {there + "none.json more" + out, 2, "more"},
  };
  for (const auto& test : cases) {
    const Run refused = run(test.arguments);
    EXPECT_EQ(refused.status, test.status) << test.arguments;
    EXPECT_NE(refused.errors.find(test.says), std::string::npos) << test.arguments << "\n" << refused.errors;
    EXPECT_FALSE(std::filesystem::exists(output_)) << test.arguments;
  }
  EXPECT_EQ(run("--help").status, 0);
}

}  // namespace
}  // namespace quellaro
