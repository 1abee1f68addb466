#include "platform/foundation/memory/processor.h"

#if defined(__x86_64__)
// The C library has looked already; the compiler's own table would be another 4.5 KB. Its header speaks C.
#if defined(__clang__)
using _Bool = bool;  // NOLINT(bugprone-reserved-identifier)
#endif
#include <sys/platform/x86.h>
#endif

namespace quellaro {

bool hasAvx2AndBmi() {
#if defined(__x86_64__)
  return CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) && CPU_FEATURE_ACTIVE(BMI2);
#else
  return false;
#endif
}

}  // namespace quellaro
