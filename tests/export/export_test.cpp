// halvo export: films, opened again with the program's own tools.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "drawing_commands/run_tool.h"
#include "platform/avfoundation/mp3_decoder.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using testing::HasSubstr;

using Pixel = std::array<int, 4>;

// The sample from which on something is heard.
double onsetOf(const std::vector<float>& samples) {
  const auto loud = std::find_if(samples.begin(), samples.end(), [](float value) { return std::fabs(value) > 0.05F; });
  return static_cast<double>(loud - samples.begin());
}

class Export : public testing::Test {
 protected:
  // Three squares of a colour each in the middle of the frame, and a tone.
  Export() {
    std::string frames;
    for (const char* color : {"#f00", "#0f0", "#00f"})
      frames += (frames.empty() ? "[\"" : ", \"") +
                std::string(
                    "<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'><rect x='30' y='30' "
                    "width='40' height='40' fill='") +
                color + "'/></svg>\"";
    writeFile(directory_ / "cue/animation.json", frames + "]");
    writeFile(directory_ / "cue/play_config.json",
              R"({"totalFrames": 3, "soundFileName": "audio.mp3", "soundDelayInMillis": 250, "viewBox": "",
                  "animationDelayInMillis": 100, "frameTime": {"Frame_1": 205, "Frame_2": 300, "Frame_3": 500}})");
    writeFile(directory_ / "cue/audio.mp3", readFile(QUELLARO_TEST_DATA "/../check/sounds/fine.mp3"));
  }

  Ran exported(const std::string& options, const std::string& before = "") const {
    return run("cd " + directory_.path().string() + "; " + before + " " QUELLARO_HALVO_TOOL " export " + options);
  }
  std::string bytesOf(const std::string& film, const std::string& options, const std::string& decoder = "") const {
    const std::string out = directory_ / "bytes";
    const Ran ran = run("ffmpeg -v error -nostdin " + decoder + " -i " + (directory_ / film).string() + " " + options +
                        " -y " + out);
    EXPECT_EQ(ran.status, 0) << ran.output;
    return readFile(out);
  }
  // In the middle and in a corner, at a twentieth of a second.
  std::array<Pixel, 2> seenAt(const std::string& film, int twentieth) const {
    const std::string decoder = film.ends_with(".webm") ? "-c:v libvpx-vp9" : "";
    const std::string bytes = bytesOf(
        film, "-vf 'fps=20,select=eq(n\\," + std::to_string(twentieth) + ")' -frames:v 1 -f rawvideo -pix_fmt rgba",
        decoder);
    const auto pixel = [&](std::size_t at) {
      Pixel read{};
      for (std::size_t i = 0; i < 4; ++i) read[i] = static_cast<unsigned char>(bytes.at(at * 4 + i));
      return read;
    };
    return {pixel(32 * 64 + 32), pixel(0)};
  }
  // Of the cue's own sound, as the player hears it.
  double soundOnset() const {
    const auto decoder = Mp3Decoder::open(directory_ / "cue/audio.mp3");
    std::vector<float> samples(20'000);
    samples.resize(*(*decoder)->read(samples));
    return onsetOf(samples) / (*decoder)->format().rate;
  }
  double lengthOf(const std::string& film) const {
    const Ran ran = run("ffprobe -v error -select_streams v -show_entries packet=pts_time,duration_time -of csv=p=0 " +
                        (directory_ / film).string() + " | sort -n | tail -1 | tr , ' '");
    char* end = nullptr;
    const double last = std::strtod(ran.output.c_str(), &end);
    return last + std::strtod(end, nullptr);
  }

  TemporaryDirectory directory_;
};

bool isNear(const Pixel& a, const Pixel& b) {
  for (std::size_t i = 0; i < 4; ++i)
    if (std::abs(a[i] - b[i]) > 14) return false;

  return true;
}

