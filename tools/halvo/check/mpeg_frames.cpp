#include "check/mpeg_frames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace halvo {

namespace {

constexpr std::size_t kHeaderBytes = 4;
// Fewer in a row are chance.
constexpr std::size_t kFewestFrames = 3;
// No frame is longer, whatever its rate.
constexpr std::size_t kLongestFrame = 8192;

unsigned byteAt(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

struct Header {
  unsigned version = 0;  // 3: MPEG-1; 2: MPEG-2; 0: MPEG-2.5
  unsigned layer = 0;    // 3: I; 2: II; 1: III
  unsigned bitRate = 0;  // in thousands a second; 0: free, which no header tells
  unsigned rate = 0;
  bool isPadded = false;

  // What stays from one frame to the next.
  bool isOfSameSound(const Header& other) const {
    return version == other.version && layer == other.layer && rate == other.rate &&
           (bitRate == 0) == (other.bitRate == 0);
  }
};

unsigned bitRateOf(unsigned version, unsigned layer, unsigned index) {
  using Rates = std::array<std::uint16_t, 15>;
  // By layer, from III to I.
  static constexpr std::array<Rates, 3> kFirst = {
      {{0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
       {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
       {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448}}};
  static constexpr std::array<Rates, 3> kSecond = {
      {{0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
       {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
       {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256}}};
  return (version == 3 ? kFirst : kSecond)[layer - 1][index];
}

std::optional<Header> headerAt(std::string_view file, std::size_t at) {
  if (at + kHeaderBytes > file.size() || byteAt(file, at) != 0xFF || byteAt(file, at + 1) < 0xE0) return std::nullopt;
  constexpr std::array<unsigned, 3> kRates = {44100, 48000, 32000};
  const unsigned second = byteAt(file, at + 1);
  const unsigned third = byteAt(file, at + 2);
  Header header{second >> 3 & 3, second >> 1 & 3, 0, 0, (third & 2) != 0};
  const unsigned rateIndex = third >> 2 & 3;
  const unsigned bitRateIndex = third >> 4;
  if (header.version == 1 || header.layer == 0 || rateIndex == 3 || bitRateIndex == 15) return std::nullopt;
  header.rate = kRates[rateIndex] / (header.version == 3 ? 1 : header.version == 2 ? 2 : 4);
  header.bitRate = bitRateOf(header.version, header.layer, bitRateIndex);
  return header;
}

std::size_t paddingOf(const Header& header) { return header.isPadded ? header.layer == 3 ? 4 : 1 : 0; }

// Without its padding.
std::size_t lengthOf(const Header& header) {
  const std::size_t bits = std::size_t{header.bitRate} * 1000;
  if (header.layer == 3) return 12 * bits / header.rate * 4;
  return (header.layer == 1 && header.version != 3 ? 72 : 144) * bits / header.rate;
}

// Likewise of one whose rate is free: up to the next of its kind. All frames of such a sound are as long.
std::size_t freeLengthAt(std::string_view file, std::size_t at, const Header& header) {
  const std::size_t end = std::min(file.size(), at + kLongestFrame);
  for (std::size_t next = at + 2 * kHeaderBytes; next < end; ++next)
    if (const auto other = headerAt(file, next); other && header.isOfSameSound(*other))
      return next - at - paddingOf(header);
  return kLongestFrame;
}

// Frames that follow each other from there on.
MpegFrames runFrom(std::string_view file, std::size_t start) {
  MpegFrames run;
  std::optional<Header> previous;
  std::size_t freeLength = 0;
  std::size_t at = start;
  while (const auto header = headerAt(file, at)) {
    if (previous && !header->isOfSameSound(*previous)) break;
    previous = header;
    ++run.frames;
    run.highestRate = std::max(run.highestRate, std::size_t{header->bitRate} * 1000);
    if (header->bitRate == 0 && freeLength == 0) freeLength = freeLengthAt(file, at, *header);
    // The last may break off.
    at = std::min(file.size(), at + (header->bitRate == 0 ? freeLength : lengthOf(*header)) + paddingOf(*header));
  }
  run.bytes = at - start;
  return run;
}

// The length of an ID3 tag that begins the text; 0 where there is none.
std::size_t tagInFront(std::string_view file) {
  constexpr std::size_t kFrame = 10;
  if (file.size() < kFrame || !file.starts_with("ID3")) return 0;
  std::size_t size = 0;
  for (std::size_t i = 6; i < kFrame; ++i) size = size << 7 | (byteAt(file, i) & 0x7F);
  const bool hasFooter = (byteAt(file, 5) & 0x10) != 0;
  return std::min(file.size(), size + kFrame * (hasFooter ? 2 : 1));
}

// Likewise of an ID3v1 or APE tag that ends it.
std::size_t tagBehind(std::string_view file) {
  constexpr std::size_t kId3 = 128;
  constexpr std::size_t kApe = 32;
  if (file.size() >= kId3 && file.substr(file.size() - kId3).starts_with("TAG")) return kId3;
  if (file.size() < kApe || !file.substr(file.size() - kApe).starts_with("APETAGEX")) return 0;
  const std::size_t at = file.size() - kApe;
  std::size_t size = 0;
  for (std::size_t i = 4; i > 0; --i) size = size << 8 | byteAt(file, at + 11 + i);
  const bool hasHeader = (byteAt(file, at + 23) & 0x80) != 0;
  return std::min(file.size(), size + (hasHeader ? kApe : 0));
}

}  // namespace

std::string_view withoutTags(std::string_view file) {
  while (const std::size_t tag = tagInFront(file)) file.remove_prefix(tag);
  while (const std::size_t tag = tagBehind(file)) file.remove_suffix(tag);
  return file;
}

MpegFrames findMpegFrames(std::string_view file) {
  const std::string_view sound = withoutTags(file);
  MpegFrames found;
  found.fileBytes = sound.size();
  for (std::size_t at = 0; at < sound.size();) {
    const MpegFrames run = runFrom(sound, at);
    // A sound may be shorter than that, if it is all there is.
    if (run.frames < kFewestFrames && run.bytes != sound.size()) {
      ++at;
      continue;
    }
    found.frames += run.frames;
    found.bytes += run.bytes;
    found.highestRate = std::max(found.highestRate, run.highestRate);
    at += run.bytes;
  }
  return found;
}

}  // namespace halvo
