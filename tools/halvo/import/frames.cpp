#include "import/frames.h"

#include <utility>

#include "import/ordered_work.h"
#include "import/source_frame.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

using Art = std::variant<ArtFrame, ArtError>;

std::string sizeText(const FrameFigures& figures) {
  std::string text;
  appendShortest(text, figures.width);
  text += " x ";
  appendShortest(text, figures.height);
  return text;
}

// Puts the frames into one text, one after the other, and tells of them.
class FrameGathering {
 public:
  FrameGathering(const std::vector<std::string>& files, Report& report) : files_(files), report_(report) {
    json_.beginArray();
  }

  // Whether there is room for more.
  bool add(std::size_t index, Art art) {
    if (const auto* const error = std::get_if<ArtError>(&art)) {
      refuse(index, error->reason);
      if (error->line) refusal_->position = TextPosition{*error->line, 0};
      return false;
    }
    const ArtFrame& frame = std::get<ArtFrame>(art);
    json_.string(frame.document);
    if (json_.text().size() >= limits::kFileBytes) {
      refuse(index, "the frames up to here take more than the " + std::to_string(limits::kFileBytes >> 20) +
                        " MB that the player reads");
      return false;
    }
    for (const ArtNote& note : frame.notes) tell(index, note);
    frames_.figures.push_back(
        {files_[index], frame.width, frame.height, frame.document.size(), frame.elements, frame.points});
    compareSizes(index);
    return true;
  }

  Importing<ImportedFrames> take() {
    if (refusal_) return std::move(*refusal_);
    json_.endArray();
    frames_.animation = json_.take() + "\n";
    return std::move(frames_);
  }

 private:
  void refuse(std::size_t index, std::string why) {
    refusal_ = refusal(files_[index], std::move(why));
    refusal_->frame = index + 1;
  }

  void tell(std::size_t index, const ArtNote& note) {
    frames_.isExact = false;
    const std::size_t hash = std::min(note.element.find('#'), note.element.size());
    Finding finding = importFinding(note.loss == ArtLoss::LeftOut ? FindingId::LeftOut : FindingId::Approximated,
                                    files_[index], note.what, note.howFar);
    finding.frame = index + 1;
    finding.element = printable(note.element.substr(0, hash));
    finding.elementId = printable(note.element.substr(std::min(hash + 1, note.element.size())));
    report_.add(std::move(finding));
  }

  void compareSizes(std::size_t index) {
    const std::string first = sizeText(frames_.figures.front());
    const std::string size = sizeText(frames_.figures.back());
    if (size == first) return;
    Finding finding = importFinding(FindingId::Fitted, files_[index], "sources of different sizes, each fitted",
                                    size + ", and " + first + " before");
    finding.frame = index + 1;
    report_.add(std::move(finding));
  }

  const std::vector<std::string>& files_;
  Report& report_;
  JSONWriter json_;
  ImportedFrames frames_;
  std::optional<Refusal> refusal_;
};

}  // namespace

Importing<ImportedFrames> importFrames(const std::vector<std::string>& files, const ArtOptions& options, Report& report,
                                       const FrameProgress& progress) {
  FrameGathering gathering(files, report);
  OrderedWork<Art> work(files.size(), [&](std::size_t index) { return importFile(files[index], options); });
  work.run([&](std::size_t index, Art art) {
    if (!gathering.add(index, std::move(art))) return false;
    progress(index + 1, files.size());
    return true;
  });
  return gathering.take();
}

}  // namespace halvo
