#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace quellaro {

// As written in the document, the value with its references resolved. Both view the document's storage; the name lies
// in its text, so that NSXMLParser::positionOf can tell where the attribute stands.
struct XMLAttribute {
  std::string_view name;
  std::string_view value;
};

// The attributes of one element by name, in document order. Elements have few, so that looking at each is fastest.
class XMLAttributes {
 public:
  std::optional<std::string_view> find(std::string_view name) const {
    for (const XMLAttribute& attribute : attributes_)
      if (attribute.name == name) return attribute.value;
    return std::nullopt;
  }
  bool empty() const { return attributes_.empty(); }
  std::size_t size() const { return attributes_.size(); }
  auto begin() const { return attributes_.begin(); }
  auto end() const { return attributes_.end(); }

  // The caller sees to it that no name comes twice.
  void append(XMLAttribute attribute) { attributes_.push_back(attribute); }
  void clear() { attributes_.clear(); }

 private:
  std::vector<XMLAttribute> attributes_;
};

}  // namespace quellaro
