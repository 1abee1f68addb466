#include "platform/avfoundation/mp3_decoder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <vector>

#include "platform/foundation/memory/limits.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

std::string sound(const std::string& name) { return std::string(QUELLARO_TEST_DATA) + "/sounds/" + name + ".mp3"; }

std::unique_ptr<Mp3Decoder> open(const std::string& path) {
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(path);
  if (!decoder) throw std::runtime_error(decoder.error().localizedDescription);
  return std::move(*decoder);
}

struct Decoded {
  std::vector<float> samples;
  std::optional<NSError> error;
};

Decoded decodeAll(Mp3Decoder& decoder) {
  Decoded decoded;
  std::vector<float> buffer(1000 * decoder.format().channels);
  while (true) {
    const Result<std::size_t> filled = decoder.read(buffer);
    if (!filled) decoded.error = filled.error();
    if (!filled || *filled == 0) return decoded;
    decoded.samples.insert(decoded.samples.end(), buffer.begin(), buffer.begin() + static_cast<long>(*filled));
  }
}

TEST(Mp3Decoder, DecodesEachFormatToTheSampleAtItsOwnRate) {
  struct Row {
    const char* name;
    SoundFormat format;
    std::size_t frames;
  };
  // A fifth of a second each. Without a tag nothing tells what the encoder added: 9 whole MPEG frames.
  for (const Row& row : {Row{"mono_22050", {22050, 1}, 4410}, Row{"stereo_44100", {44100, 2}, 8820},
                         Row{"mono_48000_vbr", {48000, 1}, 9600}, Row{"stereo_48000_id3", {48000, 2}, 9600},
                         Row{"stereo_44100_without_tag", {44100, 2}, 10368}}) {
    SCOPED_TRACE(row.name);
    const auto decoder = open(sound(row.name));
    EXPECT_EQ(decoder->format(), row.format);
    const Decoded first = decodeAll(*decoder);
    EXPECT_FALSE(first.error);
    EXPECT_EQ(first.samples.size(), row.frames * row.format.channels);
    EXPECT_NEAR(*std::max_element(first.samples.begin(), first.samples.end()), 0.5, 0.05);
    EXPECT_NEAR(decoder->duration(), static_cast<double>(row.frames) / row.format.rate, 0.01);
    decoder->rewind();
    EXPECT_EQ(decodeAll(*decoder).samples.size(), first.samples.size());
  }
}

TEST(Mp3Decoder, RefusesWhatIsNoSoundAndSaysWhatItIs) {
  const TemporaryDirectory directory;
  const std::string honest = readFile(sound("stereo_44100"));
  std::string text;
  while (text.size() < 8'000'000) text += "All work and no play makes a dull cue.\n";
  writeFile(directory / "empty", "");
  writeFile(directory / "text", text);
  writeFile(directory / "zeros", std::string(200'000, '\0'));
  writeFile(directory / "part of a first frame", honest.substr(0, 300));
  writeFile(directory / "tag without end", "ID3\x04" + std::string(2, '\0') + "\x7f\x7f\x7f\x7f" + honest);
  writeFile(directory / "too large", honest);
  std::filesystem::resize_file(directory / "too large", limits::kSoundFileBytes + 1);
  writeFile(directory / "sound behind much text", text.substr(0, limits::kSoundResyncBytes + 1000) + honest);
  ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
  struct Row {
    std::string path;
    const char* why;
  };
  const auto in = [&](const char* name) { return (directory / name).string(); };
  for (const Row& row :
       {Row{in("missing"), "No such file"}, Row{in("missing") + '\0', "No such file"},
        Row{directory.path().string(), "directory"}, Row{in("fifo"), "not a regular file"},
        Row{in("empty"), "is empty"}, Row{in("text"), "no MPEG audio"}, Row{in("zeros"), "no MPEG audio"},
        Row{in("part of a first frame"), "breaks off"}, Row{in("tag without end"), "no MPEG audio"},
        Row{in("too large"), "more than 16777216 bytes"}, Row{in("sound behind much text"), "no MPEG audio"}}) {
    const auto begin = std::chrono::steady_clock::now();
    const Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(row.path);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3)) << row.path;
    ASSERT_FALSE(decoder) << row.path;
    const std::string& description = decoder.error().localizedDescription;
    EXPECT_NE(description.find(row.path), std::string::npos) << description;
    EXPECT_NE(description.find(row.why), std::string::npos) << description;
  }
}

TEST(Mp3Decoder, PlaysWhatThereIsOfABrokenFileAndGivesUpBehindMuchDamage) {
  const TemporaryDirectory directory;
  const std::string honest = readFile(sound("stereo_44100_without_tag"));
  const std::string begin = honest.substr(0, 1800);
  const auto damaged = [&](std::size_t bytes) { return begin + std::string(bytes, 'x') + honest.substr(1800); };
  const struct {
    const char* name;
    std::string content;
    bool fails;
  } rows[] = {{"cut", begin, false},
              {"little damage", damaged(3000), false},
              {"much damage", damaged(limits::kSoundResyncBytes + 5000), true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    writeFile(directory / row.name, row.content);
    const auto decoder = open(directory / row.name);
    const Decoded decoded = decodeAll(*decoder);
    EXPECT_GT(decoded.samples.size(), 2 * 1152u);
    EXPECT_LT(decoded.samples.size(), 2 * 10368u);
    EXPECT_EQ(decoded.error.has_value(), row.fails);
    EXPECT_TRUE(!decoded.error || decoded.error->localizedDescription.find(row.name) != std::string::npos);
    EXPECT_EQ(decodeAll(*decoder).error, decoded.error) << "from then on";
    decoder->rewind();
    EXPECT_EQ(decodeAll(*decoder).samples.size(), decoded.samples.size());
  }
}

TEST(Mp3Decoder, KeepsItsFormatAndItsFileWhateverBecomesOfThem) {
  const TemporaryDirectory directory;
  writeFile(directory / "two", readFile(sound("stereo_44100_without_tag")) + readFile(sound("mono_22050")));
  const auto decoder = open(directory / "two");
  std::filesystem::remove(directory / "two");
  EXPECT_EQ(decodeAll(*decoder).samples.size(), 2 * 10368u);
}

}  // namespace
}  // namespace quellaro
