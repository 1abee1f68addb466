#include "import/motion_frames.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "import/art/finish_frame.h"
#include "import/motion/drawing.h"
#include "import/motion/renderer.h"
#include "import/motion/worker.h"
#include "input.h"
#include "picture/svg_folder.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;
using motion::Moment;
using motion::MotionFile;
using motion::Renderer;

// Honest files have some hundred kilobytes, without pictures.
constexpr std::size_t kMotionBytes = std::size_t{32} << 20;
// Of all moments, as they are kept.
constexpr std::size_t kTreeBytes = std::size_t{512} << 20;

ArtError error(std::string reason) { return {std::nullopt, std::move(reason)}; }

std::variant<MotionFile, ArtError> readFile(const std::string& file) {
  auto bytes = FileManager::readAtPath(file, kMotionBytes);
  if (!bytes) return error(bytes.error().localizedDescription);
  return motion::readMotion(std::move(*bytes));
}

// What a file shows at each moment, kept as the process that evaluated it has told it.
class Evaluation {
 public:
  Evaluation(MotionFile file, const ArtOptions& options) : file_(std::move(file)), options_(options) {}

  std::optional<ArtError> evaluate(std::vector<Moment> moments) {
    std::vector<std::size_t> frames;
    frames.reserve(moments.size());
    for (const Moment& moment : moments) frames.push_back(moment.frame);
    std::optional<ArtError> tooMuch;
    std::size_t taken = 0;
    std::size_t bytes = 0;
    const auto take = [&](std::string tree) {
      const Moment& moment = moments[taken++];
      if (!trees_.empty() && trees_.back() == tree) {
        moments_.back().milliseconds += moment.milliseconds;
        return true;
      }
      bytes += tree.size();
      if (bytes > kTreeBytes) tooMuch = error("it draws too much: take a part of it by --from and --to");
      trees_.push_back(std::move(tree));
      moments_.push_back(moment);
      return !tooMuch;
    };
    auto problem = motion::renderApart(
        file_.text, frames,
        [this](const Renderer& renderer, std::size_t frame) { return renderer.tree(frame, file_.width, file_.height); },
        take);
    return tooMuch ? tooMuch : problem;
  }

  const std::vector<Moment>& moments() const { return moments_; }

  // What is missed before the first moment is missed in it, and what is missed after the last in none.
  std::vector<std::pair<ArtNote, std::size_t>> notes() const {
    std::vector<std::pair<ArtNote, std::size_t>> notes;
    const double first = file_.first + static_cast<double>(moments_.front().frame);
    for (const motion::MotionNote& note : file_.notes) {
      const double time = std::max(0.0, (note.frame - first) / file_.framesPerSecond * 1000);
      double end = 0;
      std::size_t moment = 0;
      for (; moment < moments_.size(); ++moment)
        if ((end += moments_[moment].milliseconds) > time + 1e-6) break;
      if (moment == moments_.size()) continue;
      ArtNote told = note.note;
      char text[48];
      std::snprintf(text, sizeof text, "from %.2f s", time / 1000);
      told.howFar = text;
      notes.emplace_back(std::move(told), moment);
    }
    return notes;
  }

  std::variant<ArtFrame, ArtError> make(std::size_t moment) const {
    auto drawing = drawingOf(moment);
    if (!drawing) return error("what evaluates motion files broke down over it");
    return frameOf(std::move(drawing->list));
  }

  std::vector<std::pair<std::string, std::size_t>> bytesOfLayers(std::size_t moment) const {
    std::vector<std::pair<std::string, std::size_t>> layers;
    auto drawing = drawingOf(moment);
    for (std::size_t i = 0; drawing && i < drawing->list.items.size(); ++i) {
      const auto frame = frameOf({{drawing->list.items[i]}});
      if (const auto* const alone = std::get_if<ArtFrame>(&frame))
        layers.emplace_back(drawing->names[i], alone->document.size());
    }
    return layers;
  }

