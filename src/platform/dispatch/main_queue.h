#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <queue>
#include <vector>

#include "platform/dispatch/clock.h"

namespace quellaro {

using Work = std::function<void()>;

// Held by whatever will post to the main queue later from elsewhere (a request, a sound, work on a serial queue). While
// one exists the main queue is not idle. Any thread.
using PendingActivity = std::shared_ptr<void>;

// The queue on which everything that the host sees happens. Work runs only inside drain() or run(), on the thread that
// calls them (the main thread, by definition), first in first out. A host without a loop calls run(). A host with one
// watches fileDescriptor(), wakes at nextDeadline() and then calls drain(). A host that does neither sees nothing
// happen.
class MainQueue {
 public:
  static MainQueue& shared();

  MainQueue();
  ~MainQueue();
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  // Any thread. Work that is due at the same instant runs in the order in which it was scheduled. A delay that is
  // negative or not a number counts as 0.
  void async(Work work);
  void asyncAfter(double seconds, Work work);

  // Becomes readable when async() has queued work; drain() makes it quiet again. Owned by the queue.
  int fileDescriptor() const { return wakeDescriptor_; }
  // When the next delayed work is due, on the queue's clock; nothing when none is scheduled. Queued work is due at once
  // and not counted here.
  std::optional<double> nextDeadline() const;
  // Runs what is due now, and not what that work queues in turn. Gives whether anything ran.
  bool drain();
  // Waits for and runs work until stop(), or until the queue is idle and `untilIdle` is set. Not re-entrant.
  void run(bool untilIdle = false);
  // Ends run() after the work that is running. Any thread.
  void stop();
  // Nothing is queued, nothing is scheduled, and nobody has announced more: no work will ever come by itself.
  bool isIdle() const;
  // Like isIdle, but scheduled timers do not count.
  bool hasQueuedWorkOrActivities() const;
  // Sleeps until something is due or `seconds` have passed; returns at once on a clock that is set by hand.
  void wait(std::optional<double> seconds = std::nullopt);

  [[nodiscard]] PendingActivity beginActivity();

  // Runs when the queue has nothing more to do at once: at the end of a drain that left nothing due. Main thread.
  void setIdleHandler(Work handler);

  // The clock of every delay. It must outlive its use; null restores the machine's. Not while work is scheduled.
  void setClock(const Clock* clock);
  const Clock& clock() const;

 private:
  struct Timer {
    double deadline;
    std::uint64_t sequence;
    std::shared_ptr<Work> work;
    bool operator>(const Timer& other) const {
      return deadline != other.deadline ? deadline > other.deadline : sequence > other.sequence;
    }
  };

  void wake();
  void queueDueTimers();
  // Puts work that has not run back in front of all other.
  void requeue(std::deque<Work>& unfinished) noexcept;

  mutable std::mutex mutex_;
  std::deque<Work> ready_;
  std::priority_queue<Timer, std::vector<Timer>, std::greater<>> timers_;
  std::uint64_t nextSequence_ = 0;
  Work idleHandler_;
  bool stopRequested_ = false;
  std::shared_ptr<std::atomic<int>> activities_;
  MonotonicClock machineClock_;
  std::atomic<const Clock*> clock_;
  int wakeDescriptor_ = -1;
};

}  // namespace quellaro
