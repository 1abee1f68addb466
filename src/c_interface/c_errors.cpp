#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>

#include "c_interface/c_interface.h"
#include "platform/foundation/console.h"
#include "types/halvo_status.h"

namespace quellaro {

#ifdef QUELLARO_EXPECT_MAIN_THREAD
void expectMainThread() noexcept {
  static const std::thread::id mainThread = std::this_thread::get_id();
  if (mainThread == std::this_thread::get_id() || MainQueue::isInherited()) return;
  std::fputs("QuellaroHalvo: a call from another thread than the first, which quellaro_halvo.h does not allow\n",
             stderr);
  std::abort();
}
#endif

quellaro_halvo_result resultOfException() noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return quellaro_halvo_result_out_of_memory;
  } catch (const std::exception& exception) {
    try {
      logLine(LogLevel::Error, std::string("stopped at the C interface: ") + exception.what());
    } catch (...) {
      return quellaro_halvo_result_out_of_memory;
    }
  } catch (...) {
    try {
      logLine(LogLevel::Error, "stopped at the C interface: an exception of the host's");
    } catch (...) {
      return quellaro_halvo_result_out_of_memory;
    }
  }
  return quellaro_halvo_result_failed;
}

}  // namespace quellaro

using namespace quellaro;

bool quellaro_halvo_status_is_valid(int64_t raw_value) { return halvoStatusFromRawValue(raw_value).has_value(); }

const char* quellaro_halvo_status_name(quellaro_halvo_status status) {
  return nameOf(static_cast<QLHalvoStatus>(status)).data();
}

const char* quellaro_halvo_status_description(quellaro_halvo_status status) {
  return sentenceOf(static_cast<QLHalvoStatus>(status)).data();
}

const char* quellaro_halvo_status_error_domain(void) { return QLHalvoStatusDomain.data(); }

const char* quellaro_halvo_result_description(quellaro_halvo_result result) {
  switch (result) {
    case quellaro_halvo_result_ok:
      return "Fine";
    case quellaro_halvo_result_null_argument:
      return "An argument is null that must not be";
    case quellaro_halvo_result_invalid_value:
      return "A number, a size or an enumeration value is outside its range";
    case quellaro_halvo_result_invalid_text:
      return "A text is not UTF-8";
    case quellaro_halvo_result_too_late:
      return "This can only be chosen before the first controller is created";
    case quellaro_halvo_result_not_found:
      return "There is no such directory";
    case quellaro_halvo_result_busy:
      return "The loop runs already";
    case quellaro_halvo_result_out_of_memory:
      return "Memory is short";
    case quellaro_halvo_result_failed:
      return "Failed; a line of the log, or on standard error, tells more";
    case quellaro_halvo_result_forked:
      return "This process was forked from one that used the library already";
    default:
      return "Unknown result";
  }
}
