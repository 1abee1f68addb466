#include "preview/motion_drawings.h"

#include <utility>

#include "import/motion_frames.h"
#include "import/ordered_work.h"
#include "platform/foundation/memory/limits.h"

namespace halvo {

using namespace quellaro;

Result<MotionDrawings> importMotion(const std::string& file, std::optional<double> framesPerSecond,
                                    const std::string& stamp, const PreviewProgress& progress,
                                    const std::atomic<bool>& isStopped) {
  const auto problemIn = [&](const std::string& what) { return NSError{"halvo", 0, file + ": " + what}; };
  const auto opened = openMotionFile(file, {framesPerSecond, "", ""}, ArtOptions{});
  if (const auto* const error = std::get_if<ArtError>(&opened)) return problemIn(error->reason);
  const auto& motion = std::get<MotionFrames>(opened);
  MotionDrawings result;
  double start = 0;
  for (const motion::Moment& moment : motion.moments) {
    result.times.starts.emplace_back(start / 1000);
    start += moment.milliseconds;
  }
  // A picture by itself has no end.
  result.times.end = motion.moments.size() > 1 ? start / 1000 : 0;

  using Art = std::variant<ArtFrame, ArtError>;
  OrderedWork<Art> work(motion.moments.size(), motion.make);
  std::optional<NSError> problem;
  std::size_t bytes = 0;
  work.run([&](std::size_t i, Art art) {
    if (const auto* const error = std::get_if<ArtError>(&art)) {
      problem = problemIn(error->reason);
      return false;
    }
    ArtFrame& frame = std::get<ArtFrame>(art);
    for (const auto& [note, moment] : motion.notes)
      if (moment == i) frame.notes.push_back(note);
    bytes += frame.document.size();
    result.drawings.push_back(std::make_shared<const ImportedDrawing>(
        ImportedDrawing{file, stamp, std::move(frame), motion.moments[i].frame}));
    if (progress) progress(i + 1, motion.moments.size());
    if (isStopped) problem = problemIn("not read to the end");
    if (bytes > limits::kCueBytes)
      problem = problemIn("its frames take more than the " + std::to_string(limits::kCueBytes >> 20) +
                          " MB that the player reads");
    return !problem;
  });
  if (problem) return *problem;
  return result;
}

}  // namespace halvo
