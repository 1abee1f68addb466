#include "sound_start.h"

#include <pulse/simple.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <thread>

#include "platform/avfoundation/audio_player.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "platform/dispatch/main_queue.h"
#include "support/pulse_server.h"

namespace {

using namespace quellaro;

constexpr unsigned kRate = 48000;
// Louder than what a resampler makes of silence.
constexpr float kAudible = 0.002F;
constexpr double kSecondsPerPlay = 0.5;
constexpr double kSecondsOfSilence = 0.3;

bool isAudible(float sample) { return std::abs(sample) >= kAudible; }

double now() { return MainQueue::shared().clock().now(); }

void runFor(double seconds) {
  for (const double end = now() + seconds; now() < end;) {
    MainQueue::shared().drain();
    MainQueue::shared().wait(0.005);
  }
}

// Seconds from the beginning of the file to the first sample that can be heard.
double silenceInFile(const std::string& path) {
  const auto decoder = Mp3Decoder::open(path);
  if (!decoder) throw std::runtime_error(decoder.error().localizedDescription);
  const SoundFormat format = (*decoder)->format();
  std::vector<float> frame(format.channels);
  for (std::size_t index = 0;; ++index) {
    const auto filled = (*decoder)->read(frame);
    if (!filled || *filled == 0) throw std::runtime_error(path + " is silent");
    float mean = 0;
    for (const float sample : frame) mean += sample / static_cast<float>(format.channels);
    if (isAudible(mean)) return static_cast<double>(index) / format.rate;
  }
}

// Listens to the server's sink in short steps, and makes the server play in steps as short.
class Ear {
 public:
  Ear() {
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, kRate, 1};
    const auto anything = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffer{anything, anything, anything, anything, sizeof block_};
    int error = 0;
    stream_.reset(pa_simple_new(nullptr, "timeline_bench", PA_STREAM_RECORD, "silence.monitor", "Ear", &spec, nullptr,
                                &buffer, &error));
    if (!stream_) throw std::runtime_error("the sound server cannot be listened to");
    thread_ = std::thread([this] { listen(); });
    // Until somebody listened the server played in steps of seconds, and the last of those has to pass.
    waitUntil("the sound server does not play", [this] { return isListening_.load(); });
  }
  ~Ear() {
    isDone_ = true;
    thread_.join();
  }
  Ear(const Ear&) = delete;
  Ear& operator=(const Ear&) = delete;

  void forget() { heard_ = 0; }
  // When something was heard first; 0 for never.
  double heard() const { return heard_; }

 private:
  void listen() {
    while (!isDone_ && pa_simple_read(stream_.get(), block_.data(), sizeof block_, nullptr) == 0) {
      const double time = now();
      isListening_ = true;
      if (heard_ == 0 && std::any_of(block_.begin(), block_.end(), isAudible)) heard_ = time;
    }
  }

  std::array<float, static_cast<std::size_t>(kRate* kSoundStartStep)> block_{};
  std::unique_ptr<pa_simple, void (*)(pa_simple*)> stream_{nullptr, pa_simple_free};
  std::atomic<double> heard_ = 0;
  std::atomic<bool> isListening_ = false;
  std::atomic<bool> isDone_ = false;
  std::thread thread_;
};

}  // namespace

SoundStart measureSoundStart(const std::string& soundFile, int plays) {
  const double silence = silenceInFile(soundFile);
  const PulseServer server;
  Ear ear;
  SoundStart result;
  for (int i = 0; i < plays; ++i) {
    const auto player = AVAudioPlayer::initWithContentsOfURL(soundFile);
    if (!player) throw std::runtime_error(player.error().localizedDescription);
    (*player)->prepareToPlay();
    runFor(kSecondsOfSilence);
    ear.forget();
    const double start = now();
    (*player)->play();
    runFor(kSecondsPerPlay);
    if (ear.heard() == 0) throw std::runtime_error("a sound was not heard");
    result.seconds.push_back(ear.heard() - start - silence);
    result.sinkLatency = server.sinkLatency();
    if (result.sinkLatency == 0) throw std::runtime_error("the sound server does not tell its latency");
  }
  return result;
}
