#include "export/film_source.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/sdk_config.h"
#include "input.h"
#include "picture/frame_source.h"
#include "picture/frame_times.h"
#include "picture/svg_folder.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr double kPicturesPerSecond = 60;
constexpr double kSecondsOfOne = 1;
// A cue lasts seconds.
constexpr double kLongest = 600;

NSError errorIn(const std::string& path, const std::string& what) { return {"halvo", 0, path + ": " + what}; }

Result<std::vector<std::string>> readFolder(const std::string& folder) {
  std::vector<std::string> texts;
  const std::string start = folder.ends_with('/') ? folder : folder + "/";
  for (const std::string& name : svgNamesIn(folder)) {
    auto text = FileManager::readAtPath(start + name);
    if (!text) return errorIn(start + name, text.error().localizedDescription);
    texts.push_back(std::move(*text));
  }
  return texts;
}

FrameTimes evenTimes(std::size_t frames) {
  FrameTimes times;
  const double time = frames == 1 ? kSecondsOfOne : 1 / kPicturesPerSecond;
  for (std::size_t i = 0; i < frames; ++i) times.starts.emplace_back(static_cast<double>(i) * time);
  times.end = static_cast<double>(frames) * time;
  return times;
}

// As they are seen one after the other; of those that come up at one moment the last.
std::vector<Shot> shotsOf(const FrameTimes& times) {
  std::vector<Shot> shots;
  for (std::size_t i = 0; i < times.starts.size(); ++i)
    if (times.starts[i]) shots.push_back({std::max(0.0, *times.starts[i]), i});
  std::stable_sort(shots.begin(), shots.end(), [](const Shot& a, const Shot& b) { return a.start < b.start; });
  std::vector<Shot> seen;
  if (shots.front().start > 0) seen.push_back({});
  for (const Shot& shot : shots) {
    if (!seen.empty() && seen.back().start == shot.start) seen.pop_back();
    seen.push_back(shot);
  }
  return seen;
}

class Reader {
 public:
  Reader(const std::string& path, bool withSound) : path_(path), withSound_(withSound) {}

  Result<FilmSource> read() {
    const bool isDirectory = FileManager::directoryExistsAtPath(path_);
    const std::filesystem::path file =
        isDirectory ? std::filesystem::path(path_) / kAnimationFile : std::filesystem::path(path_);
    const bool isFolder = isDirectory && !FileManager::fileExistsAtPath(file.string()) && !svgNamesIn(path_).empty();
    if (auto problem = isFolder ? readFrameFolder() : readFrameFile(file.string(), isDirectory)) return *problem;
    FrameTimes times = evenTimes(film_.frames.size());
    if (!isFolder && !isDocument_ && !isStream(path_)) readBeside(file.parent_path(), isDirectory, times);
    if (times.end > kLongest) return errorIn(path_, "it is longer than the ten minutes that a film may last");
    film_.shots = shotsOf(times);
    film_.end = std::max(times.end, film_.sound ? film_.soundStart + film_.sound->duration() : 0.0);
    return std::move(film_);
  }

 private:
  template <class Texts>
  void keep(const Texts& texts) {
    for (const auto& text : texts) film_.frames.push_back(SVGDocument::parse(std::string(text)));
  }
  std::optional<NSError> readFrameFolder() {
    const auto texts = readFolder(path_);
    if (!texts) return texts.error();
    keep(*texts);
    return std::nullopt;
  }
  std::optional<NSError> readFrameFile(const std::string& file, bool isDirectory) {
    const auto read = isDirectory ? readCueFrames(file) : readFrames(path_);
    if (!read) return errorIn(file, read.error().localizedDescription);
    if (read->frames.texts.empty()) return errorIn(file, "there are no frames");
    isDocument_ = read->isDocument;
    keep(read->frames.texts);
    return std::nullopt;
  }

  // Beside an animation.json that was named by itself there need be nothing; of a cue, what is missing is news.
  void readBeside(const std::filesystem::path& directory, bool isCue, FrameTimes& times) {
    const auto isWanted = [&](const std::string& path) { return isCue || FileManager::fileExistsAtPath(path); };
    if (const std::string path = directory / kPlayConfigFile; isWanted(path)) {
      auto text = FileManager::readAtPath(path);
      const auto config = text ? decodeSDKConfig(std::move(*text)) : text.error();
      if (config) {
        times = timesOf(**config, film_.frames.size());
        film_.soundStart = std::max(0.0, (*config)->soundDelayInMillis / 1000);
      } else {
        film_.notes.push_back(path + ": " + config.error().localizedDescription);
      }
    }
    if (const std::string path = directory / kSoundFile; withSound_ && isWanted(path)) {
      auto sound = Mp3Decoder::open(path);
      if (sound)
        film_.sound = std::move(*sound);
      else
        film_.notes.push_back(sound.error().localizedDescription);
    }
  }

  const std::string& path_;
  bool withSound_;
  FilmSource film_;
  bool isDocument_ = false;
};

}  // namespace

Result<FilmSource> readFilmSource(const std::string& path, bool withSound) { return Reader(path, withSound).read(); }

void resample(FilmSource& film, double picturesPerSecond, bool repeats) {
  std::vector<Shot> shots;
  std::size_t seen = 0;
  // Sums of frame times are not exact.
  constexpr double kRounding = 1e-6;
  const auto count = std::max(1.0, std::ceil(film.end * picturesPerSecond - kRounding));
  for (double i = 0; i < count; ++i) {
    const double moment = i / picturesPerSecond;
    while (seen + 1 < film.shots.size() && film.shots[seen + 1].start <= moment + kRounding) ++seen;
    if (repeats || shots.empty() || shots.back().frame != film.shots[seen].frame)
      shots.push_back({moment, film.shots[seen].frame});
  }
  film.shots = std::move(shots);
  film.end = count / picturesPerSecond;
}

}  // namespace halvo
