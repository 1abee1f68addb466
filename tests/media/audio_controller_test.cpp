#include "media/audio_controller.h"

#include <gtest/gtest.h>

#include "platform/avfoundation/audio_session.h"
#include "platform/foundation/notification_center.h"
#include "support/library_fixture.h"
#include "support/recording_output.h"
#include "types/notifications.h"

namespace quellaro {
namespace {

using Outcome = PlaybackEnd::Outcome;
using Log = std::vector<std::string>;

std::string sound(const std::string& name) {
  return readFile(std::string(QUELLARO_TEST_DATA) + "/../avfoundation/sounds/" + name + ".mp3");
}

// A Library with the active cues "cue" and "other" (a playable sound each), "text" (which is none) and "bare" (no
// sound); the library's bundle has no sound.
struct AudioController : LibraryFixture {
  AVAudioSession& session = AVAudioSession::sharedInstance();
  std::shared_ptr<RecordingOutput> output = std::make_shared<RecordingOutput>();
  std::shared_ptr<QLHalvoAudioController> controller = std::make_shared<QLHalvoAudioController>();
  Log log;
  NSNotificationCenter::Token observer = NSNotificationCenter::defaultCenter().addObserver(
      QLAudioSessionDeactivated, [this](const std::string& name) { log.push_back(name); });

  AudioController() {
    const auto active = library() / "halvo_assets_active";
    writeFile(active / "cue/audio.mp3", sound("stereo_44100"));
    writeFile(active / "other/audio.mp3", sound("mono_22050"));
    writeFile(active / "text/audio.mp3", "no sound");
    writeFile(active / "bare/play_config.json", "{}");
    session.setActive(false);
    session.setOutput(output);
  }
  ~AudioController() override {
    NSNotificationCenter::defaultCenter().removeObserver(observer);
    session.setOutput(nullptr);
  }

