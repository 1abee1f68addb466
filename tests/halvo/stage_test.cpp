#include "play/stage.h"

#include <gtest/gtest.h>

#include "platform/dispatch/clock.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {
namespace {

// Whoever waits for the queue to become idle has seen the activity and not yet its end. Half a minute is for the next
// timer; to sleep without one would be for ever.
TEST(Stage, ATurnDoesNotSleepThroughTheEndOfWhatItWaitsFor) {
  halvo::StageOptions options;
  options.noView = true;
  halvo::Stage stage(options, halvo::Screen::Memory);
  MainQueue& queue = MainQueue::shared();
  queue.asyncAfter(30, [] {});
  queue.drain();
  const double start = MonotonicClock().now();
  queue.beginActivity().reset();
  stage.turn();
  EXPECT_LT(MonotonicClock().now() - start, 10);
}

}  // namespace
}  // namespace quellaro
