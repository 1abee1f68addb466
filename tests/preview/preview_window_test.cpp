// What the preview's window shows, without a window.
#include "preview/preview_window.h"
#include "import/motion_frames.h"

#include <SDL2/SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/temporary_directory.h"

namespace halvo {
namespace {

using quellaro::Bitmap;
using quellaro::writeFile;

void press(PreviewWindow& window, SDL_Keycode key) {
  SDL_Event event{};
  event.type = SDL_KEYDOWN;
  event.key.keysym.sym = key;
  window.handle(event);
}

Bitmap shown(PreviewWindow& window, int width, int height, double density = 1) {
  quellaro::Compositor compositor;
  Bitmap bitmap(width, height);
  window.resize(width, height, density);
  window.display(compositor, bitmap);
  return bitmap;
}

class PreviewPicture : public testing::Test {
 protected:
  // The first frame comes after a second; the second is never seen.
  std::shared_ptr<const PreviewSource> readCue(const std::string& config) {
    writeFile(directory_ / "animation.json",
              "[\"<svg width='8' height='8'><rect width='8' height='8' style='a' fill='red'/></svg>\", \"<svg/>\"]");
    writeFile(directory_ / "play_config.json", config);
    std::filesystem::copy(QUELLARO_BUNDLE "/audio.mp3", directory_ / "audio.mp3",
                          std::filesystem::copy_options::skip_existing);
    std::filesystem::copy(QUELLARO_BUNDLE "/signature_forte.ahap", directory_ / "signature_forte.ahap",
                          std::filesystem::copy_options::skip_existing);
    const auto read = reader_.read();
    return read ? *read : nullptr;
  }
  static constexpr const char* kConfig =
      R"({"soundFileName": "", "soundDelayInMillis": 0, "animationDelayInMillis": 1000, "viewBox": "",
          "totalFrames": 2, "isHapticsSupported": true, "frameTime": {"Frame_2": 10}})";

  quellaro::TemporaryDirectory directory_;
  SourceReader reader_{{directory_.path().string()}};
};

TEST_F(PreviewPicture, FillsWindowsOfAnySizeWhateverIsShown) {
  const auto source = readCue(kConfig);
  ASSERT_TRUE(source);
  for (const auto& [width, height] : {std::pair(1, 1), {2, 40}, {40, 2}, {16, 16}, {90, 60}, {400, 300}})
    for (const bool isAtFrame : {false, true}) {
      SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
      PreviewWindow window(source, std::nullopt);
      press(window, isAtFrame ? SDLK_RIGHT : SDLK_SPACE);
      EXPECT_EQ(window.session().frame().has_value(), isAtFrame);
      window.setProblem(std::string(300, 'x') + " animation.json: " + std::string(3000, ' '));
      for (const SDL_Keycode key : {SDLK_o, SDLK_f, SDLK_s, SDLK_c, SDLK_h}) press(window, key);
      const Bitmap all = shown(window, width, height, 3);
      EXPECT_TRUE(std::ranges::all_of(all.pixels, [](std::uint32_t pixel) { return pixel >> 24 == 255; }));
    }
}

TEST_F(PreviewPicture, KeepsWhatWasReadLastOfFilesThatAreBroken) {
  const auto source = readCue(kConfig);
  ASSERT_TRUE(source);
  ASSERT_TRUE(source->parts.sound && source->parts.haptics);
  EXPECT_TRUE(source->parts.notes.empty());
  writeFile(directory_ / "audio.mp3", "no sound");
  writeFile(directory_ / "signature_forte.ahap", "no pattern");
  const auto broken = readCue(R"({"totalFrames": )");
  ASSERT_TRUE(broken);
  EXPECT_EQ(broken->parts.notes.size(), 2u) << "of what the configuration asks for";
  EXPECT_TRUE(broken->parts.sound && broken->parts.haptics);
  EXPECT_EQ(broken->times.duration(), source->times.duration());
  EXPECT_EQ(broken->times.stepAt(0.5), std::nullopt);

  // The picture is the same but for what is said over it.
  PreviewWindow window(source, std::nullopt);
  press(window, SDLK_RIGHT);
  const Bitmap before = shown(window, 300, 700);
  window.replaceSource(broken);
  const Bitmap after = shown(window, 300, 700);
  std::set<int> rows;
  for (int y = 0; y < before.height; ++y)
    if (!std::equal(before.row(y), before.row(y) + before.width, after.row(y))) rows.insert(y);
  ASSERT_FALSE(rows.empty());
  EXPECT_LT(*rows.rbegin(), 200);
}

TEST_F(PreviewPicture, ShowsAMotionFileAtItsOwnTimesBesideItsLibrarysPicture) {
  SourceReader reader({QUELLARO_SAMPLE, std::nullopt});
  const auto read = reader.read();
  ASSERT_TRUE(read) << read.error().localizedDescription;
  const PreviewSource& source = **read;
  ASSERT_EQ(source.drawings.size(), source.frames.size());
  EXPECT_DOUBLE_EQ(source.times.duration(), 2.5);
  const std::size_t last = source.frames.size() - 1;
  const auto frame = source.drawings[last]->motionFrame;
  ASSERT_TRUE(frame);
  EXPECT_NEAR(static_cast<double>(*frame) / 30, **std::prev(source.parts.times->starts.end()), 1e-9);
  const auto picture = drawMotionFrame(QUELLARO_SAMPLE, *frame, 120);
  ASSERT_TRUE(std::holds_alternative<Bitmap>(picture));
  EXPECT_EQ(std::get<Bitmap>(picture).row(96)[60], 0xFF288C59U) << "the ground";
}

}  // namespace
}  // namespace halvo
