#pragma once

#include <atomic>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/dispatch/clock.h"
#include "platform/dispatch/function.h"

namespace quellaro {

using Work = Function<void()>;
// One piece of work with its place in a queue, so that to queue it needs no memory: for what has to come, even then.
using PreparedWork = std::list<Work>;

// Held by whatever will post to the main queue later from elsewhere (a request, a sound, work on a serial queue). While
// one exists the main queue is not idle. Any thread.
using PendingActivity = std::shared_ptr<void>;

// The queue on which everything that the host sees happens. Work runs only inside drain() or run(), on the thread that
// calls them (the main thread, by definition), first in first out. A host without a loop calls run(). A host with one
// watches fileDescriptor(), wakes at nextDeadline() and then calls drain(). A host that does neither sees nothing
// happen. The shared queue belongs to the process that has used it first: in a child that is forked afterwards it has
// no descriptor and no deadline, and runs nothing.
class MainQueue {
 public:
  static MainQueue& shared();
  // In such a child: what it has inherited waits for threads that only its parent has.
  static bool isInherited() noexcept;

  MainQueue();
  ~MainQueue();
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;

  // Any thread. Work that is due at the same instant runs in the order in which it was scheduled. A delay that is
  // negative or not a number counts as 0.
  void async(Work work);
  void async(PreparedWork work) noexcept;
  void asyncAfter(double seconds, Work work);

  // Becomes readable when async() has queued work; drain() makes it quiet again. Owned by the queue.
  int fileDescriptor() const;
  // When the next delayed work is due, on the queue's clock; nothing when none is scheduled. Queued work is due at once
  // and not counted here.
  std::optional<double> nextDeadline() const;
  // Runs what is due now, and not what that work queues in turn. Gives whether anything ran.
  bool drain();
  // Waits for and runs work until stop(). Not re-entrant.
  void run();
  // The same, at most until the queue is idle or so much time of the machine's has passed; negative sets no limit. For
  // a host that is about to exit: what is still under way then, a report of its plays above all, is lost with it. Gives
  // whether the queue is idle.
  bool runUntilIdle(int milliseconds);
  // Ends either after the work that is running. Any thread.
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
  void wake();
  void queueDueTimers();
  bool takeStopRequest();

  mutable std::mutex mutex_;
  std::list<Work> ready_;
  // By deadline, and of one deadline in the order of scheduling.
  std::multimap<double, PreparedWork> timers_;
  Work idleHandler_;
  bool stopRequested_ = false;
  std::shared_ptr<std::atomic<int>> activities_;
  MonotonicClock machineClock_;
  std::atomic<const Clock*> clock_;
  int wakeDescriptor_ = -1;
};

}  // namespace quellaro
