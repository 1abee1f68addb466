#include "import/art/source_tags.h"

#include <algorithm>

namespace halvo::art {

namespace {

constexpr std::string_view kSpace = " \t\r\n";

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  std::optional<TagScan> scan() {
    while (true) {
      at_ = text_.find('<', at_);
      if (at_ == std::string_view::npos) break;
      if (!markup()) return std::nullopt;
    }
    if (!open_.empty() || scan_.tags.empty()) return std::nullopt;
    return std::move(scan_);
  }

 private:
  bool starts(std::string_view with) const { return text_.substr(at_, with.size()) == with; }
  bool through(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    if (found == std::string_view::npos) return false;
    at_ = found + end.size();
    return true;
  }
  void skipSpace() { at_ = std::min(text_.find_first_not_of(kSpace, at_), text_.size()); }

  bool markup() {
    if (starts("<!--")) return through("-->");
    if (starts("<![CDATA[")) return through("]]>");
    if (starts("<!")) return documentType();
    const std::size_t begin = at_;
    if (starts("<?")) {
      if (!through("?>")) return false;
      scan_.instructions.push_back(text_.substr(begin, at_ - begin));
      return true;
    }
    return starts("</") ? endTag() : startTag();
  }

  bool documentType() {
    int brackets = 0;
    char quote = 0;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (starts("<!--")) {
        if (!through("-->")) return false;
        --at_;
      } else if (c == '[' || c == ']') {
        brackets += c == '[' ? 1 : -1;
      } else if (c == '>' && brackets == 0) {
        ++at_;
        return true;
      }
    }
    return false;
  }

  std::string_view takeName() {
    const std::size_t begin = at_;
    at_ = std::min(text_.find_first_of(" \t\r\n=/>\"'<", at_), text_.size());
    return text_.substr(begin, at_ - begin);
  }

  bool startTag() {
    Tag tag;
    tag.begin = at_++;
    const std::string_view name = takeName();
    if (name.empty()) return false;
    tag.name = name.substr(name.find(':') + 1);
    tag.isRoot = open_.empty();
    while (true) {
      skipSpace();
      if (at_ >= text_.size()) return false;
      if (starts("/>") || text_[at_] == '>') break;
      if (!attribute(tag)) return false;
    }
    const bool isEmpty = text_[at_] == '/';
    at_ += isEmpty ? 2 : 1;
    tag.end = tag.elementEnd = tag.contentEnd = at_;
    if (!isEmpty) open_.push_back({scan_.tags.size(), name});
    scan_.tags.push_back(std::move(tag));
    return true;
  }

  bool attribute(Tag& tag) {
    const std::string_view name = takeName();
    skipSpace();
    if (name.empty() || !starts("=")) return false;
    ++at_;
    skipSpace();
    if (at_ >= text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) return false;
    const std::size_t begin = at_ + 1;
    const std::size_t end = text_.find(text_[at_], begin);
    if (end == std::string_view::npos) return false;
    tag.attributes.push_back({name, text_.substr(begin, end - begin)});
    at_ = end + 1;
    return true;
  }

  bool endTag() {
    const std::size_t begin = at_;
    at_ += 2;
    const std::string_view name = takeName();
    if (open_.empty() || open_.back().name != name || !through(">")) return false;
    Tag& tag = scan_.tags[open_.back().tag];
    tag.contentEnd = begin;
    tag.elementEnd = at_;
    open_.pop_back();
    return true;
  }

  struct Open {
    std::size_t tag;
    std::string_view name;
  };

  std::string_view text_;
  std::size_t at_ = 0;
  TagScan scan_;
  std::vector<Open> open_;
};

}  // namespace

std::optional<std::string_view> Tag::find(std::string_view attribute) const {
  for (const TagAttribute& candidate : attributes)
    if (candidate.name == attribute) return candidate.value;
  return std::nullopt;
}

std::string Tag::label() const {
  const auto id = find("id");
  return std::string(name) + (id ? '#' + std::string(*id) : "");
}

std::optional<TagScan> scanTags(std::string_view document) { return Scanner(document).scan(); }

std::string edited(std::string_view text, std::size_t begin, std::size_t end, const std::vector<Edit>& edits) {
  std::vector<const Edit*> inside;
  for (const Edit& edit : edits)
    if (edit.at >= begin && edit.at + edit.removed <= end) inside.push_back(&edit);
  std::stable_sort(inside.begin(), inside.end(), [](const Edit* a, const Edit* b) { return a->at < b->at; });
  std::string result;
  for (const Edit* edit : inside) {
    if (edit->at < begin) continue;
    result += text.substr(begin, edit->at - begin);
    result += edit->inserted;
    begin = edit->at + edit->removed;
  }
  result += text.substr(begin, end - begin);
  return result;
}

}  // namespace halvo::art
