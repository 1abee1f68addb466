#include "animation/frame_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/foundation/limits.h"
#include "platform/quartzcore/shape_layer.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using Frames = std::vector<std::string>;

TEST(FrameFile, HoldsAnArrayOfStringsOrNoFrames) {
  const struct {
    const char* json;
    Frames frames;
  } cases[] = {
      {R"(["<svg/>", "b\"\u00e9\n"])", {"<svg/>", "b\"\u00e9\n"}},
      {"\xEF\xBB\xBF[\"\"]", {""}},
      {"[]", {}},
      {"{}", {}},
      {"17", {}},
      {"null", {}},
      {R"({"a": ["<svg/>"]})", {}},
      {R"(["<svg/>", 1])", {}},
      {R"([["<svg/>"]])", {}},
  };
  for (const auto& c : cases) {
    const auto frames = decodeFrames(c.json);
    ASSERT_TRUE(frames) << c.json;
    EXPECT_EQ(Frames(frames->texts.begin(), frames->texts.end()), c.frames) << c.json;
  }
}

TEST(FrameFile, AFrameOutlivesTheOthersAndTheTexts) {
  std::shared_ptr<const SVGDocument> kept;
  {
    auto frames = decodeFrames(R"(["<svg/>", "<svg><path id='a' d='M1 2L3 4'/></svg>", "<svg>"])");
    ASSERT_TRUE(frames);
    const auto documents = parseFrames(std::move(*frames));
    ASSERT_EQ(documents.size(), 3U);
    kept = documents[1];
  }
  EXPECT_EQ(kept->elements()->at(0)->attr().find("d"), "M1 2L3 4");
  const auto layer = kept->makeLayer();
  kept.reset();
  const auto shape = std::static_pointer_cast<CAShapeLayer>(layer->sublayers()[0]);
  EXPECT_EQ(shape->path()->points()[1], (CGPoint{3, 4}));
}

TEST(FrameFile, WhatIsNotJsonIsAnError) {
  for (const char* text : {"", "[", "[\"a\"", "[\"a\",]", "<svg/>", "[\"\xff\"]", "[] x"})
    EXPECT_FALSE(decodeFrames(text)) << text;
  TemporaryDirectory directory;
  EXPECT_FALSE(readFrameFile(directory.path() / "absent.json"));
  EXPECT_FALSE(readFrameFile(directory.path()));
}

TEST(FrameFile, MoreFramesThanAnyCueHasAreAnError) {
  std::string json = "[\"\"";
  for (std::size_t i = 1; i < limits::kFrames; ++i) json += ",\"\"";
  EXPECT_TRUE(decodeFrames(json + "]"));
  EXPECT_FALSE(decodeFrames(json + ",\"\"]"));
}

}  // namespace
}  // namespace quellaro
