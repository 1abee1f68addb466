#include "import/frames.h"

#include <utility>

#include "import/ordered_work.h"
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
  FrameGathering(const FrameOrder& order, Report& report) : order_(order), files_(order.files), report_(report) {
    json_.beginArray();
  }

  // Whether there is room for more.
  bool add(std::size_t index, Art art) {
    if (const auto* const error = std::get_if<ArtError>(&art)) {
      refuse(index, error->reason);
      if (error->line) refusal_->position = TextPosition{*error->line, 0};
      return false;
    }
    ArtFrame& frame = std::get<ArtFrame>(art);
    if (order_.mergesEqual && index > 0 && frame.document == last_) {
      frames_.milliseconds.back() += order_.milliseconds[index];
      frames_.numbers.push_back(frames_.figures.size());
      return true;
    }
    json_.string(frame.document);
    if (json_.text().size() >= limits::kFileBytes) {
      refuse(index, "the frames up to here take more than the " + std::to_string(limits::kFileBytes >> 20) +
                        " MB that the player reads");
      return false;
    }
    frames_.figures.push_back(
        {files_[index], frame.width, frame.height, frame.document.size(), frame.elements, frame.points});
    frames_.milliseconds.push_back(order_.milliseconds[index]);
    frames_.numbers.push_back(frames_.figures.size());
    for (const ArtNote& note : frame.notes) tell(index, note);
    compareSizes(index);
    if (order_.mergesEqual) last_ = std::move(frame.document);
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
    report_.add(findingOf(note, files_[index], frames_.figures.size()));
  }

  void compareSizes(std::size_t index) {
    const std::string first = sizeText(frames_.figures.front());
    const std::string size = sizeText(frames_.figures.back());
    if (size == first) return;
    Finding finding = importFinding(FindingId::Fitted, files_[index], "sources of different sizes, each fitted",
                                    size + ", and " + first + " before");
    finding.frame = frames_.figures.size();
    report_.add(std::move(finding));
  }

  const FrameOrder& order_;
  const std::vector<std::string>& files_;
  Report& report_;
  JSONWriter json_;
  ImportedFrames frames_;
  std::string last_;
  std::optional<Refusal> refusal_;
};

}  // namespace

Finding findingOf(const ArtNote& note, const std::string& file, std::size_t frame) {
  const std::size_t hash = std::min(note.element.find('#'), note.element.size());
  Finding finding = importFinding(note.loss == ArtLoss::LeftOut ? FindingId::LeftOut : FindingId::Approximated, file,
                                  note.what, note.howFar);
  finding.frame = frame;
  finding.element = printable(note.element.substr(0, hash));
  finding.elementId = printable(note.element.substr(std::min(hash + 1, note.element.size())));
  return finding;
}

Importing<ImportedFrames> importFrames(const FrameOrder& order, Report& report, const FrameProgress& progress) {
  FrameGathering gathering(order, report);
  const std::size_t count = order.files.size();
  OrderedWork<Art> work(count, order.make);
  work.run([&](std::size_t index, Art art) {
    if (!gathering.add(index, std::move(art))) return false;
    progress(index + 1, count);
    return true;
  });
  return gathering.take();
}

}  // namespace halvo
