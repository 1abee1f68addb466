#include "check/frames.h"

#include <cmath>
#include <ctime>
#include <memory>
#include <utility>
#include <vector>

#include "animation/frame_file.h"
#include "check/budget.h"
#include "check/document_check.h"
#include "check/drawing_cost.h"
#include "check/encoding.h"
#include "picture/frame_look.h"
#include "picture/frame_source.h"
#include "picture/svg_folder.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

Finding findingIn(const std::string& file, FindingId id, std::string what) {
  return {id, std::move(what), file, std::nullopt, "", "", "", std::nullopt};
}

// A larger text is not kept for telling why it holds no frames.
constexpr std::size_t kExplainedBytes = std::size_t{1} << 20;

// Why a valid JSON text holds no frames.
std::string whyNoFrames(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error().localizedDescription;
  if (document->root().type() != JSONType::Array)
    return "an array of frames was expected, but this is " + std::string(describe(document->root().type()));
  std::size_t number = 0;
  for (const JSONValue& value : document->root().elements()) {
    ++number;
    if (!value.string())
      return "Frame_" + std::to_string(number) + " is no text, but " + std::string(describe(value.type()));
  }
  return "the array is empty";
}

std::string sizeText(const CGSize& size) {
  std::string text;
  appendShortest(text, size.width);
  text += " x ";
  appendShortest(text, size.height);
  return text;
}

class FramesCheck {
 public:
  FramesCheck(FrameTexts frames, std::string file, bool isDocument, Report& report)
      : frames_(std::move(frames)), file_(std::move(file)), isDocument_(isDocument), report_(report) {}
  // Of a folder: a file for each frame. What could not be read is empty, and has been told.
  FramesCheck(FrameTexts frames, std::string folder, std::vector<std::string> files, Report& report)
      : frames_(std::move(frames)), file_(std::move(folder)), files_(std::move(files)), report_(report) {}

  std::vector<double> run(const CheckProgress& progress) {
    changes_.resize(frames_.texts.size());
    if (!prepare()) return std::move(changes_);
    for (std::size_t i = 0; i < frames_.texts.size(); ++i) {
      const std::string_view text = frames_.texts[i];
      const std::optional<std::size_t> number = isDocument_ ? std::nullopt : std::optional(i + 1);
      if (!files_.empty() && text.empty()) continue;
      FrameFindings findings(report_, files_.empty() ? file_ : files_[i], number, text, files_.empty() ? "" : file_);
      const std::size_t mistakes = report_.mistakes();
      const auto document = checkDocument(text, frames_.storage, findings);
      if (document) {
        compare(*document->viewbox(), findings);
        weigh(*document, findings);
      }
      // What is lost of it has been told, and may be why there is nothing to be seen.
      changes_[i] = look(document, number, report_.mistakes() > mistakes);
      if (progress) progress(i + 1, frames_.texts.size());
    }
    judgeLooks();
    return std::move(changes_);
  }

 private:
  void compare(CGSize size, FrameFindings& findings) {
    if (!firstSize_) firstSize_ = size;
    if (size != *firstSize_)
      findings.at(0, FindingId::SizeVaries, sizeText(size) + ", and " + sizeText(*firstSize_) + " before");
  }

  static void weigh(const SVGDocument& document, FrameFindings& findings) {
    const std::shared_ptr<const CALayer> layers = document.makeLayer();
    const double paints = layers ? paintedFrames(*layers, *document.viewbox()) : 0;
    if (paints <= budget::kFramePaints) return;
    const bool isEndless = paints > budget::kMostFramePaints;
    findings.at(0, isEndless ? FindingId::BudgetStandstill : FindingId::BudgetPainting,
                "its shapes cover the frame " + std::to_string(std::lround(paints)) + " times over, of " +
                    std::to_string(std::lround(isEndless ? budget::kMostFramePaints : budget::kFramePaints)));
  }

  double look(const std::shared_ptr<const SVGDocument>& document, std::optional<std::size_t> number, bool isExplained) {
    const FrameEyes::Look seen = eyes_.look(document);
    if (seen.isSeenOnBlack || seen.isSeenOnWhite)
      ++seen_;
    else if (!isExplained)
      unseen_.push_back(number);
    if (seen.isSeenOnBlack != seen.isSeenOnWhite) (seen.isSeenOnWhite ? black_ : white_).push_back(number);
    return seen.change;
  }

