#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace quellaro {

// A random (version 4) identifier, from the system's own source of randomness. Any thread.
class UUID {
 public:
  UUID();

  // 36 characters: upper-case hexadecimal digits, hyphenated 8-4-4-4-12.
  std::string uuidString() const;

 private:
  std::array<std::uint8_t, 16> bytes_;
};

}  // namespace quellaro
