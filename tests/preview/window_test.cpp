// The window of 'halvo preview', used as an author would: with keys, the mouse, and files that are saved meanwhile.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "drawing_commands/run_tool.h"
#include "halvo/display.h"

namespace quellaro {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kBlack = 0xFF000000;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;
constexpr std::uint32_t kYellow = 0xFFFFFF00;

// The window, its stage, and the time line's ends, in pixels.
constexpr int kWidth = 200;
constexpr int kHeight = 254;
constexpr int kStage = 200;
constexpr int kLineLeft = 12;
constexpr int kLineRight = kWidth - 12;
constexpr int kSquare = 8;

// A mark in the middle of the frame.
std::string mark(const std::string& colour, const std::string& size = "80") {
  return "<svg xmlns='http://www.w3.org/2000/svg' width='" + size + "' height='" + size +
         "'><rect x='20' y='20' width='40' height='40' fill='" + colour + "'/></svg>";
}

std::string animation(const std::vector<std::string>& colours) {
  std::string json;
  for (const std::string& colour : colours) json += (json.empty() ? "[\"" : ",\"") + mark(colour) + "\"";
  return json + "]";
}

class Preview : public testing::Test {
 protected:
  Preview() {
    setenv("SDL_VIDEODRIVER", "x11", 1);
    setenv("SDL_RENDER_DRIVER", "software", 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the display's libraries keep memory until the end
  }

  // Frames that stay for longer than any test takes.
  void writeCue() const {
    writeFile(cue_ / "animation.json", animation({"#f00", "#0f0", "#00f"}));
    writeFile(cue_ / "play_config.json",
              R"({"soundFileName": "", "soundDelayInMillis": 0, "animationDelayInMillis": 0, "viewBox": "",
                  "totalFrames": 3, "frameTime": {"Frame_1": 1e5, "Frame_2": 1e5, "Frame_3": 1e5}})");
  }

  void open(const std::filesystem::path& source, int scale = 1) {
    const std::string size = std::to_string(kWidth * scale) + "x" + std::to_string(kHeight * scale);
    tool_ = ChildProcess({QUELLARO_HALVO_TOOL, "preview", source, "--size", size, "--scale", std::to_string(scale)},
                         directory_ / "said");
    window_ = display_.windowTitled("halvo: " + source.filename().string() + ", preview");
  }

  // The stage as it is to look: the mark over one colour, or over squares of two.
  static Bitmap stage(std::uint32_t mark, std::uint32_t even, std::uint32_t odd) {
    Bitmap expected(kWidth, kStage);
    for (int y = 0; y < kStage; ++y)
      for (int x = 0; x < kWidth; ++x) {
        const bool isMark = x >= 50 && x < 150 && y >= 50 && y < 150;
        expected.row(y)[x] = isMark ? mark : (x / kSquare + y / kSquare) % 2 == 0 ? even : odd;
      }
    return expected;
  }
  Bitmap seenStage() const {
    Bitmap seen = display_.picture(window_);
    if (seen.height != kHeight) return {};
    seen.pixels.resize(std::size_t{kWidth} * kStage);
    seen.height = kStage;
    return seen;
  }
  void expectStage(const std::string& what, std::uint32_t mark, std::uint32_t even = 0xFFB0B0B0,
                   std::uint32_t odd = 0xFF909090) const {
    waitUntil(what, [&] { return seenStage() == stage(mark, even, odd); });
  }
  std::int64_t countOf(std::uint32_t colour, int left = 0, int right = kWidth) const {
    const Bitmap seen = seenStage();
    std::int64_t count = 0;
    for (int y = 0; y < seen.height; ++y) count += std::count(seen.row(y) + left, seen.row(y) + right, colour);
    return count;
  }
  void expectCount(const std::string& what, std::int64_t expected, std::uint32_t colour, int left = 0,
                   int right = kWidth) const {
    waitUntil(what, [&] { return countOf(colour, left, right) == expected; });
  }
  void key(KeySym symbol, int times = 1) const { display_.press(window_, symbol, times); }
  // Where the time line stands for that share of the loop.
  void point(int type, double share) const {
    display_.point(window_, type, kLineLeft + static_cast<int>(share * (kLineRight - kLineLeft)), kHeight - 20);
  }

