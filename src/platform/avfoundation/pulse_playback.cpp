#include "platform/avfoundation/pulse_playback.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/avfoundation/audio_session.h"

namespace quellaro {

namespace {

// From the decoder to the loudspeaker, where the device permits. Short enough to seem immediate, long enough for a busy
// machine to keep up.
constexpr pa_usec_t kLatency = 60 * PA_USEC_PER_MSEC;
// A server that neither takes samples nor finishes for so long has hung. Wireless loudspeakers buffer up to two
// seconds.
constexpr pa_usec_t kStallTimeout = 4 * PA_USEC_PER_SEC;

pa_buffer_attr bufferFor(const pa_sample_spec& spec) {
  constexpr auto kServersChoice = static_cast<std::uint32_t>(-1);
  pa_buffer_attr buffer{};
  buffer.maxlength = kServersChoice;
  buffer.tlength = static_cast<std::uint32_t>(pa_usec_to_bytes(kLatency, &spec));
  buffer.prebuf = kServersChoice;
  buffer.minreq = kServersChoice;
  buffer.fragsize = kServersChoice;
  return buffer;
}

pa_stream* makeStream(pa_context* context, const pa_sample_spec& spec) {
  const std::string& name = AVAudioSession::sharedInstance().soundName();
  pa_proplist* properties = pa_proplist_new();
  pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, kMediaRole);
  pa_stream* stream = pa_stream_new_with_proplist(context, name.c_str(), &spec, nullptr, properties);
  pa_proplist_free(properties);
  return stream;
}

}  // namespace

PulsePlayback::PulsePlayback(std::shared_ptr<PulseConnection> connection, std::shared_ptr<SoundSource> sound,
                             PlaybackEndHandler onEnd)
    : connection_(std::move(connection)), sound_(std::move(sound)), onEnd_(std::move(onEnd)) {}

PulsePlayback::~PulsePlayback() {
  const PulseConnection::Lock lock(*connection_);
  detach();
  if (stream_ == nullptr) return;
  pa_stream_disconnect(stream_);
  pa_stream_unref(stream_);
}

std::optional<NSError> PulsePlayback::start() {
  const SoundFormat format = sound_->format();
  const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, format.rate, static_cast<std::uint8_t>(format.channels)};
  const pa_buffer_attr buffer = bufferFor(spec);

  const PulseConnection::Lock lock(*connection_);
  stream_ = makeStream(connection_->context(), spec);
  if (stream_ == nullptr) return connection_->lastError();
  pa_stream_set_state_callback(
      stream_, [](pa_stream*, void* self) { static_cast<PulsePlayback*>(self)->observeStream(); }, this);
  pa_stream_set_write_callback(
      stream_, [](pa_stream*, std::size_t bytes, void* self) { static_cast<PulsePlayback*>(self)->feed(bytes); }, this);
  if (pa_stream_connect_playback(stream_, nullptr, &buffer, PA_STREAM_ADJUST_LATENCY, nullptr, nullptr) != 0)
    return connection_->lastError();
  expectProgress();
  return std::nullopt;
}

void PulsePlayback::observeStream() {
  const pa_stream_state_t state = pa_stream_get_state(stream_);
  if (state == PA_STREAM_FAILED || state == PA_STREAM_TERMINATED)
    finish({PlaybackEnd::Outcome::OutputFailed, connection_->lastError()});
}

void PulsePlayback::feed(std::size_t bytes) {
  expectProgress();
  const std::size_t frame = sound_->format().channels;
  std::size_t wanted = bytes / sizeof(float);
  while (wanted >= frame) {
    const std::size_t room = std::min(wanted, samples_.size()) / frame * frame;
    const Result<std::size_t> filled = sound_->read(std::span(samples_).first(room));
    if (!filled) return finish({PlaybackEnd::Outcome::Undecodable, filled.error()});
    if (*filled == 0) return drain();
    // A failure shows in the stream's state.
    pa_stream_write(stream_, samples_.data(), *filled * sizeof(float), nullptr, 0, PA_SEEK_RELATIVE);
    wanted -= *filled;
  }
}

// All is written: the server tells when the last of it has been heard.
void PulsePlayback::drain() {
  pa_stream_set_write_callback(stream_, nullptr, nullptr);
  const auto onDrained = [](pa_stream*, int success, void* pointer) {
    auto* self = static_cast<PulsePlayback*>(pointer);
    if (success != 0)
      self->finish({PlaybackEnd::Outcome::Heard, {}});
    else
      self->finish({PlaybackEnd::Outcome::OutputFailed, self->connection_->lastError()});
  };
  drain_ = pa_stream_drain(stream_, onDrained, this);
  if (drain_ == nullptr) finish({PlaybackEnd::Outcome::OutputFailed, connection_->lastError()});
}

// Winds the watchdog up again.
void PulsePlayback::expectProgress() {
  const pa_usec_t deadline = pa_rtclock_now() + kStallTimeout;
  if (watchdog_ != nullptr) {
    pa_context_rttime_restart(connection_->context(), watchdog_, deadline);
    return;
  }
  const auto onStall = [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
    static_cast<PulsePlayback*>(self)->finish(
        {PlaybackEnd::Outcome::OutputFailed,
         NSError{"PulseAudioErrorDomain", PA_ERR_TIMEOUT, "The sound server does not go on."}});
  };
  watchdog_ = pa_context_rttime_new(connection_->context(), deadline, onStall, this);
}

void PulsePlayback::finish(const PlaybackEnd& end) {
  detach();
  if (const PlaybackEndHandler report = std::exchange(onEnd_, nullptr)) report(end);
  activity_.reset();
}

// From here on the client library calls nothing of this object.
void PulsePlayback::detach() {
  if (watchdog_ != nullptr) connection_->api()->time_free(std::exchange(watchdog_, nullptr));
  if (drain_ != nullptr) {
    pa_operation_cancel(drain_);
    pa_operation_unref(std::exchange(drain_, nullptr));
  }
  if (stream_ == nullptr) return;
  pa_stream_set_state_callback(stream_, nullptr, nullptr);
  pa_stream_set_write_callback(stream_, nullptr, nullptr);
}

}  // namespace quellaro
