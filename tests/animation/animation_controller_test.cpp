#include "animation/halvo_animation_controller.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "animation/halvo_view.h"
#include "public/fake_collaborators.h"
#include "public/halvo_controller.h"
#include "support/library_fixture.h"

namespace quellaro {

namespace {

constexpr const char* kFrame =
    R"(<svg width='10' height='10'><rect x='0' y='0' width='5' height='5' fill='#f00'/></svg>)";

std::string frameFile(const std::vector<std::string>& frames) {
  std::string json = "[";
  for (const std::string& frame : frames) json += (json.size() > 1 ? ",\"" : "\"") + frame + "\"";
  return json + "]";
}

class AnimationController : public LibraryFixture {
 protected:
  // 's' for success, 'f' for failure, one for each callback.
  std::string prepare(const std::string& cue = "quellaro") {
    std::string answers;
    controller_.prepare(
        cue, [&] { answers += 's'; }, [&] { answers += 'f'; });
    return answers;
  }
  QLHalvoAnimationController controller_;
};

TEST_F(AnimationController, LoadsTheFramesOfACue) {
  struct Row {
    const char* what;
    std::optional<std::string> file;
    const char* answers;
    std::size_t frames;
  };
  const std::vector<Row> rows = {
      {"two frames", frameFile({kFrame, kFrame}), "s", 2},
      {"none", "[]", "s", 0},
      {"an object", "{}", "s", 0},
      {"not only strings", R"(["<svg/>", 1])", "s", 0},
      {"a frame that ends in the middle", frameFile({"<svg><rect width='1' height='1'/><g><rect"}), "s", 1},
      {"a frame that is no SVG, and an empty one", frameFile({kFrame, "<p/>", ""}), "s", 3},
      {"broken JSON", "[", "f", 0},
      {"an empty file", "", "f", 0},
      {"no file", std::nullopt, "f", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    // There are always frames from before that have to go.
    writeBundleFile("animation.json", frameFile({kFrame}));
    ASSERT_EQ(prepare(), "s");
    std::filesystem::remove(bundle() / "animation.json");
    if (row.file) writeBundleFile("animation.json", *row.file);
    EXPECT_EQ(prepare(), row.answers);
    // A file that is missing is not loaded at all.
    EXPECT_EQ(controller_.animationElements().size(), row.file ? row.frames : 1);
  }
}

TEST_F(AnimationController, AFileThatCannotBeReadIsAFailure) {
  std::filesystem::create_directory(bundle() / "animation.json");
  EXPECT_EQ(prepare(), "f");
  // Nobody has to listen.
  controller_.prepare("quellaro", {}, {});
}

TEST_F(AnimationController, DownloadedFramesComeBeforeTheBuiltInOnes) {
  writeBundleFile("animation.json", frameFile({kFrame}));
  writeFile(library() / "halvo_assets_active/quellaro/animation.json", frameFile({kFrame, kFrame, kFrame}));
  EXPECT_EQ(prepare(), "s");
  EXPECT_EQ(controller_.animationElements().size(), 3u);
  EXPECT_EQ(prepare("other"), "s");
  EXPECT_EQ(controller_.animationElements().size(), 1u);
}

TEST_F(AnimationController, PlaysIntoTheViewItIsGiven) {
  writeBundleFile("animation.json", frameFile({kFrame, "<p/>", kFrame}));
  prepare();
  const auto config = std::make_shared<QLHalvoSDKConfig>();
  config->frameTime = {{"Frame_1", 100}, {"Frame_2", 100}, {"Frame_3", 100}};
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {20, 20}});
  int successes = 0;
  const auto play = [&](const std::shared_ptr<QLHalvoView>& shown) {
    controller_.play(
        shown, config, [&] { ++successes; }, [] { FAIL(); });
  };
  const auto shownLayers = [&] { return view->animtionView()->layer()->sublayers().size(); };
  for (int round = 1; round <= 2; ++round) {
    play(view);
    EXPECT_EQ(view->animtionView()->sdkConfig(), config);
    EXPECT_EQ(shownLayers(), 1u);
    driver_.advance(0.15);
    EXPECT_EQ(shownLayers(), 0u);
    driver_.advance(0.1);
    EXPECT_EQ(shownLayers(), 1u);
    EXPECT_EQ(successes, round - 1);
    driver_.advance(0.1);
    EXPECT_EQ(successes, round);
  }
  takePrinted();
  play(nullptr);
  driver_.advance(1);
  EXPECT_EQ(successes, 2);
  EXPECT_TRUE(takePrinted().empty());

