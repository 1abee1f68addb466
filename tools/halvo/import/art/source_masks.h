#pragma once

#include <map>
#include <string_view>
#include <vector>

#include "import/art/source_tags.h"

namespace halvo::art {

using TagsById = std::map<std::string_view, const Tag*, std::less<>>;

// Adds the edits that put a mask's content beside what it masks. Whether they could.
bool maskByGroup(std::string_view document, const Tag& masked, std::string_view maskId, const TagsById& ids,
                 const std::vector<Edit>& removals, std::vector<Edit>& edits);

// The id that a value such as "url(#id)" refers to; empty where it refers to none.
std::string_view referredId(std::string_view value);

}  // namespace halvo::art
