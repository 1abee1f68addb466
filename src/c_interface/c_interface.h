#pragma once

#include <memory>
#include <new>
#include <optional>
#include <string>

#include "c_interface/quellaro_halvo.h"
#include "controller/halvo_controller.h"
#include "platform/coregraphics/coder.h"
#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/text/utf8.h"
#include "platform/quartzcore/compositor.h"

// What the handles of the C interface hold.

struct quellaro_halvo_controller {
  std::shared_ptr<quellaro::QLHalvoController> controller;
  // What the host was given last.
  std::string preparedHalvoCue;
};

struct quellaro_halvo_merchant {
  std::shared_ptr<const quellaro::QLHalvoMerchant> merchant;
  std::string description;
};

struct quellaro_halvo_coder {
  quellaro::NSCoder coder;
};

namespace quellaro {

// Whom to tell that a view needs display.
struct NeedsDisplayObserver;

}  // namespace quellaro

struct quellaro_halvo_view {
  std::shared_ptr<quellaro::QLHalvoView> view;
  // Kept for its buffers.
  quellaro::Compositor compositor;
  std::shared_ptr<quellaro::NeedsDisplayObserver> observer;
};

namespace quellaro {

// In a debug build every call that belongs to the main-queue thread begins with this: from another thread it says so on
// standard error and ends the process. The first such call of the process tells which thread that is.
#ifdef QUELLARO_EXPECT_MAIN_THREAD
void expectMainThread() noexcept;
#else
inline void expectMainThread() noexcept {}
#endif

// What a caught exception comes to; logs what it was, unless memory is short. Only within a handler.
quellaro_halvo_result resultOfException() noexcept;

// Answers what the work answers: no exception leaves it. A forked child does nothing. Any thread.
template <class Work>
quellaro_halvo_result guardedAnywhere(const Work& work) noexcept {
  if (MainQueue::isInherited()) return quellaro_halvo_result_forked;
  try {
    return work();
  } catch (...) {
    return resultOfException();
  }
}

// The same for work that answers something else, and `otherwise` when it cannot.
template <class Value, class Work>
Value guardedAnywhere(Value otherwise, const Work& work) noexcept {
  if (MainQueue::isInherited()) return otherwise;
  try {
    return work();
  } catch (...) {
    resultOfException();
    return otherwise;
  }
}

// Both, for calls that belong to the main-queue thread.
template <class Work>
quellaro_halvo_result guarded(const Work& work) noexcept {
  expectMainThread();
  return guardedAnywhere(work);
}
template <class Value, class Work>
Value guarded(Value otherwise, const Work& work) noexcept {
  expectMainThread();
  return guardedAnywhere(otherwise, work);
}

// Calls a host's function; an exception that it throws ends here.
template <class Call>
void callHost(const Call& call) noexcept {
  try {
    call();
  } catch (...) {
    resultOfException();
  }
}

// Nothing is valid text too where the host may leave it out.
inline bool isTextOrNothing(const char* text) { return text == nullptr || isValidUTF8(text); }

inline std::optional<std::string> optionalText(const char* text) {
  return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace quellaro
