// What may stand before the root element: declaration, processing instructions and the document type.
#include <algorithm>
#include <array>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/xml/xml_characters.h"
#include "platform/foundation/xml/xml_parser.h"

namespace quellaro {

namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kDigits = "0123456789";

bool isVersion(std::string_view text) {
  return text.substr(0, 2) == "1." && text.find_first_not_of(kDigits, 2) == std::string_view::npos;
}

bool isEncoding(std::string_view text) {
  return !text.empty() && kLetters.find(text.front()) != std::string_view::npos &&
         std::all_of(text.begin(), text.end(), [](char c) {
           return kLetters.find(c) != std::string_view::npos || kDigits.find(c) != std::string_view::npos || c == '.' ||
                  c == '_' || c == '-';
         });
}

}  // namespace

bool NSXMLParser::declaration() {
  skip("\xEF\xBB\xBF");
  if (!at("<?xml") || xml::skipName(at_ + 2, end_) != at_ + 5) return true;
  at_ += 5;
  std::string_view value;
  if (!pseudoAttribute("version", value) || !isVersion(value)) return fail("an XML declaration without version 1");
  if (pseudoAttribute("encoding", value) && !isEncoding(value)) return fail("an encoding that has no name");
  if (pseudoAttribute("standalone", value) && value != "yes" && value != "no")
    return fail("'standalone' is neither yes nor no");
  skipSpaces();
  return skip("?>") || fail("an XML declaration is not closed");
}

bool NSXMLParser::pseudoAttribute(std::string_view name, std::string_view& value) {
  const char* const start = at_;
  if (skipSpaces() && skip(name)) {
    skipSpaces();
    const bool equals = skip("=");
    skipSpaces();
    if (equals && (at("\"") || at("'"))) {
      const char* const close = std::find(at_ + 1, end_, *at_);
      value = {at_ + 1, static_cast<std::size_t>(close - at_ - 1)};
      at_ = close;
      if (at_ != end_) {
        ++at_;
        return true;
      }
    }
  }
  at_ = start;
  return false;
}

bool NSXMLParser::processingInstruction() {
  at_ += 2;
  std::string_view target;
  if (!name(target)) return false;
  const bool reserved =
      target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l';
  if (reserved) return fail("an XML declaration that is not at the very start");
  if (skip("?>")) return true;
  if (!skipSpaces()) return fail("a blank is missing in a processing instruction");
  return through("?>", "a processing instruction is not closed");
}

bool NSXMLParser::documentType() {
  if (elements_ > 0 || typeSeen_ || !skip("<!DOCTYPE")) return fail("'<!' that begins nothing known here");
  typeSeen_ = true;
  std::string_view root;
  if (!skipSpaces()) return fail("a document type without a name");
  if (!name(root)) return false;
  if (skipSpaces()) {
    const bool isPublic = skip("PUBLIC");
    if (isPublic && (!skipSpaces() || !quotedLiteral())) return fail("a public identifier is missing");
    if ((isPublic || skip("SYSTEM")) && (!skipSpaces() || !quotedLiteral()))
      return fail("a system identifier is missing");
    skipSpaces();
  }
  if (skip("[") && !documentTypeSubset()) return false;
  skipSpaces();
  return skip(">") || fail("a document type is not closed");
}

bool NSXMLParser::documentTypeSubset() {
  while (true) {
    skipSpaces();
    if (skip("]")) return true;
    bool fine = false;
    if (at("<!--")) {
      fine = comment();
    } else if (at("<?")) {
      fine = processingInstruction();
    } else if (skip("%")) {
      std::string_view entity;
      entitiesKnown_ = false;
      fine = name(entity) && (skip(";") || fail("';' is missing after an entity's name"));
    } else {
      fine = documentTypeDeclaration();
    }
    if (!fine) return false;
  }
}

// Passed over but for entities: only quotes are looked at, to find the end.
bool NSXMLParser::documentTypeDeclaration() {
  const bool isEntity = at("<!ENTITY");
  if (!skip("<!ELEMENT") && !skip("<!ATTLIST") && !skip("<!ENTITY") && !skip("<!NOTATION"))
    return fail("not a declaration of a document type");
  if (!skipSpaces()) return fail("a blank is missing in a declaration");
  if (isEntity && !entityDeclaration()) return false;
  while (at_ != end_ && *at_ != '<') {
    if (skip(">")) return true;
    if (!(*at_ == '"' || *at_ == '\'' ? quotedLiteral() : character())) return false;
  }
  return fail("a declaration is not closed");
}

bool NSXMLParser::quotedLiteral() {
  if (!at("\"") && !at("'")) return fail("a quoted text is missing");
  const char quote = *at_++;
  return through({&quote, 1}, "a quoted text is not closed");
}

// A name and a quoted value; what is declared otherwise stays unknown.
bool NSXMLParser::entityDeclaration() {
  const char* const start = at_;
  at_ = xml::skipName(at_, end_);
  const std::string_view name(start, static_cast<std::size_t>(at_ - start));
  if (name.empty() || !skipSpaces() || !(at("\"") || at("'"))) return true;
  const char* const value = at_ + 1;
  if (!quotedLiteral()) return false;
  // The first declaration of a name counts.
  const auto known = std::find_if(entities_.begin(), entities_.end(), [&](const Entity& e) { return e.name == name; });
  if (!entitiesKnown_ || known != entities_.end()) return true;
  if (entities_.size() == limits::kXmlEntities) return fail("too many entities");
  std::string text;
  const bool isText = entityText({value, static_cast<std::size_t>(at_ - 1 - value)}, text);
  entities_.push_back({name, isText ? std::optional(std::move(text)) : std::nullopt});
  return true;
}

// As it arrives in an attribute's value; gives whether it is text.
bool NSXMLParser::entityText(std::string_view literal, std::string& text) {
  for (std::size_t i = 0; i < literal.size();) {
    if (literal.substr(i, 2) == "&#") {
      const char* const after = at_;
      at_ = literal.data() + i;
      const bool fine = characterReference(&text) && text.back() != '<' && text.back() != '&';
      i = static_cast<std::size_t>(at_ - literal.data());
      at_ = after;
      error_.reset();
      if (!fine) return false;
    } else if (literal[i] == '<' || literal[i] == '&' || literal[i] == '%') {
      return false;
    } else {
      text += literal[i];
      i += literal.substr(i, 2) == "\r\n" ? 2 : 1;
    }
    if (xml::isSpace(text.back())) text.back() = ' ';
  }
  return true;
}

bool NSXMLParser::entityReference(std::string* decoded) {
  const char* const start = at_ + 1;
  const char* const close = xml::skipName(start, end_);
  const std::string_view name(start, static_cast<std::size_t>(close - start));
  const auto entity = std::find_if(entities_.begin(), entities_.end(), [&](const Entity& e) { return e.name == name; });
  if (close == end_ || *close != ';' || entity == entities_.end() || !entity->text)
    return fail("'&' that begins none of the five entities, nor one whose text is declared");
  entityBytes_ += entity->text->size();
  if (entityBytes_ > limits::kXmlEntityBytes) return fail("entities grow too long");
  if (decoded != nullptr) *decoded += *entity->text;
  at_ = close + 1;
  return true;
}

}  // namespace quellaro
