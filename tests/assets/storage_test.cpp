#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/sdk_config.h"
#include "assets/version_config.h"
#include "support/library_fixture.h"

namespace quellaro {
namespace {

namespace fs = std::filesystem;

TEST(SDKConfig, DecodesWhatIsCompleteAndTellsWhatIsNot) {
  const std::string complete = R"({"totalFrames": 3, "svgPreFix": "p", "soundFileName": "a", "soundDelayInMillis": 1,
    "animationDelayInMillis": 2.5, "frameTime": {"Frame_1": 41.7}, "viewBox": "v", "isHapticsSupported": true})";
  const auto decode = [&](const std::string& change) {
    std::string text = complete;
    text.insert(1, change);  // the first of equal keys counts
    const auto config = decodeSDKConfig(text);
    return config ? "fine" : config.error().localizedDescription;
  };
  for (const std::string key :
       {"totalFrames", "soundFileName", "soundDelayInMillis", "animationDelayInMillis", "frameTime", "viewBox"})
    EXPECT_EQ(decode("\"" + key + "\": null, "), "At " + key + ": a value is required, but this is null");
  const std::pair<std::string, std::string> rows[] = {
      {R"("unknown": [1], "totalFrames": 3.0, "frameTime": {}, "svgPreFix": null, "isHapticsSupported": null, )",
       "fine"},
      {R"("totalFrames": 2.5, "soundFileName": 1, )",
       "At totalFrames: a whole number of at most 64 bits was expected, but this is 2.5"},
      {R"("frameTime": {"Frame_1": "1"}, )", "At frameTime.Frame_1: a number was expected, but this is a string"},
      {R"("svgPreFix": 1, )", "At svgPreFix: a string was expected, but this is a number"},
      {R"("isHapticsSupported": "true", )", "At isHapticsSupported: a boolean was expected, but this is a string"},
  };
  for (const auto& [change, answer] : rows) EXPECT_EQ(decode(change), answer) << change;
  EXPECT_FALSE(decodeSDKConfig("[]"));

  const auto config = decodeSDKConfig(complete);
  ASSERT_TRUE(config);
  EXPECT_EQ((*config)->svgPreFix, "p");
  EXPECT_EQ((*config)->soundDelayInMillis, 1);
  EXPECT_EQ((*config)->animationDelayInMillis, 2.5);
  EXPECT_EQ((*config)->frameTime.at("Frame_1"), 41.7);
  EXPECT_TRUE((*config)->isHapticsSupported);
}

std::string entry(const std::string& versions, const std::string& filepath = "p") {
  return R"({"sdk_versions": )" + versions + R"(, "cues": {"q": {"version": "1", "filepath": ")" + filepath +
         R"("}}, "analytics": {"enable": true, "frequency": "M", "url": "u"}})";
}

TEST(VersionConfig, TheFirstEntryThatListsTheVersionIsChosen) {
  const auto entries = decodeVersionConfigs("[" + entry("[]") + "," + entry(R"(["1.0", "2.0"])", "first") + "," +
                                            entry(R"(["2.0"])") + "]");
  ASSERT_TRUE(entries);
  EXPECT_EQ(selectForSdkVersion(*entries, "2.0")->cues->at("q").filepath, "first");
  for (const char* version : {"2", "2.0.0", " 2.0"}) EXPECT_FALSE(selectForSdkVersion(*entries, version)) << version;
}

TEST(VersionConfig, SignaturesAreReadAndFailNothing) {
  const std::pair<std::string, SetSignature> rows[] = {
      {R"("sha256": {"a": "12", "b": null}, "signature": "x", )", {{{"a", "12"}, {"b", ""}}, "x"}},
      {R"("sha256": ["a"], "signature": {}, )", {}},
      {R"("sha256": null, )", {}},
  };
  for (const auto& [keys, expected] : rows) {
    std::string text = "[" + entry(R"(["2.0"])") + "]";
    text.insert(text.find(R"("version")"), keys);
    const auto entries = decodeVersionConfigs(text);
    ASSERT_TRUE(entries) << text;
    EXPECT_TRUE(entries->front().cues->at("q").signature == expected) << keys;
  }
}