TEST_F(Export, PicturesAndSoundComeAtTheirTimes) {
  const Pixel black{0, 0, 0, 255};
  const Pixel white{255, 255, 255, 255};
  const Pixel clear{0, 0, 0, 0};
  const struct {
    const char* name;
    const char* options;
    Pixel ground;
  } cases[] = {
      {"a.mp4", "", black},       {"b.MP4", "--background white --fps 40", white}, {"c.webm", "", clear},
      {"d.gif", "--loop", clear}, {"e.gif", "--background white --fps 25", white}, {"f.png", "", clear},
  };
  for (const auto& c : cases) {
    const std::string film = c.name;
    SCOPED_TRACE(film);
    const Ran ran = exported("cue --size 64 -o " + film + " " + c.options);
    ASSERT_EQ(ran.status, 0) << ran.output;
    EXPECT_EQ(ran.output, "");
    EXPECT_NEAR(lengthOf(film), 1.105, 0.03);
    const struct {
      int twentieth;
      Pixel color;
    } moments[] = {
        {1, c.ground}, {4, {255, 0, 0, 255}}, {9, {0, 255, 0, 255}}, {14, {0, 0, 255, 255}}, {20, {0, 0, 255, 255}}};
    for (const auto& moment : moments) {
      const auto [middle, corner] = seenAt(film, moment.twentieth);
      const auto text = testing::PrintToString(middle) + testing::PrintToString(corner);
      const auto isGround = [&](const Pixel& pixel) {
        return c.ground[3] == 0 ? pixel[3] < 14 : isNear(pixel, c.ground);
      };
      EXPECT_TRUE(moment.color == c.ground ? isGround(middle) : isNear(middle, moment.color)) << text;
      EXPECT_TRUE(isGround(corner)) << text;
    }
    if (film.ends_with("gif") || film.ends_with("png")) continue;
    const std::string sound = bytesOf(film, "-vn -ac 1 -ar 48000 -f f32le");
    std::vector<float> samples(sound.size() / sizeof(float));
    std::memcpy(samples.data(), sound.data(), samples.size() * sizeof(float));
    EXPECT_NEAR(onsetOf(samples) / 48000, 0.25 + soundOnset(), 0.02);
    const Ran probed =
        run("ffprobe -v error -show_entries format=duration -of csv=p=0 " + (directory_ / film).string());
    EXPECT_NEAR(std::stod(probed.output), 1.105, 0.03);
  }
}

TEST_F(Export, SourcesOfEveryKind) {
  const std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>";
  for (const char* name : {"frames/a2.svg", "frames/a10.svg", "frames/a1.svg"}) writeFile(directory_ / name, svg);
  const std::pair<const char*, double> cases[] = {
      {"cue/animation.json", 1.105}, {"frames", 0.05}, {"frames/a1.svg", 1}, {"- < frames/a1.svg", 1}};
  for (const auto& [source, length] : cases) {
    EXPECT_EQ(exported(std::string("-o film.png --size 16x12 ") + source).output, "") << source;
    EXPECT_NEAR(lengthOf("film.png"), length, 0.02) << source;
  }
}

TEST_F(Export, NothingHalfIsWritten) {
  writeFile(directory_ / "film.mp4", "what was there");
  writeFile(directory_ / "bin/ffmpeg", "#!/bin/sh\nhead -c 100 >&3\necho it is broken >&2\nexit 1\n");
  std::filesystem::permissions(directory_ / "bin/ffmpeg", std::filesystem::perms::owner_all);
  const struct {
    std::string options;
    std::string before;
    int status;
    const char* output;
  } cases[] = {
      {"cue -o film.mp4", "PATH=" + (directory_ / "cue").string(), 1, "apt-get install ffmpeg"},
      {"cue -o film.mp4", "PATH=" + (directory_ / "bin").string() + ":$PATH", 1, "it is broken"},
      {"nowhere -o film.mp4", "", 1, "No such file"},
      {"cue -o nowhere/film.mp4", "", 1, "nowhere/film.mp4: No such file"},
      {"cue", "", 2, "-o FILE is missing"},
      {"cue -o film.avi", "", 2, "ends in .mp4, .webm, .gif or .png"},
      {"cue -o film.mp4 --background transparent", "", 2, "have a ground"},
      {"cue -o film.mp4 --loop", "", 2, "--loop"},
      {"cue -o film.webm --size 33", "", 2, "even sides"},
      {"cue -o film.gif --fps 60", "", 2, "at most 50"},
  };
  for (const auto& c : cases) {
    const Ran ran = exported(c.options, c.before);
    EXPECT_EQ(ran.status, c.status) << c.options;
    EXPECT_THAT(ran.output, HasSubstr(c.output)) << c.options;
    EXPECT_EQ(readFile(directory_ / "film.mp4"), "what was there");
    EXPECT_EQ(run("ls -A " + directory_.path().string()).output, "bin\ncue\nfilm.mp4\n") << c.options;
  }
}

}  // namespace
}  // namespace quellaro
