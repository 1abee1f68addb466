// halvo frame and halvo bench, as somebody at a terminal uses them.
#include <gtest/gtest.h>

#include <algorithm>

#include "drawing_commands/read_png.h"
#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

constexpr std::uint32_t kBlack = 0xff000000;
constexpr std::uint32_t kWhite = 0xffffffff;
constexpr std::uint32_t kRed = 0xffff0000;

constexpr const char* kRedSquare =
    "<svg width='10' height='20'><rect x='0' y='0' width='10' height='10' fill='#f00'/></svg>";

class DrawingCommands : public testing::Test {
 protected:
  std::string file(const std::string& name, const std::string& content) {
    writeFile(directory_ / name, content);
    return (directory_ / name).string();
  }
  Bitmap frame(const std::string& arguments) {
    const std::string output = directory_ / "out.png";
    const Ran ran = halvo("frame -o " + output + " " + arguments);
    EXPECT_EQ(ran.status, 0) << ran.output;
    EXPECT_EQ(ran.output, "");
    return readPng(output);
  }

  TemporaryDirectory directory_;
};

TEST_F(DrawingCommands, FrameStretchesTheDocumentOverACentredSquare) {
  const Bitmap wide = frame(file("a.svg", kRedSquare) + " --size 30x20 --background white");
  ASSERT_EQ(wide.width, 30);
  ASSERT_EQ(wide.height, 20);
  for (int y = 0; y < 20; ++y)
    for (int x = 0; x < 30; ++x)
      ASSERT_EQ(wide.row(y)[x], x >= 5 && x < 25 && y < 10 ? kRed : kWhite) << x << ", " << y;
  const Bitmap tall = frame(file("a.SVG", kRedSquare) + " --size 20x40");
  // A pipe has no name that tells.
  EXPECT_EQ(frame("- < " + file("a.SVG", kRedSquare) + " --size 20x40").pixels, tall.pixels);
  EXPECT_EQ(tall.row(9)[0], kBlack);
  EXPECT_EQ(tall.row(10)[0], kRed);
  EXPECT_EQ(tall.row(20)[0], kBlack);
}

TEST_F(DrawingCommands, FrameChoosesByNumber) {
  const std::string json =
      file("animation.json", std::string("[\"<svg width='1' height='1'/>\",\"") + kRedSquare + "\"]");
  EXPECT_EQ(frame(json).row(0)[0], kBlack);
  EXPECT_EQ(frame(json + " --number 2").row(0)[0], kRed);
  EXPECT_EQ(frame(json + " --number 2").width, 480);
}

TEST_F(DrawingCommands, WhatCannotBeShownIsJustTheBackground) {
  for (const char* document :
       {"", "<g/>", "<svg width='0' height='10'><rect x='0' y='0' width='9' height='9' fill='#f00'/></svg>"}) {
    const std::string output = directory_ / "b.png";
    const Ran ran = halvo("frame " + file("b.svg", document) + " --size 3x2 --background white -o " + output);
    EXPECT_EQ(ran.status, 0);
    EXPECT_NE(ran.output.find("no size"), std::string::npos) << ran.output;
    EXPECT_EQ(readPng(output).pixels, std::vector<std::uint32_t>(6, kWhite)) << document;
  }
}

TEST_F(DrawingCommands, UnusableArgumentsAndFilesAreToldApart) {
  const std::string svg = file("a.svg", kRedSquare);
  const std::string output = " -o " + (directory_ / "out.png").string();
  const struct {
    std::string arguments;
    int status;
    const char* says;
  } cases[] = {
      {"frame", 2, "missing"},
      {"frame " + svg, 2, "-o"},
      {"frame " + svg + output + " --size 0x4", 2, "--size"},
      {"frame " + svg + output + " --background red", 2, "black or white"},
      {"frame " + svg + output + " --number 2", 2, "1 frame"},
      {"frame " + file("none.json", "[]") + output, 1, "no frames"},
      {"frame " + file("broken.json", "[") + output, 1, "JSON"},
      {"frame " + (directory_ / "absent.svg").string() + output, 1, "absent.svg"},
      {"frame " + svg + " -o " + (directory_ / "absent/out.png").string(), 1, "absent/out.png"},
      {"bench " + svg + " --repeat 0", 2, "--repeat"},
      {"bench " + directory_.path().string(), 1, "animation.json"},
      {"bench - < " + svg, 1, "pipe"},
      {"--version > /dev/full", 1, ""},
      {"layers - < " + directory_.path().string(), 1, "directory"},
      {"layers - " + svg + " < " + svg, 0, "bounds"},
      {"layers /dev/zero", 1, "File too large"},
      {"help", 0, "Commands:"},
      {"help frame", 0, "-o OUT.png"},
      {"help 'fra\033mes'", 2, "unknown command fra?mes"},
      {"frame 'no\033[31mne' -o x.png", 1, "no?[31mne: No such file"},
      {"frame -h", 0, "-o OUT.png"},
      {"--version", 0, "halvo 1."},
  };
  for (const auto& c : cases) {
    const Ran ran = halvo(c.arguments);
    EXPECT_EQ(ran.status, c.status) << c.arguments;
    EXPECT_NE(ran.output.find(c.says), std::string::npos) << c.arguments << ": " << ran.output;
  }
}

TEST_F(DrawingCommands, AFullDiskLeavesNoHalfPicture) {
  const std::string picture = directory_ / "cut.png";
  EXPECT_NE(run("(trap '' XFSZ; ulimit -f 0; " QUELLARO_HALVO_TOOL " frame " + file("red.svg", kRedSquare) + " -o " +
                picture + " 2>&1)")
                .status,
            0);
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(DrawingCommands, BenchPrintsOneLineOfJson) {
  const std::string content = std::string("[\"") + kRedSquare + "\",\"" + kRedSquare + "\"]";
  file("cue/animation.json", content);
  file("empty.json", "[]");
  for (const auto& [source, frames] :
       {std::pair{"cue", 2}, std::pair{"cue/animation.json", 2}, std::pair{"empty.json", 0}}) {
    const Ran ran = halvo("bench " + (directory_ / source).string() + " --size 40x40 --repeat 2");
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(std::count(ran.output.begin(), ran.output.end(), '\n'), 1) << ran.output;
    const auto document = JSONDocument::parse(ran.output);
    ASSERT_TRUE(document) << ran.output;
    const JSONValue root = document->root();
    std::vector<std::string> keys;
    for (const auto& [key, value] : root.members()) {
      keys.emplace_back(key);
      EXPECT_TRUE(value.number() && *value.number() >= 0) << key;
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"frames", "bytes", "decode_us", "parse_us", "layers_us", "draw_us",
                                              "peak_rss_kb"}));
    EXPECT_EQ(root.member("frames")->wholeNumber(), frames);
    EXPECT_EQ(root.member("bytes")->wholeNumber(), static_cast<std::int64_t>(frames == 0 ? 2 : content.size()));
    EXPECT_EQ(*root.member("draw_us")->number() > 0, frames > 0);
  }
}

}  // namespace
}  // namespace quellaro
