// Any bytes as path data. Every outline has as many points as its segments need, and starts with a move.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/foundation/console.h"
#include "svg/path_data.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quellaro;
  setConsoleSink([](std::string_view) {});
  const XMLAttribute attribute{"d", {reinterpret_cast<const char*>(data), size}};
  const SVGPath path("path", XMLAttributes({&attribute, 1}));
  const CGPath& outline = path.path().cgPath();
  std::size_t points = 0;
  for (const PathVerb verb : outline.verbs()) points += static_cast<std::size_t>(pointCount(verb));
  const bool startsWithMove = outline.empty() || outline.verbs().front() == PathVerb::Move;
  if (points != outline.points().size() || !startsWithMove) std::abort();
  return 0;
}
