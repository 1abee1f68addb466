#include "c_interface/c_interface.h"

using namespace quellaro;

namespace {

// Keeps the controller until the answer has come, so that it comes whatever the host releases meanwhile.
HalvoCompletion answerTo(const std::shared_ptr<QLHalvoController>& controller, quellaro_halvo_completion completion,
                         void* context) {
  if (completion == nullptr) return [kept = controller](QLHalvoStatus) {};
  return [kept = controller, completion, context](QLHalvoStatus status) {
    callHost([&] { completion(rawValueOf(status), context); });
  };
}

}  // namespace

quellaro_halvo_controller* quellaro_halvo_controller_create(void) {
  return guarded<quellaro_halvo_controller*>(nullptr, [] {
    return new quellaro_halvo_controller{QLHalvoController::make(), {}};
  });
}

void quellaro_halvo_controller_release(quellaro_halvo_controller* controller) {
  // It would wait for threads that the parent has.
  if (MainQueue::isInherited()) return;
  expectMainThread();
  const std::unique_ptr<quellaro_halvo_controller> released(controller);
}

quellaro_halvo_result quellaro_halvo_controller_prepare(quellaro_halvo_controller* controller, quellaro_halvo_type type,
                                                        const char* halvo_cue, quellaro_halvo_environment environment,
                                                        const quellaro_halvo_merchant* merchant,
                                                        bool is_haptics_enabled, quellaro_halvo_completion completion,
                                                        void* context) {
  if (controller == nullptr || halvo_cue == nullptr || merchant == nullptr) return quellaro_halvo_result_null_argument;
  const auto cueType = fromRawValue<QLHalvoType>(type);
  const auto cueEnvironment = fromRawValue<QLHalvoEnvironment>(environment);
  if (!cueType || !cueEnvironment) return quellaro_halvo_result_invalid_value;
  if (!isValidUTF8(halvo_cue)) return quellaro_halvo_result_invalid_text;
  return guarded([&] {
    // The completion may come in this call and release the handle.
    const auto kept = controller->controller;
    kept->prepare(*cueType, halvo_cue, *cueEnvironment, merchant->merchant, is_haptics_enabled,
                  answerTo(kept, completion, context));
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_controller_play(quellaro_halvo_controller* controller, quellaro_halvo_view* view,
                                                     quellaro_halvo_completion completion, void* context) {
  if (controller == nullptr) return quellaro_halvo_result_null_argument;
  return guarded([&] {
    const auto kept = controller->controller;
    kept->play(view != nullptr ? view->view : nullptr, answerTo(kept, completion, context));
    return quellaro_halvo_result_ok;
  });
}

const char* quellaro_halvo_controller_prepared_halvo_cue(quellaro_halvo_controller* controller) {
  if (controller == nullptr || !controller->controller->preparedHalvoCue()) return nullptr;
  return guarded<const char*>(nullptr, [&] {
    controller->preparedHalvoCue = *controller->controller->preparedHalvoCue();
    return controller->preparedHalvoCue.c_str();
  });
}

quellaro_halvo_result quellaro_halvo_controller_set_prepared_halvo_cue(quellaro_halvo_controller* controller,
                                                                       const char* halvo_cue) {
  if (controller == nullptr) return quellaro_halvo_result_null_argument;
  if (!isTextOrNothing(halvo_cue)) return quellaro_halvo_result_invalid_text;
  return guarded([&] {
    controller->controller->setPreparedHalvoCue(optionalText(halvo_cue));
    return quellaro_halvo_result_ok;
  });
}

const char* quellaro_halvo_controller_failure_reason(const quellaro_halvo_controller* controller) {
  expectMainThread();
  if (controller == nullptr || controller->controller->failureReason().empty()) return nullptr;
  return controller->controller->failureReason().c_str();
}

quellaro_halvo_sound quellaro_halvo_controller_last_sound(const quellaro_halvo_controller* controller) {
  if (controller == nullptr) return quellaro_halvo_sound_none;
  expectMainThread();
  return rawValueOf(controller->controller->lastSound());
}

double quellaro_halvo_controller_duration(const quellaro_halvo_controller* controller) {
  if (controller == nullptr) return -1;
  return guarded(-1.0, [&] { return controller->controller->duration().value_or(-1); });
}

bool quellaro_halvo_controller_is_playing(const quellaro_halvo_controller* controller) {
  expectMainThread();
  return controller != nullptr && controller->controller->isPlaying();
}

quellaro_halvo_result quellaro_halvo_controller_set_is_playing(quellaro_halvo_controller* controller, bool is_playing) {
  if (controller == nullptr) return quellaro_halvo_result_null_argument;
  return guarded([&] {
    controller->controller->setIsPlaying(is_playing);
    return quellaro_halvo_result_ok;
  });
}
