#pragma once

#include <pulse/pulseaudio.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/dispatch/function.h"
#include "platform/foundation/error.h"

namespace quellaro {

// One connection to the sound server, with the client library's thread. Not for use on that thread, except where told
// otherwise. Lost for good once the server has gone.
class PulseConnection {
 public:
  // Begins to connect and does not wait. Null when the process has no descriptors or memory left for it.
  static std::shared_ptr<PulseConnection> open();
  ~PulseConnection();
  PulseConnection(const PulseConnection&) = delete;
  PulseConnection& operator=(const PulseConnection&) = delete;

  // Waits until sounds can be started, for a bounded time since open(). Gives why they cannot.
  std::optional<NSError> waitUntilReady();
  // Connected, or about to be.
  bool isUsable();
  // Of the default sink; 0.0 when it is muted, absent or does not answer in time.
  float volume();
  // Where the server that accepted us is, with the version of its protocol.
  std::string address();

  // Keeps the connection's thread out while it exists; what follows is to be used only under it, or on that thread.
  class Lock {
   public:
    explicit Lock(PulseConnection& connection) : loop_(connection.loop_) { pa_threaded_mainloop_lock(loop_); }
    ~Lock() { pa_threaded_mainloop_unlock(loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    pa_threaded_mainloop* loop_;
  };
  pa_context* context() const { return context_; }
  pa_mainloop_api* api() const { return pa_threaded_mainloop_get_api(loop_); }
  NSError lastError() const;

 private:
  PulseConnection(pa_threaded_mainloop* loop, pa_context* context);
  void waitFor(const Function<bool()>& condition, pa_usec_t deadline);

  pa_threaded_mainloop* loop_;
  pa_context* context_;
  pa_usec_t connectDeadline_ = 0;
};

}  // namespace quellaro