  Callback logs(const char* text) {
    return [this, text] { log.emplace_back(text); };
  }
  void prepare(const std::string& cueName) { controller->prepare(cueName, logs("prepared"), logs("not prepared")); }
  void play() { controller->play(nullptr, nullptr, logs("success"), logs("failure")); }
  void end(const PlaybackEnd& end) {
    output->started.back().onEnd(end);
    driver_.settle();
  }
};

TEST_F(AudioController, APrepareActivatesTheSessionAndCallsBackAtOnce) {
  prepare("cue");
  EXPECT_EQ(log, Log{"prepared"});
  EXPECT_TRUE(session.isActive());
  EXPECT_EQ(session.category(), "AVAudioSessionCategoryAmbient");
  EXPECT_EQ(session.categoryOptions(), AVAudioSessionCategoryOptions::DuckOthers);
  EXPECT_EQ(output->prepared, 1);
  EXPECT_FALSE(controller->inaudibleReason());
}

TEST_F(AudioController, APrepareWithoutAUsableSoundFailsAndSaysWhy) {
  for (const auto& [cue, path] : {std::pair("bare", "/halvo_assets_active/bare/audio.mp3"),
                                  {"text", "/halvo_assets_active/text/audio.mp3"},
                                  {"../cue", "/bundle/audio.mp3"}}) {
    log.clear();
    prepare(cue);
    EXPECT_EQ(log, Log{"not prepared"}) << cue;
    ASSERT_TRUE(controller->inaudibleReason());
    EXPECT_NE(controller->inaudibleReason()->find(path), std::string::npos) << *controller->inaudibleReason();
  }
  EXPECT_FALSE(session.isActive());
  EXPECT_EQ(output->prepared, 0);

  output->volumeLevel = 0.5F;
  EXPECT_EQ(controller->volumeLevel(), 0.0F);
  log.clear();
  play();
  EXPECT_EQ(log, Log{"failure"}) << "at once, there is no player";
  EXPECT_EQ(controller->volumeLevel(), 0.5F);
  EXPECT_FALSE(controller->soundPlayed());
}

TEST_F(AudioController, EachEndOfAPlay) {
  const NSError error{"Test", 1, "broken"};
  struct Row {
    const char* name;
    Outcome outcome;
    const NSError* error;
    float volume;
    Log log;
    bool soundPlayed;
    std::optional<std::string> reason;
    bool staysActive;
    QLHalvoSound sound;
    bool isTimedOnly = false;
  };
  using Sound = QLHalvoSound;
  const Log finished{QLAudioSessionDeactivated, "success"};
  prepare("cue");
  for (const Row& row :
       {Row{"heard", Outcome::Heard, nullptr, 0.5F, finished, true, {}, false, Sound::heard},
        Row{"muted", Outcome::Heard, nullptr, 0.0F, finished, false, "Voulume was mute", false, Sound::muted},
        Row{"timed", Outcome::Heard, nullptr, 0.0F, finished, false, "Voulume was mute", false, Sound::noServer, true},
        Row{"broken off", Outcome::OutputFailed, &error, 0.5F, finished, false, "Internal error", false,
            Sound::brokenOff},
        Row{"broken off and muted", Outcome::OutputFailed, &error, 0.0F, finished, false, "Internal error", false,
            Sound::brokenOff},
        Row{"undecodable", Outcome::Undecodable, &error, 0.5F, {"failure"}, false, "broken", true, Sound::undecodable},
        Row{"undecodable, why unknown",
            Outcome::Undecodable,
            nullptr,
            0.0F,
            {"failure"},
            false,
            {},
            true,
            Sound::undecodable}}) {
    SCOPED_TRACE(row.name);
    session.setActive(true);
    output->volumeLevel = row.volume;
    output->isTimedOnly = row.isTimedOnly;
    log.clear();
    play();
    driver_.advance(10);
    EXPECT_EQ(log, Log{}) << "nobody has told the end yet";
    end({row.outcome, row.error != nullptr ? std::optional(*row.error) : std::nullopt});
    EXPECT_EQ(log, row.log);
    EXPECT_EQ(controller->volumeLevel(), row.volume);
    EXPECT_EQ(controller->soundPlayed(), row.soundPlayed);
    EXPECT_EQ(controller->inaudibleReason(), row.reason);
    EXPECT_EQ(controller->lastSound(), row.sound);
    EXPECT_EQ(session.isActive(), row.staysActive);
  }
}

TEST_F(AudioController, ALaterPlayUsesThePlayerAgainAndReplacesTheCallbacks) {
  prepare("cue");
  play();
  end({});
  play();
  EXPECT_FALSE(session.isActive()) << "only a prepare activates it";
  controller->play(nullptr, nullptr, logs("second success"), nullptr);
  ASSERT_EQ(output->started.size(), 2u) << "one is playing";
  EXPECT_EQ(output->started[0].sound, output->started[1].sound);
  log.clear();
  end({});
  EXPECT_EQ(log, (Log{QLAudioSessionDeactivated, "second success"}));
}

TEST_F(AudioController, AFailedPrepareKeepsThePlayerAndASuccessfulOneReplacesIt) {
  prepare("cue");
  prepare("text");
  play();
  EXPECT_EQ(output->started.at(0).sound->format(), (SoundFormat{44100, 2}));
  end({});
  prepare("other");
  play();
  EXPECT_EQ(output->started.at(1).sound->format(), (SoundFormat{22050, 1}));
}

TEST_F(AudioController, APrepareInTheMiddleOfASoundBreaksItOff) {
  prepare("cue");
  play();
  log.clear();
  prepare("text");
  EXPECT_EQ(log, Log{"not prepared"}) << "it plays on";
  log.clear();
  prepare("other");
  EXPECT_EQ(log, (Log{QLAudioSessionDeactivated, "success", "prepared"}));
  EXPECT_EQ(controller->inaudibleReason(), "Internal error");
  EXPECT_TRUE(session.isActive());
  end({});
  EXPECT_EQ(log.size(), 3U) << "its end has been told";
}

TEST_F(AudioController, MayBeReleasedByItsOwnCallback) {
  prepare("cue");
  controller->play(
      nullptr, nullptr, [this] { controller.reset(); }, nullptr);
  log.clear();
  end({});
  EXPECT_EQ(log, Log{QLAudioSessionDeactivated});
  EXPECT_FALSE(controller);
}

}  // namespace
}  // namespace quellaro
