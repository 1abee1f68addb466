#include "import/art/source_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <utility>

#include "import/art/source_masks.h"
#include "import/art/source_tags.h"
#include "platform/foundation/network/content_decoder.h"
#include "platform/foundation/text/numbers.h"

namespace halvo::art {

namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 20;
constexpr std::size_t kMostElements = 100000;
// For masks, each of which looks through all of them.
constexpr std::size_t kMostEdits = 20000;

struct Told {
  std::string_view element;
  ArtLoss loss;
  const char* what;
};
// Elements of which the frame shows nothing, or something else.
constexpr std::array kTold = {
    Told{"script", ArtLoss::LeftOut, "a script is not run"},
    Told{"foreignObject", ArtLoss::LeftOut, "what is no SVG is left out"},
    Told{"animate", ArtLoss::LeftOut, "an animation is left out"},
    Told{"animateTransform", ArtLoss::LeftOut, "an animation is left out"},
    Told{"animateMotion", ArtLoss::LeftOut, "an animation is left out"},
    Told{"set", ArtLoss::LeftOut, "an animation is left out"},
    Told{"textPath", ArtLoss::LeftOut, "text along a path is left out"},
    Told{"flowRoot", ArtLoss::LeftOut, "flowing text is left out"},
    Told{"meshgradient", ArtLoss::LeftOut, "a mesh gradient is left out"},
    Told{"hatch", ArtLoss::LeftOut, "a hatch is left out"},
    Told{"text", ArtLoss::Approximated, "text is drawn in this machine's fonts, as outlines"},
    Told{"font", ArtLoss::LeftOut, "a font within the document is left out"},
};

bool isOutside(std::string_view reference) {
  return !reference.empty() && !reference.starts_with('#') && !reference.starts_with("data:");
}

class Preparing {
 public:
  Preparing(std::string text, const SourceSize& size, std::vector<ArtNote>& notes)
      : text_(std::move(text)), size_(size), notes_(notes) {}

  std::variant<SourceText, ArtError> run() {
    const std::optional<TagScan> scan = scanTags(text_);
    if (!scan) return SourceText{text_, text_.find("<text") != std::string::npos, false};
    for (const Tag& tag : scan->tags)
      if (const auto id = tag.find("id")) ids_.emplace(*id, &tag);
    for (const std::string_view instruction : scan->instructions)
      if (instruction.starts_with("<?xml-stylesheet"))
        tell(ArtLoss::LeftOut, "xml-stylesheet", "a style sheet outside of the file is not read");
    for (const Tag& tag : scan->tags) {
      removeFrom(tag);
      readMaskClasses(tag);
    }
    const std::vector<Edit> withoutIds = removalsInMasks(*scan);
    for (const Tag& tag : scan->tags) maskOf(tag, withoutIds);
    turn(scan->tags.front());
    std::string document = edited(text_, 0, text_.size(), edits_);
    if (document.size() > 2 * kMostBytes) return ArtError{std::nullopt, "its masks make the document too large"};
    return SourceText{std::move(document), hasText_, true};
  }

 private:
  void tell(ArtLoss loss, std::string element, std::string what) {
    notes_.push_back({loss, std::move(element), std::move(what), ""});
  }

  std::size_t offsetOf(std::string_view part) const { return static_cast<std::size_t>(part.data() - text_.data()); }
  // So that nobody knows it any more.
  void rename(std::string_view name) { edits_.push_back({offsetOf(name), 0, "x-"}); }

  // A property of that name, where it stands in a list of them, with its value.
  struct Property {
    std::string_view name, value;
  };
  static std::optional<Property> findProperty(std::string_view list, std::string_view name, std::size_t from) {
    for (std::size_t at = list.find(name, from); at != std::string_view::npos; at = list.find(name, at + 1)) {
      const bool begins = at == 0 || std::string_view("; \t\r\n{/").find(list[at - 1]) != std::string_view::npos;
      const std::size_t colon = list.find_first_not_of(" \t\r\n", at + name.size());
      if (!begins || colon == std::string_view::npos || list[colon] != ':') continue;
      const std::size_t begin = std::min(list.find_first_not_of(" \t\r\n", colon + 1), list.size());
      const std::size_t end = std::min(list.find_first_of(";}", begin), list.size());
      return Property{list.substr(at, name.size()), list.substr(begin, end - begin)};
    }
    return std::nullopt;
  }