TEST(VersionConfig, OneThingWrongAnywhereFailsTheWhole) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"[]", ""},
      {entry(R"(["2.0"])"), "At the top level: an array was expected, but this is an object"},
      {"[" + entry(R"(["2.0"])") + R"(, {"sdk_versions": [], "cues": {}}])", "At [1].analytics: the key is missing"},
      {"[" + entry(R"(["2.0", 3])") + "]", "At [0].sdk_versions[1]: a string was expected, but this is a number"},
      {R"([{"sdk_versions": [], "cues": {"q": {"version": 1}}}])",
       "At [0].cues.q.version: a string was expected, but this is a number"},
      {R"([{"sdk_versions": [], "cues": {}, "analytics": {"enable": 1}}])",
       "At [0].analytics.enable: a boolean was expected, but this is a number"},
  };
  for (const auto& [text, error] : rows) {
    const auto entries = decodeVersionConfigs(text);
    EXPECT_EQ(entries ? "" : entries.error().localizedDescription, error) << text;
  }
}

class AssetStorage : public LibraryFixture {};

TEST_F(AssetStorage, ACueIsReadFromItsActiveDirectoryWhenAnythingIsThere) {
  const std::string active = (library() / "halvo_assets_active").string();
  EXPECT_EQ(HalvoFileManager::assetsDirectoryPath("abc"), bundle());
  EXPECT_EQ(HalvoFileManager::assetsDirectoryPath(std::nullopt), bundle());
  fs::create_directories(active + "/abc");
  EXPECT_EQ(HalvoFileManager::assetsDirectoryPath("abc"), active + "/abc");
  EXPECT_EQ(HalvoFileManager::assetsDirectoryPath("other"), bundle());
  EXPECT_EQ(HalvoFileManager::assetsDirectoryPath(std::nullopt), active);
  EXPECT_EQ(HalvoFileManager::stagingDirectory("abc"), library().string() + "/halvo_assets_temp/abc");
  EXPECT_EQ(HalvoFileManager::libraryFileURL("/file.json"), library().string() + "/file.json");

  // No path components.
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("a/b"), std::string("a\0b", 3)}) {
    EXPECT_EQ(HalvoFileManager::assetsDirectoryPath(name), bundle()) << name;
    EXPECT_FALSE(HalvoFileManager::stagingDirectory(name)) << name;
  }
}

TEST_F(AssetStorage, FailuresArePrintedOneLineEach) {
  const auto path = [&](const char* name) { return (library() / name).string(); };
  writeFile(path("file"), "x");
  HalvoFileManager::createDirectoryIfNeeded(path("file"));
  HalvoFileManager::removeDirectoryIfExists(path("absent"));
  EXPECT_TRUE(takePrinted().empty());
  HalvoFileManager::createDirectoryIfNeeded(path("file/below"));
  HalvoFileManager::moveItem(path("file"), library().string());
  EXPECT_EQ(takePrinted(), (std::vector<std::string>{"QuellaroHalvo: Filed create directoy at path " +
                                                         path("file/below") + " : Not a directory\n",
                                                     "QuellaroHalvo: Filed to move item : File exists\n"}));
  EXPECT_TRUE(fs::exists(path("file")));
  HalvoFileManager::createDirectoryIfNeeded(path("a/b/c"));
  HalvoFileManager::removeDirectoryIfExists(path("a"));
  EXPECT_FALSE(fs::exists(path("a")));
  EXPECT_TRUE(takePrinted().empty());
}

TEST_F(AssetStorage, StoredValuesFallBackWhenTheyAreOfAnotherType) {
  EXPECT_EQ(HalvoUtility::sdkVersion(), "2.0.0");
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 0.0);
  EXPECT_EQ(HalvoUtility::cueVersion("abc"), "0");
  HalvoUtility::setCueVersion("abc", "7");
  HalvoUtility::setLastUpgradeTime(1.5e9);
  EXPECT_EQ(HalvoUtility::cueVersion("abc"), "7");
  EXPECT_EQ(readFile(library() / "Preferences" / "defaults.json"),
            R"({"LAST_UPGRADE_TIME":1.5e+09,"abc_CUE_VERSION":"7"})");
  writeFile(library() / "Preferences" / "defaults.json", R"({"LAST_UPGRADE_TIME": "1", "abc_CUE_VERSION": 7})");
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 0.0);
  EXPECT_EQ(HalvoUtility::cueVersion("abc"), "0");
}

}  // namespace
}  // namespace quellaro
