// 'halvo play', run as a person would.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "drawing_commands/run_tool.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;

class PlayOfTheTool : public testing::Test {
 protected:
  PlayOfTheTool() {
    std::filesystem::copy(QUELLARO_BUNDLE, bundle_);
    writeFile(bundle_ / "play_config.json",
              R"({"totalFrames": 3, "soundFileName": "audio.mp3", "soundDelayInMillis": 0, "viewBox": "0 0 1 1",
                  "animationDelayInMillis": 0, "frameTime": {"Frame_1": 0, "Frame_2": 50, "Frame_3": 50},
                  "isHapticsSupported": true})");
    writeFile(bundle_ / "animation.json",
              R"(["<svg><rect x='0' y='0' width='90' height='90' fill='#f00'/></svg>", "<p/>", "<svg/>"])");
  }

  // Both outputs. The libraries that a display comes with keep memory until the end of the process, which is no leak of
  // the tool's.
  Ran play(const std::string& options, const std::string& prefix = "") const {
    return run("ASAN_OPTIONS=detect_leaks=0 SDL_VIDEODRIVER=x11 SDL_RENDER_DRIVER=software XDG_CACHE_HOME=" +
               (directory_ / "cache").string() + " " + prefix + " " QUELLARO_HALVO_TOOL " play quellaro --bundle " +
               bundle_.string() + " --library " + (directory_ / "library").string() + " " + options);
  }
  Ran playAnimation(const std::string& options, const std::string& prefix = "") const {
    return play("--type animationOnly " + options, prefix);
  }
  Ran playHaptics(const std::string& options) const { return play("--type soundOnly --haptics " + options); }

  std::set<std::string> recorded() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_ / "record"))
      names.insert(entry.path().filename().string());
    return names;
  }

  TemporaryDirectory directory_;
  const std::filesystem::path bundle_ = directory_ / "bundle";
  const std::string record_ = " --record " + (directory_ / "record").string();
};

constexpr const char* kPlayed =
    "prepare: 800 success\n===> 0\\.0 Animation started at [0-9.]+\n===> 0\\.1 Animation ended at [0-9.]+\n"
    "play: 800 success\n";

// As an author has it: nothing else in it, and a cue of the same name in the Library does not take its place.
TEST_F(PlayOfTheTool, ADirectoryIsPlayedByItselfAndLeavesNothingBehind) {
  for (const char* name : {"Info.json", "version_config.json"}) std::filesystem::remove(bundle_ / name);
  writeFile(directory_ / "home/dev.quellaro.halvo/halvo_assets_active/cue/play_config.json", "{}");
  std::filesystem::create_directory(directory_ / "tmp");
  const std::string home = "cd " + directory_.path().string() + "; XDG_DATA_HOME=" + (directory_ / "home").string() +
                           " TMPDIR=" + (directory_ / "tmp").string() + " " QUELLARO_HALVO_TOOL " play --headless ";
  const Ran played = run(home + "./bundle --haptics");
  EXPECT_EQ(played.status, 0);
  EXPECT_THAT(played.output, AllOf(HasSubstr("prepare: 800 success\n"), HasSubstr("\nplay: 800 success\n")));
  EXPECT_TRUE(std::filesystem::is_empty(directory_ / "tmp"));
  EXPECT_THAT(run(home + "./nowhere").output, "halvo: ./nowhere: No such file or directory\n");
  EXPECT_EQ(run(home + "./bundle --library x").status, 2);
  EXPECT_THAT(run(home + "bundle --times 0").output, HasSubstr("'halvo play ./bundle' plays the directory"));
  // A prepare that fails says why, and the play after it goes on as ever.
  writeFile(bundle_ / "play_config.json", "{}");
  const Ran broken = run(home + "./bundle");
  EXPECT_EQ(broken.status, 1);
  EXPECT_THAT(broken.output, AllOf(HasSubstr("prepare: 901 prepareFailed\n"),
                                   HasSubstr("/./bundle/play_config.json: At totalFrames: the key is missing"),
                                   HasSubstr("\nplay: 908 notPrepared\n")));
}

TEST_F(PlayOfTheTool, EveryShownFrameIsRecordedInOrder) {
  const Ran ran = playAnimation("--headless --size 30x20 --background white" + record_);
  EXPECT_EQ(ran.status, 0);
  EXPECT_THAT(ran.output, MatchesRegex(kPlayed));
  EXPECT_EQ(recorded(), (std::set<std::string>{"frame_0001.png", "frame_0002.png", "frame_0003.png"}));
  const std::string first = readFile(directory_ / "record/frame_0001.png");
  // Width and height stand behind the signature and the first chunk's name.
  EXPECT_EQ(first.substr(16, 8), std::string("\0\0\0\x1e\0\0\0\x14", 8));
  EXPECT_NE(first, readFile(directory_ / "record/frame_0002.png"));
  EXPECT_EQ(readFile(directory_ / "record/frame_0003.png"), readFile(directory_ / "record/frame_0002.png"));
  playAnimation("--headless --times 2" + record_);
  EXPECT_EQ(recorded().size(), 6u);
}

TEST_F(PlayOfTheTool, UnusableArguments) {
  for (const char* options :
       {"--headless --background red", "--headless --size 0x5", "--headless --size 5",
        "--headless --record /dev/null/x", "--headless --record ''", "--headless --volume 1.5", "--no-actuator"})
    EXPECT_EQ(play(options).status, 2) << options;
}

TEST_F(PlayOfTheTool, WithoutAViewTheAnimationFails) {
  const Ran ran = playAnimation("--headless --no-view");
  EXPECT_EQ(ran.status, 1);
  EXPECT_EQ(ran.output, "prepare: 800 success\nplay: 905 playFailed\nhalvo: There is no view for the animation\n");
}

TEST_F(PlayOfTheTool, WithoutADisplayItSaysSoAndLeavesAContactSheet) {
  const Ran ran = playAnimation("", "DISPLAY=:4711");
  EXPECT_EQ(ran.status, 0);
  const auto sheet = directory_ / "cache/halvo/last_play.png";
  EXPECT_THAT(ran.output, HasSubstr("there is no display"));
  EXPECT_THAT(ran.output, HasSubstr("play: 800 success\n"));
  EXPECT_THAT(ran.output, HasSubstr("what was shown: " + sheet.string()));
  EXPECT_EQ(readFile(sheet).substr(1, 3), "PNG");
}

TEST_F(PlayOfTheTool, PlaysInAWindow) {
  const Ran ran = playAnimation(record_, "xvfb-run -a");
  EXPECT_EQ(ran.status, 0);
  EXPECT_THAT(ran.output, MatchesRegex(kPlayed));
  EXPECT_EQ(recorded().size(), 3u);
}

TEST_F(PlayOfTheTool, SimulatedHaptics) {
  const Ran fine = playHaptics("--headless");
  EXPECT_EQ(fine.status, 0);
  EXPECT_EQ(fine.output, "prepare: 800 success\nplay: 800 success\n");
  const Ran without = playHaptics("--headless --no-actuator");
  EXPECT_EQ(without.status, 1);
  EXPECT_EQ(without.output,
            "[QuellaroHalvoSDK] ERROR: Device does not support haptics feedback\n"
            "prepare: 800 success\nplay: 910 hapticsPlayFailed\nhalvo: Device does not support haptics feedback\n");
  EXPECT_THAT(play("--headless --type soundOnly --verbose --volume 0").output,
              AllOf(HasSubstr("halvo: the cue takes 2."), HasSubstr("halvo: nobody could hear the sound: ")));
}

}  // namespace
}  // namespace quellaro
