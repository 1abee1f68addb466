#include "check/frame_findings.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

#include "platform/foundation/xml/xml_parser.h"

namespace halvo {

namespace {

using namespace quellaro;

// The bytes that a reference such as "&#x20ac;" becomes; any of the five entities becomes one.
std::size_t decodedSize(std::string_view reference) {
  if (reference.substr(0, 2) != "&#") return 1;
  const bool hexadecimal = reference.substr(2, 1) == "x";
  const std::string digits(reference.substr(hexadecimal ? 3 : 2));
  const auto code = std::strtoul(digits.c_str(), nullptr, hexadecimal ? 16 : 10);
  return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

}  // namespace

void FrameFindings::at(std::size_t offset, FindingId id, std::string what) {
  report_.add({id, std::move(what), file_, frame_, "", "", "", std::nullopt, "", series_},
              [&] { return positionOf(offset); });
}

void FrameFindings::inElement(FindingId id, const CheckedElement& element, std::string what) {
  report_.add(findingIn(id, element, std::move(what)), [&] { return positionOf(offsetOf(element.name)); });
}

void FrameFindings::inAttribute(FindingId id, const CheckedElement& element, const XMLAttribute& attribute,
                                std::string what) {
  Finding finding = findingIn(id, element, std::move(what));
  finding.attribute = printable(attribute.name);
  if (finding.what.empty()) finding.what = finding.attribute + "=\"" + printable(attribute.value) + "\"";
  report_.add(std::move(finding), [&] { return positionOf(offsetOf(attribute.name)); });
}

void FrameFindings::inValue(FindingId id, const CheckedElement& element, const XMLAttribute& attribute,
                            std::string_view part, std::string what) {
  Finding finding = findingIn(id, element, std::move(what));
  finding.attribute = printable(attribute.name);
  report_.add(std::move(finding), [&] {
    return positionOf(offsetInValue(attribute, static_cast<std::size_t>(part.data() - attribute.value.data())));
  });
}

Finding FrameFindings::findingIn(FindingId id, const CheckedElement& element, std::string what) const {
  return {id,
          std::move(what),
          file_,
          frame_,
          printable(element.name),
          printable(element.attributes.find("id").value_or("")),
          "",
          std::nullopt,
          "",
          series_};
}

std::size_t FrameFindings::offsetInValue(const XMLAttribute& attribute, std::size_t decoded) const {
  const char* const value = attribute.value.data();
  // A value that is as written lies in the text itself.
  if (std::less_equal<>()(text_.data(), value) && std::less<>()(value, text_.data() + text_.size()))
    return offsetOf(attribute.value) + decoded;
  std::size_t at = text_.find_first_of("\"'", offsetOf(attribute.name)) + 1;
  for (std::size_t passed = 0; passed < decoded && at < text_.size();) {
    const bool isReference = text_[at] == '&';
    const std::size_t end = isReference ? text_.find(';', at) + 1 : at + (text_.substr(at, 2) == "\r\n" ? 2 : 1);
    passed += isReference ? decodedSize(text_.substr(at, end - at)) : 1;
    at = end;
  }
  return at;
}

TextPosition FrameFindings::positionOf(std::size_t offset) const {
  Arena arena(1);
  const XMLPosition position = NSXMLParser(text_, arena).positionOf(std::min(offset, text_.size()));
  return {position.line, position.column};
}

}  // namespace halvo
