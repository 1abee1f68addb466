#include "check/size.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "check/geometry_check.h"
#include "check/number_reading.h"
#include "picture/frame_source.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

namespace {

using namespace quellaro;

// What the engine takes for a side that is missing.
constexpr double kDefaultSide = 100;

const XMLAttribute* attributeNamed(const CheckedElement& element, std::string_view name) {
  for (const XMLAttribute& attribute : element.attributes)
    if (attribute.name == name) return &attribute;
  return nullptr;
}

// As the engine takes it.
double checkSide(const CheckedElement& element, std::string_view name, FrameFindings& findings) {
  const XMLAttribute* const attribute = attributeNamed(element, name);
  if (attribute == nullptr) {
    findings.inElement(FindingId::SizeMissing, element, "no " + std::string(name));
    return kDefaultSide;
  }
  const double side = doubleValue(attribute->value);
  if (!(side > 0) || std::isinf(side))
    findings.inAttribute(FindingId::Size, element, *attribute);
  else
    checkNumber(element, *attribute, FindingId::SizeUnit, findings);
  return side;
}

bool isWholeFrame(std::string_view viewBox, CGSize size) {
  const std::array<double, 4> expected{0, 0, size.width, size.height};
  std::string_view rest = viewBox;
  for (const double value : expected) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" ,\t\r\n"), rest.size()));
    const ReadNumber number = readNumber(rest);
    if (!number.isPlain || number.value != value) return false;
    rest = number.rest;
  }
  return trimmed(rest).empty();
}

}  // namespace

void checkRoot(const CheckedElement& element, FrameFindings& findings) {
  const XMLAttribute* const space = attributeNamed(element, "xmlns");
  if (space == nullptr)
    findings.inElement(FindingId::Namespace, element, "no xmlns");
  else if (space->value != kNamespace)
    findings.inAttribute(FindingId::Namespace, element, *space);
  const CGSize size{checkSide(element, "width", findings), checkSide(element, "height", findings)};
  if (size.width != size.height && canBeShown(size))
    findings.inElement(FindingId::NotSquare, element, "a frame that is not square");
  const XMLAttribute* const viewBox = attributeNamed(element, "viewBox");
  // With the size that is missing, and has been told of, viewBox may well be what it should.
  const bool hasSize = attributeNamed(element, "width") != nullptr || attributeNamed(element, "height") != nullptr;
  if (viewBox != nullptr && hasSize && !isWholeFrame(viewBox->value, size))
    findings.inAttribute(FindingId::ViewBox, element, *viewBox);
}

}  // namespace halvo
