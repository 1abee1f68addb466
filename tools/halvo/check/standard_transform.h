#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/quartzcore/transform3d.h"

namespace halvo {

// One operation of a transform list, as the standard has it.
struct TransformOperation {
  std::string_view name;
  std::vector<double> numbers;
};

// Nothing when the standard does not allow the text; `problem` is then where.
std::optional<std::vector<TransformOperation>> readTransform(std::string_view text, std::string_view& problem);

// What a standard renderer makes of them.
quellaro::CATransform3D standardTransform(const std::vector<TransformOperation>& operations);

}  // namespace halvo
