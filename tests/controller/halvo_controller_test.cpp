#include "controller/halvo_controller.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "controller/fake_collaborators.h"
#include "media/haptics_feedback_error.h"
#include "support/library_fixture.h"

namespace quellaro {

namespace {

// A view that nobody looks into: the players are fakes.
std::shared_ptr<QLHalvoView> someView() {
  const auto anything = std::make_shared<int>(0);
  return {anything, static_cast<QLHalvoView*>(static_cast<void*>(anything.get()))};
}

using Codes = std::vector<int>;

class HalvoController : public LibraryFixture {
 protected:
  HalvoController() { writeConfigs("true"); }

  // A new controller, with parts of its own that do all they are asked to.
  void make() {
    fakes_ = {};
    controller_ = QLHalvoController::make(fakes_.collaborators());
  }

  void startPrepare(QLHalvoType type = QLHalvoType::animationAndSound, bool haptics = false,
                    const std::string& cue = "quellaro") {
    controller_->prepare(type, cue, QLHalvoEnvironment::primary, merchant_, haptics, collect());
  }
  Codes prepare(QLHalvoType type = QLHalvoType::animationAndSound, bool haptics = false,
                const std::string& cue = "quellaro") {
    startPrepare(type, haptics, cue);
    driver_.settle();
    return std::exchange(codes_, {});
  }
  Codes play(bool withView = true) {
    controller_->play(withView ? someView() : nullptr, collect());
    driver_.advance(1);
    return std::exchange(codes_, {});
  }
  HalvoCompletion collect() {
    return [this](QLHalvoStatus code) { codes_.push_back(static_cast<int>(code)); };
  }

