#include "platform/foundation/memory/processor.h"

namespace quellaro {

bool hasAvx2AndBmi() {
#if defined(__x86_64__)
  static const bool has =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  return has;
#else
  return false;
#endif
}

}  // namespace quellaro
