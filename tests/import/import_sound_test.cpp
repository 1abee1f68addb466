// halvo import --sound: what becomes of sounds, heard with the player's decoder and an independent meter.
#include <ebur128.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>

#include "import/import_fixture.h"
#include "platform/avfoundation/mp3_decoder.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

struct Samples {
  SoundFormat format;
  std::vector<float> values;

  double seconds() const { return static_cast<double>(values.size()) / format.channels / format.rate; }
  // The first moment at which something is heard.
  double onset() const {
    const auto loud = std::find_if(values.begin(), values.end(), [](float value) { return std::fabs(value) > 0.08F; });
    return static_cast<double>((loud - values.begin()) / format.channels) / format.rate;
  }
};

// A tone from `start` on.
Samples tone(SoundFormat format, double seconds, double start = 0, double amplitude = 0.2) {
  Samples tone{format, std::vector<float>(static_cast<std::size_t>(seconds * format.rate) * format.channels)};
  for (std::size_t i = 0; i < tone.values.size(); ++i) {
    const double time = static_cast<double>(i / format.channels) / format.rate;
    if (time >= start) tone.values[i] = static_cast<float>(amplitude * std::cos((time - start) * 1000 * 2 * M_PI));
  }
  return tone;
}

// Quiet but for a click now and then: loudness has to be bought with peaks.
Samples clicks() {
  Samples sound = tone({48000, 2}, 2, 0, 0.02);
  for (std::size_t i = 0; i < sound.values.size(); i += 9600) sound.values[i] = sound.values[i + 1] = 0.9F;
  return sound;
}

void write(const std::filesystem::path& path, const Samples& samples, int format) {
  SF_INFO information{};
  information.samplerate = static_cast<int>(samples.format.rate);
  information.channels = static_cast<int>(samples.format.channels);
  information.format = format;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &information);
  ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
  sf_write_float(file, samples.values.data(), static_cast<sf_count_t>(samples.values.size()));
  sf_close(file);
}

constexpr int kWave = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kFloatWave = SF_FORMAT_WAV | SF_FORMAT_FLOAT;

class ImportingSounds : public Importing {
 protected:
  ImportingSounds() { writeFrames(60); }

