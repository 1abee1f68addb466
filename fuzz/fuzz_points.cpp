// Any bytes as a list of points, and as each kind of number. What is printed reads back.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/foundation/text/numbers.h"
#include "svg/hex_color.h"
#include "svg/shapes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quellaro;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const double number : parseNumberList(text)) {
    std::string shortest;
    appendShortest(shortest, number);
    if (std::isfinite(number) && (doubleValue(shortest) != number || doubleValue(decimalDescription(number)) != number))
      std::abort();
  }
  floatFromText(text);
  const CGColor color = colorFromHexString(text);
  if (!(color.alpha >= 0 && color.alpha <= 1)) std::abort();
  return 0;
}
