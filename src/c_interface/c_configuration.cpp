#include "c_interface/c_interface.h"
#include "controller/settled_configuration.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/simulated_output.h"
#include "platform/corehaptics/haptic_engine.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "platform/foundation/application.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

using namespace quellaro;

namespace {

// Chooses something, unless it is too late or the text is none.
template <class Choose>
quellaro_halvo_result choose(const char* text, const Choose& work) {
  if (isConfigurationSettled()) return quellaro_halvo_result_too_late;
  if (!isTextOrNothing(text)) return quellaro_halvo_result_invalid_text;
  return guarded(work);
}

}  // namespace

quellaro_halvo_result quellaro_halvo_set_bundle_directory(const char* path) {
  if (path == nullptr) return quellaro_halvo_result_null_argument;
  return choose(path, [&] {
    if (!FileManager::directoryExistsAtPath(path)) return quellaro_halvo_result_not_found;
    NSBundle::setLibraryPath(path);
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_set_library_directory(const char* path) {
  return choose(path, [&] {
    if (path != nullptr && *path == '\0') return quellaro_halvo_result_invalid_value;
    setLibraryDirectory(optionalText(path));
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_set_application_identifier(const char* identifier) {
  return choose(identifier, [&] {
    const bool isRefused = setApplicationIdentifier(optionalText(identifier)).has_value();
    return isRefused ? quellaro_halvo_result_invalid_value : quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_use_real_devices(void) {
  return choose(nullptr, [] {
    AVAudioSession::sharedInstance().setOutput(nullptr);
    CHHapticEngine::setActuator(nullptr);
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_use_simulated_devices(double volume, bool has_actuator) {
  return choose(nullptr, [&] {
    if (!(volume >= 0 && volume <= 1)) return quellaro_halvo_result_invalid_value;
    AVAudioSession::sharedInstance().setOutput(std::make_shared<SimulatedOutput>(static_cast<float>(volume)));
    CHHapticEngine::setActuator(std::make_shared<SimulatedActuator>(has_actuator));
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_set_sound_name(const char* name) {
  return choose(name, [&] {
    if (name != nullptr && *name == '\0') return quellaro_halvo_result_invalid_value;
    AVAudioSession::sharedInstance().setSoundName(name != nullptr ? name : AVAudioSession::kDefaultSoundName);
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_set_log_sink(quellaro_halvo_log_sink sink, quellaro_halvo_log_level most,
                                                  void* context) {
  if (most < quellaro_halvo_log_level_error || most > quellaro_halvo_log_level_info)
    return quellaro_halvo_result_invalid_value;
  return guardedAnywhere([&] {
    setLogSink({sink, context, static_cast<LogLevel>(most)});
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_set_console_sink(quellaro_halvo_console_sink sink, void* context) {
  return guardedAnywhere([&] {
    if (sink == nullptr)
      setConsoleSink({});
    else
      setConsoleSink(
          [sink, context](std::string_view text) { callHost([&] { sink(std::string(text).c_str(), context); }); });
    return quellaro_halvo_result_ok;
  });
}
