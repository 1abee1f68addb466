#include "check/transform.h"

#include <cmath>

#include "check/standard_transform.h"
#include "svg/transform_parser.h"

namespace halvo {

namespace {

using namespace quellaro;

bool isSame(const CATransform3D& a, const CATransform3D& b) {
  const auto isNear = [](double x, double y) { return std::fabs(x - y) <= 1e-9 * (1 + std::fabs(x)); };
  return isNear(a.m11, b.m11) && isNear(a.m12, b.m12) && isNear(a.m21, b.m21) && isNear(a.m22, b.m22) &&
         isNear(a.m41, b.m41) && isNear(a.m42, b.m42);
}

// Why the engine does not do as the operation says, if it does not.
std::optional<FindingId> reasonOf(const TransformOperation& operation) {
  const std::size_t count = operation.numbers.size();
  if (operation.name == "matrix") return FindingId::Matrix;
  if (operation.name.starts_with("skew")) return FindingId::Skew;
  if (operation.name == "rotate" && count == 3) return FindingId::RotateCenter;
  if (operation.name == "scale" && count == 2) return FindingId::ScaleTwo;
  if (operation.name == "translate" && count == 1) return FindingId::TranslateOne;
  return std::nullopt;
}

void checkOperations(const CheckedElement& element, const XMLAttribute& attribute,
                     const std::vector<TransformOperation>& operations, FrameFindings& findings) {
  for (const TransformOperation& operation : operations)
    if (const auto reason = reasonOf(operation))
      return findings.inValue(*reason, element, attribute, operation.name,
                              "transform=\"" + printable(attribute.value) + "\"");
  findings.inAttribute(FindingId::TransformUnread, element, attribute);
}

}  // namespace

void checkTransform(const CheckedElement& element, bool isRead, FrameFindings& findings) {
  for (const XMLAttribute& attribute : element.attributes) {
    if (attribute.name != "transform") continue;
    std::string_view problem;
    const auto operations = readTransform(attribute.value, problem);
    if (!operations)
      findings.inValue(FindingId::TransformUnread, element, attribute, problem,
                       "transform=\"" + printable(attribute.value) + "\"");
    else if (const CATransform3D standard = standardTransform(*operations); !isRead) {
      if (!isSame(standard, CATransform3DIdentity)) findings.inAttribute(FindingId::Attribute, element, attribute);
    } else if (!isSame(standard, SVGTransformParser::parseTransform(attribute.value))) {
      checkOperations(element, attribute, *operations, findings);
    }
  }
}

}  // namespace halvo
