#include "platform/dispatch/serial_queue.h"

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/dispatch/guard.h"

namespace quellaro {

namespace {

// Steps of niceness of a background queue: enough to yield to drawing and sound, not so much as to starve.
constexpr int kBackgroundNiceness = 10;

struct Item {
  Work work;
  // Keeps the main queue from counting as idle while the work is outstanding.
  PendingActivity activity;
};

}  // namespace

struct SerialQueue::State {
  std::string label;
  QualityOfService qualityOfService;
  std::mutex mutex;
  std::condition_variable turn;
  std::deque<Item> items;
  bool busy = false;
  bool workerRunning = false;

  void runWorker() {
    pthread_setname_np(pthread_self(), label.substr(0, 15).c_str());
    // On Linux a thread's id names the thread alone; failing to become nicer is harmless.
    if (qualityOfService == QualityOfService::Background)
      setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kBackgroundNiceness);
    std::unique_lock lock(mutex);
    while (!items.empty()) {
      turn.wait(lock, [this] { return !busy; });
      Item item = std::move(items.front());
      items.pop_front();
      busy = true;
      lock.unlock();
      // Nobody is there to be told.
      attempt(item.work);
      item = {};
      lock.lock();
      busy = false;
      turn.notify_all();
    }
    workerRunning = false;
  }
};

SerialQueue::SerialQueue(std::string label, QualityOfService qualityOfService) : state_(std::make_shared<State>()) {
  state_->label = std::move(label);
  state_->qualityOfService = qualityOfService;
}

SerialQueue::~SerialQueue() = default;

const std::string& SerialQueue::label() const { return state_->label; }

QualityOfService SerialQueue::qualityOfService() const { return state_->qualityOfService; }

void SerialQueue::async(Work work) {
  const std::lock_guard lock(state_->mutex);
  state_->items.push_back({std::move(work), MainQueue::shared().beginActivity()});
  if (state_->workerRunning) return;
  Undo forget([&] { state_->items.pop_back(); });
  // The thread owns the state, so the queue object may go before its work has run.
  std::thread([state = state_] { state->runWorker(); }).detach();
  forget.keep();
  state_->workerRunning = true;
}

void SerialQueue::beginTurn() {
  State& state = *state_;
  std::unique_lock lock(state.mutex);
  state.turn.wait(lock, [&] { return !state.busy && state.items.empty(); });
  state.busy = true;
}

void SerialQueue::endTurn() {
  const std::lock_guard lock(state_->mutex);
  state_->busy = false;
  state_->turn.notify_all();
}

}  // namespace quellaro
