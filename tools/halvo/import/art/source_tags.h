#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A document as its tags, each where it stands in the text.
namespace halvo::art {

struct TagAttribute {
  std::string_view name;
  std::string_view value;
};

struct Tag {
  // Without a prefix.
  std::string_view name;
  std::vector<TagAttribute> attributes;
  // Of the tag itself; of the element, to the end of its end tag.
  std::size_t begin = 0, end = 0, elementEnd = 0;
  // Where the end tag begins; the tag's end where there is none.
  std::size_t contentEnd = 0;
  bool isRoot = false;

  std::optional<std::string_view> find(std::string_view attribute) const;
  // As people know it: with its id.
  std::string label() const;
};

struct TagScan {
  std::vector<Tag> tags;
  // Instructions such as <?xml-stylesheet ...?>.
  std::vector<std::string_view> instructions;
};

// Nothing where the tags do not match, which the reader of the whole document tells better.
std::optional<TagScan> scanTags(std::string_view document);

// A change to a text: so many of its bytes give way to others.
struct Edit {
  std::size_t at = 0;
  std::size_t removed = 0;
  std::string inserted;
};

// Of those edits that lie within the stretch of text; they do not overlap.
std::string edited(std::string_view text, std::size_t begin, std::size_t end, const std::vector<Edit>& edits);

}  // namespace halvo::art
