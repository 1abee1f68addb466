#include "animation/frame_file.h"

#include <gtest/gtest.h>

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
    ASSERT_EQ(documents.size(), 3U);
    kept = documents[1];
  }
  EXPECT_EQ(kept->elements()->at(0)->attr().find("d"), "M1 2L3 4");
  const auto layer = kept->makeLayer();
  kept.reset();
  const auto shape = std::static_pointer_cast<CAShapeLayer>(layer->sublayers()[0]);
  EXPECT_EQ(shape->path()->points()[1], (CGPoint{3, 4}));
}

TEST(FrameFile, MoreFramesThanAnyCueHasAreAnError) {
  std::string json = "[\"\"";
  for (std::size_t i = 1; i < limits::kFrames; ++i) json += ",\"\"";
  EXPECT_TRUE(decodeFrames(json + "]"));
  EXPECT_FALSE(decodeFrames(json + ",\"\"]"));
}

}  // namespace
}  // namespace quellaro
