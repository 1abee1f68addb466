#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "import/art/import_frame.h"

namespace halvo::motion {

class Renderer;

// What the process makes of one frame.
using RenderFrame = std::function<std::string(const Renderer& renderer, std::size_t frame)>;
// Called for each frame in order; false: no more is wanted.
using TakeFrame = std::function<bool(std::string bytes)>;

// Renders frames of a motion file in a process of its own, which may break down, take too long or too much memory
// without harm. Any thread. Answers what went wrong.
std::optional<ArtError> renderApart(const std::string& text, const std::vector<std::size_t>& frames,
                                    const RenderFrame& render, const TakeFrame& take);

}  // namespace halvo::motion
