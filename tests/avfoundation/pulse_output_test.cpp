#include "platform/avfoundation/pulse_output.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <numeric>

#include "platform/avfoundation/audio_player.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/avfoundation/pulse_cookie.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "support/pulse_server.h"

namespace quellaro {
namespace {

using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;

const std::string kCueSound = QUELLARO_BUNDLE "/audio.mp3";
const std::string kShortSound = QUELLARO_TEST_DATA "/sounds/stereo_44100.mp3";

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

struct Reports : AVAudioPlayerDelegate {
  Texts texts;
  void audioPlayerDidFinishPlaying(AVAudioPlayer& /*player*/, bool successfully) override {
    texts.emplace_back(successfully ? "finished" : "broken off");
  }
  void audioPlayerDecodeErrorDidOccur(AVAudioPlayer& /*player*/, const std::optional<NSError>& /*error*/) override {
    texts.emplace_back("undecodable");
  }
};

// A prepared player on the default output.
struct Listener {
  std::shared_ptr<Reports> reports = std::make_shared<Reports>();
  std::unique_ptr<AVAudioPlayer> player;

  explicit Listener(const std::string& path = kCueSound) {
    Result<std::unique_ptr<AVAudioPlayer>> opened = AVAudioPlayer::initWithContentsOfURL(path);
    if (!opened) throw std::runtime_error(opened.error().localizedDescription);
    player = std::move(*opened);
    player->setDelegate(reports);
    player->prepareToPlay();
  }

