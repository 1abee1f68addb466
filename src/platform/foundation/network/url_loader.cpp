#include "platform/foundation/network/url_loader.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>
#include <utility>

#include "platform/dispatch/clock.h"

namespace quellaro {

namespace {

// Far longer than the thread ever works without sleeping; only there so that nothing can hold up an exit.
constexpr std::chrono::seconds kLongestWaitAtExit{1};
constexpr double kLongestSleep = 3600;  // seconds

// A completion is owed, however long memory is short.
template <class Work>
void insist(const Work& work) {
  constexpr std::chrono::milliseconds kPause{10};
  while (true) {
    try {
      return work();
    } catch (const std::bad_alloc&) {
      std::this_thread::sleep_for(kPause);
    }
  }
}

bool isPrepared(URLTransfer& transfer) {
  try {
    return transfer.prepare();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void freezeAtExit() { URLLoader::shared().freeze(); }

}  // namespace

URLLoader& URLLoader::shared() {
  // Never destroyed: its thread outlives main().
  static URLLoader& loader = *new URLLoader;  // NOLINT(cppcoreguidelines-owning-memory)
  return loader;
}

void URLLoader::start(std::unique_ptr<URLTransfer> transfer) {
  const std::lock_guard lock(mutex_);
  if (!isRunning_ && !startThread()) {
    transfer->fail(URLErrorCode::Unknown, "no thread can be started");
    return;
  }
  incoming_.push_back(std::move(transfer));
  curl_multi_wakeup(multi_);
}

bool URLLoader::startThread() {
  if (multi_ == nullptr) {
    // Here rather than on the thread, a few milliseconds once: what the first line initialises is taken apart at exit,
    // and as exit handlers run in the reverse order of their registration, this one comes before that.
    curl_global_init(CURL_GLOBAL_ALL);
    std::atexit(freezeAtExit);
    multi_ = curl_multi_init();
    if (multi_ == nullptr) return false;
  }
  // Signals are for the host's threads. The thread inherits the mask, and so do those that resolve names.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread([this] { run(); }).detach();
    isRunning_ = true;
  } catch (const std::exception&) {
    isRunning_ = false;
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return isRunning_;
}

void URLLoader::freeze() {
  // Taken once and never given back.
  if (!isFrozen_) isFrozen_ = working_.try_lock_for(kLongestWaitAtExit);
}

void URLLoader::run() {
  pthread_setname_np(pthread_self(), "URLSession");
  std::unique_lock working(working_);
  while (true) {
    admit();
    int running = 0;
    curl_multi_perform(multi_, &running);
    collect();
    giveUpHopeless(MonotonicClock{}.now());
    const int milliseconds = millisecondsToSleep();
    working.unlock();
    curl_multi_poll(multi_, nullptr, 0, milliseconds, nullptr);
    working.lock();
  }
}

void URLLoader::admit() {
  Transfers incoming;
  {
    const std::lock_guard lock(mutex_);
    incoming.swap(incoming_);
  }
  while (!incoming.empty()) {
    URLTransfer& transfer = *incoming.front();
    if (!isPrepared(transfer) || curl_multi_add_handle(multi_, transfer.handle()) != CURLM_OK) {
      insist([&] { transfer.fail(URLErrorCode::Unknown); });
      incoming.pop_front();
    } else {
      transfers_.splice(transfers_.end(), incoming, incoming.begin());
    }
  }
}

URLLoader::Transfers URLLoader::take(Transfers::iterator transfer) {
  Transfers taken;
  taken.splice(taken.end(), transfers_, transfer);
  curl_multi_remove_handle(multi_, taken.front()->handle());
  return taken;
}

void URLLoader::collect() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    // The message does not outlive the handle's place in the multi.
    const CURLcode result = message->data.result;
    const CURL* const handle = message->easy_handle;
    const auto found = std::find_if(transfers_.begin(), transfers_.end(),
                                    [&](const auto& transfer) { return transfer->handle() == handle; });
    const Transfers taken = take(found);
    insist([&] { taken.front()->finish(result); });
  }
}

void URLLoader::giveUpHopeless(double now) {
  for (auto next = transfers_.begin(); next != transfers_.end();) {
    const auto current = next++;
    URLTransfer& transfer = **current;
    transfer.noteActivity(now);
    const bool isLate = transfer.deadline() <= now;
    if (!isLate && !transfer.isEndless()) continue;
    const URLErrorCode code = transfer.isEndless() ? URLErrorCode::DataLengthExceedsMaximum : URLErrorCode::TimedOut;
    const Transfers taken = take(current);
    insist([&] { transfer.fail(code); });
  }
}

int URLLoader::millisecondsToSleep() const {
  double left = kLongestSleep;
  const double now = MonotonicClock{}.now();
  for (const auto& transfer : transfers_) left = std::min(left, transfer->deadline() - now);
  // Rounded up: to wake just before the deadline would be to spin towards it.
  return left > 0 ? static_cast<int>(left * 1000) + 1 : 0;
}

}  // namespace quellaro
