#include "animation/frame_file.h"

#include <gtest/gtest.h>

#include "platform/foundation/console.h"
#include "platform/foundation/memory/limits.h"
#include "platform/quartzcore/shape_layer.h"

namespace quellaro {
namespace {

using Frames = std::vector<std::string>;

TEST(FrameFile, HoldsAnArrayOfStringsOrNoFrames) {
  const std::pair<const char*, Frames> cases[] = {
      {R"(["<svg/>", "b\"\u00e9\n"])", {"<svg/>", "b\"\u00e9\n"}},
      {"\xEF\xBB\xBF[\"\"]", {""}},
      {"[]", {}},
      {"17", {}},
      {"[99999999999999999999]", {}},
      {R"({"a": ["<svg/>"]})", {}},
      {R"(["<svg/>", 1])", {}},
      {R"([["<svg/>"]])", {}},
  };
  for (const auto& [json, expected] : cases) {
    const auto frames = decodeFrames(json);
    ASSERT_TRUE(frames) << json;
    EXPECT_EQ(Frames(frames->texts.begin(), frames->texts.end()), expected) << json;
  }
  for (const char* text : {"", "[", "[\"a\",]", "[\"\xff\"]", "[] x"}) EXPECT_FALSE(decodeFrames(text)) << text;
}

TEST(FrameFile, AFrameOutlivesTheOthersAndTheTexts) {
  std::shared_ptr<const SVGDocument> kept;
  {
    auto frames = decodeFrames(R"(["<svg/>", "<svg><path id='a' d='M1 2L3 4'/></svg>", "<svg>"])");
    ASSERT_TRUE(frames);
    const auto documents = parseFrames(std::move(*frames));
    ASSERT_TRUE(documents);
    ASSERT_EQ(documents->size(), 3U);
    kept = documents->at(1);
  }
  EXPECT_EQ(kept->elements()->at(0)->attr().find("d"), "M1 2L3 4");
  const auto layer = kept->makeLayer();
  kept.reset();
  const auto shape = std::static_pointer_cast<CAShapeLayer>(layer->sublayers()[0]);
  EXPECT_EQ(shape->path()->points()[1], (CGPoint{3, 4}));
}

// Two threads share the work of a large cue, and nobody can tell.
TEST(FrameFile, ALargeCueIsReadInOrder) {
  constexpr std::size_t kCount = 400;
  constexpr const char* kNoCommands[] = {"LLL", "qMq", "zzz", "HaH", "tTt"};
  std::string json = "[";
  std::string expected;
  for (std::size_t i = 0; i < kCount; ++i) {
    const std::string number = std::to_string(i);
    json += (i == 0 ? "\"" : ",\"") +
            std::string("<svg><path id='" + number + "' d='M0 0" + kNoCommands[i % 5] + "'/>") +
            std::string(i % 7 * 1000, ' ') + "</svg>\"";
    expected += std::string("Don't have any solutions for cmd ") + kNoCommands[i % 5] + ".\n";
  }
  std::string printed;
  setConsoleSink([&](std::string_view line) { printed += line; });
  const auto documents = parseFrames(std::move(*decodeFrames(json + "]")));
  setConsoleSink({});
  ASSERT_EQ(documents->size(), kCount);
  for (std::size_t i = 0; i < kCount; ++i)
    EXPECT_EQ(documents->at(i)->elements()->at(0)->attr().find("id"), std::to_string(i));
  EXPECT_EQ(printed, expected);
}

TEST(FrameFile, MoreFramesThanAnyCueHasAreAnError) {
  std::string json = "[\"\"";
  for (std::size_t i = 1; i < limits::kFrames; ++i) json += ",\"\"";
  EXPECT_TRUE(decodeFrames(json + "]"));
  EXPECT_FALSE(decodeFrames(json + ",\"\"]"));
}

// The budget is that of all frames together, and is met in the middle of one, too.
TEST(FrameFile, MoreThanAnyCueHoldsIsAnError) {
  const auto repeated = [](std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  };
  // A frame and its <svg> are an element each.
  const std::size_t half = limits::kCueElements / 2 - 2;
  const std::string groups = "<svg>" + repeated("<g/>", half) + "</svg>";
  const std::string nested = "<svg>" + repeated("<g>", half);
  const std::string path = "<svg><path d='M0 0" + repeated("h1", limits::kPathPoints - 1) + "'/></svg>";
  const std::size_t paths = limits::kCuePoints / limits::kPathPoints;
  const struct {
    std::vector<std::string> frames;
    bool fine;
  } cases[] = {
      {{groups, nested}, true},
      {{groups, nested, ""}, false},
      {{"<svg>" + repeated("<g>", limits::kCueElements)}, false},
      {{"<svg>" + repeated("<unknown/>", limits::kCueElements)}, false},
      {std::vector<std::string>(paths, path), true},
      {std::vector<std::string>(paths + 1, path), false},
      {{"<svg>" + repeated("<g a='' b='' c='' d='' e='' f='' g=''/>", limits::kCueAttributes / 7 + 1)}, false},
  };
  for (const auto& c : cases) {
    FrameTexts texts;
    texts.texts.assign(c.frames.begin(), c.frames.end());
    EXPECT_EQ(bool(parseFrames(texts)), c.fine) << c.frames.size();
  }
  EXPECT_FALSE(decodeFrames("[" + std::string(limits::kCueBytes, ' ') + "]"));
}

}  // namespace
}  // namespace quellaro