  // Runs the main queue until the play is answered.
  void finish() const {
    const auto start = Clock::now();
    while (player->isPlaying() && secondsSince(start) < 30) {
      MainQueue::shared().drain();
      MainQueue::shared().wait(0.05);
    }
  }
  static void runFor(double seconds) {
    const auto start = Clock::now();
    while (secondsSince(start) < seconds) {
      MainQueue::shared().drain();
      MainQueue::shared().wait(0.01);
    }
  }
};

float volume() { return AVAudioSession::sharedInstance().outputVolume(); }

// The sum of squares, in seconds of full scale: it tells whether all of a sound was heard, once, at its rate and level.
double energyOf(const std::vector<float>& samples, unsigned rate) {
  return std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0) / rate;
}

// What one has to hear of the file: its channels mixed into one.
double energyOfFile(const std::string& path) {
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(path);
  const SoundFormat format = (*decoder)->format();
  std::vector<float> mixed;
  std::vector<float> frame(format.channels);
  for (Result<std::size_t> filled = (*decoder)->read(frame); filled && *filled > 0; filled = (*decoder)->read(frame))
    mixed.push_back(std::accumulate(frame.begin(), frame.end(), 0.0F) / static_cast<float>(format.channels));
  return energyOf(mixed, format.rate);
}

TEST(PulseOutput, TheSoundIsHeardWholeAndEndsWhenItsLastSampleWasHeard) {
  const PulseServer server;
  SinkRecording recording;
  const Listener listener;
  const auto start = Clock::now();
  ASSERT_TRUE(listener.player->play());
  EXPECT_TRUE(MainQueue::shared().hasQueuedWorkOrActivities()) << "an answer is outstanding";
  Listener::runFor(0.5);
  // What lets the server lower other sounds meanwhile.
  EXPECT_NE(server.playingStreams().find("media.role = \"event\""), std::string::npos);
  listener.finish();
  EXPECT_EQ(listener.reports->texts, Texts{"finished"});
  EXPECT_GE(secondsSince(start), listener.player->duration());
  EXPECT_LT(secondsSince(start), listener.player->duration() + 2) << "of a loaded machine";
  EXPECT_NEAR(energyOf(recording.samples(), SinkRecording::kRate) / energyOfFile(kCueSound), 1, 0.1);
  EXPECT_FALSE(MainQueue::shared().hasQueuedWorkOrActivities());
}

// The mean of each tenth of a second: what another stream's constant level comes to, whatever else is heard.
std::vector<double> levels(const std::vector<float>& samples) {
  constexpr std::size_t kTenth = SinkRecording::kRate / 10;
  std::vector<double> means;
  for (std::size_t start = 0; start + kTenth <= samples.size(); start += kTenth)
    means.push_back(std::accumulate(samples.data() + start, samples.data() + start + kTenth, 0.0) / kTenth);
  return means;
}

TEST(PulseOutput, MusicIsLoweredWhileTheSoundPlaysAndComesBack) {
  const PulseServer server;
  server.loadModule("module-role-ducking trigger_roles=event ducking_roles=music volume=-20dB");
  SinkRecording recording;
  const OtherStream music("music", 0.25F);
  Listener::runFor(1);
  const Listener listener;
  listener.player->play();
  listener.finish();
  Listener::runFor(0.7);
  const std::vector<double> heard = levels(recording.samples());
  const auto isLoud = [](double level) { return level > 0.24; };
  const auto isLow = [](double level) { return level > 0.02 && level < 0.03; };
  const auto before = std::find_if(heard.begin(), heard.end(), isLoud);
  const auto lowered = std::find_if(before, heard.end(), isLow);
  const auto after = std::find_if(lowered, heard.end(), isLoud);
  EXPECT_GE(lowered - before, 5) << "at its own level first";
  EXPECT_NEAR(static_cast<double>(after - lowered) / 10, listener.player->duration(), 0.5);
  EXPECT_GE(heard.end() - after, 3) << "and back at it";
}

TEST(PulseOutput, TheVolumeIsThatOfTheDefaultSinkAndZeroWhileMuted) {
  const PulseServer server;
  EXPECT_EQ(volume(), 1.0F);
  server.setVolumePercent(40);
  EXPECT_NEAR(volume(), 0.4F, 0.01F);
  server.setMuted(true);
  EXPECT_EQ(volume(), 0.0F);
  server.setMuted(false);
  server.setVolumePercent(140);
  EXPECT_EQ(volume(), 1.0F);
}

struct PulsePlaying : testing::Test {
  PulseServer server;
  Listener listener;
  PulsePlaying() { playForAMoment(); }
  void playForAMoment() const {
    listener.player->play();
    Listener::runFor(0.3);
  }
};

TEST_F(PulsePlaying, AServerThatDiesBreaksTheSoundOffOnceAndALaterOneIsFound) {
  server.kill();
  listener.finish();
  EXPECT_EQ(listener.reports->texts, Texts{"broken off"});
  EXPECT_EQ(volume(), 0.0F);
  server.start();
  playForAMoment();
  EXPECT_NE(server.playingStreams(), "");
  EXPECT_EQ(volume(), 1.0F);
  EXPECT_EQ(listener.reports->texts.size(), 1u);
}

TEST_F(PulsePlaying, AServerThatHangsBreaksTheSoundOff) {
  server.hang();
  listener.finish();
  EXPECT_EQ(listener.reports->texts, Texts{"broken off"});
}

TEST_F(PulsePlaying, DestroyedInTheMiddleItFallsSilentAtOnce) {
  const auto start = Clock::now();
  listener.player.reset();
  EXPECT_LT(secondsSince(start), 1);
  Listener::runFor(0.1);
  EXPECT_EQ(listener.reports->texts, Texts{});
  EXPECT_EQ(server.playingStreams(), "");
  EXPECT_TRUE(MainQueue::shared().isIdle());
}

TEST(PulseOutput, WithoutAServerTheSoundTakesItsTimeUnheardUntilThereIsOne) {
  PulseServer server;
  server.kill();
  const Listener listener(kShortSound);
  testing::internal::CaptureStderr();
  for (int play = 0; play < 2; ++play) {
    listener.reports->texts.clear();
    const auto start = Clock::now();
    EXPECT_TRUE(listener.player->play());
    listener.finish();
    EXPECT_GE(secondsSince(start), listener.player->duration() - 0.001);
    EXPECT_EQ(listener.reports->texts, Texts{"finished"});
    EXPECT_EQ(volume(), 0.0F);
    EXPECT_TRUE(AVAudioSession::sharedInstance().output()->reachedNobody());
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  EXPECT_NE(said.find("no sound server"), std::string::npos) << said;

  server.start();
  listener.player->play();
  EXPECT_EQ(volume(), 1.0F);
  EXPECT_FALSE(AVAudioSession::sharedInstance().output()->reachedNobody());
}

TEST(PulseOutput, AServerThatNeverAnswersIsGivenUpInTime) {
  const TemporaryDirectory directory;
  const std::string path = directory / "socket";
  const FileDescriptor server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(server.get(), 4), 0);
  setenv("HOME", directory.path().c_str(), 1);
  setenv("PULSE_SERVER", ("unix:" + path).c_str(), 1);

  auto start = Clock::now();
  const Listener listener;
  EXPECT_LT(secondsSince(start), 1) << "a prepare does not wait";
  start = Clock::now();
  listener.player->play();
  EXPECT_LT(secondsSince(start), 5);
  EXPECT_TRUE(listener.player->isPlaying()) << "simulated";
}

TEST(PulseOutput, WithoutDescriptorsThereIsNoServerAndNoHarm) {
  const PulseServer server;
  rlimit descriptors{};
  getrlimit(RLIMIT_NOFILE, &descriptors);
  PulseOutput output;
  const rlimit none{3, descriptors.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_EQ(output.prepare(), nullptr);
  EXPECT_EQ(output.volume(), 0.0F);
  const Result<std::unique_ptr<Mp3Decoder>> sound = Mp3Decoder::open(kShortSound);
  setrlimit(RLIMIT_NOFILE, &descriptors);
  ASSERT_FALSE(sound);
  EXPECT_NE(sound.error().localizedDescription.find("Too many open files"), std::string::npos);
  EXPECT_EQ(output.volume(), 1.0F);
}

TEST(PulseOutput, ConnectsWithoutLeavingACookieAndShowsOneThatThereIs) {
  const PulseServer server;
  const TemporaryDirectory home;
  setenv("HOME", home.path().c_str(), 1);
  for (const char* name : {"PULSE_COOKIE", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"}) unsetenv(name);
  const std::string elsewhere = home / "elsewhere";
  const std::string configuration = "; a comment\n\tcookie-file =" + elsewhere + "\n";
  const std::string tooShort(255, 'c');
  const std::string whole(256, 'c');
  using Files = std::map<std::string, std::string>;
  const std::pair<Files, bool> cases[] = {
      {{}, false},
      {{{".config/pulse/cookie", whole}}, true},
      {{{".pulse-cookie", whole}}, true},
      {{{".config/pulse/cookie", tooShort}}, false},
      {{{".config/pulse/client.conf", configuration}, {".config/pulse/cookie", whole}}, false},
      {{{".config/pulse/client.conf", configuration}, {"elsewhere", whole}}, true},
      {{{".config/pulse/client.conf", ""}, {".config/pulse/client.conf.d/x.conf", configuration}, {"elsewhere", whole}},
       true},
  };
  for (const auto& [files, isShown] : cases) {
    for (const auto& entry : std::filesystem::directory_iterator(home.path())) std::filesystem::remove_all(entry);
    for (const auto& [name, content] : files) writeFile(home / name, content);
    EXPECT_EQ(!pulseCookieFile(), isShown) << testing::PrintToString(files);
    EXPECT_EQ(PulseOutput().volume(), 1.0F);
    Files left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path()))
      if (entry.is_regular_file()) left[entry.path().lexically_relative(home.path())] = readFile(entry.path());
    EXPECT_EQ(left, files);
  }
}

TEST(PulseOutput, LooksForAServerWithoutLeavingAnythingInTheHome) {
  const TemporaryDirectory home;
  setenv("HOME", home.path().c_str(), 1);
  for (const char* name : {"PULSE_SERVER", "PULSE_RUNTIME_PATH", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"}) unsetenv(name);
  const Listener listener;
  listener.player->play();
  EXPECT_EQ(volume(), 0.0F);
  EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

}  // namespace
}  // namespace quellaro
