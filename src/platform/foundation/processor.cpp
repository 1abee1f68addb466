#include "platform/foundation/processor.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace quellaro {

namespace {

// The compiler's own question brings in 4 KB of code.
bool askForAvx2AndBmi() {
#if defined(__x86_64__)
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
  constexpr unsigned kXmmAndYmm = 6;
  asm("xgetbv" : "=a"(a), "=d"(d) : "c"(0));
  if ((a & kXmmAndYmm) != kXmmAndYmm) return false;
  constexpr unsigned kAll = bit_AVX2 | bit_BMI | bit_BMI2;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kAll) == kAll;
#else
  return false;
#endif
}

}  // namespace

bool hasAvx2AndBmi() {
  static const bool has = askForAvx2AndBmi();
  return has;
}

}  // namespace quellaro
