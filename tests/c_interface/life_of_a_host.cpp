#include <QuellaroHalvo/quellaro_halvo.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/temporary_directory.h"

namespace {

// A cue of three frames, 60 ms in all, whose sound takes 0.3 s, and simulated devices: once for the process.
class Bundle : public testing::Environment {
 public:
  void SetUp() override {
    files = directory_ / "bundle";
    const auto write = [](const char* name, const std::string& text) { quellaro::writeFile(files / name, text); };
    write("Info.json", R"({"CFBundleShortVersionString": "2.0.0"})");
    write("version_config.json",
          R"([{"sdk_versions": ["2.0.0"], "cues": {"quellaro": {"version": "1", "filepath": "q"}},
      "analytics": {"enable": false, "frequency": "M", "url": ""}}])");
    write("play_config.json", R"({"totalFrames": 3, "soundFileName": "audio.mp3", "soundDelayInMillis": 0,
      "animationDelayInMillis": 0, "frameTime": {"Frame_1": 20, "Frame_2": 20, "Frame_3": 20}, "viewBox": "0 0 8 8",
      "isHapticsSupported": false})");
    write("animation.json", R"(["<svg width='8' height='8'/>", "<svg width='8' height='8'/>",
      "<svg width='8' height='8'><rect x='0' y='0' width='8' height='8' fill='#0000ff'/></svg>"])");
    write("audio.mp3", quellaro::readFile(QUELLARO_TEST_SOUND));
    // As a host may, which then goes elsewhere.
    ASSERT_EQ(quellaro_halvo_set_bundle_directory(std::filesystem::relative(directory_ / "bundle").c_str()),
              quellaro_halvo_result_ok);
    std::filesystem::current_path("/");
    ASSERT_EQ(quellaro_halvo_set_library_directory((directory_ / "library").c_str()), quellaro_halvo_result_ok);
    ASSERT_EQ(quellaro_halvo_use_simulated_devices(0.5, true), quellaro_halvo_result_ok);
  }

 private:
  quellaro::TemporaryDirectory directory_;

 public:
  static inline std::filesystem::path files;
};
[[maybe_unused]] const auto* const bundle = testing::AddGlobalTestEnvironment(new Bundle);

class Host : public testing::Test {
 protected:
  Host() {
    create();
    quellaro_halvo_set_console_sink(collect, &console_);
  }
  ~Host() override {
    release();
    quellaro_halvo_set_console_sink(nullptr, nullptr);
  }

  void create() {
    release();
    const char* codes[] = {"5411"};
    controller_ = quellaro_halvo_controller_create();
    view_ = quellaro_halvo_view_create_with_frame({0, 0, 8, 8});
    merchant_ = quellaro_halvo_merchant_create("Shop", "US", nullptr, codes, 1, nullptr);
  }
  void release() {
    quellaro_halvo_controller_release(std::exchange(controller_, nullptr));
    quellaro_halvo_view_release(std::exchange(view_, nullptr));
    quellaro_halvo_merchant_release(std::exchange(merchant_, nullptr));
  }

  static void collect(const char* text, void* console) { *static_cast<std::string*>(console) += text; }
  static void answered(quellaro_halvo_status status, void* context) {
    auto* host = static_cast<Host*>(context);
    host->answers_.push_back(status);
    if (host->onAnswer_) host->onAnswer_();
  }
  static void changed(quellaro_halvo_view* view, void* context) {
    auto* host = static_cast<Host*>(context);
    ++host->changes_;
    if (host->drawsChanges_) quellaro_halvo_view_draw(view, host->pixels_.data(), 8, 8, kStride);
  }

  quellaro_halvo_result prepare(quellaro_halvo_type type = quellaro_halvo_type_animation_only) {
    return quellaro_halvo_controller_prepare(controller_, type, "Quel-laro", quellaro_halvo_environment_primary,
                                             merchant_, false, answered, this);
  }
  quellaro_halvo_result play() { return quellaro_halvo_controller_play(controller_, view_, answered, this); }

  // A host's own loop, on the three calls of the seam.
  static void pump() {
    int left = quellaro_halvo_loop_milliseconds_until_next_deadline();
    pollfd work{quellaro_halvo_loop_descriptor(), POLLIN, 0};
    while (left >= 0 || poll(&work, 1, 0) == 1) {
      poll(&work, 1, left);
      quellaro_halvo_loop_drain();
      left = quellaro_halvo_loop_milliseconds_until_next_deadline();
    }
  }

