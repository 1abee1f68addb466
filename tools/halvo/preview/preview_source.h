#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "animation/halvo_animation_view.h"
#include "import/source_frame.h"
#include "platform/foundation/error.h"
#include "preview/loop_times.h"
#include "sheet/sheet_source.h"

namespace halvo {

// A drawing and the frame that it has become.
struct ImportedDrawing {
  std::string file;
  std::string stamp;  // another one when the file has been written since
  ArtFrame frame;
  std::optional<std::size_t> motionFrame = {};  // of a motion file: which of its frames, from 0
};

// What a preview shows. Never changed once it is read.
struct PreviewSource {
  SheetSource parts;  // without the frames' texts
  std::shared_ptr<const std::vector<std::string>> texts;
  quellaro::HalvoFrames frames;
  // Of each frame; empty for a cue, whose drawings nobody knows.
  std::vector<std::shared_ptr<const ImportedDrawing>> drawings;
  std::string directory;  // where its files lie
  std::string soundFile;
  std::vector<std::string> absent;  // notes on files that have not been there from the start
  LoopTimes times;
};

struct PreviewOptions {
  std::string path;
  std::optional<double> framesPerSecond = {};  // where nothing else says how long frames last
};

// Called now and then during long work.
using PreviewProgress = std::function<void(std::size_t framesDone, std::size_t frames)>;

// Reads a source, again and again: what has not changed is not imported anew. One thread at a time.
class SourceReader {
 public:
  explicit SourceReader(PreviewOptions options) : options_(std::move(options)) {}

  // The error tells the file and what is wrong with it. What of a cue is missing beside its frames is among the notes
  // of its parts, and stays as it was read before.
  quellaro::Result<std::shared_ptr<const PreviewSource>> read(const PreviewProgress& progress = {});
  // Has a read that is under way fail soon. Any thread.
  void stop() { isStopped_ = true; }

 private:
  using Drawings = std::vector<std::shared_ptr<const ImportedDrawing>>;

  quellaro::Result<PreviewSource> readCue() const;
  quellaro::Result<PreviewSource> readMotion(const PreviewProgress& progress);
  quellaro::Result<PreviewSource> readDrawings(const PreviewProgress& progress);
  quellaro::Result<Drawings> importDrawings(const std::vector<std::string>& files, const PreviewProgress& progress);
  void keepLastGood(PreviewSource& source) const;
  void setAbsentApart(PreviewSource& source);
  bool isDrawing() const;
  PreviewSource sourceOf(Drawings drawings) const;

  PreviewOptions options_;
  std::map<std::string, std::shared_ptr<const ImportedDrawing>> imported_;
  std::shared_ptr<const PreviewSource> last_;
  std::vector<std::string> absent_;
  std::atomic<bool> isStopped_ = false;
};

}  // namespace halvo