  void removeFrom(const Tag& tag) {
    for (const Told& told : kTold)
      if (told.element == tag.name) tell(told.loss, tag.label(), told.what);
    hasText_ = hasText_ || tag.name == "text";
    removePicture(tag);
    // A pattern's picture is drawn by itself, so that it is turned by itself.
    if (tag.name == "pattern" && tag.contentEnd != tag.end) {
      edits_.push_back({tag.end, 0, "<turned:g transform=\"matrix(1 .0005 -.0005 1 0 0)\">"});
      edits_.push_back({tag.contentEnd, 0, "</turned:g>"});
    }
    for (const char* const property : {"filter", "mix-blend-mode"}) {
      if (const auto value = tag.find(property)) removeEffect(tag, property, *value, attributeName(tag, property));
      for (const std::string_view list : {tag.find("style").value_or(""), contentOfStyle(tag)})
        for (std::size_t from = 0; const auto found = findProperty(list, property, from);) {
          removeEffect(tag, property, found->value, found->name);
          from = static_cast<std::size_t>(found->value.data() - list.data());
        }
    }
    if (contentOfStyle(tag).find("@import") != std::string_view::npos)
      tell(ArtLoss::LeftOut, tag.label(), "a style sheet outside of the file is not read");
  }

  std::string_view contentOfStyle(const Tag& tag) const {
    if (tag.name != "style") return {};
    return std::string_view(text_).substr(tag.end, tag.contentEnd - tag.end);
  }

  static std::string_view attributeName(const Tag& tag, std::string_view name) {
    return std::find_if(tag.attributes.begin(), tag.attributes.end(), [&](const auto& a) { return a.name == name; })
        ->name;
  }

  void removePicture(const Tag& tag) {
    const std::string_view reference = tag.find("href").value_or(tag.find("xlink:href").value_or(""));
    if (tag.name == "image") {
      tell(ArtLoss::LeftOut, tag.label(),
           isOutside(reference) ? "a picture outside of the file is not fetched" : "a picture of pixels is left out");
      edits_.push_back({offsetOf(tag.name), 0, "x-"});
      // The end tag's name.
      if (tag.elementEnd != tag.end) {
        const std::size_t at = text_.find(tag.name, tag.contentEnd);
        edits_.push_back({at, 0, "x-"});
      }
    } else if (tag.name != "a" && tag.name != "script" && isOutside(reference)) {
      tell(ArtLoss::LeftOut, tag.label(), "a reference to something outside of the file is not followed");
    }
  }

  void removeEffect(const Tag& tag, std::string_view property, std::string_view value, std::string_view name) {
    if (value == "none" || value == "normal" || value.starts_with("alpha(") || value.starts_with("progid")) return;
    rename(name);
    if (property == "mix-blend-mode")
      return tell(ArtLoss::Approximated, tag.label(), "drawn without the blend mode " + std::string(value));
    const auto found = ids_.find(referredId(value));
    tell(ArtLoss::LeftOut, found == ids_.end() ? "filter" : found->second->label(), effectOf(value) + " is left out");
  }

  std::string effectOf(std::string_view value) const {
    const auto found = ids_.find(referredId(value));
    if (found == ids_.end()) return value.starts_with("blur") ? "a blur" : "a filter";
    const std::string_view content =
        std::string_view(text_).substr(found->second->end, found->second->contentEnd - found->second->end);
    const bool blurs = content.find("feGaussianBlur") != std::string_view::npos;
    const bool moves =
        content.find("feOffset") != std::string_view::npos || content.find("feDropShadow") != std::string_view::npos;
    return blurs && moves ? "a shadow" : blurs ? "a blur" : moves ? "a shadow" : "a filter";
  }

  // What stands in a mask is drawn where it is used: its ids would be there twice, and its own masks are left out.
  std::vector<Edit> removalsInMasks(const TagScan& scan) {
    std::vector<Edit> result = edits_;
    std::size_t maskEnd = 0;
    for (const Tag& tag : scan.tags) {
      if (tag.begin < maskEnd) {
        if (tag.find("id")) result.push_back({offsetOf(attributeName(tag, "id")), 0, "x-"});
        if (const auto mask = maskReference(tag)) result.push_back({offsetOf(mask->name), 0, "x-"});
      }
      if (tag.name == "mask") maskEnd = std::max(maskEnd, tag.elementEnd);
    }
    return result;
  }

  // Of the element itself, not of its classes.
  static std::optional<Property> maskReference(const Tag& tag) {
    if (const auto attribute = tag.find("mask")) return Property{attributeName(tag, "mask"), *attribute};
    return findProperty(tag.find("style").value_or(""), "mask", 0);
  }

  // Style sheets say of classes which mask they have; they lose it, and the elements are looked at by their classes.
  void readMaskClasses(const Tag& tag) {
    const std::string_view sheet = contentOfStyle(tag);
    for (std::size_t from = 0; const auto found = findProperty(sheet, "mask", from);) {
      from = static_cast<std::size_t>(found->value.data() - sheet.data());
      rename(found->name);
      const std::size_t open = sheet.rfind('{', from);
      const std::size_t before = open == std::string_view::npos || open == 0 ? 0 : sheet.find_last_of("}/", open - 1);
      std::string_view selectors = sheet.substr(before == std::string_view::npos ? 0 : before + (open > 0 ? 1 : 0));
      selectors = selectors.substr(0, selectors.find('{'));
      for (std::size_t dot = selectors.find('.'); dot != std::string_view::npos; dot = selectors.find('.', dot + 1)) {
        const std::size_t end = std::min(selectors.find_first_of(" ,.:>\t\r\n", dot + 1), selectors.size());
        maskOfClass_[selectors.substr(dot + 1, end - dot - 1)] = found->value;
      }
    }
  }

