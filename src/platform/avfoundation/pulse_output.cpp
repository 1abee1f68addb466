#include "platform/avfoundation/pulse_output.h"

#include <utility>

#include "platform/avfoundation/pulse_connection.h"
#include "platform/avfoundation/pulse_playback.h"

namespace quellaro {

std::shared_ptr<PulseConnection> PulseOutput::connection() {
  const std::lock_guard lock(mutex_);
  std::shared_ptr<PulseConnection> connection = connection_.lock();
  if (!connection || !connection->isUsable()) {
    connection = std::make_shared<PulseConnection>();
    connection_ = connection;
  }
  return connection;
}

std::shared_ptr<void> PulseOutput::prepare() { return connection(); }

Result<std::unique_ptr<Playback>> PulseOutput::start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) {
  std::shared_ptr<PulseConnection> server = connection();
  if (const std::optional<NSError> error = server->waitUntilReady()) return *error;
  auto playback = std::make_unique<PulsePlayback>(std::move(server), std::move(sound), std::move(onEnd));
  if (const std::optional<NSError> error = playback->start()) return *error;
  return std::unique_ptr<Playback>(std::move(playback));
}

float PulseOutput::volume() { return connection()->volume(); }

}  // namespace quellaro
