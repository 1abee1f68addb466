#include "platform/corehaptics/evdev_actuator.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "platform/corehaptics/haptic_error.h"

namespace quellaro {

namespace {

// A motor runs on for so long when the main queue is late with the next change, and then stops by itself.
constexpr double kGraceSeconds = 0.1;
// The kernel specifies nothing beyond.
constexpr double kLongestEffectMilliseconds = 32767;

bool hasBit(std::string_view hexadecimalWords, unsigned bit) {
  constexpr unsigned kBitsPerWord = sizeof(long) * CHAR_BIT;
  std::vector<unsigned long> words;
  while (!hexadecimalWords.empty()) {
    const std::size_t end = std::min(hexadecimalWords.find(' '), hexadecimalWords.size());
    unsigned long word = 0;
    std::from_chars(hexadecimalWords.data(), hexadecimalWords.data() + end, word, 16);
    words.insert(words.begin(), word);
    hexadecimalWords.remove_prefix(std::min(end + 1, hexadecimalWords.size()));
  }
  const std::size_t index = bit / kBitsPerWord;
  return index < words.size() && (words[index] >> (bit % kBitsPerWord) & 1) != 0;
}

std::vector<std::string> rumblingDevices(InputDevices& devices) {
  std::vector<std::string> paths;
  for (const std::string& name : devices.names())
    if (hasBit(devices.forceFeedback(name), FF_RUMBLE)) paths.push_back("/dev/input/" + name);
  return paths;
}

NSError deviceError(const std::string& path, int negativeErrno) {
  NSError error = posixError(-negativeErrno);
  error.localizedDescription = "The haptic device " + path + " cannot be used: " + error.localizedDescription;
  return error;
}

__u16 magnitude(double share) { return static_cast<__u16>(std::lround(std::clamp(share, 0.0, 1.0) * 0xffff)); }

class EvdevSession final : public ActuatorSession {
 public:
  EvdevSession(std::shared_ptr<InputDevices> devices, std::string path, int device)
      : devices_(std::move(devices)), path_(std::move(path)), device_(device) {
    effect_.type = FF_RUMBLE;
    effect_.id = -1;
  }
  EvdevSession(const EvdevSession&) = delete;
  EvdevSession& operator=(const EvdevSession&) = delete;
  ~EvdevSession() override {
    if (effect_.id >= 0) {
      play(false);
      devices_->erase(device_, effect_.id);
    }
    devices_->close(device_);
  }

  std::optional<NSError> feel(const HapticSample& sample, double seconds) override {
    const int outcome = sample.intensity > 0 ? rumble(sample, seconds) : silence();
    if (outcome < 0) return deviceError(path_, outcome);
    return std::nullopt;
  }

 private:
  // The first upload makes an effect, which the later ones change while it plays.
  int rumble(const HapticSample& sample, double seconds) {
    const double milliseconds = std::round((seconds + kGraceSeconds) * 1000);
    effect_.replay.length = static_cast<__u16>(std::min(milliseconds, kLongestEffectMilliseconds));
    effect_.u.rumble.strong_magnitude = magnitude(sample.intensity * (1 - sample.sharpness));
    effect_.u.rumble.weak_magnitude = magnitude(sample.intensity * sample.sharpness);
    if (const int outcome = devices_->upload(device_, effect_); outcome < 0) return outcome;
    return play(true);
  }

  int silence() { return effect_.id >= 0 ? play(false) : 0; }

  int play(bool isOn) {
    input_event event{};
    event.type = EV_FF;
    event.code = static_cast<__u16>(effect_.id);
    event.value = isOn ? 1 : 0;
    return devices_->write(device_, event);
  }

  std::shared_ptr<InputDevices> devices_;
  std::string path_;
  int device_;
  ff_effect effect_{};
};

}  // namespace

bool EvdevActuator::isPresent() { return !rumblingDevices(*devices_).empty(); }

std::string EvdevActuator::description() {
  std::string text;
  for (const std::string& path : rumblingDevices(*devices_)) {
    const int device = devices_->open(path);
    if (device >= 0) devices_->close(device);
    text += (text.empty() ? "" : "; ") + (device >= 0 ? path : deviceError(path, device).localizedDescription);
  }
  return text.empty() ? "no force-feedback device that rumbles" : text;
}

Result<std::unique_ptr<ActuatorSession>> EvdevActuator::open() {
  NSError problem = hapticError(CHHapticErrorCode::notSupported, "There is no haptic device");
  const std::vector<std::string> paths = rumblingDevices(*devices_);
  for (const std::string& path : paths) {
    const int device = devices_->open(path);
    if (device >= 0) return std::unique_ptr<ActuatorSession>(std::make_unique<EvdevSession>(devices_, path, device));
    if (path == paths.front()) problem = deviceError(path, device);
  }
  return problem;
}

}  // namespace quellaro