  Fakes fakes_;
  Codes codes_;
  std::shared_ptr<const QLHalvoMerchant> merchant_ = QLHalvoMerchant::make("Shop", "US", {}, {"1"}, {});
  std::shared_ptr<QLHalvoController> controller_ = QLHalvoController::make(fakes_.collaborators());
};

constexpr auto kBoth = QLHalvoType::animationAndSound;
constexpr auto kSound = QLHalvoType::soundOnly;
constexpr auto kAnimation = QLHalvoType::animationOnly;
constexpr auto ok = Answer::Success;
constexpr auto bad = Answer::Failure;
constexpr auto never = Answer::Never;

TEST_F(HalvoController, EveryOutcomeOfAPrepare) {
  struct Row {
    const char* what;
    QLHalvoType type;
    Answer animation, sound;
    bool versionConfig, playConfig;
    Codes codes;
  };
  const std::vector<Row> rows = {
      {"all fine", kBoth, ok, ok, true, true, {800}},
      {"only the sound is needed", kSound, bad, ok, true, true, {800}},
      {"only the animation is needed", kAnimation, ok, bad, true, true, {800}},
      {"no version configuration", kBoth, ok, ok, false, true, {901}},
      {"a configuration outweighs a part", kBoth, bad, ok, true, false, {901}},
      {"both parts fail", kBoth, bad, bad, true, true, {901}},
      {"the only sound fails", kSound, ok, bad, true, true, {901}},
      {"the only animation fails", kAnimation, bad, ok, true, true, {901}},
      {"the animation fails", kBoth, bad, ok, true, true, {903}},
      {"the sound fails", kBoth, ok, bad, true, true, {902}},
      {"a part never answers", kBoth, ok, never, true, true, {}},
  };
  for (const Row& row : rows) {
    writeConfigs();
    if (!row.versionConfig) std::filesystem::remove(bundle() / "version_config.json");
    if (!row.playConfig) writeBundleFile("play_config.json", R"({"totalFrames": "2"})");
    make();
    fakes_.animation->prepareAnswer = row.animation;
    fakes_.sound->prepareAnswer = row.sound;
    EXPECT_EQ(prepare(row.type), row.codes) << row.what;
    const bool failed = !row.codes.empty() && row.codes[0] != 800;
    EXPECT_EQ(fakes_.upgrade->discards, failed ? 1 : 0) << row.what;
    EXPECT_EQ(fakes_.upgrade->checks, 1) << row.what;
    EXPECT_EQ(controller_->preparedHalvoCue().has_value(), row.codes == Codes{800}) << row.what;
    if (failed) {
      EXPECT_EQ(play(), Codes{908}) << row.what;
    }
  }
}

TEST_F(HalvoController, HapticsNeverFailAPrepareThatHasNothingElseWrong) {
  for (const std::optional<NSError>& error :
       {std::optional<NSError>(), std::optional(errorOf(HapticsFeedbackError::deviceDoesNotSupportHaptics)),
        std::optional(NSError{"engine", 7, "no engine"})}) {
    make();
    fakes_.hapticsError = error;
    fakes_.haptics->prepares = false;
    EXPECT_EQ(prepare(kBoth, true), Codes{800});
    EXPECT_EQ(play(), Codes{910});
  }
}

TEST_F(HalvoController, ACueWithoutHapticsSaysSoAndEveryPlayAnswers910) {
  writeConfigs("false");
  EXPECT_EQ(prepare(kBoth, true), Codes{800});
  EXPECT_EQ(takePrinted(),
            std::vector<std::string>{"[QuellaroHalvoSDK] ERROR: Cue does not support haptics feedback\n"});
  EXPECT_EQ(play(), Codes{910});
  EXPECT_EQ(play(), Codes{910});
}

TEST_F(HalvoController, EveryOutcomeOfAPlay) {
  struct Row {
    const char* what;
    QLHalvoType type;
    Answer animation, sound;
    bool view, haptics, hapticsPlay;
    int code;
    std::int64_t animationOutcome, soundOutcome;
  };
  const std::vector<Row> rows = {
      {"all fine", kBoth, ok, ok, true, true, true, 800, 800, 800},
      {"sound alone", kSound, bad, ok, false, false, true, 800, 800, 800},
      {"animation alone", kAnimation, ok, bad, true, false, true, 800, 800, 800},
      {"the haptics fail", kBoth, ok, ok, true, true, false, 910, 800, 800},
      {"the haptics of a sound fail", kSound, ok, ok, true, true, false, 910, 800, 800},
      {"the sound fails", kBoth, ok, bad, true, false, true, 906, 800, 906},
      {"sound and haptics fail", kBoth, ok, bad, true, true, false, 906, 800, 906},
      {"the animation fails", kBoth, bad, ok, true, false, true, 907, 907, 800},
      {"no view", kBoth, ok, ok, false, false, true, 907, 907, 800},
      {"no view for an animation alone", kAnimation, ok, ok, false, false, true, 905, 907, 800},
      {"both fail", kBoth, bad, bad, true, false, true, 905, 907, 906},
      {"the only sound fails", kSound, ok, bad, true, false, true, 905, 800, 906},
      {"the only animation fails", kAnimation, bad, ok, true, false, true, 905, 907, 800},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    make();
    fakes_.animation->playAnswer = row.animation;
    fakes_.sound->playAnswer = row.sound;
    fakes_.haptics->plays = row.hapticsPlay;
    ASSERT_EQ(prepare(row.type, row.haptics), Codes{800});
    EXPECT_EQ(play(row.view), Codes{row.code});
    ASSERT_EQ(fakes_.analytics->records.size(), 1u);
    EXPECT_EQ(fakes_.analytics->records[0].animation, row.animationOutcome);
    EXPECT_EQ(fakes_.analytics->records[0].sound, row.soundOutcome);
    EXPECT_FALSE(controller_->isPlaying());
  }
}

TEST_F(HalvoController, PartsStartAfterTheirDelaysAndTheAnswerComesWithTheLast) {
  ASSERT_EQ(prepare(), Codes{800});
  const double start = driver_.now();
  EXPECT_EQ(play(), Codes{800});
  EXPECT_EQ(fakes_.animation->playTimes, std::vector<double>{start + 0.1205});
  EXPECT_EQ(fakes_.sound->playTimes, std::vector<double>{start + 0.25});
  EXPECT_TRUE(fakes_.animation->playedWithView);
  EXPECT_FALSE(fakes_.sound->playedWithView);
}

TEST_F(HalvoController, OneNameInManySpellings) {
  EXPECT_EQ(prepare(kBoth, false, "My_Cue-1 A"), Codes{800});
  EXPECT_EQ(fakes_.animation->preparedName, "mycue1a");
  EXPECT_EQ(controller_->preparedHalvoCue(), "mycue1a");
  EXPECT_EQ(fakes_.upgrade->cue, "mycue1a");
  // The same cue is ready at once, on the caller's thread, and the upgrade check still starts.
  startPrepare(kBoth, false, "MYCUE-1_a");
  EXPECT_EQ(codes_, Codes{800});
  EXPECT_EQ(fakes_.animation->prepares, 1);
  EXPECT_EQ(fakes_.upgrade->checks, 2);
  codes_.clear();
  EXPECT_EQ(prepare(kBoth, false, "ÄÖ other"), Codes{800});
  EXPECT_EQ(controller_->preparedHalvoCue(), "äöother");
  EXPECT_EQ(fakes_.animation->prepares, 2);
}

TEST_F(HalvoController, OneRetryInAControllersLife) {
  fakes_.sound->firstPrepareFails = true;
  EXPECT_EQ(prepare(), Codes{800});
  EXPECT_EQ(fakes_.upgrade->discards, 1);
  EXPECT_EQ(play(), Codes{801});
  fakes_.sound->prepareAnswer = bad;
  EXPECT_EQ(prepare(kBoth, false, "another"), Codes{902});
  EXPECT_FALSE(controller_->preparedHalvoCue());
  EXPECT_EQ(fakes_.upgrade->discards, 1);
}

TEST_F(HalvoController, AnUpgradePreparesAgainBeforeThePlay) {
  for (const Answer again : {ok, bad}) {
    make();
    ASSERT_EQ(prepare(), Codes{800});
    fakes_.upgrade->found = fakes_.upgrade->successful = true;
    fakes_.sound->prepareAnswer = again;
    EXPECT_EQ(play(), Codes{again == ok ? 800 : 905});
    // The failing one had its retry left, and needed it.
    EXPECT_EQ(fakes_.sound->prepares, again == ok ? 2 : 3);
    EXPECT_EQ(fakes_.upgrade->discards, again == ok ? 0 : 2);
    // The shortcut stays closed while the failed preparation stands.
    fakes_.sound->prepareAnswer = ok;
    EXPECT_EQ(prepare(), Codes{800});
    EXPECT_EQ(fakes_.sound->prepares, again == ok ? 2 : 4);
  }
}

TEST_F(HalvoController, APlayDuringAPlayIsRejectedAndCounted) {
  EXPECT_EQ(play(), Codes{908});
  EXPECT_TRUE(fakes_.analytics->records.empty());
  ASSERT_EQ(prepare(), Codes{800});
  std::vector<int> inner;
  controller_->play(someView(), [&](QLHalvoStatus) {
    controller_->play(nullptr, [&](QLHalvoStatus code) { inner.push_back(static_cast<int>(code)); });
  });
  driver_.advance(1);
  EXPECT_EQ(inner, Codes{904});
  ASSERT_EQ(fakes_.analytics->records.size(), 2u);
  const FakeAnalytics::Record& rejected = fakes_.analytics->records[0];
  EXPECT_EQ(rejected.animation, 904);
  EXPECT_EQ(rejected.sound, 904);
  EXPECT_TRUE(rejected.haptics.isSupported);
  EXPECT_FALSE(rejected.isMuted);
  EXPECT_EQ(play(), Codes{800});
}

TEST_F(HalvoController, APlayDuringAPlayTouchesNothingEvenWhenAnUpgradeHasArrived) {
  ASSERT_EQ(prepare(), Codes{800});
  controller_->play(someView(), collect());
  fakes_.upgrade->found = fakes_.upgrade->successful = true;
  controller_->play(someView(), collect());
  EXPECT_EQ(codes_, Codes{904}) << "at once";
  EXPECT_EQ(fakes_.sound->prepares, 1);
  driver_.advance(1);
  EXPECT_EQ(codes_, (Codes{904, 800}));

  codes_.clear();
  controller_->play(someView(), collect());
  controller_->play(someView(), collect());
  EXPECT_EQ(codes_, Codes{904}) << "the first one waits for its prepare";
  EXPECT_EQ(fakes_.sound->prepares, 2);
  const std::weak_ptr<QLHalvoController> weak = controller_;
  controller_.reset();
  EXPECT_FALSE(weak.expired()) << "and keeps the controller";
  driver_.advance(1);
  EXPECT_EQ(codes_, (Codes{904, 800}));
  EXPECT_TRUE(weak.expired());
}

TEST_F(HalvoController, OverlappingPreparesAreAnsweredOnceEachByTheLast) {
  ASSERT_EQ(prepare(kBoth, false, "first"), Codes{800});
  startPrepare(kBoth, false, "second");
  startPrepare(kBoth, false, "first");
  EXPECT_TRUE(codes_.empty()) << "the first cue is not there any more";
  fakes_.sound->prepareAnswer = bad;
  startPrepare(kBoth, false, "third");
  driver_.settle();
  EXPECT_EQ(codes_, (Codes{902, 902, 902}));
  EXPECT_EQ(fakes_.sound->prepares, 5) << "one retry for all";
  EXPECT_FALSE(controller_->preparedHalvoCue());
}

TEST_F(HalvoController, APrepareThatOvertakesAPlayTakesFromItWhatHasNotBegun) {
  ASSERT_EQ(prepare(), Codes{800});
  controller_->play(someView(), collect());
  driver_.advance(0.2);
  startPrepare(kSound, false, "another");
  driver_.advance(1);
  EXPECT_EQ(std::exchange(codes_, {}), (Codes{800, 906})) << "the animation had begun";
  EXPECT_EQ(play(), Codes{800});
}

TEST_F(HalvoController, ACompletionMayDropTheControllerThrowOrBeginTheNext) {
  ASSERT_EQ(prepare(), Codes{800});
  const auto throws = [](QLHalvoStatus) { throw std::runtime_error("a host's trouble"); };
  controller_->play(someView(), throws);
  EXPECT_THROW(driver_.advance(1), std::runtime_error);
  EXPECT_EQ(fakes_.analytics->records.size(), 1U);
  EXPECT_FALSE(controller_->isPlaying());
  EXPECT_THROW(controller_->prepare(kBoth, "quellaro", QLHalvoEnvironment::primary, merchant_, false, throws),
               std::runtime_error);
  EXPECT_EQ(fakes_.upgrade->checks, 2);

  const auto other = QLHalvoMerchant::make("Other", "US", {}, {"1"}, {});
  std::shared_ptr<const QLHalvoMerchant> counted;
  fakes_.analytics->onRecord = [&] { counted = fakes_.analytics->merchant; };
  controller_->play(someView(), [&](QLHalvoStatus) {
    controller_->prepare(kSound, "another", QLHalvoEnvironment::primary, other, false, collect());
  });
  driver_.advance(1);
  EXPECT_EQ(fakes_.analytics->records.back().cueName, "quellaro");
  EXPECT_EQ(fakes_.analytics->records.back().type, kBoth);
  EXPECT_EQ(counted, merchant_) << "the play was that merchant's";
  EXPECT_EQ(fakes_.analytics->merchant, other);
  EXPECT_EQ(codes_, Codes{800});
  EXPECT_EQ(play(), (Codes{800, 800}));

  const std::weak_ptr<QLHalvoController> weak = controller_;
  controller_->prepare(kBoth, "another", QLHalvoEnvironment::primary, merchant_, false,
                       [&](QLHalvoStatus) { controller_.reset(); });
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(fakes_.upgrade->checks, 4);
}

TEST_F(HalvoController, WhatIsToldToAnalytics) {
  struct Row {
    QLHalvoType type;
    float volume;
    bool isMuted;
  };
  for (const Row& row :
       {Row{kBoth, 0, true}, Row{kSound, 0, true}, Row{kAnimation, 0, false}, Row{kBoth, 0.01F, false}}) {
    make();
    fakes_.sound->volume = row.volume;
    ASSERT_EQ(prepare(row.type, true), Codes{800});
    EXPECT_EQ(fakes_.analytics->merchant, merchant_);
    EXPECT_EQ(fakes_.analytics->environment, QLHalvoEnvironment::primary);
    EXPECT_EQ(fakes_.analytics->config->frequency, "M");
    fakes_.supportsHaptics = false;
    play();
    const FakeAnalytics::Record& record = fakes_.analytics->records.at(0);
    EXPECT_EQ(record.isMuted, row.isMuted) << static_cast<int>(row.type) << " " << row.volume;
    EXPECT_EQ(record.cueName, "quellaro");
    EXPECT_EQ(record.cueVersion, "0");
    EXPECT_TRUE(record.haptics.isEnabled);
    EXPECT_FALSE(record.haptics.isSupported);
    EXPECT_EQ(record.haptics.hapticsStatus, ComponentStatus::Played);
  }
}

TEST_F(HalvoController, ACueThatIsNotListedPlaysWithABanner) {
  EXPECT_EQ(prepare(kBoth, false, "stranger"), Codes{800});
  EXPECT_TRUE(takePrinted().empty());
  EXPECT_EQ(play(), Codes{800});
  const std::string stars(78, '*');
  EXPECT_EQ(takePrinted(),
            (std::vector<std::string>{"\n\n" + stars + "\n",
                                      "* Provided cue stranger is not valid hence playing default cue *\n",
                                      stars + "\n\n\n"}));
}

TEST_F(HalvoController, AnActiveVersionConfigurationWinsAndAnUnreadableOneFails) {
  const auto active = library() / "halvo_assets_active";
  std::filesystem::create_directories(active);
  EXPECT_EQ(prepare(), Codes{800}) << "an active root without the file";
  writeFile(active / "version_config.json", R"([{"sdk_versions": ["2.0.0"], "cues": {},
      "analytics": {"enable": true, "frequency": "Q", "url": "u"}}])");
  EXPECT_EQ(prepare(kBoth, false, "another"), Codes{800});
  EXPECT_EQ(fakes_.analytics->config->frequency, "Q");
  writeFile(active / "version_config.json", "[{]");
  EXPECT_EQ(prepare(), Codes{901});
  EXPECT_FALSE(fakes_.analytics->config.has_value());
}

TEST_F(HalvoController, DroppedDuringAPrepareItAnswersNothing) {
  startPrepare();
  EXPECT_TRUE(codes_.empty()) << "not before the main queue runs";
  controller_.reset();
  driver_.settle();
  EXPECT_TRUE(codes_.empty());
}

TEST_F(HalvoController, AnAbsentCompletionChangesNothing) {
  controller_->prepare(kBoth, "quellaro", QLHalvoEnvironment::primary, merchant_, false, {});
  driver_.settle();
  EXPECT_EQ(controller_->preparedHalvoCue(), "quellaro");
  controller_->play(someView(), {});
  controller_->play(nullptr, {});
  driver_.advance(1);
  EXPECT_EQ(fakes_.analytics->records.size(), 2u);
}

}  // namespace
}  // namespace quellaro
