#include <map>

#include "c_interface/c_interface.h"
#include "platform/foundation/notification_center.h"
#include "types/notifications.h"

using namespace quellaro;

namespace {

struct Observation {
  quellaro_halvo_notification_handler handler;
  void* context;
};

// Held here alone: a post that is under way finds out that one has ended.
std::map<uint64_t, std::shared_ptr<Observation>>& observations() {
  // Never destroyed: a host may stop observing while the process exits.
  static auto& all = *new std::map<uint64_t, std::shared_ptr<Observation>>;  // NOLINT(cppcoreguidelines-owning-memory)
  return all;
}

}  // namespace

uint64_t quellaro_halvo_observe_audio_session_deactivated(quellaro_halvo_notification_handler handler, void* context) {
  if (handler == nullptr) return 0;
  return guarded<uint64_t>(0, [&] {
    const auto observation = std::make_shared<Observation>(Observation{handler, context});
    const auto tell = [weak = std::weak_ptr(observation)](const std::string& name) {
      if (const auto told = weak.lock()) callHost([&] { told->handler(name.c_str(), told->context); });
    };
    const auto token = NSNotificationCenter::defaultCenter().addObserver(QLAudioSessionDeactivated, tell);
    observations().emplace(token, observation);
    return token;
  });
}

void quellaro_halvo_stop_observing_audio_session_deactivated(uint64_t token) {
  guarded([&] {
    if (observations().erase(token) != 0) NSNotificationCenter::defaultCenter().removeObserver(token);
    return quellaro_halvo_result_ok;
  });
}
