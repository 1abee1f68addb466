#include "check/frames.h"

#include <cmath>
#include <ctime>
#include <memory>

#include "animation/frame_file.h"
#include "check/budget.h"
#include "check/document_check.h"
#include "picture/frame_source.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

Finding findingIn(const std::string& file, FindingId id, std::string what) {
  return {id, std::move(what), file, std::nullopt, "", "", "", std::nullopt};
}

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
  FramesCheck(const FrameTexts& frames, std::string file, bool isDocument, Report& report)
      : frames_(frames), file_(std::move(file)), isDocument_(isDocument), report_(report) {}

  void run(const CheckProgress& progress) {
    for (std::size_t i = 0; i < frames_.texts.size(); ++i) {
      const std::string_view text = frames_.texts[i];
      const std::optional<std::size_t> number = isDocument_ ? std::nullopt : std::optional(i + 1);
      FrameFindings findings(report_, file_, number, text);
      const std::optional<CGSize> size = checkDocument(text, frames_.storage, findings);
      if (size) compare(*size, findings);
      if (progress) progress(i + 1, frames_.texts.size());
    }
    timePreparing();
  }

 private:
  void compare(CGSize size, FrameFindings& findings) {
    if (!firstSize_) firstSize_ = size;
    if (size != *firstSize_)
      findings.at(0, FindingId::SizeVaries, sizeText(size) + ", and " + sizeText(*firstSize_) + " before");
  }

  // As the player prepares them, without anybody looking on.
  void timePreparing() {
    const std::clock_t start = std::clock();
    parseFrames(frames_);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    if (seconds > budget::kPrepareSeconds)
      report_.add(findingIn(file_, FindingId::BudgetTime,
                            "preparing takes " + std::to_string(std::lround(seconds * 1000)) + " ms here, of " +
                                std::to_string(std::lround(budget::kPrepareSeconds * 1000))));
  }

  const FrameTexts& frames_;
  std::string file_;
  bool isDocument_;
  Report& report_;
  std::optional<CGSize> firstSize_;
};

}  // namespace

bool checkFrames(const Result<std::string>& text, bool isDocument, const std::string& file, Report& report,
                 const CheckProgress& progress, std::size_t& frames) {
  const auto refuse = [&](FindingId id, std::string what) {
    report.add(findingIn(file, id, std::move(what)));
    return false;
  };
  if (!text) return refuse(FindingId::Unreadable, text.error().localizedDescription);
  if (!isDocument && text->size() > budget::kAnimationBytes)
    report.add(findingIn(file, FindingId::BudgetBytes,
                         std::to_string(text->size()) + " bytes, of " + std::to_string(budget::kAnimationBytes)));
  FrameTexts texts;
  if (isDocument) {
    texts = framesOfDocument(*text);
  } else {
    auto decoded = decodeFrames(*text);
    if (!decoded) return refuse(FindingId::Json, decoded.error().localizedDescription);
    texts = std::move(*decoded);
    if (texts.texts.empty()) return refuse(FindingId::NoFrames, whyNoFrames(*text));
  }
  frames = texts.texts.size();
  FramesCheck(texts, file, isDocument, report).run(progress);
  return true;
}

}  // namespace halvo
