#include "preview/preview_source.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "import/motion_frames.h"
#include "import/ordered_work.h"
#include "import/sources.h"
#include "input.h"
#include "picture/frame_source.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"
#include "preview/motion_drawings.h"

namespace halvo {

using namespace quellaro;

namespace {

NSError problemIn(const std::string& file, const std::string& what) { return {"halvo", 0, file + ": " + what}; }

// Empty when there is no such file.
std::string stampOf(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return "";
  return std::to_string(status.st_ino) + " " + std::to_string(status.st_size) + " " +
         std::to_string(status.st_mtim.tv_sec) + " " + std::to_string(status.st_mtim.tv_nsec);
}

bool hasEnding(const std::string& path, std::string_view ending) {
  return path.size() > ending.size() &&
         strcasecmp(path.c_str() + path.size() - ending.size(), std::string(ending).c_str()) == 0;
}

// Whether a file's text begins as a document's, whatever its name.
bool beginsAsDocument(const std::string& path) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  char start[256];
  const ssize_t got = file ? ::read(file.get(), start, sizeof start) : 0;
  return got > 0 && isSvgDocument(path, {start, static_cast<std::size_t>(got)});
}

FrameTimes evenTimes(std::size_t frames, double framesPerSecond) {
  FrameTimes times;
  for (std::size_t i = 0; i < frames; ++i) times.starts.emplace_back(static_cast<double>(i) / framesPerSecond);
  times.end = frames > 1 ? static_cast<double>(frames) / framesPerSecond : 0;
  return times;
}

// The frames as the player reads them, with the bounds that a cue has.
Result<HalvoFrames> parseTexts(const std::shared_ptr<const std::vector<std::string>>& texts) {
  FrameTexts frames;
  frames.storage = texts;
  frames.texts.assign(texts->begin(), texts->end());
  return parseFrames(std::move(frames));
}

}  // namespace

bool SourceReader::isDrawing() const {
  return hasEnding(options_.path, ".svg") || hasEnding(options_.path, ".svgz") || beginsAsDocument(options_.path);
}

Result<std::shared_ptr<const PreviewSource>> SourceReader::read(const PreviewProgress& progress) {
  const std::string& path = options_.path;
  if (!FileManager::fileExistsAtPath(path)) return problemIn(path, posixError(ENOENT).localizedDescription);
  if (isStream(path)) return problemIn(path, "a file or a directory is needed, which can be read again");
  const bool isFolder = FileManager::directoryExistsAtPath(path);
  const bool isMotion = !isFolder && isMotionFile(path);
  const bool isCue = isFolder ? FileManager::fileExistsAtPath(path + "/animation.json") : !isDrawing();
  auto read = isMotion ? readMotion(progress) : isCue ? readCue() : readDrawings(progress);
  if (!read) return read.error();
  read->texts = std::make_shared<const std::vector<std::string>>(std::exchange(read->parts.frames, {}));
  auto frames = parseTexts(read->texts);
  if (!frames) return problemIn(path, frames.error().localizedDescription);
  read->frames = std::move(*frames);
  setAbsentApart(*read);
  keepLastGood(*read);
  if (!read->parts.times) read->parts.times = evenTimes(read->frames.size(), options_.framesPerSecond.value_or(60));
  read->times = LoopTimes(*read->parts.times, read->parts.duration());
  last_ = std::make_shared<const PreviewSource>(std::move(*read));
  return last_;
}

Result<PreviewSource> SourceReader::readCue() const {
  auto parts = readSheetSource(options_.path);
  if (!parts) return parts.error();
  PreviewSource source;
  source.parts = std::move(*parts);
  const std::filesystem::path path(options_.path);
  const bool isDirectory = FileManager::directoryExistsAtPath(options_.path);
  source.directory = isDirectory ? path : path.parent_path();
  source.soundFile = std::filesystem::path(source.directory) / kSoundFile;
  return source;
}

// Whoever draws first and has no sound yet is not to be reminded of it all the time.
void SourceReader::setAbsentApart(PreviewSource& source) {
  const std::filesystem::path directory = source.directory;
  std::vector<std::string> news;
  for (std::string& note : source.parts.notes) {
    const bool isAbsent =
        std::ranges::any_of(std::array{kPlayConfigFile, kSoundFile, kHapticsFile}, [&](const char* name) {
          const std::string file = directory / name;
          return note.starts_with(file + ": ") && !FileManager::fileExistsAtPath(file);
        });
    const bool isOld = std::ranges::find(absent_, note) != absent_.end();
    (isAbsent && (!last_ || isOld) ? source.absent : news).push_back(std::move(note));
  }
  source.parts.notes = std::move(news);
  absent_ = source.absent;
}