  static constexpr std::size_t kStride = 12 * sizeof(std::uint32_t);
  std::string console_;
  quellaro_halvo_controller* controller_ = nullptr;
  quellaro_halvo_view* view_ = nullptr;
  quellaro_halvo_merchant* merchant_ = nullptr;
  std::vector<quellaro_halvo_status> answers_;
  std::function<void()> onAnswer_;
  std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(std::size_t{12} * 8, 7U);
  int changes_ = 0;
  bool drawsChanges_ = false;
};

using Answers = std::vector<quellaro_halvo_status>;

TEST_F(Host, PreparesAndPlaysInALoopOfItsOwn) {
  EXPECT_EQ(play(), quellaro_halvo_result_ok);
  EXPECT_EQ(answers_, (Answers{908})) << "at once";
  EXPECT_EQ(prepare(), quellaro_halvo_result_ok);
  EXPECT_EQ(answers_.size(), 1U) << "not before the loop runs";
  pump();
  EXPECT_STREQ(quellaro_halvo_controller_prepared_halvo_cue(controller_), "quellaro");
  play();
  EXPECT_TRUE(quellaro_halvo_controller_is_playing(controller_));
  pump();
  EXPECT_EQ(console_.find("===> 0.0 Animation started at "), 0U);
  quellaro_halvo_controller_play(controller_, nullptr, answered, this);
  quellaro_halvo_controller_play(controller_, view_, nullptr, nullptr);
  pump();
  EXPECT_EQ(answers_, (Answers{908, 800, 800, 905})) << "905: an animation without a view";
}

// A file of the bundle that is another one while this exists, or is not there.
class Spoilt {
 public:
  Spoilt(const std::string& name, const std::string& content) : file_(Bundle::files / name) {
    std::filesystem::rename(file_, aside_);
    if (!content.empty()) quellaro::writeFile(file_, content);
  }
  Spoilt(const Spoilt&) = delete;
  Spoilt& operator=(const Spoilt&) = delete;
  ~Spoilt() { std::filesystem::rename(aside_, file_); }

 private:
  std::filesystem::path file_;
  std::filesystem::path aside_ = Bundle::files.string() + ".aside";
};

TEST_F(Host, IsToldWhatWasWrong) {
  struct Row {
    const char* name;
    std::string content;
    quellaro_halvo_status answer;
    const char* reason;
  };
  const std::string config = R"({"totalFrames": 1, "soundFileName": "a", "soundDelayInMillis": 0,
    "animationDelayInMillis": 0, "frameTime": {"Frame_2": "x"}, "viewBox": ""})";
  for (const Row& row :
       {Row{"play_config.json", config, 901, "play_config.json: At frameTime.Frame_2: "},
        Row{"play_config.json", "", 901, "play_config.json: It is missing"},
        Row{"version_config.json", "[]", 901, "version_config.json: No \"sdk_versions\" lists"},
        Row{"animation.json", "[1", 903, "animation.json: "}, Row{"audio.mp3", "no sound", 902, "audio.mp3 could not"},
        Row{"audio.mp3", "", 902, "audio.mp3 could not"}, Row{"", "", 901, "There is no bundle, with Info.json"}}) {
    create();
    std::string logged;
    {
      const Spoilt spoilt(row.name, row.content);
      quellaro_halvo_set_log_sink(
          [](quellaro_halvo_log_level level, const char* text, void* all) {
            EXPECT_EQ(level, quellaro_halvo_log_level_error);
            *static_cast<std::string*>(all) += text;
          },
          quellaro_halvo_log_level_warning, &logged);
      prepare(quellaro_halvo_type_animation_and_sound);
      pump();
      quellaro_halvo_set_log_sink(nullptr, quellaro_halvo_log_level_info, nullptr);
    }
    EXPECT_EQ(answers_, (Answers{row.answer}));
    const char* const reason = quellaro_halvo_controller_failure_reason(controller_);
    ASSERT_NE(reason, nullptr) << row.reason;
    const std::string found(reason);
    EXPECT_NE(found.find(row.reason), std::string::npos) << found;
    EXPECT_NE(found.find(Bundle::files), std::string::npos) << found;
    EXPECT_NE(logged.find(found), std::string::npos) << logged;
    play();
    EXPECT_STREQ(quellaro_halvo_controller_failure_reason(controller_), found.c_str()) << "why nothing is prepared";
    EXPECT_EQ(quellaro_halvo_controller_duration(controller_), -1);
    answers_.clear();
  }

  create();
  const auto reason = [this] { return std::string(quellaro_halvo_controller_failure_reason(controller_)); };
  play();
  EXPECT_EQ(reason(), "Nothing is prepared");
  onAnswer_ = [this] { EXPECT_EQ(quellaro_halvo_controller_failure_reason(controller_), nullptr) << "in the answer"; };
  prepare();
  pump();
  play();
  onAnswer_ = nullptr;
  play();
  EXPECT_EQ(reason(), "Another play is in progress");
  pump();
  quellaro_halvo_controller_play(controller_, nullptr, answered, this);
  pump();
  EXPECT_EQ(reason(), "There is no view for the animation");
  // The retry needs no discarding here, and succeeds where the first attempt could not.
  create();
  auto spoilt = std::make_unique<Spoilt>("audio.mp3", "no sound");
  prepare(quellaro_halvo_type_sound_only);
  spoilt.reset();
  pump();
  EXPECT_EQ(answers_.back(), 800);
  EXPECT_NE(reason().find("audio.mp3 could not"), std::string::npos) << "what was discarded";
}

