#include "platform/avfoundation/pulse_connection.h"

#include <algorithm>
#include <string>

#include "platform/avfoundation/pulse_address.h"
#include "platform/avfoundation/pulse_cookie.h"

namespace quellaro {

namespace {

// How long a server may take to accept us: time enough for one that is started by our knocking.
constexpr pa_usec_t kConnectTimeout = 2 * PA_USEC_PER_SEC;
// How long a connected server may take to tell its volume.
constexpr pa_usec_t kAnswerTimeout = 1 * PA_USEC_PER_SEC;

struct SinkAnswer {
  pa_threaded_mainloop* loop;
  float volume = 0;
};

void receiveSink(pa_context* /*context*/, const pa_sink_info* sink, int /*endOfList*/, void* answerPointer) {
  auto* answer = static_cast<SinkAnswer*>(answerPointer);
  // Any channel that can be heard makes the sound audible.
  if (sink != nullptr && sink->mute == 0)
    answer->volume = std::min(1.0F, static_cast<float>(pa_cvolume_max(&sink->volume)) / PA_VOLUME_NORM);
  pa_threaded_mainloop_signal(answer->loop, 0);
}

void wakeWaiter(pa_context* /*context*/, void* loop) {
  pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop*>(loop), 0);
}

}  // namespace

std::shared_ptr<PulseConnection> PulseConnection::open() {
  pa_threaded_mainloop* loop = pa_threaded_mainloop_new();
  if (loop == nullptr) return nullptr;
  // Null as the name: the library takes that of the program.
  pa_context* context = pa_context_new(pa_threaded_mainloop_get_api(loop), nullptr);
  if (context == nullptr) {
    pa_threaded_mainloop_free(loop);
    return nullptr;
  }
  // Private constructor: make_shared cannot reach it.
  return std::shared_ptr<PulseConnection>(new PulseConnection(loop, context));
}

PulseConnection::PulseConnection(pa_threaded_mainloop* loop, pa_context* context) : loop_(loop), context_(context) {
  pa_threaded_mainloop_set_name(loop_, "sound server");
  pa_context_set_state_callback(context_, wakeWaiter, loop_);
  connectDeadline_ = pa_rtclock_now() + kConnectTimeout;
  if (const std::optional<std::string> cookie = pulseCookieFile())
    pa_context_load_cookie_from_file(context_, cookie->c_str());
  const std::optional<std::string> address = pulseServerAddress();
  // A failure shows in the state.
  pa_context_connect(context_, address ? address->c_str() : nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  if (pa_threaded_mainloop_start(loop_) != 0) pa_context_disconnect(context_);
}

PulseConnection::~PulseConnection() {
  {
    const Lock lock(*this);
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
  }
  pa_threaded_mainloop_stop(loop_);
  pa_context_unref(context_);
  pa_threaded_mainloop_free(loop_);
}

NSError PulseConnection::lastError() const {
  return {"PulseAudioErrorDomain", pa_context_errno(context_), pa_strerror(pa_context_errno(context_))};
}

// Under the lock. Gives up at the deadline; the caller looks again.
void PulseConnection::waitFor(const Function<bool()>& condition, pa_usec_t deadline) {
  const auto expire = [](pa_mainloop_api* /*api*/, pa_time_event* /*event*/, const timeval* /*time*/, void* loop) {
    pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop*>(loop), 0);
  };
  pa_time_event* timer = pa_context_rttime_new(context_, deadline, expire, loop_);
  while (timer != nullptr && !condition() && pa_rtclock_now() < deadline) pa_threaded_mainloop_wait(loop_);
  if (timer != nullptr) api()->time_free(timer);
}

std::optional<NSError> PulseConnection::waitUntilReady() {
  const Lock lock(*this);
  const auto isSettled = [this] {
    const pa_context_state_t state = pa_context_get_state(context_);
    return state == PA_CONTEXT_READY || PA_CONTEXT_IS_GOOD(state) == 0;
  };
  waitFor(isSettled, connectDeadline_);
  if (pa_context_get_state(context_) == PA_CONTEXT_READY) return std::nullopt;
  if (!isSettled()) {
    pa_context_disconnect(context_);
    return NSError{"PulseAudioErrorDomain", PA_ERR_TIMEOUT, "The sound server does not answer."};
  }
  NSError error = lastError();
  error.localizedDescription = "There is no sound server (" + error.localizedDescription + ").";
  return error;
}

bool PulseConnection::isUsable() {
  const Lock lock(*this);
  return PA_CONTEXT_IS_GOOD(pa_context_get_state(context_)) != 0;
}

std::string PulseConnection::address() {
  const Lock lock(*this);
  const char* server = pa_context_get_server(context_);
  return std::string(server != nullptr ? server : "of unknown address") + ", protocol " +
         std::to_string(pa_context_get_server_protocol_version(context_));
}

float PulseConnection::volume() {
  if (waitUntilReady()) return 0;
  const Lock lock(*this);
  SinkAnswer answer{loop_};
  pa_operation* operation = pa_context_get_sink_info_by_name(context_, "@DEFAULT_SINK@", receiveSink, &answer);
  if (operation == nullptr) return 0;
  const auto isAnswered = [operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; };
  waitFor(isAnswered, pa_rtclock_now() + kAnswerTimeout);
  // Does nothing to an operation that is done; a late answer would find no receiver.
  pa_operation_cancel(operation);
  pa_operation_unref(operation);
  return answer.volume;
}

}  // namespace quellaro
