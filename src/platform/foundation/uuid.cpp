#include "platform/foundation/uuid.h"

#include <sys/random.h>

#include <random>
#include <string_view>

namespace quellaro {

UUID::UUID() : bytes_{} {
  if (getrandom(bytes_.data(), bytes_.size(), 0) != static_cast<ssize_t>(bytes_.size())) {
    // A kernel or a sandbox without the call.
    std::random_device device;
    for (std::uint8_t& byte : bytes_) byte = static_cast<std::uint8_t>(device());
  }
  // The version and the variant, as RFC 4122, section 4.4, places them.
  bytes_[6] = static_cast<std::uint8_t>((bytes_[6] & 0x0F) | 0x40);
  bytes_[8] = static_cast<std::uint8_t>((bytes_[8] & 0x3F) | 0x80);
}

std::string UUID::uuidString() const {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kDigits[bytes_[i] >> 4];
    text += kDigits[bytes_[i] & 15];
  }
  return text;
}

}  // namespace quellaro
