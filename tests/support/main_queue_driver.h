#pragma once

#include "platform/dispatch/main_queue.h"
#include "platform/dispatch/manual_clock.h"

namespace quellaro {

// Puts the shared main queue on a clock that the test sets, for as long as it lives.
class MainQueueDriver {
 public:
  MainQueueDriver();
  ~MainQueueDriver();
  MainQueueDriver(const MainQueueDriver&) = delete;
  MainQueueDriver& operator=(const MainQueueDriver&) = delete;

  double now() const { return clock_.now(); }
  // Runs everything that is due without time passing, also what that queues in turn. Waits (in real time, bounded) for
  // work that other threads have announced.
  void settle();
  // Lets time pass, stopping at each deadline on the way, so that everything runs exactly when it is due.
  void advance(double seconds);
  // Lets time pass in one go, as for a main thread that is busy: what is due meanwhile runs afterwards.
  void jump(double seconds);
  // Runs all that is scheduled, however late, and sets the clock back to 0.
  void restart();

 private:
  ManualClock clock_;
};

}  // namespace quellaro
