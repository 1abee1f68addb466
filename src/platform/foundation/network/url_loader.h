#pragma once

#include <curl/curl.h>

#include <list>
#include <memory>
#include <mutex>

#include "platform/foundation/network/url_transfer.h"

namespace quellaro {

// The platform's network thread. It starts with the first request and ends with the process, whose exit does not wait
// for it: what is on its way then is abandoned.
class URLLoader {
 public:
  static URLLoader& shared();

  // Any thread.
  void start(std::unique_ptr<URLTransfer> transfer);
  // Stops the thread where it does no harm, for good: whoever takes the process's memory apart comes after.
  void freeze();

 private:
  URLLoader() = default;
  bool startThread();
  void run();
  void admit();
  void collect();
  void giveUpHopeless(double now);
  using Transfers = std::list<std::unique_ptr<URLTransfer>>;
  Transfers take(Transfers::iterator transfer);
  int millisecondsToSleep() const;

  std::mutex mutex_;
  bool isRunning_ = false;
  CURLM* multi_ = nullptr;  // there before the thread is
  // Lists: from its start on, a transfer takes no memory to move on.
  Transfers incoming_;

  // Held by the thread whenever it does more than sleep.
  std::timed_mutex working_;
  bool isFrozen_ = false;  // the exiting thread's own
  // The thread's own.
  Transfers transfers_;
};

}  // namespace quellaro
