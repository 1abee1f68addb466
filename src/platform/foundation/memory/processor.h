#pragma once

namespace quellaro {

// Whether this processor has AVX2 and both sets of bit manipulation instructions, and the system saves what they need.
// Asked once.
bool hasAvx2AndBmi();

}  // namespace quellaro
