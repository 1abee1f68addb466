#include "platform/avfoundation/pulse_cookie.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "platform/avfoundation/pulse_configuration.h"

namespace quellaro {

namespace {

// A shorter one is made anew.
constexpr std::uintmax_t kCookieBytes = 256;
// Bytes for the asking, and nothing that could be written.
constexpr const char* kNobodysCookie = "/dev/zero";

bool isCookie(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return !error && size >= kCookieBytes;
}

bool clientWouldFindOne() {
  const std::filesystem::path user = pulseUserDirectory();
  if (const std::optional<std::string> chosen = pulseClientSetting("cookie-file")) return isCookie(user / *chosen);
  if (!user.empty() && isCookie(user / "cookie")) return true;
  const std::string home = environmentVariable("HOME");
  return !home.empty() && isCookie(home + "/.pulse-cookie");
}

}  // namespace

std::optional<std::string> pulseCookieFile() {
  if (clientWouldFindOne()) return std::nullopt;
  return kNobodysCookie;
}

}  // namespace quellaro
