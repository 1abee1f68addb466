#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace quellaro {

// As written in the document, the value with its references resolved. The name lies in the document's text, so that
// NSXMLParser::positionOf can tell where the attribute stands.
struct XMLAttribute {
  std::string_view name;
  std::string_view value;
};

// The attributes of one element by name, in document order: a view, cheap to copy. Elements have few, so that looking
// at each is fastest. No name comes twice.
class XMLAttributes {
 public:
  XMLAttributes() = default;
  explicit XMLAttributes(std::span<const XMLAttribute> attributes) : attributes_(attributes) {}

  std::optional<std::string_view> find(std::string_view name) const {
    for (const XMLAttribute& attribute : attributes_)
      if (attribute.name == name) return attribute.value;
    return std::nullopt;
  }
  bool empty() const { return attributes_.empty(); }
  auto begin() const { return attributes_.begin(); }
  auto end() const { return attributes_.end(); }

 private:
  std::span<const XMLAttribute> attributes_;
};

// The first name that another before it equals, or an empty view.
std::string_view repeatedName(std::span<const XMLAttribute> attributes);

}  // namespace quellaro
