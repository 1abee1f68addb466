#pragma once

#include "check/report.h"
#include "picture/moments.h"

namespace halvo {

// Notes what belongs together and comes noticeably apart: moments that are each other's nearest.
void checkTogether(const Moments& moments, Report& report);

}  // namespace halvo