 private:
  std::optional<motion::Drawing> drawingOf(std::size_t moment) const {
    const art::Matrix toFrame =
        art::fitted(static_cast<double>(file_.width), static_cast<double>(file_.height), options_.side);
    return motion::readDrawing(trees_[moment], toFrame, options_.side);
  }

  std::variant<ArtFrame, ArtError> frameOf(art::DisplayList list) const {
    try {
      ArtFrame frame;
      frame.width = static_cast<double>(file_.width);
      frame.height = static_cast<double>(file_.height);
      if (auto problem = art::finishFrame(std::move(list), options_, frame)) return std::move(*problem);
      return frame;
    } catch (const std::bad_alloc&) {
      return error("there is not enough memory for it");
    } catch (const std::exception& problem) {
      return error(problem.what());
    }
  }

  MotionFile file_;
  ArtOptions options_;
  std::vector<Moment> moments_;
  std::vector<std::string> trees_;
};

// The library draws beside what the file shows too, where it is not square.
void clearOutside(const MotionFile& file, Bitmap& picture) {
  const int side = static_cast<int>(picture.width);
  const auto width = static_cast<double>(file.width);
  const auto height = static_cast<double>(file.height);
  const Box shown = map(art::fitted(width, height, side), {0, 0, width, height});
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      if (x + 1 <= shown.minX || x >= shown.maxX || y + 1 <= shown.minY || y >= shown.maxY) picture.row(y)[x] = 0;
}

}  // namespace

bool isMotionFile(const std::string& file) {
  if (svgStemOf(file.substr(file.rfind('/') + 1)) || isStream(file)) return false;
  const FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  char start[256];
  const ssize_t got = opened ? ::read(opened.get(), start, sizeof start) : 0;
  if (got <= 0 || !motion::beginsAsMotion({start, static_cast<std::size_t>(got)})) return false;
  const auto text = FileManager::readAtPath(file, kMotionBytes);
  // One that is too large is told so as a motion file.
  return !text || (text->find("\"layers\"") != std::string::npos && text->find("\"fr\"") != std::string::npos);
}

std::variant<MotionFrames, ArtError> openMotionFile(const std::string& file, const motion::Selection& selection,
                                                    const ArtOptions& options) {
  try {
    auto read = readFile(file);
    if (auto* const problem = std::get_if<ArtError>(&read)) return std::move(*problem);
    auto moments = motion::momentsOf(std::get<MotionFile>(read), selection);
    if (auto* const problem = std::get_if<ArtError>(&moments)) return std::move(*problem);
    const auto evaluation = std::make_shared<Evaluation>(std::get<MotionFile>(std::move(read)), options);
    if (auto problem = evaluation->evaluate(std::get<0>(std::move(moments)))) return std::move(*problem);
    return MotionFrames{evaluation->moments(), evaluation->notes(),
                        [evaluation](std::size_t moment) { return evaluation->make(moment); },
                        [evaluation](std::size_t moment) { return evaluation->bytesOfLayers(moment); }};
  } catch (const std::bad_alloc&) {
    return error("there is not enough memory for it");
  }
}

std::variant<Bitmap, ArtError> drawMotionFrame(const std::string& file, std::size_t frame, int side) {
  auto read = readFile(file);
  if (auto* const problem = std::get_if<ArtError>(&read)) return std::move(*problem);
  Bitmap picture(side, side);
  bool isWhole = false;
  const auto square = static_cast<std::size_t>(side);
  auto problem = motion::renderApart(
      std::get<MotionFile>(read).text, {frame},
      [square](const Renderer& renderer, std::size_t number) { return renderer.picture(number, square); },
      [&](const std::string& pixels) {
        isWhole = pixels.size() == picture.pixels.size() * sizeof picture.pixels[0];
        if (isWhole) std::memcpy(picture.pixels.data(), pixels.data(), pixels.size());
        return true;
      });
  if (problem) return std::move(*problem);
  if (!isWhole) return error("what evaluates motion files broke down over it");
  clearOutside(std::get<MotionFile>(read), picture);
  return picture;
}

}  // namespace halvo
