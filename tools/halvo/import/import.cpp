#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "check/output.h"
#include "import/cue_directory.h"
#include "import/frames.h"
#include "import/haptics.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "import/motion_frames.h"
#include "import/motion_report.h"
#include "import/sound.h"
#include "import/source_frame.h"
#include "import/sources.h"
#include "import/taps.h"
#include "import/timeline.h"
#include "options.h"
#include "progress_line.h"

namespace halvo {

namespace {

using namespace quellaro;

// One import: its steps in order, the quick ones that can refuse it first.
class Import {
 public:
  explicit Import(const ImportOptions& options) : options_(options) { outcome_.target = options.target; }

  int run() {
    auto why = steps();
    if (why) tell("not imported: " + placeOf(*why) + ": " + why->what);
    // People have just been told.
    if (why && options_.json) report_.add(std::move(*why));
    const std::string text =
        options_.json ? importJson(outcome_, report_) : importText(outcome_, report_, wantsColor());
    std::fwrite(text.data(), 1, text.size(), stdout);
    return outcome_.isWritten ? kExitFine : kExitFailure;
  }

 private:
  // Each answers with what stands in the way of the next.
  std::optional<Refusal> steps() {
    if (auto why = whyNoTarget(options_.target, options_.replace)) return why;
    if (auto why = readParts()) return why;
    if (auto why = makeFrames()) return why;
    if (auto why = keep(fitTimeline(options_, std::move(frames_.milliseconds), parts_, report_), timeline_)) return why;
    auto staged = StagedCue::begin(options_.target);
    if (auto* const why = std::get_if<Refusal>(&staged)) return std::move(*why);
    StagedCue& cue = std::get<StagedCue>(staged);
    if (auto why = writeFiles(cue)) return why;
    if (auto why = checkFiles(cue)) return why;
    if (auto why = cue.putInPlace(options_.replace)) return why;
    outcome_.isWritten = true;
    return std::nullopt;
  }

  template <class Value>
  static std::optional<Refusal> keep(Importing<Value> made, Value& value) {
    if (auto* const why = std::get_if<Refusal>(&made)) return std::move(*why);
    value = std::move(std::get<Value>(made));
    return std::nullopt;
  }

  std::optional<Refusal> readParts() {
    if (auto why = keep(listSources(options_.sources), files_)) return why;
    if (auto why = keep(readHaptics(options_.haptics, report_), haptics_)) return why;
    parts_.haptics = haptics_.seconds;
    if (options_.sound.empty()) return std::nullopt;
    if (auto why = keep(recogniseSound(options_.sound), sound_.input.emplace())) return why;
    sound_.loudness = options_.loudness;
    parts_.isSoundFixed = sound_.isTakenAsItIs();
    if (auto why = keep(lengthOf(*sound_.input), parts_.sound.emplace())) return why;
    if (!options_.taps) return std::nullopt;
    if (auto why = keep(tapsOf(*sound_.input, options_.soundDelay / 1000, report_), haptics_)) return why;
    parts_.haptics = haptics_.seconds;
    return std::nullopt;
  }

  std::optional<Refusal> makeFrames() {
    FrameOrder order;
    if (auto why = orderFrames(order)) return why;
    {
      ProgressLine line("import");
      if (auto why =
              keep(importFrames(order, report_, [&](std::size_t done, std::size_t total) { line.show(done, total); }),
                   frames_))
        return why;
    }
    if (motion_ && tellOfMotion(*motion_, files_.front(), frames_, report_)) frames_.isExact = false;
    outcome_.frames = std::move(frames_.figures);
    return std::nullopt;
  }

  std::optional<Refusal> takeMotion(FrameOrder& order) {
    const motion::Selection selection{
        options_.isRateGiven ? std::optional(1000 / options_.frameMilliseconds) : std::nullopt, options_.from,
        options_.to};
    auto opened = openMotionFile(files_.front(), selection, options_.art);
    if (auto* const problem = std::get_if<ArtError>(&opened))
      return refusal(files_.front(), std::move(problem->reason));
    motion_ = std::get<MotionFrames>(std::move(opened));
    order.files.assign(motion_->moments.size(), files_.front());
    for (const motion::Moment& moment : motion_->moments) order.milliseconds.push_back(moment.milliseconds);
    order.make = motion_->make;
    order.mergesEqual = true;
    return std::nullopt;
  }

  std::optional<Refusal> orderFrames(FrameOrder& order) {
    const auto motion = std::ranges::find_if(files_, isMotionFile);
    if (motion != files_.end() && files_.size() == 1) return takeMotion(order);
    if (motion != files_.end()) return refusal(*motion, "a motion file is a cue's whole animation: import it alone");
    if (!options_.from.empty() || !options_.to.empty())
      return refusal(files_.front(), "--from and --to take a part of a motion file, which this is not");
    order.files = files_;
    order.milliseconds.assign(files_.size(), options_.frameMilliseconds);
    order.make = [this](std::size_t index) { return importFile(files_[index], options_.art); };
    return std::nullopt;
  }

  std::optional<Refusal> writeFiles(const StagedCue& cue) {
    const std::pair<const char*, std::string> files[] = {
        {kAnimationFile, std::move(frames_.animation)},
        {kHapticsFile, std::move(haptics_.pattern)},
        {kPlayConfigFile, playConfigOf(timeline_, options_.art.side, haptics_.seconds.has_value())}};
    for (const auto& [name, text] : files)
      if (const auto problem = writeWhole(text, cue.pathOf(name)))
        return refusal(options_.target, problem->localizedDescription);
    sound_.leastSeconds = timeline_.soundLength / 1000;
    WrittenSound written;
    if (auto why = keep(writeSound(sound_, cue.pathOf(kSoundFile), report_), written)) return why;
    outcome_.sound = written.levels;
    isExact_ = frames_.isExact && written.isExact;
    return std::nullopt;
  }

  // With the checker's own eyes, so that it has nothing else to say afterwards.
  std::optional<Refusal> checkFiles(const StagedCue& cue) {
    outcome_.facts = checkSource(cue.path(), report_, {});
    if (report_.count(Severity::Error) > 0) return refusal(options_.target, "the player would not play it");
    if (options_.strict && !isExact_)
      return refusal(options_.target, "something was approximated or left out, which --strict forbids");
    return std::nullopt;
  }

  const ImportOptions& options_;
  Report report_;
  Outcome outcome_;
  std::vector<std::string> files_;
  std::optional<MotionFrames> motion_;
  HapticPart haptics_;
  OtherParts parts_;
  SoundOrder sound_;
  ImportedFrames frames_;
  Timeline timeline_;
  bool isExact_ = true;
};

}  // namespace

int importCue(const ImportOptions& options) { return Import(options).run(); }

}  // namespace halvo
