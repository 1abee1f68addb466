#include "svg/transform_parser.h"

#include <numbers>

#include "platform/foundation/text/scanner.h"

namespace quellaro {

CATransform3D SVGTransformParser::parseTransform(std::string_view text) {
  static constexpr NSCharacterSet kSeparators{",() "};
  NSScanner scanner(text, kSeparators);
  CATransform3D result = CATransform3DIdentity;
  while (!scanner.isAtEnd()) {
    if (scanner.scanString("translate")) {
      const double tx = scanner.scanDouble().value_or(0);
      const double ty = scanner.scanDouble().value_or(tx);
      result = CATransform3DTranslate(result, tx, ty, 0);
    } else if (scanner.scanString("scale")) {
      const double s = scanner.scanDouble().value_or(0);
      result = CATransform3DScale(result, s, s, 1);
    } else if (scanner.scanString("rotate")) {
      const double degrees = scanner.scanDouble().value_or(0);
      result = CATransform3DRotateZ(result, degrees / 180 * std::numbers::pi);
    } else if (scanner.scanString("matrix")) {
      for (int i = 0; i < 6; ++i) scanner.scanDouble();
    } else {
      break;
    }
  }
  return result;
}

}  // namespace quellaro
