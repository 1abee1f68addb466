#include "support/main_queue_driver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace quellaro {

MainQueueDriver::MainQueueDriver() {
  MainQueue::shared().drain();
  MainQueue::shared().setClock(&clock_);
}

MainQueueDriver::~MainQueueDriver() {
  restart();
  MainQueue::shared().setClock(nullptr);
}

void MainQueueDriver::settle() {
  MainQueue& queue = MainQueue::shared();
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (true) {
    if (queue.drain()) continue;
    if (!queue.hasQueuedWorkOrActivities()) return;
    if (std::chrono::steady_clock::now() > limit) {
      ADD_FAILURE() << "announced work never came";
      return;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

void MainQueueDriver::advance(double seconds) {
  const double end = clock_.now() + seconds;
  settle();
  while (true) {
    const std::optional<double> deadline = MainQueue::shared().nextDeadline();
    if (!deadline || *deadline > end) break;
    clock_.set(*deadline);
    settle();
  }
  clock_.set(end);
}

void MainQueueDriver::jump(double seconds) {
  clock_.advance(seconds);
  settle();
}

void MainQueueDriver::restart() {
  settle();
  while (MainQueue::shared().nextDeadline()) advance(1e6);
  clock_.set(0);
}

}  // namespace quellaro
