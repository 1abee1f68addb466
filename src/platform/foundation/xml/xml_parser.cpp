#include "platform/foundation/xml/xml_parser.h"

#include <array>
#include <utility>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/utf8.h"
#include "platform/foundation/xml/xml_characters.h"

namespace quellaro {

namespace {

constexpr std::array<std::pair<std::string_view, char>, 5> kEntities = {
    {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}}};

std::string_view between(const char* first, const char* last) {
  return {first, static_cast<std::size_t>(last - first)};
}

}  // namespace

NSXMLParser::NSXMLParser(std::string_view text, Arena& arena)
    : begin_(text.data()), end_(text.data() + text.size()), at_(begin_), arena_(arena) {}

bool NSXMLParser::parse() {
  if (!declaration()) return false;
  while (at_ != end_)
    if (!(*at_ == '<' ? markup() : characterData())) return false;
  if (elements_ == 0) return fail("there is no element");
  return open_.empty() || fail("an element is not closed");
}

bool NSXMLParser::markup() {
  switch (end_ - at_ > 1 ? at_[1] : '\0') {
    case '/':
      return endTag();
    case '?':
      return processingInstruction();
    case '!':
      if (at("<!--")) return comment();
      return at("<![CDATA[") ? cdata() : documentType();
    default:
      return startTag();
  }
}

bool NSXMLParser::characterData() {
  if (open_.empty()) {
    skipSpaces();
    return at_ == end_ || *at_ == '<' || fail("text outside the root element");
  }
  while (true) {
    at_ = xml::skipPlain(at_, end_, ']');
    if (at_ == end_ || *at_ == '<') return true;
    if (at("]]>")) return fail("']]>' outside a CDATA section");
    if (!(*at_ == '&' ? reference(nullptr) : character())) return false;
  }
}

bool NSXMLParser::startTag() {
  if (open_.empty() && elements_ > 0) return fail("a second root element");
  if (elements_ == limits::kXmlElements) return fail("too many elements");
  if (open_.size() == limits::kXmlDepth) return fail("elements are nested too deeply");
  ++at_;
  std::string_view tag;
  if (!name(tag) || !attributes()) return false;
  const bool isEmpty = skip("/");
  if (!skip(">")) return fail("'>' is missing");
  ++elements_;
  if (delegate_ != nullptr)
    delegate_->parserDidStartElement(tag, XMLAttributes(arena_.keep(std::span<const XMLAttribute>(attributes_))));
  if (!isEmpty)
    open_.push_back(tag);
  else if (delegate_ != nullptr)
    delegate_->parserDidEndElement(tag);
  return true;
}

bool NSXMLParser::attributes() {
  attributes_.clear();
  while (true) {
    const bool spaced = skipSpaces();
    if (at_ == end_) return fail("a start tag is not closed");
    if (*at_ == '>' || *at_ == '/') return namesDiffer();
    if (!spaced) return fail("a blank is missing before an attribute");
    if (attributes_.size() == limits::kXmlAttributes) return fail("too many attributes");
    if (!attribute()) return false;
  }
}

bool NSXMLParser::namesDiffer() {
  const std::string_view repeated = repeatedName(attributes_);
  if (repeated.empty()) return true;
  at_ = repeated.data();
  return fail("an attribute is given twice");
}

bool NSXMLParser::attribute() {
  XMLAttribute attribute;
  if (!name(attribute.name)) return false;
  skipSpaces();
  if (!skip("=")) return fail("'=' is missing after an attribute's name");
  skipSpaces();
  if (!attributeValue(attribute.value)) return false;
  attributes_.push_back(attribute);
  return true;
}

bool NSXMLParser::attributeValue(std::string_view& value) {
  if (!at("\"") && !at("'")) return fail("an attribute's value is not quoted");
  const char quote = *at_;
  const char* const start = ++at_;
  while (true) {
    at_ = xml::skipPlain(at_, end_, quote);
    if (at_ == end_) return fail("an attribute's value is not closed");
    if (*at_ == quote) break;
    if (*at_ == '<') return fail("'<' in an attribute's value");
    if (*at_ == '&' || xml::isSpace(*at_)) return decodedValue(start, quote, value);
    if (!character()) return false;
  }
  value = between(start, at_++);
  return true;
}

