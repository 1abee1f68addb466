#include "animation/halvo_animation_controller.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "animation/halvo_view.h"
#include "support/library_fixture.h"

namespace quellaro {

namespace {

const std::string kFrame =
    R"("<svg width='10' height='10'><rect x='0' y='0' width='5' height='5' fill='#f00'/></svg>")";
const std::string kOneFrame = "[" + kFrame + "]";
const std::string kTwoFrames = "[" + kFrame + "," + kFrame + "]";
const std::string kThreeFrames = "[" + kFrame + ",\"<p/>\"," + kFrame + "]";

class AnimationController : public LibraryFixture {
 protected:
  // 's' for success, 'f' for failure, one for each callback.
  std::string prepare(const std::string& cue = "quellaro") {
    std::string answers;
    controller_->prepare(
        cue, [&] { answers += 's'; }, [&] { answers += 'f'; });
    return answers;
  }
  void play(const std::shared_ptr<QLHalvoView>& view) {
    controller_->play(
        view, config_, [this] { ++successes_; }, [] { FAIL(); });
  }

  std::unique_ptr<QLHalvoAnimationController> controller_ = std::make_unique<QLHalvoAnimationController>();
  std::shared_ptr<QLHalvoSDKConfig> config_ = [] {
    auto config = std::make_shared<QLHalvoSDKConfig>();
    config->frameTime = {{"Frame_1", 100}, {"Frame_2", 100}, {"Frame_3", 100}};
    return config;
  }();
  std::shared_ptr<QLHalvoView> view_ = QLHalvoView::initWithFrame({{0, 0}, {20, 20}});
  int successes_ = 0;
};

TEST_F(AnimationController, LoadsTheFramesOfACue) {
  const struct {
    std::optional<std::string> file;
    const char* answers;
    std::size_t frames;
  } rows[] = {
      {kThreeFrames, "s", 3},
      {"{}", "s", 0},
      {"[\"<svg><rect width='1' height='1'/><g><rect\"]", "s", 1},
      {"[", "f", 0},
      // A file that is missing is not loaded at all.
      {std::nullopt, "f", 1},
  };
  const auto file = bundle() / "animation.json";
  for (const auto& row : rows) {
    // There are always frames from before that have to go.
    writeFile(file, kOneFrame);
    ASSERT_EQ(prepare(), "s");
    std::filesystem::remove(file);
    if (row.file) writeFile(file, *row.file);
    EXPECT_EQ(prepare(), row.answers) << row.file.value_or("none");
    EXPECT_EQ(controller_->animationElements().size(), row.frames) << row.file.value_or("none");
  }
  // One that cannot be read.
  std::filesystem::create_directory(file);
  EXPECT_EQ(prepare(), "f");
  // Nobody has to listen.
  controller_->prepare("quellaro", {}, {});
}

TEST_F(AnimationController, WithoutAViewNothingIsPlayed) {
  writeBundleFile("animation.json", kThreeFrames);
  prepare();
  play(nullptr);
  driver_.advance(1);
  EXPECT_EQ(successes_, 0);
  EXPECT_TRUE(takePrinted().empty());
}

// The play keeps its frames when others are prepared, and when the controller is gone.
TEST_F(AnimationController, APlayOutlivesWhatItWasStartedWith) {
  writeBundleFile("animation.json", kTwoFrames);
  prepare();
  config_->frameTime.erase("Frame_3");
  play(view_);
  const auto second = controller_->animationElements()[1];
  controller_.reset();
  driver_.advance(0.15);
  EXPECT_EQ(view_->animtionView()->svgDocument(), second);
  driver_.advance(0.1);
  EXPECT_EQ(successes_, 1);
}

}  // namespace

}  // namespace quellaro
