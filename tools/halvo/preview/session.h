#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "preview/loop_times.h"

namespace halvo {

// What a key of the preview asks for.
enum class PreviewKey {
  Pause,
  Back,
  Forward,
  First,
  Last,
  Faster,
  Slower,
  Ground,
  Onion,
  Fit,
  Source,
  Findings,
  Help,
};

enum class PreviewGround { Checkerboard, Black, White };

// How things are to be looked at.
struct PreviewLook {
  PreviewGround ground = PreviewGround::Checkerboard;
  bool onion = false;
  bool fit = true;  // or one unit of the drawing to a pixel
  bool source = false;
  bool findings = false;
  bool help = false;
  friend bool operator==(const PreviewLook&, const PreviewLook&) = default;
};

// Where a preview is: a position in the loop that goes on with the clock, and what keys and the mouse have made of it.
// `now` is in seconds, of a clock that never jumps.
class Session {
 public:
  static constexpr int kSlowest = 3;  // 1/8

  explicit Session(LoopTimes times) : times_(std::move(times)) {}

  // What came of a changed source: the same frame is seen as before, if there still is one.
  void replaceTimes(LoopTimes times);
  void press(PreviewKey key);
  // The mouse on the time line: seconds from the start of the loop. It stands still until it is let go.
  void grab(double seconds);
  void letGo() { isHeld_ = false; }
  // Goes on to what is to be seen now.
  void advance(double now);
  // As if no time had passed since.
  void rest(double now) { since_ = now; }
  // When `advance` will next come to something else to be seen; nothing while it stands still.
  std::optional<double> nextChange() const;
  // When it will come to that position of this loop; nothing while it stands still or is past it.
  std::optional<double> timeOf(double position) const;

  const LoopTimes& times() const { return times_; }
  const PreviewLook& look() const { return look_; }
  double position() const { return position_; }
  std::optional<std::size_t> step() const { return times_.stepAt(position_); }
  // From 0; nothing before the first one comes up.
  std::optional<std::size_t> frame() const;
  bool isPaused() const { return isPaused_; }
  // 0: as it is; each more halves it.
  int slowness() const { return slowness_; }
  double speed() const { return 1.0 / (1 << slowness_); }
  bool isRunning() const { return !isPaused_ && !isHeld_ && times_.duration() > 0; }
  // Whether its sound is in time with it.
  bool isAudible() const { return isRunning() && slowness_ == 0; }
  // Times that the loop has begun anew, and that the position has been moved otherwise than by the clock.
  std::uint64_t loops() const { return loops_; }
  std::uint64_t jumps() const { return jumps_; }
  // Steps that have been gone to by the clock, and over.
  std::uint64_t shown() const { return shown_; }
  std::uint64_t dropped() const { return dropped_; }

 private:
  void moveTo(double seconds);
  void stepBy(std::ptrdiff_t steps);
  void countSteps(std::optional<std::size_t> from, std::uint64_t loops);

  LoopTimes times_;
  PreviewLook look_;
  double position_ = 0;
  double since_ = 0;
  bool isPaused_ = false;
  bool isHeld_ = false;
  int slowness_ = 0;
  std::uint64_t loops_ = 0;
  std::uint64_t jumps_ = 0;
  std::uint64_t shown_ = 0;
  std::uint64_t dropped_ = 0;
};

}  // namespace halvo
