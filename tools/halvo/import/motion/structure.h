#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/json/json_reader.h"

namespace halvo::motion {

// The layers of each composition that others place.
using Compositions = std::map<std::string, std::vector<quellaro::JSONValue>, std::less<>>;

Compositions compositionsOf(const quellaro::JSONValue& root);

// Why no one should try to draw it: levels, layers that contain or carry themselves, or more of them than anyone draws.
std::optional<std::string> whatIsWrongWith(const quellaro::JSONValue& root, const Compositions& compositions);

}  // namespace halvo::motion
