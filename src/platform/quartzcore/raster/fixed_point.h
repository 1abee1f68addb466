#pragma once

namespace quellaro {

// Coordinates of edges are fixed point with eight bits of fraction.
inline constexpr int kSubpixelBits = 8;
inline constexpr int kSubpixels = 1 << kSubpixelBits;

}  // namespace quellaro
