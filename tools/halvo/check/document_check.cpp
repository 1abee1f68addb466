#include "check/document_check.h"

#include <algorithm>
#include <vector>

#include "check/attributes.h"
#include "check/budget.h"
#include "check/elements.h"
#include "check/geometry_check.h"
#include "check/paint.h"
#include "check/path_check.h"
#include "check/size.h"
#include "check/transform.h"
#include "picture/frame_source.h"
#include "svg/document.h"
#include "svg/parse_observer.h"

namespace halvo {

namespace {

using namespace quellaro;

class DocumentCheck final : public SVGParseObserver {
 public:
  explicit DocumentCheck(FrameFindings& findings) : findings_(findings) {}

  void didStartElement(std::string_view name, XMLAttributes attributes, const SVGElement* made) override {
    const CheckedElement element{name, attributes, made};
    Open open = open_.empty() ? Open{} : open_.back();
    checkStructure(element, open);
    if (made != nullptr) count(*made);
    open_.push_back(open);
    isFirst_ = false;
  }
  void didEndElement(std::string_view /*name*/) override { open_.pop_back(); }
  void didFail(const XMLError& error) override {
    findings_.at(error.offset, FindingId::Xml, std::string(error.message));
  }

  bool hasPrefixes() const { return hasPrefixes_; }
  std::size_t elements() const { return elements_; }
  std::size_t points() const { return points_; }

 private:
  // What a standard renderer does with an element's content, and what there is to say about it.
  enum class Content {
    Drawn,
    Defined,  // not drawn, but there to be referred to
    Lost,     // not drawn, and nothing more to be said
  };
  struct Open {
    Content content = Content::Drawn;
    StandardStyle style;
  };

  void checkStructure(const CheckedElement& element, Open& open) {
    if (element.name == "svg") checkSvg(element);
    if (open.content != Content::Lost && hasPrefix(element)) {
      hasPrefixes_ = true;
      open.content = Content::Lost;
      return findings_.inElement(FindingId::Prefix, element, "<" + printable(element.name) + ">");
    }
    if (open.content != Content::Drawn && isSeen(element))
      findings_.inElement(FindingId::DefinitionDrawn, element, "a shape where none is drawn");
    if (open.content == Content::Lost) return;
    const ElementRole role = roleOf(element.name);
    if (role.finding && !isEmptySheet(element))
      findings_.inElement(*role.finding, element, "<" + printable(element.name) + ">");
    if (!role.drawsContent) open.content = element.name == "defs" ? Content::Defined : Content::Lost;
    if (open.content == Content::Drawn) checkDrawn(element, open);
  }

  // A style sheet with nothing in it changes nothing.
  bool isEmptySheet(const CheckedElement& element) const {
    if (element.name != "style") return false;
    std::string_view rest = findings_.text();
    rest.remove_prefix(static_cast<std::size_t>(element.name.data() - rest.data()));
    rest.remove_prefix(std::min(rest.find('>'), rest.size() - 1));
    if (findings_.text()[static_cast<std::size_t>(rest.data() - findings_.text().data()) - 1] == '/') return true;
    rest.remove_prefix(1);
    return rest.substr(std::min(rest.find_first_not_of(" \t\r\n"), rest.size())).starts_with("</");
  }

  // Whether the name begins with a prefix that stands for SVG.
  bool hasPrefix(const CheckedElement& element) {
    for (const XMLAttribute& attribute : element.attributes)
      if (attribute.name.starts_with("xmlns:") && attribute.value == kNamespace)
        prefixes_.emplace_back(attribute.name.substr(6));
    const std::size_t colon = element.name.find(':');
    return colon != std::string_view::npos &&
           std::find(prefixes_.begin(), prefixes_.end(), element.name.substr(0, colon)) != prefixes_.end();
  }

  // The first is the frame itself.
  void checkSvg(const CheckedElement& element) {
    if (hasSvg_) return findings_.inElement(FindingId::NestedSvg, element, "<svg> within a frame");
    hasSvg_ = true;
    checkRoot(element, findings_);
    if (!isFirst_) findings_.inElement(FindingId::Root, element, "<svg> is not the first element");
  }

  void checkDrawn(const CheckedElement& element, Open& open) {
    // What holds of <a> and <switch> has been said.
    const bool isKnown = element.made != nullptr || element.name == "svg";
    if (isKnown) {
      checkPresentation(element, findings_);
      checkTransform(element, element.made != nullptr, findings_);
    }
    open.style = inheritedStyle(open.style, element, element.made != nullptr, findings_);
    if (element.made == nullptr) return;
    checkGeometry(element, findings_);
    if (element.name == "path") checkPath(element, findings_);
    if (!element.made->path().cgPath().empty()) checkPaint(element, open.style, findings_);
  }

  // Whether the engine paints anything of it.
  static bool isSeen(const CheckedElement& element) {
    if (element.made == nullptr || element.made->path().cgPath().empty()) return false;
    const auto& fill = element.made->fillColor();
    const auto& stroke = element.made->strokeColor();
    return (fill && fill->alpha > 0) || (stroke && stroke->alpha > 0 && element.made->strokeWidth() > 0);
  }

  void count(const SVGElement& made) {
    ++elements_;
    points_ += made.path().cgPath().points().size();
  }

  FrameFindings& findings_;
  std::vector<Open> open_;
  bool isFirst_ = true;
  bool hasSvg_ = false;
  std::vector<std::string> prefixes_;
  bool hasPrefixes_ = false;
  std::size_t elements_ = 0;
  std::size_t points_ = 0;
};

void checkBudget(std::string_view text, const DocumentCheck& check, FrameFindings& findings) {
  const auto tell = [&](FindingId id, std::size_t found, std::size_t budget, const char* unit) {
    if (found > budget)
      findings.at(0, id, std::to_string(found) + " " + unit + " in one frame, of " + std::to_string(budget));
  };
  tell(FindingId::BudgetBytes, text.size(), budget::kFrameBytes, "bytes");
  tell(FindingId::BudgetElements, check.elements(), budget::kFrameElements, "elements");
  tell(FindingId::BudgetPoints, check.points(), budget::kFramePoints, "points");
}

}  // namespace

std::shared_ptr<const SVGDocument> checkDocument(std::string_view text, const std::shared_ptr<const void>& owner,
                                                 FrameFindings& findings) {
  // The parser passes over processing instructions, so this one is looked for.
  if (const std::size_t sheet = text.find("<?xml-stylesheet"); sheet != std::string_view::npos)
    findings.at(sheet, FindingId::Style, "<?xml-stylesheet");
  DocumentCheck check(findings);
  // Of this frame alone, so that memory does not grow with their number.
  const auto arena = std::make_shared<Arena>(std::clamp<std::size_t>(text.size(), 1 << 10, 1 << 20));
  const std::shared_ptr<SVGDocument> document = SVGDocument::parse(text, owner, arena, &check);
  checkBudget(text, check, findings);
  if (!document->viewbox()) {
    if (!check.hasPrefixes()) findings.at(0, FindingId::NoSvg, "there is no <svg>");
    return nullptr;
  }
  return canBeShown(*document->viewbox()) ? document : nullptr;
}

}  // namespace halvo
