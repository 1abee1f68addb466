#include "platform/avfoundation/mp3_decoder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <vector>

#include "platform/foundation/limits.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

std::string sound(const std::string& name) { return std::string(QUELLARO_TEST_DATA) + "/sounds/" + name + ".mp3"; }

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

Decoded decodeFile(const std::string& path) {
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(path);
  if (!decoder) return {{}, decoder.error()};
  return decodeAll(**decoder);
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
    Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(sound(row.name));
    ASSERT_TRUE(decoder) << decoder.error().localizedDescription;
    EXPECT_EQ((*decoder)->format(), row.format);
    const Decoded first = decodeAll(**decoder);
    EXPECT_FALSE(first.error);
    EXPECT_EQ(first.samples.size(), row.frames * row.format.channels);
    EXPECT_NEAR(*std::max_element(first.samples.begin(), first.samples.end()), 0.5, 0.05);
    EXPECT_NEAR((*decoder)->duration(), static_cast<double>(row.frames) / row.format.rate, 0.01);
    (*decoder)->rewind();
    EXPECT_EQ(decodeAll(**decoder).samples.size(), first.samples.size());
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

TEST(Mp3Decoder, PlaysWhatThereIsOfAFileThatBreaksOff) {
  const TemporaryDirectory directory;
  const std::string honest = readFile(sound("stereo_44100"));
  const std::size_t whole = decodeFile(sound("stereo_44100")).samples.size();
  writeFile(directory / "cut", honest.substr(0, honest.size() / 2));
  const Decoded decoded = decodeFile(directory / "cut");
  EXPECT_FALSE(decoded.error);
  EXPECT_GT(decoded.samples.size(), whole / 4);
  EXPECT_LT(decoded.samples.size(), whole * 3 / 4);
}

TEST(Mp3Decoder, PassesOverDamageUpToTheLimitAndGivesUpBehindIt) {
  const TemporaryDirectory directory;
  const std::string honest = readFile(sound("stereo_44100_without_tag"));
  const std::size_t whole = decodeFile(sound("stereo_44100_without_tag")).samples.size();
  const std::string begin = honest.substr(0, 1800);
  const std::string end = honest.substr(1800);

  writeFile(directory / "little damage", begin + std::string(3000, 'x') + end);
  const Decoded little = decodeFile(directory / "little damage");
  EXPECT_FALSE(little.error);
  EXPECT_GT(little.samples.size(), whole / 2);

  writeFile(directory / "much damage", begin + std::string(limits::kSoundResyncBytes + 5000, 'x') + end);
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(directory / "much damage");
  ASSERT_TRUE(decoder);
  const Decoded much = decodeAll(**decoder);
  EXPECT_GT(much.samples.size(), 0u);
  EXPECT_LT(much.samples.size(), whole);
  ASSERT_TRUE(much.error);
  EXPECT_NE(much.error->localizedDescription.find("much damage"), std::string::npos);
  EXPECT_EQ(decodeAll(**decoder).error, much.error);
  (*decoder)->rewind();
  EXPECT_EQ(decodeAll(**decoder).samples.size(), much.samples.size());
}

TEST(Mp3Decoder, KeepsItsFormatAndItsFileWhateverBecomesOfThem) {
  const TemporaryDirectory directory;
  writeFile(directory / "two", readFile(sound("stereo_44100_without_tag")) + readFile(sound("mono_22050")));
  Result<std::unique_ptr<Mp3Decoder>> decoder = Mp3Decoder::open(directory / "two");
  ASSERT_TRUE(decoder);
  std::filesystem::remove(directory / "two");
  EXPECT_EQ(decodeAll(**decoder).samples.size(), 10368u * 2);
}

}  // namespace
}  // namespace quellaro