// The value holds something that does not arrive as written.
bool NSXMLParser::decodedValue(const char* start, char quote, std::string_view& value) {
  decoded_.assign(start, at_);
  while (true) {
    const char* const plain = at_;
    at_ = xml::skipPlain(at_, end_, quote);
    decoded_.append(plain, at_);
    if (at_ == end_) return fail("an attribute's value is not closed");
    if (*at_ == quote) break;
    if (*at_ == '<') return fail("'<' in an attribute's value");
    if (*at_ == '&') {
      if (!reference(&decoded_)) return false;
    } else if (xml::isSpace(*at_)) {
      decoded_ += ' ';
      at_ += at("\r\n") ? 2 : 1;
    } else {
      const char* const other = at_;
      if (!character()) return false;
      decoded_.append(other, at_);
    }
  }
  ++at_;
  value = arena_.keep(decoded_);
  return true;
}

bool NSXMLParser::endTag() {
  at_ += 2;
  const char* const start = at_;
  std::string_view tag;
  if (!name(tag)) return false;
  if (open_.empty() || open_.back() != tag) {
    at_ = start;
    return fail("an end tag that closes nothing");
  }
  skipSpaces();
  if (!skip(">")) return fail("'>' is missing");
  open_.pop_back();
  if (delegate_ != nullptr) delegate_->parserDidEndElement(tag);
  return true;
}

bool NSXMLParser::comment() {
  at_ += 4;
  return through("--", "a comment is not closed") && (skip(">") || fail("'--' within a comment"));
}

bool NSXMLParser::cdata() {
  if (open_.empty()) return fail("text outside the root element");
  at_ += 9;
  return through("]]>", "a CDATA section is not closed");
}

bool NSXMLParser::reference(std::string* decoded) {
  if (at("&#")) return characterReference(decoded);
  for (const auto& [entity, character] : kEntities) {
    if (!skip(entity)) continue;
    if (decoded != nullptr) *decoded += character;
    return true;
  }
  return entityReference(decoded);
}

bool NSXMLParser::characterReference(std::string* decoded) {
  const bool hexadecimal = at("&#x");
  const char32_t base = hexadecimal ? 16 : 10;
  const char* p = at_ + (hexadecimal ? 3 : 2);
  const char* const digits = p;
  char32_t code = 0;
  for (; p != end_; ++p) {
    const char32_t letter = static_cast<unsigned char>(*p) | 0x20U;
    const bool isLetter = hexadecimal && letter >= 'a' && letter <= 'f';
    if (!isLetter && !xml::isDigit(*p)) break;
    const char32_t digit = isLetter ? letter - 'a' + 10 : static_cast<unsigned char>(*p) - U'0';
    code = std::min<char32_t>(code * base + digit, 0x110000);
  }
  if (p == digits || p == end_ || *p != ';' || !xml::isCharacter(code))
    return fail("a character reference that is not closed or names no character");
  at_ = p + 1;
  if (decoded != nullptr) appendUTF8(*decoded, code);
  return true;
}

bool NSXMLParser::character() {
  const xml::Character character = xml::characterAt(at_, end_);
  if (character.size == 0) return fail("not a character that XML allows, or not UTF-8");
  at_ += character.size;
  return true;
}

bool NSXMLParser::through(std::string_view close, std::string_view whenMissing) {
  while (true) {
    at_ = xml::skipPlain(at_, end_, close.front());
    if (at_ == end_) return fail(whenMissing);
    if (skip(close)) return true;
    if (!character()) return false;
  }
}

bool NSXMLParser::at(std::string_view text) const {
  return static_cast<std::size_t>(end_ - at_) >= text.size() && between(at_, at_ + text.size()) == text;
}

bool NSXMLParser::skip(std::string_view text) {
  if (!at(text)) return false;
  at_ += text.size();
  return true;
}

bool NSXMLParser::skipSpaces() {
  const char* const start = at_;
  at_ = xml::skipSpaces(at_, end_);
  return at_ != start;
}

bool NSXMLParser::name(std::string_view& name) {
  const char* const start = at_;
  at_ = xml::skipName(at_, end_);
  name = between(start, at_);
  return !name.empty() || fail("a name is missing");
}

bool NSXMLParser::fail(std::string_view message) {
  error_ = {message, static_cast<std::size_t>(at_ - begin_)};
  return false;
}

XMLPosition NSXMLParser::positionOf(std::size_t offset) const {
  const std::string_view before(begin_, offset);
  const std::size_t lineStart = before.find_last_of('\n') + 1;  // npos + 1 is 0
  XMLPosition position{offset, 1, 1};
  position.line += static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  // Bytes that continue a character do not count.
  for (const char c : before.substr(lineStart))
    position.column += (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
  return position;
}

XMLPosition NSXMLParser::positionOf(std::string_view name) const {
  return positionOf(static_cast<std::size_t>(name.data() - begin_));
}

}  // namespace quellaro
