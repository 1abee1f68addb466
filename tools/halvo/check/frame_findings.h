#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/report.h"
#include "platform/foundation/xml/xml_attributes.h"
#include "svg/element.h"

namespace halvo {

// An element as the parser met it. The views are those the parser gives: a name lies in the frame's text.
struct CheckedElement {
  std::string_view name;
  quellaro::XMLAttributes attributes;
  const quellaro::SVGElement* made = nullptr;  // what the engine made of it; null when it does not know the name
};

// Where a frame's findings go, with their places worked out.
class FrameFindings {
 public:
  // `frame` is absent for a document that is a file of its own. `series` is what such files are together the frames of.
  FrameFindings(Report& report, std::string file, std::optional<std::size_t> frame, std::string_view text,
                std::string series = "")
      : report_(report), file_(std::move(file)), series_(std::move(series)), frame_(frame), text_(text) {}

  std::string_view text() const { return text_; }

  void at(std::size_t offset, FindingId id, std::string what);
  void inElement(FindingId id, const CheckedElement& element, std::string what);
  // `what` is the attribute as it stands there when it is empty.
  void inAttribute(FindingId id, const CheckedElement& element, const quellaro::XMLAttribute& attribute,
                   std::string what = "");
  // At a part of the attribute's value.
  void inValue(FindingId id, const CheckedElement& element, const quellaro::XMLAttribute& attribute,
               std::string_view part, std::string what);

 private:
  Finding findingIn(FindingId id, const CheckedElement& element, std::string what) const;
  std::size_t offsetOf(std::string_view name) const { return static_cast<std::size_t>(name.data() - text_.data()); }
  // Where the decoded value's character stands in the text.
  std::size_t offsetInValue(const quellaro::XMLAttribute& attribute, std::size_t decoded) const;
  TextPosition positionOf(std::size_t offset) const;

  Report& report_;
  std::string file_;
  std::string series_;
  std::optional<std::size_t> frame_;
  std::string_view text_;
};

}  // namespace halvo