TEST_F(Host, AsksWhatACueTakesAndWhatBecameOfItsSound) {
  EXPECT_EQ(quellaro_halvo_controller_last_sound(controller_), quellaro_halvo_sound_none);
  prepare();
  pump();
  EXPECT_DOUBLE_EQ(quellaro_halvo_controller_duration(controller_), 0.06);
  create();
  prepare(quellaro_halvo_type_animation_and_sound);
  pump();
  EXPECT_NEAR(quellaro_halvo_controller_duration(controller_), 0.3, 0.1) << "the sound is longer";
  play();
  EXPECT_EQ(quellaro_halvo_controller_last_sound(controller_), quellaro_halvo_sound_none);
  onAnswer_ = [this] {
    EXPECT_EQ(quellaro_halvo_controller_last_sound(controller_), quellaro_halvo_sound_heard) << "in the answer";
  };
  pump();
  EXPECT_EQ(answers_.size(), 3U);
  onAnswer_ = nullptr;
  create();
  const Spoilt endless("play_config.json", R"({"totalFrames": 3, "soundFileName": "audio.mp3", "viewBox": "",
    "soundDelayInMillis": 0, "animationDelayInMillis": 0, "frameTime": {"Frame_1": 20, "Frame_2": 20}})");
  prepare();
  pump();
  EXPECT_EQ(quellaro_halvo_controller_duration(controller_), std::numeric_limits<double>::infinity());
}

TEST_F(Host, LogsWithLevelsBesidesTheConsoleAndInPlaceOfStandardError) {
  using Lines = std::vector<std::pair<int, std::string>>;
  Lines lines;
  const auto collectLines = [](quellaro_halvo_log_level level, const char* text, void* all) {
    static_cast<Lines*>(all)->emplace_back(level, text);
    throw std::runtime_error("a host's trouble");
  };
  const auto throws = [](quellaro_halvo_status, void*) { throw std::runtime_error("a completion's trouble"); };
  EXPECT_EQ(quellaro_halvo_set_log_sink(collectLines, 4, &lines), quellaro_halvo_result_invalid_value);
  quellaro_halvo_set_log_sink(collectLines, quellaro_halvo_log_level_info, &lines);
  testing::internal::CaptureStderr();
  quellaro_halvo_controller_prepare(controller_, 2, "unheard-of", 0, merchant_, false, throws, nullptr);
  pump();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].first, quellaro_halvo_log_level_error);
  EXPECT_NE(lines[0].second.find("a completion's trouble"), std::string::npos);
  play();
  pump();
  EXPECT_EQ(lines.size(), 1U + 2 + 3) << "two moments, and three lines of the unknown cue";
  EXPECT_EQ(lines[1].first, quellaro_halvo_log_level_info);
  EXPECT_EQ(console_.find(lines[1].second + "\n"), 0U) << "the console has it too";
  quellaro_halvo_set_log_sink(collectLines, quellaro_halvo_log_level_warning, &lines);
  play();
  pump();
  EXPECT_EQ(lines.size(), 1U + 2 + 3) << "none but errors and warnings are wanted";
  quellaro_halvo_set_log_sink(nullptr, quellaro_halvo_log_level_info, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(answers_, (Answers{800, 800})) << "an unknown name plays the built-in cue";
}

