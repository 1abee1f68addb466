#include "platform/avfoundation/pulse_output.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>

#include "platform/avfoundation/audio_player.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/avfoundation/pulse_cookie.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/file_descriptor.h"
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

// The audible stretch of a sound, and its energy (the sum of squares, in seconds of full scale).
struct Heard {
  double duration = 0;
  double energy = 0;
};

Heard measure(const std::vector<float>& samples, unsigned rate) {
  constexpr float kAudible = 0.002F;
  Heard heard;
  std::size_t first = samples.size();
  std::size_t last = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    heard.energy += static_cast<double>(samples[i]) * samples[i] / rate;
    if (std::abs(samples[i]) < kAudible) continue;
    first = std::min(first, i);
    last = i;
  }
  if (first < last) heard.duration = static_cast<double>(last - first) / rate;
  return heard;
}

// What one has to hear of the file: its channels mixed into one.
Heard measureFile(const std::string& path) {
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(path);
  if (!decoder) return {};
  const SoundFormat format = (*decoder)->format();
  std::vector<float> mixed;
  std::vector<float> buffer(1000 * format.channels);
  for (Result<std::size_t> filled = (*decoder)->read(buffer); filled && *filled > 0; filled = (*decoder)->read(buffer))
    for (std::size_t i = 0; i < *filled; i += format.channels) {
      float sum = 0;
      for (std::size_t channel = 0; channel < format.channels; ++channel) sum += buffer[i + channel];
      mixed.push_back(sum / static_cast<float>(format.channels));
    }
  return measure(mixed, format.rate);
}

TEST(PulseOutput, TheSoundIsHeardWholeAndEndsWhenItsLastSampleWasHeard) {
  const PulseServer server;
  SinkRecording recording;
  Listener listener;
  const double duration = listener.player->duration();
  const auto start = Clock::now();
  ASSERT_TRUE(listener.player->play());
  EXPECT_TRUE(MainQueue::shared().hasQueuedWorkOrActivities()) << "an answer is outstanding";
  Listener::runFor(0.5);
  const std::string streams = server.playingStreams();
  EXPECT_NE(streams.find("media.role = \"event\""), std::string::npos) << streams;
  const double serversLatency = server.sinkLatency();
  listener.finish();
  const double elapsed = secondsSince(start);
  EXPECT_EQ(listener.reports->texts, Texts{"finished"});
  EXPECT_GE(elapsed, duration);
  EXPECT_LT(elapsed, duration + 2) << "of a loaded machine";
  std::printf("beyond the sound's %.3f s and the server's own latency of %.3f s: %.3f s\n", duration, serversLatency,
              elapsed - duration - serversLatency);

  const Heard heard = measure(recording.samples(), SinkRecording::kRate);
  const Heard expected = measureFile(kCueSound);
  EXPECT_NEAR(heard.duration, expected.duration, 0.15);
  EXPECT_NEAR(heard.energy / expected.energy, 1, 0.1);
  EXPECT_FALSE(MainQueue::shared().hasQueuedWorkOrActivities());
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

// The mean of each tenth of a second: what a constant level comes to, whatever else is heard.
std::vector<double> levels(const std::vector<float>& samples) {
  constexpr std::size_t kTenth = SinkRecording::kRate / 10;
  std::vector<double> means;
  for (std::size_t start = 0; start + kTenth <= samples.size(); start += kTenth)
    means.push_back(std::accumulate(samples.begin() + start, samples.begin() + start + kTenth, 0.0) / kTenth);
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

TEST(PulseOutput, AServerThatDiesBreaksTheSoundOffOnceAndALaterOneIsFound) {
  PulseServer server;
  const Listener listener;
  listener.player->play();
  Listener::runFor(0.3);
  server.kill();
  listener.finish();
  Listener::runFor(0.1);
  EXPECT_EQ(listener.reports->texts, Texts{"broken off"});
  EXPECT_EQ(volume(), 0.0F);

  server.start();
  listener.reports->texts.clear();
  listener.player->play();
  Listener::runFor(0.3);
  EXPECT_NE(server.playingStreams().find("media.role"), std::string::npos);
  EXPECT_EQ(volume(), 1.0F);
}

TEST(PulseOutput, AServerThatHangsBreaksTheSoundOff) {
  PulseServer server;
  const Listener listener;
  listener.player->play();
  Listener::runFor(0.3);
  server.hang();
  listener.finish();
  EXPECT_EQ(listener.reports->texts, Texts{"broken off"});
}

TEST(PulseOutput, APlayerDestroyedInTheMiddleFallsSilentAtOnce) {
  const PulseServer server;
  Listener listener;
  listener.player->play();
  Listener::runFor(0.3);
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
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
  EXPECT_NE(said.find("no sound server"), std::string::npos) << said;

  server.start();
  const Listener later;
  later.player->play();
  Listener::runFor(0.3);
  EXPECT_NE(server.playingStreams(), "");
  EXPECT_EQ(volume(), 1.0F);
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
  struct Case {
    std::map<std::string, std::string> files;
    bool isShown;
  };
  const Case cases[] = {
      {{}, false},
      {{{".config/pulse/cookie", whole}}, true},
      {{{".pulse-cookie", whole}}, true},
      {{{".config/pulse/cookie", tooShort}}, false},
      {{{".config/pulse/client.conf", configuration}}, false},
      {{{".config/pulse/client.conf", configuration}, {".config/pulse/cookie", whole}}, false},
      {{{".config/pulse/client.conf", configuration}, {"elsewhere", whole}}, true},
      {{{".config/pulse/client.conf", ""}, {".config/pulse/client.conf.d/x.conf", configuration}, {"elsewhere", whole}},
       true},
  };
  for (const Case& c : cases) {
    for (const auto& entry : std::filesystem::directory_iterator(home.path())) std::filesystem::remove_all(entry);
    for (const auto& [name, content] : c.files) writeFile(home / name, content);
    SCOPED_TRACE(testing::PrintToString(c.files.size()) + " files");
    EXPECT_EQ(!pulseCookieFile(), c.isShown);
    EXPECT_EQ(PulseOutput().volume(), 1.0F);
    std::map<std::string, std::string> left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path()))
      if (entry.is_regular_file()) left[entry.path().lexically_relative(home.path())] = readFile(entry.path());
    EXPECT_EQ(left, c.files);
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
