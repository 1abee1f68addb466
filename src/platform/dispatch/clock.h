#pragma once

namespace quellaro {

// Where time comes from. Everything that waits asks the main queue's clock; everything that stamps asks the wall clock.
// Both can be replaced, so that a test needs no sleep and no change of the machine's date.
class Clock {
 public:
  virtual ~Clock() = default;
  // Seconds; any thread.
  virtual double now() const = 0;
  // False for a clock that somebody sets: waiting for it in real time is pointless.
  virtual bool isRealTime() const { return true; }
};

// Seconds since an arbitrary start; never jumps.
class MonotonicClock final : public Clock {
 public:
  double now() const override;
};

// Seconds since 1 January 1970 UTC, from the machine's calendar clock.
class SystemWallClock final : public Clock {
 public:
  double now() const override;
};

// The wall clock of the process. Set it before other threads ask. The clock must outlive its use; null restores the
// machine's.
void setWallClock(const Clock* clock);
double secondsSince1970();

}  // namespace quellaro
