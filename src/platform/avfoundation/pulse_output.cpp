#include "platform/avfoundation/pulse_output.h"

#include <utility>

#include "platform/avfoundation/pulse_connection.h"
#include "platform/avfoundation/pulse_playback.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

std::shared_ptr<PulseConnection> PulseOutput::connection() {
  const std::lock_guard lock(mutex_);
  std::shared_ptr<PulseConnection> connection = connection_.lock();
  if (!connection || !connection->isUsable()) {
    connection = PulseConnection::open();
    connection_ = connection;
  }
  return connection;
}

std::shared_ptr<void> PulseOutput::prepare() { return connection(); }

Result<std::unique_ptr<Playback>> PulseOutput::start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) {
  std::shared_ptr<PulseConnection> server = connection();
  if (!server)
    return NSError{"PulseAudioErrorDomain", PA_ERR_INTERNAL, "Too few descriptors are left for a sound server."};
  if (const std::optional<NSError> error = server->waitUntilReady()) return *error;
  auto playback = std::make_unique<PulsePlayback>(std::move(server), std::move(sound), std::move(onEnd));
  if (const std::optional<NSError> error = playback->start()) return *error;
  return std::unique_ptr<Playback>(std::move(playback));
}

std::string PulseOutput::description() {
  const std::shared_ptr<PulseConnection> server = connection();
  if (!server) return "too few descriptors are left for a sound server";
  if (const std::optional<NSError> error = server->waitUntilReady()) return error->localizedDescription;
  return "sound server " + server->address() + ", libpulse " + pa_get_library_version() + ", volume " +
         decimalDescription(server->volume());
}

float PulseOutput::volume() {
  const std::shared_ptr<PulseConnection> server = connection();
  return server ? server->volume() : 0;
}

}  // namespace quellaro
