#pragma once

#include <cstddef>

// Every bound on what comes from outside. Each lies far above any honest cue, so that meeting one means a mistake or
// malice.
namespace quellaro::limits {

// A file that is read whole. The heaviest honest file is animation.json: 1200 frames of 34 KB are 40 MB.
inline constexpr std::size_t kFileBytes = std::size_t{256} << 20;

}  // namespace quellaro::limits