  std::string sound(const std::string& name, const Samples& samples, int format = kWave) const {
    write(directory_ / name, samples, format);
    return name;
  }
  // The cue's sound as the player hears it.
  Samples heard() const {
    auto decoder = Mp3Decoder::open(directory_ / "cue/audio.mp3");
    if (!decoder) throw std::runtime_error(decoder.error().localizedDescription);
    Samples samples{(*decoder)->format(), {}};
    std::vector<float> buffer(4096);
    while (const std::size_t count = *(*decoder)->read(buffer))
      samples.values.insert(samples.values.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
    return samples;
  }
};

struct Measured {
  double loudness = 0;
  double truePeak = 0;
};

Measured measured(const Samples& samples) {
  ebur128_state* meter =
      ebur128_init(samples.format.channels, samples.format.rate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK);
  ebur128_add_frames_float(meter, samples.values.data(), samples.values.size() / samples.format.channels);
  Measured result;
  ebur128_loudness_global(meter, &result.loudness);
  double highest = 0;
  for (unsigned channel = 0; channel < samples.format.channels; ++channel) {
    double peak = 0;
    ebur128_true_peak(meter, channel, &peak);
    highest = std::max(highest, peak);
  }
  result.truePeak = 20 * std::log10(highest);
  ebur128_destroy(&meter);
  return result;
}

TEST_F(ImportingSounds, EveryFormIsEncodedStartsInTimeAndKeepsItsLength) {
  const struct {
    const char* name;
    SoundFormat format;
    int form;
    unsigned rate;  // of the MP3
  } cases[] = {
      {"a.wav", {44100, 2}, kWave, 44100},
      {"mistaken.mp3", {48000, 1}, kFloatWave, 48000},
      {"b.aiff", {96000, 2}, SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 48000},
      {"c", {22050, 1}, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 22050},
      {"d.ogg", {44100, 2}, SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Checked told =
        toldByImport("frames -o cue --replace --sound " + sound(c.name, tone(c.format, 1, 0.09), c.form));
    EXPECT_EQ(told.status, 0) << told.output;
    EXPECT_THAT(told.ids, ElementsAre());
    const Samples mp3 = heard();
    EXPECT_EQ(mp3.format, (SoundFormat{c.rate, c.format.channels}));
    EXPECT_NEAR(mp3.onset(), 0.09, 0.002);
    EXPECT_NEAR(mp3.seconds(), 1, 0.001);
  }
}

TEST_F(ImportingSounds, Mp3IsTakenAsItIs) {
  const std::string mp3 = readFile(QUELLARO_BUNDLE "/audio.mp3");
  ASSERT_EQ(import("frames -o cue --sound " + file("sound.wav", mp3)).status, 0);
  EXPECT_EQ(readFile(directory_ / "cue/audio.mp3"), mp3);
}

TEST_F(ImportingSounds, WithoutASoundThereIsSilenceOfTheAnimationsLength) {
  ASSERT_EQ(import("frames --fps 10 --animation-delay 500 -o cue").status, 0);
  const Samples silence = heard();
  EXPECT_NEAR(silence.seconds(), 6.5, 0.001);
  EXPECT_EQ(*std::max_element(silence.values.begin(), silence.values.end()), 0);
  EXPECT_LT(std::filesystem::file_size(directory_ / "cue/audio.mp3"), 8000U);
}

TEST_F(ImportingSounds, PartsThatEndNoticeablyApartAreFittedToOneAnother) {
  const std::string second = sound("second.wav", tone({44100, 1}, 1));
  const struct {
    const char* options;
    double lastFrame;  // ms
    double sound;      // s
    std::set<std::string> ids;
  } cases[] = {
      {"--fps 60", 1000.0 / 60, 1, {}},
      {"--fps 100", 1000.0 / 100, 1, {}},
      {"--fps 200", 5 + 700, 1, {"fitted"}},
      {"--fps 60 --sound-delay 2000", 1000.0 / 60 + 2000, 1, {"fitted"}},
      {"--fps 30", 1000.0 / 30, 2, {"fitted"}},
      {"--fps 30 --animation-delay 500 --sound-delay 250", 1000.0 / 30, 2.25, {"fitted"}},
      {"--fps 200 --haptics " QUELLARO_BUNDLE "/signature_forte.ahap", 0, 1.87, {"fitted"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.options);
    EXPECT_EQ(toldByImport("frames -o cue --replace --sound " + second + " " + c.options).ids, c.ids);
    if (c.lastFrame > 0) {
      EXPECT_NEAR(*config().root().member("frameTime")->member("Frame_60")->number(), c.lastFrame, 0.1);
    }
    EXPECT_NEAR(heard().seconds(), c.sound, 0.01);
    EXPECT_EQ(toldByCheck().status, 0);
  }
}

TEST_F(ImportingSounds, LoudnessIsReachedUnlessPeaksForbidIt) {
  const struct {
    std::string name;
    const char* loudness;
    std::set<std::string> ids;
  } cases[] = {
      {sound("tone.wav", tone({44100, 2}, 1)), "-14", {}},
      {sound("quiet.wav", tone({48000, 1}, 1, 0, 0.001), kFloatWave), "-23.5", {}},
      {sound("over.wav", tone({48000, 1}, 1, 0, 3), kFloatWave), "-16", {}},
      {sound("clicks.wav", clicks(), kFloatWave), "-10", {"approximated"}},
      {QUELLARO_BUNDLE "/audio.mp3", "-18", {"approximated"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Checked told =
        toldByImport("frames --fps 30 -o cue --replace --sound " + c.name + " --loudness " + c.loudness);
    EXPECT_EQ(told.status, 0) << told.output;
    std::set<std::string> ids = told.ids;
    ids.erase("fitted");
    EXPECT_EQ(ids, c.ids);
    const Measured mp3 = measured(heard());
    EXPECT_LT(mp3.truePeak, -1);
    if (c.name == "clicks.wav") {
      EXPECT_GT(mp3.truePeak, -2.5);
    } else {
      EXPECT_NEAR(mp3.loudness, std::stod(c.loudness), 0.2);
    }
    EXPECT_EQ(toldByCheck().status, 0);
  }
}

TEST_F(ImportingSounds, PeaksThatMp3MakesHigherAreNotCutOff) {
  Samples square = tone({44100, 1}, 1);
  for (float& value : square.values) value = value > 0 ? 1.0F : -1.0F;
  EXPECT_THAT(toldByImport("frames -o cue --sound " + sound("square.wav", square)).ids,
              ElementsAre("fitted", "sound-loud", "sound-peak"));
  EXPECT_THAT(toldByCheck().ids, ElementsAre("sound-loud", "sound-peak"));
  EXPECT_GT(measured(heard()).loudness, -8);
}

TEST_F(ImportingSounds, WhatIsNoUsableSoundIsNamedAndNothingIsWritten) {
  Samples notNumbers = tone({44100, 1}, 1);
  notNumbers.values[500] = std::nanf("");
  std::string damaged =
      readFile(directory_ / sound("whole.flac", tone({44100, 1}, 1), SF_FORMAT_FLAC | SF_FORMAT_PCM_16));
  damaged.resize(damaged.size() / 2);
  const std::pair<std::string, const char*> cases[] = {
      {"nowhere.wav", "No such file"},
      {"frames", "Is a directory"},
      {"/dev/zero", "it is not a regular file"},
      {file("text.wav", "a text, and nothing else"), "it is no WAV, AIFF, FLAC, OGG or MP3 file"},
      {file("nothing.mp3", ""), "the file is empty"},
      {file("damaged.flac", damaged), "damaged.flac: "},
      {sound("short.wav", {{44100, 1}, {}}), "there is no sound in it"},
      {sound("surround.wav", {{44100, 6}, std::vector<float>(6000)}), "it has 6 channels"},
      {sound("slow.wav", tone({1000, 1}, 1)), "it has 1000 samples a second"},
      {sound("numbers.wav", notNumbers, kFloatWave), "no numbers"},
      {sound("hour.wav", {{8000, 1}, std::vector<float>(8000 * 3600)}, SF_FORMAT_WAV | SF_FORMAT_PCM_U8), "10 minutes"},
      {sound("silent.wav", {{44100, 1}, std::vector<float>(44100)}) + " --loudness -14", "nothing in it can be heard"},
  };
  const std::set<std::string> before = names();
  for (const auto& [name, why] : cases) {
    const Ran ran = import("frames -o cue --sound " + name);
    EXPECT_EQ(ran.status, 1) << name;
    EXPECT_THAT(ran.output, AllOf(HasSubstr("not imported: "), HasSubstr(why))) << name;
    EXPECT_EQ(names(), before) << name;
  }
  EXPECT_THAT(toldByImport("frames -o cue --sound silent.wav").ids, ElementsAre("sound-silent"));
}

// Louder is stronger, sudden is sharper; the sound's delay moves them.
TEST_F(ImportingSounds, TapsAreWhereTheSoundBegins) {
  Samples beats = tone({48000, 2}, 2, 3);
  const std::pair<double, double> starts[] = {{0.2, 0.1}, {0.9, 0.6}, {1.5, 0.02}};
  for (const auto& [start, amplitude] : starts)
    for (std::size_t i = 0; i < 9600; ++i) {
      const double time = static_cast<double>(i) / 48000;
      const auto value = static_cast<float>(amplitude * std::sin(time * 1000 * 2 * M_PI) * (1 - time / 0.2));
      const std::size_t at = 2 * (static_cast<std::size_t>(start * 48000) + i);
      beats.values[at] = beats.values[at + 1] = value;
    }
  const Ran ran = import("frames -o cue --taps --sound-delay 100 --sound " + sound("beats.wav", beats));
  ASSERT_EQ(ran.status, 0) << ran.output;
  EXPECT_THAT(ran.output, HasSubstr("3 taps"));
  EXPECT_EQ(config().root().member("isHapticsSupported")->boolean(), true);
  const auto pattern = JSONDocument::parse(readFile(directory_ / "cue/signature_forte.ahap"));
  ASSERT_TRUE(pattern);
  std::vector<double> strengths;
  for (const JSONValue& entry : pattern->root().member("Pattern")->elements()) {
    const JSONValue event = *entry.member("Event");
    ASSERT_LT(strengths.size(), std::size(starts));
    EXPECT_NEAR(*event.member("Time")->number(), starts[strengths.size()].first + 0.1, 0.01);
    strengths.push_back(*event.member("EventParameters")->elements()[0].member("ParameterValue")->number());
  }
  EXPECT_THAT(strengths, ElementsAre(testing::DoubleNear(0.64, 0.05), 1, testing::DoubleNear(0.3, 0.02)));

  EXPECT_EQ(import("frames -o none --taps").status, 2);
  EXPECT_EQ(import("frames -o none --taps --haptics x --sound beats.wav").status, 2);
  const Ran silent = import("frames -o none --taps --sound " + sound("silence.wav", tone({48000, 1}, 1, 3)) + " 2>&1");
  EXPECT_EQ(silent.status, 1);
  EXPECT_THAT(silent.output, HasSubstr("finds no tap"));
}

}  // namespace
}  // namespace quellaro
