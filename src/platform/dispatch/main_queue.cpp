#include "platform/dispatch/main_queue.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <system_error>
#include <utility>

namespace quellaro {

MainQueue& MainQueue::shared() {
  // Never destroyed: threads that the exit leaves behind may still post to it.
  static MainQueue& queue = *new MainQueue;  // NOLINT(cppcoreguidelines-owning-memory)
  return queue;
}

MainQueue::MainQueue()
    : activities_(std::make_shared<std::atomic<int>>(0)),
      clock_(&machineClock_),
      wakeDescriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (wakeDescriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

MainQueue::~MainQueue() { close(wakeDescriptor_); }

void MainQueue::wake() {
  const std::uint64_t one = 1;
  // Fails only when the counter is full, and then the descriptor is readable anyway.
  [[maybe_unused]] const ssize_t written = write(wakeDescriptor_, &one, sizeof one);
}

void MainQueue::async(Work work) {
  {
    const std::lock_guard lock(mutex_);
    ready_.push_back(std::move(work));
  }
  wake();
}

void MainQueue::asyncAfter(double seconds, Work work) {
  const double deadline = clock().now() + (seconds > 0 ? seconds : 0);
  {
    const std::lock_guard lock(mutex_);
    timers_.push({deadline, nextSequence_++, std::make_shared<Work>(std::move(work))});
  }
  // A loop that sleeps towards a later deadline has to look again.
  wake();
}

std::optional<double> MainQueue::nextDeadline() const {
  const std::lock_guard lock(mutex_);
  if (timers_.empty()) return std::nullopt;
  return timers_.top().deadline;
}

void MainQueue::queueDueTimers() {
  const double now = clock().now();
  while (!timers_.empty() && timers_.top().deadline <= now) {
    ready_.push_back(std::move(*timers_.top().work));
    timers_.pop();
  }
}

void MainQueue::requeue(std::deque<Work>& unfinished) noexcept {
  if (unfinished.empty()) return;
  {
    const std::lock_guard lock(mutex_);
    unfinished.swap(ready_);
    for (Work& later : unfinished) ready_.push_back(std::move(later));
  }
  wake();
}

bool MainQueue::drain() {
  std::deque<Work> due;
  // When a piece of work throws, those behind it wait for the next drain.
  const auto requeueAtEnd = [this](std::deque<Work>* unfinished) { requeue(*unfinished); };
  const std::unique_ptr<std::deque<Work>, decltype(requeueAtEnd)> unfinished(&due, requeueAtEnd);
  {
    const std::lock_guard lock(mutex_);
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(wakeDescriptor_, &count, sizeof count);
    queueDueTimers();
    due.swap(ready_);
  }
  const bool ran = !due.empty();
  while (!due.empty()) {
    // Destroyed before the next piece runs: what a piece of work holds ends with it.
    const Work work = std::move(due.front());
    due.pop_front();
    work();
  }
  Work idle;
  {
    const std::lock_guard lock(mutex_);
    if (ready_.empty()) idle = idleHandler_;
  }
  if (idle) idle();
  return ran;
}

void MainQueue::wait(std::optional<double> seconds) {
  if (!clock().isRealTime()) return;
  std::optional<double> timeout = seconds;
  if (const std::optional<double> deadline = nextDeadline()) {
    const double left = std::max(0.0, *deadline - clock().now());
    timeout = timeout ? std::min(*timeout, left) : left;
  }
  pollfd descriptor{wakeDescriptor_, POLLIN, 0};
  timespec limit{};
  if (timeout) {
    // A day at a time keeps any deadline within the range of a timespec.
    const double bounded = std::min(*timeout, 86400.0);
    limit.tv_sec = static_cast<time_t>(bounded);
    limit.tv_nsec = static_cast<long>((bounded - std::floor(bounded)) * 1e9);
  }
  ppoll(&descriptor, 1, timeout ? &limit : nullptr, nullptr);
}

void MainQueue::run(bool untilIdle) {
  while (true) {
    drain();
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(stopRequested_, false)) return;
    }
    if (untilIdle && isIdle()) return;
    wait();
  }
}

void MainQueue::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopRequested_ = true;
  }
  wake();
}

bool MainQueue::hasQueuedWorkOrActivities() const {
  // Activities first: they post to the queue before they end.
  if (*activities_ != 0) return true;
  const std::lock_guard lock(mutex_);
  return !ready_.empty();
}

bool MainQueue::isIdle() const { return !hasQueuedWorkOrActivities() && !nextDeadline(); }

PendingActivity MainQueue::beginActivity() {
  ++*activities_;
  const auto end = [this, count = activities_](void*) {
    --*count;
    // Whoever waits for the queue to become idle looks again.
    wake();
  };
  return {static_cast<void*>(this), end};
}

void MainQueue::setIdleHandler(Work handler) {
  const std::lock_guard lock(mutex_);
  idleHandler_ = std::move(handler);
}

void MainQueue::setClock(const Clock* clock) { clock_ = clock != nullptr ? clock : &machineClock_; }

const Clock& MainQueue::clock() const { return *clock_; }

}  // namespace quellaro
