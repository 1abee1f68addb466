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

#include "platform/dispatch/guard.h"

namespace quellaro {

namespace {

// The process that the shared queue belongs to; 0 before there is one.
std::atomic<pid_t> owner{0};

MainQueue* makeShared() {
  auto queue = std::make_unique<MainQueue>();
  owner = getpid();
  return queue.release();
}

}  // namespace

MainQueue& MainQueue::shared() {
  // Never destroyed: threads that the exit leaves behind may still post to it.
  static MainQueue& queue = *makeShared();
  return queue;
}

bool MainQueue::isInherited() noexcept {
  const pid_t process = owner;
  return process != 0 && process != getpid();
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

int MainQueue::fileDescriptor() const { return isInherited() ? -1 : wakeDescriptor_; }

void MainQueue::async(Work work) {
  PreparedWork prepared;
  prepared.push_back(std::move(work));
  async(std::move(prepared));
}

void MainQueue::async(PreparedWork work) noexcept {
  {
    const std::lock_guard lock(mutex_);
    ready_.splice(ready_.end(), work);
  }
  wake();
}

void MainQueue::asyncAfter(double seconds, Work work) {
  const double deadline = clock().now() + (seconds > 0 ? seconds : 0);
  PreparedWork prepared;
  prepared.push_back(std::move(work));
  {
    const std::lock_guard lock(mutex_);
    timers_.emplace(deadline, std::move(prepared));
  }
  // A loop that sleeps towards a later deadline has to look again.
  wake();
}

std::optional<double> MainQueue::nextDeadline() const {
  if (isInherited()) return std::nullopt;
  const std::lock_guard lock(mutex_);
  if (timers_.empty()) return std::nullopt;
  return timers_.begin()->first;
}

void MainQueue::queueDueTimers() {
  const auto end = timers_.upper_bound(clock().now());
  for (auto timer = timers_.begin(); timer != end; timer = timers_.erase(timer))
    ready_.splice(ready_.end(), timer->second);
}

bool MainQueue::drain() {
  if (isInherited()) return false;
  std::list<Work> due;
  // When a piece of work throws, those behind it wait for the next drain, in front of all other.
  const Undo requeue([&] {
    if (due.empty()) return;
    {
      const std::lock_guard lock(mutex_);
      ready_.splice(ready_.begin(), due);
    }
    wake();
  });
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
  if (!clock().isRealTime() || isInherited()) return;
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

bool MainQueue::takeStopRequest() {
  const std::lock_guard lock(mutex_);
  return std::exchange(stopRequested_, false);
}

void MainQueue::run() {
  while (!isInherited()) {
    drain();
    if (takeStopRequest()) return;
    wait();
  }
}

bool MainQueue::runUntilIdle(int milliseconds) {
  const MonotonicClock machine;
  const double end = machine.now() + milliseconds / 1000.0;
  while (!isInherited()) {
    drain();
    if (takeStopRequest() || isIdle()) break;
    std::optional<double> left;
    if (milliseconds >= 0) left = end - machine.now();
    if (left && *left <= 0) break;
    wait(left);
  }
  return isIdle();
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
