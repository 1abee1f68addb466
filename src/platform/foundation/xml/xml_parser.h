#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/memory/arena.h"
#include "platform/foundation/xml/xml_attributes.h"

namespace quellaro {

// Hears of elements in document order; an empty element's end comes right after its start. The views it is given last
// as long as the document's text and the parser's arena.
class NSXMLParserDelegate {
 public:
  virtual ~NSXMLParserDelegate() = default;
  virtual void parserDidStartElement(std::string_view name, XMLAttributes attributes) = 0;
  virtual void parserDidEndElement(std::string_view name) = 0;
};

// Bytes from the start of the text; line and column count from 1, columns in characters.
struct XMLPosition {
  std::size_t offset = 0;
  std::size_t line = 1;
  std::size_t column = 1;
};

struct XMLError {
  // A sentence for a person, without its full stop.
  std::string_view message;
  std::size_t offset = 0;
};

// A strict, non-validating reader of one XML 1.0 document in UTF-8, whatever encoding its declaration claims. Nothing
// is copied but attribute values that differ from what is written: with references, or with tabs and line ends, which
// arrive as blanks. No namespaces. Of a document type only the general entities are read whose value is text: no
// markup, no other entity. So nothing expands twice, and limits::kXmlEntityBytes bounds what references grow to; a
// reference to anything else is a mistake. Any mistake ends the parse; what was told before stays told. Uses no
// recursion.
class NSXMLParser {
 public:
  // Lists of attributes and decoded values go into the arena.
  NSXMLParser(std::string_view text, Arena& arena);

  void setDelegate(NSXMLParserDelegate* delegate) { delegate_ = delegate; }
  // Once per parser. Gives whether the document is well-formed.
  bool parse();
  // Why the parse ended early.
  const std::optional<XMLError>& parserError() const { return error_; }

  // Worked out when asked for: nothing is counted while parsing.
  XMLPosition positionOf(std::size_t offset) const;
  // Of the name of an element or attribute.
  XMLPosition positionOf(std::string_view name) const;

 private:
  bool declaration();
  bool markup();
  bool characterData();
  bool startTag();
  bool attributes();
  bool attribute();
  bool attributeValue(std::string_view& value);
  bool decodedValue(const char* start, char quote, std::string_view& value);
  bool namesDiffer();
  bool endTag();
  [[gnu::cold]] bool comment();
  [[gnu::cold]] bool processingInstruction();
  [[gnu::cold]] bool cdata();
  bool documentType();
  bool documentTypeSubset();
  bool documentTypeDeclaration();
  bool quotedLiteral();
  bool entityDeclaration();
  bool entityText(std::string_view literal, std::string& text);
  bool entityReference(std::string* decoded);
  bool pseudoAttribute(std::string_view name, std::string_view& value);
  [[gnu::cold]] bool reference(std::string* decoded);
  bool characterReference(std::string* decoded);
  bool character();
  // Passes the text, checking its characters, up to and including `close`.
  bool through(std::string_view close, std::string_view whenMissing);
  bool at(std::string_view text) const;
  bool skip(std::string_view text);
  // Passes white space; gives whether there was any.
  bool skipSpaces();
  bool name(std::string_view& name);
  [[gnu::cold]] bool fail(std::string_view message);

  const char* const begin_;
  const char* const end_;
  const char* at_;
  Arena& arena_;
  NSXMLParserDelegate* delegate_ = nullptr;
  std::vector<std::string_view> open_;
  std::vector<XMLAttribute> attributes_;
  std::string decoded_;
  std::size_t elements_ = 0;
  bool typeSeen_ = false;
  struct Entity {
    std::string_view name;
    std::optional<std::string> text;  // absent: not one to be replaced
  };
  std::vector<Entity> entities_;
  bool entitiesKnown_ = true;  // a parameter entity may declare what nobody reads
  std::size_t entityBytes_ = 0;
  std::optional<XMLError> error_;
};

}  // namespace quellaro