#ifdef QUELLARO_EXPECT_MAIN_THREAD
TEST_F(Host, IsEndedInADebugBuildByACallFromAnotherThread) {
  const auto elsewhere = [](void (*call)()) { std::thread(call).join(); };
  elsewhere([] {
    quellaro_halvo_set_console_sink(nullptr, nullptr);
    quellaro_halvo_set_log_sink(nullptr, quellaro_halvo_log_level_info, nullptr);
    EXPECT_GE(quellaro_halvo_version_number(), 10000U);
  });
  // A forked child would be answered so; this one begins anew.
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(elsewhere([] { quellaro_halvo_loop_drain(); }), "another thread");
  EXPECT_DEATH(elsewhere([] { quellaro_halvo_view_release(nullptr); }), "another thread");
}
#endif

TEST_F(Host, ReleasesEverythingInFlightAndIsAnsweredOnce) {
  prepare();
  release();
  pump();
  EXPECT_EQ(answers_, (Answers{800})) << "a prepare";

  create();
  quellaro_halvo_view_set_needs_display_handler(view_, changed, this);
  prepare(quellaro_halvo_type_animation_and_sound);
  pump();
  changes_ = 0;
  play();
  release();
  pump();
  EXPECT_EQ(answers_, (Answers{800, 800, 800})) << "a play";
  EXPECT_EQ(changes_, 0) << "a view that is gone";
}

TEST_F(Host, ReleasesInsideACompletion) {
  for (const bool isPrepared : {false, true}) {
    create();
    if (isPrepared) prepare();
    pump();
    onAnswer_ = [this] { release(); };
    prepare();
    pump();
    EXPECT_EQ(controller_, nullptr);
    onAnswer_ = nullptr;
  }
  EXPECT_EQ(answers_, (Answers{800, 800, 800}));
}

void throwing(quellaro_halvo_status, void* calls) {
  ++*static_cast<int*>(calls);
  throw std::runtime_error("a host's trouble");
}

TEST_F(Host, ThrowsFromItsCallbacksAndNothingBreaks) {
  int calls = 0;
  quellaro_halvo_view_set_needs_display_handler(
      view_, [](quellaro_halvo_view*, void* counter) { throwing(0, counter); }, &calls);
  quellaro_halvo_set_console_sink([](const char*, void* counter) { throwing(0, counter); }, &calls);
  quellaro_halvo_controller_prepare(controller_, 2, "quellaro", 0, merchant_, false, throwing, &calls);
  pump();
  EXPECT_EQ(calls, 2) << "the answer, and the view that needs display";
  quellaro_halvo_view_set_needs_display_handler(view_, nullptr, nullptr);
  quellaro_halvo_controller_play(controller_, view_, throwing, &calls);
  pump();
  EXPECT_EQ(calls, 2 + 3) << "the answer, and two lines";
  EXPECT_FALSE(quellaro_halvo_controller_is_playing(controller_));
}

TEST_F(Host, IsToldOnceThatTheViewNeedsDisplayUntilItHasDrawn) {
  quellaro_halvo_view_set_needs_display_handler(view_, changed, this);
  EXPECT_EQ(changes_, 0) << "only from the loop";
  pump();
  quellaro_halvo_view_set_background(view_, quellaro_halvo_background_white);
  quellaro_halvo_view_set_size(view_, 4, 8);
  pump();
  EXPECT_EQ(changes_, 1);
  EXPECT_TRUE(quellaro_halvo_view_needs_display(view_));

  ASSERT_EQ(quellaro_halvo_view_draw(view_, pixels_.data(), 8, 8, kStride), quellaro_halvo_result_ok);
  EXPECT_FALSE(quellaro_halvo_view_needs_display(view_));
  // The view is 4 wide, the picture 8, a row 12.
  for (std::size_t i = 0; i < pixels_.size(); ++i) EXPECT_EQ(pixels_[i], i % 12 < 4 ? 0xffffffffU : 7U) << i;

  quellaro_halvo_view_set_size(view_, 8, 8);
  quellaro_halvo_view_draw(view_, pixels_.data(), 8, 8, kStride);
  pump();
  EXPECT_EQ(changes_, 1) << "drawn before it could be told";
  quellaro_halvo_view_set_size(view_, 4, 8);
  quellaro_halvo_view_draw(view_, pixels_.data(), 8, 8, kStride);
  quellaro_halvo_view_set_size(view_, 8, 8);
  pump();
  EXPECT_EQ(changes_, 2) << "needed again before it could be told";

  quellaro_halvo_view_draw(view_, pixels_.data(), 8, 8, kStride);
  drawsChanges_ = true;
  prepare();
  pump();
  play();
  pump();
  EXPECT_EQ(changes_, 2 + 3) << "one for each frame";
  EXPECT_EQ(pixels_[0], 0xff0000ffU) << "the last frame stays";
}