  writeBundleFile("animation.json", "[]");
  prepare();
  play(view);
  EXPECT_EQ(successes, 3);
}

// The play keeps its frames when others are prepared, and when the controller is gone.
TEST_F(AnimationController, APlayOutlivesWhatItWasStartedWith) {
  writeBundleFile("animation.json", frameFile({kFrame, kFrame}));
  auto controller = std::make_unique<QLHalvoAnimationController>();
  controller->prepare("quellaro", {}, {});
  const auto config = std::make_shared<QLHalvoSDKConfig>();
  config->frameTime = {{"Frame_1", 100}, {"Frame_2", 100}};
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {20, 20}});
  bool isDone = false;
  controller->play(view, config, [&] { isDone = true; }, {});
  const auto second = controller->animationElements()[1];
  controller.reset();
  driver_.advance(0.15);
  EXPECT_EQ(view->animtionView()->svgDocument(), second);
  driver_.advance(0.1);
  EXPECT_TRUE(isDone);
}

// A sound that takes its time.
class TimedSound : public FakePlayer {
 public:
  double seconds = 0;
  void play(const std::shared_ptr<QLHalvoView>&, const std::shared_ptr<const QLHalvoSDKConfig>&, Callback onSuccess,
            Callback onFailure) override {
    if (playAnswer == Answer::Never) return;
    MainQueue::shared().asyncAfter(seconds, playAnswer == Answer::Success ? onSuccess : onFailure);
  }
};

TEST_F(AnimationController, SoundAndAnimationEndInOneCompletion) {
  struct Row {
    const char* what;
    Answer sound;
    double soundSeconds;
    bool hasView;
    const char* animationFile;
    // After the sound's delay of 0.25 s, and the animation's of 0.1205 s and length of 0.2 s.
    double end;  // 0 when there is no answer
    std::optional<int> code;
  };
  const std::string two = frameFile({kFrame, kFrame});
  const std::string three = frameFile({kFrame, kFrame, kFrame});
  const std::vector<Row> rows = {
      {"the animation ends first", Answer::Success, 1, true, two.c_str(), 1.25, 800},
      {"the sound ends first", Answer::Success, 0.01, true, two.c_str(), 0.1205 + 0.2, 800},
      {"the sound fails in the middle", Answer::Failure, 0.01, true, two.c_str(), 0.1205 + 0.2, 906},
      {"the sound fails at the end", Answer::Failure, 2, true, two.c_str(), 2.25, 906},
      {"there is no view", Answer::Success, 1, false, two.c_str(), 1.25, 907},
      {"there is no view, and the sound fails", Answer::Failure, 1, false, two.c_str(), 1.25, 905},
      {"there are no frames", Answer::Success, 1, true, "[]", 1.25, 800},
      {"the last frame has no time", Answer::Success, 1, true, three.c_str(), 0, std::nullopt},
      {"the sound never ends", Answer::Never, 0, true, two.c_str(), 0, std::nullopt},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    writeConfigs();
    writeBundleFile("animation.json", row.animationFile);
    Fakes fakes;
    const auto sound = std::make_shared<TimedSound>();
    sound->playAnswer = row.sound;
    sound->seconds = row.soundSeconds;
    HalvoCollaborators collaborators = fakes.collaborators();
    collaborators.makeAnimationController = [] { return std::make_shared<QLHalvoAnimationController>(); };
    collaborators.makeAudioController = [&] { return sound; };
    const auto controller = QLHalvoController::make(collaborators);
    const auto view = QLHalvoView::initWithFrame({{0, 0}, {20, 20}});

    std::vector<int> codes;
    double end = 0;
    const HalvoCompletion collect = [&](QLHalvoStatus code) {
      codes.push_back(static_cast<int>(code));
      end = driver_.now();
    };
    controller->prepare(QLHalvoType::animationAndSound, "quellaro", QLHalvoEnvironment::primary,
                        QLHalvoMerchant::make("Shop", "US", {}, {"1"}, {}), false, collect);
    driver_.settle();
    ASSERT_EQ(std::exchange(codes, {}), std::vector<int>{800});
    driver_.restart();
    end = 0;
    controller->play(row.hasView ? view : nullptr, collect);
    driver_.advance(10);
    EXPECT_EQ(codes, row.code ? std::vector<int>{*row.code} : std::vector<int>());
    EXPECT_EQ(end, row.end);
  }
}

}  // namespace

}  // namespace quellaro
