#include <algorithm>
#include <climits>
#include <cmath>

#include "c_interface/c_interface.h"
#include "platform/dispatch/main_queue.h"

using namespace quellaro;

namespace {

bool isRunning = false;

template <class Run>
quellaro_halvo_result runOnce(const Run& run) {
  if (isRunning) return quellaro_halvo_result_busy;
  isRunning = true;
  const quellaro_halvo_result result = guarded([&] {
    run(MainQueue::shared());
    return quellaro_halvo_result_ok;
  });
  isRunning = false;
  return result;
}

}  // namespace

int quellaro_halvo_loop_descriptor(void) {
  return guarded(-1, [] { return MainQueue::shared().fileDescriptor(); });
}

double quellaro_halvo_loop_seconds_until_next_deadline(void) {
  return guarded(-1.0, [] {
    const MainQueue& queue = MainQueue::shared();
    const std::optional<double> deadline = queue.nextDeadline();
    return deadline ? std::max(0.0, *deadline - queue.clock().now()) : -1.0;
  });
}

int quellaro_halvo_loop_milliseconds_until_next_deadline(void) {
  const double milliseconds = std::ceil(quellaro_halvo_loop_seconds_until_next_deadline() * 1000);
  if (milliseconds < 0) return -1;
  return milliseconds < INT_MAX ? static_cast<int>(milliseconds) : INT_MAX;
}

bool quellaro_halvo_loop_drain(void) {
  // What has thrown has run. In a child there is nothing to run, and a host that drains until then must come to an end.
  return guarded(!MainQueue::isInherited(), [] { return MainQueue::shared().drain(); });
}

quellaro_halvo_result quellaro_halvo_loop_run(void) {
  return runOnce([](MainQueue& queue) { queue.run(); });
}

quellaro_halvo_result quellaro_halvo_loop_run_until_idle(int milliseconds) {
  return runOnce([=](MainQueue& queue) { queue.runUntilIdle(milliseconds); });
}

void quellaro_halvo_loop_stop(void) {
  guardedAnywhere([] {
    MainQueue::shared().stop();
    return quellaro_halvo_result_ok;
  });
}
