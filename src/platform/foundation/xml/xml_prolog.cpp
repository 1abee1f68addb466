// What may stand before the root element: declaration, processing instructions and the document type.
#include <algorithm>
#include <array>

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
      fine = name(entity) && (skip(";") || fail("';' is missing after an entity's name"));
    } else {
      fine = documentTypeDeclaration();
    }
    if (!fine) return false;
  }
}

// Passed over: only quotes are looked at, to find the end.
bool NSXMLParser::documentTypeDeclaration() {
  if (!skip("<!ELEMENT") && !skip("<!ATTLIST") && !skip("<!ENTITY") && !skip("<!NOTATION"))
    return fail("not a declaration of a document type");
  if (!skipSpaces()) return fail("a blank is missing in a declaration");
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

}  // namespace quellaro
