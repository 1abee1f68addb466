#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "publish/store_fixture.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

using Publish = StoreTest;

TEST_F(Publish, WritesUnderAFreshPathAndListsItThere) {
  const Ran first = publish("2");
  EXPECT_EQ(first.status, 0);
  // The mark is a key that the player does not know, and nearly all the frames of the configuration are missing.
  EXPECT_THAT(first.output, StartsWith("published version 2 of quellaro for library version 2.0.0 at quellaro/2\n"
                                       "halvo: 4 warnings: 'halvo check " +
                                       cue().string() + "' tells\n"));
  EXPECT_THAT(first.output, MatchesRegex("(.|\n)*\n  rsync -rlt --exclude=/version_config.json (.|\n)*\n"
                                         "  rsync -t .*/version_config.json' SERVER:DIRECTORY/\n"));
  EXPECT_EQ(listed("2.0.0"), "2 quellaro/2");
  for (const char* name : kCueFiles) EXPECT_EQ(readFile(store() / "quellaro/2" / name), readFile(cue() / name));

  // No file that devices may be fetching is ever written over, and what is there is not copied.
  writeCue("two");
  EXPECT_EQ(publish("3").status, 0);
  EXPECT_THAT(publish("2").output, HasSubstr("with other content"));
  EXPECT_EQ(listed("2.0.0"), "3 quellaro/3");
  writeCue("one");
  EXPECT_THAT(publish("2").output, HasSubstr("at quellaro/2, which is there already"));
  EXPECT_EQ(listed("2.0.0"), "2 quellaro/2");
  EXPECT_THAT(readFile(store() / "quellaro/2/play_config.json"), HasSubstr("one"));
  EXPECT_EQ(publish("../a b/\u00e9").status, 0);
  EXPECT_EQ(listed("2.0.0"), "../a b/\u00e9 quellaro/_._a_b___");
  EXPECT_EQ(publish(".. a_b/\u00e9").status, 0);
  EXPECT_EQ(listed("2.0.0"), ".. a_b/\u00e9 quellaro/_._a_b___-2");
  // Something that is listed and gone is mended.
  fs::remove_all(store() / "quellaro/_._a_b___-2");
  EXPECT_EQ(publish(".. a_b/\u00e9").status, 0);
}

TEST_F(Publish, WhatElseIsListedStays) {
  writeFile(
      store() / "version_config.json",
      R"([{"note": "kept", "sdk_versions": ["1.0.0", "2.0.0"], "cues": {"other": {"version": "8", "filepath": "o/8"}},
                 "analytics": {"enable": true, "frequency": "M", "url": "u"}},
                {"sdk_versions": ["2.0.0", "2.1.0"], "cues": {}, "analytics": {"enable": false, "frequency": "Q", "url": ""}}])");
  EXPECT_EQ(publish("2", "--sdk-version 2.0.0 --sdk-version 3.0.0").status, 0);
  EXPECT_EQ(listed("2.0.0"), "2 quellaro/2");
  EXPECT_EQ(listed("3.0.0"), "2 quellaro/2");
  EXPECT_EQ(listed("1.0.0") + listed("2.1.0"), "");
  EXPECT_EQ(listed("1.0.0", "other") + listed("2.0.0", "other"), "8 o/88 o/8");
  const auto entries = decodeVersionConfigs(readFile(store() / "version_config.json"));
  EXPECT_EQ(selectForSdkVersion(*entries, "3.0.0")->analytics->url, "u");
  EXPECT_EQ(selectForSdkVersion(*entries, "2.1.0")->analytics->frequency, "Q");
  EXPECT_THAT(readFile(store() / "version_config.json"), HasSubstr("kept"));
}

TEST_F(Publish, WhatCannotBePlayedIsRefusedAndTheStoreStaysAsItWas) {
  ASSERT_EQ(publish("1").status, 0);
  const std::string before = readFile(store() / "version_config.json");
  const struct {
    const char* file;
    const char* content;  // null: the file is missing
    const char* reason;
  } cases[] = {
      {"play_config.json", "{}", "play_config.json: At totalFrames: "},
      {"audio.mp3", nullptr, "audio.mp3: No such file"},
      {"audio.mp3", "", "audio.mp3: it is empty"},
      {"audio.mp3", "RIFF----WAVEfmt \xff\xfb\x90", "audio.mp3: it is a WAV file"},
      {"animation.json", R"(["<svg/>", "<svg>\n<g></svg>"])", "frame 2, line 2, column"},
      {"animation.json", "<svg width='9' height='9'/>", "JSON"},
      {"signature_forte.ahap", "[]", "an object was expected"},
  };
  for (const auto& c : cases) {
    writeCue("broken");
    fs::remove(cue() / c.file);
    if (c.content != nullptr) writeFile(cue() / c.file, c.content);
    const Ran outcome = publish("2");
    EXPECT_EQ(outcome.status, 1) << c.file;
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("not published: "), HasSubstr(c.reason)));
    EXPECT_FALSE(fs::exists(store() / "quellaro/2")) << c.file;
  }
  writeCue("fine");
  EXPECT_THAT(publish("1").output, HasSubstr("with other content"));
  writeCue("one");
  EXPECT_THAT(publish("1").output, HasSubstr("listed already"));
  // A disk that is full in the middle of a file.
  const Ran full = publish("2", "--sdk-version 2.0.0", "trap '' XFSZ; ulimit -f 40; ");
  EXPECT_EQ(full.status, 1);
  EXPECT_THAT(full.output, HasSubstr("File too large"));
  EXPECT_FALSE(fs::exists(store() / "quellaro/2"));
  EXPECT_THAT(publish("2", "--dry-run").output,
              StartsWith("would publish version 2 of quellaro for library version 1.0.0 at quellaro/2\n"));
  EXPECT_FALSE(fs::exists(store() / "quellaro/2"));
  for (const char* arguments : {"--version 0", "--version ''", "--cue ..", "--cue a/b", "--cue _", "--sdk-version ''"})
    EXPECT_EQ(publish("5", arguments).status, 2) << arguments;
  EXPECT_EQ(readFile(store() / "version_config.json"), before);

  // A list that devices could not read is not replaced by one that has lost everything.
  writeFile(store() / "version_config.json", "[{}]");
  EXPECT_EQ(publish("2").status, 1);
  EXPECT_EQ(readFile(store() / "version_config.json"), "[{}]");
  fs::remove(store() / "version_config.json");
  fs::create_directories(store() / "version_config.json");
  EXPECT_EQ(publish("2").status, 1);
  EXPECT_FALSE(fs::exists(store() / "quellaro/2"));
}

}  // namespace
}  // namespace quellaro
