#include "animation/frame_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/foundation/limits.h"
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
    EXPECT_EQ(*frames, c.frames) << c.json;
  }
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