// A file that is being worked on, or a moment without it, takes nothing away that was there.
void SourceReader::keepLastGood(PreviewSource& source) const {
  if (!last_ || source.parts.notes.empty()) return;
  const SheetSource& before = last_->parts;
  SheetSource& now = source.parts;
  if (!now.times && before.times && last_->frames.size() == source.frames.size()) {
    now.times = before.times;
    now.soundStart = before.soundStart;
    now.expectsHaptics = before.expectsHaptics;
    now.haptics = before.haptics;
  }
  if (!now.sound) now.sound = before.sound;
  if (!now.haptics && now.expectsHaptics) now.haptics = before.haptics;
}

Result<PreviewSource> SourceReader::readDrawings(const PreviewProgress& progress) {
  auto listed = listSources({options_.path});
  if (const auto* why = std::get_if<Refusal>(&listed)) {
    const bool isFolder = FileManager::directoryExistsAtPath(options_.path);
    return problemIn(why->file, why->what + (isFolder ? ", and no animation.json" : ""));
  }
  auto drawings = importDrawings(std::get<0>(listed), progress);
  if (!drawings) return drawings.error();
  return sourceOf(std::move(*drawings));
}

Result<PreviewSource> SourceReader::readMotion(const PreviewProgress& progress) {
  auto motion = importMotion(options_.path, options_.framesPerSecond, stampOf(options_.path), progress, isStopped_);
  if (!motion) return motion.error();
  PreviewSource source = sourceOf(std::move(motion->drawings));
  source.parts.times = std::move(motion->times);
  return source;
}

PreviewSource SourceReader::sourceOf(Drawings drawings) const {
  PreviewSource source;
  source.drawings = std::move(drawings);
  source.directory = std::filesystem::path(source.drawings.front()->file).parent_path();
  std::filesystem::path named = std::filesystem::path(options_.path).lexically_normal();
  if (!named.has_filename()) named = named.parent_path();
  source.parts.name = named.filename();
  for (const auto& drawing : source.drawings) source.parts.frames.push_back(drawing->frame.document);
  return source;
}

Result<SourceReader::Drawings> SourceReader::importDrawings(const std::vector<std::string>& files,
                                                            const PreviewProgress& progress) {
  std::map<std::string, std::shared_ptr<const ImportedDrawing>> fresh;
  std::size_t bytes = 0;
  std::vector<std::pair<std::string, std::string>> changed;  // with their stamps, taken before they are read
  for (const std::string& file : files) {
    // It could make a reader wait.
    if (isStream(file)) return problemIn(file, "is no regular file");
    std::string stamp = stampOf(file);
    const auto known = imported_.find(file);
    if (known != imported_.end() && known->second->stamp == stamp)
      bytes += fresh.insert(*known).first->second->frame.document.size();
    else
      changed.emplace_back(file, std::move(stamp));
  }
  using Art = std::variant<ArtFrame, ArtError>;
  OrderedWork<Art> work(changed.size(), [&](std::size_t i) { return importFile(changed[i].first, ArtOptions{}); });
  std::optional<NSError> problem;
  work.run([&](std::size_t i, Art art) {
    const auto& [file, stamp] = changed[i];
    if (const auto* error = std::get_if<ArtError>(&art)) {
      problem = problemIn(file, (error->line ? "line " + std::to_string(*error->line) + ": " : "") + error->reason);
      return false;
    }
    bytes += std::get<ArtFrame>(art).document.size();
    if (bytes > limits::kCueBytes) {
      problem = problemIn(file, "the frames up to here take more than the " + std::to_string(limits::kCueBytes >> 20) +
                                    " MB that the player reads");
      return false;
    }
    fresh[file] =
        std::make_shared<const ImportedDrawing>(ImportedDrawing{file, stamp, std::get<ArtFrame>(std::move(art)), {}});
    if (progress) progress(fresh.size(), files.size());
    if (isStopped_) problem = problemIn(file, "not read to the end");
    return !problem;
  });
  // What has been imported, beside a file that could not be, need not be again.
  if (problem) {
    for (auto& [file, drawing] : fresh) imported_[file] = drawing;
    return *problem;
  }
  imported_ = std::move(fresh);
  Drawings drawings;
  for (const std::string& file : files) drawings.push_back(imported_.at(file));
  return drawings;
}

}  // namespace halvo