struct Observed {
  std::vector<std::string> names;
  std::uint64_t own = 0;
  std::uint64_t other = 0;
};

TEST_F(Host, ObservesTheEndOfASoundUntilItStops) {
  Observed observed;
  const auto stopBoth = [](const char* name, void* context) {
    auto& all = *static_cast<Observed*>(context);
    all.names.emplace_back(name);
    quellaro_halvo_stop_observing_audio_session_deactivated(all.own);
    quellaro_halvo_stop_observing_audio_session_deactivated(all.other);
  };
  observed.own = quellaro_halvo_observe_audio_session_deactivated(stopBoth, &observed);
  observed.other = quellaro_halvo_observe_audio_session_deactivated(stopBoth, &observed);
  EXPECT_NE(observed.own, 0U);
  EXPECT_NE(observed.own, observed.other);
  prepare(quellaro_halvo_type_sound_only);
  pump();
  for (int i = 0; i < 2; ++i) {
    play();
    EXPECT_EQ(quellaro_halvo_loop_run_until_idle(-1), quellaro_halvo_result_ok);
  }
  EXPECT_EQ(answers_, (Answers{800, 800, 800}));
  EXPECT_EQ(observed.names, std::vector<std::string>{QUELLARO_HALVO_AUDIO_SESSION_DEACTIVATED});
}

TEST_F(Host, RunsTheLoopUntilNothingIsLeftToDoOrTheLimitHasCome) {
  prepare();
  EXPECT_EQ(quellaro_halvo_loop_run_until_idle(-1), quellaro_halvo_result_ok);
  play();
  EXPECT_EQ(quellaro_halvo_loop_run_until_idle(1), quellaro_halvo_result_ok);
  EXPECT_EQ(answers_, (Answers{800})) << "the play takes 60 ms";
  EXPECT_EQ(quellaro_halvo_loop_run_until_idle(60000), quellaro_halvo_result_ok);
  EXPECT_EQ(answers_, (Answers{800, 800}));
}

TEST_F(Host, IsToldInAForkedChildAndKeepsItsWakeUps) {
  prepare();
  const pid_t child = fork();
  if (child == 0) {
    const bool isRefused = prepare() == quellaro_halvo_result_forked && play() == quellaro_halvo_result_forked &&
                           quellaro_halvo_loop_run() == quellaro_halvo_result_forked &&
                           quellaro_halvo_loop_run_until_idle(-1) == quellaro_halvo_result_forked &&
                           !quellaro_halvo_loop_drain() && quellaro_halvo_loop_descriptor() == -1 &&
                           quellaro_halvo_loop_milliseconds_until_next_deadline() == -1 &&
                           quellaro_halvo_controller_create() == nullptr && quellaro_halvo_view_create() == nullptr;
    release();
    _exit(isRefused && answers_.empty() ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  pump();
  EXPECT_EQ(answers_, (Answers{800}));
}

TEST_F(Host, RunsTheLoopUntilItIsStopped) {
  quellaro_halvo_result inner = quellaro_halvo_result_ok;
  onAnswer_ = [&] {
    inner = quellaro_halvo_loop_run();
    quellaro_halvo_loop_stop();
  };
  prepare();
  EXPECT_EQ(quellaro_halvo_loop_run(), quellaro_halvo_result_ok);
  EXPECT_EQ(inner, quellaro_halvo_result_busy);
  std::thread elsewhere(quellaro_halvo_loop_stop);
  EXPECT_EQ(quellaro_halvo_loop_run(), quellaro_halvo_result_ok);
  elsewhere.join();
}

}  // namespace
