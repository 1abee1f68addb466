#include "export/matroska.h"

#include <bit>
#include <cmath>
#include <utility>

namespace halvo {

namespace {

using namespace quellaro;

// Elements of the format, by their names in it.
enum Id : std::uint32_t {
  kEbml = 0x1A45DFA3,
  kDocType = 0x4282,
  kDocTypeVersion = 0x4287,
  kDocTypeReadVersion = 0x4285,
  kSegment = 0x18538067,
  kInfo = 0x1549A966,
  kTimestampScale = 0x2AD7B1,
  kMuxingApp = 0x4D80,
  kWritingApp = 0x5741,
  kTracks = 0x1654AE6B,
  kTrackEntry = 0xAE,
  kTrackNumber = 0xD7,
  kTrackUid = 0x73C5,
  kTrackType = 0x83,
  kDefaultDuration = 0x23E383,
  kCodecId = 0x86,
  kVideo = 0xE0,
  kPixelWidth = 0xB0,
  kPixelHeight = 0xBA,
  kColourSpace = 0x2EB524,
  kAudio = 0xE1,
  kSamplingFrequency = 0xB5,
  kChannels = 0x9F,
  kBitDepth = 0x6264,
  kCluster = 0x1F43B675,
  kTimestamp = 0xE7,
  kBlockGroup = 0xA0,
  kBlock = 0xA1,
  kBlockDuration = 0x9B,
};

constexpr unsigned kPictures = 1;
constexpr unsigned kSamples = 2;
constexpr double kTicksPerSecond = 100'000;
constexpr std::uint64_t kNanosecondsPerTick = 10'000;

std::string bigEndian(std::uint64_t value, int bytes) {
  std::string text;
  for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(value >> (8 * i) & 255);
  return text;
}

std::string idOf(Id id) {
  const auto value = static_cast<std::uint32_t>(id);
  return bigEndian(value, value > 0xFFFFFF ? 4 : value > 0xFFFF ? 3 : value > 0xFF ? 2 : 1);
}

// An element's beginning; its size in eight bytes, whatever it is.
std::string headOf(Id id, std::uint64_t size) { return idOf(id) + bigEndian(size | std::uint64_t{1} << 56, 8); }
std::string element(Id id, std::string_view content) { return headOf(id, content.size()).append(content); }
std::string number(Id id, std::uint64_t value) { return element(id, bigEndian(value, 8)); }
std::string decimal(Id id, double value) { return element(id, bigEndian(std::bit_cast<std::uint64_t>(value), 8)); }

std::string track(unsigned trackNumber, unsigned type, std::string_view codec, std::string_view description) {
  return element(kTrackEntry, number(kTrackNumber, trackNumber) + number(kTrackUid, trackNumber) +
                                  number(kTrackType, type) + element(kCodecId, codec) + std::string(description));
}

std::uint64_t ticksOf(double seconds) { return static_cast<std::uint64_t>(std::llround(seconds * kTicksPerSecond)); }

}  // namespace

MatroskaWriter::MatroskaWriter(int width, int height, double usualDuration, const std::optional<SoundFormat>& sound,
                               Sink sink)
    : sink_(std::move(sink)) {
  std::string start =
      element(kEbml, element(kDocType, "matroska") + number(kDocTypeVersion, 4) + number(kDocTypeReadVersion, 2));
  // Of unknown size: it ends with the stream.
  start += idOf(kSegment) + bigEndian(0x01FFFFFFFFFFFFFF, 8);
  start += element(kInfo, number(kTimestampScale, kNanosecondsPerTick) + element(kMuxingApp, "halvo") +
                              element(kWritingApp, "halvo"));
  std::string tracks = track(kPictures, 1, "V_UNCOMPRESSED",
                             number(kDefaultDuration, static_cast<std::uint64_t>(std::llround(usualDuration * 1e9))) +
                                 element(kVideo, number(kPixelWidth, static_cast<std::uint64_t>(width)) +
                                                     number(kPixelHeight, static_cast<std::uint64_t>(height)) +
                                                     element(kColourSpace, "RGBA")));
  if (sound)
    tracks += track(kSamples, 2, "A_PCM/FLOAT/IEEE",
                    element(kAudio, decimal(kSamplingFrequency, sound->rate) + number(kChannels, sound->channels) +
                                        number(kBitDepth, 32)));
  isTaken_ = sink_(start + element(kTracks, tracks));
}

void MatroskaWriter::picture(double start, double duration, std::span<const std::uint8_t> pixels) {
  block(kPictures, start, duration, {reinterpret_cast<const char*>(pixels.data()), pixels.size()});
}

void MatroskaWriter::samples(double start, std::span<const float> samples) {
  static_assert(std::endian::native == std::endian::little, "the format wants the lowest byte first");
  block(kSamples, start, std::nullopt, {reinterpret_cast<const char*>(samples.data()), samples.size_bytes()});
}

// In a cluster of its own, so that no time has to be relative to another.
void MatroskaWriter::block(unsigned trackNumber, double start, std::optional<double> duration, std::string_view bytes) {
  if (!isTaken_) return;
  const std::string place = bigEndian(0x80 | trackNumber, 1) + bigEndian(0, 3);
  const std::string after = duration ? number(kBlockDuration, ticksOf(*duration)) : "";
  const std::string blockHead = headOf(kBlock, place.size() + bytes.size());
  const std::size_t group = blockHead.size() + place.size() + bytes.size() + after.size();
  const std::string time = number(kTimestamp, ticksOf(start));
  const std::string groupHead = headOf(kBlockGroup, group);
  const std::string head =
      headOf(kCluster, time.size() + groupHead.size() + group) + time + groupHead + blockHead + place;
  isTaken_ = sink_(head) && sink_(bytes) && (after.empty() || sink_(after));
}

}  // namespace halvo
