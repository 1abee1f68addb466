#pragma once

#include <cstddef>

// What a cue may cost on the slow devices that it is to play on. More still plays; it is told of as a warning, and
// times, which depend on the machine that measures, as a note.
namespace halvo::budget {

// A phone on a slow link fetches this in some seconds.
inline constexpr std::size_t kAnimationBytes = std::size_t{8} << 20;
inline constexpr std::size_t kSoundBytes = std::size_t{1} << 20;
inline constexpr std::size_t kFrameBytes = std::size_t{64} << 10;

// Of one frame. A device that draws a frame in 16 ms here draws twice as much.
inline constexpr std::size_t kFrameElements = 500;
inline constexpr std::size_t kFramePoints = 10'000;
// How often a frame is painted over. Once takes half a millisecond here, at 1080 x 1080; beyond the second number not
// even a fast device shows two frames a second, and its host stands still meanwhile.
inline constexpr double kFramePaints = 30;
inline constexpr double kMostFramePaints = 1000;

// To prepare all frames, of this machine's CPU time.
inline constexpr double kPrepareSeconds = 0.25;

}  // namespace halvo::budget
