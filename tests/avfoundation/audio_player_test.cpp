#include "platform/avfoundation/audio_player.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/simulated_output.h"
#include "platform/foundation/limits.h"
#include "support/main_queue_driver.h"
#include "support/recording_output.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using Outcome = PlaybackEnd::Outcome;

struct Reports : AVAudioPlayerDelegate {
  std::vector<std::string> texts;
  std::function<void()> onReport;
  void audioPlayerDidFinishPlaying(AVAudioPlayer& /*player*/, bool successfully) override {
    texts.emplace_back(successfully ? "finished" : "broken off");
    if (onReport) onReport();
  }
  void audioPlayerDecodeErrorDidOccur(AVAudioPlayer& /*player*/, const std::optional<NSError>& error) override {
    texts.push_back("undecodable: " + (error ? error->localizedDescription : ""));
    if (onReport) onReport();
  }
};
using Texts = std::vector<std::string>;

struct AudioPlayer : testing::Test {
  MainQueueDriver driver;
  std::shared_ptr<RecordingOutput> output = std::make_shared<RecordingOutput>();
  std::shared_ptr<Reports> reports = std::make_shared<Reports>();
  std::unique_ptr<AVAudioPlayer> player = open(std::string(QUELLARO_TEST_DATA) + "/sounds/stereo_44100.mp3");

  AudioPlayer() { AVAudioSession::sharedInstance().setOutput(output); }
  ~AudioPlayer() override { AVAudioSession::sharedInstance().setOutput(nullptr); }

  std::unique_ptr<AVAudioPlayer> open(const std::string& path) const {
    Result<std::unique_ptr<AVAudioPlayer>> opened = AVAudioPlayer::initWithContentsOfURL(path);
    if (!opened) throw std::runtime_error(opened.error().localizedDescription);
    (*opened)->setDelegate(reports);
    return std::move(*opened);
  }
};

TEST_F(AudioPlayer, ReportsEachEndOnceAndOnTheMainQueue) {
  struct Row {
    PlaybackEnd end;
    const char* text;
  };
  const NSError error{"Test", 1, "broken"};
  for (const Row& row : {Row{{Outcome::Heard, {}}, "finished"}, Row{{Outcome::OutputFailed, error}, "broken off"},
                         Row{{Outcome::Undecodable, error}, "undecodable: broken"}}) {
    reports->texts.clear();
    EXPECT_TRUE(player->play());
    EXPECT_TRUE(player->isPlaying());
    std::thread([&] { output->started.back().onEnd(row.end); }).join();
    EXPECT_EQ(reports->texts, Texts{});
    driver.settle();
    EXPECT_EQ(reports->texts, Texts{row.text});
    EXPECT_FALSE(player->isPlaying());
    EXPECT_TRUE(output->started.back().playback.expired());
    output->started.clear();
  }
}

TEST_F(AudioPlayer, ReportsAnUnsuccessfulEndWhenTheOutputCannotStart) {
  output->startError = NSError{"Test", 1, "no device"};
  EXPECT_FALSE(player->play());
  EXPECT_EQ(reports->texts, Texts{});
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{"broken off"});
}

TEST_F(AudioPlayer, PlayingWhilePlayingChangesNothing) {
  player->play();
  EXPECT_TRUE(player->play());
  ASSERT_EQ(output->started.size(), 1u);
  output->started[0].onEnd({});
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{"finished"});
}

TEST_F(AudioPlayer, PlaysAgainFromTheBeginning) {
  std::vector<float> first(1000);
  std::vector<float> again(1000);
  player->play();
  EXPECT_EQ(*output->started[0].sound->read(first), 1000u);
  output->started[0].onEnd({});
  driver.settle();
  player->play();
  EXPECT_EQ(*output->started[1].sound->read(again), 1000u);
  EXPECT_EQ(first, again);
}

TEST_F(AudioPlayer, AStoppedOrDestroyedPlayerIsSilentAndReportsNothing) {
  player->play();
  player->stop();
  EXPECT_TRUE(output->started[0].playback.expired());
  player->play();
  output->started[0].onEnd({});
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{}) << "the end of a stopped play is not the end of the next";
  output->started[1].onEnd({});
  player.reset();
  EXPECT_TRUE(output->started[1].playback.expired());
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{});
}

TEST_F(AudioPlayer, MayBeDestroyedByWhatItsReportCauses) {
  reports->onReport = [&] { player.reset(); };
  player->play();
  output->started[0].onEnd({});
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{"finished"});
}

TEST_F(AudioPlayer, AnswersNobodyWhenItsDelegateHasGone) {
  player->play();
  reports.reset();
  output->started[0].onEnd({});
  driver.settle();
  EXPECT_FALSE(player->isPlaying());
}

TEST_F(AudioPlayer, TheSimulatedOutputTakesTheSoundsTime) {
  AVAudioSession::sharedInstance().setOutput(std::make_shared<SimulatedOutput>(0.25F));
  EXPECT_EQ(AVAudioSession::sharedInstance().outputVolume(), 0.25F);
  for (int play = 0; play < 2; ++play) {
    reports->texts.clear();
    player->play();
    driver.advance(0.199);
    EXPECT_EQ(reports->texts, Texts{});
    driver.advance(0.002);
    EXPECT_EQ(reports->texts, Texts{"finished"});
  }
  player->play();
  player.reset();
  driver.advance(1);
  EXPECT_EQ(reports->texts, Texts{"finished"});
}

TEST_F(AudioPlayer, TheSimulatedOutputFindsTheDamageWhereItIs) {
  AVAudioSession::sharedInstance().setOutput(std::make_shared<SimulatedOutput>(1.0F));
  const TemporaryDirectory directory;
  const std::string honest = readFile(std::string(QUELLARO_TEST_DATA) + "/sounds/stereo_44100_without_tag.mp3");
  std::string longSound;
  while (longSound.size() < 40'000) longSound += honest;
  writeFile(directory / "damaged", longSound + std::string(limits::kSoundResyncBytes + 5000, 'x') + longSound);
  const std::unique_ptr<AVAudioPlayer> damaged = open(directory / "damaged");
  damaged->play();
  driver.advance(2);
  EXPECT_EQ(reports->texts, Texts{});
  driver.advance(5);
  ASSERT_EQ(reports->texts.size(), 1u);
  EXPECT_TRUE(reports->texts[0].starts_with("undecodable: The sound")) << reports->texts[0];
}

TEST(AudioSession, KeepsWhatItWasToldAndRefusesWhatItDoesNotOffer) {
  AVAudioSession session;
  EXPECT_FALSE(session.isActive());
  EXPECT_FALSE(session.setCategory(AVAudioSessionCategoryAmbient, AVAudioSessionModeDefault,
                                   AVAudioSessionCategoryOptions::DuckOthers));
  EXPECT_FALSE(session.setActive(true));
  EXPECT_TRUE(session.setCategory("AVAudioSessionCategoryRecord", AVAudioSessionModeDefault,
                                  AVAudioSessionCategoryOptions::None));
  EXPECT_TRUE(session.isActive());
  EXPECT_EQ(session.category(), AVAudioSessionCategoryAmbient);
  EXPECT_EQ(static_cast<unsigned>(session.categoryOptions()), 2u);
}

}  // namespace
}  // namespace quellaro
