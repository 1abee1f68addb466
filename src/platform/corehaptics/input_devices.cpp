#include "platform/corehaptics/input_devices.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace quellaro {

namespace {

constexpr const char* kClassDirectory = "/sys/class/input/";
constexpr std::string_view kEventPrefix = "event";

// Calls again what a signal interrupted.
template <class Call>
int uninterrupted(const Call& call) {
  int result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result < 0 ? -errno : result;
}

// -1 for what is no event device.
int numberOf(std::string_view name) {
  int number = -1;
  if (!name.starts_with(kEventPrefix)) return number;
  std::from_chars(name.data() + kEventPrefix.size(), name.data() + name.size(), number);
  return number;
}

}  // namespace

std::vector<std::string> SystemInputDevices::names() {
  std::vector<std::string> names;
  std::error_code ignored;
  for (std::filesystem::directory_iterator entry(kClassDirectory, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    std::string name = entry->path().filename().string();
    if (numberOf(name) >= 0 && access(("/dev/input/" + name).c_str(), F_OK) == 0) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return numberOf(a) < numberOf(b); });
  return names;
}

std::string SystemInputDevices::forceFeedback(const std::string& name) {
  std::ifstream file(kClassDirectory + name + "/device/capabilities/ff");
  std::string text;
  std::getline(file, text);
  return text;
}

int SystemInputDevices::open(const std::string& path) {
  return uninterrupted([&] { return ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK); });
}

int SystemInputDevices::upload(int device, ff_effect& effect) {
  return uninterrupted([&] { return ::ioctl(device, EVIOCSFF, &effect); });
}

int SystemInputDevices::erase(int device, int effectId) {
  return uninterrupted([&] { return ::ioctl(device, EVIOCRMFF, effectId); });
}

int SystemInputDevices::write(int device, const input_event& event) {
  return uninterrupted([&] { return static_cast<int>(::write(device, &event, sizeof event)); });
}

void SystemInputDevices::close(int device) { ::close(device); }

}  // namespace quellaro
