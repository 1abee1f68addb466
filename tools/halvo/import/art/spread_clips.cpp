#include <algorithm>

#include "import/art/half_plane.h"
#include "import/art/passes.h"

namespace halvo::art {

namespace {

using Clips = std::vector<std::shared_ptr<const Clip>>;

bool cutsNothing(const Clip& clip, const Box& shown) {
  const auto planes = halfPlanesOf(clip.outline);
  return planes && containsBox(*planes, shown);
}

DisplayList spread(const DisplayList& list, const Clips& outer) {
  DisplayList result;
  for (const Item& item : list.items) {
    Clips clips = outer;
    clips.insert(clips.end(), item.clips.begin(), item.clips.end());
    if (const auto* group = std::get_if<std::shared_ptr<Group>>(&item.what)) {
      auto copy = std::make_shared<Group>(Group{spread((*group)->members, clips), (*group)->opacity});
      result.items.push_back({std::move(copy), {}});
      continue;
    }
    const Box shown = boundsOf(item);
    const auto isAway = [&](const auto& clip) { return isEmpty(commonBox(boundsOf(clip->outline), shown)); };
    // A level line has no height, but its stroke has.
    if (std::any_of(clips.begin(), clips.end(), isAway)) continue;
    clips.erase(std::remove_if(clips.begin(), clips.end(), [&](const auto& clip) { return cutsNothing(*clip, shown); }),
                clips.end());
    result.items.push_back({item.what, std::move(clips)});
  }
  return result;
}

}  // namespace

DisplayList spreadClips(const DisplayList& list, const PassContext& context) {
  const auto viewport = std::make_shared<const Clip>(Clip{rectangle(context.frame.viewport), Rule::NonZero});
  return spread(list, {viewport});
}

}  // namespace halvo::art
