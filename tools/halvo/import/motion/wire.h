#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// How the process that evaluates a motion file tells what it found: plain values in a row, of one machine.
namespace halvo::motion {

// Of one frame, in bytes. An honest one has some hundred thousand.
inline constexpr std::size_t kMostFrameBytes = std::size_t{64} << 20;

// Layers in layers.
inline constexpr int kDeepest = 64;

enum class PathElement : std::uint8_t { Move, Line, Curve, Close };

// The coordinates that a path of these elements has.
inline std::size_t numbersOf(std::string_view elements) {
  constexpr std::size_t kNumbers[] = {2, 2, 6, 0};
  std::size_t numbers = 0;
  for (const char element : elements) numbers += kNumbers[element & 3];
  return numbers;
}

// A whole frame is one layer: its visibility, alpha, matte and name, its clip, masks, shapes and inner layers.
class WireWriter {
 public:
  explicit WireWriter(std::string& bytes) : bytes_(bytes) {}

  void byte(unsigned value) { bytes_ += static_cast<char>(value); }
  void count(std::size_t value) { raw(static_cast<std::uint32_t>(value)); }
  void real(float value) { raw(value); }
  void text(std::string_view value) {
    value = value.substr(0, 200);
    count(value.size());
    bytes_ += value;
  }

 private:
  template <class Value>
  void raw(Value value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    bytes_.append(bytes, sizeof value);
  }

  std::string& bytes_;
};

// Gives zeros, and is not well any more, once something is missing.
class WireReader {
 public:
  explicit WireReader(std::string_view bytes) : bytes_(bytes) {}

  bool isWell() const { return isWell_; }
  bool isAtEnd() const { return bytes_.empty(); }
  void fail() {
    isWell_ = false;
    bytes_ = {};
  }

  unsigned byte() { return raw<std::uint8_t>(); }
  double real() { return static_cast<double>(raw<float>()); }
  // Of things that take at least that many bytes each.
  std::size_t count(std::size_t bytesEach) {
    const std::size_t value = raw<std::uint32_t>();
    if (value * bytesEach <= bytes_.size()) return value;
    fail();
    return 0;
  }
  std::string_view bytes(std::size_t count) {
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view text() { return bytes(count(1)); }

 private:
  template <class Value>
  Value raw() {
    Value value{};
    if (bytes_.size() < sizeof value) {
      fail();
      return value;
    }
    std::memcpy(&value, bytes_.data(), sizeof value);
    bytes_.remove_prefix(sizeof value);
    return value;
  }

  std::string_view bytes_;
  bool isWell_ = true;
};

}  // namespace halvo::motion