  std::string_view maskByClass(const Tag& tag) const {
    std::string_view classes = tag.find("class").value_or("");
    while (!maskOfClass_.empty() && !classes.empty()) {
      const std::size_t end = std::min(classes.find_first_of(" \t\r\n"), classes.size());
      if (const auto found = maskOfClass_.find(classes.substr(0, end)); found != maskOfClass_.end())
        return found->second;
      classes.remove_prefix(std::min(end + 1, classes.size()));
    }
    return {};
  }

  void maskOf(const Tag& tag, const std::vector<Edit>& removals) {
    const auto reference = maskReference(tag);
    const std::string_view value = reference ? reference->value : maskByClass(tag);
    const std::string_view id = referredId(value);
    if (reference && value != "none") rename(reference->name);
    if (id.empty() || !ids_.contains(id)) return;
    const bool isPossible = tag.name != "mask" && edits_.size() < kMostEdits;
    if (!isPossible || !maskByGroup(text_, tag, id, ids_, removals, edits_))
      tell(ArtLoss::LeftOut, "mask#" + std::string(id), "a mask is left out, and what it masks is drawn whole");
  }

  // The root becomes a viewport within another.
  void turn(const Tag& root) {
    for (const char* const name : {"x", "y", "width", "height"}) {
      if (root.find(name)) rename(attributeName(root, name));
      if (const auto found = findProperty(root.find("style").value_or(""), name, 0)) rename(found->name);
    }
    const Matrix m = turnOf(size_);
    std::string box;
    quellaro::appendShortest(box, kTurnedSide * std::max(size_.width, size_.height));
    std::string before = R"(<turned:svg xmlns:turned="http://www.w3.org/2000/svg" viewBox="0 0 )" + box + ' ' + box +
                         R"("><turned:g transform="matrix()";
    for (const double number : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
      quellaro::appendShortest(before, number);
      before += ' ';
    }
    edits_.push_back({root.begin, 0, before + ")\">"});
    std::string size = " width=\"";
    quellaro::appendShortest(size, size_.width);
    size += "\" height=\"";
    quellaro::appendShortest(size, size_.height);
    edits_.push_back({text_.find_first_of(" \t\r\n/>", root.begin + 1), 0, size + '"'});
    edits_.push_back({root.elementEnd, 0, "</turned:g></turned:svg>"});
  }

  std::string text_;
  SourceSize size_;
  std::vector<ArtNote>& notes_;
  TagsById ids_;
  std::map<std::string_view, std::string_view, std::less<>> maskOfClass_;
  std::vector<Edit> edits_;
  bool hasText_ = false;
};

}  // namespace

Matrix turnOf(const SourceSize& size) {
  constexpr double kTurn = 0.001;
  const double side = std::max(size.width, size.height);
  const Point middle = Matrix{1, kTurn, -kTurn, 1, 0, 0}.map({size.width / 2, size.height / 2});
  return {1, kTurn, -kTurn, 1, kTurnedSide / 2 * side - middle.x, kTurnedSide / 2 * side - middle.y};
}

std::variant<std::string, ArtError> unpackSource(std::string_view bytes) {
  std::string text;
  if (!bytes.starts_with("\x1f\x8b")) {
    if (bytes.size() > kMostBytes) return ArtError{std::nullopt, "the document is larger than 64 MB"};
    text = bytes;
  } else {
    quellaro::ContentDecoder decoder("gzip");
    quellaro::ReceivedBody unpacked({kMostBytes, ""});
    const auto error = decoder.append(bytes, unpacked);
    if (error == quellaro::URLErrorCode::DataLengthExceedsMaximum)
      return ArtError{std::nullopt, "the document is larger than 64 MB when unpacked"};
    if (error || decoder.finish()) return ArtError{std::nullopt, "the gzip data is damaged or cut off"};
    text = unpacked.take().value_or("");
  }
  // Before anybody reads it, which would take as long as it is large.
  std::size_t elements = 0;
  for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1))
    elements += at + 1 < text.size() && std::isalpha(static_cast<unsigned char>(text[at + 1])) != 0 ? 1 : 0;
  if (elements > kMostElements)
    return ArtError{std::nullopt, "the document has more than " + std::to_string(kMostElements) + " elements"};
  return text;
}

std::variant<SourceText, ArtError> prepareSource(std::string text, const SourceSize& size,
                                                 std::vector<ArtNote>& notes) {
  return Preparing(std::move(text), size, notes).run();
}

}  // namespace halvo::art
