#include "import/art/passes.h"

#include <utility>

namespace halvo::art {

std::vector<FlatShape> flatten(DisplayList list, const PassContext& context) {
  list = unrollPatterns(std::move(list), context);
  list = resolveMasks(std::move(list), context);
  list = spreadClips(list, context);
  list = outlineStrokes(std::move(list), context);
  list = applyClips(std::move(list), context);
  return mergeShapes(bandGradients(flattenGroups(list, context), context), context);
}

}  // namespace halvo::art