  TemporaryDirectory directory_;
  std::filesystem::path cue_ = directory_ / "cue";
  Display display_;
  ChildProcess tool_;
  ::Window window_ = None;
};

TEST_F(Preview, FollowsKeysAndMouseAndClosesWithItsButton) {
  writeCue();
  open(cue_ / "animation.json");
  expectStage("it plays", kRed);
  key(XK_Right);
  expectStage("a frame on", kGreen);
  key(XK_Right, 3);
  expectStage("held, and round the end", kGreen);
  key(XK_End);
  expectStage("the last frame", kBlue);
  key(XK_Left);
  expectStage("a frame back", kGreen);
  key(XK_b);
  expectStage("on black", kGreen, kBlack, kBlack);
  key(XK_b);
  expectStage("on white", kGreen, kWhite, kWhite);
  key(XK_b);
  key(XK_f);
  expectCount("a unit to a pixel", 40 * 40, kGreen);
  key(XK_f);
  expectStage("fitted again", kGreen);
  key(XK_o);
  // The neighbours lie wholly below the frame.
  expectStage("neighbours", kGreen);
  key(XK_o);

  point(MotionNotify, 0.1);
  point(ButtonPress, 0.1);
  expectStage("clicked", kRed);
  point(MotionNotify, 0.5);
  expectStage("dragged", kGreen);
  point(MotionNotify, 5);
  expectStage("dragged beyond its end", kBlue);
  point(ButtonRelease, 5);
  point(MotionNotify, 0.1);
  key(XK_h);
  waitUntil("the keys are told", [&] { return seenStage() != stage(kBlue, 0xFFB0B0B0, 0xFF909090); });
  key(XK_h);
  expectStage("let go, and the mouse moves on", kBlue);
  display_.askToClose(window_);
  EXPECT_EQ(tool_.exitStatus(), 0);
  EXPECT_EQ(readFile(directory_ / "said"), "0 frames shown in time, 0 dropped\n");
}

TEST_F(Preview, ShowsWhatIsSavedWhereOneWasAndKeepsTheLastGoodPicture) {
  writeCue();
  open(cue_ / "animation.json");
  key(XK_Right);
  expectStage("a frame on", kGreen);
  writeFile(cue_ / "animation.json", animation({"#f00", "#ff0", "#00f"}));
  const auto saved = std::chrono::steady_clock::now();
  expectStage("saved in place", kYellow);
  // A fifth of a second, and what a machine that is busy with other tests adds to it.
  EXPECT_LT(std::chrono::steady_clock::now() - saved, std::chrono::milliseconds(1000));
  RecordProperty("milliseconds",
                 std::to_string((std::chrono::steady_clock::now() - saved) / std::chrono::milliseconds(1)));
  writeFile(cue_ / "animation.json", "[\"");
  waitUntil("it is told what is wrong", [&] { return countOf(0xFFFFFFFF) > 0 && countOf(kYellow) > 5000; });
  writeFile(cue_ / "new", animation({"#f00", "#0f0"}));
  std::filesystem::rename(cue_ / "new", cue_ / "animation.json");
  expectStage("saved by renaming", kGreen);
  key(XK_Escape);
  EXPECT_EQ(tool_.exitStatus(), 0);
}

TEST_F(Preview, ShowsADrawingBesideItsFrameAndTellsWhatItCost) {
  const std::filesystem::path drawing = directory_ / "art/mark.svg";
  writeFile(drawing, mark("red"));
  open(drawing.parent_path());
  expectStage("imported", kRed);
  key(XK_s);
  const auto half = kWidth / 2;
  expectCount("the source", 50 * 50, kRed, 0, half);
  expectCount("the result", 50 * 50, kRed, half);
  key(XK_s);
  writeFile(drawing, mark("lime") + "<");
  waitUntil("it is told what is wrong", [&] { return countOf(kRed) < 10000 && countOf(kRed) > 5000; });
  writeFile(drawing, mark("lime"));
  expectStage("saved again", kGreen);
  key(XK_c);
  waitUntil("findings", [&] { return countOf(kWhite) > 0; });
  key(XK_c);
  expectStage("no findings", kGreen);
  writeFile(directory_ / "art/mark2.svg", mark("blue"));
  waitUntil("another drawing", [&] {
    key(XK_Right);
    return seenStage() == stage(kBlue, 0xFFB0B0B0, 0xFF909090);
  });
}

TEST_F(Preview, IsSharpOnADenseDisplay) {
  writeCue();
  open(cue_ / "animation.json", 2);
  const Bitmap expected = stage(kRed, 0xFFB0B0B0, 0xFF909090);
  waitUntil("everything twice as large, to the pixel", [&] {
    const Bitmap seen = display_.picture(window_);
    for (int y = 0; y < std::min(seen.height, 2 * kStage); ++y)
      for (int x = 0; x < seen.width; ++x)
        if (seen.row(y)[x] != expected.row(y / 2)[x / 2]) return false;
    return seen.height == 2 * kHeight;
  });
}

TEST_F(Preview, SaysWhyThereIsNothingToShow) {
  std::filesystem::create_directories(directory_ / "empty");
  std::filesystem::create_directories(directory_ / "pipes");
  ASSERT_EQ(mkfifo((directory_ / "pipes/a.svg").c_str(), 0600), 0);
  writeFile(directory_ / "bad.svg", "<svg");
  writeFile(directory_ / "bad.json", "{");
  writeFile(directory_ / "none.json", "{}");
  writeFile(directory_ / "fine.svg", mark("red"));
  const std::string here = directory_.path().string() + "/";
  const struct {
    std::string arguments;
    int status;
    const char* said;
  } rows[] = {
      {"", 2, "SOURCE"},
      {here + "missing", 1, "No such file"},
      {here + "empty", 1, "no .svg or .svgz file in this folder, and no animation.json"},
      {here + "bad.svg", 1, "bad.svg: "},
      {here + "bad.json", 1, "bad.json: "},
      {here + "none.json", 1, "there are no frames"},
      {here + "pipes", 1, "is no regular file"},
      {"/dev/zero", 1, "a file or a directory is needed"},
      {here + "fine.svg --fps 0", 2, "--fps"},
  };
  for (const auto& row : rows) {
    const Ran ran = halvo("preview " + row.arguments);
    EXPECT_EQ(ran.status, row.status) << row.arguments;
    EXPECT_NE(ran.output.find(row.said), std::string::npos) << row.arguments << ": " << ran.output;
  }
  const Ran ran = run("env -u DISPLAY -u WAYLAND_DISPLAY " QUELLARO_HALVO_TOOL " preview " + here + "fine.svg");
  EXPECT_EQ(ran.status, 1);
  EXPECT_NE(ran.output.find("there is no display to preview on"), std::string::npos) << ran.output;
}

}  // namespace
}  // namespace quellaro
