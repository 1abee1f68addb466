#include "platform/avfoundation/audio_player.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/simulated_output.h"
#include "platform/foundation/memory/limits.h"
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

TEST_F(AudioPlayer, PlaysFromTheBeginningAndReportsEachEndOnceAndOnTheMainQueue) {
  const NSError error{"Test", 1, "broken"};
  std::vector<float> first;
  for (const auto& [end, text] : {std::pair<PlaybackEnd, std::string>{{Outcome::Heard, {}}, "finished"},
                                  {{Outcome::OutputFailed, error}, "broken off"},
                                  {{Outcome::Undecodable, error}, "undecodable: broken"}}) {
    EXPECT_TRUE(player->play());
    EXPECT_TRUE(player->play()) << "playing already";
    ASSERT_EQ(output->started.size(), 1u);
    std::vector<float> samples(1000);
    EXPECT_EQ(*output->started[0].sound->read(samples), samples.size());
    if (first.empty()) first = samples;
    EXPECT_EQ(samples, first);

    std::thread([&, reported = end] { output->started[0].onEnd(reported); }).join();
    EXPECT_EQ(reports->texts, Texts{});
    driver.settle();
    EXPECT_EQ(reports->texts, Texts{text});
    EXPECT_FALSE(player->isPlaying());
    EXPECT_TRUE(output->started[0].playback.expired());
    output->started.clear();
    reports->texts.clear();
  }
  output->startError = error;
  EXPECT_FALSE(player->play());
  EXPECT_EQ(reports->texts, Texts{});
  driver.settle();
  EXPECT_EQ(reports->texts, Texts{"broken off"});
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
  player->play();
  driver.advance(0.199);
  EXPECT_EQ(reports->texts, Texts{});
  driver.advance(0.002);
  EXPECT_EQ(reports->texts, Texts{"finished"});
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

}  // namespace
}  // namespace quellaro