  // A document by itself may well be an empty frame of many; a cue of nothing else is none.
  void judgeLooks() {
    if (seen_ == 0 && !isDocument_ && files_.empty()) {
      report_.add(findingIn(file_, FindingId::NothingSeen, "nothing is to be seen in any frame"));
      return;
    }
    const auto tell = [&](FindingId id, const std::vector<std::optional<std::size_t>>& frames, const char* what,
                          const char* key) {
      for (const auto& frame : frames) report_.add({id, what, file_, frame, "", "", key, std::nullopt});
    };
    tell(FindingId::FrameUnseen, unseen_, "nothing is to be seen", "");
    tell(FindingId::GroundColor, black_, "all that is painted is black", "black");
    tell(FindingId::GroundColor, white_, "all that is painted is white", "white");
  }

  // As the player prepares them, without anybody looking on. What it refuses is not looked at any closer.
  bool prepare() {
    const std::clock_t start = std::clock();
    const auto documents = parseFrames({frames_.storage, frames_.texts, std::move(frames_.spent)});
    if (!documents) {
      report_.add(findingIn(file_, FindingId::BudgetCue, documents.error().localizedDescription));
      return false;
    }
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    if (seconds > budget::kPrepareSeconds)
      report_.add(findingIn(file_, FindingId::BudgetTime,
                            "preparing takes " + std::to_string(std::lround(seconds * 1000)) + " ms here, of " +
                                std::to_string(std::lround(budget::kPrepareSeconds * 1000))));
    return true;
  }

  FrameTexts frames_;
  std::string file_;
  std::vector<std::string> files_;
  bool isDocument_ = false;
  Report& report_;
  std::optional<CGSize> firstSize_;
  FrameEyes eyes_;
  std::vector<double> changes_;
  std::size_t seen_ = 0;
  std::vector<std::optional<std::size_t>> unseen_;
  // Seen on one ground alone.
  std::vector<std::optional<std::size_t>> black_;
  std::vector<std::optional<std::size_t>> white_;
};

}  // namespace

std::vector<double> checkFrames(Result<std::string> text, bool isDocument, const std::string& file, Report& report,
                                const CheckProgress& progress) {
  const auto refuse = [&](FindingId id, std::string what) {
    report.add(findingIn(file, id, std::move(what)));
    return std::vector<double>();
  };
  if (!text) return refuse(FindingId::Unreadable, text.error().localizedDescription);
  if (!isDocument && text->size() > budget::kAnimationBytes)
    report.add(findingIn(file, FindingId::BudgetBytes,
                         std::to_string(text->size()) + " bytes, of " + std::to_string(budget::kAnimationBytes)));
  if (text->size() > limits::kCueBytes)
    return refuse(FindingId::BudgetCue,
                  std::to_string(text->size()) + " bytes, of " + std::to_string(limits::kCueBytes));
  if (const std::string_view encoding = foreignEncodingOf(*text); !encoding.empty())
    return refuse(FindingId::Encoding, "it is " + std::string(encoding));
  FrameTexts texts;
  if (isDocument) {
    texts = framesOfDocument(std::move(*text));
  } else {
    const std::string kept = text->size() <= kExplainedBytes ? *text : std::string();
    auto decoded = decodeFrames(std::move(*text));
    if (!decoded) return refuse(FindingId::Json, decoded.error().localizedDescription);
    texts = std::move(*decoded);
    if (texts.texts.empty())
      return refuse(FindingId::NoFrames, kept.empty() ? "it is no array of texts" : whyNoFrames(kept));
  }
  return FramesCheck(std::move(texts), file, isDocument, report).run(progress);
}

std::vector<double> checkFolder(const std::string& folder, Report& report, const CheckProgress& progress) {
  const auto kept = std::make_shared<std::vector<std::string>>();
  std::vector<std::string> files;
  std::size_t bytes = 0;
  const std::string start = folder.ends_with('/') ? folder : folder + "/";
  for (const std::string& name : svgNamesIn(folder)) {
    auto text = FileManager::readAtPath(start + name);
    const std::string_view encoding = text ? foreignEncodingOf(*text) : std::string_view();
    if (!text) report.add(findingIn(start + name, FindingId::Unreadable, text.error().localizedDescription));
    if (!encoding.empty()) report.add(findingIn(start + name, FindingId::Encoding, "it is " + std::string(encoding)));
    files.push_back(start + name);
    kept->push_back(text && encoding.empty() ? std::move(*text) : std::string());
    bytes += kept->back().size();
    if (bytes <= limits::kCueBytes) continue;
    report.add(
        findingIn(folder, FindingId::BudgetCue, "more than " + std::to_string(limits::kCueBytes) + " bytes in all"));
    return {};
  }
  return FramesCheck({kept, {kept->begin(), kept->end()}, {}}, folder, std::move(files), report).run(progress);
}

}  // namespace halvo
