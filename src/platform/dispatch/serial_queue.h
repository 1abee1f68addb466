#pragma once

#include <memory>
#include <string>

#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

enum class QualityOfService { UserInitiated, Default, Background };

// One piece of work at a time, in order. Asynchronous work runs on a thread that exists only while there is some; the
// thread carries the queue's label (its first 15 characters), and background work runs at a lower priority.
class SerialQueue {
 public:
  SerialQueue(std::string label, QualityOfService qualityOfService);
  // Queued work still runs; the destructor does not wait for it.
  ~SerialQueue();
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  const std::string& label() const;
  QualityOfService qualityOfService() const;

  // Throws, and forgets the work, when no thread can be started. What the work throws ends with it.
  void async(Work work);
  // Runs the work on the calling thread, after everything that was queued before. Never from work on this queue: it
  // would wait for itself. What the work throws comes out of here. Needs no memory.
  template <class Call>
  void sync(const Call& work) {
    beginTurn();
    // Also when the work throws: whoever comes next would wait for ever.
    const Undo end([this] { endTurn(); });
    work();
  }

 private:
  void beginTurn();
  void endTurn();

  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace quellaro
